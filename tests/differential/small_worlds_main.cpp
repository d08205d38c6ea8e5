// Compares the library with the reference over a small world, or over a part of it.
//   small_worlds texts UNITS GIVEN [PART PARTS]     all texts of up to UNITS units
//   small_worlds blocks UNITS GIVEN [PART PARTS]    the same, across blocks of the vector code
//   small_worlds counts LINES GIVEN [PART PARTS]    all numbers of fields on up to LINES lines
// Those of up to GIVEN units or lines are also compared with header lines given. PART is 0 to
// PARTS - 1. Prints how many were compared, or the first difference with its number; exits with 1
// when there is one. SEARCH_KERNEL may name a kernel of the vector code.
#include <cstdlib>
#include <iostream>
#include <string>
#include <vector>

#include "differential/small_worlds.hpp"

namespace textio::differential {
namespace {

struct Kind {
  const char* name;
  std::size_t letters;
  std::string (*compare)(const Series& series, bool with_given);
};

constexpr Kind kKinds[] = {{"texts", kSmallAlphabetSize, difference_in_small_text},
                           {"blocks", kSmallAlphabetSize, difference_across_blocks},
                           {"counts", kSmallCounts, difference_in_small_counts}};

const Kind* find_kind(const std::string& name) {
  for (const Kind& kind : kKinds) {
    if (name == kind.name) return &kind;
  }
  return nullptr;
}

int run(const Kind& kind, std::size_t longest, std::size_t longest_given, const Part& part) {
  std::uint64_t compared = 0;
  std::uint64_t compared_with_given = 0;
  const auto difference =
      first_difference(SmallWorld(kind.letters, longest), part, [&](const Series& series) {
        const bool with_given = series.size() <= longest_given;
        ++compared;
        if (with_given) ++compared_with_given;
        return kind.compare(series, with_given);
      });
  if (difference) {
    std::cout << "difference at number " << difference->number << ": " << difference->description;
    return 1;
  }
  std::cout << kind.name << ": " << compared << " compared, " << compared_with_given
            << " of them also with header lines given: no difference\n";
  return 0;
}

}  // namespace
}  // namespace textio::differential

int main(int argc, char** argv) {
  using namespace textio::differential;
  const Kind* const kind = argc == 4 || argc == 6 ? find_kind(argv[1]) : nullptr;
  std::vector<std::uint64_t> numbers;
  for (int i = 2; i < argc; ++i) numbers.push_back(std::strtoull(argv[i], nullptr, 10));
  const Part part = argc == 6 ? Part{numbers[2], numbers[3]} : Part{};
  if (kind == nullptr || part.index >= part.count) {
    std::cerr << "usage: small_worlds texts|blocks|counts LONGEST GIVEN [PART PARTS]\n";
    return 2;
  }
  return run(*kind, numbers[0], numbers[1], part);
}
