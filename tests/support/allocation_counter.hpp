// How often the calling thread has asked for memory with `new`, for tests of what must not.
//
//   const std::size_t before = allocations_of_this_thread();
//   call_under_test();
//   EXPECT_EQ(allocations_of_this_thread(), before);
//
// A program that links the counter has global operators new and delete that count, and otherwise
// do what the usual ones do. Operators for over-aligned types are not counted.
#pragma once

#include <cstddef>

namespace textio::testing_support {

std::size_t allocations_of_this_thread() noexcept;

// False under valgrind, which puts its own operators in front of all others: the count then stands
// still.
bool allocations_are_counted() noexcept;

}  // namespace textio::testing_support
