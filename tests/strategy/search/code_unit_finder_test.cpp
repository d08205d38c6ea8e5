#include <vltextstream/strategy/search/code_unit_finder.hpp>

#include <cstddef>
#include <ostream>
#include <string>
#include <vector>

#include <gtest/gtest.h>
#include <rapidcheck/gtest.h>

#include "support/exact_text.hpp"
#include "support/rule_name.hpp"

namespace textio {
namespace {

using testing_support::ByRule;
using testing_support::ExactText;

constexpr std::size_t kBlock = CodeUnitFinder::kBlockUnits;

// Searches with each kernel of this machine in turn, and restores the previous one.
class ForEachKernel {
 public:
  template <typename Check>
  explicit ForEachKernel(Check check) : before_(use_search_kernel(search_kernels().front())) {
    for (const SearchKernel& kernel : search_kernels()) {
      const testing::ScopedTrace trace(__FILE__, __LINE__, kernel.name);
      use_search_kernel(kernel);
      check();
    }
  }
  ~ForEachKernel() { use_search_kernel(before_); }

 private:
  const SearchKernel& before_;
};

std::vector<std::size_t> all_places(const ExactText& text, std::u16string_view set) {
  std::vector<std::size_t> places;
  const CodeUnitSet units(set);
  CodeUnitFinder finder(text.field(), units);
  for (std::size_t i = finder.next(0); i < text.field().length; i = finder.next(i + 1)) {
    places.push_back(i);
  }
  return places;
}

// A text of this many code units "a", with "," at some positions.
std::u16string commas_at(const std::vector<std::size_t>& places, std::size_t length) {
  std::u16string text(length, u'a');
  for (const std::size_t place : places) text[place] = u',';
  return text;
}

// --- positions of the code units ---------------------------------------------------------------

struct PlaceCase {
  const char* rule;
  std::size_t length;
  std::vector<std::size_t> places;
};
std::ostream& operator<<(std::ostream& out, const PlaceCase& row) { return out << row.rule; }

const PlaceCase kPlaceCases[] = {
    {"NoUnit", 0, {}},
    {"OneUnit", 1, {0}},
    {"Nowhere", 3 * kBlock + 1, {}},
    {"EndsOfABlock", kBlock, {0, kBlock - 1}},
    {"BothSidesOfABorder", 2 * kBlock, {kBlock - 1, kBlock}},
    {"LastUnitOfAnIncompleteBlock", kBlock + 7, {kBlock + 6}},
    {"FirstUnitOfAnIncompleteBlock", kBlock + 1, {kBlock}},
    {"AfterEmptyBlocks", 9 * kBlock, {0, 8 * kBlock + 5}},
    {"AfterAThousandEmptyBlocks", 1001 * kBlock + 1, {1000 * kBlock + 63, 1001 * kBlock}},
    {"BordersOfTheBlocksLookedAtAtOnce",
     24 * kBlock,
     {0, kBlock - 1, kBlock, 3 * kBlock - 1, 3 * kBlock, 7 * kBlock - 1, 7 * kBlock,
      15 * kBlock - 1, 15 * kBlock, 23 * kBlock - 1, 23 * kBlock, 24 * kBlock - 1}},
    {"EmptyBlocksBetweenThoseLookedAt", 8 * kBlock, {0, kBlock, 3 * kBlock, 6 * kBlock + 63}},
    {"EndAmongTheBlocksLookedAtAtOnce", 5 * kBlock + 9, {0, kBlock, 3 * kBlock, 5 * kBlock + 8}},
    {"EachHalfOfEachHalf", kBlock, {3, 8, 15, 16, 31, 32, 47, 48}},
};

class CodeUnitFinderPlaces : public testing::TestWithParam<PlaceCase> {};
TEST_P(CodeUnitFinderPlaces, AreFoundByEveryKernel) {
  const ExactText text(commas_at(GetParam().places, GetParam().length));
  ForEachKernel([&] {
    EXPECT_EQ(all_places(text, u","), GetParam().places);
    EXPECT_EQ(all_places(text, u"\n,"), GetParam().places);
    EXPECT_EQ(all_places(text, u"\n\r,"), GetParam().places);
    EXPECT_EQ(all_places(text, u"\n\r,;"), GetParam().places);
    EXPECT_EQ(all_places(text, u"\n\r,;\t"), GetParam().places);
    EXPECT_EQ(all_places(text, u"\n\r,;\t|:\u2028"), GetParam().places);
    EXPECT_EQ(all_places(text, u"\n\r,;\t|:\u2028\uFFFF"), GetParam().places);
  });
}
INSTANTIATE_TEST_SUITE_P(Table, CodeUnitFinderPlaces, testing::ValuesIn(kPlaceCases), ByRule());

// --- what is not a match -------------------------------------------------------------------------

// Both bytes of a code unit are compared: U+0A2C and U+2C0A have the bytes of a line feed and a
// comma.
TEST(CodeUnitFinder, ComparesWholeCodeUnits) {
  const ExactText text(u"\u0A2C\u2C0A\u0A0A\u2C2C");
  ForEachKernel([&] { EXPECT_EQ(all_places(text, u"\n,"), std::vector<std::size_t>{}); });
}

TEST(CodeUnitFinder, FindsTheSmallestAndTheLargestCodeUnit) {
  const ExactText text(std::u16string(u"a\0b\uFFFF", 4));
  ForEachKernel([&] {
    EXPECT_EQ(all_places(text, std::u16string_view(u"\0", 1)), std::vector<std::size_t>{1});
    EXPECT_EQ(all_places(text, u"\uFFFF"), std::vector<std::size_t>{3});
  });
}

// Code units after the text would be zeros.
TEST(CodeUnitFinder, FindsNoZerosAfterTheText) {
  const ExactText text(std::u16string(kBlock + 3, u'a'));
  ForEachKernel([&] {
    EXPECT_EQ(all_places(text, std::u16string_view(u"\0", 1)), std::vector<std::size_t>{});
  });
}

TEST(CodeUnitFinder, FindsNothingForAnEmptySet) {
  const ExactText text(u"a,b");
  const CodeUnitSet none;
  CodeUnitFinder finder(text.field(), none);
  EXPECT_EQ(finder.next(0), 3U);
}

// Also after a search that started in the middle of an earlier block.
TEST(CodeUnitFinder, GoesBack) {
  const ExactText text(commas_at({3, 20, kBlock + 1}, 2 * kBlock));
  ForEachKernel([&] {
    const CodeUnitSet comma(u",");
    CodeUnitFinder finder(text.field(), comma);
    EXPECT_EQ(finder.next(10), 20U);
    EXPECT_EQ(finder.next(0), 3U);
    EXPECT_EQ(finder.next(21), kBlock + 1);
    EXPECT_EQ(finder.next(4), 20U);
  });
}

TEST(CodeUnitFinder, GivesTheLengthAtAndPastTheEnd) {
  const ExactText text(u"a,b,");
  const CodeUnitSet comma(u",");
  CodeUnitFinder finder(text.field(), comma);
  EXPECT_EQ(finder.next(4), 4U);
  EXPECT_EQ(finder.next(5), 4U);
  const CodeUnitSet digits(u"0123456789");
  CodeUnitFinder of_many(text.field(), digits);
  EXPECT_EQ(of_many.next(4), 4U);
  EXPECT_EQ(of_many.next(5), 4U);
}

TEST(CodeUnitFinder, ContinuesWithAnotherText) {
  const CodeUnitSet comma(u",");
  const ExactText first(commas_at({3, 70}, 2 * kBlock));
  const ExactText second(commas_at({5}, 6));
  ForEachKernel([&] {
    CodeUnitFinder finder(first.field(), comma);
    EXPECT_EQ(finder.next(4), 70U);
    finder.move_to(second.field());
    EXPECT_EQ(finder.next(0), 5U);
    EXPECT_EQ(finder.next(6), 6U);
  });
}

// --- kernels and order ---------------------------------------------------------------------------

TEST(SearchKernels, EndWithThePlainLoop) {
  ASSERT_FALSE(search_kernels().empty());
  EXPECT_STREQ(search_kernels().back().name, "plain");
}

TEST(SearchKernels, AreUsedUntilReplaced) {
  const SearchKernel& before = use_search_kernel(search_kernels().back());
  EXPECT_EQ(&use_search_kernel(search_kernels().front()), &search_kernels().back());
  EXPECT_EQ(&use_search_kernel(before), &search_kernels().front());
}

std::size_t plain_next(const std::u16string& text, std::u16string_view set, std::size_t i) {
  return std::min(text.find_first_of(set, i), text.size());
}

// Positions may be requested in any order, over a few blocks and over more than are searched at
// once.
RC_GTEST_PROP(CodeUnitFinderProperty, AgreesWithAPlainSearch, ()) {
  const auto set = *rc::gen::container<std::u16string>(rc::gen::inRange<char16_t>(u'a', u'h'));
  const auto length = *rc::gen::inRange<std::size_t>(0, 40 * kBlock);
  const auto text = *rc::gen::container<std::u16string>(
      length, rc::gen::weightedOneOf<char16_t>(
                  {{200, rc::gen::just(u'x')}, {1, rc::gen::inRange<char16_t>(u'a', u'h')}}));
  const auto places =
      *rc::gen::container<std::vector<std::size_t>>(rc::gen::inRange<std::size_t>(0, length + 1));
  const ExactText exact(text);
  ForEachKernel([&] {
    const CodeUnitSet units(set);
    CodeUnitFinder finder(exact.field(), units);
    for (const std::size_t i : places) RC_ASSERT(finder.next(i) == plain_next(text, set, i));
  });
}

}  // namespace
}  // namespace textio
