#include <vltextstream/strategy/dialect.hpp>

#include <ostream>

#include <vltextstream/text/utf8.hpp>

namespace textio {
namespace {

struct CommonMarker {
  std::string_view marker;
  std::string_view name;
};

constexpr CommonMarker kCommonMarkers[] = {
    {",", "comma"}, {"\t", "tab"}, {";", "semicolon"}, {" ", "space"}, {"|", "bar"}, {":", "colon"},
};

void append_hex(std::string& out, char32_t byte) {
  constexpr std::string_view kDigits = "0123456789ABCDEF";
  out += "\\x";
  out += kDigits[byte >> 4];
  out += kDigits[byte & 0xF];
}

void append_shown(std::string& out, char32_t c) {
  if (c == U'\n') {
    out += "\\n";
  } else if (c == U'\r') {
    out += "\\r";
  } else if (c == U'\\' || c == U'"') {
    out += '\\';
    append_utf8(out, c);
  } else if (c < 0x20 || c == 0x7F) {
    append_hex(out, c);
  } else {
    append_utf8(out, is_unprintable(c) ? kReplacement : c);
  }
}

// "a", "a or b", "a, b or c"
std::string alternatives(const std::vector<std::string>& delimiters) {
  std::string out;
  for (std::size_t i = 0; i < delimiters.size(); ++i) {
    const bool is_last = i + 1 == delimiters.size();
    if (i > 0) out += is_last ? " or " : ", ";
    out += marker_name(delimiters[i]);
  }
  return out;
}

std::string joined(const std::vector<std::size_t>& widths) {
  std::string out;
  for (const std::size_t width : widths) {
    if (!out.empty()) out += ", ";
    out += std::to_string(width);
  }
  return out;
}

}  // namespace

std::string_view to_string(LayoutMode mode) {
  switch (mode) {
    case LayoutMode::delimited:
      return "delimited";
    case LayoutMode::space_aligned:
      return "space-aligned";
    case LayoutMode::fixed_width:
      return "fixed-width";
    case LayoutMode::line_reader:
      return "line-reader";
  }
  return "";
}

std::string to_string(const Dialect& dialect) {
  std::string out(to_string(dialect.mode));
  if (dialect.mode == LayoutMode::delimited && !dialect.delimiters.empty()) {
    out += " by " + alternatives(dialect.delimiters);
  }
  if (dialect.mode == LayoutMode::fixed_width && !dialect.widths.empty()) {
    out += ", widths " + joined(dialect.widths);
  }
  return out;
}

std::ostream& operator<<(std::ostream& out, const Dialect& dialect) {
  return out << to_string(dialect);
}

std::string marker_name(std::string_view marker) {
  for (const CommonMarker& common : kCommonMarkers) {
    if (marker == common.marker) return std::string(common.name);
  }
  std::string out = "\"";
  while (!marker.empty()) {
    const Utf8Character c = first_character(marker);
    for (std::size_t i = 0; i < (c.is_well_formed ? 1 : c.length); ++i) append_shown(out, c.code);
    marker.remove_prefix(c.length);
  }
  return out + "\"";
}

}  // namespace textio
