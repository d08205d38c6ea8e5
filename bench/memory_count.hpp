// How much memory one call allocates, in the program and in all its libraries.
//
//   const MemoryCount count = count_memory([&] { detect_layout(path); });
//   count.allocations;   // blocks handed out
//
// A program that links the counter has functions malloc, free and so on that count while such a
// call runs. Otherwise they do the same as those of the C library, after the test of one flag.
// `new`, file buffers and other libraries all use them.
//
// Units    bytes are those of the blocks as the C library rounds them up; the memory of threads and
//          of mmap is not among them.
// Threads  one count at a time; blocks of all threads count.
#pragma once

#include <cstddef>
#include <functional>

namespace textio::bench {

struct MemoryCount {
  std::size_t allocations = 0;  // a block that is resized counts once more
  std::size_t peak_bytes = 0;   // the most in use at a time, beyond what was in use before
};

MemoryCount count_memory(const std::function<void()>& call);

}  // namespace textio::bench
