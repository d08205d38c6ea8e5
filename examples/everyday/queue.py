"""A queue that forgets its oldest entries."""
import collections


class Queue:
    def __init__(self, size=10):
        self.entries = collections.deque(maxlen=size)

    def add(self, name, value=None):
        if value is None:
            value = len(self.entries)
        self.entries.append((name, value))

    def find(self, name):
        for other, value in self.entries:
            if other == name:
                return value
        raise KeyError(name)


if __name__ == "__main__":
    queue = Queue(3)
    for word in ("one", "two", "three", "four"):
        queue.add(word)
    print(queue.find("four"))
