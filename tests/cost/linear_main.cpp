// One detection over a text of a given shape for each size, for tests that count its instructions.
//   linear_main [--lines LINES] SHAPE UNITS...     all lines by default, and for 0
//   linear_main --list tables|traps|options        lists the shapes of one kind
// The tests count what happens inside `detect_once`. Text and options are made outside. The program is built
// once for each Judge, as CHOSEN_BY.
#include <cstdlib>
#include <iostream>
#include <limits>
#include <string>
#include <string_view>
#include <vector>

#include <vltextstream/vltextstream.hpp>

#include "bench/shapes.hpp"

using textio::bench::Shape;
using textio::standalone::DetectSettings;

extern "C" __attribute__((noinline)) void detect_once(const std::u16string& text,
                                                      const DetectSettings& settings) {
  textio::standalone::detect_layout(text, settings);
}

namespace {

void detect(const Shape& shape, std::size_t units, unsigned long lines) {
  DetectSettings settings;
  settings.judge = textio::standalone::Judge::CHOSEN_BY;
  settings.describe_columns = false;  // the cascade alone
  settings.num_lines = lines > 0 ? lines : std::numeric_limits<unsigned long>::max();
  if (shape.set != nullptr) shape.set(settings, units);
  detect_once(units == 0 ? std::u16string() : shape.make(units), settings);
}

// Returns the exit status.
int list_shapes(std::string_view kind) {
  const std::vector<Shape>* const shapes = kind == "tables"  ? &textio::bench::data_shapes()
                                           : kind == "traps" ? &textio::bench::adversarial_shapes()
                                           : kind == "options" ? &textio::bench::option_shapes()
                                                               : nullptr;
  if (shapes == nullptr) return 2;
  for (const Shape& shape : *shapes) std::cout << shape.name << '\n';
  return 0;
}

}  // namespace

int main(int argc, char** argv) {
  if (argc == 3 && std::string_view(argv[1]) == "--list") return list_shapes(argv[2]);
  unsigned long lines = 0;
  int next = 1;
  if (argc > 2 && std::string_view(argv[1]) == "--lines") {
    lines = std::strtoul(argv[2], nullptr, 10);
    next = 3;
  }
  const Shape* const shape = argc > next + 1 ? textio::bench::find_shape(argv[next]) : nullptr;
  if (shape == nullptr) {
    std::cerr
        << "usage: linear_main [--lines LINES] SHAPE UNITS... | --list tables|traps|options\n";
    return 2;
  }
  for (++next; next < argc; ++next) {
    detect(*shape, std::strtoul(argv[next], nullptr, 10), lines);
  }
  return 0;
}
