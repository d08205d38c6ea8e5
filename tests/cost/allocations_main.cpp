// How many memory blocks a whole detection allocates, in all libraries.
//   allocations_main PER_CANDIDATE BESIDES SHAPE...
// Fails where the first 100 lines of a file take more than PER_CANDIDATE blocks for each candidate
// and BESIDES blocks in all, or all lines of 4,194,304 units more than three further blocks for each
// time that the number of lines doubles: lists double, but nothing is asked for a line or a field.
// See bench/memory_count.hpp for what counts.
#include <bit>
#include <cstddef>
#include <cstdlib>
#include <iostream>
#include <limits>
#include <string>

#include <vltextstream/vltextstream.hpp>

#include "bench/memory_count.hpp"
#include "bench/shapes.hpp"
#include "support/temp_folder.hpp"

namespace {

using textio::bench::Shape;
using textio::standalone::DetectSettings;
using textio::standalone::Layout;

constexpr std::size_t kUnits = 4'194'304;
constexpr unsigned long kFewLines = 100;
constexpr unsigned long kAllLines = std::numeric_limits<unsigned long>::max();
constexpr std::size_t kBlocksPerDoubling = 3;

struct Cost {
  std::size_t blocks;
  std::size_t candidates;
  std::size_t lines;
};

// The counted detection does not request the trace, which lists the candidates.
Cost cost_of_detection(const std::string& path, unsigned long num_lines) {
  DetectSettings settings;
  settings.judge = textio::standalone::Judge::cascade;
  settings.describe_columns = false;  // the cascade alone
  settings.num_lines = num_lines;
  settings.encoding = "UTF-8";
  DetectSettings traced = settings;
  traced.trace = true;
  const Layout layout = textio::standalone::detect_layout(path, traced);
  const std::size_t blocks = textio::bench::count_memory([&] {
                               textio::standalone::detect_layout(path, settings);
                             }).allocations;
  return {blocks, layout.trace->candidates.size(), layout.lines_sampled};
}

bool is_within(const Shape& shape, const char* sample, std::size_t blocks, std::size_t most) {
  std::cout << shape.name << ", " << sample << ": " << blocks << " blocks of " << most << '\n';
  if (blocks > most) std::cerr << shape.name << ", " << sample << ": too many blocks\n";
  return blocks > 0 && blocks <= most;
}

bool is_within(const Shape& shape, std::size_t per_candidate, std::size_t besides) {
  const textio::testing_support::TempFolder folder;
  const std::string path = folder.file("text", textio::bench::ascii_bytes(shape.make(kUnits)));
  const Cost few = cost_of_detection(path, kFewLines);
  const Cost all = cost_of_detection(path, kAllLines);
  const auto doublings = static_cast<std::size_t>(std::bit_width(all.lines / few.lines));
  const bool few_are =
      is_within(shape, "100 lines", few.blocks, per_candidate * few.candidates + besides);
  const bool all_are =
      is_within(shape, "all lines", all.blocks, few.blocks + kBlocksPerDoubling * doublings);
  return few_are && all_are;
}

}  // namespace

int main(int argc, char** argv) {
  if (argc < 4) {
    std::cerr << "usage: allocations_main PER_CANDIDATE BESIDES SHAPE...\n";
    return 2;
  }
  const std::size_t per_candidate = std::strtoul(argv[1], nullptr, 10);
  const std::size_t besides = std::strtoul(argv[2], nullptr, 10);
  bool are_within = true;
  for (int i = 3; i < argc; ++i) {
    const Shape* const shape = textio::bench::find_shape(argv[i]);
    if (shape == nullptr) {
      std::cerr << "no such shape: " << argv[i] << '\n';
      return 2;
    }
    are_within = is_within(*shape, per_candidate, besides) && are_within;
  }
  return are_within ? 0 : 1;
}
