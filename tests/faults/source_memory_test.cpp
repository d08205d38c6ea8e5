// Sources and streams that run out of memory: while a file is opened, while a buffer grows, and
// while the window advances.
#include <algorithm>
#include <cstddef>
#include <memory>
#include <ostream>
#include <stdexcept>
#include <string>
#include <string_view>
#include <utility>

#include <gtest/gtest.h>

#include <vltextstream/detection/fixed_stream.hpp>
#include <vltextstream/source/file_text_source.hpp>
#include <vltextstream/source/memory_text_source.hpp>
#include <vltextstream/source/text_stream.hpp>
#include <vltextstream/standalone/decoding/utf_text.hpp>
#include "faults/failing_memory.hpp"
#include "support/exact_text.hpp"
#include "support/faulty_device.hpp"
#include "support/printing.hpp"
#include "support/rule_name.hpp"
#include "support/temp_folder.hpp"

namespace textio {
namespace {

using testing_support::allocations_can_fail;
using testing_support::Attempt;
using testing_support::ByRule;
using testing_support::ExactText;
using testing_support::expect_to_survive_failing_memory;
using testing_support::FaultKind;
using testing_support::FaultyDevice;
using testing_support::live_blocks;
using testing_support::meets_failure;
using testing_support::readable;
using testing_support::TempFolder;
using testing_support::undisturbed_answer;

constexpr std::size_t kBufferUnits = TextStream::kBufferUnits;

// Lines of eight characters that differ from their neighbours.
std::string numbered_lines(std::size_t characters) {
  std::string text;
  text.reserve(characters);
  for (std::size_t line = 0; text.size() < characters; ++line) {
    const std::string number = std::to_string(line);
    text += std::string(7 - number.size(), '0') + number + '\n';
  }
  text.resize(characters);
  return text;
}

std::string next_units(FileTextSource& source, std::size_t count) {
  std::u16string units(count, u'\0');
  units.resize(source.fillBuffer(units.data(), units.data() + count));
  return readable(units);
}

// --- opening -------------------------------------------------------------------------------------

// A source in the middle of one device is to read another one.
class Opening : public Attempt {
 public:
  Opening() {
    source_.init_stream(first_.open(), "UTF-8");
    next_units(source_, 3);
  }

  void call() override { source_.init_stream(second_.open(), "ISO-8859-1"); }
  std::string answer() override {
    return next_units(source_, 20) + std::to_string(first_.open_streams()) +
           std::to_string(second_.open_streams());
  }
  std::string state() const override {
    return std::to_string(source_.getPos()) + (source_.isEoS() ? " ended " : " ") +
           std::to_string(first_.open_streams()) + std::to_string(second_.open_streams());
  }

 private:
  FaultyDevice first_{"first text"};
  FaultyDevice second_{"second text"};
  FileTextSource source_;
};

TEST(FileTextSourceMemory, RunsOutInInitStream) {
  Opening undisturbed;
  undisturbed.call();
  EXPECT_EQ(undisturbed.answer(), "second text01");
  expect_to_survive_failing_memory([] { return std::make_unique<Opening>(); });
}

class OpeningByPath : public Attempt {
 public:
  explicit OpeningByPath(std::u16string path) : path_(std::move(path)) {}

  void call() override { source_.init_stream(path_, "UTF-8"); }
  std::string answer() override { return next_units(source_, 20); }
  std::string state() const override { return source_.converter() == nullptr ? "none" : "open"; }

 private:
  std::u16string path_;
  FileTextSource source_;
};

TEST(FileTextSourceMemory, RunsOutInInitStreamByPath) {
  const TempFolder folder;
  const std::string path = folder.file("a file with a name that fits into no small string", "text");
  expect_to_survive_failing_memory(
      [&] { return std::make_unique<OpeningByPath>(standalone::from_utf8(path)); });
}

// The error names the encoding, in memory that is allocated for it.
class OpeningWithUnknownEncoding : public Attempt {
 public:
  explicit OpeningWithUnknownEncoding(std::string encoding) : encoding_(std::move(encoding)) {}

  void call() override {
    try {
      source_.init_stream(device_.open(), encoding_);
    } catch (const std::invalid_argument& error) {
      message_ = error.what();
    }
  }
  std::string answer() override { return message_ + std::to_string(device_.open_streams()); }

 private:
  const std::string encoding_;
  FaultyDevice device_{"text"};
  FileTextSource source_;
  std::string message_;
};

// No similar name is searched for if the name is this long.
TEST(FileTextSourceMemory, RunsOutWhileTheErrorIsMade) {
  const std::string encoding(200, 'x');
  expect_to_survive_failing_memory(
      [&] { return std::make_unique<OpeningWithUnknownEncoding>(encoding); });
}

// The search allocates thousands of times, always in the same way: a few failures are enough.
TEST(FileTextSourceMemory, RunsOutWhileASimilarNameIsSearchedFor) {
  const auto make = [] {
    return std::make_unique<OpeningWithUnknownEncoding>("an encoding that nobody knows");
  };
  const std::string expected = undisturbed_answer(make);
  for (const std::size_t nth : {5U, 50U, 500U, 1000U}) {
    SCOPED_TRACE(nth);
    const long blocks = live_blocks();
    EXPECT_EQ(meets_failure(make, nth, FaultKind::single, expected), allocations_can_fail());
    EXPECT_EQ(live_blocks(), blocks);
  }
}

// --- reading -------------------------------------------------------------------------------------

// An ill-formed byte after a full buffer leaves a code unit that the converter keeps in memory.
class FillThatKeepsAUnit : public Attempt {
 public:
  FillThatKeepsAUnit() { source_.init_stream(device_.open(), "UTF-8"); }

  void call() override { first_ = next_units(source_, 3); }
  std::string answer() override { return first_ + next_units(source_, 20); }
  std::string state() const override {
    return std::to_string(source_.getPos()) + (source_.isEoS() ? " ended" : "");
  }

 private:
  FaultyDevice device_{"ab\xE2\x82zyx"};
  FileTextSource source_;
  std::string first_;
};

TEST(FileTextSourceMemory, IsNotNeededForAFill) {
  FillThatKeepsAUnit undisturbed;
  undisturbed.call();
  EXPECT_EQ(undisturbed.answer(), "ab\\uFFFDzyx");
}

// --- buffers -------------------------------------------------------------------------------------

class Growth : public Attempt {
 public:
  Growth() {
    char16_t* begin = nullptr;
    char16_t* end = nullptr;
    manager_.resize(40, begin, end);
    std::fill(begin, end, u'x');
  }
  void call() override {
    char16_t* begin = nullptr;
    char16_t* end = nullptr;
    manager_.resize(100, begin, end);
  }
  std::string answer() override { return state(); }
  std::string state() const override {
    auto& manager = const_cast<FileStreamBufferManager&>(manager_);
    return readable({manager.begin(), manager.end()});
  }

 private:
  FileStreamBufferManager manager_;
};

TEST(FileStreamBufferManagerMemory, RunsOutInAResize) {
  expect_to_survive_failing_memory([] { return std::make_unique<Growth>(); });
}

// --- streams -------------------------------------------------------------------------------------

struct StreamCase {
  const char* rule;
  unsigned long loaded;    // by an earlier look-ahead
  unsigned long advanced;  // after that
  void (*call)(TextStream&);
  unsigned long moved;  // by the call
};
std::ostream& operator<<(std::ostream& out, const StreamCase& row) { return out << row.rule; }

void look_ahead(TextStream& stream) { stream.at(200'000); }
void search(TextStream& stream) { stream.find_first_pos_of(u'!', 0); }
void match(TextStream& stream) {
  stream.matches_case_sensitive(u"0000000\n0000001\n", kBufferUnits - 4);
}
void compact(TextStream& stream) { stream.advance(131'000); }
void skip(TextStream& stream) { stream.advance(300'000); }
void skip_to_the_end(TextStream& stream) { stream.advance(2'000'000); }
void cut_back(TextStream& stream) { stream.advance(786'000); }
void skip_and_cut_back(TextStream& stream) { stream.advance(800'000); }
void sample(TextStream& stream) { get_fixed_stream(stream, {u"<no such line ending>", u"\n"}); }

const StreamCase kStreamCases[] = {
    {"LookingAhead", 0, 0, look_ahead, 0},
    {"LookingAheadAfterAnAdvance", 0, 100'000, look_ahead, 0},
    {"SearchingToTheEnd", 0, 0, search, 0},
    {"Matching", 0, 0, match, 0},
    {"MovingWithinTheBuffer", 0, 0, compact, 131'000},
    {"Skipping", 0, 0, skip, 300'000},
    {"SkippingAfterAnAdvance", 0, 100'000, skip, 300'000},
    {"SkippingToTheEnd", 0, 0, skip_to_the_end, 2'000'000},
    {"CuttingBack", 599'999, 0, cut_back, 786'000},
    {"SkippingAndCuttingBack", 599'999, 0, skip_and_cut_back, 800'000},
    {"TakingTheSample", 0, 0, sample, 0},
};

constexpr std::size_t kFileUnits = 900'000;
constexpr std::size_t kAnswerUnits = 140'000;

class Reading : public Attempt {
 public:
  Reading(const std::string& path, const StreamCase& row) : row_(row) {
    source_.init_stream(standalone::from_utf8(path), "ISO-8859-1");
    stream_ = std::make_unique<TextStream>(&source_);
    stream_->at(row_.loaded);
    stream_->advance(row_.advanced);
  }

  void call() override { row_.call(*stream_); }

  // The text from the window on, further than any buffer that a call has loaded.
  std::string answer() override {
    const bool goes_on = stream_->at(kAnswerUnits - 1) != TextStream::kEnd;
    const unsigned long length =
        goes_on ? kAnswerUnits : stream_->find_first_pos_of(TextStream::kEnd, 0);
    const std::u16string_view units(stream_->window_begin(), length);
    return {units.begin(), units.end()};
  }

  // The part that is loaded in any case.
  std::string state() const override {
    std::u16string units;
    for (unsigned long pos = 0; pos < 30'000; pos += 997) units.push_back(stream_->at(pos));
    return readable(units);
  }

 private:
  StreamCase row_;
  FileTextSource source_;
  std::unique_ptr<TextStream> stream_;
};

class TextStreamMemory : public testing::TestWithParam<StreamCase> {};

TEST_P(TextStreamMemory, RunsOut) {
  const TempFolder folder;
  const std::string text = numbered_lines(kFileUnits);
  const std::string path = folder.file("text", text);
  const std::size_t begin = std::min(kFileUnits, GetParam().advanced + GetParam().moved);
  const auto make = [&] { return std::make_unique<Reading>(path, GetParam()); };
  EXPECT_TRUE(testing_support::undisturbed_answer(make) == text.substr(begin, kAnswerUnits));
  expect_to_survive_failing_memory(make);
}

INSTANTIATE_TEST_SUITE_P(Table, TextStreamMemory, testing::ValuesIn(kStreamCases), ByRule());

// The constructor loads the first block.
class StreamConstruction : public Attempt {
 public:
  StreamConstruction() { source_.init_stream(device_.open(), "UTF-8"); }
  void call() override { stream_ = std::make_unique<TextStream>(&source_); }
  std::string answer() override {
    return std::to_string(stream_->find_first_pos_of(TextStream::kEnd, 0));
  }
  std::string state() const override { return std::to_string(source_.getPos()); }

 private:
  FaultyDevice device_{numbered_lines(100)};
  FileTextSource source_;
  std::unique_ptr<TextStream> stream_;
};

TEST(TextStreamConstructionMemory, RunsOut) {
  expect_to_survive_failing_memory([] { return std::make_unique<StreamConstruction>(); });
}

// A text in memory is lent. Only an advance to exactly its end copies text, to restore it if the
// source fails.
class MemoryReading : public Attempt {
 public:
  explicit MemoryReading(unsigned long advanced) : advanced_(advanced) {}
  void call() override { stream_.advance(advanced_); }
  std::string answer() override { return std::string(1, static_cast<char>(stream_.at(0) & 0x7F)); }
  std::string state() const override {
    return std::to_string(stream_.window_begin() - text_.data()) + std::to_string(source_.getPos());
  }

 private:
  unsigned long advanced_;
  ExactText text_{u"a text that is longer than any string keeps in itself"};
  MemoryTextSource source_{text_.data(), text_.size()};
  TextStream stream_{&source_};
};

TEST(MemoryTextSourceMemory, RunsOutInAnAdvanceToTheEnd) {
  expect_to_survive_failing_memory([] { return std::make_unique<MemoryReading>(53); });
}

TEST(MemoryTextSourceMemory, IsNotNeededForAnAdvancePastTheEnd) {
  expect_to_survive_failing_memory([] { return std::make_unique<MemoryReading>(100); }, false);
}

}  // namespace
}  // namespace textio
