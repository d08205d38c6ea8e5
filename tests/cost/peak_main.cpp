// The most memory that a whole detection has in use at a time.
//   peak_main SHAPE UNITS LINES MOST_BYTES     LINES 0: all lines; fails beyond MOST_BYTES
// The text is read from a file; the options exist before. bench/memory_count.hpp says what counts.
#include <algorithm>
#include <cstddef>
#include <cstdlib>
#include <iostream>
#include <limits>
#include <new>
#include <string>

#include <sys/resource.h>

#include <vltextstream/vltextstream.hpp>

#include "bench/memory_count.hpp"
#include "bench/shapes.hpp"
#include "support/temp_folder.hpp"

namespace {

constexpr std::size_t kForTheProgram = 500'000'000;  // libraries, the text, the options

// One byte per code unit where that is possible.
std::string bytes_of(const std::u16string& text) {
  const bool is_ascii =
      std::all_of(text.begin(), text.end(), [](char16_t unit) { return unit < 0x80; });
  return is_ascii ? textio::bench::ascii_bytes(text) : textio::bench::utf16_bytes(text);
}

// A detection that needs far more than it may use fails, instead of taking the machine's memory.
void limit_memory(std::size_t bytes) {
  const rlimit limit = {bytes, bytes};
  if (::setrlimit(RLIMIT_AS, &limit) != 0) std::abort();
}

}  // namespace

int main(int argc, char** argv) {
  using textio::bench::Shape;
  const Shape* const shape = argc == 5 ? textio::bench::find_shape(argv[1]) : nullptr;
  if (shape == nullptr) {
    std::cerr << "usage: peak_main SHAPE UNITS LINES MOST_BYTES\n";
    return 2;
  }
  const std::size_t units = std::strtoul(argv[2], nullptr, 10);
  const unsigned long lines = std::strtoul(argv[3], nullptr, 10);
  const std::size_t most_bytes = std::strtoul(argv[4], nullptr, 10);

  const textio::testing_support::TempFolder folder;
  const std::string path = folder.file("text", bytes_of(shape->make(units)));
  textio::standalone::DetectSettings settings;
  settings.judge = textio::standalone::Judge::cascade;
  settings.describe_columns = false;  // the cascade alone
  settings.num_lines = lines > 0 ? lines : std::numeric_limits<unsigned long>::max();
  if (shape->set != nullptr) shape->set(settings, units);

  limit_memory(3 * most_bytes + kForTheProgram);
  bool refused = false;
  const std::size_t bytes = textio::bench::count_memory([&] {
                              try {
                                textio::standalone::detect_layout(path, settings);
                              } catch (const std::bad_alloc&) {
                                refused = true;
                              }
                            }).peak_bytes;
  std::cout << shape->name << ' ' << (lines > 0 ? std::to_string(lines) : "all")
            << " lines: " << bytes / 1000 << (refused ? " KB, then refused\n" : " KB\n");
  if (refused || bytes > most_bytes) {
    std::cerr << shape->name << ": more than " << most_bytes / 1000 << " KB\n";
    return 1;
  }
  return 0;
}
