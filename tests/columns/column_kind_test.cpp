#include <vltextstream/columns/column_kind.hpp>

#include <set>
#include <string_view>

#include <gtest/gtest.h>

namespace textio::columns {
namespace {

TEST(ColumnKindName, HasHyphens) {
  EXPECT_EQ(to_string(ColumnKind::empty), "empty");
  EXPECT_EQ(to_string(ColumnKind::date_time), "date-time");
  EXPECT_EQ(to_string(ColumnKind::epoch_milliseconds), "epoch-milliseconds");
  EXPECT_EQ(to_string(ColumnKind::text), "text");
}

TEST(ColumnKindName, DiffersForEachKind) {
  std::set<std::string_view> names;
  for (std::size_t i = 0; i < kColumnKinds; ++i) {
    names.insert(to_string(static_cast<ColumnKind>(i)));
  }
  EXPECT_EQ(names.size(), kColumnKinds);
}

TEST(ColumnKindGroups, HaveTheirMembersAlone) {
  const std::set<ColumnKind> numbers = {ColumnKind::integer, ColumnKind::decimal,
                                        ColumnKind::scientific};
  const std::set<ColumnKind> texts = {ColumnKind::category, ColumnKind::text};
  for (std::size_t i = 0; i < kColumnKinds; ++i) {
    const auto kind = static_cast<ColumnKind>(i);
    EXPECT_EQ(is_plain_number(kind), numbers.count(kind) > 0) << to_string(kind);
    EXPECT_EQ(is_text(kind), texts.count(kind) > 0) << to_string(kind);
  }
}

}  // namespace
}  // namespace textio::columns
