// The front door for plain C++: known facts become settings, and the layout becomes UTF-8.
#include <vltextstream/detect.hpp>

#include <algorithm>
#include <iterator>
#include <utility>

#include <vltextstream/layout/detect_input.hpp>
#include <vltextstream/layout/detect_layout.hpp>
#include <vltextstream/layout/input_text.hpp>
#include <vltextstream/layout/known_settings.hpp>
#include <vltextstream/text/utf8.hpp>

namespace textio {
namespace {

using standalone::DetectSettings;
using standalone::InputText;
using standalone::Layout;

std::string text_at(const std::vector<std::u16string>& texts, std::size_t index) {
  return index < texts.size() ? to_utf8_lossy(texts[index]) : std::string();
}

std::vector<Column> columns_of(const Layout& layout) {
  std::vector<Column> columns;
  columns.reserve(layout.classes.size());
  for (std::size_t i = 0; i < layout.classes.size(); ++i) {
    const bool has_facts = i < layout.columns.size();
    columns.push_back({text_at(layout.names, i), text_at(layout.units, i), layout.classes[i],
                       has_facts ? layout.columns[i].kind : ColumnKind::empty});
  }
  return columns;
}

std::string decider_of(const Layout& layout) {
  const bool is_filter = layout.selection_end == detection::SelectionEnd::single_survivor;
  return is_filter ? layout.decided_by : std::string(to_string(layout.selection_end));
}

std::string text_of(std::optional<char16_t> unit) {
  return unit ? to_utf8_lossy(std::u16string(1, *unit)) : std::string();
}

Rival rival_of(const standalone::Rival& rival) {
  Layout layout;
  layout.mode = rival.mode;
  layout.delimiters = rival.delimiters;
  layout.widths = rival.widths;
  return {dialect_of(layout), text_of(rival.quote), rival.num_variables,
          rival.probability,  rival.reason,         rival.no_table};
}

Detection detection_of(Layout layout) {
  Detection found;
  found.dialect = dialect_of(layout);
  found.columns = columns_of(layout);
  found.header_lines = layout.header_lines;
  found.names_line = layout.names_line;
  found.units_line = layout.units_line;
  found.names_source = layout.names_source;
  found.names_reason = std::move(layout.names_reason);
  found.encoding = std::move(layout.encoding);
  found.encoding_found = layout.encoding_found;
  found.encoding_confidence = layout.encoding_confidence;
  found.ill_formed_parts = layout.ill_formed_parts;
  if (layout.line_ending) found.line_ending = to_utf8_lossy(*layout.line_ending);
  found.lines = std::move(layout.lines);
  found.ragged_lines = layout.ragged_lines;
  found.first_ragged_line = layout.first_ragged_line;
  found.lines_sampled = layout.lines_sampled;
  found.characters_sampled = layout.characters_sampled;
  found.has_more_text = layout.has_more_text;
  found.confidence = layout.confidence;
  found.no_table = std::move(layout.no_table);
  found.decided_by = decider_of(layout);
  found.quote = text_of(layout.quote);
  found.escape = text_of(layout.escape);
  std::transform(layout.rivals.begin(), layout.rivals.end(), std::back_inserter(found.rivals),
                 rival_of);
  found.evidence = std::move(layout.evidence);
  return found;
}

// What a text does not have, with the name of the member in the place of that of the option.
GivenMismatch mismatch_of_member(const GivenMismatch& mismatch) {
  constexpr std::pair<std::string_view, std::string_view> kNames[] = {
      {"VariableNamesLine: E", "Known::names_line: e"},
      {"VariableUnitsLine: E", "Known::units_line: e"},
  };
  std::string message = mismatch.what();
  for (const auto& [option, member] : kNames) {
    if (message.starts_with(option)) message.replace(0, option.size(), member);
  }
  return GivenMismatch(message);
}

template <typename Source>
Detection detect(const Source& source, const DetectSettings& settings) {
  try {
    return detection_of(detect_input(InputText(source, settings), settings));
  } catch (const GivenMismatch& mismatch) {
    throw mismatch_of_member(mismatch);
  }
}

}  // namespace

Detection detect_file(const std::string& path, const Known& known) {
  return detect(path, standalone::settings_of(known));
}

Detection detect_text(std::string_view utf8, const Known& known) {
  DetectSettings settings = standalone::settings_of(known);
  settings.encoding = "UTF-8";
  return detect(standalone::PlainBytes{utf8}, settings);
}

Detection detect_bytes(std::span<const std::byte> bytes, const Known& known) {
  const auto* const first = reinterpret_cast<const char*>(bytes.data());
  return detect_bytes(std::string_view(first, bytes.size()), known);
}

Detection detect_bytes(std::string_view bytes, const Known& known) {
  return detect(standalone::FileContent{bytes}, standalone::settings_of(known));
}

}  // namespace textio
