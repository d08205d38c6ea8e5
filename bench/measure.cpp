#include "bench/measure.hpp"

#include <cstdint>
#include <memory>
#include <utility>

#include "bench/memory_count.hpp"

namespace textio::bench {
namespace {

// The step that is being measured. It is kept between repetitions, because making the texts takes
// far longer than most calls.
struct Turn {
  std::string name;
  Step step;
  MemoryCount memory;
};

std::unique_ptr<Turn>& turn() {
  static std::unique_ptr<Turn> current;
  return current;
}

const Turn& turn_of(const std::string& name, const std::function<Step()>& prepare) {
  if (!turn() || turn()->name != name) {
    turn().reset();
    auto next = std::make_unique<Turn>();
    next->name = name;
    next->step = prepare();
    next->memory = count_memory(next->step.call);
    turn() = std::move(next);
  }
  return *turn();
}

void measure(benchmark::State& state, const Turn& turn) {
  const std::function<void()>& call = turn.step.call;
  for (auto _ : state) call();
  if (turn.step.bytes > 0) {
    state.SetBytesProcessed(static_cast<std::int64_t>(turn.step.bytes) * state.iterations());
  }
  state.counters["allocations"] = static_cast<double>(turn.memory.allocations);
  state.counters["peak_bytes"] = static_cast<double>(turn.memory.peak_bytes);
  for (const auto& [note, value] : turn.step.notes) state.counters[note] = value;
}

}  // namespace

void add_step(const std::string& name, std::function<Step()> prepare, Clock clock) {
  const auto turns = [name, prepare = std::move(prepare)](benchmark::State& state) {
    measure(state, turn_of(name, prepare));
  };
  auto* const step = benchmark::RegisterBenchmark(name.c_str(), turns);
  step->Unit(benchmark::kMicrosecond);
  if (clock == Clock::real) step->UseRealTime();
}

int run(int argc, char** argv, void (*add_all)()) {
  benchmark::Initialize(&argc, argv);
  if (benchmark::ReportUnrecognizedArguments(argc, argv)) return 2;
  add_all();
  benchmark::RunSpecifiedBenchmarks();
  benchmark::Shutdown();
  turn().reset();
  return 0;
}

}  // namespace textio::bench
