// An advance over a file allocates once, for the second of two buffers that take turns. After a
// long look-ahead both buffers are replaced by ones of the normal size.
#include <cstddef>
#include <limits>
#include <ostream>
#include <string>

#include <gtest/gtest.h>

#include <vltextstream/source/file_text_source.hpp>
#include <vltextstream/source/text_stream.hpp>
#include "support/allocation_counter.hpp"
#include "support/rule_name.hpp"
#include "support/temp_file.hpp"

namespace textio {
namespace {

using testing_support::allocated_bytes_of_this_thread;
using testing_support::allocations_are_counted;
using testing_support::allocations_of_this_thread;
using testing_support::ByRule;
using testing_support::TempFile;

constexpr std::size_t kBufferUnits = TextStream::kBufferUnits;
constexpr std::size_t kFileUnits = 24 * kBufferUnits;

// One buffer; a string has one more code unit for its end.
constexpr std::size_t kBufferBytes = (kBufferUnits + 1) * sizeof(char16_t);

struct Cost {
  std::size_t allocations = 0;
  std::size_t bytes = 0;
};

template <typename Call>
Cost cost_of(Call call) {
  const std::size_t allocations = allocations_of_this_thread();
  const std::size_t bytes = allocated_bytes_of_this_thread();
  call();
  return {allocations_of_this_thread() - allocations, allocated_bytes_of_this_thread() - bytes};
}

class StreamOverAFile {
 public:
  StreamOverAFile() { source.init_stream(file.path(), "ISO-8859-1"); }

  TempFile file{std::string(kFileUnits, 'x')};
  FileTextSource source;
};

struct StepCase {
  const char* rule;
  std::size_t look_ahead;  // first
  std::size_t first;       // the first advance
  std::size_t step;        // the further ones, to the end of the file
  std::size_t buffers;     // that all advances allocate
};
std::ostream& operator<<(std::ostream& out, const StepCase& row) { return out << row.rule; }

const StepCase kStepCases[] = {
    {"OfOneBlock", 0, kBufferUnits, kBufferUnits, 1},
    {"OfLessThanABlock", 0, kBufferUnits - 1, kBufferUnits - 1, 1},
    {"OfMoreThanABlock", 0, kBufferUnits + 1, kBufferUnits + 1, 1},
    {"OfSeveralBlocks", 0, 3 * kBufferUnits, 3 * kBufferUnits, 1},
    {"OfLines", 0, kBufferUnits - 100, 100, 1},
    {"OfOneBlockAfterALongLookAhead", 599'999, 786'432, kBufferUnits, 2},
    {"OfLinesAfterALongLookAhead", 599'999, 786'332, 100, 2},
    {"OfOneBlockAfterALookAheadOfMegabytes", 2'000'000, 2'228'224, kBufferUnits, 2},
};

class StreamAllocations : public testing::TestWithParam<StepCase> {};

TEST_P(StreamAllocations, DoNotGrowWithTheNumberOfSteps) {
  StreamOverAFile opened;
  TextStream stream(&opened.source);
  EXPECT_EQ(stream.at(GetParam().look_ahead), u'x');
  std::size_t steps = 1;
  const Cost cost = cost_of([&] {
    stream.advance(GetParam().first);
    for (; stream.at(0) == u'x'; ++steps) stream.advance(GetParam().step);
  });
  EXPECT_GE(steps, 7U);
  EXPECT_EQ(cost.allocations, allocations_are_counted() ? GetParam().buffers : 0U);
  EXPECT_LE(cost.bytes, GetParam().buffers * kBufferBytes);
}

INSTANTIATE_TEST_SUITE_P(Table, StreamAllocations, testing::ValuesIn(kStepCases), ByRule());

// A buffer that is not yet too big is kept: the second one is as large.
TEST(StreamAllocationsOfABigBuffer, AreOneBufferOfItsSize) {
  StreamOverAFile opened;
  TextStream stream(&opened.source);
  EXPECT_EQ(stream.at(299'999), u'x');  // 524,288 code units are loaded
  const Cost first = cost_of([&] { stream.advance(524'288); });
  EXPECT_LE(first.allocations, 1U);
  EXPECT_LE(first.bytes, (524'288U + 1) * sizeof(char16_t));
  const Cost second = cost_of([&] { stream.advance(524'288); });
  EXPECT_EQ(second.allocations, 0U);
}

TEST(StreamAllocationsBeyondTheEnd, AreNoneWhenAllTextIsLoaded) {
  const TempFile file(std::string(1'000, 'x'));
  FileTextSource source;
  source.init_stream(file.path(), "ISO-8859-1");
  TextStream stream(&source);
  EXPECT_EQ(cost_of([&] { stream.advance(1'001); }).allocations, 0U);
  EXPECT_EQ(stream.at(0), TextStream::kEnd);
}

TEST(StreamAllocationsBeyondTheEnd, AreOneBufferAtMost) {
  StreamOverAFile opened;
  TextStream stream(&opened.source);
  const Cost cost = cost_of([&] { stream.advance(std::numeric_limits<unsigned long>::max()); });
  EXPECT_LE(cost.allocations, 1U);
  EXPECT_LE(cost.bytes, kBufferBytes);
  EXPECT_EQ(stream.at(0), TextStream::kEnd);
}

}  // namespace
}  // namespace textio
