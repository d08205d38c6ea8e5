#include <vltextstream/layout/detect_layout.hpp>

#include <algorithm>
#include <memory>
#include <stdexcept>

#include <vltextstream/detection/fixed_stream.hpp>
#include <vltextstream/detection/strategy_selector.hpp>
#include <vltextstream/layout/binary_look.hpp>
#include <vltextstream/layout/detect_input.hpp>
#include <vltextstream/layout/input_text.hpp>
#include <vltextstream/layout/line_roles.hpp>
#include <vltextstream/layout/sampled_table.hpp>
#include <vltextstream/layout/variable_names.hpp>
#include <vltextstream/source/memory_text_source.hpp>
#include <vltextstream/source/text_stream.hpp>
#include <vltextstream/standalone/dates/date_locale.hpp>
#include <vltextstream/standalone/decoding/utf_text.hpp>
#include <vltextstream/strategy/delimited_strategy.hpp>
#include <vltextstream/strategy/fixed_width_strategy.hpp>
#include <vltextstream/strategy/line_reader_strategy.hpp>

namespace textio::standalone {
namespace {

using detection::SelectionEnd;

// ---------------------------------------------------------------------------------------------
// The layout of a sample

// What a line reader consumes after the first line.
std::optional<std::u16string> first_line_ending(const Field& sample,
                                                const parser::options& options) {
  const LineReaderStrategy reader(options);
  const FieldExtent line = reader.lines_of(sample)->line_at(0).extent;
  if (line.next == line.field.length) return std::nullopt;
  return std::u16string(line.field.data + line.field.length, line.next - line.field.length);
}

void describe_separators(const Strategy& strategy, Layout& layout) {
  const Dialect dialect = strategy.dialect();
  layout.mode = dialect.mode;
  layout.widths = dialect.widths;
  for (const std::string& delimiter : dialect.delimiters) {
    layout.delimiters.push_back(from_utf8(delimiter));
  }
}

void describe_names(const SampledTable& table, const VariableNames& names, Layout& layout) {
  layout.names_source = names.source;
  layout.names_reason = names.reason;
  if (names.names_line) {
    layout.names_line = table.line_number(*names.names_line);
    layout.names = table.texts(table.fields(*names.names_line));
  }
  if (names.units_line) {
    layout.units_line = table.line_number(*names.units_line);
    layout.units = table.texts(table.fields(*names.units_line));
  }
}

// The strategy that the caller's choices determine; null when they do not.
std::shared_ptr<Strategy> given_strategy(const parser::options& options) {
  const bool is_fixed_width = options.parser_type == parser::parser_kind::fixedwidth;
  if (is_fixed_width && !options.variable_widths.empty()) {
    const auto& widths = options.variable_widths;
    if (std::find(widths.begin(), widths.end(), 0U) != widths.end()) {
      throw std::invalid_argument("VariableWidths: Expected widths of 1 or larger.");
    }
    return std::make_shared<FixedWidthStrategy>(options, widths);
  }
  if (!options.detect_delimiters) return std::make_shared<DelimitedStrategy>(options);
  return nullptr;
}

// The strategy; how it was found goes into `layout`.
std::shared_ptr<Strategy> find_strategy(const Field& sample, const DetectSettings& settings,
                                        Layout& layout) {
  detection::SelectionTrace* const trace = settings.trace ? &layout.trace.emplace() : nullptr;
  if (auto strategy = given_strategy(settings.options)) {
    strategy->populate_fields(sample, settings.num_lines);
    strategy->valuation();
    layout.selection_end = SelectionEnd::given;
    if (trace) trace->end = SelectionEnd::given;
    return strategy;
  }
  const detection::StrategySelector selector(settings.options);
  if (trace) {
    auto strategy = selector.pick_strategy(sample, settings.num_lines, *trace);
    layout.selection_end = trace->end;
    if (trace->end == SelectionEnd::single_survivor) layout.decided_by = trace->filters.back().name;
    return strategy;
  }
  detection::SelectionOutcome outcome;
  auto strategy = selector.pick_strategy(sample, settings.num_lines, outcome);
  layout.selection_end = outcome.end;
  layout.decided_by = outcome.decided_by;
  return strategy;
}

Layout layout_of_sample(const Field& sample, const DetectSettings& settings) {
  const datetime::DateLocaleScope date_locale(settings.options.date_locale);
  Layout layout;
  const auto strategy = find_strategy(sample, settings, layout);
  layout.header_lines = strategy->header_lines();
  describe_separators(*strategy, layout);
  const SampledTable table(*strategy, settings);
  layout.num_variables = table.num_variables();
  layout.classes = table.classes();
  const VariableNames names = find_variable_names(table);
  describe_names(table, names, layout);
  describe_lines(table, names, layout);
  layout.line_ending = first_line_ending(sample, settings.options);
  layout.lines_sampled = strategy->lines().size();
  layout.characters_sampled = sample.length;
  layout.looks_binary = looks_binary({sample.data, sample.length});
  return layout;
}

// Case does not matter in names of options.
bool is_encoding(std::string_view name) {
  constexpr std::string_view kUpperCase = "ENCODING";
  return std::equal(name.begin(), name.end(), kUpperCase.begin(), kUpperCase.end(),
                    [](char c, char upper) { return c == upper || c == upper - 'A' + 'a'; });
}

}  // namespace

DetectSettings settings_with(const std::vector<NameValue>& options) {
  DetectSettings settings;
  apply_options(settings.options, options);
  const bool names_encoding =
      std::any_of(options.begin(), options.end(),
                  [](const NameValue& option) { return is_encoding(option.first); });
  if (names_encoding) settings.encoding = to_utf8(settings.options.encoding);
  return settings;
}

Layout detect_layout(const std::string& path, std::initializer_list<NameValue> options) {
  return detect_layout(path, settings_with(options));
}

Layout detect_layout(std::u16string_view text, std::initializer_list<NameValue> options) {
  return detect_layout(text, settings_with(options));
}

Layout detect_input(const InputText& input, const DetectSettings& settings) {
  Layout layout = layout_of_sample(input.sample(), settings);
  layout.encoding = input.encoding().name;
  layout.encoding_found = input.encoding().found;
  layout.encoding_confidence = input.encoding().confidence;
  layout.ill_formed_parts = input.ill_formed_parts();
  layout.has_more_text = input.has_more_text();
  return layout;
}

Layout detect_layout(const std::string& path, const DetectSettings& settings) {
  return detect_input(InputText(path, settings), settings);
}

Layout detect_layout(std::u16string_view text, const DetectSettings& settings) {
  // One code unit per character, as in the text of a file.
  std::u16string folded(text);
  char16_t* const end = fold_surrogate_pairs(folded.data(), folded.data() + folded.size());
  MemoryTextSource source(folded.data(), static_cast<std::size_t>(end - folded.data()));
  const TextStream stream(&source);
  const Field sample = get_fixed_stream(stream, settings.options.line_endings);
  Layout layout = layout_of_sample(sample, settings);
  layout.has_more_text = stream.at(sample.length) != TextStream::kEnd;
  return layout;
}

}  // namespace textio::standalone
