// The host's code converter alone: bytes per second in the chunks that a file source hands over,
// and the making of a converter, which every file pays for.
#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include <benchmark/benchmark.h>

#include <vltextstream/vltextstream.hpp>

#include "bench/shapes.hpp"

namespace textio::bench {
namespace {

constexpr std::size_t kChunk = 65'535;
constexpr std::size_t kTextUnits = std::size_t{1} << 20;

void decode(benchmark::State& state, const std::string& encoding, const std::string& bytes) {
  std::vector<char16_t> units(kChunk);
  StreamCodeConverter converter(encoding, true);
  for (auto _ : state) {
    converter.reset(true);
    for (const char* in = bytes.data(); in != bytes.data() + bytes.size();) {
      const auto left = static_cast<std::size_t>(bytes.data() + bytes.size() - in);
      char16_t* out = units.data();
      converter.convert(out, out + kChunk, in, in + std::min(left, kChunk), false);
      benchmark::DoNotOptimize(units.data());
      benchmark::ClobberMemory();
    }
  }
  state.SetBytesProcessed(static_cast<std::int64_t>(bytes.size()) * state.iterations());
}

// `line` as often as it takes to fill the text.
template <typename Text>
Text repeated(const Text& line) {
  Text text;
  while (text.size() < kTextUnits) text += line;
  return text;
}

std::string utf16le_bytes(std::u16string_view text) { return utf16_bytes(text).substr(2); }

// Prose in which every twentieth character is a letter with an accent.
std::string windows1252_bytes() {
  std::string bytes = ascii_bytes(ascii_text(kTextUnits));
  for (std::size_t i = 0; i < bytes.size(); i += 20) {
    if (bytes[i] != '\n') bytes[i] = '\xE9';
  }
  return bytes;
}

// A Japanese line of a table: kanji, kana, a few digits.
const std::u16string kJapaneseLine =
    u"\u6771\u4eac\u90fd\u5343\u4ee3\u7530\u533a,\u30c6\u30b9\u30c8\u306e\u8868,2024\n";
const std::string kJapaneseLineInShiftJis =
    "\x93\x8C\x8B\x9E\x93\x73\x90\xE7\x91\xE3\x93\x63\x8B\xE6,\x83\x65\x83\x58\x83\x67\x82\xCC\x95"
    "\x5C,2024\n";

void decode_utf8_ascii(benchmark::State& state) {
  decode(state, "UTF-8", ascii_bytes(ascii_text(kTextUnits)));
}
BENCHMARK(decode_utf8_ascii)->Unit(benchmark::kMicrosecond);

void decode_utf8_two_byte(benchmark::State& state) {
  decode(state, "UTF-8", standalone::to_utf8(two_byte_text(kTextUnits)));
}
BENCHMARK(decode_utf8_two_byte)->Unit(benchmark::kMicrosecond);

void decode_utf8_japanese(benchmark::State& state) {
  decode(state, "UTF-8", standalone::to_utf8(repeated(kJapaneseLine)));
}
BENCHMARK(decode_utf8_japanese)->Unit(benchmark::kMicrosecond);

void decode_utf16le(benchmark::State& state) {
  decode(state, "UTF-16LE", utf16le_bytes(two_byte_text(kTextUnits)));
}
BENCHMARK(decode_utf16le)->Unit(benchmark::kMicrosecond);

void decode_windows1252(benchmark::State& state) {
  decode(state, "windows-1252", windows1252_bytes());
}
BENCHMARK(decode_windows1252)->Unit(benchmark::kMicrosecond);

void decode_shift_jis(benchmark::State& state) {
  decode(state, "Shift_JIS", repeated(kJapaneseLineInShiftJis));
}
BENCHMARK(decode_shift_jis)->Unit(benchmark::kMicrosecond);

// --- making a converter ------------------------------------------------------------------------

void make_converter(benchmark::State& state, const std::string& encoding) {
  for (auto _ : state) {
    const StreamCodeConverter converter(encoding, true);
    benchmark::DoNotOptimize(converter.has_more());
  }
}
BENCHMARK_CAPTURE(make_converter, utf8, std::string("UTF-8"));
BENCHMARK_CAPTURE(make_converter, utf16, std::string("UTF-16"));
BENCHMARK_CAPTURE(make_converter, windows1252, std::string("windows-1252"));
BENCHMARK_CAPTURE(make_converter, shift_jis, std::string("Shift_JIS"));

}  // namespace
}  // namespace textio::bench

BENCHMARK_MAIN();
