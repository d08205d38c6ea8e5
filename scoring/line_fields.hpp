// LineFields: the fields of the sampled lines. A classification requests them line by line.
#pragma once

#include <cstddef>
#include <span>
#include <vector>

#include <vltextstream/scoring/datatype_inspection.hpp>
#include <vltextstream/scoring/line_counts.hpp>
#include <vltextstream/strategy/field.hpp>

namespace textio {

class LineFields {
 public:
  // The fields of line `line`, from left to right; valid until the next call.
  virtual std::span<const Field> fields(std::size_t line) = 0;

 protected:
  ~LineFields() = default;
};

// As the overload for a FieldArray. `counts` has the number of fields on each line.
std::vector<DatatypeCode> classify_columns(const LineCounts& counts, LineFields& lines,
                                           const InspectionScope& scope);

}  // namespace textio
