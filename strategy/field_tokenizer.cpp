#include <vltextstream/strategy/field_tokenizer.hpp>

#include <vltextstream/strategy/field_scan.hpp>

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
  const FieldEnd field = FieldScan(*this, text).end_of_field(pos);
  return {slice(text, pos, field.end), field.next};
}

}  // namespace textio
