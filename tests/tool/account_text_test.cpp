#include "tool/account_text.hpp"

#include <string>

#include <gtest/gtest.h>

namespace textio::tool {
namespace {

using reading::LineFate;
using reading::Oddity;

TEST(AccountText, SaysWhatBecameOfEveryLine) {
  Converted converted;
  converted.names = {"date", "level"};
  converted.account.add(LineFate::preamble, 6, 60);
  converted.account.add(LineFate::names, 1, 10);
  converted.account.add(LineFate::comment, 4, 40);
  converted.account.add(LineFate::data, 2991, 30'000);
  converted.account.num_rows = 2991;
  converted.account.add({Oddity::misfit, 77, 2, "n.v."});
  converted.account.add({Oddity::misfit, 1078, 1, "x"});
  EXPECT_EQ(account_text(converted),
            "3,002 lines: 2,991 rows, 1 of names, 6 preamble, 4 comments; 2 cells did not fit "
            "(first: line 77, column level, \"n.v.\")");
}

TEST(AccountText, TellsLinesFromRowsWhereTheyDiffer) {
  Converted converted;
  converted.account.add(LineFate::data, 5, 50);
  converted.account.num_rows = 3;
  EXPECT_EQ(account_text(converted), "5 lines: 5 of data (3 rows)");
}

TEST(AccountText, CountsOne) {
  Converted converted;
  converted.account.add(LineFate::data, 1, 5);
  converted.account.num_rows = 1;
  converted.account.add({Oddity::long_row, 1, 0, "a,b"});
  converted.num_widened = 1;
  EXPECT_EQ(account_text(converted),
            "1 line: 1 row; 1 row was long (first: line 1, \"a,b\"); 1 column was widened");
}

TEST(AccountText, SaysNothingOfAnEmptyFileButSo) { EXPECT_EQ(account_text({}), "0 lines: 0 rows"); }

// Every fate has words, so the numbers add up to the lines.
TEST(AccountText, LeavesNoLineOut) {
  Converted converted;
  for (std::size_t i = 0; i < reading::kLineFates; ++i) {
    converted.account.add(static_cast<LineFate>(i), 1, 1);
  }
  converted.account.num_rows = 1;
  const std::string text = account_text(converted);
  std::size_t parts = 1;
  for (const char c : text) parts += c == ',' ? 1U : 0U;
  EXPECT_EQ(parts, reading::kLineFates) << text;
}

TEST(PlaceText, IsPrintable) {
  EXPECT_EQ(place_text({Oddity::misfit, 1, 1, "a\x1B"}, {"b\x1B"}),
            "line 1, column b\xEF\xBF\xBD, \"a\xEF\xBF\xBD\"");
  EXPECT_EQ(place_text({Oddity::misfit, 1234, 3, ""}, {"b"}), "line 1,234, column 3, \"\"");
}

}  // namespace
}  // namespace textio::tool
