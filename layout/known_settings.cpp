// Each member has a function of its own that checks it completely and then sets the option together
// with its flag.
#include <vltextstream/layout/known_settings.hpp>

#include <algorithm>
#include <cstdint>
#include <limits>
#include <stdexcept>

#include <fmt/format.h>

#include <vltextstream/detection/fixed_stream.hpp>
#include <vltextstream/layout/given_settings.hpp>
#include <vltextstream/standalone/dates/date_locale.hpp>
#include <vltextstream/standalone/decoding/encoding_names.hpp>
#include <vltextstream/standalone/decoding/utf_text.hpp>

namespace textio::standalone {
namespace {

// No sample has more characters, and so no more columns or lines that end.
constexpr std::size_t kMost = kSampleUnits;

[[noreturn]] void refuse(const char* member, std::string_view reason) {
  throw std::invalid_argument(fmt::format("Known::{}: {}", member, reason));
}

// --- texts -------------------------------------------------------------------------------------

// A surrogate stands for a character above U+FFFF, or for a byte that is no UTF-8; a text that is
// searched has neither, and ends at a U+FFFF.
bool can_be_found(char16_t unit) { return (unit < 0xD800 || unit > 0xDFFF) && unit != 0xFFFF; }

std::u16string units_of(const std::string& text, const char* member) {
  std::u16string units = from_utf8(text);
  if (!std::all_of(units.begin(), units.end(), can_be_found)) {
    refuse(member, "expected UTF-8 without characters above U+FFFE");
  }
  return units;
}

std::u16string marker_of(const std::string& text, const char* member) {
  if (text.empty()) refuse(member, "expected at least one character");
  return units_of(text, member);
}

std::vector<std::u16string> markers_of(const std::vector<std::string>& texts, const char* member) {
  if (texts.empty()) refuse(member, "expected at least one text");
  std::vector<std::u16string> markers;
  markers.reserve(texts.size());
  for (const std::string& text : texts) markers.push_back(marker_of(text, member));
  return markers;
}

// --- numbers -----------------------------------------------------------------------------------

// A negative number that was converted is larger than `most`.
std::size_t in_range(std::size_t value, std::size_t least, std::size_t most, const char* member) {
  if (value < least || value > most) {
    refuse(member, fmt::format("expected {} to {}, got {}", least, most, value));
  }
  return value;
}

// --- members -----------------------------------------------------------------------------------

void set_delimiters(const Known& known, parser::options& options) {
  if (!known.delimiters) return;
  options.delimiters = markers_of(*known.delimiters, "delimiters");
  options.detect_delimiters = false;
}

void set_widths(const Known& known, parser::options& options) {
  if (!known.widths) return;
  if (known.delimiters) refuse("widths", "expected either widths or delimiters");
  if (known.widths->empty()) refuse("widths", "expected at least one width");
  for (const std::size_t width : *known.widths) in_range(width, 1, kMost, "widths");
  options.variable_widths.assign(known.widths->begin(), known.widths->end());
  options.parser_type = parser::parser_kind::fixedwidth;
}

void set_header_lines(const Known& known, parser::options& options) {
  if (!known.header_lines) return;
  options.header_lines = in_range(*known.header_lines, 0, kMost, "header_lines");
  options.detect_header_lines = false;
}

void set_num_variables(const Known& known, parser::options& options) {
  if (!known.num_variables) return;
  options.num_variables = in_range(*known.num_variables, 1, kMost, "num_variables");
  options.detect_num_variables = false;
}

void set_texts(const Known& known, parser::options& options) {
  if (known.comment_marker) {
    options.comment_style = {marker_of(*known.comment_marker, "comment_marker")};
  }
  if (known.line_endings) {
    options.line_endings = markers_of(*known.line_endings, "line_endings");
  }
  if (known.whitespace) options.whitespace = units_of(*known.whitespace, "whitespace");
}

// One character; the empty text is U+0000.
std::optional<char16_t> character_of(const std::optional<std::string>& text, const char* member) {
  if (!text) return std::nullopt;
  const std::u16string units = units_of(*text, member);
  if (units.size() > 1) refuse(member, "expected one character");
  return units.empty() ? u'\0' : units[0];
}

std::optional<char16_t> mark_of(const std::optional<std::string>& text, const char* member) {
  if (text && text->empty()) refuse(member, "expected one character");
  return character_of(text, member);
}

// The rules for these are those of the settings.
void set_table(const Known& known, DetectSettings& settings) {
  if (known.judge) settings.judge = *known.judge;
  if (known.names_line) settings.names_line = in_range(*known.names_line, 0, kMost, "names_line");
  if (known.units_line) settings.units_line = in_range(*known.units_line, 0, kMost, "units_line");
  settings.quote = character_of(known.quote, "quote");
  settings.escape = character_of(known.escape, "escape");
  settings.decimal = mark_of(known.decimal, "decimal");
  settings.grouping = mark_of(known.grouping, "grouping");
  if (known.missing) {
    for (const std::string& text : *known.missing) {
      settings.missing.push_back(units_of(text, "missing"));
    }
  }
  if (const auto problem = problem_with(settings)) {
    refuse(std::string(problem->member).c_str(), "expected " + problem->expected);
  }
}

void set_encoding(const Known& known, DetectSettings& settings) {
  if (!known.encoding) return;
  try {
    static_cast<void>(canonical_encoding(*known.encoding));
  } catch (const std::invalid_argument& unknown) {
    refuse("encoding", unknown.what());
  }
  settings.encoding = known.encoding;
}

void set_date_locale(const Known& known, parser::options& options) {
  if (!known.date_locale) return;
  options.date_locale = units_of(*known.date_locale, "date_locale");
  try {
    const datetime::DateLocaleScope known_to_icu(options.date_locale);
  } catch (const std::invalid_argument&) {
    refuse("date_locale", "expected the name of a locale such as de_DE");
  }
}

}  // namespace

DetectSettings settings_of(const Known& known) {
  DetectSettings settings;
  settings.look_at_end = false;  // a Detection does not tell of it
  set_delimiters(known, settings.options);
  set_widths(known, settings.options);
  set_header_lines(known, settings.options);
  set_num_variables(known, settings.options);
  set_texts(known, settings.options);
  set_encoding(known, settings);
  set_date_locale(known, settings.options);
  set_table(known, settings);
  if (known.lines_to_sample) {
    settings.num_lines = in_range(*known.lines_to_sample, 1, kMost, "lines_to_sample");
  }
  if (known.max_bytes) {
    settings.max_bytes =
        in_range(*known.max_bytes, 1, std::numeric_limits<std::int64_t>::max(), "max_bytes");
  }
  return settings;
}

}  // namespace textio::standalone
