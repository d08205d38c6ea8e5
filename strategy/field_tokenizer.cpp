#include <vltextstream/strategy/field_tokenizer.hpp>

#include <utility>

#include <vltextstream/strategy/field_cursor.hpp>
#include <vltextstream/strategy/field_rules.hpp>

namespace textio {

FieldTokenizer::FieldTokenizer(const std::vector<std::u16string>& delimiters,
                               const std::vector<std::u16string>& line_endings)
    : FieldTokenizer(std::make_shared<FieldRules>(delimiters, line_endings)) {}

FieldTokenizer::FieldTokenizer(std::shared_ptr<const FieldRules> rules)
    : delimiters_(rules->delimiters.shared_set()),
      line_endings_(rules->line_endings.shared_set()),
      stop_chars_(rules->stop_chars),
      rules_(std::move(rules)) {}

FieldExtent FieldTokenizer::tokenize(const Field& text, std::size_t pos) const {
  const auto field_at_pos = [&](const FieldRules& rules) -> FieldExtent {
    const FieldEnd field = FieldCursor(rules, text).end_of_field(pos);
    return {slice(text, pos, field.end), field.next};
  };
  return field_at_pos(quote_ == rules_->quote ? *rules_ : rules_->with_quote(quote_));
}

}  // namespace textio
