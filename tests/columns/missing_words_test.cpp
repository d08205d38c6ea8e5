#include <vltextstream/columns/missing_words.hpp>

#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "support/printing.hpp"

namespace textio::columns {
namespace {

using testing_support::readable;

bool is_missing(const std::u16string& text) {
  return is_missing_word(text, assessment::kind_of(text));
}

TEST(IsMissingWord, KnowsTheUsualWordsInAnyCase) {
  for (const std::u16string word :
       {u"NA",      u"N/A",     u"n/a",     u"null",  u"NULL",   u"None", u"nan",
        u"NaN",     u"-",       u"--",      u"...",   u".",      u"?",    u"\\N",
        u"#N/A",    u"#DIV/0!", u"#VALUE!", u"NaT",   u"(null)", u"k.A.", u"n.d.",
        u"missing", u"\u2013",  u"\u2014",  u"\u2026"}) {
    EXPECT_TRUE(is_missing(word)) << readable(word);
  }
}

TEST(IsMissingWord, KnowsNoValues) {
  for (const std::u16string word :
       {u"inf", u"-Inf", u"0", u"-1", u"-999", u"no", u"x", u"nano", u"NAN1", u"+", u"*", u""}) {
    EXPECT_FALSE(is_missing(word)) << readable(word);
  }
}

TEST(MissingTallyWords, AreCountedAsWritten) {
  MissingTally tally;
  for (const std::u16string_view word : {u"NA", u"-", u"na", u"NA"}) tally.add(word);
  const std::vector<MissingWord> expected = {{u"NA", 2}, {u"-", 1}, {u"na", 1}};
  EXPECT_EQ(tally.take(), expected);
}

TEST(MissingTallyWords, AreThirtyTwoAtMost) {
  MissingTally tally;
  for (char16_t unit = u'A'; unit < u'A' + 40; ++unit) tally.add(std::u16string(1, unit));
  tally.add(u"A");
  EXPECT_EQ(tally.words().size(), 32U);
  EXPECT_EQ(tally.words().front(), (MissingWord{u"A", 2}));
}

}  // namespace
}  // namespace textio::columns
