// What every sampled line is for, met through detect_layout.
#include <vltextstream/layout/line_roles.hpp>

#include <algorithm>
#include <cstddef>
#include <map>
#include <optional>
#include <ostream>
#include <random>
#include <string>
#include <string_view>
#include <vector>

#include <gtest/gtest.h>

#include <vltextstream/layout/detect_layout.hpp>
#include <vltextstream/strategy/delimited_strategy.hpp>
#include "support/exact_text.hpp"
#include "support/printing.hpp"
#include "support/rule_name.hpp"
#include "support/sampled_table.hpp"

namespace textio::standalone {
namespace {

using testing_support::ByRule;
using testing_support::ExactText;
using testing_support::readable;
using testing_support::table_of;

using Number = std::optional<std::size_t>;
using Change = void (*)(DetectSettings&);

constexpr char16_t kEndMark = 0xFFFF;

const char* name_of(LineRole role) {
  constexpr const char* kNames[] = {"header",  "names", "units", "blank",
                                    "comment", "data",  "footer"};
  return kNames[static_cast<std::size_t>(role)];
}

// "2-4 data" with the count behind it where it is not the number of lines of the text.
std::string described(const LineRun& run) {
  std::string out = std::to_string(run.first_line);
  if (run.last_line != run.first_line) out += '-' + std::to_string(run.last_line);
  out += std::string(" ") + name_of(run.role);
  const bool is_one_each = run.count == run.last_line - run.first_line + 1;
  return is_one_each ? out : out + " x" + std::to_string(run.count);
}

std::string described(const std::vector<LineRun>& runs) {
  std::string out;
  for (const LineRun& run : runs) out += (out.empty() ? "" : ", ") + described(run);
  return out;
}

Layout layout_of(std::u16string_view text, const DetectSettings& settings) {
  return detect_layout(ExactText(text).view(), settings);
}

// --- changes to the settings -------------------------------------------------------------------

void nothing(DetectSettings&) {}

void use_commas(DetectSettings& settings) {
  settings.options.delimiters = {u","};
  settings.options.detect_delimiters = false;
}

void use_tabs(DetectSettings& settings) {
  settings.options.delimiters = {u"\t"};
  settings.options.detect_delimiters = false;
}

void use_hash(DetectSettings& settings) { settings.options.comment_style = {u"#"}; }

template <std::size_t kCount>
void use_header(DetectSettings& settings) {
  settings.options.header_lines = kCount;
  settings.options.detect_header_lines = false;
}

template <unsigned long kCount>
void use_budget(DetectSettings& settings) {
  use_commas(settings);
  use_hash(settings);
  settings.num_lines = kCount;
}

template <unsigned long kCount, std::size_t kHeader>
void use_budget_and_header(DetectSettings& settings) {
  use_budget<kCount>(settings);
  use_header<kHeader>(settings);
}

void use_bars_as_line_endings(DetectSettings& settings) {
  use_commas(settings);
  settings.options.line_endings = {u"|"};
}

void use_words_as_line_endings(DetectSettings& settings) {
  use_commas(settings);
  settings.options.line_endings = {u"<br>", u"\n"};
}

void keep_blanks(DetectSettings& settings) {
  use_commas(settings);
  settings.options.whitespace = u"\t";
}

void use_blank_and_hash(DetectSettings& settings) {
  use_commas(settings);
  settings.options.comment_style = {u" #"};
}

void use_blank_and_hash_and_keep_blanks(DetectSettings& settings) {
  keep_blanks(settings);
  settings.options.comment_style = {u" #"};
}

void use_blanks(DetectSettings& settings) {
  settings.options.delimiters = {u" "};
  settings.options.detect_delimiters = false;
}

void use_blank_and_hash_in_a_table_of_blanks(DetectSettings& settings) {
  use_blanks(settings);
  settings.options.comment_style = {u" #"};
}

void use_widths(DetectSettings& settings) {
  settings.options.parser_type = parser::parser_kind::fixedwidth;
  settings.options.variable_widths = {3, 2};
}

// --- runs --------------------------------------------------------------------------------------

struct LinesCase {
  const char* rule;
  std::u16string text;
  Change change;
  const char* runs;
  std::size_t sampled = 0;
  std::size_t ragged = 0;
  Number first_ragged = {};
};
std::ostream& operator<<(std::ostream& out, const LinesCase& row) { return out << row.rule; }

// clang-format off
const LinesCase kLines[] = {
    {"NoText", u"", nothing, ""},
    {"EveryRole", u"title\n\n# note\na,b\ns,cm\n1,2\n3,4\n",
     [](DetectSettings& s) { use_commas(s); use_hash(s); use_header<2>(s); },
     "1 header, 2 blank, 3 comment, 4 names, 5 units, 6-7 data", 6},
    {"NamesInTheHeader", u"title\na,b\n1,2\n3,4\n", use_header<2>, "1 header, 2 names, 3-4 data",
     4},
    {"HeaderOnBothSidesOfTheUnits", u"title\ns,cm\na,b\n1,2\n3,4\n", use_header<3>,
     "1 header, 2 units, 3 names, 4-5 data", 5},
    {"MoreHeaderLinesThanLines", u"a,b\n1,2\n", use_header<5>, "1-2 header", 2},
    {"NoFinalLineEnding", u"a,b\n1,2\n3,4", nothing, "1 names, 2-3 data", 3},

    // Records and lines of the text.
    {"RecordsOverSeveralLines", u"a,b\n\"x\ny\",1\nz,2\n\"p\n\nq\",3\n", use_commas,
     "1 names, 2-7 data x3", 4},
    {"NamesOverSeveralLines", u"\"a\nb\",c\n1,2\n3,4\n", use_commas, "1-2 names x1, 3-4 data", 3},
    {"ALineBehindARecordOverSeveralLines", u"a,b\n\"1\n\",2\n\n3,4\n", use_commas,
     "1 names, 2-3 data x1, 4 blank, 5 data", 4},
    {"ARecordThatIsNotClosed", u"a,b\n1,2\n\"3,4\n5,6\n", use_commas, "1 names, 2-4 data x2", 3, 1,
     3},
    {"CarriageReturnAndLineFeed", u"a,b\r\n1,2\r\n\r\n3,4\r\n", use_commas,
     "1 names, 2 data, 3 blank, 4 data", 4},
    {"CarriageReturn", u"a,b\r1,2\r\r3,4\r", use_commas, "1 names, 2 data, 3 blank, 4 data", 4},
    {"MixedLineEndings", u"a,b\r\n1,2\r3,4\n5,6", use_commas, "1 names, 2-4 data", 4},
    {"MixedLineEndingsInARecord", u"a,b\n\"1\r2\r\n3\n4\",5\n6,7\n", use_commas,
     "1 names, 2-6 data x2", 3},
    {"OneCharacterAsLineEnding", u"a,b|1,2||3,4", use_bars_as_line_endings,
     "1 names, 2 data, 3 blank, 4 data", 4},
    {"AWordAsLineEnding", u"a,b<br>1,2\n<br>3,4", use_words_as_line_endings,
     "1 names, 2 data, 3 blank, 4 data", 4},

    // Comments.
    {"CommentsAtTheStart", u"# one\n  # two\na,b\n1,2\n3,4\n", use_hash,
     "1-2 comment, 3 names, 4-5 data", 3},
    {"CommentsInTheMiddle", u"a,b\n#\n1,2\n# two\n# three\n3,4\n", use_hash,
     "1 names, 2 comment, 3 data, 4-5 comment, 6 data", 3},
    {"CommentsAtTheEnd", u"a,b\n1,2\n3,4\n# one\n# two", use_hash, "1 names, 2-3 data, 4-5 comment",
     3},
    {"CommentsAlone", u"# one\n# two\n", use_hash, "1-2 comment"},
    {"ACommentHasNoRecordOverSeveralLines", u"# one\n#\na,b\n1,2\n", use_hash,
     "1-2 comment, 3 names, 4 data", 2},
    {"BlankAndCommentAtTheEnd", u"a,b\n1,2\n\n# one\n\n", use_hash,
     "1 names, 2 data, 3 blank, 4 comment, 5 blank", 4},
    // The blank is taken off a line before the marker is looked for.
    {"AMarkerThatStartsWithABlankIsNeverMet", u"a,b\n #x,1\n2,3\n", use_blank_and_hash,
     "1 names, 2-3 data", 3},
    {"UnlessBlanksAreKept", u"a,b\n #x,1\n2,3\n #\n", use_blank_and_hash_and_keep_blanks,
     "1 names, 2 comment, 3 data, 4 comment", 2},
    // A blank that delimits is no white space, so that the marker is met.
    {"AMarkerThatStartsWithTheDelimiter", u"a b\n # x\n1 2\n # y\n3 4\n # z",
     use_blank_and_hash_in_a_table_of_blanks,
     "1 names, 2 comment, 3 data, 4 comment, 5 data, 6 comment", 3},

    // Blank lines.
    {"BlankLinesAtTheStart", u"\n\na,b\n1,2\n3,4\n",
     [](DetectSettings& s) { use_commas(s); use_header<2>(s); }, "1-2 blank, 3 names, 4-5 data", 5},
    {"BlankLinesInTheMiddle", u"a,b\n1,2\n\n \t\n3,4\n", use_commas,
     "1 names, 2 data, 3-4 blank, 5 data", 5},
    {"BlankLinesAtTheEnd", u"a,b\n1,2\n\n\n", use_commas, "1 names, 2 data, 3-4 blank", 4},
    {"BlankLinesAlone", u"\n \n\n", nothing, "1-3 blank", 3},
    {"ABlankThatIsNoWhiteSpaceIsData", u"a,b\n1,2\n \n3,4\n", keep_blanks, "1 names, 2-4 data", 4,
     1, 3},
    {"ALineOfBlanksInATableOfBlanks", u"a b\n1 2\n \n3 4\n", use_blanks, "1 names, 2-4 data", 4},
    // A tab stays white space also where it delimits.
    {"ALineOfTabsInATableOfTabs", u"a\tb\n1\t2\n\t\n3\t4\n", use_tabs,
     "1 names, 2 data, 3 blank, 4 data", 4},
    {"ALineOfTabsInATableOfCommas", u"a,b\n1,2\n\t\n3,4\n", use_commas,
     "1 names, 2 data, 3 blank, 4 data", 4},

    // Budgets: what is behind the last line that was asked for was not looked at.
    {"NoBudget", u"a,b\n1,2\n", use_budget<0>, ""},
    {"NoBudgetNoComment", u"# one\na,b\n1,2\n", use_budget<0>, ""},
    {"BudgetOfTwo", u"a,b\n1,2\n3,4\n", use_budget<2>, "1 names, 2 data", 2},
    {"CommentBehindAUsedUpBudget", u"a,b\n1,2\n# one\n3,4\n", use_budget<2>, "1 names, 2 data", 2},
    {"CommentAtTheEndBehindAUsedUpBudget", u"a,b\n1,2\n# one\n", use_budget<2>, "1 names, 2 data",
     2},
    {"BlankBehindAUsedUpBudget", u"a,b\n1,2\n\n3,4\n", use_budget<2>, "1 names, 2 data", 2},
    {"BlanksAndCommentsAreNotInTheBudget", u"# one\n\na,b\n# two\n\n1,2\n3,4\n",
     use_budget_and_header<1, 1>, "1 comment, 2 blank, 3 names, 4 comment, 5 blank, 6 data", 4},
    {"CommentAtTheEndOfTheTextBelowTheBudget", u"a,b\n1,2\n# one\n", use_budget<3>,
     "1 names, 2 data, 3 comment", 2},
    {"HeaderLinesComeOnTop", u"t\na,b\n1,2\n3,4\n5,6\n", use_budget_and_header<2, 2>,
     "1 header, 2 names, 3-4 data", 4},
    {"HeaderLinesWithoutABudget", u"t\nu\n1,2\n", use_budget_and_header<0, 2>, "1 header, 2 names",
     2},
    {"HeaderLinesThatNoNumberHolds", u"t\nu\n1,2\n# x",
     [](DetectSettings& s) { use_budget<2>(s); use_header<static_cast<std::size_t>(-2)>(s); },
     "1-3 header, 4 comment", 3},

    // The end mark.
    {"EndMarkInALine", u"a,b\n1,2\n3,4\uFFFF5,6\n7,8\n", use_commas, "1 names, 2-3 data", 3},
    {"EndMarkAtTheStartOfALine", u"a,b\n1,2\n\uFFFF\n3,4\n", use_commas, "1 names, 2 data", 2},
    {"EndMarkFirst", u"\uFFFFa,b\n", nothing, ""},

    // Ragged lines.
    {"TooFewAndTooManyFields", u"a,b\n1,2\n3\n4,5\n6,7,\n8,9\n1,2\n3,4\n",
     [](DetectSettings& s) { use_commas(s); use_header<0>(s); },
     "1-8 data", 8, 7, 1},
    {"HeaderNamesAndBlanksAreNotRagged", u"t\na,b\n1,2\n\n3\n4,5\n", use_budget_and_header<100, 2>,
     "1 header, 2 names, 3 data, 4 blank, 5-6 data", 6, 1, 5},
    {"OneColumnIsNeverRagged", u"weight\n1\n2\n\n3\n", nothing,
     "1 names, 2-3 data, 4 blank, 5 data", 5},

    // Other layouts.
    {"GivenWidths", u"abcde\n  1 2\n\n  3 4\n", use_widths, "1 names, 2 data, 3 blank, 4 data", 4},
    {"FoundWidths",
     u"name      city      n\nann lee   new york  1\n# x\n"
     u"bob       rome      2\ncarl von  oslo      3\n",
     [](DetectSettings& s) { use_hash(s); use_header<0>(s); },
     "1 names, 2 data, 3 comment, 4-5 data", 4},
    {"SpaceAligned", u"x   y\n1   2\n  # z\n10  20\n3   4\n", use_hash,
     "1 names, 2 data, 3 comment, 4-5 data", 4},
    {"WholeLineDates", u"March 1, 2024\nMarch 2, 2024\n\nMarch 3, 2024\n", nothing,
     "1-2 data, 3 blank, 4 data", 4},
};
// clang-format on

class DescribeLines : public testing::TestWithParam<LinesCase> {};

TEST_P(DescribeLines, AccountsForEveryLine) {
  const LinesCase& row = GetParam();
  DetectSettings settings;
  row.change(settings);
  const Layout layout = layout_of(row.text, settings);
  EXPECT_EQ(described(layout.lines), row.runs);
  EXPECT_EQ(layout.lines_sampled, row.sampled);
  EXPECT_EQ(layout.ragged_lines, row.ragged);
  EXPECT_EQ(layout.first_ragged_line.value_or(0), row.first_ragged.value_or(0));
}

INSTANTIATE_TEST_SUITE_P(Table, DescribeLines, testing::ValuesIn(kLines), ByRule());

TEST(DescribeLinesAlternating, GivesARunForEachLine) {
  constexpr std::size_t kPairs = 20'000;
  std::u16string text = u"a,b\n";
  for (std::size_t i = 0; i < kPairs; ++i) text += u"1,2\n#\n";
  DetectSettings settings;
  use_budget<2 * kPairs>(settings);
  const Layout layout = layout_of(text, settings);
  ASSERT_EQ(layout.lines.size(), 1 + 2 * kPairs);
  EXPECT_EQ(described(layout.lines[2 * kPairs - 1]), "40000 data");
  EXPECT_EQ(described(layout.lines[2 * kPairs]), "40001 comment");
  EXPECT_EQ(layout.lines_sampled, 1 + kPairs);
}

// --- what holds for every text -----------------------------------------------------------------

// The lines of `text` up to the end mark, by a plain loop over the usual line endings.
std::size_t lines_of(std::u16string_view text) {
  text = text.substr(0, text.find(kEndMark));
  std::size_t count = 0;
  bool is_in_line = false;
  for (std::size_t i = 0; i < text.size(); ++i) {
    const bool is_pair = text.substr(i, 2) == u"\r\n";
    const bool is_ending = text[i] == u'\n' || text[i] == u'\r';
    if (!is_in_line) ++count;
    is_in_line = !is_ending;
    if (is_pair) ++i;
  }
  return count;
}

class RandomTexts {
 public:
  std::u16string text() {
    std::u16string text;
    for (std::size_t left = below(40); left > 0; --left) text += kAlphabet[below(9)];
    return text;
  }

  // A marker of comments; a budget, some header lines and a layout, each given or not.
  DetectSettings settings() {
    constexpr const char16_t* kMarkers[] = {u"%", u"% ", u" %", u"a"};
    constexpr Change kLayouts[] = {nothing, nothing, use_commas, use_blanks, use_widths};
    DetectSettings settings;
    settings.options.comment_style = {kMarkers[below(4)]};
    kLayouts[below(5)](settings);
    if (below(2) == 0) settings.num_lines = below(6);
    if (below(2) == 0) {
      settings.options.detect_header_lines = false;
      settings.options.header_lines = below(5);
    }
    return settings;
  }

  VariableNames names() {
    VariableNames names;
    if (below(3) != 0) names.names_line = below(8);
    if (below(3) != 0) names.units_line = below(8);
    return names;
  }

 private:
  static constexpr char16_t kAlphabet[] = u"a1, \"\n\r%\uFFFF";
  static_assert(std::size(kAlphabet) == 10);

  std::size_t below(std::size_t limit) { return engine_() % limit; }

  std::mt19937 engine_{20261121};
};

void expect_runs_in_order(const Layout& layout) {
  std::size_t expected_line = 1;
  std::optional<LineRole> last_role;
  for (const LineRun& run : layout.lines) {
    EXPECT_EQ(run.first_line, expected_line);
    EXPECT_LE(run.first_line, run.last_line);
    EXPECT_GE(run.count, 1U);
    EXPECT_LE(run.count, run.last_line - run.first_line + 1);
    EXPECT_NE(last_role, std::optional(run.role));
    expected_line = run.last_line + 1;
    last_role = run.role;
  }
}

void expect_counts_add_up(const Layout& layout) {
  std::map<LineRole, std::size_t> counts;
  std::size_t sampled = 0;
  for (const LineRun& run : layout.lines) {
    counts[run.role] += run.count;
    if (run.role != LineRole::comment) sampled += run.count;
  }
  EXPECT_EQ(sampled, layout.lines_sampled);
  EXPECT_EQ(counts[LineRole::names], layout.names_line ? 1U : 0U);
  EXPECT_EQ(counts[LineRole::units], layout.units_line ? 1U : 0U);
  EXPECT_LE(counts[LineRole::header], layout.header_lines);
  EXPECT_LE(layout.ragged_lines, counts[LineRole::data]);
  EXPECT_EQ(layout.ragged_lines > 0, layout.first_ragged_line.has_value());
}

bool stands_in_a_run(const Layout& layout, LineRole role, std::size_t line) {
  return std::any_of(layout.lines.begin(), layout.lines.end(), [&](const LineRun& run) {
    return run.role == role && run.first_line <= line && line <= run.last_line;
  });
}

TEST(DescribeLinesProperty, HoldsForSmallTextsOfEveryKind) {
  RandomTexts random;
  for (int round = 0; round < 6000 && !testing::Test::HasFailure(); ++round) {
    const std::u16string text = random.text();
    const DetectSettings settings = random.settings();
    SCOPED_TRACE("'" + readable(text) + "' lines " + std::to_string(settings.num_lines));
    const Layout layout = layout_of(text, settings);
    SCOPED_TRACE(described(layout.lines));
    expect_runs_in_order(layout);
    expect_counts_add_up(layout);
    if (!layout.lines.empty()) {
      EXPECT_LE(layout.lines.back().last_line, lines_of(text));
    }
    if (layout.names_line) {
      EXPECT_TRUE(stands_in_a_run(layout, LineRole::names, *layout.names_line));
    }
    if (layout.units_line) {
      EXPECT_TRUE(stands_in_a_run(layout, LineRole::units, *layout.units_line));
    }
    if (layout.first_ragged_line) {
      EXPECT_TRUE(stands_in_a_run(layout, LineRole::data, *layout.first_ragged_line));
    }
  }
}

// Line by line, wherever the names and the units stand.
void add_plainly(Layout& layout, LineRole role, std::size_t first_line, std::size_t last_line) {
  if (layout.lines.empty() || layout.lines.back().role != role) {
    layout.lines.push_back({role, first_line, last_line, 0});
  }
  layout.lines.back().last_line = last_line;
  ++layout.lines.back().count;
}

Layout plainly_described(const SampledTable& table, const VariableNames& names) {
  Layout layout;
  for (const SampledTable::Run& run : table.runs()) {
    for (std::size_t i = 0; i < run.count; ++i) {
      const std::size_t first = run.first_line + i;
      const std::size_t last = run.count > 1 ? first : run.last_line;
      const std::size_t index = run.first_index + i;
      LineRole role = index < table.header_lines() ? LineRole::header : LineRole::data;
      if (names.units_line == index) role = LineRole::units;
      if (names.names_line == index) role = LineRole::names;
      if (run.kind == SampledTable::Kind::blank) role = LineRole::blank;
      if (run.kind == SampledTable::Kind::comment) role = LineRole::comment;
      add_plainly(layout, role, first, last);
      const bool is_ragged =
          role == LineRole::data && table.field_count(index) != table.num_variables();
      if (!is_ragged) continue;
      ++layout.ragged_lines;
      if (!layout.first_ragged_line) layout.first_ragged_line = first;
    }
  }
  return layout;
}

TEST(DescribeLinesProperty, GivesEachLineItsRole) {
  RandomTexts random;
  for (int round = 0; round < 6000 && !testing::Test::HasFailure(); ++round) {
    const ExactText text(random.text());
    const DetectSettings settings = random.settings();
    DelimitedStrategy strategy(settings.options, u',');
    strategy.populate_fields(text.field(), settings.num_lines);
    strategy.valuation();
    const SampledTable table = table_of(strategy, settings);
    const VariableNames names = random.names();
    Layout layout;
    describe_lines(table, names, layout);
    const Layout plain = plainly_described(table, names);
    SCOPED_TRACE("'" + readable(text.view()) + "'");
    EXPECT_EQ(described(layout.lines), described(plain.lines));
    EXPECT_EQ(layout.ragged_lines, plain.ragged_lines);
    EXPECT_EQ(layout.first_ragged_line, plain.first_ragged_line);
  }
}

// With a budget that no text comes up to, every line of the text is looked at.
TEST(DescribeLinesProperty, ReachesTheEndOfTheTextWithinALargeBudget) {
  RandomTexts random;
  for (int round = 0; round < 3000 && !testing::Test::HasFailure(); ++round) {
    const std::u16string text = random.text();
    DetectSettings settings = random.settings();
    settings.num_lines = 1000;
    SCOPED_TRACE("'" + readable(text) + "'");
    const Layout layout = layout_of(text, settings);
    const std::size_t last = layout.lines.empty() ? 0 : layout.lines.back().last_line;
    EXPECT_EQ(last, lines_of(text)) << described(layout.lines);
  }
}

}  // namespace
}  // namespace textio::standalone
