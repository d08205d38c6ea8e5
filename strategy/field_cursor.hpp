// FieldCursor: finds the fields of a text that may be quoted, one after the other.
//
//   FieldCursor fields(rules, text);
//   FieldEnd field = fields.end_of_field(0);      // the next field starts at field.next
//
// Ownership  refers to the rules and the text, which must not change while the cursor uses them.
// Cost       remembers what it has searched, so all fields of a text together take linear time.
#pragma once

#include <cstddef>

#include <vltextstream/strategy/field_rules.hpp>
#include <vltextstream/strategy/field_text.hpp>
#include <vltextstream/strategy/quoting.hpp>
#include <vltextstream/strategy/search/code_unit_finder.hpp>
#include <vltextstream/strategy/search/marker_search.hpp>

namespace textio {

// Where a field ends and where the next one starts: after the delimiter, if a delimiter ended the
// field.
struct FieldEnd {
  std::size_t end;
  std::size_t next;
};

class FieldCursor {
 public:
  FieldCursor(const FieldRules& rules, const Field& text)
      : rules_(rules),
        text_(text),
        stops_(text, rules.stops),
        quotes_(text, rules.quotes),
        delimiters_(rules.delimiters, text),
        line_endings_(rules.line_endings, text) {}

  const Field& text() const { return text_; }

  // Continues with another text.
  void move_to(const Field& text) {
    text_ = text;
    stops_.move_to(text);
    quotes_.move_to(text);
    delimiters_.move_to(text);
    line_endings_.move_to(text);
  }

  // The end of the field that starts at `pos`. Always inlined: callers spend most of their time
  // here.
  [[gnu::always_inline]] FieldEnd end_of_field(std::size_t pos) {
    if (pos >= text_.length) return {pos, pos};
    std::size_t i = skip_quoted(text_, pos, rules_.quote, quotes_);
    while (!ends_at(text_, i)) {
      i = stops_.next(i);
      if (ends_at(text_, i) || line_endings_.length_at(i) > 0) break;
      if (const std::size_t delimiter = delimiters_.length_at(i)) return {i, i + delimiter};
      ++i;
    }
    return {i, i};
  }

  // The length of the line ending at `i`; 0 if there is none.
  std::size_t line_ending_at(std::size_t i) { return line_endings_.length_at(i); }
  MarkerSearch& line_endings() { return line_endings_; }

 private:
  const FieldRules& rules_;
  Field text_;
  CodeUnitFinder stops_;
  CodeUnitFinder quotes_;
  MarkerSearch delimiters_;
  MarkerSearch line_endings_;
};

}  // namespace textio
