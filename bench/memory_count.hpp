// How much memory one call asks for, of the program and of every library in it.
//
//   const MemoryCount count = count_memory([&] { detect_layout(path); });
//   count.allocations;   // blocks handed out
//
// A program that links the counter has functions malloc, free and so on that count while such a
// call runs, and else do what those of the C library do, a test of one flag later. `new`, file
// buffers and other libraries all end there.
//
// Units    bytes are those of the blocks as the C library rounds them up; the memory of threads and
//          of mmap is not among them.
// Threads  one count at a time; blocks of all threads count.
#pragma once

#include <cstddef>
#include <functional>

namespace textio::bench {

struct MemoryCount {
  std::size_t allocations = 0;  // a block that is made larger or smaller is one more
  std::size_t peak_bytes = 0;   // the most that was held at a time, beyond what was there before
};

MemoryCount count_memory(const std::function<void()>& call);

}  // namespace textio::bench
