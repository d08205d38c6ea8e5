// The table reader and the plain reference, over tables at random; and what must hold of every reading, over tables,
// over bytes with a layout made at random, and over what the detection makes of them.
#include <cstdint>
#include <random>
#include <string>

#include <gtest/gtest.h>
#include <rapidcheck.h>

#include "differential/reading_comparison.hpp"
#include "support/printing.hpp"

namespace textio::differential {
namespace {

using testing_support::readable;

// The choices that follow from a number.
class Choices {
 public:
  explicit Choices(std::uint64_t seed) : random_(seed) {}
  Choose choose() {
    return [this](std::size_t bound) { return static_cast<std::size_t>(random_() % bound); };
  }

 private:
  std::mt19937_64 random_;
};

void check(const char* what, const std::function<std::string(const Choose&)>& difference) {
  const bool holds = rc::check(what, [&](std::uint64_t seed) {
    Choices choices(seed);
    const std::string found = difference(choices.choose());
    if (!found.empty()) RC_FAIL(found);
  });
  EXPECT_TRUE(holds);
}

TEST(ReadingProperty, RowsAndFatesAreThoseOfTheReference) {
  check("a table is read as the reference reads it", [](const Choose& choose) {
    const RandomTable table = random_table(choose);
    for (const std::size_t window : {256U, 1000U, 1'048'576U}) {
      const std::string found = difference_from_reference(table, window);
      if (!found.empty()) return found + "\n" + readable(table.text);
    }
    return std::string();
  });
}

TEST(ReadingProperty, ATableIsAccountedFor) {
  check("every line of a table has a fate", [](const Choose& choose) {
    const RandomTable table = random_table(choose);
    return difference_in_reading(table.bytes, &table.layout, {random_settings(choose), true});
  });
}

TEST(ReadingProperty, AnyBytesAreAccountedFor) {
  check("every line of any bytes has a fate", [](const Choose& choose) {
    std::string bytes(choose(256), '\0');
    for (char& byte : bytes) byte = static_cast<char>(choose(256));
    const standalone::Layout layout = random_layout(choose);
    return difference_in_reading(bytes, &layout, {random_settings(choose), false});
  });
}

TEST(ReadingProperty, ADetectedTableIsAccountedFor) {
  check("every line of a detected table has a fate", [](const Choose& choose) {
    const RandomTable table = random_table(choose);
    return difference_in_reading(table.bytes, nullptr, {random_settings(choose), false});
  });
}

// The comparison finds what differs.
TEST(ReadingComparison, NoticesAnotherTextAndAnotherLayout) {
  RandomTable table;
  table.text = u"a,b\n1,2\n";
  table.bytes = "a,b\n1,2\n";
  table.layout.encoding = "UTF-8";
  table.layout.mode = standalone::LayoutMode::delimited;
  table.layout.confidence = 1.0;
  table.layout.delimiters = {u","};
  table.layout.num_variables = 2;
  EXPECT_EQ(difference_from_reference(table, 256), "");
  RandomTable other = table;
  other.text = u"a,b\n1,3\n";
  EXPECT_EQ(difference_from_reference(other, 256), "row 2: 2 '1' '2'\nexpected: 2 '1' '3'");
  other.text = u"a,b\n1,2\n\n";
  EXPECT_EQ(difference_from_reference(other, 256), "fate of line 3: nothing\nexpected: blank");
}

}  // namespace
}  // namespace textio::differential
