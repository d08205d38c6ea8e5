#include <vltextstream/layout/text_lines.hpp>

#include <cstddef>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "support/exact_text.hpp"

namespace textio::standalone {
namespace {

using testing_support::ExactText;

using Numbers = std::vector<std::size_t>;

// The number of the line for each position of the text, and for the position after it.
Numbers numbers_in(const std::u16string& text) {
  const parser::options options;
  const ExactText exact(text);
  TextLines lines(exact.field(), options);
  Numbers numbers;
  for (std::size_t pos = 0; pos <= text.size(); ++pos) {
    lines.go_to(pos);
    numbers.push_back(lines.number());
  }
  return numbers;
}

TEST(TextLines, NumbersTheLineOfEachPosition) {
  EXPECT_EQ(numbers_in(u""), (Numbers{1}));
  EXPECT_EQ(numbers_in(u"ab\nc"), (Numbers{1, 1, 1, 2, 2}));
  EXPECT_EQ(numbers_in(u"a\r\n\nb"), (Numbers{1, 1, 1, 2, 3, 3}));
}

TEST(TextLines, StaysOnTheLastLineAtTheEnd) { EXPECT_EQ(numbers_in(u"a\n"), (Numbers{1, 1, 1})); }

TEST(TextLines, DoesNotPassAnEndMark) {
  EXPECT_EQ(numbers_in(u"a\n\uFFFFb\nc"), (Numbers{1, 1, 1, 1, 1, 1, 1}));
}

TEST(TextLines, ReturnsToAPlace) {
  const parser::options options;
  const ExactText text(u"a\nb\nc\n");
  TextLines lines(text.field(), options);
  lines.go_to(2);
  const TextLines::Place second = lines.place();
  lines.go_to(4);
  EXPECT_EQ(lines.line().next, 6U);
  lines.return_to(second);
  EXPECT_EQ(lines.number(), 2U);
  EXPECT_EQ(lines.line().next, 4U);
  lines.go_to(4);
  EXPECT_EQ(lines.number(), 3U);
}

}  // namespace
}  // namespace textio::standalone
