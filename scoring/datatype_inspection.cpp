#include "scoring/datatype_inspection.hpp"

#include <algorithm>
#include <functional>

#include "scoring/datatype_recognizers.hpp"
#include "strategy/strategy.hpp"

namespace textio {
namespace {

// The part of `field` that may be read: a field that starts in `text` ends with it at the latest.
Field readable_part(const Field& field, const Field& text) {
  const std::less_equal<const char16_t*> not_after;
  const char16_t* const text_end = text.data + text.length;
  if (!not_after(text.data, field.data) || !not_after(field.data, text_end)) return field;
  return {field.data, std::min(field.length, static_cast<std::size_t>(text_end - field.data))};
}

std::uint32_t count_of(const std::vector<DatatypeCode>& codes, DatatypeCode code) {
  return static_cast<std::uint32_t>(std::count(codes.begin(), codes.end(), code));
}

}  // namespace

std::vector<DatatypeCode> classify_columns(const FieldArray& array, const InspectionScope& scope) {
  std::vector<DatatypeCode> codes(scope.num_variables, DatatypeCode::empty);
  std::size_t open_columns = codes.size();

  // Upwards from the last line, so that the header and what follows it matter least.
  std::size_t line = array.counts.size();
  while (open_columns > 0 && line > 0 && line - 1 > scope.header_lines) {
    --line;
    const std::size_t begin = array.counts[line - 1];
    const std::size_t count = array.counts[line] - begin;
    if (static_cast<std::int32_t>(count) < scope.modal_field_count) continue;
    for (std::size_t column = 0; column < std::min(count, codes.size()); ++column) {
      if (codes[column] != DatatypeCode::empty) continue;
      const Field field = readable_part(array.fields[begin + column], scope.text);
      codes[column] = classify_field(field, scope.whitespace);
      if (codes[column] != DatatypeCode::empty) --open_columns;
    }
  }
  return codes;
}

std::vector<DatatypeCode> Strategy::classify_columns(const FieldArray& fields) const {
  return textio::classify_columns(
      fields, {header_lines_, valuation_.modal_field_count,
               static_cast<std::size_t>(valuation_.num_variables), options_->whitespace, text_});
}

void Strategy::inspect_datatypes(const FieldArray& fields) {
  column_classes_ = classify_columns(fields);
  const std::vector<DatatypeCode>& codes = column_classes_;
  const std::uint32_t empty = count_of(codes, DatatypeCode::empty);
  valuation_.typed_columns += static_cast<std::uint32_t>(codes.size()) - empty;
  valuation_.date_columns +=
      count_of(codes, DatatypeCode::date) + count_of(codes, DatatypeCode::duration);
  valuation_.numeric_columns += count_of(codes, DatatypeCode::number);
  valuation_.datetime_columns += count_of(codes, DatatypeCode::datetime);
}

}  // namespace textio
