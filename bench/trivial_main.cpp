// The least that a program can do: what it costs to start one.
int main() {}
