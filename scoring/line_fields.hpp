// The fields of the sampled lines, one line at a time: what a classification asks for.
#pragma once

#include <cstddef>
#include <span>
#include <vector>

#include <vltextstream/scoring/datatype_inspection.hpp>
#include <vltextstream/strategy/field.hpp>

namespace textio {

class LineFields {
 public:
  virtual std::size_t num_lines() const = 0;

  // The number of fields on a line; lines count from 0.
  virtual std::size_t count(std::size_t line) const = 0;

  // The fields of a line, from left to right; valid until the next call.
  virtual std::span<const Field> fields(std::size_t line) = 0;

 protected:
  ~LineFields() = default;
};

// As for a FieldArray; see scoring/datatype_inspection.hpp.
std::vector<DatatypeCode> classify_columns(LineFields& lines, const InspectionScope& scope);

}  // namespace textio
