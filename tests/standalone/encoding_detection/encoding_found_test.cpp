#include <vltextstream/standalone/encoding_detection/encoding_found.hpp>

#include <gtest/gtest.h>

namespace textio::standalone {
namespace {

TEST(EncodingFoundInWords, SayWhereTheNameCameFrom) {
  EXPECT_EQ(to_string(EncodingFound::given), "given");
  EXPECT_EQ(to_string(EncodingFound::byte_order_mark), "byte-order mark");
  EXPECT_EQ(to_string(EncodingFound::valid_utf8), "valid UTF-8");
  EXPECT_EQ(to_string(EncodingFound::zero_bytes), "zero bytes");
  EXPECT_EQ(to_string(EncodingFound::escape_sequences), "escape sequences");
  EXPECT_EQ(to_string(EncodingFound::statistics), "statistics");
  EXPECT_EQ(to_string(EncodingFound::fallback), "fallback");
  EXPECT_EQ(to_string(EncodingFound::none), "none");
  EXPECT_EQ(to_string(static_cast<EncodingFound>(8)), "");
}

}  // namespace
}  // namespace textio::standalone
