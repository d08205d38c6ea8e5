#include "tool/showing/picture_choice.hpp"

#include <optional>
#include <ostream>
#include <string>

#include <gtest/gtest.h>

#include "support/rule_name.hpp"
#include "tool/usage_errors.hpp"

namespace textio::tool {
namespace {

using testing_support::ByRule;

const Surroundings kTerminal = {true, 100, "xterm-256color", "", ""};
const Surroundings kPipe = {false, 0, "xterm-256color", "", ""};

Surroundings with(Surroundings around, std::string Surroundings::*member, const char* value) {
  around.*member = value;
  return around;
}

struct ChoiceCase {
  const char* rule;
  PictureOptions typed;
  Surroundings around;
  std::size_t num_files;
  const char* shown;  // "-": none; otherwise the width, with "c" for colours
};
std::ostream& operator<<(std::ostream& out, const ChoiceCase& row) { return out << row.rule; }

const ChoiceCase kChoices[] = {
    {"Terminal", {}, kTerminal, 1, "100c"},
    {"Pipe", {}, kPipe, 1, "-"},
    {"SeveralFiles", {}, kTerminal, 2, "-"},
    {"SeveralFilesIfAsked", {.picture = true}, kTerminal, 2, "100c"},
    {"NotIfNotWanted", {.no_picture = true}, kTerminal, 1, "-"},
    {"PipeIfAsked", {.picture = true}, kPipe, 1, "80"},
    {"AlwaysColoursInAPipe", {.color = "always"}, kPipe, 1, "80c"},
    {"AlwaysColoursOfSeveralFiles", {.color = "always"}, kPipe, 2, "80c"},
    {"AlwaysColoursButNoPicture", {.color = "always", .no_picture = true}, kPipe, 1, "-"},
    {"NeverColours", {.color = "never"}, kTerminal, 1, "100"},
    {"NeverColoursInAPipe", {.color = "never"}, kPipe, 1, "-"},
    {"AutomaticColours", {.color = "auto"}, kTerminal, 1, "100c"},
    {"NoColor", {}, with(kTerminal, &Surroundings::no_color, "1"), 1, "100"},
    {"AlwaysBeatsNoColor",
     {.color = "always"},
     with(kTerminal, &Surroundings::no_color, "1"),
     1,
     "100c"},
    {"DumbTerminal", {}, with(kTerminal, &Surroundings::term, "dumb"), 1, "100"},
    {"TerminalWithoutAName", {}, with(kTerminal, &Surroundings::term, ""), 1, "100"},
    {"Columns", {}, with(kTerminal, &Surroundings::columns, "60"), 1, "60c"},
    {"ColumnsThatAreTooFew", {}, with(kTerminal, &Surroundings::columns, "19"), 1, "100c"},
    {"ColumnsThatAreNoNumber", {}, with(kTerminal, &Surroundings::columns, "60x"), 1, "100c"},
    {"WidthBeatsColumns",
     {.width = "200"},
     with(kTerminal, &Surroundings::columns, "60"),
     1,
     "200c"},
    {"NarrowTerminal", {}, {true, 7, "xterm", "", ""}, 1, "20c"},
    {"TerminalOfUnknownWidth", {}, {true, 0, "xterm", "", ""}, 1, "80c"},
};

class ChosenStyle : public testing::TestWithParam<ChoiceCase> {};
TEST_P(ChosenStyle, FollowsOptionsAndSurroundings) {
  const ChoiceCase& row = GetParam();
  const std::optional<TerminalStyle> style = chosen_style(row.typed, row.around, row.num_files);
  const std::string shown =
      style ? std::to_string(style->width) + (style->has_color ? "c" : "") : "-";
  EXPECT_EQ(shown, row.shown);
}
INSTANTIATE_TEST_SUITE_P(Table, ChosenStyle, testing::ValuesIn(kChoices), ByRule());

TEST(ChosenStyle, RefusesWhatMakesNoSense) {
  EXPECT_THROW(chosen_style({.picture = true, .no_picture = true}, kTerminal, 1), UsageError);
  EXPECT_THROW(chosen_style({.color = "red"}, kTerminal, 1), BadArgument);
  EXPECT_THROW(chosen_style({.width = "19"}, kTerminal, 1), BadArgument);
  EXPECT_THROW(chosen_style({.width = "10001"}, kTerminal, 1), BadArgument);
}

}  // namespace
}  // namespace textio::tool
