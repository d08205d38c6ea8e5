// A strategy's cut of a text as plain strings, and single scanning steps.
#pragma once

#include <algorithm>
#include <cstddef>
#include <ostream>
#include <string>
#include <vector>

#include <vltextstream/strategy/field_text.hpp>
#include <vltextstream/strategy/strategy.hpp>
#include "support/exact_text.hpp"
#include "support/printing.hpp"

namespace textio::testing_support {

using Texts = std::vector<std::u16string>;

// The fields of each line; an empty line is an empty list.
using Rows = std::vector<Texts>;

// The code units of `field` that are inside `line`: a fixed-width field may report more than there
// are.
inline std::u16string clipped(const Field& field, const Field& line) {
  const std::size_t begin = static_cast<std::size_t>(field.data - line.data);
  return {field.data, std::min(field.length, line.length - begin)};
}

// Cuts the lines that `strategy` has sampled.
inline Rows cut_of(Strategy& strategy) {
  const FieldArray array = strategy.get_fields_from_lines();
  Rows rows;
  std::size_t next_field = 0;
  for (std::size_t k = 0; k < array.counts.size(); ++k) {
    Texts row;
    for (; next_field < array.counts[k]; ++next_field) {
      row.push_back(clipped(array.fields[next_field], strategy.lines()[k]));
    }
    rows.push_back(row);
  }
  return rows;
}

// Samples up to 1000 lines of `text` and cuts them.
inline Rows cut_of(Strategy& strategy, const ExactText& text) {
  strategy.populate_fields(text.field(), 1000);
  return cut_of(strategy);
}

// One scanning step: what it found and where the next step starts.
struct Step {
  std::u16string found;
  std::size_t next;
  friend bool operator==(const Step&, const Step&) = default;
};
inline std::ostream& operator<<(std::ostream& out, const Step& step) {
  return out << '"' << readable(step.found) << "\" next " << step.next;
}
using Steps = std::vector<Step>;

inline Step step_of(const FieldExtent& extent) { return {text_of(extent.field), extent.next}; }

// The lines of `text`, each from the end of the previous one.
inline Steps line_steps(const Strategy& strategy, const ExactText& text) {
  Steps steps;
  for (std::size_t pos = 0; !ends_at(text.field(), pos); pos = steps.back().next) {
    steps.push_back(step_of(strategy.get_line_extent(text.field(), pos)));
  }
  return steps;
}

// The fields of the line `text`, each from the end of the previous one.
inline Steps field_steps(Strategy& strategy, const ExactText& text) {
  Steps steps;
  for (std::size_t pos = 0; !ends_at(text.field(), pos); pos = steps.back().next) {
    steps.push_back(step_of(strategy.get_next_field(text.field(), pos)));
  }
  return steps;
}

// A string literal with its full length, which may contain U+0000.
template <std::size_t N>
std::u16string with_nul(const char16_t (&units)[N]) {
  return {units, N - 1};
}

}  // namespace textio::testing_support
