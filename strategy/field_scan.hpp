// FieldScan: the walk of a tokenizer over one text.
//
//   FieldScan scan(tokenizer, text);
//   FieldExtent field = scan.field_at(0);
//
// Remembers where the units stand at which a field may end: cutting field after field is cheap.
//
// Ownership  refers to the tokenizer and the text, which must not change while the scan lives.
#pragma once

#include <cstddef>

#include "strategy/field_tokenizer.hpp"
#include "strategy/scan.hpp"
#include "strategy/unit_finder.hpp"

namespace textio {

class FieldScan {
 public:
  FieldScan(const FieldTokenizer& tokenizer, const Field& text)
      : tokenizer_(tokenizer),
        text_(text),
        stops_(text, tokenizer.stop_chars_),
        quotes_(text, {&tokenizer.quote_, 1}) {}

  const Field& text() const { return text_; }

  // As FieldTokenizer::tokenize.
  FieldExtent field_at(std::size_t pos);

 private:
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
