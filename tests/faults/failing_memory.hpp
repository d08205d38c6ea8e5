// One call, made repeatedly: its first allocation fails, then its second, its third, until no
// allocation fails. Each time it is made on new objects, and then once more without a failure.
//
// Whichever allocation fails, these must hold: only std::bad_alloc is thrown, the objects show the
// same state as before, the call then gives the undisturbed result, and no block and no file is
// leaked.
#pragma once

#include <algorithm>
#include <cstddef>
#include <functional>
#include <memory>
#include <new>
#include <string>

#include <gtest/gtest.h>

#include "support/failing_allocator.hpp"
#include "support/open_files.hpp"

namespace textio::testing_support {

// The objects of a call, and the call itself.
class Attempt {
 public:
  Attempt() = default;
  Attempt(const Attempt&) = delete;
  Attempt& operator=(const Attempt&) = delete;
  virtual ~Attempt() = default;

  virtual void call() = 0;

  // The result of the call. May use up the objects.
  virtual std::string answer() = 0;

  // The visible state of the objects, which does not change.
  virtual std::string state() const { return {}; }

  // The visible states that are allowed after a failed call; `before` is the state before it.
  virtual void expect_state_after_failure(const std::string& before) const {
    EXPECT_EQ(state(), before);
  }
};

using MakeAttempt = std::function<std::unique_ptr<Attempt>()>;

// The position at which two long results differ, and the text there.
inline std::string difference(const std::string& answer, const std::string& expected) {
  const auto at = std::mismatch(answer.begin(), answer.end(), expected.begin(), expected.end());
  const auto place = static_cast<std::size_t>(at.first - answer.begin());
  return "at " + std::to_string(place) + ": " + answer.substr(place, 80) +
         "\nexpected: " + expected.substr(place, 80);
}

inline std::string undisturbed_answer(const MakeAttempt& make) {
  const auto attempt = make();
  attempt->call();
  return attempt->answer();
}

// Makes the call. Returns whether it ran out of memory.
inline bool runs_out_of_memory(Attempt& attempt) {
  try {
    attempt.call();
  } catch (const std::bad_alloc&) {
    return true;
  }
  return false;
}

// Makes the call with allocation `nth` failing. Returns whether that allocation was reached. A call
// that survives the failure gives its full result.
inline bool meets_failure(const MakeAttempt& make, std::size_t nth, FaultKind kind,
                          const std::string& expected) {
  const auto attempt = make();
  const std::string before = attempt->state();
  bool met = false;
  bool failed = false;
  {
    const AllocationFault fault(nth, kind);
    failed = runs_out_of_memory(*attempt);
    met = fault.was_met();
  }
  if (failed) {
    attempt->expect_state_after_failure(before);
    attempt->call();
  }
  const std::string answer = attempt->answer();
  EXPECT_TRUE(answer == expected) << difference(answer, expected);
  return met;
}

inline void expect_to_survive(const MakeAttempt& make, FaultKind kind,
                              bool asks_for_memory = true) {
  const std::string expected = undisturbed_answer(make);  // also initialises what is made only once
  bool met = true;
  std::size_t nth = 0;
  while (met && !testing::Test::HasFailure()) {
    SCOPED_TRACE("allocation " + std::to_string(++nth));
    const std::size_t files = open_files();
    const long blocks = live_blocks();
    met = meets_failure(make, nth, kind, expected);
    EXPECT_EQ(live_blocks(), blocks);
    EXPECT_EQ(open_files(), files);
  }
  EXPECT_EQ(nth > 1, asks_for_memory && allocations_can_fail());
}

// `asks_for_memory` says whether the call allocates at all.
inline void expect_to_survive_failing_memory(const MakeAttempt& make, bool asks_for_memory = true) {
  expect_to_survive(make, FaultKind::single, asks_for_memory);
  expect_to_survive(make, FaultKind::from_then_on, asks_for_memory);
}

}  // namespace textio::testing_support
