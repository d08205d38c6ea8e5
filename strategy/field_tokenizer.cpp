#include "strategy/field_tokenizer.hpp"

#include <algorithm>

#include "strategy/field_scan.hpp"

namespace textio {
FieldTokenizer::FieldTokenizer(const std::vector<std::u16string>& delimiters,
                               const std::vector<std::u16string>& line_endings)
    : delimiters_(get_or_create_delim(delimiters)),
      line_endings_(get_or_create_delim(line_endings)),
      stop_chars_(make_stop_chars(delimiters, line_endings)),
      delimiter_matcher_(delimiters_),
      ending_matcher_(line_endings_),
      stop_bits_(make_unit_bits(stop_chars_)) {}

FieldExtent FieldTokenizer::tokenize(const Field& text, std::size_t pos) const {
  return FieldScan(*this, text).field_at(pos);
}

FieldExtent FieldScan::field_at(std::size_t pos) {
  if (pos >= text_.length) return {slice(text_, pos, pos), pos};
  std::size_t i = pos;
  while (!ends_at(text_, i) && text_.data[i] == tokenizer_.quote_) {
    const std::size_t closing = quotes_.next(i + 1);
    i = std::min(closing + 1, text_.length);
  }
  while (!ends_at(text_, i)) {
    i = next_stop(i);
    if (ends_at(text_, i) || tokenizer_.ending_matcher_.length_at(text_, i) > 0) break;
    if (const std::size_t delimiter = tokenizer_.delimiter_matcher_.length_at(text_, i)) {
      return {slice(text_, pos, i), i + delimiter};
    }
    ++i;
  }
  return {slice(text_, pos, i), i};
}

}  // namespace textio
