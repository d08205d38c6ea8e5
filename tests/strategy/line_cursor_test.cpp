#include <vltextstream/strategy/line_cursor.hpp>

#include <cstddef>
#include <memory>
#include <string>
#include <vector>

#include <gtest/gtest.h>
#include <rapidcheck/gtest.h>

#include <vltextstream/options/parser_options.hpp>
#include <vltextstream/strategy/delimited_strategy.hpp>
#include <vltextstream/strategy/field_text.hpp>
#include <vltextstream/strategy/fixed_width_strategy.hpp>
#include <vltextstream/strategy/line_reader_strategy.hpp>
#include <vltextstream/strategy/space_aligned_strategy.hpp>
#include "support/exact_text.hpp"

namespace textio {
namespace {

using testing_support::ExactText;
using testing_support::text_of;

TEST(LineCursor, FindsLineAfterLine) {
  const parser::options options;
  const DelimitedStrategy commas(options, u',');
  const ExactText text(u"a,b\r\n\"c\nd\"\n\ne");
  const std::unique_ptr<LineCursor> cursor = commas.lines_of(text.field());
  std::vector<std::u16string> lines;
  for (std::size_t pos = 0; pos < text.size();) {
    const FieldExtent line = cursor->line_at(pos).extent;
    lines.push_back(text_of(line.field));
    pos = line.next;
  }
  EXPECT_EQ(lines, (std::vector<std::u16string>{u"a,b", u"\"c\nd\"", u"", u"e"}));
}

TEST(LineCursor, EndsWhereTheTextEnds) {
  const parser::options options;
  const LineReaderStrategy reader(options);
  const ExactText text(u"");
  const FieldExtent line = reader.lines_of(text.field())->line_at(0).extent;
  EXPECT_EQ(line.field.length, 0U);
  EXPECT_EQ(line.next, 0U);
}

TEST(LineCursor, LooksUpManyMarkers) {
  parser::options options;
  options.line_endings.clear();
  for (char16_t unit = u'A'; unit < u'A' + 40; ++unit) options.line_endings.push_back({unit, u'.'});
  const LineReaderStrategy reader(options);
  const ExactText text(u"abA.cdB.e");
  const std::unique_ptr<LineCursor> cursor = reader.lines_of(text.field());
  EXPECT_EQ(cursor->line_at(0).extent.next, 4U);
  EXPECT_EQ(cursor->line_at(4).extent.next, 8U);
  EXPECT_EQ(cursor->line_at(8).extent.next, 9U);
}

// The positions may be requested in any order.
RC_GTEST_PROP(LineCursorProperty, AgreesWithTheStrategy, ()) {
  const auto units = *rc::gen::container<std::u16string>(rc::gen::weightedElement<char16_t>(
      {{6, u'a'}, {4, u','}, {4, u' '}, {3, u'"'}, {3, u'\n'}, {1, u'\r'}, {1, u'\uFFFF'}}));
  const ExactText text(units);
  const auto places = *rc::gen::container<std::vector<std::size_t>>(
      rc::gen::inRange<std::size_t>(0, text.size() + 1));
  const parser::options options;
  const DelimitedStrategy commas(options, u',');
  const SpaceAlignedStrategy blanks(options);
  const FixedWidthStrategy widths(options, {1, 2});
  const LineReaderStrategy reader(options);
  for (const Strategy* strategy :
       std::vector<const Strategy*>{&commas, &blanks, &widths, &reader}) {
    const std::unique_ptr<LineCursor> cursor = strategy->lines_of(text.field());
    for (const std::size_t place : places) {
      const FieldExtent line = cursor->line_at(place).extent;
      const FieldExtent plain = strategy->get_line_extent(text.field(), place);
      const bool begins_there = line.field.data == plain.field.data;
      RC_ASSERT(begins_there);
      RC_ASSERT(line.field.length == plain.field.length);
      RC_ASSERT(line.next == plain.next);
    }
  }
}

}  // namespace
}  // namespace textio
