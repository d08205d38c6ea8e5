#include <vltextstream/scoring/datatype_code.hpp>

#include <gtest/gtest.h>

namespace textio {
namespace {

TEST(DatatypeCodeInWords, AreTheEnumerators) {
  EXPECT_EQ(to_string(DatatypeCode::number), "number");
  EXPECT_EQ(to_string(DatatypeCode::text), "text");
  EXPECT_EQ(to_string(DatatypeCode::datetime), "datetime");
  EXPECT_EQ(to_string(DatatypeCode::empty), "empty");
  EXPECT_EQ(to_string(DatatypeCode::date), "date");
  EXPECT_EQ(to_string(DatatypeCode::duration), "duration");
}

TEST(DatatypeCodeInWords, AreEmptyInTheGaps) {
  for (const int gap : {0, 4, 6, 9}) EXPECT_EQ(to_string(static_cast<DatatypeCode>(gap)), "");
}

}  // namespace
}  // namespace textio
