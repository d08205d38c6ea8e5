// The datatype class of each column of a cut.
//
//   auto codes = classify_columns(strategy.get_fields_from_lines(), scope);
//   // codes[0] == DatatypeCode::number
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include <vltextstream/host/export.hpp>
#include <vltextstream/scoring/datatype_code.hpp>
#include <vltextstream/scoring/strategy_valuation.hpp>
#include <vltextstream/strategy/field_array.hpp>

namespace textio {

// What is inspected. Line numbers count the lines of the field array from 0.
struct VLTEXTSTREAM_EXPORT InspectionScope {
  // Lines up to and including this one are not inspected, because the first line after the header
  // often holds the names. Any value is allowed; if it is not less than the number of lines,
  // nothing is inspected.
  std::size_t header_lines = 0;

  // Lines with fewer fields are skipped.
  std::int32_t modal_field_count = 1;

  // Number of columns. Fields beyond it are ignored.
  std::size_t num_variables = 1;

  // Characters trimmed at both ends of a field.
  std::u16string whitespace;

  // The text that the fields were cut from. A field that starts in it is read only up to its end,
  // even if it reports more code units. Fields from elsewhere are read at their full length.
  Field text;
};

// One code per column: the class of its lowest field that is not empty among the inspected lines;
// DatatypeCode::empty if there is none.
// Cost  stops as soon as every column has a class: after a few lines on a regular file.
VLTEXTSTREAM_EXPORT std::vector<DatatypeCode> classify_columns(const FieldArray& fields,
                                                               const InspectionScope& scope);

// Adds the numbers of typed columns to `valuation`.
void add_classes(const std::vector<DatatypeCode>& codes, StrategyValuation& valuation);

}  // namespace textio
