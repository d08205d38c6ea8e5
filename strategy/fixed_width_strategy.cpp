#include "strategy/fixed_width_strategy.hpp"

#include <algorithm>
#include <limits>
#include <numeric>
#include <stdexcept>

#include "strategy/scan.hpp"

namespace textio {
namespace {

std::size_t saturating_sum(const std::vector<unsigned long>& widths) {
  constexpr auto kMost = std::numeric_limits<std::size_t>::max();
  return std::accumulate(
      widths.begin(), widths.end(), std::size_t{0},
      [](std::size_t sum, std::size_t width) { return width > kMost - sum ? kMost : sum + width; });
}

}  // namespace

FixedWidthStrategy::FixedWidthStrategy(const parser::options& options,
                                       const std::vector<unsigned long>& widths)
    : Strategy(options),
      line_endings_(get_or_create_delim(options.line_endings)),
      widths_(widths.begin(), widths.end()),
      total_width_(saturating_sum(widths)),
      ending_matcher_(line_endings_) {
  if (total_width_ == 0) {
    throw std::invalid_argument("the widths of a fixed-width table must add up to at least 1");
  }
}

FixedWidthStrategy::~FixedWidthStrategy() = default;

int FixedWidthStrategy::mode() const { return kFixedWidth; }

// Every index is tried, and a U+FFFF in the text does not end the line.
FieldExtent FixedWidthStrategy::get_line_extent(const Field& text, unsigned long start) const {
  for (std::size_t i = start; i <= text.length; ++i) {
    if (const std::size_t ending = ending_matcher_.length_at(text, i)) {
      return {slice(text, start, i), i + ending};
    }
  }
  return {slice(text, start, text.length), text.length};
}

// The column index moves on with every call, also when no text is left, and is not reset at the
// start of a line: the numbers of fields per line follow from this.
FieldExtent FixedWidthStrategy::get_next_field(const Field& line, unsigned long start) {
  const std::size_t width = widths_[next_column_];
  next_column_ = (next_column_ + 1) % widths_.size();
  if (start > line.length) return {slice(line, line.length, line.length), line.length};
  const std::size_t rest = line.length - start;
  return {Field(line.data + start, width), start + std::min(width, rest)};
}

}  // namespace textio
