// Whole detections by the shape of the data.
//
//   pick_strategy/<shape>/<lines>      the selection alone, over a text in memory
//   detect_layout/<shape>/<lines>      a file in the page cache: open, decode, select, describe
//
// Bytes per second count the text that the selection sampled, one byte per character; for a file
// all of it, since all of it is decoded. `allocations` are those of one detection.
#include <algorithm>
#include <cstdint>
#include <limits>
#include <string>

#include <benchmark/benchmark.h>

#include <vltextstream/vltextstream.hpp>

#include "bench/shapes.hpp"
#include "support/allocation_counter.hpp"
#include "support/temp_file.hpp"

namespace textio::bench {
namespace {

using testing_support::allocations_of_this_thread;
using testing_support::TempFile;

constexpr unsigned long kAllLines = std::numeric_limits<unsigned long>::max();

// Runs `detection` as often as the benchmark asks.
template <typename Detection>
void measure(benchmark::State& state, Detection detection) {
  const std::size_t before = allocations_of_this_thread();
  for (auto _ : state) benchmark::DoNotOptimize(detection());
  const auto allocations = static_cast<double>(allocations_of_this_thread() - before);
  state.counters["allocations"] =
      benchmark::Counter(allocations, benchmark::Counter::kAvgIterations);
}

void count_bytes(benchmark::State& state, std::size_t bytes) {
  state.SetBytesProcessed(static_cast<std::int64_t>(bytes) * state.iterations());
}

// The units from the start of `text` to the end of the last line that `strategy` has sampled.
std::size_t sampled_units(const Strategy& strategy, const Field& text) {
  std::size_t end = 0;
  for (const Field& line : strategy.lines()) {
    if (line.length == 0) continue;
    end = std::max(end, static_cast<std::size_t>(line.data + line.length - text.data));
  }
  return end;
}

void pick_strategy(benchmark::State& state, const Shape& shape, unsigned long num_lines) {
  const std::u16string units = shape.make(kSampleUnits);
  const Field text(units.data(), units.size());
  const parser::options options;
  const detection::StrategySelector selector(options);
  measure(state, [&] { return selector.pick_strategy(text, num_lines); });
  count_bytes(state, sampled_units(*selector.pick_strategy(text, num_lines), text));
}

void detect_file(benchmark::State& state, const Shape& shape, unsigned long num_lines) {
  const std::string bytes = ascii_bytes(shape.make(kSampleUnits));
  const TempFile file(bytes);
  const std::string path = standalone::to_utf8(file.path());
  standalone::DetectSettings settings;
  settings.num_lines = num_lines;
  settings.encoding = "UTF-8";
  measure(state, [&] { return standalone::detect_layout(path, settings).num_variables; });
  count_bytes(state, bytes.size());
}

void register_all() {
  const struct {
    const char* name;
    void (*run)(benchmark::State& state, const Shape& shape, unsigned long num_lines);
  } detections[] = {{"pick_strategy", pick_strategy}, {"detect_layout", detect_file}};
  const struct {
    const char* name;
    unsigned long lines;
  } budgets[] = {{"100_lines", 100}, {"all_lines", kAllLines}};
  for (const auto& detection : detections) {
    for (const Shape& shape : data_shapes()) {
      for (const auto& budget : budgets) {
        const std::string name = std::string(detection.name) + "/" + shape.name + "/" + budget.name;
        benchmark::RegisterBenchmark(name.c_str(), [detection, &shape,
                                                    budget](benchmark::State& state) {
          detection.run(state, shape, budget.lines);
        })->Unit(benchmark::kMillisecond);
      }
    }
  }
}

}  // namespace
}  // namespace textio::bench

int main(int argc, char** argv) {
  benchmark::Initialize(&argc, argv);
  if (benchmark::ReportUnrecognizedArguments(argc, argv)) return 2;
  textio::bench::register_all();
  benchmark::RunSpecifiedBenchmarks();
  benchmark::Shutdown();
}
