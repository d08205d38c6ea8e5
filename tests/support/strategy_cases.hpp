// What the tests of the four strategies share: the rows of their tables, access to the members, and
// the expectations that hold for several of them.
#pragma once

#include <cstddef>
#include <ostream>
#include <string>

#include <gtest/gtest.h>

#include <vltextstream/strategy/strategy.hpp>
#include "support/cut_text.hpp"
#include "support/exact_text.hpp"
#include "support/rule_name.hpp"
#include "support/table_strategy.hpp"

namespace textio::testing_support {

inline const Texts kDefault = {u"\r\n", u"\n", u"\r"};  // line endings

// For rows in which unusual characters end lines.
inline const std::u16string kMixed = u"a;b \t\nc";

// A strategy that gives access to the members of its base.
template <typename Base>
struct Open : Base {
  using Base::Base;
  using Strategy::number_format_;
  using Strategy::quoted_format_;
  using Strategy::space_separated_;
  using Strategy::text_format_;
  using Strategy::valuation_;
};

// The lines of a text with the default line endings.
struct LineCase {
  const char* rule;
  std::u16string text;
  Steps steps;
};
inline std::ostream& operator<<(std::ostream& out, const LineCase& row) { return out << row.rule; }

// The lines of a text.
struct EndingCase {
  const char* rule;
  Texts line_endings;
  std::u16string text;
  Steps steps;
};
inline std::ostream& operator<<(std::ostream& out, const EndingCase& row) {
  return out << row.rule;
}

inline void expect_nothing_at(Strategy& strategy, const ExactText& text, std::size_t pos) {
  const FieldExtent line = strategy.get_line_extent(text.field(), pos);
  EXPECT_EQ(line.field.length, 0U);
  EXPECT_EQ(line.next, pos);
  const FieldExtent field = strategy.get_next_field(text.field(), pos);
  EXPECT_EQ(field.field.length, 0U);
  EXPECT_EQ(field.next, pos);
}

inline void expect_nothing_from_the_end_on(Strategy& strategy, const ExactText& text) {
  const std::size_t end = text.size();
  for (const std::size_t pos : {end, end + 1, std::size_t{1000}}) {
    expect_nothing_at(strategy, text, pos);
  }
}

// Cuts a text twice.
inline void expect_the_same_cut_twice(Strategy& strategy, const ExactText& text, const Rows& rows) {
  cut_of(strategy, text);
  EXPECT_EQ(cut_of(strategy, text), rows);
  EXPECT_EQ(cut_of(strategy), rows);
}

}  // namespace textio::testing_support
