// A program replaces one service of the host by defining it. The library calls this date check and
// uses the stand-alone host for everything else.
#include <algorithm>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include <vltextstream/vltextstream.hpp>

namespace {
int questions = 0;
}  // namespace

namespace textio::datetime {

// Star dates: "@4711".
bool is_datetime(const Field& field) {
  ++questions;
  const char16_t* const end = field.data + field.length;
  return field.length > 1 && field.data[0] == u'@' &&
         std::all_of(field.data + 1, end, [](char16_t c) { return c >= u'0' && c <= u'9'; });
}

}  // namespace textio::datetime

namespace textio {
namespace {

TEST(OwnDatetime, IsCalledByTheLibrary) {
  questions = 0;
  const std::vector<DatatypeCode> classes =
      standalone::detect_layout(u"when;what\n@4711;2024-03-01\n@4712;2024-03-02\n").classes;
  EXPECT_GT(questions, 0);
  EXPECT_EQ(classes, (std::vector{DatatypeCode::date, DatatypeCode::text}));
}

}  // namespace
}  // namespace textio
