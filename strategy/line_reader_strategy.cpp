#include <vltextstream/strategy/line_reader_strategy.hpp>

#include <vltextstream/strategy/line_scan.hpp>
#include <vltextstream/strategy/scan.hpp>
#include <vltextstream/strategy/unit_finder.hpp>

namespace textio {

LineReaderStrategy::LineReaderStrategy(const parser::options& options)
    : Strategy(options),
      line_endings_(get_or_create_delim(options.line_endings)),
      delimiters_(get_or_create_delim({})),
      stop_chars_(make_stop_chars(options.line_endings, {})),
      ending_matcher_(line_endings_),
      stop_bits_(make_unit_bits(stop_chars_)) {}

LineReaderStrategy::~LineReaderStrategy() = default;

int LineReaderStrategy::mode() const { return kLineReader; }

FieldExtent LineReaderStrategy::get_line_extent(const Field& text, unsigned long start) const {
  UnitFinder stops(text, stop_chars_);
  return scan_line(text, stops, start).extent;
}

ScannedLine LineReaderStrategy::scan_line(const Field& text, UnitFinder& stops,
                                          std::size_t start) const {
  if (ends_at(text, start)) return {{slice(text, start, start), start}, 0};
  const UnitBits* const bits = stop_bits_.get();
  std::size_t i = start;
  do {
    i = bits ? find_first_of(text, i, stop_chars_, bits) : stops.next(i);
    if (ends_at(text, i) || match_length(*delimiters_, text, i) > 0) break;
    if (const std::size_t ending = ending_matcher_.length_at(text, i)) {
      return {{slice(text, start, i), i + ending}, 1};
    }
    ++i;
  } while (!ends_at(text, i));
  return {{slice(text, start, i), i}, 1};
}

FieldExtent LineReaderStrategy::get_next_field(const Field& line, unsigned long start) {
  return get_line_extent(line, start);
}

}  // namespace textio
