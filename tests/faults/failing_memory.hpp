// One call, made again and again: its first allocation fails, its second, its third, until it gets
// by without meeting a failure. Each time it is made on objects of their own, and then once more
// without a failure.
//
// What must hold whatever allocation fails: nothing but std::bad_alloc comes out, the objects of
// the call show what they showed before, the call then gives the undisturbed answer, and no block
// and no file is left over.
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

// The objects of a call and the call itself.
class Attempt {
 public:
  Attempt() = default;
  Attempt(const Attempt&) = delete;
  Attempt& operator=(const Attempt&) = delete;
  virtual ~Attempt() = default;

  virtual void call() = 0;

  // What came of the call. May use up the objects.
  virtual std::string answer() = 0;

  // What the objects show, without a change to them.
  virtual std::string state() const { return {}; }

  // What they may show after a failed call; `before` is what they showed before it.
  virtual void expect_state_after_failure(const std::string& before) const {
    EXPECT_EQ(state(), before);
  }
};

using MakeAttempt = std::function<std::unique_ptr<Attempt>()>;

// The place where two long answers part, and what stands there.
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

// Makes the call; whether it ran out of memory.
inline bool runs_out_of_memory(Attempt& attempt) {
  try {
    attempt.call();
  } catch (const std::bad_alloc&) {
    return true;
  }
  return false;
}

// Makes the call with allocation `nth` failing; whether it got as far as that allocation. A call
// that gets over the failure gives its full answer.
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
  const std::string expected = undisturbed_answer(make);  // also makes what is made only once
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

// `asks_for_memory` says whether the call does so at all.
inline void expect_to_survive_failing_memory(const MakeAttempt& make, bool asks_for_memory = true) {
  expect_to_survive(make, FaultKind::single, asks_for_memory);
  expect_to_survive(make, FaultKind::from_then_on, asks_for_memory);
}

}  // namespace textio::testing_support
