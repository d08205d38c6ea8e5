// The completions agree with the table of the options, and bash completes with them as it should.
#include "tool/conventions/completions.hpp"

#include <algorithm>
#include <ostream>
#include <set>
#include <sstream>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "support/command.hpp"
#include "support/rule_name.hpp"
#include "support/temp_folder.hpp"

#include "tool/option_flags.hpp"
#include "tool/option_words.hpp"
#include "tool/usage_errors.hpp"

namespace textio::tool {
namespace {

using testing::HasSubstr;
using testing::IsSupersetOf;
using testing_support::ByRule;
using testing_support::run_command;
using testing_support::TempFolder;
using Words = std::vector<std::string>;

// --- the table of the commands -----------------------------------------------------------------

const CommandEntry& command(const std::vector<CommandEntry>& table, const std::string& name) {
  return *std::find_if(table.begin(), table.end(),
                       [&](const CommandEntry& each) { return each.name == name; });
}

Words long_names(const CommandEntry& command) {
  Words names;
  for (const OptionEntry& option : command.options) names.push_back(option.names.back());
  return names;
}

TEST(CommandTable, HasTheOptionsOfEachCommand) {
  const std::vector<CommandEntry> table = command_table();
  EXPECT_THAT(long_names(table.front()),
              IsSupersetOf({"--help", "--version", "--json", "--explain", "--color", "--lines"}));
  EXPECT_THAT(long_names(command(table, "convert")), IsSupersetOf({"--to", "--output", "--help"}));
  EXPECT_THAT(long_names(command(table, "head")), IsSupersetOf({"--rows", "--delimiter"}));
  for (const OptionFlag& flag : option_flags()) {
    for (const char* const name : {"", "convert", "head"})
      EXPECT_THAT(long_names(command(table, name)), testing::Contains(flag_of(flag.name)));
  }
}

TEST(CommandTable, KnowsWhatOptionsTake) {
  const std::vector<CommandEntry> table = command_table();
  const auto option = [&](const std::string& of, const std::string& name) {
    const CommandEntry& entry = command(table, of);
    return *std::find_if(entry.options.begin(), entry.options.end(),
                         [&](const OptionEntry& each) { return each.names.back() == name; });
  };
  EXPECT_EQ(option("", "--version").names, (Words{"-V", "--version"}));
  EXPECT_EQ(option("", "--json").value, "");
  EXPECT_EQ(option("", "--color").words, (Words{"auto", "always", "never"}));
  EXPECT_TRUE(option("", "--explain").has_optional_value);
  EXPECT_TRUE(option("convert", "--output").takes_file());
  EXPECT_FALSE(option("convert", "--to").takes_file());
}

TEST(CommandTable, IsWhatHelpPrints) {
  const auto help = [](const Words& arguments) {
    return run_command(VLTEXT_PROGRAM, arguments).out;
  };
  EXPECT_EQ(help({"help"}), help({"--help"}));
  EXPECT_EQ(help({"help", "convert"}), help({"convert", "--help"}));
  EXPECT_EQ(help({"help", "head"}), help({"head", "--help"}));
  EXPECT_EQ(help({"help", "completions"}),
            "Usage: vltext completions SHELL\nPrint the completions for bash, zsh or fish.\n");
  EXPECT_THAT(run_command(VLTEXT_PROGRAM, {"help", "convrt"}).err,
              HasSubstr("got 'convrt'. Do you mean convert?"));
}

// --- the scripts -------------------------------------------------------------------------------

TEST(Completions, AreThoseOfTheTool) {
  for (const std::string& shell : shells()) {
    EXPECT_EQ(run_command(VLTEXT_PROGRAM, {"completions", shell}).out,
              completions(shell, command_table()));
  }
  EXPECT_THAT(run_command(VLTEXT_PROGRAM, {"completions", "fsh"}).err,
              HasSubstr("completions: Expected bash, zsh or fish, got 'fsh'. Do you mean fish?"));
  EXPECT_THAT(run_command(VLTEXT_PROGRAM, {"completions"}).err, HasSubstr("bash, zsh or fish"));
}

// The words that follow `before` in a script, up to a character that no option has.
std::set<std::string> names_in(const std::string& script, const std::string& before) {
  std::set<std::string> names;
  for (std::size_t at = script.find(before); at != script.npos; at = script.find(before, at + 1)) {
    const std::size_t begin = at + before.size();
    const std::size_t end = script.find_first_not_of("abcdefghijklmnopqrstuvwxyz-", begin);
    if (script[begin] != '-') names.insert(script.substr(begin, end - begin));
  }
  return names;
}

std::set<std::string> all_names() {
  std::set<std::string> names;
  for (const CommandEntry& command : command_table()) {
    for (const OptionEntry& option : command.options) names.insert(option.names.back().substr(2));
  }
  return names;
}

TEST(Completions, HaveTheOptionsOfTheTableAndNoOthers) {
  EXPECT_EQ(names_in(completions("fish", command_table()), " -l "), all_names());
  EXPECT_EQ(names_in(completions("zsh", command_table()), "'*--"), all_names());
}

TEST(Completions, AreScriptsOfTheirShells) {
  for (const std::string& shell : shells()) {
    if (run_command("/usr/bin/env", {shell, "-c", "true"}).status != 0) continue;
    const TempFolder folder;
    const std::string script = folder.file("script", completions(shell, command_table()));
    const auto checked = run_command("/usr/bin/env", {shell, "-n", script});
    EXPECT_EQ(checked.status, 0) << shell;
    EXPECT_EQ(checked.err, "") << shell;
  }
}

// --- bash --------------------------------------------------------------------------------------

// What bash would offer for the last word.
Words offered(const Words& typed) {
  const TempFolder folder;
  folder.file("help.csv", "");
  folder.file("two words.csv", "");
  std::string script = "cd " + folder.path_of("") + " || exit 1\n" +
                       completions("bash", command_table()) + "COMP_WORDS=(";
  for (const std::string& word : typed) script += "'" + word + "' ";
  script += ")\nCOMP_CWORD=" + std::to_string(typed.size() - 1) +
            "\n_vltext\nprintf '%s\\n' \"${COMPREPLY[@]}\"\n";
  const auto result = run_command("/usr/bin/env", {"bash"}, script);
  EXPECT_EQ(result.err, "");
  Words words;
  std::istringstream lines(result.out);
  for (std::string line; std::getline(lines, line);) {
    if (!line.empty()) words.push_back(line);
  }
  return words;
}

struct OfferCase {
  const char* rule;
  Words typed;
  Words offered;
};
std::ostream& operator<<(std::ostream& out, const OfferCase& row) { return out << row.rule; }

// Nothing offered: bash offers files of its own accord.
const OfferCase kOffers[] = {
    {"Command", {"vltext", "con"}, {"convert"}},
    {"CommandsAndFiles", {"vltext", "he"}, {"head", "help", "help.csv"}},
    {"FileWithABlank", {"vltext", "two"}, {"two words.csv"}},
    {"Option", {"vltext", "--deli"}, {"--delimiter"}},
    {"OptionAfterAFile", {"vltext", "t.csv", "--num"}, {"--num-header-lines", "--num-variables"}},
    {"OptionWithAWord", {"vltext", "--expl"}, {"--explain", "--explain=cascade"}},
    {"OptionOfACommand", {"vltext", "convert", "--rej"}, {"--rejects"}},
    {"NotTheOptionOfAnotherCommand", {"vltext", "head", "--rej"}, {}},
    {"ShortOption", {"vltext", "-V"}, {"-V"}},
    {"Words", {"vltext", "--color", "a"}, {"auto", "always"}},
    {"WordsAfterAnEqualsSign", {"vltext", "--color", "=", "n"}, {"never"}},
    {"WordsRightAfterTheEqualsSign", {"vltext", "--judge", "="}, {"assessment", "cascade"}},
    {"WordsOfTheLibrary", {"vltext", "--parser-type", "t"}, {"tabular"}},
    {"WordsOfACommand", {"vltext", "convert", "--to", "s"}, {"sqlite"}},
    {"Targets", {"vltext", "t.csv", "--emit", "pa"}, {"pandas"}},
    {"AnyNumber", {"vltext", "--lines", ""}, {}},
    {"FileAfterAnOption", {"vltext", "convert", "-o", "tw"}, {}},
    {"File", {"vltext", "--json", "tw"}, {}},
    {"Help", {"vltext", "help", "c"}, {"convert", "catalog", "completions"}},
    {"Shells", {"vltext", "completions", ""}, {"bash", "zsh", "fish"}},
};

class BashOffers : public testing::TestWithParam<OfferCase> {};
TEST_P(BashOffers, WhatFits) { EXPECT_EQ(offered(GetParam().typed), GetParam().offered); }
INSTANTIATE_TEST_SUITE_P(Table, BashOffers, testing::ValuesIn(kOffers), ByRule());

}  // namespace
}  // namespace textio::tool
