#include <vltextstream/assessment/unit_scan.hpp>

#include <algorithm>
#include <cstddef>
#include <string>

#include <gtest/gtest.h>

#include "support/exact_text.hpp"

namespace textio::assessment {
namespace {

using testing_support::ExactText;

// What a loop finds.
std::size_t found_by_loop(std::u16string_view text, std::u16string_view units, std::size_t from,
                          std::size_t end) {
  const std::size_t at = text.find_first_of(units, from);
  return from >= end ? end : std::min(at, end);
}

// Texts around the borders of blocks and steps, with one unit at each place; the other units differ from the wanted
// ones in one bit, or in the highest.
TEST(UnitScan, FindsAUnitAtEachPlace) {
  for (const std::size_t size : {1U, 2U, 15U, 16U, 17U, 63U, 64U, 65U, 127U, 128U, 129U, 200U}) {
    for (std::size_t place = 0; place < size; ++place) {
      std::u16string units;
      while (units.size() < size) units += u"-\u802C\u002E\u8022"[units.size() % 4];
      units[place] = place % 2 == 0 ? u',' : u'"';
      const ExactText text(units);
      UnitScan scan(text.view(), u',', u'"');
      EXPECT_EQ(scan.next(0, size), place);
      EXPECT_EQ(scan.next(place, size), place);
      EXPECT_EQ(scan.next(place + 1, size), size);
      EXPECT_EQ(scan.next(0, place), place);
    }
  }
}

TEST(UnitScan, AgreesWithALoopFromAndToEachPlace) {
  const std::u16string units = std::u16string(60, u'x') + u",,x,x,\"xx,x" +
                               std::u16string(120, u'y') + u"\"," + std::u16string(20, u'z');
  const ExactText text(units);
  UnitScan both(text.view(), u',', u'"');
  UnitScan comma(text.view(), u',');
  for (std::size_t end = 0; end <= units.size(); ++end) {
    for (std::size_t from = 0; from <= units.size(); ++from) {
      ASSERT_EQ(both.next(from, end), found_by_loop(units, u",\"", from, end))
          << from << ' ' << end;
      ASSERT_EQ(comma.next(from, end), found_by_loop(units, u",", from, end)) << from << ' ' << end;
    }
  }
}

TEST(UnitScan, OfAnEmptyText) {
  UnitScan scan(u"", u',');
  EXPECT_EQ(scan.next(0, 0), 0U);
}

}  // namespace
}  // namespace textio::assessment
