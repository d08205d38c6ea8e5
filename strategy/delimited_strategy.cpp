#include <vltextstream/strategy/delimited_strategy.hpp>

#include <vltextstream/strategy/delimiter_priority.hpp>
#include <vltextstream/strategy/field_scan.hpp>
#include <vltextstream/strategy/line_scan.hpp>

namespace textio {
namespace {

// A character that is not in the list ranks as its search says: at 2^64, far behind, yet measured.
double priors_rank_of(char16_t delimiter) {
  return static_cast<double>(kDelimiterPriority.find(delimiter));
}

}  // namespace

DelimitedStrategy::DelimitedStrategy(const parser::options& options,
                                     const std::vector<std::u16string>& delimiters)
    : Strategy(options),
      tokenizer_(delimiters, options.line_endings),
      line_endings_(tokenizer_.line_endings_),
      ending_matcher_(line_endings_) {
  std::u16string whitespace = options.whitespace;
  for (const std::u16string& delimiter : delimiters) {
    if (delimiter.size() == 1) remove_in_place(whitespace, delimiter[0]);
  }
  reset_whitespace(whitespace);
  if (delimiters.size() == 1 && delimiters[0].size() == 1) {
    valuation_.priors_rank = priors_rank_of(delimiters[0][0]);
    space_separated_ = delimiters[0][0] == u' ';
  }
}

DelimitedStrategy::DelimitedStrategy(const parser::options& options)
    : DelimitedStrategy(options, options.delimiters) {}

DelimitedStrategy::DelimitedStrategy(const parser::options& options, char16_t delimiter)
    : DelimitedStrategy(options, {std::u16string(1, delimiter)}) {}

DelimitedStrategy::~DelimitedStrategy() = default;

// Of a set with a single character nothing but that character counts.
std::vector<std::u16string> DelimitedStrategy::delimiters() const {
  const DelimiterSet& set = *delimiter();
  if (set.is_single_char) return {std::u16string(1, *set.single_char)};
  return set.strings;
}

int DelimitedStrategy::mode() const { return kDelimited; }

FieldExtent DelimitedStrategy::get_line_extent(const Field& text, unsigned long start) const {
  FieldScan fields(tokenizer_, text);
  return scan_line(fields, start).extent;
}

// A line is made of whole fields, so that a line ending inside quotes does not end it. A field
// that consumed nothing stopped at a line ending or at the end of the text: the loop moves on
// with every field. A delimiter at the end of the text has one more, empty, field behind it.
ScannedLine DelimitedStrategy::scan_line(FieldScan& fields, std::size_t start) const {
  const Field& text = fields.text();
  std::size_t num_fields = 0;
  bool ends_with_delimiter = false;
  std::size_t pos = start;
  while (!ends_at(text, pos)) {
    const auto [end, next] = fields.end_of_field(pos);
    pos = next;
    ++num_fields;
    ends_with_delimiter = pos != end;
    if (ends_with_delimiter) continue;
    if (const std::size_t ending = ending_matcher_.length_at(text, end)) {
      return {{slice(text, start, end), end + ending}, num_fields};
    }
  }
  return {{slice(text, start, pos), pos}, num_fields + (ends_with_delimiter ? 1 : 0)};
}

FieldExtent DelimitedStrategy::get_next_field(const Field& line, unsigned long start) {
  FieldScan fields(tokenizer_, line);
  return next_field(fields, start);
}

FieldExtent DelimitedStrategy::next_field(FieldScan& fields, std::size_t start) const {
  const auto [end, next] = fields.end_of_field(start);
  return {slice(fields.text(), start, end), next};
}

}  // namespace textio
