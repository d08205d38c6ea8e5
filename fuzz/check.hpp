// What a fuzz target prints before it aborts: which property failed, and where two results differ.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <string_view>

#include "support/first_difference.hpp"
#include "support/printing.hpp"

namespace textio::fuzz {

[[noreturn]] inline void fail(std::string_view message) {
  std::fprintf(stderr, "PROPERTY FAILED: %.*s\n", static_cast<int>(message.size()), message.data());
  std::abort();
}

inline void require(bool holds, const char* what) {
  if (!holds) fail(what);
}

template <typename Number>
void require_equal(const char* what, Number got, Number expected) {
  if (got == expected) return;
  fail(std::string(what) + ": " + std::to_string(got) + ", expected " + std::to_string(expected));
}

// `difference` describes the difference; empty if there is none.
inline void require_no_difference(const std::string& difference) {
  if (!difference.empty()) fail(difference);
}

inline void require_same_text(const char* what, std::u16string_view got,
                              std::u16string_view expected) {
  const std::size_t place = testing_support::first_difference(got, expected);
  if (place == testing_support::kNoDifference) return;
  const auto around = [place](std::u16string_view text) {
    const std::size_t begin = place < 20 ? 0 : place - 20;
    return testing_support::readable(text.substr(std::min(begin, text.size()), 60));
  };
  fail(std::string(what) + " differs at " + std::to_string(place) + " of " +
       std::to_string(got.size()) + " and " + std::to_string(expected.size()) + " units: \"" +
       around(got) + "\", expected \"" + around(expected) + '"');
}

inline void require_same_lines(const char* what, const std::string& got,
                               const std::string& expected) {
  if (got != expected) fail(std::string(what) + ":\n" + got + "\nexpected:\n" + expected);
}

}  // namespace textio::fuzz
