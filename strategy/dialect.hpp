// Dialect: how the fields of a text are separated.
//
//   const textio::Dialect dialect{textio::LayoutMode::delimited, {"::", "\t"}, {}};
//   std::cout << dialect;   // delimited by "::" or tab
//
// Units      texts are UTF-8; widths count characters.
// Ownership  a plain value without views: copy it, keep it, compare it.
#pragma once

#include <cstddef>
#include <iosfwd>
#include <string>
#include <string_view>
#include <vector>

#include <vltextstream/host/export.hpp>

namespace textio {

// The four ways to separate fields; the numbers are those of Strategy::mode().
enum class LayoutMode { delimited = 0, space_aligned = 1, fixed_width = 2, line_reader = 3 };

// "delimited", "space-aligned", "fixed-width" or "line-reader"; empty for any other value.
VLTEXTSTREAM_EXPORT std::string_view to_string(LayoutMode mode);

struct VLTEXTSTREAM_EXPORT Dialect {
  LayoutMode mode = LayoutMode::line_reader;

  // Delimited: the delimiters. Space-aligned: space and tab. Otherwise none.
  std::vector<std::string> delimiters;

  // Fixed-width: the column widths in characters. Otherwise none.
  std::vector<std::size_t> widths;

  bool operator==(const Dialect&) const = default;
};

// "delimited by comma", "delimited by \"::\" or tab", "fixed-width, widths 3, 5", "space-aligned",
// "line-reader". The result is printable UTF-8, whatever the delimiters contain.
VLTEXTSTREAM_EXPORT std::string to_string(const Dialect& dialect);
VLTEXTSTREAM_EXPORT std::ostream& operator<<(std::ostream& out, const Dialect& dialect);

// A delimiter or line ending as people write it: "comma", "tab", "\"::\"", "\"\\r\\n\"". The result
// is printable UTF-8: control characters are escaped; ill-formed bytes, invisible characters and
// characters that change the writing direction become U+FFFD.
VLTEXTSTREAM_EXPORT std::string marker_name(std::string_view marker);

}  // namespace textio
