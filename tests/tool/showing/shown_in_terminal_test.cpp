// The built program as it is seen in a terminal, and in a pipe.
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "support/command.hpp"
#include "support/pseudo_terminal.hpp"
#include "support/temp_folder.hpp"

namespace textio::tool {
namespace {

using testing::EndsWith;
using testing::HasSubstr;
using testing::Not;
using testing_support::run_command;
using testing_support::run_in_terminal;
using testing_support::TempFolder;
using Words = std::vector<std::string>;

const std::string kEscape = "\x1B";
const std::string kTable = "x,y\n1,a\n2,b\n";
const std::string kPicture =
    " 1  names  x,y\n"
    " 2  data   1,a\n"
    " 3         2,b\n";

// With these, a few control characters do not make a file look binary.
std::string long_rows() {
  std::string rows;
  for (int i = 0; i < 20; ++i) rows += "4,a text that is rather long\n";
  return rows;
}

class ShownInTerminal : public testing::Test {
 protected:
  std::string vltext(const Words& arguments, const Words& environment = {"TERM=xterm"},
                     unsigned short columns = 80) const {
    return run_in_terminal(VLTEXT_PROGRAM, arguments, {columns, environment});
  }

  std::string in_pipe(const Words& arguments) const {
    return run_command(VLTEXT_PROGRAM, arguments).out;
  }

  const TempFolder folder_;
  const std::string file_ = folder_.file("t.csv", kTable);
};

TEST_F(ShownInTerminal, ThePictureFollowsTheAnswer) {
  const std::string shown = vltext({"--color", "never", file_});
  const std::string answer = in_pipe({file_});
  EXPECT_EQ(shown.substr(0, answer.size()), answer);
  EXPECT_THAT(shown, HasSubstr("\n\n" + kPicture + "\n"));
  EXPECT_THAT(shown, EndsWith("\nTo read it: vltext " + file_ + " --emit pandas\n"));
}

// As a shell takes it.
TEST_F(ShownInTerminal, ThePathOfTheNextCommandIsQuoted) {
  const auto next = [&](const std::string& name) {
    const std::string shown = vltext({folder_.file(name, kTable)});
    const std::size_t begin = shown.find("To read it: ");
    return shown.substr(begin, shown.find('\n', begin) - begin);
  };
  const std::string folder = folder_.path() + "/";
  EXPECT_EQ(next("a b.csv"), "To read it: vltext '" + folder + "a b.csv' --emit pandas");
  EXPECT_EQ(next("it's.csv"), "To read it: vltext '" + folder + "it'\\''s.csv' --emit pandas");
  EXPECT_EQ(next("\x1B[31m.csv"), "To read it: vltext FILE --emit pandas");
}

TEST_F(ShownInTerminal, InColours) {
  EXPECT_THAT(vltext({file_}),
              HasSubstr("\x1B[38;5;30m1\x1B[0m\x1B[1;38;5;161m,\x1B[0m\x1B[38;5;133ma\x1B[0m\n"));
}

TEST_F(ShownInTerminal, WithoutColoursIfItIsAskedForOrHasNone) {
  for (const Words& environment :
       {Words{"TERM=xterm", "NO_COLOR=1"}, Words{"TERM=dumb"}, Words{}}) {
    const std::string shown = vltext({file_}, environment);
    EXPECT_THAT(shown, Not(HasSubstr(kEscape)));
    EXPECT_THAT(shown, HasSubstr(kPicture));
  }
}

TEST_F(ShownInTerminal, AsWideAsTheTerminal) {
  const std::string file = folder_.file("long.csv", "x,y\n1," + std::string(500, 'a') + "\n2,b\n");
  const auto longest = [&](const Words& environment, unsigned short columns) {
    const std::string shown = vltext({file}, environment, columns);
    const std::size_t at = shown.find(" 2  data ");
    return shown.find('\n', at) - at;
  };
  // The ellipsis has three bytes and takes one place.
  EXPECT_EQ(longest({"TERM=dumb"}, 80), 82U);
  EXPECT_EQ(longest({"TERM=dumb"}, 200), 202U);
  EXPECT_EQ(longest({"TERM=dumb", "COLUMNS=40"}, 200), 42U);
  EXPECT_EQ(longest({"TERM=dumb"}, 0), 82U);
}

TEST_F(ShownInTerminal, SentencesAreBrokenBetweenWords) {
  const std::string file =
      folder_.file("note", "Dear Lena,\nthanks for your letter.\nSee you soon\n");
  EXPECT_THAT(in_pipe({file}), HasSubstr("  layout          one column, each line a cell\n"));
  EXPECT_THAT(vltext({"--color", "never", file}, {}, 40),
              HasSubstr("  layout          one column, each line\n"
                        "                  a cell\n"));
}

// So that the answer itself is on the screen.
TEST_F(ShownInTerminal, FewerColumnsAreListed) {
  std::string names = "c1";
  std::string row = "1";
  for (int i = 2; i <= 30; ++i) {
    names += ",c" + std::to_string(i);
    row += ",1";
  }
  const std::string file = folder_.file("wide.csv", names + '\n' + row + '\n' + row + '\n');
  EXPECT_THAT(in_pipe({file}), HasSubstr("\n              30  integer   c30\n"));
  EXPECT_THAT(vltext({"--color", "never", file}), HasSubstr("\n              20  integer   c20\n"
                                                            "             ...  10 more columns\n"));
}

TEST_F(ShownInTerminal, NotIfSomethingElseIsAskedFor) {
  EXPECT_EQ(vltext({"--no-picture", file_}), in_pipe({file_}));
  EXPECT_EQ(vltext({"--json", file_}), in_pipe({"--json", file_}));
  EXPECT_THAT(vltext({file_, file_}), Not(HasSubstr(kEscape)));
  EXPECT_THAT(vltext({"--emit", "pandas", file_}), Not(HasSubstr(" 2  data ")));
}

TEST_F(ShownInTerminal, NothingOfTheFileReachesTheTerminalAsAControl) {
  const std::string file = folder_.file("t",
                                        "x,y\n1,a\x1B[31m\x07\n2,b\xC2\x9B"
                                        "2J\n3,\xE2\x80\xAE"
                                        "c\n" +
                                            long_rows());
  const std::string shown = vltext({"--color", "never", file});
  EXPECT_THAT(shown, HasSubstr("  2  data   1,a\xEF\xBF\xBD[31m\xEF\xBF\xBD\n"
                               "  3         2,b\xEF\xBF\xBD"
                               "2J\n"
                               "  4         3,\xEF\xBF\xBD"
                               "c\n"));
  EXPECT_THAT(shown, Not(HasSubstr(kEscape)));
}

TEST_F(ShownInTerminal, NothingOfItInAPipeUnlessAskedFor) {
  const std::string answer = in_pipe({file_});
  EXPECT_THAT(answer, Not(HasSubstr(" 2  data ")));
  EXPECT_EQ(in_pipe({"--no-picture", file_}), answer);
  EXPECT_EQ(in_pipe({"--color", "never", file_}), answer);
  EXPECT_THAT(in_pipe({"--picture", file_}), HasSubstr("\n\n" + kPicture));
  EXPECT_THAT(in_pipe({"--color", "always", file_}), HasSubstr("\x1B[38;5;30m1\x1B[0m"));
  EXPECT_THAT(in_pipe({"--picture", file_, file_}), HasSubstr(kPicture));
}

// What the tool prints about a file that comes through a pipe.
testing_support::CommandResult piped(const std::string& file, const std::string& options) {
  return run_command("/bin/sh", {"-c", "cat " + file + " | " VLTEXT_PROGRAM " " + options + " -"});
}

// A pipe is read once, for the layout and for the picture.
TEST_F(ShownInTerminal, ThePictureOfAPipe) {
  const auto shown = piped(file_, "--picture");
  EXPECT_EQ(shown.status, 0);
  EXPECT_THAT(shown.out, EndsWith("looked at       all 3 lines\n\n" + kPicture));
}

TEST_F(ShownInTerminal, ThePictureOfAPipeKeepsTheLimitOfBytes) {
  std::string text;
  for (int i = 0; i < 1000; ++i) text += "1.5,abc\n";
  const std::string file = folder_.file("long", text);
  const auto limited = piped(file, "--lines all --max-bytes 4000 --picture");
  EXPECT_EQ(limited.status, 2);
  EXPECT_THAT(limited.err, HasSubstr("takes more than 4000 bytes"));
  EXPECT_EQ(limited.err, piped(file, "--lines all --max-bytes 4000").err);
}

}  // namespace
}  // namespace textio::tool
