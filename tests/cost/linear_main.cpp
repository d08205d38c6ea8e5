// One detection over a text of a given shape and size, for tests that count its instructions.
//   linear_main SHAPE UNITS
// Only what happens inside `detect_once` is to be counted; the text is made outside.
#include <cstdlib>
#include <iostream>
#include <limits>
#include <string>

#include <vltextstream/vltextstream.hpp>

#include "bench/shapes.hpp"

extern "C" __attribute__((noinline)) void detect_once(const std::u16string& text) {
  const textio::parser::options options;
  const textio::detection::StrategySelector selector(options);
  selector.pick_strategy(textio::Field(text.data(), text.size()),
                         std::numeric_limits<unsigned long>::max());
}

int main(int argc, char** argv) {
  const textio::bench::Shape* const shape =
      argc == 3 ? textio::bench::find_shape(argv[1]) : nullptr;
  if (shape == nullptr) {
    std::cerr << "usage: linear_main SHAPE UNITS\n";
    return 2;
  }
  const auto units = static_cast<std::size_t>(std::strtoul(argv[2], nullptr, 10));
  detect_once(units == 0 ? std::u16string() : shape->make(units));
  return 0;
}
