#include "tool/option_words.hpp"

#include <ostream>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "support/rule_name.hpp"
#include "tool/usage_errors.hpp"

namespace textio::tool {
namespace {

using testing_support::ByRule;
using Words = std::vector<std::string>;

struct NearCase {
  const char* rule;
  std::string typed;
  Words known;
  std::string nearest;
};
std::ostream& operator<<(std::ostream& out, const NearCase& row) { return out << row.rule; }

const Words kFlags = {"--decimal", "--delimiter", "--data-line", "--help", "-h"};

const NearCase kNear[] = {
    {"LetterReplaced", "--delimeter", kFlags, "--delimiter"},
    {"LetterMore", "--delimitter", kFlags, "--delimiter"},
    {"LetterLess", "--delmiter", kFlags, "--delimiter"},
    {"NeighboursExchanged", "--deilmiter", kFlags, "--delimiter"},
    {"OtherCase", "--Delimiter", kFlags, "--delimiter"},
    {"ThreeLettersOfALongWord", "--delamaterr", kFlags, "--delimiter"},
    {"FourLettersAreTooMany", "--dolamaterr", kFlags, ""},
    {"StartOfAWord", "casca", {"assessment", "cascade"}, "cascade"},
    {"NearlyTheStartOfAWord", "fixd", {"delimited", "fixedwidth"}, "fixedwidth"},
    {"TheWholeWordIsNearerThanAStart", "fill", {"fille", "fillers"}, "fille"},
    {"TwoLettersOfAShortWord", "hlp", {"help"}, "help"},
    {"SameFirstLetter", "fsh", {"bash", "zsh", "fish"}, "fish"},
    {"OtherFirstLetter", "selp", {"help"}, "help"},
    {"OtherWord", "frobnicate", {"help", "man"}, ""},
    {"SingleLetter", "-x", kFlags, ""},
    {"Nothing", "", kFlags, ""},
    {"HyphensAlone", "--", kFlags, ""},
    {"NoWords", "help", {}, ""},
    {"LongerThanAnyWord", std::string(1000, 'd'), kFlags, ""},
};

class Nearest : public testing::TestWithParam<NearCase> {};
TEST_P(Nearest, IsTheWordThatWasMeant) {
  EXPECT_EQ(nearest(GetParam().typed, GetParam().known), GetParam().nearest);
}
INSTANTIATE_TEST_SUITE_P(Table, Nearest, testing::ValuesIn(kNear), ByRule());

TEST(WordsOf, AreThoseOfTheOption) {
  EXPECT_EQ(words_of("--color"), (Words{"auto", "always", "never"}));
  EXPECT_EQ(words_of("--parser-type"), (Words{"delimited", "fixedwidth", "tabular"}));
  EXPECT_EQ(words_of("--is-file"), (Words{"true", "false"}));
  EXPECT_EQ(words_of("--lines"), Words());
}

TEST(PlaceAmongWords, RefusesOthers) {
  EXPECT_EQ(place_among_words("--color", "never"), 2U);
  const auto message = [](const std::string& flag, const std::string& typed) {
    try {
      place_among_words(flag, typed);
    } catch (const BadArgument& error) {
      return std::string(error.what());
    }
    return std::string("accepted");
  };
  EXPECT_EQ(message("--color", "alwys"),
            "--color: Expected auto, always or never, got 'alwys'. Do you mean always?");
  EXPECT_EQ(message("--color", "red"), "--color: Expected auto, always or never, got 'red'.");
}

TEST(EitherOf, NamesAllWords) {
  EXPECT_EQ(either_of({"keep", "ignore", "error"}), "keep, ignore or error");
  EXPECT_EQ(either_of({"true", "false"}), "true or false");
  EXPECT_EQ(either_of({"cascade"}), "cascade");
}

}  // namespace
}  // namespace textio::tool
