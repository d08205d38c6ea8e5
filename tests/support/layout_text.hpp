// Every member of a layout as one text, so that two layouts can be compared as a whole.
#pragma once

#include <ios>
#include <optional>
#include <sstream>
#include <string>
#include <vector>

#include <vltextstream/layout/layout.hpp>
#include "support/datatype_names.hpp"
#include "support/printing.hpp"
#include "support/selection.hpp"
#include "support/table_facts.hpp"

namespace textio::testing_support {

template <typename Number>
std::string describe(const std::optional<Number>& number) {
  return number ? std::to_string(*number) : "none";
}

inline std::string quoted_texts(const std::vector<std::u16string>& texts) {
  std::string out;
  for (const std::u16string& text : texts) out += " '" + readable(text) + "'";
  return out;
}

inline std::string every_member_of(const standalone::Layout& layout) {
  std::ostringstream out;
  out << std::hexfloat << "mode " << static_cast<int>(layout.mode) << "\ndelimiters"
      << quoted_texts(layout.delimiters) << "\nwidths " << describe(layout.widths) << "\nheader "
      << layout.header_lines << "\nnames found " << static_cast<int>(layout.names_source) << ": "
      << layout.names_reason << "\nnames in " << describe(layout.names_line)
      << quoted_texts(layout.names) << "\nunits in " << describe(layout.units_line)
      << quoted_texts(layout.units) << "\nvariables " << layout.num_variables << ' '
      << names_of(layout.classes) << "\nencoding " << layout.encoding << ' '
      << static_cast<int>(layout.encoding_found) << ' ' << layout.encoding_confidence
      << " ill-formed " << layout.ill_formed_parts << "\nline ending "
      << (layout.line_ending ? readable(*layout.line_ending) : "none") << "\nruns";
  for (const auto& run : layout.lines) {
    out << " [" << static_cast<int>(run.role) << ' ' << run.first_line << '-' << run.last_line
        << ' ' << run.count << ']';
  }
  out << "\nragged " << layout.ragged_lines << " from " << describe(layout.first_ragged_line)
      << "\nsampled " << layout.lines_sampled << " lines " << layout.characters_sampled
      << " characters" << (layout.has_more_text ? " of more" : "") << "\nend "
      << static_cast<int>(layout.selection_end) << " by '" << layout.decided_by << "'\n";
  out << "confidence " << layout.confidence.value_or(-1) << " names "
      << layout.names_probability.value_or(-1) << quoted_texts(layout.names_unique) << "\ndialect "
      << facts_of(layout) << (layout.dialect.has_byte_order_mark ? " mark" : "") << "\nendings";
  for (const auto& each : layout.dialect.line_endings) {
    out << ' ' << readable(each.ending) << '*' << each.count;
  }
  out << "\ncolumns";
  for (const auto& column : layout.columns) {
    out << " [" << facts_of(column) << ' ' << column.num_fitting << " of " << column.num_cells
        << ", " << column.least_width << '-' << column.most_width << quoted_texts(column.examples)
        << ']';
  }
  if (layout.trace) out << '\n' << describe(*layout.trace);
  return out.str();
}

}  // namespace textio::testing_support
