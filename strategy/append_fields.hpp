// Cutting one line into its fields, given the step from field to field.
#pragma once

#include <cstddef>
#include <vector>

#include <vltextstream/strategy/field_text.hpp>

namespace textio {

// Whether `field`, a field of `line`, ends where the line ends. A field may report a length beyond
// the end of its line.
inline bool ends_with(const Field& line, const Field& field) {
  const auto offset = static_cast<std::size_t>(field.data - line.data);
  return offset <= line.length && field.length == line.length - offset;
}

// Appends the fields of `line`. `next_field(pos)` returns the extent of the field that starts at
// `pos`. Each step advances: a field has a code unit, a delimiter or both. Columns of width 0 have
// neither, but not all columns have width 0.
template <typename NextField>
void append_fields_of(const Field& line, std::vector<Field>& fields, NextField next_field) {
  std::size_t pos = 0;
  const auto take = [&] {
    const FieldExtent extent = next_field(pos);
    fields.push_back(extent.field);
    pos = extent.next;
  };
  while (!ends_at(line, pos)) {
    take();
    // A line that ends with a delimiter has one more field after it, which is empty. The same step
    // gives a line that is too short for its fixed widths one more field.
    if (ends_at(line, pos) && !ends_with(line, fields.back())) take();
  }
}

}  // namespace textio
