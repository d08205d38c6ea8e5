// A program that does nothing: the cost of starting a program.
int main() {}
