// The lines of a sample, told by runs, against a walk that asks the strategy for every line.
#include <vltextstream/layout/sampled_table.hpp>

#include <cstddef>
#include <limits>
#include <memory>
#include <ostream>
#include <random>
#include <string>
#include <string_view>
#include <vector>

#include <gtest/gtest.h>

#include <vltextstream/detection/strategy_selector.hpp>
#include <vltextstream/layout/detect_layout.hpp>
#include <vltextstream/strategy/delimited_strategy.hpp>
#include <vltextstream/strategy/field_text.hpp>
#include <vltextstream/strategy/fixed_width_strategy.hpp>
#include <vltextstream/strategy/line_reader_strategy.hpp>
#include <vltextstream/strategy/space_aligned_strategy.hpp>
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
using testing_support::text_of;

using Kind = SampledTable::Kind;

std::string described(Kind kind, std::size_t first_line, std::size_t last_line) {
  constexpr const char* kNames[] = {" text", " blank", " comment"};
  std::string out = std::to_string(first_line);
  if (last_line != first_line) out += '-' + std::to_string(last_line);
  return out + kNames[static_cast<std::size_t>(kind)];
}

// --- runs --------------------------------------------------------------------------------------

// "1-2 text x2 from 0": the lines of the text, how many lines these are, the index of the first.
std::string described(const std::vector<SampledTable::Run>& runs) {
  std::string out;
  for (const SampledTable::Run& run : runs) {
    if (!out.empty()) out += ", ";
    out += described(run.kind, run.first_line, run.last_line) + " x" + std::to_string(run.count) +
           " from " + std::to_string(run.first_index);
  }
  return out;
}

using Make = std::shared_ptr<Strategy> (*)(const parser::options&);

std::shared_ptr<Strategy> commas(const parser::options& options) {
  return std::make_shared<DelimitedStrategy>(options, u',');
}
std::shared_ptr<Strategy> commas_before_line_ends(const parser::options& options) {
  return std::make_shared<DelimitedStrategy>(options, std::vector<std::u16string>{u",\n", u"a"});
}
std::shared_ptr<Strategy> blanks(const parser::options& options) {
  return std::make_shared<SpaceAlignedStrategy>(options);
}
std::shared_ptr<Strategy> widths(const parser::options& options) {
  return std::make_shared<FixedWidthStrategy>(options, std::vector<unsigned long>{2, 1});
}
std::shared_ptr<Strategy> whole_lines(const parser::options& options) {
  return std::make_shared<LineReaderStrategy>(options);
}

struct RunsCase {
  const char* rule;
  Make make;
  std::u16string text;
  std::string runs;
  std::vector<std::size_t> line_numbers;  // of the sampled lines
};
std::ostream& operator<<(std::ostream& out, const RunsCase& row) { return out << row.rule; }

// clang-format off
const RunsCase kRunsCases[] = {
    {"NoText", commas, u"", "", {}},
    {"LinesOfATable", commas, u"a,b\n1,2\n3,4\n", "1-3 text x3 from 0", {1, 2, 3}},
    {"NoFinalLineEnding", commas, u"a,b\n1,2", "1-2 text x2 from 0", {1, 2}},
    {"EveryKind", commas, u"#\na,b\n1,2\n\n  \n# c\n3,4\n#\n",
     "1 comment x1 from 0, 2-3 text x2 from 0, 4-5 blank x2 from 2, 6 comment x1 from 4, "
     "7 text x1 from 4, 8 comment x1 from 5",
     {2, 3, 4, 5, 7}},
    {"CommentsInARow", commas, u"#\n#\n#\n1,2\n", "1-3 comment x3 from 0, 4 text x1 from 0", {4}},
    {"BlanksInARow", commas, u"\n\n\n1,2\n\n\n",
     "1-3 blank x3 from 0, 4 text x1 from 3, 5-6 blank x2 from 4", {1, 2, 3, 4, 5, 6}},
    {"RecordsOfSeveralLinesStandAlone", commas, u"a,b\n\"1\n2\",3\n\"4\n\n5\",6\n7,8\n9,10\n",
     "1 text x1 from 0, 2-3 text x1 from 1, 4-6 text x1 from 2, 7-8 text x2 from 3",
     {1, 2, 4, 7, 8}},
    {"BlanksInFrontOfAlignedFields", blanks, u"  a b\n 1  2\n   \n3 4\n",
     "1-2 text x2 from 0, 3 blank x1 from 2, 4 text x1 from 3", {1, 2, 3, 4}},
    {"ADelimiterThatEndsALineOfTheText", commas_before_line_ends, u"1,\n2\n3\n",
     "1-2 text x1 from 0, 3 text x1 from 1", {1, 3}},
    {"FixedWidths", widths, u"ab1\ncd2\n", "1-2 text x2 from 0", {1, 2}},
    {"WholeLines", whole_lines, u"a\nb\n\nc",
     "1-2 text x2 from 0, 3 blank x1 from 2, 4 text x1 from 3", {1, 2, 3, 4}},
};
// clang-format on

class SampledTableRuns : public testing::TestWithParam<RunsCase> {};
TEST_P(SampledTableRuns, HoldLinesThatLookAlike) {
  DetectSettings settings;
  settings.options.comment_style = {u"#"};
  const ExactText text(GetParam().text);
  const std::shared_ptr<Strategy> strategy = GetParam().make(settings.options);
  strategy->populate_fields(text.field(), settings.num_lines);
  strategy->valuation();
  const SampledTable table = table_of(*strategy, settings);
  EXPECT_EQ(described(table.runs()), GetParam().runs);
  std::vector<std::size_t> line_numbers;
  for (std::size_t i = 0; i < table.size(); ++i) line_numbers.push_back(table.line_number(i));
  EXPECT_EQ(line_numbers, GetParam().line_numbers);
}
INSTANTIATE_TEST_SUITE_P(Table, SampledTableRuns, testing::ValuesIn(kRunsCases), ByRule());

// --- a strategy without a valuation is one column ------------------------------------------------

struct ColumnCase {
  const char* rule;
  std::u16string text;
  DatatypeCode code;
};
std::ostream& operator<<(std::ostream& out, const ColumnCase& row) { return out << row.rule; }

const ColumnCase kColumnCases[] = {
    {"TheLowestLineTells", u"1\nabc\n2024-01-02\n", DatatypeCode::date},
    {"EmptyLinesAreNotAsked", u"1\n2024-01-02\n\n\n", DatatypeCode::date},
    {"TheFirstLineIsNotAsked", u"2024-01-02\n\n", DatatypeCode::empty},
    {"OneLine", u"2024-01-02\n", DatatypeCode::empty},
    {"NoLine", u"", DatatypeCode::empty},
};

class SampledTableOfOneColumn : public testing::TestWithParam<ColumnCase> {};
TEST_P(SampledTableOfOneColumn, HasTheClassOfItsLines) {
  const DetectSettings settings;
  const ExactText text(GetParam().text);
  DelimitedStrategy strategy(settings.options, u',');
  strategy.populate_fields(text.field(), settings.num_lines);
  const SampledTable table = table_of(strategy, settings);
  EXPECT_EQ(table.classes(), std::vector<DatatypeCode>{GetParam().code});
}
INSTANTIATE_TEST_SUITE_P(Table, SampledTableOfOneColumn, testing::ValuesIn(kColumnCases), ByRule());

// --- against a plain walk ------------------------------------------------------------------------

std::size_t line_of_the_text(const Field& text, const parser::options& options, std::size_t pos) {
  const LineReaderStrategy reader(options);
  std::size_t number = 1;
  std::size_t next = reader.get_line_extent(text, 0).next;
  while (pos >= next && !ends_at(text, next)) {
    next = reader.get_line_extent(text, next).next;
    ++number;
  }
  return number;
}

// The strategy is asked for each line up to the end of its sample, and each number is counted from
// the start.
std::vector<std::string> plain_lines(const Strategy& strategy, const Field& text,
                                     const DetectSettings& settings) {
  std::vector<std::string> lines;
  std::size_t index = 0;
  std::size_t pos = 0;
  const auto has_kept = [&] { return index < strategy.lines().size(); };
  while (pos < strategy.sample().end) {
    const FieldExtent line = strategy.get_line_extent(text, pos);
    const bool is_text = has_kept() && strategy.lines()[index].data == line.field.data;
    const bool is_blank =
        find_first_not_of(line.field, 0, settings.options.whitespace) == line.field.length;
    const bool is_comment = !is_text && !(has_kept() && is_blank);
    const Kind kind = is_text ? Kind::text : is_comment ? Kind::comment : Kind::blank;
    lines.push_back(described(kind, line_of_the_text(text, settings.options, pos),
                              line_of_the_text(text, settings.options, line.next - 1)) +
                    " at " + std::to_string(index));
    if (!is_comment) ++index;
    pos = line.next;
  }
  return lines;
}

std::vector<std::string> lines_of_the_runs(const SampledTable& table) {
  std::vector<std::string> lines;
  for (const SampledTable::Run& run : table.runs()) {
    const bool is_one_each = run.last_line - run.first_line + 1 == run.count;
    EXPECT_TRUE(is_one_each || run.count == 1);
    for (std::size_t i = 0; i < run.count; ++i) {
      const std::size_t last = is_one_each ? run.first_line + i : run.last_line;
      const std::size_t index = run.first_index + (run.kind == Kind::comment ? 0 : i);
      lines.push_back(described(run.kind, run.first_line + i, last) + " at " +
                      std::to_string(index));
      if (run.kind != Kind::comment) {
        EXPECT_EQ(table.line_number(index), run.first_line + i);
      }
    }
  }
  return lines;
}

class RandomTables {
 public:
  std::u16string text() {
    std::u16string text;
    for (std::size_t left = below(30); left > 0; --left) text += kPieces[below(std::size(kPieces))];
    return text;
  }

  DetectSettings settings() {
    DetectSettings settings;
    if (below(3) == 0) settings.options.line_endings = kLineEndings[below(std::size(kLineEndings))];
    if (below(2) == 0) settings.options.comment_style = {below(2) == 0 ? u"#" : u"a"};
    if (below(2) == 0) settings.num_lines = below(6);
    if (below(3) == 0) {
      settings.options.detect_header_lines = false;
      settings.options.header_lines = below(4);
    }
    if (below(4) == 0) settings.options.whitespace = below(2) == 0 ? u"" : u" \n";
    return settings;
  }

  // Sampled, and as a rule valued.
  std::shared_ptr<Strategy> strategy(const Field& text, const DetectSettings& settings) {
    constexpr Make kMakes[] = {commas, commas_before_line_ends, blanks, widths, whole_lines};
    const std::size_t choice = below(std::size(kMakes) + 1);
    if (choice == std::size(kMakes)) {
      return detection::StrategySelector(settings.options).pick_strategy(text, settings.num_lines);
    }
    std::shared_ptr<Strategy> strategy = kMakes[choice](settings.options);
    strategy->populate_fields(text, settings.num_lines);
    if (below(8) != 0) strategy->valuation();
    return strategy;
  }

 private:
  static constexpr const char16_t* kPieces[] = {
      u"a", u"1",  u",",     u" ",      u"\t",   u"\"",   u"\n",           u"\n",    u"\r\n",
      u";", u"#x", u"a,b\n", u"1  2\n", u"\n\n", u" \n ", u"\"x\ny\",1\n", u"\uFFFF"};

  // Line endings that overlap each other, the delimiters, the blanks and the quote, or are none.
  inline static const std::vector<std::u16string> kLineEndings[] = {
      {u"\n"},      {u"\r\n"},          {u";"},    {},      {u""},  {u" \n", u"\n"},
      {u"\t\n"},    {u"\uFFFF", u"\n"}, {u"\n\n"}, {u"\""}, {u" "}, {u",\n", u"\n"},
      {u"a1", u"1"}};

  std::size_t below(std::size_t limit) { return engine_() % limit; }

  std::mt19937 engine_{20261121};
};

TEST(SampledTableProperty, TellsWhatAPlainWalkTells) {
  RandomTables random;
  for (int round = 0; round < 20'000 && !testing::Test::HasFailure(); ++round) {
    const ExactText text(random.text());
    const DetectSettings settings = random.settings();
    const std::shared_ptr<Strategy> strategy = random.strategy(text.field(), settings);
    SCOPED_TRACE("'" + readable(text.view()) + "' mode " + std::to_string(strategy->mode()));
    const std::vector<std::string> plain = plain_lines(*strategy, text.field(), settings);
    const SampledTable table = table_of(*strategy, settings);
    EXPECT_EQ(lines_of_the_runs(table), plain);
  }
}

// --- fields --------------------------------------------------------------------------------------

TEST(SampledTableFields, AreThoseOfTheLineAndEndWithIt) {
  const DetectSettings settings;
  const ExactText text(u"ab1\nc\n");
  const std::shared_ptr<Strategy> strategy = widths(settings.options);
  strategy->populate_fields(text.field(), settings.num_lines);
  strategy->valuation();
  const SampledTable table = table_of(*strategy, settings);
  EXPECT_EQ(table.texts(table.fields(0)), (std::vector<std::u16string>{u"ab", u"1"}));
  EXPECT_EQ(table.texts(table.fields(1)), (std::vector<std::u16string>{u"c", u""}));
  EXPECT_EQ(table.class_of(table.fields(0)[1]), DatatypeCode::number);
  EXPECT_EQ(table.field_count(0), 2U);
}

TEST(SampledTableFields, AreTrimmedAndUnquotedAsTexts) {
  const DetectSettings settings;
  const ExactText text(u" a ,\"b \"\"c\"\n");
  const std::shared_ptr<Strategy> strategy = commas(settings.options);
  strategy->populate_fields(text.field(), settings.num_lines);
  strategy->valuation();
  const SampledTable table = table_of(*strategy, settings);
  EXPECT_EQ(table.texts(table.fields(0)), (std::vector<std::u16string>{u"a", u"b \"c"}));
}

}  // namespace
}  // namespace textio::standalone
