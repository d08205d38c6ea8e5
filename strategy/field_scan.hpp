// FieldScan: the walk of a tokenizer over one text.
//
//   FieldScan scan(tokenizer, text);
//   FieldEnd field = scan.end_of_field(0);      // the next one starts at field.next
//
// Remembers where the units stand at which a field may end, and the quotes, once each of its own:
// cutting field after field is cheap.
//
// Ownership  refers to the tokenizer and the text, which must not change while the scan lives.
#pragma once

#include <algorithm>
#include <cstddef>

#include <vltextstream/strategy/field_tokenizer.hpp>
#include <vltextstream/strategy/scan.hpp>
#include <vltextstream/strategy/unit_finder.hpp>

namespace textio {

// Where a field ends, and where the scan goes on: behind the delimiter if one ended the field.
struct FieldEnd {
  std::size_t end;
  std::size_t next;
};

class FieldScan {
 public:
  FieldScan(const FieldTokenizer& tokenizer, const Field& text)
      : tokenizer_(tokenizer),
        text_(text),
        stops_(text, tokenizer.stop_chars_),
        quotes_(text, {&tokenizer.quote_, 1}) {}

  const Field& text() const { return text_; }

  // Of the field that starts at `pos`. Inlined by command: it is most of the work of its callers.
  [[gnu::always_inline]] FieldEnd end_of_field(std::size_t pos) {
    if (pos >= text_.length) return {pos, pos};
    std::size_t i = pos;
    while (!ends_at(text_, i) && is_quote(i)) {
      const std::size_t closing = quotes_.next(i + 1);
      i = std::min(closing + 1, text_.length);
    }
    while (!ends_at(text_, i)) {
      i = next_stop(i);
      if (ends_at(text_, i) || tokenizer_.ending_matcher_.length_at(text_, i) > 0) break;
      if (const std::size_t delimiter = tokenizer_.delimiter_matcher_.length_at(text_, i)) {
        return {i, i + delimiter};
      }
      ++i;
    }
    return {i, i};
  }

 private:
  bool is_quote(std::size_t i) const { return text_.data[i] == tokenizer_.quote_; }

  std::size_t next_stop(std::size_t i) {
    const UnitBits* const bits = tokenizer_.stop_bits_.get();
    return bits ? find_first_of(text_, i, tokenizer_.stop_chars_, bits) : stops_.next(i);
  }

  const FieldTokenizer& tokenizer_;
  const Field text_;
  UnitFinder stops_;
  UnitFinder quotes_;
};

}  // namespace textio
