// The decoder's library runs out of memory. It gets its memory not from `new` but from functions
// that a program may set once, before anything else: this program sets functions that fail on
// demand.
//
// A source that cannot get a decoder throws, closes its file and is unchanged; the same call
// succeeds later; nothing is leaked.
#include <cstddef>
#include <cstdio>
#include <cstdlib>
#include <exception>
#include <ostream>
#include <string>

#include <gtest/gtest.h>
#include <unicode/uclean.h>

#include <vltextstream/vltextstream.hpp>

#include "support/faulty_device.hpp"
#include "support/layout_text.hpp"
#include "support/rule_name.hpp"
#include "support/temp_file.hpp"

namespace {

// Blocks of the decoder's library, and the allocation that fails, counted from 1.
long live_blocks = 0;
std::size_t allocations = 0;
std::size_t failing = 0;
bool later_ones_fail = false;

bool fails_now() {
  ++allocations;
  return failing != 0 && (later_ones_fail ? allocations >= failing : allocations == failing);
}

void* U_CALLCONV allocate(const void* /*context*/, std::size_t size) {
  if (fails_now()) return nullptr;
  ++live_blocks;
  return std::malloc(size == 0 ? 1 : size);
}

void* U_CALLCONV reallocate(const void* /*context*/, void* block, std::size_t size) {
  if (fails_now()) return nullptr;
  if (block == nullptr) ++live_blocks;
  return std::realloc(block, size == 0 ? 1 : size);
}

void U_CALLCONV release(const void* /*context*/, void* block) {
  if (block != nullptr) --live_blocks;
  std::free(block);
}

void fail_at(std::size_t nth, bool later_ones) {
  allocations = 0;
  failing = nth;
  later_ones_fail = later_ones;
}

}  // namespace

namespace textio {
namespace {

using testing_support::ByRule;
using testing_support::every_member_of;
using testing_support::FaultyDevice;
using testing_support::TempFile;

struct EncodingCase {
  const char* rule;
  const char* encoding;
  std::string bytes;
  std::u16string text;
};
std::ostream& operator<<(std::ostream& out, const EncodingCase& row) { return out << row.rule; }

const EncodingCase kEncodingCases[] = {
    {"Gb18030", "GB18030", "a\x81\x30\x81\x30,b\n", u"a\u0080,b\n"},
    {"EucJp", "EUC-JP", "a\xA5\xC6,b\n", u"a\u30c6,b\n"},
    {"Windows1252", "windows-1252", "a\x80,b\n", u"a\u20ac,b\n"},
    {"ShiftJis", "Shift_JIS", "a\x83\x65,b\n", u"a\u30c6,b\n"},
    {"Iso2022Jp", "ISO-2022-JP", "a\x1B$B%F\x1B(Bb", u"a\u30c6b"},
};

std::u16string text_of(FileTextSource& source) {
  std::u16string units(100, u'\0');
  units.resize(source.fillBuffer(units.data(), units.data() + units.size()));
  return units;
}

class DecoderMemory : public testing::TestWithParam<EncodingCase> {
 protected:
  void TearDown() override { fail_at(0, false); }

  // Whether the source was opened although allocation `nth` of the decoder failed.
  static bool opens(FileTextSource& source, FaultyDevice& device, std::size_t nth,
                    bool later_ones) {
    const std::string encoding = GetParam().encoding;
    std::FILE* const file = device.open();
    fail_at(nth, later_ones);
    try {
      source.init_stream(file, encoding);
    } catch (const std::exception&) {
      fail_at(0, false);
      return false;
    }
    fail_at(0, false);
    return true;
  }

  // Returns whether there were allocations that could still fail.
  static bool survives(std::size_t nth, bool later_ones) {
    FaultyDevice before("before");
    FaultyDevice device(GetParam().bytes);
    const long blocks = live_blocks;
    bool opened = false;
    {
      FileTextSource source;
      source.init_stream(before.open(), "UTF-8");
      opened = opens(source, device, nth, later_ones);
      if (!opened) {
        EXPECT_EQ(device.open_streams(), 0U);
        EXPECT_EQ(text_of(source), u"before");
        EXPECT_TRUE(opens(source, device, 0, false));
      }
      EXPECT_EQ(text_of(source), GetParam().text);
    }
    EXPECT_EQ(before.open_streams() + device.open_streams(), 0U);
    EXPECT_EQ(live_blocks, blocks);
    return !opened;
  }
};

TEST_P(DecoderMemory, ThatRunsOutLeavesTheSourceUnchanged) {
  {
    FaultyDevice device(GetParam().bytes);
    FileTextSource source;
    ASSERT_TRUE(opens(source, device, 0, false));  // initialises what the library keeps permanently
  }
  for (const bool later_ones : {false, true}) {
    std::size_t nth = 1;
    while (survives(nth, later_ones)) {
      SCOPED_TRACE(nth);
      ASSERT_LT(++nth, 100U);
    }
    EXPECT_GT(nth, 1U) << "opening a decoder asks for no memory";
  }
}

INSTANTIATE_TEST_SUITE_P(Table, DecoderMemory, testing::ValuesIn(kEncodingCases), ByRule());

struct FileCase {
  const char* rule;
  std::string bytes;
  const char* encoding;
};
std::ostream& operator<<(std::ostream& out, const FileCase& row) { return out << row.rule; }

// Encodings that are found without ICU's detector, which does not check all its allocations.
const FileCase kFileCases[] = {
    {"Utf8", "m\xC3\xBCnchen;1\nrome;2\n", "UTF-8"},
    {"Escapes", "a;1\n\x1B$B%F\x1B(B;2\n", "ISO-2022-JP"},
};

class DetectionMemory : public testing::TestWithParam<FileCase> {};

// A result in spite of a failure is the undisturbed result.
TEST_P(DetectionMemory, OfTheDecoderThatRunsOutGivesTheResultOrNone) {
  const TempFile file(GetParam().bytes);
  const std::string path = standalone::to_utf8(file.path());
  const standalone::Layout undisturbed = standalone::detect_layout(path);
  EXPECT_EQ(undisturbed.encoding, GetParam().encoding);
  const std::string expected = every_member_of(undisturbed);
  const long blocks = live_blocks;
  for (const bool later_ones : {false, true}) {
    bool has_failed = true;
    for (std::size_t nth = 1; has_failed; ++nth) {
      ASSERT_LT(nth, 1'000U);
      fail_at(nth, later_ones);
      try {
        EXPECT_EQ(every_member_of(standalone::detect_layout(path)), expected) << nth;
      } catch (const std::exception&) {
      }
      has_failed = allocations >= nth;
      fail_at(0, false);
      EXPECT_EQ(live_blocks, blocks) << nth;
    }
  }
  EXPECT_EQ(every_member_of(standalone::detect_layout(path)), expected);
}

INSTANTIATE_TEST_SUITE_P(Table, DetectionMemory, testing::ValuesIn(kFileCases), ByRule());

}  // namespace
}  // namespace textio

int main(int argc, char** argv) {
  UErrorCode status = U_ZERO_ERROR;
  u_setMemoryFunctions(nullptr, allocate, reallocate, release, &status);
  if (U_FAILURE(status)) return 1;
  testing::InitGoogleTest(&argc, argv);
  return RUN_ALL_TESTS();
}
