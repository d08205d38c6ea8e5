// FieldArray: the fields of all sampled lines.
#pragma once

#include <cstddef>
#include <vector>

#include <vltextstream/strategy/field.hpp>

namespace textio {

// Line k consists of the fields from counts[k - 1] (0 for the first line) up to, not including,
// counts[k]; an empty line repeats the total before it.
class VLTEXTSTREAM_EXPORT FieldArray {
 public:
  // All fields, line after line, each line's fields from left to right.
  std::vector<Field> fields;

  // One running total of fields per line.
  std::vector<std::size_t> counts;
};

}  // namespace textio
