#include <vltextstream/standalone/dates/date_patterns.hpp>

#include <gtest/gtest.h>

#include <ostream>
#include <string>

#include "support/printing.hpp"
#include "support/rule_name.hpp"

namespace textio::datetime {
namespace {

using testing_support::readable;

constexpr Folding kLocale{true, false, u'0'};

// A pattern in one line: y year, M month, N its name, d day, E weekday, G era, texts in brackets.
std::string shown(const DatePattern& pattern) {
  constexpr char kLetters[] = {'\0', 'y', 'M', 'N', 'd', 'E', 'G'};
  std::string text;
  for (const DatePart& part : pattern.parts) {
    const bool is_literal = part.kind == DatePart::Kind::literal;
    text += is_literal ? "[" + readable(part.literal) + "]"
                       : std::string(1, kLetters[static_cast<int>(part.kind)]);
  }
  return text + (pattern.short_year ? " short" : "") + (pattern.wants_pairs ? " pairs" : "");
}

struct PatternCase {
  const char* rule;
  std::u16string pattern;
  std::string parts;  // empty: it is refused
};
std::ostream& operator<<(std::ostream& out, const PatternCase& row) { return out << row.rule; }

const PatternCase kPatternCases[] = {
    {"NumbersAndMarks", u"dd.MM.y", "d[.]M[.]y"},
    {"FourLettersOfAYear", u"yyyy-MM-dd", "y[-]M[-]d"},
    {"NamesInFull", u"EEEE, d. MMMM y", "E[, ]d[. ]N[ ]y"},
    {"NamesThatStandAlone", u"ccc d LLL y", "E[ ]d[ ]N[ ]y"},
    {"QuotedText", u"d 'de' MMMM 'de' y", "d[ de ]N[ de ]y"},
    {"QuotedTextIsFolded", u"d 'De' MMMM y", "d[ de ]N[ ]y"},
    {"LetterThatIsNoPartOfADate", u"d ''x'' MMMM y", ""},
    {"TwoQuotesAreOne", u"d''MMMM y", "d[']N[ ]y"},
    {"QuoteThatStaysOpen", u"d MMMM y 'x", "d[ ]N[ ]y[ x]"},
    {"OtherLettersAreText", u"y\u5e74M\u6708d\u65e5", "y[\\u5E74]M[\\u6708]d[\\u65E5]"},
    {"BlanksAtTheEndsGo", u" d MMMM y ", "d[ ]N[ ]y"},
    {"DirectionMarksGo", u"d\u200f/M\u200f/y\u200f", "d[/]M[/]y"},
    {"Era", u"d MMMM G y", "d[ ]N[ ]G[ ]y"},
    {"ShortYear", u"d/M/yy", "d[/]M[/]y short"},
    {"ShortYearBetweenDots", u"d.M.yy", "d[.]M[.]y short pairs"},
    {"ShortYearBetweenDotsAndABlank", u"d. M. yy", "d[. ]M[. ]y short"},
    {"ShortYearBesideAName", u"d.MMM.yy", "d[.]N[.]y short"},
    {"Empty", u"", ""},
    {"TextAlone", u"'um'", ""},
    {"NoDay", u"MMMM y", ""},
    {"NoYear", u"d MMMM", ""},
    {"NoMonth", u"d y", ""},
    {"MonthTwice", u"d M MMMM y", ""},
    {"NarrowName", u"d MMMMM y", ""},
    {"NumberOfAWeekday", u"e d MMMM y", ""},
    {"TimeOfDay", u"d MMMM y H", ""},
};

class ParseDatePattern : public testing::TestWithParam<PatternCase> {};
TEST_P(ParseDatePattern, GivesItsParts) {
  const auto pattern = parse_date_pattern(GetParam().pattern, kLocale);
  EXPECT_EQ(pattern ? shown(*pattern) : "", GetParam().parts);
}
INSTANTIATE_TEST_SUITE_P(Table, ParseDatePattern, testing::ValuesIn(kPatternCases),
                         testing_support::ByRule());

TEST(ParseLiteralPattern, GivesTheText) {
  EXPECT_EQ(parse_literal_pattern(u" 'UM' ", kLocale), u" um ");
  EXPECT_EQ(parse_literal_pattern(u"\u202f", kLocale), u" ");
}

TEST(ParseLiteralPattern, GivesNothingForOthers) {
  EXPECT_EQ(parse_literal_pattern(u"", kLocale), std::nullopt);
  EXPECT_EQ(parse_literal_pattern(u" y ", kLocale), std::nullopt);
  EXPECT_EQ(parse_literal_pattern(u" um ", kLocale), std::nullopt);
}

std::string with_other(const std::u16string& text) {
  const auto pattern = with_other_article(*parse_date_pattern(text, kLocale));
  return pattern ? shown(*pattern) : "";
}

TEST(WithOtherArticle, ExchangesTheOneBeforeTheYear) {
  EXPECT_EQ(with_other(u"d 'de' MMMM 'de' y"), "d[ de ]N[ del ]y");
  EXPECT_EQ(with_other(u"d MMMM 'del' y"), "d[ ]N[ de ]y");
}

TEST(WithOtherArticle, IsNothingWhereThereIsNone) {
  EXPECT_EQ(with_other(u"d 'de' MMMM y"), "");
  EXPECT_EQ(with_other(u"y MMMM d"), "");
}

}  // namespace
}  // namespace textio::datetime
