// The rule and its reasons, met through detect_layout.
#include <vltextstream/layout/variable_names.hpp>

#include <cstddef>
#include <limits>
#include <optional>
#include <ostream>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include <vltextstream/layout/detect_layout.hpp>
#include "support/exact_text.hpp"
#include "support/printing.hpp"
#include "support/rule_name.hpp"

namespace textio::standalone {
namespace {

using testing_support::ByRule;
using testing_support::ExactText;
using testing_support::readable;

using Texts = std::vector<std::u16string>;
using Number = std::optional<std::size_t>;

constexpr std::size_t kMost = std::numeric_limits<std::size_t>::max();
constexpr auto kNone = std::nullopt;

// Choices of the caller; what is not engaged or empty is left to be found.
struct Given {
  Number header_lines;
  std::u16string delimiter;
  std::u16string comment;
  unsigned long num_lines = 100;
};

DetectSettings settings_of(const Given& given) {
  DetectSettings settings;
  settings.num_lines = given.num_lines;
  if (given.header_lines) {
    settings.options.header_lines = *given.header_lines;
    settings.options.detect_header_lines = false;
  }
  if (!given.delimiter.empty()) {
    settings.options.delimiters = {given.delimiter};
    settings.options.detect_delimiters = false;
  }
  if (!given.comment.empty()) settings.options.comment_style = {given.comment};
  return settings;
}

std::string listed(const Texts& texts) {
  std::string out;
  for (const std::u16string& text : texts) out += '[' + readable(text) + ']';
  return out;
}

struct NamesCase {
  const char* rule;
  std::u16string text;
  Given given;
  NamesSource source;
  const char* reason;
  Number names_line = {};
  Texts names = {};
  Number units_line = {};
  Texts units = {};
};
std::ostream& operator<<(std::ostream& out, const NamesCase& row) { return out << row.rule; }

constexpr auto kHeader = NamesSource::last_header_line;
constexpr auto kBehind = NamesSource::line_after_header;
constexpr auto kNotThere = NamesSource::none;
constexpr auto kOpen = NamesSource::undecided;

constexpr auto kLastNames = "it has a name for every column";
constexpr auto kLastButUnits = "it has a name for every column, above the units";
constexpr auto kAbove = "texts above values";
constexpr auto kAboveBelowUnits = "texts above values, below the units";
constexpr auto kAllText = "every column is text, so line 1 may hold names or values";
constexpr auto kNoLine = "there is no line where they could be";
constexpr auto kAlone = "there is no line below line 1 to compare it with";
constexpr auto kAlike = "line 1 reads like the lines below it";

Given header(std::size_t lines) { return {lines, u"", u"", 100}; }
Given delimiter(std::u16string text) { return {{}, std::move(text), u"", 100}; }
Given commas(std::size_t header_lines) { return {header_lines, u",", u"", 100}; }
Given budget(unsigned long lines) { return {{}, u",", u"", lines}; }

// clang-format off
const NamesCase kNames[] = {
    // The last header line.
    {"GivenHeaderLine", u"a,b\n1,2\n3,4\n", header(1), kHeader, kLastNames, 1, {u"a", u"b"}},
    {"HeaderLineOverTexts", u"a,b\nx,y\nv,w\n", header(1), kHeader, kLastNames, 1, {u"a", u"b"}},
    {"HeaderLineOfNumbers", u"1,1\n1,2\n3,4\n", header(1), kHeader, kLastNames, 1, {u"1", u"1"}},
    {"HeaderLineOfYears", u"land,2019,2020\nA1,1,2\nB1,3,4\n", header(1), kHeader, kLastNames, 1,
     {u"land", u"2019", u"2020"}},
    {"HeaderLineTooShort", u"title\na,b\n1,2\n3,4\n", header(1), kBehind, kAbove, 2, {u"a", u"b"}},
    {"HeaderLineWithAnEmptyField", u"a,\nc,d\n1,2\n3,4\n", header(1), kBehind, kAbove, 2,
     {u"c", u"d"}},
    {"DetectedHeaderLine", u"some title\na,b\n1,2\n3,4\n5,6\n", {}, kBehind, kAbove, 2,
     {u"a", u"b"}},
    {"HeaderLinesBeyondTheText", u"a,b\n1,2\n", header(9), kNotThere, kNoLine, kNone},
    // Without a line of data there is one variable, whatever the header lines hold.
    {"AsManyHeaderLinesAsLines", u"x,y\na,b\n", commas(2), kNotThere, kNoLine, kNone},
    {"NearlyTheMostHeaderLines", u"a,b\n1,2\n", header(kMost - 1), kNotThere, kNoLine, kNone},
    // The largest number stands for header lines that are to be detected.
    {"TheMostHeaderLines", u"a,b\n1,2\n", commas(kMost), kBehind, kAbove, 1, {u"a", u"b"}},

    // Units around a header line.
    {"UnitsAsLastHeaderLine", u"time,level\ns,cm\n1,20\n2,30\n", header(2), kHeader, kLastButUnits,
     1, {u"time", u"level"}, 2, {u"s", u"cm"}},
    {"UnitsBehindTheHeader", u"time,level\ns,cm\n1,20\n2,30\n", header(1), kHeader, kLastNames, 1,
     {u"time", u"level"}, 2, {u"s", u"cm"}},
    {"UnitsAboveTheNamesInTheHeader", u"s,cm\ntime,level\n1,20\n2,30\n", header(2), kHeader,
     kLastNames, 2, {u"time", u"level"}, 1, {u"s", u"cm"}},
    {"UnitsWithADashInTheHeaderAboveTheNamesBehindIt", u"s,\ntime,level\n1,20\n2,30\n", header(1),
     kBehind, kAbove, 2, {u"time", u"level"}, 1, {u"s", u""}},
    {"UnitsInTheHeaderAboveTheNamesBehindIt", u"s,cm\ntime,level\n1,20\n2,30\n", header(1), kBehind,
     kAbove, 2, {u"time", u"level"}, 1, {u"s", u"cm"}},
    {"UnitsAloneInTheHeaderAreNames", u"t,A\n1,20\n2,30\n", header(1), kHeader, kLastNames, 1,
     {u"t", u"A"}},
    {"TwoLinesOfUnitsInTheHeader", u"t,A\ns,mA\n1,20\n2,30\n", header(2), kHeader, kLastButUnits, 1,
     {u"t", u"A"}, 2, {u"s", u"mA"}},
    {"TwoLinesOfUnitsAroundTheEndOfTheHeader", u"t,A\ns,mA\n1,20\n2,30\n", header(1), kHeader,
     kLastNames, 1, {u"t", u"A"}, 2, {u"s", u"mA"}},

    // The first line after the header.
    {"TextsAboveNumbers", u"a,b\n1,2\n3,4\n", {}, kBehind, kAbove, 1, {u"a", u"b"}},
    {"TextsAboveDates", u"who,day\nx,2024-01-02\ny,2024-01-03\n", {}, kBehind, kAbove, 1,
     {u"who", u"day"}},
    {"TextsAboveDurations", u"who,time\nx,1:02:03\ny,1:02:04\n", delimiter(u","), kBehind, kAbove,
     1, {u"who", u"time"}},
    {"TrimmedAndUnquoted", u"\"a\" , b \n1,2\n3,4\n", {}, kBehind, kAbove, 1, {u"a", u"b"}},
    {"NamesOverSeveralLines", u"\"a\nb\",c\n1,2\n3,4\n", {}, kBehind, kAbove, 1, {u"a\nb", u"c"}},
    {"CommentsBeforeTheNames", u"# one\n# two\na,b\n1,2\n3,4\n", {{}, u"", u"#", 100}, kBehind,
     kAbove, 3, {u"a", u"b"}},
    {"CommentBetweenNamesAndValues", u"a,b\n# one\n1,2\n3,4\n", {{}, u"", u"#", 100}, kBehind,
     kAbove, 1, {u"a", u"b"}},
    {"BlankLinesBeforeTheNames", u"\n\na,b\n1,2\n3,4\n5,6\n", {}, kBehind, kAbove, 3, {u"a", u"b"}},
    {"BlankLineBeforeTheNameOfOneColumn", u"\nweight\n1\n2\n", {}, kBehind, kAbove, 2, {u"weight"}},
    {"BlankLineBetweenTheHeaderAndTheNames", u"title\n\na,b\n1,2\n3,4\n", commas(1), kBehind,
     kAbove, 3, {u"a", u"b"}},
    {"BlankLinesAlone", u"\n\n", {}, kNotThere, kNoLine, kNone},
    {"GivenDelimiter", u"a;b,c\n1;2\n3;4\n", delimiter(u";"), kBehind, kAbove, 1, {u"a", u"b,c"}},
    {"SpaceAligned", u"x   y\n1   2\n10  20\n3   4\n", {}, kBehind, kAbove, 1, {u"x", u"y"}},
    {"FixedWidth",
     u"name      city      n\nann lee   new york  1\n"
     u"bob       rome      2\ncarl von  oslo      3\n",
     header(0), kBehind, kAbove, 1, {u"name", u"city", u"n"}},
    {"OneColumn", u"weight\n1\n2\n", {}, kBehind, kAbove, 1, {u"weight"}},
    {"OneColumnWithItsUnit", u"weight\nkg\n1\n2\n", {}, kBehind, kAbove, 1, {u"weight"}, 2,
     {u"kg"}},
    {"RepeatedNames", u"a,a\n1,2\n3,4\n", {}, kNotThere, "line 1 has the same text in two columns", kNone},
    {"EmptyName", u"a,,c\n1,2,3\n4,5,6\n", {}, kNotThere, "a cell of line 1 is empty", kNone},
    {"TooFewNames", u"a\n1,2\n3,4\n", commas(0), kNotThere, "line 1 has 1 cell for 2 columns",
     kNone},
    {"TooManyOrTooFewNamesCountAlike", u"a,b\n1,2,3\n4,5,6\n", commas(0), kNotThere,
     "line 1 has 2 cells for 3 columns", kNone},
    {"Values", u"1,2\n3,4\n5,6\n", {}, kNotThere, kAlike, kNone},
    {"YearsAboveNumbers", u"country,2019,2020\nFrance,1,2\nItaly,3,4\n", {}, kNotThere, kAlike,
     kNone},
    {"YearBesideATextAboveNumbers", u"id,2019\n7,1\n8,2\n", {}, kOpen,
     "line 1 holds texts where values follow, but values as well", kNone},
    {"NumbersAboveTexts", u"1,2\nx,y\nv,w\n", {}, kNotThere, "line 1 holds values", kNone},
    {"AllTexts", u"a,b\nx,y\nv,w\n", {}, kOpen, kAllText, kNone},
    {"OneColumnOfWords", u"abc\ndef\nghi\n", {}, kOpen, kAllText, kNone},
    {"UnresolvedTie", u"a|b:c\n1|2:3\n4|5:6\n", {}, kOpen, kAllText, kNone},
    {"WholeLineDates", u"2024-03-01\n2024-03-02\n", {}, kNotThere, kAlike, kNone},
    {"WholeLineDatesWithCommas", u"March 1, 2024\nMarch 2, 2024\nMarch 3, 2024\n", {}, kNotThere,
     kAlike, kNone},
    {"WholeLineDatesBelowAName", u"day\n2024-03-01\n2024-03-02\n", {}, kBehind, kAbove, 1,
     {u"day"}},

    // Too little to see.
    {"NoText", u"", {}, kNotThere, kNoLine, kNone},
    {"NoLineInTheBudget", u"a,b\n1,2\n", budget(0), kNotThere, kNoLine, kNone},
    // One line alone is one variable, even where it can be cut.
    {"OneLineInTheBudget", u"a,b\n1,2\n", budget(1), kNotThere,
     "line 1 has 2 cells for 1 column", kNone},
    {"OneLineOfTexts", u"a,b", {}, kOpen, kAlone, kNone},
    {"OneWord", u"weight", {}, kOpen, kAlone, kNone},
    {"OneNumber", u"12", {}, kNotThere, "line 1 holds values", kNone},
    {"OneLineOfValuesBehindTheHeader", u"title\n1,2\n", commas(1), kNotThere, "line 2 holds values",
     kNone},
    {"OneDate", u"2024-03-01\n", {}, kNotThere, "line 1 holds values", kNone},

    // Units around the first line after the header.
    {"UnitsBelow", u"time,level\ns,cm\n1,20\n2,30\n", {}, kBehind, kAbove, 1, {u"time", u"level"},
     2, {u"s", u"cm"}},
    {"UnitsAbove", u"s,cm\ntime,level\n1,20\n2,30\n", {}, kBehind, kAboveBelowUnits, 2,
     {u"time", u"level"}, 1, {u"s", u"cm"}},
    {"UnitsAboveBehindATitle", u"some title\ns,cm\ntime,level\n1,20\n2,30\n", header(1), kBehind,
     kAboveBelowUnits, 3, {u"time", u"level"}, 2, {u"s", u"cm"}},
    {"UnitsInBrackets", u"a,b\n[s],(cm)\n1,2\n3,4\n", {}, kBehind, kAbove, 1, {u"a", u"b"}, 2,
     {u"[s]", u"(cm)"}},
    {"UnitsWithEmptyFieldsAndDashes", u"time,level,valve,n\ns,,state,-\n1,20,open,3\n2,30,shut,4\n",
     {}, kBehind, kAbove, 1, {u"time", u"level", u"valve", u"n"}, 2, {u"s", u"", u"state", u"-"}},
    {"PatternOfADate", u"day,level\nyyyy-mm-dd,cm\n2024-01-01,3\n2024-01-02,4\n", {}, kBehind,
     kAbove, 1, {u"day", u"level"}, 2, {u"yyyy-mm-dd", u"cm"}},
    {"PlainWordOverANumber", u"time,level\ns,high\n1,20\n2,30\n", {}, kBehind, kAbove, 1,
     {u"time", u"level"}},
    {"DashesAlone", u"a,b\n-,-\n1,2\n3,4\n", {}, kBehind, kAbove, 1, {u"a", u"b"}},
    {"UnitsOverTextsAlone", u"a,b,n\ns,cm,\nx,y,1\nv,w,2\n", {}, kBehind, kAbove, 1,
     {u"a", u"b", u"n"}},
    {"ValueOverATextColumn", u"a,n\n7,kg\nx,1\ny,2\n", {}, kBehind, kAbove, 1, {u"a", u"n"}},
    {"LongRemarkOverATextColumn", u"a,n\n" + std::u16string(33, u'x') + u",kg\nx,1\ny,2\n", {},
     kBehind, kAbove, 1, {u"a", u"n"}},
    {"RemarkOfThirtyTwoUnits", u"a,n\n" + std::u16string(32, u'x') + u",kg\nx,1\ny,2\n", {},
     kBehind, kAbove, 1, {u"a", u"n"}, 2, {std::u16string(32, u'x'), u"kg"}},
    {"AFieldTooFewForUnits", u"a,b,c\ns,cm\n1,2,3\n4,5,6\n", commas(0), kBehind, kAbove, 1,
     {u"a", u"b", u"c"}},

    // Names that read like units.
    {"LettersAsNames", u"A,B,C\n1,2,3\n4,5,6\n", {}, kBehind, kAbove, 1, {u"A", u"B", u"C"}},
    {"UnitAsTheNameOfANumber", u"event,ms\nopen,35\nshut,4\n", {}, kBehind, kAbove, 1,
     {u"event", u"ms"}},
    {"OfTwoLinesOfUnitsTheUpperHoldsTheNames", u"t,A\ns,mA\n1,20\n2,30\n", {}, kBehind, kAbove, 1,
     {u"t", u"A"}, 2, {u"s", u"mA"}},
    // Former bug: the letters of "mass" are those of a pattern of a date.
    {"AWordOfPatternLettersIsNoUnit", u"mass\nkg\n1\n2\n", {}, kBehind, kAbove, 1, {u"mass"}, 2,
     {u"kg"}},
};
// clang-format on

class FindVariableNames : public testing::TestWithParam<NamesCase> {};

TEST_P(FindVariableNames, TellsTheLineTheNamesAndWhy) {
  const NamesCase& row = GetParam();
  DetectSettings settings = settings_of(row.given);
  settings.judge = Judge::cascade;
  const Layout layout = detect_layout(ExactText(row.text).view(), settings);
  EXPECT_EQ(static_cast<int>(layout.names_source), static_cast<int>(row.source));
  EXPECT_EQ(layout.names_reason, row.reason);
  EXPECT_EQ(layout.names_line.value_or(0), row.names_line.value_or(0));
  EXPECT_EQ(listed(layout.names), listed(row.names));
  EXPECT_EQ(layout.units_line.value_or(0), row.units_line.value_or(0));
  EXPECT_EQ(listed(layout.units), listed(row.units));
}

INSTANTIATE_TEST_SUITE_P(Table, FindVariableNames, testing::ValuesIn(kNames), ByRule());

}  // namespace
}  // namespace textio::standalone
