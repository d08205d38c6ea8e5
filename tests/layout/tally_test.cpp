#include <vltextstream/layout/tally.hpp>

#include <string>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

namespace textio::standalone {
namespace {

using Counts = std::vector<std::pair<std::u16string, std::size_t>>;

TEST(TallyTake, HasTheMostFrequentFirst) {
  Tally tally;
  for (const char16_t* text : {u"a", u"b", u"b", u"c", u"b", u"c"}) tally.add(text);
  EXPECT_EQ(tally.take(), (Counts{{u"b", 3}, {u"c", 2}, {u"a", 1}}));
}

TEST(TallyTake, OfEquallyFrequentTextsHasTheFirstFirst) {
  Tally tally;
  for (const char16_t* text : {u"z", u"a", u"", u"a", u"z"}) tally.add(text);
  EXPECT_EQ(tally.take(), (Counts{{u"z", 2}, {u"a", 2}, {u"", 1}}));
}

TEST(TallyTake, LeavesNothing) {
  Tally tally;
  tally.add(u"a");
  tally.take();
  EXPECT_EQ(tally.take(), Counts{});
  tally.add(u"a");
  EXPECT_EQ(tally.take(), (Counts{{u"a", 1}}));
}

}  // namespace
}  // namespace textio::standalone
