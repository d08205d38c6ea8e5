// Properties of every strategy on every text, tested on small random texts of the characters that
// the scans look for. The seed is fixed: the texts are the same in every run.

#include <gtest/gtest.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <ostream>
#include <random>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include <vltextstream/strategy/delimited_strategy.hpp>
#include <vltextstream/strategy/fixed_width_strategy.hpp>
#include <vltextstream/strategy/line_reader_strategy.hpp>
#include <vltextstream/strategy/space_aligned_strategy.hpp>
#include "support/cut_text.hpp"
#include "support/exact_text.hpp"
#include "support/printing.hpp"

namespace textio {
namespace {

using testing_support::clipped;
using testing_support::cut_of;
using testing_support::ExactText;
using testing_support::readable;
using testing_support::Rows;
using testing_support::text_of;
using testing_support::Texts;

constexpr int kTextsPerShape = 400;
constexpr std::size_t kLongestText = 20;

// -- random texts and options -------------------------------------------------------------------

class Random {
 public:
  explicit Random(std::uint32_t seed) : engine_(seed) {}

  std::size_t below(std::size_t bound) { return engine_() % bound; }

  std::u16string text(std::u16string_view alphabet) {
    std::u16string units(below(kLongestText + 1), u' ');
    for (char16_t& unit : units) unit = alphabet[below(alphabet.size())];
    return units;
  }

 private:
  std::mt19937 engine_;
};

constexpr std::u16string_view kAlphabet = u"a1, \t\"\n\r;\uFFFF";

const std::vector<Texts>& line_ending_choices() {
  static const std::vector<Texts> choices = {{u"\r\n", u"\n", u"\r"},
                                             {u"\r\n"},
                                             {u"\n"},
                                             {u";"},
                                             {},
                                             {u""},
                                             {u" "},
                                             {u"\t\n"},
                                             {u"\uFFFF"},
                                             {u"\n\r", u"\n"},
                                             {u"a;", u"\r"}};
  return choices;
}

// Half of the records have the default values.
parser::options random_options(Random& random) {
  parser::options options;
  if (random.below(2) == 0) return options;
  options.line_endings = line_ending_choices()[random.below(line_ending_choices().size())];
  if (random.below(4) == 0) options.comment_style = {u"1"};
  options.detect_header_lines = random.below(2) == 0;
  options.header_lines = random.below(3) == 0 ? SIZE_MAX : random.below(3);
  return options;
}

std::size_t random_budget(Random& random) {
  return random.below(3) == 0 ? SIZE_MAX : random.below(6);
}

// -- the strategies -----------------------------------------------------------------------------

struct Shape {
  const char* name;
  std::function<std::unique_ptr<Strategy>(const parser::options&)> make;
  std::u16string whitespace;  // makes a line empty, under default options
  bool fixed_width = false;
  std::u16string separators = {};  // characters that separate two fields
};
std::ostream& operator<<(std::ostream& out, const Shape& shape) { return out << shape.name; }

Shape delimited(const char* name, const Texts& delimiters, std::u16string whitespace,
                std::u16string separators) {
  return {name,
          [delimiters](const parser::options& options) {
            return std::make_unique<DelimitedStrategy>(options, delimiters);
          },
          std::move(whitespace), false, std::move(separators)};
}

Shape fixed(const char* name, const std::vector<unsigned long>& widths) {
  return {name,
          [widths](const parser::options& options) {
            return std::make_unique<FixedWidthStrategy>(options, widths);
          },
          u" \b\t", true};
}

std::vector<Shape> all_shapes() {
  return {
      {"LineReader",
       [](const parser::options& options) { return std::make_unique<LineReaderStrategy>(options); },
       u" \b\t"},
      {"SpaceAligned",
       [](const parser::options& options) {
         return std::make_unique<SpaceAlignedStrategy>(options);
       },
       u"\b\t", false, u" \t"},
      delimited("Comma", {u","}, u" \b\t", u","),
      delimited("Semicolon", {u";"}, u" \b\t", u";"),
      delimited("Tab", {u"\t"}, u" \b\t", u"\t"),
      delimited("Blank", {u" "}, u"\b\t", u" "),
      delimited("Quote", {u"\""}, u" \b\t", u"\""),
      delimited("EndMark", {u"\uFFFF"}, u" \b\t", u""),
      delimited("LineFeed", {u"\n"}, u" \b\t", u"\n"),
      delimited("Letters", {u"a1", u"a,"}, u" \b\t", u"a1,"),
      delimited("NoDelimiter", {}, u" \b\t", u""),
      delimited("EmptyDelimiter", {u""}, u" \b\t", u""),
      fixed("Width2", {2}),
      fixed("Widths1And3", {1, 3}),
      fixed("WidthsWithZeros", {0, 2, 0}),
      fixed("EndlessWidths", {1, 1UL << 63, ~0UL}),
  };
}

bool has_end_mark(const Field& text) { return contains(view_of(text), kEndMark); }

class EveryStrategy : public testing::TestWithParam<Shape> {
 protected:
  // Calls `check` for many random texts, each with random options and a new strategy.
  void for_random_texts(std::u16string_view alphabet, bool default_options,
                        const std::function<void(Strategy&, const ExactText&, std::size_t budget,
                                                 const parser::options&)>& check) {
    Random random(20240229);
    for (int k = 0; k < kTextsPerShape && !HasFailure(); ++k) {
      const ExactText text(random.text(alphabet));
      const parser::options options = default_options ? parser::options() : random_options(random);
      const std::size_t budget = random_budget(random);
      SCOPED_TRACE("text \"" + readable(text.view()) + "\", budget " + std::to_string(budget) +
                   ", " + std::to_string(options.line_endings.size()) + " line endings");
      check(*GetParam().make(options), text, budget, options);
    }
  }
};

// -- scans --------------------------------------------------------------------------------------

TEST_P(EveryStrategy, AdvancesFromLineToLine) {
  for_random_texts(
      kAlphabet, false,
      [](Strategy& strategy, const ExactText& text, std::size_t, const parser::options&) {
        for (std::size_t pos = 0; !ends_at(text.field(), pos);) {
          const FieldExtent line = strategy.get_line_extent(text.field(), pos);
          const auto begin = static_cast<std::size_t>(line.field.data - text.data());
          ASSERT_LE(pos, begin);
          ASSERT_LE(begin + line.field.length, text.size());
          ASSERT_LE(begin + line.field.length, line.next);
          ASSERT_LT(pos, line.next);
          pos = line.next;
        }
      });
}

TEST_P(EveryStrategy, AcceptsAnyStart) {
  for_random_texts(
      kAlphabet, false,
      [](Strategy& strategy, const ExactText& text, std::size_t, const parser::options&) {
        for (std::size_t start = 0; start <= text.size(); ++start) {
          const FieldExtent line = strategy.get_line_extent(text.field(), start);
          ASSERT_LE(start, line.next);
          const FieldExtent field = strategy.get_next_field(text.field(), start);
          ASSERT_LE(start, field.next);
          ASSERT_EQ(static_cast<std::size_t>(field.field.data - text.data()), start);
        }
      });
}

// -- sampling -----------------------------------------------------------------------------------

TEST_P(EveryStrategy, SamplesLinesThatAscendAndDoNotOverlap) {
  for_random_texts(
      kAlphabet, false,
      [](Strategy& strategy, const ExactText& text, std::size_t budget, const parser::options&) {
        const std::vector<Field> lines = strategy.populate_fields(text.field(), budget);
        ASSERT_LE(lines.size(), text.size() + 1);
        std::size_t end = 0;
        for (const Field& line : lines) {
          if (line.length == 0) continue;
          const auto begin = static_cast<std::size_t>(line.data - text.data());
          ASSERT_LE(end, begin);
          end = begin + line.length;
          ASSERT_LE(end, text.size());
        }
      });
}

// The lines of a sample, one by one: blank lines become empty and do not count; comments are
// dropped.
Texts lines_one_by_one(const Strategy& strategy, const ExactText& text, std::size_t budget,
                       const parser::options& options, std::u16string_view whitespace) {
  std::size_t target = budget;
  if (!options.detect_header_lines) {
    target = options.header_lines > SIZE_MAX - budget ? SIZE_MAX : budget + options.header_lines;
  }
  Texts lines;
  std::size_t pos = 0;
  for (std::size_t counted = 0; counted < target && !ends_at(text.field(), pos);) {
    const FieldExtent line = strategy.get_line_extent(text.field(), pos);
    pos = line.next;
    const std::u16string raw = text_of(line.field);
    const std::size_t first = raw.find_first_not_of(whitespace);
    if (first == raw.npos) {
      lines.emplace_back();
    } else if (options.comment_style.empty() || raw[first] != options.comment_style[0][0]) {
      lines.push_back(raw);
      ++counted;
    }
  }
  return lines;
}

TEST_P(EveryStrategy, SamplesTheLinesFoundOneByOne) {
  for_random_texts(kAlphabet, false,
                   [](Strategy& strategy, const ExactText& text, std::size_t budget,
                      const parser::options& options) {
                     const Texts expected =
                         lines_one_by_one(strategy, text, budget, options, GetParam().whitespace);
                     Texts lines;
                     for (const Field& line : strategy.populate_fields(text.field(), budget)) {
                       lines.push_back(text_of(line));
                     }
                     ASSERT_EQ(lines, expected);
                   });
}

TEST_P(EveryStrategy, SamplesTheSameTwice) {
  for_random_texts(kAlphabet, false,
                   [](Strategy& strategy, const ExactText& text, std::size_t budget,
                      const parser::options& options) {
                     const std::vector<Field> once = strategy.populate_fields(text.field(), budget);
                     const std::vector<Field> twice =
                         strategy.populate_fields(text.field(), budget);
                     ASSERT_EQ(once.size(), twice.size());
                     for (std::size_t k = 0; k < once.size(); ++k) {
                       ASSERT_EQ(once[k].data, twice[k].data);
                       ASSERT_EQ(once[k].length, twice[k].length);
                     }
                     // The column of a fixed-width strategy continues from cut to cut; a new one
                     // starts at the first column.
                     const auto fresh = GetParam().make(options);
                     fresh->populate_fields(text.field(), budget);
                     const Rows rows = cut_of(strategy);
                     ASSERT_EQ(cut_of(*fresh), rows);
                     if (!GetParam().fixed_width) {
                       ASSERT_EQ(cut_of(strategy), rows);
                     }
                   });
}

// -- cutting ------------------------------------------------------------------------------------

TEST_P(EveryStrategy, CountsTheFieldsOfEachLine) {
  for_random_texts(
      kAlphabet, false,
      [](Strategy& strategy, const ExactText& text, std::size_t budget, const parser::options&) {
        const std::vector<Field> lines = strategy.populate_fields(text.field(), budget);
        const FieldArray array = strategy.get_fields_from_lines();
        ASSERT_EQ(array.counts.size(), lines.size());
        ASSERT_EQ(array.fields.size(), array.counts.empty() ? 0 : array.counts.back());
        std::size_t before = 0;
        for (std::size_t k = 0; k < lines.size(); ++k) {
          if (lines[k].length == 0) {
            ASSERT_EQ(array.counts[k], before);
          } else {
            ASSERT_GT(array.counts[k], before);
          }
          before = array.counts[k];
        }
      });
}

TEST_P(EveryStrategy, CutsLinesIntoFieldsInsideThemInOrder) {
  for_random_texts(
      kAlphabet, false,
      [](Strategy& strategy, const ExactText& text, std::size_t budget, const parser::options&) {
        const std::vector<Field> lines = strategy.populate_fields(text.field(), budget);
        const FieldArray array = strategy.get_fields_from_lines();
        std::size_t i = 0;
        for (std::size_t k = 0; k < lines.size(); ++k) {
          std::size_t end = 0;
          for (; i < array.counts[k]; ++i) {
            const Field& field = array.fields[i];
            const auto begin = static_cast<std::size_t>(field.data - lines[k].data);
            ASSERT_LE(end, begin);
            ASSERT_LE(begin, lines[k].length);
            const std::size_t room = lines[k].length - begin;
            if (!GetParam().fixed_width) {
              ASSERT_LE(field.length, room);
            }
            end = begin + std::min(field.length, room);
          }
        }
      });
}

// No text of a line is lost: only separators are between two fields, and the last field ends where
// the line does. An end mark in the line may end the cut early.
TEST_P(EveryStrategy, LosesNothingButSeparators) {
  for_random_texts(
      kAlphabet, false,
      [](Strategy& strategy, const ExactText& text, std::size_t budget, const parser::options&) {
        const std::vector<Field> lines = strategy.populate_fields(text.field(), budget);
        const FieldArray array = strategy.get_fields_from_lines();
        std::size_t i = 0;
        for (std::size_t k = 0; k < lines.size(); ++k) {
          const Field& line = lines[k];
          if (has_end_mark(line)) {
            i = array.counts[k];
            continue;
          }
          std::size_t end = 0;
          for (std::size_t in_line = 0; i < array.counts[k]; ++i, ++in_line) {
            const auto begin = static_cast<std::size_t>(array.fields[i].data - line.data);
            const std::u16string between = text_of(slice(line, end, begin));
            ASSERT_EQ(between.find_first_not_of(GetParam().separators), between.npos);
            if (in_line > 0 && !GetParam().fixed_width) {
              ASSERT_NE(between, u"");
            }
            end = begin + clipped(array.fields[i], line).size();
          }
          ASSERT_EQ(end, line.length);
        }
      });
}

INSTANTIATE_TEST_SUITE_P(RandomTexts, EveryStrategy, testing::ValuesIn(all_shapes()),
                         [](const auto& row) { return std::string(row.param.name); });

// -- a second way to the same cut ---------------------------------------------------------------

// The lines of a text without quotes and end marks, found by a simple loop.
Texts plain_lines(const std::u16string& text) {
  Texts lines;
  std::u16string line;
  for (std::size_t i = 0; i < text.size(); ++i) {
    if (text[i] != u'\n' && text[i] != u'\r') {
      line.push_back(text[i]);
      continue;
    }
    if (text[i] == u'\r' && i + 1 < text.size() && text[i + 1] == u'\n') ++i;
    lines.push_back(line);
    line.clear();
  }
  if (!line.empty()) lines.push_back(line);
  return lines;
}

Texts split_at(const std::u16string& line, char16_t separator) {
  Texts fields(1);
  for (const char16_t unit : line) {
    if (unit == separator) {
      fields.emplace_back();
    } else {
      fields.back().push_back(unit);
    }
  }
  return fields;
}

// Fields between runs of blanks. Blanks at the end of the line start an empty field.
Texts split_at_blanks(const std::u16string& line) {
  Texts fields(1);
  for (std::size_t i = 0; i < line.size(); ++i) {
    const bool blank = line[i] == u' ' || line[i] == u'\t';
    const bool in_run = blank && i > 0 && (line[i - 1] == u' ' || line[i - 1] == u'\t');
    if (!blank) {
      fields.back().push_back(line[i]);
    } else if (!in_run) {
      fields.emplace_back();
    }
  }
  return fields;
}

constexpr std::u16string_view kPlainAlphabet = u"a1, \t\n\r;";
constexpr int kPlainTexts = 1000;

void expect_cuts(Strategy& strategy, const std::u16string& units, const Rows& expected) {
  const ExactText text(units);
  EXPECT_EQ(cut_of(strategy, text), expected) << readable(units);
}

// Calls `check` with random texts of the plain alphabet.
void for_plain_texts(std::uint32_t seed, const std::function<void(const std::u16string&)>& check) {
  Random random(seed);
  for (int k = 0; k < kPlainTexts && !testing::Test::HasFailure(); ++k) {
    check(random.text(kPlainAlphabet));
  }
}

bool is_blank(const std::u16string& line) { return line.find_first_not_of(u" \t") == line.npos; }

TEST(SecondRoute, CommasCutLikeSimpleSplitting) {
  const parser::options options;
  for_plain_texts(7, [&](const std::u16string& units) {
    Rows expected;
    for (const std::u16string& line : plain_lines(units)) {
      expected.push_back(is_blank(line) ? Texts{} : split_at(line, u','));
    }
    DelimitedStrategy strategy(options, u',');
    expect_cuts(strategy, units, expected);
  });
}

TEST(SecondRoute, BlanksCutLikeSimpleSplitting) {
  const parser::options options;
  for_plain_texts(8, [&](const std::u16string& units) {
    Rows expected;
    for (const std::u16string& line : plain_lines(units)) {
      const std::size_t first = line.find_first_not_of(u" \t");
      expected.push_back(first == line.npos ? Texts{} : split_at_blanks(line.substr(first)));
    }
    SpaceAlignedStrategy strategy(options);
    expect_cuts(strategy, units, expected);
  });
}

TEST(SecondRoute, LinesAreThoseOfASimpleLoop) {
  const parser::options options;
  for_plain_texts(9, [&](const std::u16string& units) {
    Rows expected;
    for (const std::u16string& line : plain_lines(units)) {
      expected.push_back(is_blank(line) ? Texts{} : Texts{line});
    }
    LineReaderStrategy strategy(options);
    expect_cuts(strategy, units, expected);
  });
}

}  // namespace
}  // namespace textio
