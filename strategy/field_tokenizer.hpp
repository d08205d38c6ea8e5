// FieldTokenizer: finds the end of a field that may be quoted.
//
// Fields are separated by the delimiters. A field that starts with the quote character extends at
// least to the closing quote, whatever is between, and keeps its quotes. A doubled quote does not
// close it.
#pragma once

#include <cstddef>
#include <memory>
#include <string>
#include <vector>

#include <vltextstream/host/delimiter_set.hpp>
#include <vltextstream/host/export.hpp>
#include <vltextstream/strategy/field.hpp>

namespace textio {

struct FieldRules;

struct VLTEXTSTREAM_EXPORT FieldTokenizer {
  FieldTokenizer(const std::vector<std::u16string>& delimiters,
                 const std::vector<std::u16string>& line_endings);

  // For the strategies of the library; not exported.
  VLTEXTSTREAM_LOCAL explicit FieldTokenizer(std::shared_ptr<const FieldRules> rules);

  // The field of `text` that starts at `pos`. `next` is after the delimiter if a delimiter ended
  // the field. At a line ending, a U+FFFF or the end of the text, `next` is where the field ends.
  FieldExtent tokenize(const Field& text, std::size_t pos) const;

  char16_t quote_ = u'"';
  std::shared_ptr<const DelimiterSet> delimiters_;
  std::shared_ptr<const DelimiterSet> line_endings_;

  // The code units at which a scan has to look more closely, in ascending order.
  std::u16string stop_chars_;

  // The rules prepared for scanning.
  std::shared_ptr<const FieldRules> rules_;
};

}  // namespace textio
