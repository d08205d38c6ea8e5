// Memory that runs out when a test asks for it.
//
//   const long before = live_blocks();
//   {
//     const AllocationFault fault(3, FaultKind::single);
//     EXPECT_THROW(call_under_test(), std::bad_alloc);   // its third `new` fails, no other one
//   }
//   EXPECT_EQ(live_blocks(), before);
//
// A program that links this has global operators new and delete that count the living blocks of the
// calling thread, and fail on demand. Operators for over-aligned types are not replaced; neither is
// malloc, from which C libraries get their memory.
#pragma once

#include <cstddef>

namespace textio::testing_support {

// Whether one allocation fails, or that one and every later one.
enum class FaultKind { single, from_then_on };

// During its lifetime, the `nth` allocation of this thread fails, counted from 1. Only one at a
// time.
class AllocationFault {
 public:
  AllocationFault(std::size_t nth, FaultKind kind) noexcept;
  ~AllocationFault();
  AllocationFault(const AllocationFault&) = delete;
  AllocationFault& operator=(const AllocationFault&) = delete;

  // Whether the failing allocation was reached.
  bool was_met() const noexcept;
};

// Blocks that this thread has allocated and that have not been freed.
long live_blocks() noexcept;

// False where the operators are not replaced: under valgrind and the thread sanitizer.
bool allocations_can_fail() noexcept;

}  // namespace textio::testing_support
