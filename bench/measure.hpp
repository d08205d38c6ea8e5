// Steps to measure: one call, with all its data.
//
//   void add_all() {
//     add_step("scan/find_one", [] {
//       const auto text = std::make_shared<std::u16string>(kSampleUnits, u'a');
//       return Step{[text] { keep(text->find(u'b')); }, bytes_of(*text)};
//     });
//   }
//   int main(int argc, char** argv) { return textio::bench::run(argc, argv, add_all); }
//
// A step is prepared when it is about to run. It is called once with its memory being counted, then
// repeatedly with only the time being measured. Each repetition reports the time of one call, the
// bytes per second and, among the counters, `allocations`, `peak_bytes` and the step's own.
#pragma once

#include <cstddef>
#include <functional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include <benchmark/benchmark.h>

namespace textio::bench {

struct Step {
  // Owns all its data, including data that it only reads.
  std::function<void()> call;

  // What one call reads: the bytes of a file if it reads one, otherwise those of the UTF-16 text.
  std::size_t bytes = 0;

  // Facts to print next to the figures.
  std::vector<std::pair<std::string, double>> notes = {};
};

// Uses real time, for work that mostly happens in other processes.
enum class Clock { cpu, real };

void add_step(const std::string& name, std::function<Step()> prepare, Clock clock = Clock::cpu);

// Hides from the compiler that a result is not used.
template <typename Result>
void keep(const Result& result) {
  benchmark::DoNotOptimize(&result);
  benchmark::ClobberMemory();
}

inline std::size_t bytes_of(std::u16string_view text) { return text.size() * sizeof(char16_t); }

// The return value of main, after the steps that `add_all` adds have run as the arguments say.
int run(int argc, char** argv, void (*add_all)());

}  // namespace textio::bench
