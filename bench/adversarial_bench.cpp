// Detections over texts that are traps for scans, in growing sizes: the time must grow in
// proportion to the size. The line at the end of each series gives the time per code unit and the
// deviation of the measured times from it.
#include <cstdint>
#include <limits>
#include <string>

#include <benchmark/benchmark.h>

#include <vltextstream/vltextstream.hpp>

#include "bench/memory_count.hpp"
#include "bench/shapes.hpp"

namespace textio::bench {
namespace {

constexpr unsigned long kAllLines = std::numeric_limits<unsigned long>::max();

void pick_strategy(benchmark::State& state, const Shape& shape) {
  const std::u16string units = shape.make(static_cast<std::size_t>(state.range(0)));
  const Field text(units.data(), units.size());
  const parser::options options;
  const detection::StrategySelector selector(options);
  for (auto _ : state) benchmark::DoNotOptimize(selector.pick_strategy(text, kAllLines));
  const MemoryCount memory =
      count_memory([&] { benchmark::DoNotOptimize(selector.pick_strategy(text, kAllLines)); });
  state.counters["allocations"] = static_cast<double>(memory.allocations);
  state.counters["peak_bytes"] = static_cast<double>(memory.peak_bytes);
  state.SetBytesProcessed(static_cast<std::int64_t>(units.size() * sizeof(char16_t)) *
                          state.iterations());
  state.SetComplexityN(state.range(0));
}

void register_all() {
  for (const Shape& shape : adversarial_shapes()) {
    const std::string name = std::string("adversarial/") + shape.name;
    benchmark::RegisterBenchmark(name.c_str(),
                                 [&shape](benchmark::State& state) { pick_strategy(state, shape); })
        ->RangeMultiplier(2)
        ->Range(1 << 15, static_cast<std::int64_t>(kSampleUnits))
        ->Complexity(benchmark::oN)
        ->Unit(benchmark::kMillisecond);
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
