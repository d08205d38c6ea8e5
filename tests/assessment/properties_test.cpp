// What holds for the verdict over any text.
#include <vltextstream/assessment/verdict.hpp>

#include <cmath>
#include <cstddef>
#include <set>
#include <string>
#include <string_view>
#include <vector>

#include <gtest/gtest.h>
#include <rapidcheck/gtest.h>

#include <vltextstream/assessment/cuts.hpp>

#include "assessment/shown.hpp"
#include "support/exact_text.hpp"
#include "support/printing.hpp"

namespace textio::assessment {
namespace {

using testing_support::ExactText;
using testing_support::kAllLines;
using testing_support::readable;
using testing_support::shown;

// --- random texts ----------------------------------------------------------------------------

// Single units, or lines of a table of which a few units are replaced.
std::u16string random_units() {
  return *rc::gen::container<std::u16string>(rc::gen::weightedElement<char16_t>(
      {{4, u'a'},  {2, u'b'}, {4, u'1'},  {2, u'2'}, {4, u','},  {2, u';'},     {2, u'|'},
       {1, u':'},  {1, u'@'}, {1, u'#'},  {2, u'-'}, {1, u'.'},  {1, u'('},     {1, u'\\'},
       {1, u'\t'}, {4, u'"'}, {1, u'\''}, {4, u' '}, {6, u'\n'}, {1, u'\u00A7'}}));
}

std::u16string random_table() {
  const std::u16string separator =
      *rc::gen::elementOf(std::vector<std::u16string>{u",", u";", u"\t", u" ", u"  ", u"|", u"||"});
  const std::vector<std::u16string> cells = {
      u"1",        u"12.5",  u"ab",         u"",    u"a b", u"\"x\"", u"\"y",
      u"\"p\nq\"", u"10:30", u"2020-01-02", u"a,b", u"# c", u"---"};
  const auto columns = *rc::gen::inRange<std::size_t>(1, 5);
  const auto rows = *rc::gen::inRange<std::size_t>(1, 12);
  std::u16string text;
  for (std::size_t row = 0; row < rows; ++row) {
    const auto odd = *rc::gen::inRange<std::size_t>(0, 8);
    const std::size_t width = odd == 0 ? columns + 1 : columns;
    for (std::size_t column = 0; column < width; ++column) {
      if (column > 0) text += separator;
      text += *rc::gen::elementOf(cells);
    }
    text += u'\n';
  }
  return text;
}

// Fields of fixed width, or a few columns and text; both with a few odd lines.
std::u16string random_records() {
  const bool is_dense = *rc::gen::arbitrary<bool>();
  const auto rows = *rc::gen::inRange<std::size_t>(8, 24);
  const std::vector<std::u16string> tails = {u"ready", u"out of memory", u"job 7 is done", u""};
  std::u16string text;
  for (std::size_t row = 0; row < rows; ++row) {
    const auto odd = *rc::gen::inRange<std::size_t>(0, 20);
    const auto number = *rc::gen::inRange<char16_t>(u'0', u':');
    if (odd == 0) {
      text += u"odd";
    } else if (is_dense) {
      text += std::u16string(4, number) + (odd < 9 ? u"MILLER  " : u"LEE     ") + u"0099X";
    } else {
      text += std::u16string(u"2024-05-0") + number + u" 10:15 INFO ";
      text += *rc::gen::elementOf(tails);
    }
    text += u'\n';
  }
  return text;
}

std::u16string random_text() {
  switch (*rc::gen::inRange(0, 3)) {
    case 0:
      return random_units();
    case 1:
      return random_table();
    default:
      return random_records();
  }
}
std::size_t random_count() {
  return *rc::gen::elementOf(std::vector<std::size_t>{1, 2, 3, 5, 100, kAllLines});
}

std::u16string with_two_units(std::u16string_view text) {
  std::u16string out;
  for (const char16_t unit : text) {
    if (unit == u'\n') out += u'\r';
    out += unit;
  }
  return out;
}

// --- probabilities ---------------------------------------------------------------------------

TEST(VerdictProperty, ProbabilitiesSumToOne) {
  EXPECT_TRUE(rc::check([] {
    const ExactText text(random_text());
    const Verdict verdict = judge(text.view(), random_count());
    if (verdict.hypotheses.empty()) return;
    double sum = 0;
    double same = 0;
    for (const Hypothesis& each : verdict.hypotheses) {
      RC_ASSERT(std::isfinite(each.score));
      RC_ASSERT(each.probability >= 0);
      RC_ASSERT(each.probability <= 1);
      sum += each.probability;
      if (is_same_answer(verdict, each, verdict.winner())) same += each.probability;
    }
    RC_ASSERT(std::abs(sum - 1) < 1e-9);
    RC_ASSERT(std::abs(same - verdict.confidence) < 1e-9);
    RC_ASSERT(verdict.names.probability >= 0);
    RC_ASSERT(verdict.names.probability <= 1);
  }));
}

// No other answer is more probable than the winner or the one before it, and all together have what the
// winner leaves.
TEST(VerdictProperty, RivalsHaveTheRest) {
  EXPECT_TRUE(rc::check([] {
    const ExactText text(random_text());
    const Verdict verdict = judge(text.view(), random_count());
    if (verdict.hypotheses.empty()) return;
    double sum = verdict.confidence;
    double last = verdict.confidence + 1e-9;
    for (const Rival& rival : rivals_of(verdict, verdict.hypotheses.size())) {
      RC_ASSERT(rival.probability <= last);
      const Hypothesis& hypothesis = verdict.hypotheses[rival.hypothesis];
      RC_ASSERT(!is_same_answer(verdict, hypothesis, verdict.winner()));
      last = rival.probability;
      sum += rival.probability;
    }
    RC_ASSERT(std::abs(sum - 1) < 1e-9);
  }));
}

// --- a table that grows ----------------------------------------------------------------------

std::u16string random_cell(int kind) {
  const auto number = [](int from, int to) {
    const std::string digits = std::to_string(*rc::gen::inRange(from, to));
    return std::u16string(digits.begin(), digits.end());
  };
  const std::u16string kWords[] = {u"north", u"Old Mill", u"quay", u"Upper Bridge", u"lock"};
  switch (kind) {
    case 0:
      return number(0, 100'000);
    case 1:
      return number(-99, 100) + u'.' + number(0, 1000);
    case 2:
      return u"2024-" + number(10, 13) + u'-' + number(10, 29);
    case 3:
      return number(10, 24) + u':' + number(10, 60);
    default:
      return kWords[*rc::gen::inRange(0, 5)];
  }
}

TEST(VerdictProperty, ARegularRecordMoreLeavesNoDoubt) {
  EXPECT_TRUE(rc::check([] {
    const char16_t separator = *rc::gen::element(u',', u';', u'\t', u'|');
    auto kinds = *rc::gen::container<std::vector<int>>(*rc::gen::inRange<std::size_t>(2, 7),
                                                       rc::gen::inRange(0, 5));
    if (separator == u',') kinds.push_back(4);  // numbers alone may have decimal commas
    const auto record = [&] {
      std::u16string line;
      for (const int kind : kinds) {
        if (!line.empty()) line += separator;
        line += random_cell(kind);
      }
      return line + u'\n';
    };
    std::u16string text;
    for (int rows = *rc::gen::inRange(2, 30); rows > 0; --rows) text += record();
    const ExactText shorter(text);
    const ExactText longer(text + record());
    const Verdict before = judge(shorter.view(), 100);
    const Verdict after = judge(longer.view(), 100);
    const Reading& reading = before.cut_of(before.winner()).reading;
    if (before.confidence < 0.5 || reading.delimiter != std::u16string(1, separator)) return;
    RC_ASSERT(after.cut_of(after.winner()).reading.delimiter == reading.delimiter);
    RC_ASSERT(after.winner().table.columns == before.winner().table.columns);
    RC_ASSERT(after.confidence >= 0.5);
  }));
}

// --- the same text again ---------------------------------------------------------------------

void assert_same_tables(const Verdict& a, const Verdict& b) {
  RC_ASSERT(a.lines.size() == b.lines.size());
  RC_ASSERT(a.hypotheses.size() == b.hypotheses.size());
  for (std::size_t i = 0; i < a.hypotheses.size(); ++i) {
    const TableFrame& x = a.hypotheses[i].table;
    const TableFrame& y = b.hypotheses[i].table;
    RC_ASSERT(a.cut_of(a.hypotheses[i]).reading == b.cut_of(b.hypotheses[i]).reading);
    RC_ASSERT(x.columns == y.columns);
    RC_ASSERT(x.first == y.first);
    RC_ASSERT(x.end == y.end);
  }
}

void assert_same(const Verdict& a, const Verdict& b) {
  assert_same_tables(a, b);
  if (a.hypotheses.empty()) return;
  RC_ASSERT(a.best == b.best);
  RC_ASSERT(a.winner().table.data == b.winner().table.data);
  RC_ASSERT(std::abs(a.confidence - b.confidence) < 1e-9);
  for (std::size_t i = 0; i < a.hypotheses.size(); ++i) {
    RC_ASSERT(std::abs(a.hypotheses[i].probability - b.hypotheses[i].probability) < 1e-9);
  }
  RC_ASSERT(a.names.line == b.names.line);
}

TEST(VerdictProperty, IsTheSameForTheSameText) {
  EXPECT_TRUE(rc::check([] {
    const std::u16string text = random_text();
    const std::size_t count = random_count();
    const ExactText first(text);
    const ExactText second(text);
    const Verdict a = judge(first.view(), count);
    const Verdict b = judge(second.view(), count);
    assert_same(a, b);
    RC_ASSERT(a.names.texts == b.names.texts);
    RC_ASSERT(a.names.amounts == b.names.amounts);
  }));
}

// Such cells are longer with longer line endings, and there are limits on the length of names.
bool has_line_endings_in_cells(const Verdict& verdict) {
  for (const Cut& cut : verdict.cuts) {
    for (std::size_t i = 0; i < cut.records.size(); ++i) {
      if (cut.records[i].num_lines > 1) return true;
    }
  }
  return false;
}

TEST(VerdictProperty, IsTheSameForLineEndingsOfTwoUnits) {
  EXPECT_TRUE(rc::check([] {
    const std::u16string text = random_text();
    const std::size_t count = random_count();
    const ExactText first(text);
    const ExactText second(with_two_units(text));
    RC_LOG() << readable(text) << " of " << count;
    const Verdict a = judge(first.view(), count);
    const Verdict b = judge(second.view(), count);
    if (has_line_endings_in_cells(a)) {
      assert_same_tables(a, b);
    } else {
      assert_same(a, b);
    }
  }));
}

// --- cuts ------------------------------------------------------------------------------------

// Which lines of a cut belong to no record although they have text.
std::set<std::size_t> lost_lines(const SampledLines& lines, const Records& records) {
  std::set<std::size_t> lost;
  for (std::size_t k = 0; k < lines.size(); ++k) {
    if (!is_blank(lines.view(k))) lost.insert(k);
  }
  for (std::size_t i = 0; i < records.size(); ++i) {
    for (std::size_t k = 0; k < records[i].num_lines; ++k) lost.erase(records[i].line + k);
  }
  return lost;
}

TEST(CutProperty, CellsLieInTheirLines) {
  EXPECT_TRUE(rc::check([] {
    const ExactText text(random_text());
    const SampledLines lines = sample_lines(text.view(), random_count());
    for (const Reading& reading : find_readings(lines)) {
      const Records records = cut(lines, reading);
      std::size_t next_line = 0;
      for (std::size_t i = 0; i < records.size(); ++i) {
        const Record& record = records[i];
        RC_ASSERT(record.num_lines >= 1U);
        RC_ASSERT(record.line >= next_line);
        next_line = record.line + record.num_lines;
        RC_ASSERT(next_line <= lines.size());
        RC_ASSERT(!records.cells(i).empty());
        std::size_t pos = lines[record.line].begin;
        const bool ascends = reading.form != Form::gaps;  // empty cells there are at the line's end
        for (const Cell& cell : records.cells(i)) {
          RC_ASSERT(cell.begin >= pos);
          RC_ASSERT(cell.begin <= cell.end);
          RC_ASSERT(cell.end <= lines[next_line - 1].end);
          if (ascends) pos = cell.end;
        }
      }
    }
  }));
}

TEST(CutProperty, NoLineWithTextIsLost) {
  EXPECT_TRUE(rc::check([] {
    const ExactText text(random_text());
    const SampledLines lines = sample_lines(text.view(), random_count());
    for (const Reading& reading : find_readings(lines)) {
      const Records records = cut(lines, reading);
      if (reading.form == Form::gaps && records.empty()) continue;  // there are no columns
      const bool leaves_rules = reading.is_aligned() || reading.form == Form::framed;
      const std::size_t end = records.empty() ? 0
                                              : records[records.size() - 1].line +
                                                    records[records.size() - 1].num_lines;
      for (const std::size_t line : lost_lines(lines, records)) {
        const bool is_left_out = leaves_rules && is_rule(lines.view(line));
        const bool is_open = reading.quote != 0 && lines.has_more() && line >= end;
        RC_ASSERT(is_left_out || is_open);
      }
    }
  }));
}

// Separators, quotes and the blanks around these are all that lies between the cells of a record.
TEST(CutProperty, DelimitedCellsAreJoinedBySeparators) {
  EXPECT_TRUE(rc::check([] {
    const ExactText text(random_text());
    const SampledLines lines = sample_lines(text.view(), random_count());
    for (const Reading& reading : find_readings(lines)) {
      if (reading.form != Form::delimited || reading.quote != 0) continue;
      const Records records = cut(lines, reading);
      for (std::size_t i = 0; i < records.size(); ++i) {
        std::u16string joined;
        for (const Cell& cell : records.cells(i)) {
          if (!joined.empty() || &cell != &records.cells(i)[0]) joined += reading.delimiter;
          joined += records.view(cell);
        }
        RC_ASSERT(joined == std::u16string(lines.view(records[i].line)));
      }
    }
  }));
}

}  // namespace
}  // namespace textio::assessment
