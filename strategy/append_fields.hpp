// Cutting one line into its fields, given the step from field to field.
#pragma once

#include <cstddef>
#include <vector>

#include <vltextstream/strategy/field_text.hpp>

namespace textio {

// Whether `field`, a field of `line`, ends where the line ends. A field may report more code units
// than the line has.
inline bool ends_with(const Field& line, const Field& field) {
  const auto offset = static_cast<std::size_t>(field.data - line.data);
  return offset <= line.length && field.length == line.length - offset;
}

// Appends the fields of `line`: `next_field(pos)` is the extent of the one that starts at `pos`. Each
// moves on: it holds a code unit, or a delimiter, or both. (Only columns of width 0 do not, and not
// all columns have width 0.)
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
    // A line that ends with a delimiter has one more, empty, field after it. By the same step, a
    // line that is too short for its fixed widths has one field more.
    if (ends_at(line, pos) && !ends_with(line, fields.back())) take();
  }
}

}  // namespace textio
