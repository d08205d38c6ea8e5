// How often, and for how many bytes, the calling thread has called `new`; for tests of code that
// must not allocate.
//
//   const std::size_t before = allocations_of_this_thread();
//   call_under_test();
//   EXPECT_EQ(allocations_of_this_thread(), before);
//
// A program that links the counter has global operators new and delete that count, and otherwise
// work like the standard ones. Operators for over-aligned types are not counted.
#pragma once

#include <cstddef>

namespace textio::testing_support {

std::size_t allocations_of_this_thread() noexcept;
std::size_t allocated_bytes_of_this_thread() noexcept;

// False under valgrind, which replaces the operators with its own: then nothing is counted.
bool allocations_are_counted() noexcept;

}  // namespace textio::testing_support
