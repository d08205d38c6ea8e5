#include <vltextstream/strategy/field_text.hpp>

#include <gtest/gtest.h>

#include <cstddef>
#include <ostream>
#include <string>
#include <vector>

#include "support/cut_text.hpp"
#include "support/exact_text.hpp"
#include "support/printing.hpp"
#include "support/rule_name.hpp"

namespace textio {
namespace {

using testing_support::ExactText;
using testing_support::text_of;

TEST(EndsAt, IsTrueAtTheEndMarkAndFromTheEndOn) {
  const ExactText text(u"a\uFFFFb");
  EXPECT_FALSE(ends_at(text.field(), 0));
  EXPECT_TRUE(ends_at(text.field(), 1));
  EXPECT_FALSE(ends_at(text.field(), 2));
  EXPECT_TRUE(ends_at(text.field(), 3));
  EXPECT_TRUE(ends_at(text.field(), static_cast<std::size_t>(-1)));
}

TEST(Slice, KeepsToTheText) {
  const ExactText text(u"abc");
  EXPECT_EQ(text_of(slice(text.field(), 1, 2)), u"b");
  EXPECT_EQ(text_of(slice(text.field(), 1, 99)), u"bc");
  EXPECT_EQ(text_of(slice(text.field(), 2, 1)), u"");
  EXPECT_EQ(text_of(slice(text.field(), 99, 100)), u"");
  EXPECT_EQ(slice(text.field(), 99, 100).data, text.data() + 3);
}

TEST(FindFirstNotOf, EndsAtTheLengthWhenThereIsNone) {
  const ExactText text(u"ab \t");
  EXPECT_EQ(find_first_not_of(text.field(), 2, u" \t"), 4u);
  EXPECT_EQ(find_first_not_of(text.field(), 0, u"a"), 1u);
  EXPECT_EQ(find_first_not_of(text.field(), 0, u""), 0u);
}

}  // namespace
}  // namespace textio
