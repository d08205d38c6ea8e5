#include <vltextstream/strategy/fixed_width_strategy.hpp>

#include <algorithm>
#include <limits>
#include <numeric>
#include <stdexcept>

#include <vltextstream/strategy/line_scan.hpp>
#include <vltextstream/strategy/scan.hpp>
#include <vltextstream/strategy/unit_finder.hpp>

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

FieldExtent FixedWidthStrategy::get_line_extent(const Field& text, unsigned long start) const {
  UnitFinder stops(text, stop_chars());
  return scan_line(text, stops, start).extent;
}

// The units with which a line ending begins; none when they are many.
std::u16string_view FixedWidthStrategy::stop_chars() const {
  const DelimiterSet& set = *line_endings_;
  if (ending_matcher_.may_need_index()) return {};
  if (set.is_single_char) return {set.single_char, 1};
  return {set.first_chars_begin,
          static_cast<std::size_t>(set.first_chars_end - set.first_chars_begin)};
}

// A line ending may stand anywhere, and a U+FFFF in the text does not end the line: behind the text
// one is seen, too, and a line ending may consist of it.
ScannedLine FixedWidthStrategy::scan_line(const Field& text, UnitFinder& stops,
                                          std::size_t start) const {
  const bool tries_each = ending_matcher_.may_need_index();
  for (std::size_t i = start; i <= text.length; ++i) {
    if (!tries_each) i = stops.next(i);
    if (const std::size_t ending = ending_matcher_.length_at(text, i)) {
      return {{slice(text, start, i), i + ending}};
    }
  }
  return {{slice(text, start, text.length), text.length}};
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
