#include "tool/showing/line_breaks.hpp"

#include <ostream>
#include <string>

#include <gtest/gtest.h>
#include <rapidcheck.h>

#include "support/rule_name.hpp"
#include "tool/showing/places.hpp"

namespace textio::tool {
namespace {

using testing_support::ByRule;

struct BreakCase {
  const char* rule;
  std::string text;
  std::size_t width;
  std::string broken;
};
std::ostream& operator<<(std::ostream& out, const BreakCase& row) { return out << row.rule; }

#define HAN "\xE6\xBC\xA2"

const BreakCase kBreaks[] = {
    {"Empty", "", 20, ""},
    {"ShortLinesStay", "ab cd\n\n  e  f \n", 20, "ab cd\n\n  e  f \n"},
    {"ExactlyFull", "abcd efgh", 9, "abcd efgh\n"},
    {"OneTooMany", "abcd efghi jkl", 10, "abcd efghi\n  jkl\n"},
    {"SeveralTimes", "aa bb cc dd ee ff", 8, "aa bb cc\n  dd ee\n  ff\n"},
    {"BelowTheTextAfterAHeading", "  head  one two three", 16, "  head  one two\n        three\n"},
    {"BelowTheLastOfSeveral", " 1  n  one two three four", 16,
     " 1  n  one two\n       three\n       four\n"},
    {"NotBelowATextFarToTheRight", "  a heading  one two", 16, "  a heading  one\n    two\n"},
    {"LongWordsStayWhole", "see /tmp/a/long/path b", 8, "see\n  /tmp/a/long/path\n  b\n"},
    {"NothingIsBrokenBeforeTheText", "  head  longerthanthat it", 16,
     "  head  longerthanthat\n        it\n"},
    {"SeveralBlanksAtABreakAreLost", "abcdef   ghi", 8, "abcdef\n  ghi\n"},
    {"BlanksAtTheEndAreNoText", "abcdef    ", 8, "abcdef    \n"},
    {"WideLettersTakeTwoPlaces", HAN HAN " " HAN HAN, 8, HAN HAN "\n  " HAN HAN "\n"},
};

class BrokenTo : public testing::TestWithParam<BreakCase> {};
TEST_P(BrokenTo, EndsLinesBetweenWords) {
  EXPECT_EQ(broken_to(GetParam().text, GetParam().width), GetParam().broken);
}
INSTANTIATE_TEST_SUITE_P(Table, BrokenTo, testing::ValuesIn(kBreaks), ByRule());

std::string without_blanks(std::string text) {
  std::erase_if(text, [](char c) { return c == ' ' || c == '\n'; });
  return text;
}

// Words of two places at most.
TEST(BrokenTo, KeepsAllWordsAndTheWidth) {
  EXPECT_TRUE(rc::check([] {
    const auto piece = rc::gen::element<std::string>("a", "bc", HAN, " ", "  ", "\n");
    std::string text;
    bool may_go_on = false;
    for (const std::string& each : *rc::gen::container<std::vector<std::string>>(piece)) {
      const bool is_word = each.front() != ' ' && each.front() != '\n';
      if (is_word && may_go_on) text += ' ';
      text += each;
      may_go_on = is_word;
    }
    const auto width = *rc::gen::inRange<std::size_t>(8, 30);
    const std::string broken = broken_to(text, width);
    RC_ASSERT(without_blanks(broken) == without_blanks(text));
    std::size_t begin = 0;
    for (std::size_t end = broken.find('\n'); end != broken.npos; end = broken.find('\n', begin)) {
      const std::string line = broken.substr(begin, end - begin);
      const std::size_t last = line.find_last_not_of(' ') + 1;
      RC_ASSERT(most_width(line.substr(0, last)) <= width);
      begin = end + 1;
    }
  }));
}

}  // namespace
}  // namespace textio::tool
