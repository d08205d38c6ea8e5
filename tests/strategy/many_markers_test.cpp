// Many or long markers: a scan over a text finds the same as single steps, and nothing about a text
// is kept from one call to the next.
#include <gtest/gtest.h>

#include <cstddef>
#include <memory>
#include <ostream>
#include <string>
#include <vector>

#include <vltextstream/strategy/delimited_strategy.hpp>
#include <vltextstream/strategy/field_text.hpp>
#include <vltextstream/strategy/fixed_width_strategy.hpp>
#include <vltextstream/strategy/line_reader_strategy.hpp>
#include <vltextstream/strategy/space_aligned_strategy.hpp>
#include "support/cut_text.hpp"
#include "support/exact_text.hpp"
#include "support/rule_name.hpp"

namespace textio {
namespace {

using testing_support::ByRule;
using testing_support::cut_of;
using testing_support::ExactText;
using testing_support::field_steps;
using testing_support::line_steps;
using testing_support::Rows;
using testing_support::Step;
using testing_support::step_of;
using testing_support::Steps;
using testing_support::text_of;
using testing_support::Texts;

// 64 markers that begin with `first` and differ in the rest; the last one is `first` and '='.
Texts many_markers(char16_t first) {
  Texts markers;
  for (char16_t k = 0; k < 63; ++k) {
    markers.push_back({first, static_cast<char16_t>(u'\u0100' + k)});
  }
  markers.push_back({first, u'='});
  return markers;
}

using MakeStrategy = std::unique_ptr<Strategy> (*)(const parser::options& options);

struct KindCase {
  const char* rule;
  MakeStrategy make;
};
std::ostream& operator<<(std::ostream& out, const KindCase& row) { return out << row.rule; }

const KindCase kKindCases[] = {
    {"Delimited",
     [](const parser::options& options) -> std::unique_ptr<Strategy> {
       return std::make_unique<DelimitedStrategy>(options, many_markers(u'a'));
     }},
    {"DelimitedByOneCharacter",
     [](const parser::options& options) -> std::unique_ptr<Strategy> {
       return std::make_unique<DelimitedStrategy>(options, u'a');
     }},
    {"SpaceAligned",
     [](const parser::options& options) -> std::unique_ptr<Strategy> {
       return std::make_unique<SpaceAlignedStrategy>(options);
     }},
    {"FixedWidth",
     [](const parser::options& options) -> std::unique_ptr<Strategy> {
       return std::make_unique<FixedWidthStrategy>(options,
                                                   std::vector<unsigned long>{31});  // 13 columns
     }},
    {"LineReader",
     [](const parser::options& options) -> std::unique_ptr<Strategy> {
       return std::make_unique<LineReaderStrategy>(options);
     }},
};

class ManyMarkers : public testing::TestWithParam<KindCase> {
 protected:
  ManyMarkers() { options_.line_endings = many_markers(u'n'); }

  std::unique_ptr<Strategy> make() const { return GetParam().make(options_); }

  parser::options options_;
};

// 403 code units; nearly all of them begin a partial match of a marker.
std::u16string hostile_line() {
  std::u16string half;
  for (int i = 0; i < 25; ++i) half += u"aann a a";
  return half + u"a=" + half + u"x";
}

std::u16string hostile_text() {
  std::u16string text;
  for (int i = 0; i < 10; ++i) text += hostile_line() + u"n=";
  return text;
}

TEST_P(ManyMarkers, GiveTheSameLinesWithACursor) {
  const ExactText text(hostile_text());
  const std::unique_ptr<Strategy> strategy = make();
  const Steps plain = line_steps(*strategy, text);
  EXPECT_EQ(plain.size(), 10u);
  const std::unique_ptr<LineCursor> lines = strategy->lines_of(text.field());
  Steps walked;
  for (std::size_t pos = 0; !ends_at(text.field(), pos); pos = walked.back().next) {
    walked.push_back(step_of(lines->line_at(pos).extent));
  }
  EXPECT_EQ(walked, plain);
}

TEST_P(ManyMarkers, GiveTheSameFieldsInOneCut) {
  const ExactText line(hostile_line());
  Texts plain;
  for (const Step& field : field_steps(*make(), line)) plain.push_back(field.found);
  std::vector<Field> cut;
  make()->cut_line(line.field(), cut);
  Texts texts;
  for (const Field& field : cut) texts.push_back(text_of(slice(field, 0, field.length)));
  EXPECT_EQ(texts, plain);
}

TEST_P(ManyMarkers, GiveTheSameCutOfASample) {
  const ExactText text(hostile_text());
  const ExactText line(hostile_line());
  Texts fields;
  for (const Step& field : field_steps(*make(), line)) fields.push_back(field.found);
  const std::unique_ptr<Strategy> strategy = make();
  EXPECT_EQ(cut_of(*strategy, text), Rows(10, fields));
}

// The text differs on each call but has the same address.
TEST_P(ManyMarkers, FollowATextThatChanges) {
  std::u16string text = hostile_text();
  const Field field(text.data(), text.size());
  const std::unique_ptr<Strategy> strategy = make();
  strategy->populate_fields(field, 1000);
  strategy->get_fields_from_lines();
  const Step before = step_of(strategy->get_line_extent(field, 0));
  text[0] = u'n';
  text[1] = u'=';
  const Step after = step_of(strategy->get_line_extent(field, 0));
  EXPECT_EQ(before.next, 405u);
  EXPECT_EQ(after, (Step{u"", 2}));
  text[0] = u'a';
  text[1] = u'a';
  EXPECT_EQ(step_of(strategy->get_line_extent(field, 0)), before);
}

INSTANTIATE_TEST_SUITE_P(Kinds, ManyMarkers, testing::ValuesIn(kKindCases), ByRule());

// A delimiter that extends past its line does not match, although the text contains it.
TEST(ManyDelimiters, FitIntoTheirLine) {
  Texts delimiters = many_markers(u'a');
  delimiters.push_back(u"x\ny");
  delimiters.push_back(u"x");
  std::u16string text;
  for (int i = 0; i < 50; ++i) text += u"aaaax\nyaaa\n";
  const ExactText exact(text);
  parser::options options;
  options.line_endings = {u"\n"};
  DelimitedStrategy strategy(options, delimiters);
  EXPECT_EQ(strategy.populate_fields(exact.field(), 1000).size(), 50u);
  std::vector<Field> fields;
  strategy.cut_line(slice(exact.field(), 0, 5), fields);
  ASSERT_EQ(fields.size(), 2u);  // "aaaa", and the empty field after the "x"
  EXPECT_EQ(fields[0].length, 4u);
  EXPECT_EQ(fields[1].length, 0u);
}

TEST(ManyDelimiters, FieldsFollowATextThatChanges) {
  std::u16string line = std::u16string(500, u'a');
  const Field field(line.data(), line.size());
  const parser::options options;
  DelimitedStrategy strategy(options, many_markers(u'a'));
  EXPECT_EQ(strategy.get_next_field(field, 0).next, 500u);
  line[100] = u'=';
  EXPECT_EQ(strategy.get_next_field(field, 0).next, 101u);
  line[50] = u'=';
  EXPECT_EQ(strategy.get_next_field(field, 0).next, 51u);
}

}  // namespace
}  // namespace textio
