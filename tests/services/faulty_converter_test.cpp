// The file source and the stream with a converter that does all that its interface allows, and
// throws wherever it can. This program defines the converter: one code unit per byte, except for a
// few bytes that give unusual code units.
#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <memory>
#include <new>
#include <ostream>
#include <stdexcept>
#include <string>
#include <string_view>

#include <gtest/gtest.h>

#include <vltextstream/vltextstream.hpp>

#include "support/faulty_device.hpp"
#include "support/first_difference.hpp"
#include "support/printing.hpp"
#include "support/rule_name.hpp"

namespace {

constexpr std::size_t kNever = std::numeric_limits<std::size_t>::max();

enum class Thrown { nothing, bad_alloc, invalid_argument, runtime_error, integer };

void throw_it(Thrown thrown) {
  if (thrown == Thrown::bad_alloc) throw std::bad_alloc();
  if (thrown == Thrown::invalid_argument) throw std::invalid_argument("no such encoding");
  if (thrown == Thrown::runtime_error) throw std::runtime_error("cannot decode");
  if (thrown == Thrown::integer) throw 7;
}

enum class AsksForReset { never, always, at_random };

// The behaviour of the converters in the current test; calls are counted from 1.
struct Script {
  Thrown constructor_throws = Thrown::nothing;
  Thrown convert_throws = Thrown::nothing;
  std::size_t throwing_call = kNever;
  Thrown reset_throws = Thrown::nothing;
  AsksForReset asks_for_reset = AsksForReset::never;
  std::size_t silent_calls = 0;     // calls that keep all code units
  std::size_t more_at_the_end = 0;  // calls of has_more that are true without kept code units
  std::u16string endless_units;     // added on each call, also on one without bytes
  bool always_has_more = false;     // has_more is always true
  std::size_t calls = 0;
  std::size_t resets = 0;
};
Script script;

std::u16string units_of(char byte) {
  switch (byte) {
    case 'P':
      return u"\xD83D\xDE00";
    case 'H':
      return u"\xD83D";
    case 'L':
      return u"\xDE00";
    case 'E':
      return u"\xFFFF";
    case '0':
      return std::u16string(1, u'\0');
    default:
      return std::u16string(1, static_cast<unsigned char>(byte));
  }
}

}  // namespace

namespace textio {

struct StreamCodeConverter::State {
  std::u16string held;
  std::uint32_t random = 1;
};

StreamCodeConverter::StreamCodeConverter(const std::string& /*encoding*/, bool /*one_unit*/)
    : state_(std::make_unique<State>()) {
  throw_it(script.constructor_throws);
}

StreamCodeConverter::~StreamCodeConverter() = default;

// A call that throws has moved its cursors and written before.
bool StreamCodeConverter::convert(char16_t*& out, char16_t* out_end, const char*& in,
                                  const char* in_end, bool final) {
  std::u16string& held = state_->held;
  const auto is_plain = [](char byte) { return byte >= 'a'; };
  while (in != in_end) {
    const char* const plain_end = std::find_if_not(in, in_end, is_plain);
    held.append(in, plain_end);
    if (plain_end != in_end) held += units_of(*plain_end);
    in = plain_end == in_end ? in_end : plain_end + 1;
  }
  held += script.endless_units;
  const bool is_silent = ++script.calls <= script.silent_calls && !final;
  const std::size_t room = is_silent ? 0 : static_cast<std::size_t>(out_end - out);
  const std::size_t count = std::min(held.size(), room);
  out = std::copy_n(held.begin(), count, out);
  held.erase(0, count);
  if (script.calls == script.throwing_call) throw_it(script.convert_throws);
  state_->random = state_->random * 1'664'525U + 1'013'904'223U;
  if (!held.empty()) return false;  // a reset would forget them
  return script.asks_for_reset == AsksForReset::always ||
         (script.asks_for_reset == AsksForReset::at_random && state_->random >> 31 != 0);
}

bool StreamCodeConverter::has_more() const {
  if (!state_->held.empty() || script.always_has_more) return true;
  if (script.more_at_the_end == 0) return false;
  --script.more_at_the_end;
  return true;
}

std::size_t StreamCodeConverter::ill_formed_parts() const { return 0; }

void StreamCodeConverter::reset(bool /*at_start*/) {
  ++script.resets;
  throw_it(script.reset_throws);
  state_->held.clear();
}

namespace {

using testing_support::ByRule;
using testing_support::FaultyDevice;
using testing_support::first_difference;
using testing_support::kNoDifference;
using testing_support::readable;

constexpr std::size_t kBufferUnits = TextStream::kBufferUnits;

// Lower-case letters, each different from its neighbours.
std::string letters(std::size_t count) {
  std::string bytes(count, '\0');
  for (std::size_t i = 0; i < count; ++i) bytes[i] = static_cast<char>('a' + i * 7 % 25);
  return bytes;
}

std::u16string widened(std::string_view bytes) { return {bytes.begin(), bytes.end()}; }

std::u16string read_by_fills(FileTextSource& source, std::size_t units) {
  std::u16string text;
  std::u16string part(units, u'\0');
  while (const std::size_t got = source.fillBuffer(part.data(), part.data() + units)) {
    text.append(part, 0, got);
  }
  return text;
}

std::u16string_view loaded_to_the_end(const TextStream& stream) {
  const unsigned long length = stream.find_first_pos_of(TextStream::kEnd, 0);
  return {stream.window_begin(), length};
}

// The kind of exception that `call` throws.
template <typename Call>
Thrown thrown_by(Call call) {
  try {
    call();
  } catch (const std::bad_alloc&) {
    return Thrown::bad_alloc;
  } catch (const std::invalid_argument&) {
    return Thrown::invalid_argument;
  } catch (const std::runtime_error&) {
    return Thrown::runtime_error;
  } catch (int) {
    return Thrown::integer;
  }
  return Thrown::nothing;
}

struct ThrownCase {
  const char* rule;
  Thrown thrown;
};
std::ostream& operator<<(std::ostream& out, const ThrownCase& row) { return out << row.rule; }

const ThrownCase kThrownCases[] = {
    {"BadAlloc", Thrown::bad_alloc},
    {"InvalidArgument", Thrown::invalid_argument},
    {"RuntimeError", Thrown::runtime_error},
    {"Integer", Thrown::integer},
};

class ThrowingConverter : public testing::TestWithParam<ThrownCase> {
 protected:
  void SetUp() override { script = Script(); }

  static void throw_at_call(std::size_t nth) {
    script.convert_throws = GetParam().thrown;
    script.throwing_call = script.calls + nth;
  }
};

// --- the constructor throws ----------------------------------------------------------------------

TEST_P(ThrowingConverter, ThatCannotBeMadeLeavesTheSourceUnchanged) {
  FaultyDevice first("first");
  FaultyDevice second("second");
  {
    FileTextSource source;
    source.init_stream(first.open(), "A");
    char16_t unit = 0;
    source.fillBuffer(&unit, &unit + 1);
    script.constructor_throws = GetParam().thrown;
    EXPECT_EQ(thrown_by([&] { source.init_stream(second.open(), "A"); }), GetParam().thrown);
    EXPECT_EQ(second.open_streams(), 0U);
    EXPECT_EQ(first.open_streams(), 1U);
    EXPECT_EQ(read_by_fills(source, 10), u"irst");
    script.constructor_throws = Thrown::nothing;
    source.init_stream(second.open(), "A");
    EXPECT_EQ(read_by_fills(source, 10), u"second");
  }
  EXPECT_EQ(first.open_streams() + second.open_streams(), 0U);
}

// --- a call throws -------------------------------------------------------------------------------

TEST_P(ThrowingConverter, LetsAFillBeRepeated) {
  const std::string bytes = letters(200'000);
  for (std::size_t nth = 1; nth <= 4; ++nth) {
    script = Script();
    FaultyDevice device(bytes);
    FileTextSource source;
    source.init_stream(device.open(), "A");
    std::u16string units(150'000, u'\0');
    source.fillBuffer(units.data(), units.data() + 10);
    throw_at_call(nth);
    const auto fill = [&] { source.fillBuffer(units.data(), units.data() + units.size()); };
    const Thrown thrown = thrown_by(fill);
    EXPECT_EQ(thrown, nth <= 3 ? GetParam().thrown : Thrown::nothing) << nth;
    if (thrown == Thrown::nothing) continue;
    EXPECT_EQ(source.getPos(), 10);
    EXPECT_EQ(first_difference(read_by_fills(source, 150'000), widened(bytes).substr(10)),
              kNoDifference);
    EXPECT_EQ(source.read_error(), 0);
  }
}

TEST_P(ThrowingConverter, LetsASkipBeRepeated) {
  const std::string bytes = letters(200'000);
  for (std::size_t nth = 1; nth <= 3; ++nth) {
    script = Script();
    FaultyDevice device(bytes);
    FileTextSource source;
    source.init_stream(device.open(), "A");
    source.skipFromPos(0, 100);
    throw_at_call(nth);
    EXPECT_EQ(thrown_by([&] { source.skipFromPos(5, 150'000); }), GetParam().thrown) << nth;
    EXPECT_EQ(source.getPos(), 100);
    EXPECT_EQ(source.skipFromPos(5, 150'000), 150'000U);
    EXPECT_EQ(read_by_fills(source, 50'000), widened(bytes).substr(150'005));
  }
}

TEST_P(ThrowingConverter, LeavesTheSourceOfAStreamThatCouldNotBeMade) {
  const std::string bytes = letters(200'000);
  for (std::size_t nth = 1; nth <= 3; ++nth) {
    script = Script();
    FaultyDevice device(bytes);
    FileTextSource source;
    source.init_stream(device.open(), "A");
    throw_at_call(nth);
    EXPECT_EQ(thrown_by([&] { TextStream(&source).at(0); }), GetParam().thrown) << nth;
    const TextStream stream(&source);
    EXPECT_EQ(first_difference(loaded_to_the_end(stream), widened(bytes)), kNoDifference) << nth;
  }
}

TEST_P(ThrowingConverter, LetsALookAheadBeRepeated) {
  const std::string bytes = letters(2 * kBufferUnits + 1);
  bool has_thrown = true;
  for (std::size_t nth = 1; has_thrown; ++nth) {
    ASSERT_LE(nth, 20U);
    script = Script();
    FaultyDevice device(bytes);
    FileTextSource source;
    source.init_stream(device.open(), "A");
    TextStream stream(&source);
    stream.advance(50'000);
    throw_at_call(nth);
    const Thrown thrown = thrown_by([&] { loaded_to_the_end(stream); });
    has_thrown = thrown != Thrown::nothing;
    if (has_thrown) {
      EXPECT_EQ(thrown, GetParam().thrown);
    }
    EXPECT_EQ(first_difference(loaded_to_the_end(stream), widened(bytes).substr(50'000)),
              kNoDifference)
        << nth;
  }
}

TEST_P(ThrowingConverter, LetsAnAdvanceBeRepeated) {
  const std::string bytes = letters(5 * kBufferUnits / 2);
  for (const unsigned long step : {131'000UL, 131'072UL, 200'000UL}) {
    bool has_thrown = true;
    for (std::size_t nth = 1; has_thrown; ++nth) {
      ASSERT_LE(nth, 20U);
      script = Script();
      FaultyDevice device(bytes);
      FileTextSource source;
      source.init_stream(device.open(), "A");
      TextStream stream(&source);
      throw_at_call(nth);
      has_thrown = thrown_by([&] { stream.advance(step); }) != Thrown::nothing;
      if (has_thrown) {
        EXPECT_EQ(stream.at(1'000), widened(bytes)[1'000]);
        stream.advance(step);
      }
      script.throwing_call = kNever;
      EXPECT_EQ(first_difference(loaded_to_the_end(stream), widened(bytes).substr(step)),
                kNoDifference)
          << step << ' ' << nth;
    }
  }
}

// Bytes read from an input that cannot go back are lost: the text ends there, without a gap.
TEST_P(ThrowingConverter, EndsTheTextOfAnInputThatCannotGoBack) {
  const std::string bytes = letters(3 * kBufferUnits);
  for (std::size_t nth = 1; nth <= 4; ++nth) {
    script = Script();
    FaultyDevice device(bytes);
    device.fail_seeks(1, ESPIPE);
    FileTextSource source;
    source.init_stream(device.open(), "A");
    const TextStream stream(&source);
    throw_at_call(nth);
    EXPECT_EQ(thrown_by([&] { loaded_to_the_end(stream); }), GetParam().thrown);
    const std::u16string_view text = loaded_to_the_end(stream);
    EXPECT_EQ(text, widened(bytes).substr(0, text.size()));
    EXPECT_GE(text.size(), kBufferUnits);
    EXPECT_NE(source.read_error(), 0);
  }
}

TEST_P(ThrowingConverter, PassesThroughAResetAndLeavesTheSource) {
  FaultyDevice device("abcdef");
  FileTextSource source;
  source.init_stream(device.open(), "A");
  char16_t unit = 0;
  source.fillBuffer(&unit, &unit + 1);
  script.reset_throws = GetParam().thrown;
  EXPECT_EQ(thrown_by([&] { source.skipFromPos(3, 1); }), GetParam().thrown);
  // The source could not go back either: its text has ended until a skip succeeds.
  EXPECT_EQ(read_by_fills(source, 10), u"");
  script.reset_throws = Thrown::nothing;
  EXPECT_EQ(source.skipFromPos(3, 1), 1U);
  EXPECT_EQ(read_by_fills(source, 10), u"ef");
}

INSTANTIATE_TEST_SUITE_P(Table, ThrowingConverter, testing::ValuesIn(kThrownCases), ByRule());

// --- a converter that delivers late --------------------------------------------------------------

struct MannerCase {
  const char* rule;
  Script script;
};
std::ostream& operator<<(std::ostream& out, const MannerCase& row) { return out << row.rule; }

Script asking_for_reset(AsksForReset when) {
  Script manner;
  manner.asks_for_reset = when;
  return manner;
}
Script silent(std::size_t calls) {
  Script manner;
  manner.silent_calls = calls;
  return manner;
}
Script more_at_the_end(std::size_t answers) {
  Script manner;
  manner.more_at_the_end = answers;
  return manner;
}

const MannerCase kMannerCases[] = {
    {"NeverAsksForAReset", asking_for_reset(AsksForReset::never)},
    {"AlwaysAsksForAReset", asking_for_reset(AsksForReset::always)},
    {"AsksForAResetAtRandom", asking_for_reset(AsksForReset::at_random)},
    {"IsSilentOnce", silent(1)},
    {"IsSilentForLong", silent(50)},
    {"IsSilentToTheEnd", silent(kNever)},
    {"HasMoreAtTheEndOnce", more_at_the_end(1)},
    {"HasMoreAtTheEndForLong", more_at_the_end(1'000)},
};

// --- bytes that give nothing ---------------------------------------------------------------------

// With one code unit of room, a converter that keeps everything would be called for each byte.
TEST(SilentConverter, GetsMoreAndMoreBytesAtATime) {
  const std::string bytes = letters(1'000'000);
  for (const std::size_t fill : {1U, 2U, 1'000U}) {
    script = silent(kNever);
    FaultyDevice device(bytes);
    FileTextSource source;
    source.init_stream(device.open(), "A");
    std::u16string text(fill, u'\0');
    EXPECT_EQ(source.fillBuffer(text.data(), text.data() + fill), fill);
    EXPECT_LT(script.calls, 10'000U) << fill;
    EXPECT_FALSE(source.isEoS());
    text += read_by_fills(source, 100'000);
    EXPECT_EQ(first_difference(text, widened(bytes)), kNoDifference) << fill;
    EXPECT_TRUE(source.isEoS());
  }
}

class ConverterManner : public testing::TestWithParam<MannerCase> {
 protected:
  void SetUp() override { script = GetParam().script; }
};

TEST_P(ConverterManner, LosesNothingOfAShortText) {
  const std::string bytes = letters(100);
  for (const std::size_t fill : {1U, 2U, 3U, 99U, 100U, 101U}) {
    script = GetParam().script;
    FaultyDevice device(bytes);
    FileTextSource source;
    source.init_stream(device.open(), "A");
    EXPECT_EQ(readable(read_by_fills(source, fill)), readable(widened(bytes))) << fill;
    EXPECT_LE(script.calls, 2 * bytes.size() + 2);
  }
}

TEST_P(ConverterManner, LosesNothingOfALongText) {
  for (const std::size_t size : {kBufferUnits - 1, kBufferUnits, kBufferUnits + 1, 300'000UL}) {
    script = GetParam().script;
    const std::string bytes = letters(size);
    FaultyDevice device(bytes);
    FileTextSource source;
    source.init_stream(device.open(), "A");
    const TextStream stream(&source);
    EXPECT_EQ(first_difference(loaded_to_the_end(stream), widened(bytes)), kNoDifference) << size;
    EXPECT_LE(script.calls, 100U);
  }
}

INSTANTIATE_TEST_SUITE_P(Table, ConverterManner, testing::ValuesIn(kMannerCases), ByRule());

// --- a converter that has text without bytes -----------------------------------------------------

struct EndlessCase {
  const char* rule;
  std::string bytes;
  std::u16string units;  // that each call adds
  bool always_has_more;
  std::u16string text;  // what a file of `bytes` reads as
};
std::ostream& operator<<(std::ostream& out, const EndlessCase& row) { return out << row.rule; }

// One call with the bytes is followed by one call without. If has_more stays true, further calls
// follow, until the converter has delivered two code units for each byte.
const EndlessCase kEndlessCases[] = {
    {"OneUnit", "ab", u"!", false, u"ab!!"},
    {"SeveralUnits", "ab", u"!?", false, u"ab!?!?"},
    {"AUnitAndAnUnpairedLowSurrogate", "ab", u"!\xDE00", false, u"ab!!"},
    {"NothingInAnEmptyFile", "", u"!", false, u""},
    {"OneUnitAndSaysMore", "ab", u"!", true, u"ab!!!!!"},
    {"SeveralUnitsAndSaysMore", "ab", u"!?", true, u"ab!?!?!?"},
    {"LowSurrogatesAndSaysMore", "ab", u"\xDE00", true, u"ab"},
    {"NothingInAnEmptyFileAndSaysMore", "", u"!", true, u""},
};

class EndlessConverter : public testing::TestWithParam<EndlessCase> {
 protected:
  void SetUp() override {
    script = Script();
    script.endless_units = GetParam().units;
    script.always_has_more = GetParam().always_has_more;
    source_.init_stream(device_.open(), "A");
  }

  FaultyDevice device_{GetParam().bytes};
  FileTextSource source_;
};

TEST_P(EndlessConverter, EndsInAFillWithRoom) {
  std::u16string units(1'000, u'?');
  units.resize(source_.fillBuffer(units.data(), units.data() + units.size()));
  EXPECT_EQ(readable(units), readable(GetParam().text));
  EXPECT_EQ(read_by_fills(source_, 1'000), u"");
}

TEST_P(EndlessConverter, EndsInFillsOfOneCodeUnit) {
  const std::u16string text = read_by_fills(source_, 1);
  EXPECT_LE(text.size(), 20U);
  EXPECT_EQ(readable(read_by_fills(source_, 1)), "");
}

TEST_P(EndlessConverter, EndsInASkipOfAnyCount) {
  constexpr unsigned long kHuge = std::numeric_limits<unsigned long>::max();
  EXPECT_EQ(source_.skipFromPos(0, kHuge), GetParam().text.size());
  EXPECT_EQ(source_.skipFromPos(source_.getPos(), kHuge), 0U);
  EXPECT_EQ(source_.skipFromPos(0, kHuge), GetParam().text.size());
}

TEST_P(EndlessConverter, EndsInAStream) {
  TextStream stream(&source_);
  EXPECT_EQ(readable(loaded_to_the_end(stream)), readable(GetParam().text));
  stream.advance(std::numeric_limits<unsigned long>::max());
  EXPECT_EQ(stream.at(0), TextStream::kEnd);
}

INSTANTIATE_TEST_SUITE_P(Table, EndlessConverter, testing::ValuesIn(kEndlessCases), ByRule());

// A file that is read again from its start reaches its end again.
TEST(ConverterAtTheEnd, IsCalledOnceAtEachEnd) {
  script = Script();
  FaultyDevice device("ab");
  FileTextSource source;
  source.init_stream(device.open(), "A");
  EXPECT_EQ(read_by_fills(source, 10), u"ab");
  EXPECT_EQ(script.calls, 2U);
  EXPECT_EQ(read_by_fills(source, 10), u"");
  EXPECT_EQ(script.calls, 2U);
  EXPECT_EQ(source.skipFromPos(0, 10), 2U);
  EXPECT_EQ(script.calls, 4U);
}

// --- unusual code units --------------------------------------------------------------------------

struct UnitCase {
  const char* rule;
  std::string bytes;
  std::u16string units;
};
std::ostream& operator<<(std::ostream& out, const UnitCase& row) { return out << row.rule; }

const UnitCase kUnitCases[] = {
    {"Pair", "aPz", u"a\x1Az"},
    {"PairAtTheStart", "Pz", u"\x1Az"},
    {"PairAtTheEnd", "aP", u"a\x1A"},
    {"PairsOnly", "PPP", u"\x1A\x1A\x1A"},
    {"LoneHigh", "aHz", u"a\x1Az"},
    {"LoneLow", "aLz", u"az"},
    {"LoneLowAtTheEnd", "aL", u"a"},
    {"LowsOnly", "LLLL", u""},
    {"LowBeforeHigh", "LHz", u"\x1Az"},
    {"EndMark", "aEz", std::u16string(u"a\xFFFFz")},
    {"Zero", "a0z", std::u16string(u"a\0z", 3)},
    {"Everything", "P0HLEPz", std::u16string(u"\x1A\0\x1A\xFFFF\x1Az", 6)},
};

class ConverterUnits : public testing::TestWithParam<UnitCase> {
 protected:
  void SetUp() override { script = Script(); }
};

TEST_P(ConverterUnits, AreFoldedForAnyRoom) {
  for (const std::size_t fill : {1U, 2U, 3U, 4U, 5U, 100U}) {
    for (const std::size_t silent_calls : {std::size_t{0}, std::size_t{2}, kNever}) {
      script.calls = 0;
      script.silent_calls = silent_calls;
      FaultyDevice device(GetParam().bytes);
      FileTextSource source;
      source.init_stream(device.open(), "A");
      EXPECT_EQ(readable(read_by_fills(source, fill)), readable(GetParam().units))
          << fill << ' ' << silent_calls;
    }
  }
}

TEST_P(ConverterUnits, ArriveInAStream) {
  FaultyDevice device(GetParam().bytes);
  FileTextSource source;
  source.init_stream(device.open(), "A");
  const TextStream stream(&source);
  const std::u16string& units = GetParam().units;
  for (unsigned long pos = 0; pos < units.size(); ++pos) EXPECT_EQ(stream.at(pos), units[pos]);
  EXPECT_EQ(stream.at(units.size()), TextStream::kEnd);
}

TEST_P(ConverterUnits, ArriveAfterAFullBuffer) {
  std::string bytes;
  std::u16string units;
  while (units.size() < 2 * kBufferUnits && !GetParam().units.empty()) {
    bytes += GetParam().bytes;
    units += GetParam().units;
  }
  FaultyDevice device(bytes);
  FileTextSource source;
  source.init_stream(device.open(), "A");
  const TextStream stream(&source);
  stream.at(units.size());
  EXPECT_EQ(first_difference({stream.window_begin(), units.size()}, units), kNoDifference);
}

INSTANTIATE_TEST_SUITE_P(Table, ConverterUnits, testing::ValuesIn(kUnitCases), ByRule());

}  // namespace
}  // namespace textio
