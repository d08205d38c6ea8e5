#include <vltextstream/layout/detect_layout.hpp>

#include <algorithm>
#include <memory>
#include <stdexcept>
#include <utility>

#include <fmt/format.h>

#include <vltextstream/assessment/verdict.hpp>
#include <vltextstream/detection/fixed_stream.hpp>
#include <vltextstream/detection/strategy_selector.hpp>
#include <vltextstream/layout/beyond_sample.hpp>
#include <vltextstream/layout/binary_look.hpp>
#include <vltextstream/layout/detect_input.hpp>
#include <vltextstream/layout/given_settings.hpp>
#include <vltextstream/layout/input_text.hpp>
#include <vltextstream/layout/judged_layout.hpp>
#include <vltextstream/layout/line_roles.hpp>
#include <vltextstream/layout/look_spread.hpp>
#include <vltextstream/layout/sampled_facts.hpp>
#include <vltextstream/layout/sampled_table.hpp>
#include <vltextstream/layout/text_lines.hpp>
#include <vltextstream/layout/text_prefix.hpp>
#include <vltextstream/layout/variable_names.hpp>
#include <vltextstream/source/memory_text_source.hpp>
#include <vltextstream/source/text_stream.hpp>
#include <vltextstream/standalone/dates/date_locale.hpp>
#include <vltextstream/standalone/decoding/utf_text.hpp>
#include <vltextstream/strategy/delimited_strategy.hpp>
#include <vltextstream/strategy/field_text.hpp>
#include <vltextstream/strategy/fixed_width_strategy.hpp>

namespace textio::standalone {
namespace {

using detection::SelectionEnd;

// ---------------------------------------------------------------------------------------------
// The layout of a text

// Whether more text could change the first line: a longer line ending may be tried before the one
// that was found.
bool first_line_reaches_end(const FieldExtent& line, const Field& text,
                            const parser::options& options) {
  std::size_t longest = 0;
  for (const std::u16string& ending : options.line_endings) {
    longest = std::max(longest, ending.size());
  }
  return text.length - std::min(line.next, text.length) <= longest;
}

// What follows the first line and is not part of the next.
std::optional<std::u16string> ending_of(const FieldExtent& line) {
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

struct FoundStrategy {
  std::shared_ptr<Strategy> strategy;

  // Whether more text could have changed which one it is, or its sample.
  bool reached_end = false;
};

// How the strategy was found goes into `layout`.
FoundStrategy find_strategy(const Field& text, const DetectSettings& settings, Layout& layout) {
  detection::SelectionTrace* const trace = settings.trace ? &layout.trace.emplace() : nullptr;
  if (auto strategy = given_strategy(settings.options)) {
    strategy->populate_fields(text, settings.num_lines);
    strategy->valuation();
    layout.selection_end = SelectionEnd::given;
    if (trace) trace->end = SelectionEnd::given;
    const bool reached_end = strategy->sample().reached_end;
    return {std::move(strategy), reached_end};
  }
  const detection::StrategySelector selector(settings.options);
  if (trace) {
    auto strategy = selector.pick_strategy(text, settings.num_lines, *trace);
    layout.selection_end = trace->end;
    if (trace->end == SelectionEnd::single_survivor) layout.decided_by = trace->filters.back().name;
    return {std::move(strategy), trace->reached_end};
  }
  detection::SelectionOutcome outcome;
  auto strategy = selector.pick_strategy(text, settings.num_lines, outcome);
  layout.selection_end = outcome.end;
  layout.decided_by = outcome.decided_by;
  return {std::move(strategy), outcome.reached_end};
}

void describe_table(Strategy& strategy, const DetectSettings& settings, TextLines& text_lines,
                    Layout& layout) {
  layout.header_lines = strategy.header_lines();
  describe_separators(strategy, layout);
  const SampledTable table(strategy, settings, text_lines);
  layout.num_variables = table.num_variables();
  layout.classes = table.classes();
  const VariableNames names = find_variable_names(table);
  describe_names(table, names, layout);
  describe_lines(table, names, layout);
  if (settings.describe_columns) describe_facts(strategy, table, names, settings, layout);
}

CascadeAnswer cascade_answer(const Layout& layout) {
  return {layout.mode,         layout.delimiters,    layout.widths,
          layout.header_lines, layout.num_variables, false};
}

// A layout, and what its table is like if the assessment found it.
struct FoundLayout {
  Layout layout;
  std::optional<assessment::TableProfile> profile;
};

assessment::TableProfile profile_in(const FoundLayout& found) {
  return found.profile ? *found.profile : profile_of(found.layout);
}

// Whether the text ends with the sample. The stream has loaded more than is asked for here.
bool ends_with(const TextPrefix& sample, const TextStream& stream) {
  return sample.text.length < kSampleUnits && stream.at(sample.text.length) == TextStream::kEnd;
}

// What the cascade answers. Nothing if it was not asked.
void describe_cascade(Strategy& strategy, Layout& layout) {
  if (layout.selection_end == SelectionEnd::given) return;
  describe_separators(strategy, layout);
  layout.header_lines = strategy.header_lines();
  layout.num_variables = static_cast<std::size_t>(std::max(strategy.num_variables(), 1L));
  layout.cascade = cascade_answer(layout);
}

enum class Assessment { described, without_table, may_change };

// Frees the strategy, whose sample may be large, unless it may still be needed.
Assessment assess(const TextPrefix& prefix, const TextStream& stream,
                  const DetectSettings& settings, std::shared_ptr<Strategy>& strategy,
                  FoundLayout& found) {
  Layout& layout = found.layout;
  describe_cascade(*strategy, layout);
  const assessment::Given given = given_of(settings);
  if (!may_leave_no_table(given)) strategy.reset();
  const assessment::Verdict verdict =
      assessment::judge(view_of(prefix.text), settings.num_lines, given);
  const bool reached_prefix_end = verdict.lines.end() >= prefix.text.length;
  if (reached_prefix_end && !prefix.is_sample) return Assessment::may_change;
  if (const auto problem = assessment::problem_with_lines(given, verdict.lines)) {
    throw GivenMismatch(*problem);
  }
  if (verdict.hypotheses.empty()) {
    layout.delimiters.clear();
    layout.cascade.reset();
    return Assessment::without_table;
  }
  const std::size_t columns = verdict.winner().table.columns;
  if (given.row_names_column > columns) {
    throw GivenMismatch(fmt::format("RowNamesField: Expected a column from 1 to {}, got {}.",
                                    columns, given.row_names_column));
  }
  const bool ends = reached_prefix_end && ends_with(prefix, stream);
  found.profile = describe_verdict(verdict, settings, ends, layout);
  // However few of them occur.
  if (given.delimiters) {
    layout.mode = LayoutMode::delimited;
    layout.delimiters = *given.delimiters;
  }
  return Assessment::described;
}

// Without a value, the answer for the whole sample may be another one.
std::optional<FoundLayout> layout_of(const TextPrefix& prefix, const TextStream& stream,
                                     const DetectSettings& settings) {
  check_settings(settings);
  const datetime::DateLocaleScope date_locale(settings.options.date_locale);
  FoundLayout found;
  Layout& layout = found.layout;
  auto [strategy, reached_end] = find_strategy(prefix.text, settings, layout);
  TextLines text_lines(prefix.text, settings.options);
  const FieldExtent first_line = text_lines.line();
  const bool may_change =
      reached_end || first_line_reaches_end(first_line, prefix.text, settings.options);
  if (may_change && !prefix.is_sample) return std::nullopt;
  layout.line_ending = ending_of(first_line);
  bool is_assessed = may_assess(settings);
  Assessment assessed = Assessment::without_table;
  if (is_assessed && !assessment::is_blank(view_of(prefix.text))) {
    assessed = assess(prefix, stream, settings, strategy, found);
    if (assessed == Assessment::may_change) return std::nullopt;
    is_assessed = assessed == Assessment::described;
  }
  if (assessed == Assessment::without_table) {
    describe_table(*strategy, settings, text_lines, layout);
    layout.lines_sampled = strategy->lines().size();
    layout.characters_sampled =
        std::min(std::max(strategy->sample().end, first_line.next), prefix.text.length);
    if (is_assessed) {
      layout.confidence = 1.0;
      layout.no_table = "empty";
      found.profile.emplace();
    }
  }
  layout.looks_binary = looks_binary({prefix.text.data, layout.characters_sampled});
  if (layout.looks_binary && is_assessed) layout.no_table = "binary data";
  return found;
}

// The layout of the first of the prefixes, from `units` code units on, that is long enough.
// `get_prefix` gives the prefix of a length.
template <typename GetPrefix>
FoundLayout layout_of_prefixes(GetPrefix get_prefix, const TextStream& stream,
                               const DetectSettings& settings, std::size_t units) {
  for (;; units *= kPrefixGrowth) {
    auto found = layout_of(get_prefix(units), stream, settings);
    if (!found) continue;
    Layout& layout = found->layout;
    layout.has_more_text = stream.at(layout.characters_sampled) != TextStream::kEnd;
    return *std::move(found);
  }
}

FoundLayout layout_of_input(InputText& input, const DetectSettings& settings, std::size_t units) {
  const auto get_prefix = [&input](std::size_t length) { return input.prefix(length); };
  return layout_of_prefixes(get_prefix, input.text(), settings, units);
}

constexpr std::size_t kMostFirstBytes = 16'384;

// Case does not matter in names of options.
bool is_named(std::string_view name, std::string_view upper_case) {
  return std::equal(name.begin(), name.end(), upper_case.begin(), upper_case.end(),
                    [](char c, char upper) { return c == upper || c == upper - 'A' + 'a'; });
}

// The texts of an option that has been checked: those of delimiters have the same escapes.
std::vector<std::u16string> texts_of(const Array& value) {
  parser::options record;
  apply_options(record, {{"Delimiter", value}});
  return record.delimiters;
}

}  // namespace

void apply_option(DetectSettings& settings, const NameValue& option) {
  parser::options& record = settings.options;
  const auto& [name, value] = option;
  apply_options(record, {option});
  if (is_named(name, "ENCODING")) settings.encoding = to_utf8(record.encoding);
  if (is_named(name, "VARIABLENAMESLINE")) settings.names_line = record.variable_names_line;
  if (is_named(name, "VARIABLEUNITSLINE")) settings.units_line = record.variable_units_line;
  if (is_named(name, "TREATASMISSING") || is_named(name, "TREATASEMPTY")) {
    settings.missing = texts_of(value);
  }
}

DetectSettings settings_with(const std::vector<NameValue>& options) {
  DetectSettings settings;
  for (const NameValue& option : options) apply_option(settings, option);
  return settings;
}

Layout detect_layout(const std::string& path, std::initializer_list<NameValue> options) {
  return detect_layout(path, settings_with(options));
}

Layout detect_layout(std::u16string_view text, std::initializer_list<NameValue> options) {
  return detect_layout(text, settings_with(options));
}

namespace {

Layout detect_in(InputText& input, const DetectSettings& settings, std::size_t units) {
  FoundLayout found = layout_of_input(input, settings, units);
  if (!input.confirm_encoding(found.layout.characters_sampled)) {
    found = layout_of_input(input, settings, units);
    input.confirm_encoding(found.layout.characters_sampled);
  }
  Layout& layout = found.layout;
  layout.encoding = input.encoding().name;
  layout.encoding_found = input.encoding().found;
  layout.encoding_confidence = input.encoding().confidence;
  layout.ill_formed_parts = input.ill_formed_parts();
  layout.dialect.has_byte_order_mark = input.has_byte_order_mark();
  if (found.profile) look_beyond_sample(input, *found.profile, settings, layout);
  if (settings.sample == SampleFrom::spread)
    look_spread(input, profile_in(found), settings, layout);
  if (!layout.no_table.empty() && layout.no_table != "empty")
    layout.first_bytes = input.first_bytes(kMostFirstBytes);
  return std::move(layout);
}

}  // namespace

Layout detect_input(InputText& input, const DetectSettings& settings) {
  return detect_in(input, settings, first_prefix_units(settings));
}

Layout detect_input(InputText&& input, const DetectSettings& settings) {
  return detect_input(input, settings);
}

Layout detect_input(InputText&& input, const DetectSettings& settings, std::size_t units) {
  return detect_in(input, settings, units);
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
  const auto get_prefix = [&](std::size_t units) {
    return prefix_of(stream, settings.options.line_endings, units);
  };
  FoundLayout found =
      layout_of_prefixes(get_prefix, stream, settings, first_prefix_units(settings));
  const bool is_spread = settings.sample == SampleFrom::spread;
  if (!found.profile && !is_spread) return std::move(found.layout);
  const std::u16string_view all(folded.data(), stream.find_first_pos_of(TextStream::kEnd, 0));
  if (found.profile) look_beyond_sample(all, *found.profile, settings, found.layout);
  if (is_spread) look_spread(all, profile_in(found), settings, found.layout);
  return std::move(found.layout);
}

}  // namespace textio::standalone
