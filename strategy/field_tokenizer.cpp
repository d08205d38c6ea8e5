#include <vltextstream/strategy/field_tokenizer.hpp>

#include <vltextstream/strategy/field_cursor.hpp>
#include <vltextstream/strategy/field_rules.hpp>

namespace textio {

FieldTokenizer::FieldTokenizer(const std::vector<std::u16string>& delimiters,
                               const std::vector<std::u16string>& line_endings)
    : delimiters_(get_or_create_delim(delimiters)),
      line_endings_(get_or_create_delim(line_endings)),
      stop_chars_(make_stop_chars(delimiters, line_endings)),
      rules_(std::make_shared<FieldRules>(quote_, stop_chars_, delimiters_, line_endings_)) {}

FieldExtent FieldTokenizer::tokenize(const Field& text, std::size_t pos) const {
  if (quote_ != rules_->quote) {
    FieldTokenizer other = *this;
    other.rules_ = std::make_shared<FieldRules>(quote_, stop_chars_, delimiters_, line_endings_);
    return other.tokenize(text, pos);
  }
  const FieldEnd field = FieldCursor(*rules_, text).end_of_field(pos);
  return {slice(text, pos, field.end), field.next};
}

}  // namespace textio
