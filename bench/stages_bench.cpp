// The stages of a detection, each alone, and the copying of memory as the machine's own measure.
#include <cstdint>
#include <cstring>
#include <string>
#include <string_view>
#include <vector>

#include <benchmark/benchmark.h>

#include <vltextstream/vltextstream.hpp>

#include "bench/shapes.hpp"
#include "support/temp_file.hpp"

namespace textio::bench {
namespace {

using testing_support::TempFile;

void count_bytes(benchmark::State& state, std::size_t bytes) {
  state.SetBytesProcessed(static_cast<std::int64_t>(bytes) * state.iterations());
}

// --- the machine -------------------------------------------------------------------------------

// As many bytes as the units of a full sample have.
void memory_copy(benchmark::State& state) {
  const std::u16string from(kSampleUnits, u'x');
  std::u16string to(kSampleUnits, u'y');
  for (auto _ : state) {
    std::memcpy(to.data(), from.data(), kSampleUnits * sizeof(char16_t));
    benchmark::ClobberMemory();
  }
  count_bytes(state, kSampleUnits * sizeof(char16_t));
}
BENCHMARK(memory_copy)->Unit(benchmark::kMillisecond);

// --- from a file to the sample -----------------------------------------------------------------

void open_decode_cut(benchmark::State& state, const std::string& encoding,
                     const std::string& bytes) {
  const TempFile file(bytes);
  const std::u16string path = file.path();
  for (auto _ : state) {
    FileTextSource source;
    source.init_stream(path, encoding);
    const TextStream stream(&source);
    benchmark::DoNotOptimize(get_fixed_stream(stream, parser::default_line_endings()));
  }
  count_bytes(state, bytes.size());
}

void open_decode_cut_ascii(benchmark::State& state) {
  open_decode_cut(state, "UTF-8", ascii_bytes(ascii_text(kSampleUnits)));
}
BENCHMARK(open_decode_cut_ascii)->Unit(benchmark::kMillisecond);

void open_decode_cut_two_byte_utf8(benchmark::State& state) {
  open_decode_cut(state, "UTF-8", standalone::to_utf8(two_byte_text(kSampleUnits)));
}
BENCHMARK(open_decode_cut_two_byte_utf8)->Unit(benchmark::kMillisecond);

void open_decode_cut_utf16(benchmark::State& state) {
  open_decode_cut(state, "UTF-16", utf16_bytes(ascii_text(kSampleUnits)));
}
BENCHMARK(open_decode_cut_utf16)->Unit(benchmark::kMillisecond);

// --- scans of a stream -------------------------------------------------------------------------

// `scan` runs over a text of one and the same unit to its end.
template <typename Scan>
void scan_to_end(benchmark::State& state, char16_t unit, Scan scan) {
  const std::u16string text(kSampleUnits, unit);
  MemoryTextSource source(text.data(), text.size());
  const TextStream stream(&source);
  for (auto _ : state) benchmark::DoNotOptimize(scan(stream));
  count_bytes(state, text.size() * sizeof(char16_t));
}

void find_one_of_one(benchmark::State& state) {
  scan_to_end(state, u'a',
              [](const TextStream& stream) { return stream.find_first_pos_of(u'\n', 0); });
}
BENCHMARK(find_one_of_one)->Unit(benchmark::kMillisecond);

void find_one_of_three(benchmark::State& state) {
  const std::u16string set = u"\n\r,";
  scan_to_end(state, u'a',
              [&set](const TextStream& stream) { return stream.find_first_pos_of(set, 0); });
}
BENCHMARK(find_one_of_three)->Unit(benchmark::kMillisecond);

void find_none_of_one(benchmark::State& state) {
  scan_to_end(state, u' ',
              [](const TextStream& stream) { return stream.find_first_pos_not_of(u' ', 0); });
}
BENCHMARK(find_none_of_one)->Unit(benchmark::kMillisecond);

void find_none_of_three(benchmark::State& state) {
  const std::u16string set = u"\b\t ";
  scan_to_end(state, u' ',
              [&set](const TextStream& stream) { return stream.find_first_pos_not_of(set, 0); });
}
BENCHMARK(find_none_of_three)->Unit(benchmark::kMillisecond);

void find_non_digit(benchmark::State& state) {
  scan_to_end(state, u'7', [](const TextStream& stream) { return stream.find_first_non_digit(0); });
}
BENCHMARK(find_non_digit)->Unit(benchmark::kMillisecond);

// --- fields ------------------------------------------------------------------------------------

// What a date check is asked in earnest: fields with a digit that are no number.
void is_datetime_mixed(benchmark::State& state) {
  constexpr std::u16string_view kTexts[] = {u"2024-03-01",      u"2024-03-01 10:00:00",
                                            u"01.03.2024",      u"Fri, 01 Mar 2024 10:00:00 GMT",
                                            u"March 1, 2024",   u"20240301T100000Z",
                                            u"12 apples",       u"room 7",
                                            u"192.168.0.1",     u"A-17",
                                            u"1.2.3-rc4",       u"2024-13-01",
                                            u"10:00:00, 12 km", u"3/4 inch",
                                            u"9th avenue",      u"01/Mar/2024:10:00:00 +0000"};
  std::vector<Field> fields;
  for (const std::u16string_view text : kTexts) fields.emplace_back(text.data(), text.size());
  for (auto _ : state) {
    for (const Field& field : fields) benchmark::DoNotOptimize(datetime::is_datetime(field));
  }
  state.SetItemsProcessed(static_cast<std::int64_t>(fields.size()) * state.iterations());
}
BENCHMARK(is_datetime_mixed);

void unquote_doubled_quotes(benchmark::State& state) {
  const std::u16string text = doubled_quotes(static_cast<std::size_t>(state.range(0)));
  const std::u16string whitespace = u" \b\t";
  for (auto _ : state) {
    MutableField field(Field(text.data(), text.size()));
    unquote(field, whitespace);
    benchmark::DoNotOptimize(field.length);
  }
  count_bytes(state, text.size() * sizeof(char16_t));
  state.SetComplexityN(state.range(0));
}
BENCHMARK(unquote_doubled_quotes)
    ->RangeMultiplier(2)
    ->Range(1 << 10, 1 << 20)
    ->Complexity(benchmark::oN)
    ->Unit(benchmark::kMicrosecond);

}  // namespace
}  // namespace textio::bench

BENCHMARK_MAIN();
