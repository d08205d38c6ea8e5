#include <vltextstream/reading/missing_cells.hpp>

#include <string>

#include <gtest/gtest.h>

namespace textio::reading {
namespace {

TEST(MissingCellsHas, ComparesWholeWords) {
  const MissingCells missing({u"NA", u"-999", u"\u2013", u"", std::u16string(64, u'x')});
  EXPECT_TRUE(missing.has(u"NA"));
  EXPECT_TRUE(missing.has(u"-999"));
  EXPECT_TRUE(missing.has(u"\u2013"));
  EXPECT_TRUE(missing.has(std::u16string(64, u'x')));
  EXPECT_FALSE(missing.has(u"na"));
  EXPECT_FALSE(missing.has(u"NB"));
  EXPECT_FALSE(missing.has(u"N"));
  EXPECT_FALSE(missing.has(u"-9999"));
  EXPECT_FALSE(missing.has(u"999"));
  EXPECT_FALSE(missing.has(std::u16string(128, u'x')));  // of the same length by modulo 64
  EXPECT_FALSE(missing.has(std::u16string(1, 0x2013 % 128)));
}

TEST(MissingCellsHas, IsFalseWithoutWords) {
  const MissingCells missing({});
  EXPECT_FALSE(missing.has(u"NA"));
}

}  // namespace
}  // namespace textio::reading
