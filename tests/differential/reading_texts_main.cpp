// Reads texts at random and checks what must hold of each reading: see differential/reading_comparison.hpp.
//   reading_texts COUNT [FIRST]     the texts with the numbers from FIRST on, 0 if it is not given
// Of 16 texts, ten are tables that are also compared with the reference, two are bytes with a layout made at random,
// three are read with a layout that is detected, and one is read by several threads. Prints how many lines and bytes
// were accounted for, or the first difference with the number of its text; exits with 1 when there is one.
#include <cstdint>
#include <cstdlib>
#include <iostream>
#include <iterator>
#include <random>
#include <string>

#include "differential/reading_comparison.hpp"

namespace textio::differential {
namespace {

constexpr std::uint64_t kKinds = 16;

std::string random_bytes(const Choose& choose) {
  static constexpr char kOften[] = "a1,;\"\n\r\t |'-.\\#\0\xFF\xC3\xA9\x81\x8E\xEF\xBB\xBF";
  std::string bytes;
  const std::size_t length = choose(256) * (choose(8) == 7 ? 16 : 1);
  while (bytes.size() < length) {
    const bool is_any = choose(4) == 3;
    bytes.push_back(is_any ? static_cast<char>(choose(256)) : kOften[choose(sizeof kOften - 1)]);
  }
  return bytes;
}

const char* random_encoding(const Choose& choose) {
  static constexpr const char* kEncodings[] = {"UTF-8",     "windows-1252", "UTF-16LE", "UTF-16BE",
                                               "Shift_JIS", "GB18030",      "EUC-JP",   "Big5"};
  return kEncodings[choose(std::size(kEncodings))];
}

struct Sums {
  std::uint64_t texts = 0;
  std::uint64_t bytes = 0;
};

std::string difference_in_text(std::uint64_t number, Sums& sums) {
  std::mt19937_64 random(number);
  const Choose choose = [&](std::size_t bound) {
    return static_cast<std::size_t>(random() % bound);
  };
  const std::uint64_t kind = number % kKinds;
  ReadingChecks checks;
  ++sums.texts;
  if (kind < 2) {
    const std::string bytes = random_bytes(choose);
    standalone::Layout layout = random_layout(choose);
    layout.encoding = random_encoding(choose);
    checks.settings = random_settings(choose);
    sums.bytes += bytes.size();
    return difference_in_reading(bytes, &layout, checks);
  }
  const RandomTable table = random_table(choose);
  checks.settings = random_settings(choose);
  checks.with_threads = kind == 2;
  sums.bytes += table.bytes.size();
  if (kind >= 3 && kind < 6) return difference_in_reading(table.bytes, nullptr, checks);
  std::string difference = difference_from_reference(table, kind % 2 == 0 ? 256 : 1'048'576);
  if (difference.empty()) difference = difference_in_reading(table.bytes, &table.layout, checks);
  return difference;
}

int run(std::uint64_t count, std::uint64_t first) {
  Sums sums;
  for (std::uint64_t number = first; number < first + count; ++number) {
    std::string difference;
    try {
      difference = difference_in_text(number, sums);
    } catch (const std::exception& error) {
      difference = std::string("an exception: ") + error.what();
    }
    if (difference.empty()) continue;
    std::cout << "difference in text " << number << ": " << difference << '\n';
    return 1;
  }
  std::cout << sums.texts << " texts, " << sums.bytes << " bytes: no difference\n";
  return 0;
}

}  // namespace
}  // namespace textio::differential

int main(int argc, char** argv) {
  if (argc != 2 && argc != 3) {
    std::cerr << "usage: reading_texts COUNT [FIRST]\n";
    return 2;
  }
  const std::uint64_t count = std::strtoull(argv[1], nullptr, 10);
  return textio::differential::run(count, argc == 3 ? std::strtoull(argv[2], nullptr, 10) : 0);
}
