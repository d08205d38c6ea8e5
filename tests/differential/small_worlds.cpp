// The series are numbered in bijective base `letters`, with the digits 1 to `letters`; the empty
// series is 0. Each series has one number, and a longer series has a larger number.
#include "differential/small_worlds.hpp"

#include <algorithm>

#include <vltextstream/strategy/search/code_unit_finder.hpp>
#include "differential/comparison.hpp"
#include "support/printing.hpp"

namespace textio::differential {
namespace {

// One of the columns has no width, and lines of more than three code units start again at the
// first.
const std::vector<unsigned long> kWidths = {1, 0, 2};

constexpr std::size_t kNotKnown = SIZE_MAX;

// The number of code units before the border, of a text across blocks.
constexpr std::size_t kBeforeBorder = 2;

std::string under_heading(const std::string& heading, const std::string& difference) {
  return difference.empty() ? difference : heading + '\n' + difference;
}

std::string heading(const Choices& choices) {
  if (!choices.header_lines) return "header lines detected";
  if (*choices.header_lines == kNotKnown) return "header lines given as not known";
  return std::to_string(*choices.header_lines) + " header lines given";
}

std::string difference_with(const std::u16string& text, const Choices& choices) {
  return under_heading(heading(choices), difference_in_strategies(text, choices, kWidths) +
                                             difference_in_detection(text, choices));
}

std::string difference_in_counts(const Series& counts, Choices choices) {
  choices.line_endings = {u"\n"};  // the only one
  return under_heading(heading(choices), difference_in_scores(counts, choices));
}

Choices with_header_lines(std::size_t header_lines) {
  Choices choices;
  choices.header_lines = header_lines;
  return choices;
}

std::string difference_in_text(const std::u16string& text, bool with_given) {
  std::string differences = difference_with(text, {});
  if (with_given) {
    for (const std::size_t header_lines :
         {std::size_t{0}, std::size_t{1}, std::size_t{2}, text.size() + 1}) {
      differences += difference_with(text, with_header_lines(header_lines));
    }
  }
  return under_heading("text \"" + testing_support::readable(text) + '"', differences);
}

}  // namespace

SmallWorld::SmallWorld(std::size_t letters, std::size_t longest) : letters_(letters), size_(1) {
  for (std::size_t length = 0; length < longest; ++length) size_ = size_ * letters + 1;
}

Series SmallWorld::series(std::uint64_t number) const {
  Series series;
  for (; number > 0; number /= letters_) {
    --number;
    series.push_back(number % letters_);
  }
  std::reverse(series.begin(), series.end());
  return series;
}

std::optional<FirstDifference> first_difference(
    const SmallWorld& world, const Part& part,
    const std::function<std::string(const Series&)>& compare) {
  for (std::uint64_t number = part.index; number < world.size(); number += part.count) {
    std::string differences = compare(world.series(number));
    if (!differences.empty()) return FirstDifference{number, std::move(differences)};
  }
  return std::nullopt;
}

std::u16string small_text(const Series& series) {
  std::u16string text;
  for (const std::size_t letter : series) text += kSmallAlphabet[letter];
  return text;
}

std::vector<std::u16string> texts_across_blocks(const Series& series) {
  constexpr std::size_t kBlock = CodeUnitFinder::kBlockUnits;
  const std::u16string line = std::u16string(kBlock - kBeforeBorder - 1, u'b') + u'\n';
  const std::u16string text = line + small_text(series);
  return {text, text + std::u16string(kBlock, u'b')};
}

std::string difference_in_small_text(const Series& series, bool with_given) {
  return difference_in_text(small_text(series), with_given);
}

std::string difference_across_blocks(const Series& series, bool with_given) {
  std::string differences;
  for (const std::u16string& text : texts_across_blocks(series)) {
    differences += difference_in_text(text, with_given);
  }
  return differences;
}

std::string difference_in_small_counts(const Series& counts, bool with_given) {
  std::string differences = difference_in_counts(counts, {});
  if (with_given) {
    for (std::size_t header_lines = 0; header_lines <= counts.size() + 1; ++header_lines) {
      differences += difference_in_counts(counts, with_header_lines(header_lines));
    }
    differences += difference_in_counts(counts, with_header_lines(kNotKnown));
  }
  std::string name = "fields per line";
  for (const std::size_t count : counts) name += ' ' + std::to_string(count);
  return under_heading(name, differences);
}

}  // namespace textio::differential
