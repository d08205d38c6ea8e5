#include "tool/conventions/manual_page.hpp"

#include <ostream>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "support/command.hpp"
#include "support/rule_name.hpp"

namespace textio::tool {
namespace {

using testing::HasSubstr;
using testing::StartsWith;
using testing_support::ByRule;
using testing_support::run_command;

struct RoffCase {
  const char* rule;
  std::string text;
  std::string roff;
};
std::ostream& operator<<(std::ostream& out, const RoffCase& row) { return out << row.rule; }

const RoffCase kRoff[] = {
    {"Words", "plain words", "plain words"},
    {"Hyphens", "--lines", "\\-\\-lines"},
    {"Backslash", "\\t", "\\et"},
    {"DotAtTheStart", ".csv and .tsv", "\\&.csv and .tsv"},
    {"QuoteAtTheStart", "'", "\\&\\(aq"},
    {"DotAfterALineEnding", "a\n.so b", "a\n\\&.so b"},
    {"Marks", "\"^~\"", "\\(dq\\(ha\\(ti\\(dq"},
};

class InRoff : public testing::TestWithParam<RoffCase> {};
TEST_P(InRoff, MeansTheSame) { EXPECT_EQ(in_roff(GetParam().text), GetParam().roff); }
INSTANTIATE_TEST_SUITE_P(Table, InRoff, testing::ValuesIn(kRoff), ByRule());

TEST(ManualPage, IsThatOfTheTool) {
  const auto printed = run_command(VLTEXT_PROGRAM, {"man"});
  EXPECT_EQ(printed.status, 0);
  EXPECT_EQ(printed.out, manual_page(command_table()));
  EXPECT_THAT(printed.out, StartsWith(".TH VLTEXT 1 "));
  EXPECT_THAT(printed.out, HasSubstr("\n.SH \"EXIT STATUS\"\n.PP\nExits with 0, with 1 when"));
}

TEST(ManualPage, HasEveryOption) {
  const std::string page = manual_page(command_table());
  for (const CommandEntry& command : command_table()) {
    for (const OptionEntry& option : command.options) {
      for (const std::string& name : option.names)
        EXPECT_THAT(page, HasSubstr("\\fB" + in_roff(name) + "\\fR"));
    }
  }
}

// An unknown request or escape, or an open font, would be a warning.
TEST(ManualPage, HasNoMistakes) {
  const std::string page = manual_page(command_table());
  const auto checked = run_command("/usr/bin/env", {"groff", "-man", "-Tutf8", "-ww", "-z"}, page);
  EXPECT_EQ(checked.status, 0);
  EXPECT_EQ(checked.err, "");
  const auto shown = run_command("/usr/bin/env", {"groff", "-man", "-Tascii", "-P-cbou"}, page);
  EXPECT_THAT(shown.out, HasSubstr("-V, --version"));
  EXPECT_THAT(shown.out, HasSubstr("vltext convert data.csv -o t.db"));
}

}  // namespace
}  // namespace textio::tool
