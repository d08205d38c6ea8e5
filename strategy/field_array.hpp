// FieldArray: the fields of all sampled lines.
#pragma once

#include <cstddef>
#include <vector>

#include <vltextstream/strategy/field.hpp>

namespace textio {

// Line k consists of the fields from counts[k - 1] (0 for the first line) up to, but not including,
// counts[k]. An empty line repeats the total before it.
class VLTEXTSTREAM_EXPORT FieldArray {
 public:
  // All fields, line by line, each line from left to right.
  std::vector<Field> fields;

  // For each line, the total number of fields up to its end.
  std::vector<std::size_t> counts;
};

}  // namespace textio
