// One detection over a text of a given shape and size, for tests that count its instructions.
//   linear_main SHAPE UNITS [LINES]     LINES 0, or none given: all lines
//   linear_main                         lists the shapes that are traps
// Only what happens inside `detect_once` is to be counted; text and options are made outside.
#include <cstdlib>
#include <iostream>
#include <limits>
#include <string>

#include <vltextstream/vltextstream.hpp>

#include "bench/shapes.hpp"

using textio::bench::Shape;
using textio::standalone::DetectSettings;

extern "C" __attribute__((noinline)) void detect_once(const std::u16string& text,
                                                      const DetectSettings& settings) {
  textio::standalone::detect_layout(text, settings);
}

int main(int argc, char** argv) {
  if (argc == 1) {
    for (const auto* shapes :
         {&textio::bench::adversarial_shapes(), &textio::bench::option_shapes()}) {
      for (const Shape& shape : *shapes) std::cout << shape.name << '\n';
    }
    return 0;
  }
  const bool is_call = argc == 3 || argc == 4;
  const Shape* const shape = is_call ? textio::bench::find_shape(argv[1]) : nullptr;
  if (shape == nullptr) {
    std::cerr << "usage: linear_main [SHAPE UNITS [LINES]]\n";
    return 2;
  }
  const auto units = static_cast<std::size_t>(std::strtoul(argv[2], nullptr, 10));
  const unsigned long lines = argc == 4 ? std::strtoul(argv[3], nullptr, 10) : 0;
  DetectSettings settings;
  settings.num_lines = lines > 0 ? lines : std::numeric_limits<unsigned long>::max();
  if (shape->set != nullptr) shape->set(settings, units);
  detect_once(units == 0 ? std::u16string() : shape->make(units), settings);
  return 0;
}
