#include "strategy/field_tokenizer.hpp"

#include "strategy/scan.hpp"

namespace textio {
namespace {

// The index behind the next `quote` after the one at `open`, the text's length when there is none.
std::size_t behind_next_quote(const Field& text, std::size_t open, char16_t quote) {
  const std::size_t found = view_of(text).find(quote, open + 1);
  return found == std::u16string_view::npos ? text.length : found + 1;
}

}  // namespace

FieldTokenizer::FieldTokenizer(const std::vector<std::u16string>& delimiters,
                               const std::vector<std::u16string>& line_endings)
    : delimiters_(get_or_create_delim(delimiters)),
      line_endings_(get_or_create_delim(line_endings)),
      stop_chars_(make_stop_chars(delimiters, line_endings)),
      delimiter_matcher_(delimiters_),
      ending_matcher_(line_endings_),
      stop_bits_(make_unit_bits(stop_chars_)) {}

FieldExtent FieldTokenizer::tokenize(const Field& text, std::size_t pos) const {
  if (pos >= text.length) return {slice(text, pos, pos), pos};
  std::size_t i = pos;
  while (!ends_at(text, i) && text.data[i] == quote_) i = behind_next_quote(text, i, quote_);
  while (!ends_at(text, i)) {
    i = find_first_of(text, i, stop_chars_, stop_bits_.get());
    if (ends_at(text, i) || ending_matcher_.length_at(text, i) > 0) break;
    if (const std::size_t delimiter = delimiter_matcher_.length_at(text, i)) {
      return {slice(text, pos, i), i + delimiter};
    }
    ++i;
  }
  return {slice(text, pos, i), i};
}

}  // namespace textio
