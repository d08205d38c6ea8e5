// WorkerThread: a thread of which nothing is left when it has ended.
//
//   WorkerThread thread([&] { work(); });
//   thread.join();
//
// The C library keeps the stacks that it made for threads, up to 40 MB of them, and in heaps of
// their own what threads asked for. Where memory is limited, what comes later would lack it.
//
// Ownership  owns the stack, which is as large as that of any other thread.
// Errors     the constructor throws std::bad_alloc or std::system_error; what `work` throws ends
//            the program.
// Threads    join() is called once, in the thread that made it, and before it goes.
#pragma once

#include <cstddef>
#include <functional>

#include <pthread.h>

namespace textio::tool {

class WorkerThread {
 public:
  explicit WorkerThread(std::function<void()> work);
  WorkerThread(const WorkerThread&) = delete;
  WorkerThread& operator=(const WorkerThread&) = delete;
  ~WorkerThread() = default;

  void join();

 private:
  class Stack {
   public:
    Stack();
    Stack(const Stack&) = delete;
    Stack& operator=(const Stack&) = delete;
    ~Stack();

    void* memory() const { return memory_; }
    std::size_t size() const { return size_; }

   private:
    std::size_t size_;
    void* memory_;
  };

  std::function<void()> work_;
  Stack stack_;
  pthread_t thread_{};
};

// Lets all threads share one heap if the memory of this process is limited. Otherwise each has one,
// which is a little faster. To be called before the first of them is made.
void share_heap_if_memory_is_limited();

}  // namespace textio::tool
