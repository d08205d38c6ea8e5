#include "tool/plain_table.hpp"

#include <string>

#include <gtest/gtest.h>

namespace textio::tool {
namespace {

TEST(PlainTable, AlignsItsColumns) {
  PlainTable table({Side::left, Side::right, Side::left});
  table.add({"place", "level", "note"});
  table.add_line();
  table.add({"Altenau", "12.8", ""});
  table.add({"\xE6\xBC\xA2\xE5\xAD\x97", "7"});
  EXPECT_EQ(table.print(),
            "place    level  note\n"
            "-------  -----  ----\n"
            "Altenau   12.8\n"
            "\xE6\xBC\xA2\xE5\xAD\x97         7\n");
}

TEST(PlainTable, CutsAndDefusesCells) {
  PlainTable table({Side::left});
  table.add({std::string(40, 'x')});
  table.add({std::string(41, 'y')});
  table.add({"a\x1B[31m\nb"});
  EXPECT_EQ(table.print(), std::string(40, 'x') + '\n' + std::string(37, 'y') +
                               "...\na\xEF\xBF\xBD[31m\xEF\xBF\xBD"
                               "b\n");
}

// A character of two places is not cut in half: 18 of them take 36.
TEST(PlainTable, CutsBetweenWideCharacters) {
  std::string wide;
  for (int i = 0; i < 30; ++i) wide += "\xE6\xBC\xA2";
  PlainTable table({Side::left});
  table.add({wide});
  EXPECT_EQ(table.print(), wide.substr(0, 18 * 3) + "...\n");
}

TEST(PlainTable, MayHaveNoColumns) {
  PlainTable table({});
  table.add({});
  EXPECT_EQ(table.print(), "\n");
}

}  // namespace
}  // namespace textio::tool
