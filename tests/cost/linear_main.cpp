// One detection over a text of a given shape for each size, for tests that count its instructions.
//   linear_main [--lines LINES] SHAPE UNITS...     LINES 0, or none given: all lines
//   linear_main                                    lists the shapes that are traps
// Only what happens inside `detect_once` is to be counted; text and options are made outside.
#include <cstdlib>
#include <iostream>
#include <limits>
#include <string>
#include <string_view>

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
  settings.num_lines = lines > 0 ? lines : std::numeric_limits<unsigned long>::max();
  if (shape.set != nullptr) shape.set(settings, units);
  detect_once(units == 0 ? std::u16string() : shape.make(units), settings);
}

}  // namespace

int main(int argc, char** argv) {
  if (argc == 1) {
    for (const auto* shapes :
         {&textio::bench::adversarial_shapes(), &textio::bench::option_shapes()}) {
      for (const Shape& shape : *shapes) std::cout << shape.name << '\n';
    }
    return 0;
  }
  unsigned long lines = 0;
  int next = 1;
  if (argc > 2 && std::string_view(argv[1]) == "--lines") {
    lines = std::strtoul(argv[2], nullptr, 10);
    next = 3;
  }
  const Shape* const shape = argc > next + 1 ? textio::bench::find_shape(argv[next]) : nullptr;
  if (shape == nullptr) {
    std::cerr << "usage: linear_main [[--lines LINES] SHAPE UNITS...]\n";
    return 2;
  }
  for (++next; next < argc; ++next) {
    detect(*shape, std::strtoul(argv[next], nullptr, 10), lines);
  }
  return 0;
}
