#include "standalone/detect_layout.hpp"

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <memory>
#include <set>

#include <fmt/format.h>

#include "detection/fixed_stream.hpp"
#include "detection/strategy_selector.hpp"
#include "host/code_converter.hpp"
#include "host/file_layer.hpp"
#include "scoring/datatype_recognizers.hpp"
#include "source/file_text_source.hpp"
#include "source/memory_text_source.hpp"
#include "source/text_stream.hpp"
#include "standalone/encoding.hpp"
#include "standalone/utf_text.hpp"
#include "strategy/delimited_strategy.hpp"
#include "strategy/fixed_width_strategy.hpp"
#include "strategy/line_reader_strategy.hpp"

namespace textio::standalone {
namespace {

using detection::SelectionEnd;

// ---------------------------------------------------------------------------------------------
// Names of the variables

std::vector<Field> cut(Strategy& strategy, const Field& line) {
  std::vector<Field> fields;
  strategy.cut_line(line, fields);
  for (Field& field : fields) {
    const auto rest = static_cast<std::size_t>(line.data + line.length - field.data);
    field.length = std::min(field.length, rest);
  }
  return fields;
}

// The fields of sampled line `index`. A fixed-width strategy remembers the column that it stopped
// at, so the line is cut by a new one.
std::vector<Field> fields_of_line(Strategy& strategy, const parser::options& options,
                                  std::size_t index) {
  const Field& line = strategy.lines()[index];
  if (const auto* fixed = dynamic_cast<const FixedWidthStrategy*>(&strategy)) {
    FixedWidthStrategy from_first_column(options, fixed->widths());
    return cut(from_first_column, line);
  }
  return cut(strategy, line);
}

bool is_typed(DatatypeCode code) {
  return code != DatatypeCode::text && code != DatatypeCode::empty;
}

// Reads the names of the variables out of one line of a detected table.
class NamesReader {
 public:
  NamesReader(Strategy& strategy, const parser::options& options, Layout& layout)
      : strategy_(strategy), options_(options), layout_(layout) {}

  void read() {
    const std::size_t header_lines = layout_.header_lines;
    const std::size_t lines = strategy_.lines().size();
    if (header_lines > 0 && header_lines <= lines && names_every_variable(header_lines - 1)) {
      take(header_lines);
    } else if (header_lines < lines && names_every_variable(header_lines) &&
               differs_from_columns()) {
      take(header_lines + 1);
    }
  }

 private:
  bool names_every_variable(std::size_t index) {
    fields_ = fields_of_line(strategy_, options_, index);
    names_.clear();
    for (const Field& field : fields_) names_.push_back(value_text(field, options_.whitespace));
    return names_.size() == layout_.num_variables &&
           std::none_of(names_.begin(), names_.end(),
                        [](const auto& name) { return name.empty(); });
  }

  bool differs_from_columns() const {
    const std::set<std::u16string> different(names_.begin(), names_.end());
    const bool all_text = std::none_of(fields_.begin(), fields_.end(), [&](const Field& field) {
      return is_typed(classify_field(field, options_.whitespace));
    });
    return different.size() == names_.size() && all_text &&
           std::any_of(layout_.classes.begin(), layout_.classes.end(), is_typed);
  }

  void take(std::size_t line) {
    layout_.names_line = line;
    layout_.names = std::move(names_);
  }

  Strategy& strategy_;
  const parser::options& options_;
  Layout& layout_;
  std::vector<Field> fields_;
  std::vector<std::u16string> names_;
};

// ---------------------------------------------------------------------------------------------
// The layout of a sample

// What a line reader consumes behind the first line.
std::optional<std::u16string> first_line_ending(const Field& sample,
                                                const parser::options& options) {
  const FieldExtent line = LineReaderStrategy(options).get_line_extent(sample, 0);
  if (line.next == line.field.length) return std::nullopt;
  return std::u16string(line.field.data + line.field.length, line.next - line.field.length);
}

void describe_separators(const Strategy& strategy, Layout& layout) {
  if (const auto* delimited = dynamic_cast<const DelimitedStrategy*>(&strategy)) {
    layout.delimiters = delimited->delimiters();
  } else if (const auto* fixed = dynamic_cast<const FixedWidthStrategy*>(&strategy)) {
    layout.widths = fixed->widths();
  } else if (layout.mode == LayoutMode::space_aligned) {
    layout.delimiters = {u" ", u"\t"};
  }
}

// A strategy may come without classes: the one for a single column is not valued, and a sample with
// one field on each line is not inspected.
void describe_columns(Strategy& strategy, Layout& layout) {
  const bool valued = strategy.num_variables() >= 0;
  layout.num_variables = valued ? static_cast<std::size_t>(strategy.num_variables()) : 1;
  layout.classes = strategy.column_classes();
  if (layout.classes.empty()) {
    layout.classes = strategy.classify_columns(strategy.get_fields_from_lines());
  }
  layout.classes.resize(layout.num_variables, DatatypeCode::empty);
}

// The strategy that the caller's choices leave no doubt about, null when they do.
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

std::shared_ptr<Strategy> find_strategy(const Field& sample, const DetectSettings& settings,
                                        detection::SelectionTrace& trace) {
  if (auto strategy = given_strategy(settings.options)) {
    strategy->populate_fields(sample, settings.num_lines);
    strategy->valuation();
    trace.end = SelectionEnd::given;
    return strategy;
  }
  return detection::StrategySelector(settings.options)
      .pick_strategy(sample, settings.num_lines, trace);
}

Layout layout_of_sample(const Field& sample, const DetectSettings& settings) {
  detection::SelectionTrace trace;
  const auto strategy = find_strategy(sample, settings, trace);
  Layout layout;
  layout.mode = static_cast<LayoutMode>(strategy->mode());
  layout.header_lines = strategy->header_lines();
  describe_separators(*strategy, layout);
  describe_columns(*strategy, layout);
  NamesReader(*strategy, settings.options, layout).read();
  layout.line_ending = first_line_ending(sample, settings.options);
  layout.lines_sampled = strategy->lines().size();
  layout.characters_sampled = sample.length;
  layout.end = trace.end;
  if (trace.end == SelectionEnd::single_survivor) layout.decided_by = trace.filters.back().name;
  if (settings.trace) layout.trace = std::move(trace);
  return layout;
}

// ---------------------------------------------------------------------------------------------
// Files

struct CloseFile {
  void operator()(std::FILE* file) const { std::fclose(file); }
};
using File = std::unique_ptr<std::FILE, CloseFile>;

// As much of the beginning of a file as is looked at for its encoding.
constexpr std::size_t kHeadBytes = 65'536;

File open_input(const std::string& path) {
  errno = 0;
  File file(open_file(from_utf8(path), "rb"));
  if (!file) throw FileError(fmt::format("cannot open '{}': {}", path, std::strerror(errno)));
  return file;
}

// The first bytes of the file, which is left at its start.
std::string first_bytes(std::FILE* file, std::size_t count) {
  std::string bytes(count, '\0');
  bytes.resize(std::fread(bytes.data(), 1, count, file));
  std::rewind(file);
  return bytes;
}

// An input that cannot be read twice is taken for UTF-8. What was a read error here is one again
// when the text is read.
FoundEncoding look_for_encoding(std::FILE* file) {
  if (std::ftell(file) != 0) return {"UTF-8", EncodingFound::fallback, 0.0};
  const std::string head = first_bytes(file, kHeadBytes);
  return find_encoding(head, head.size() < kHeadBytes);
}

FoundEncoding encoding_of(std::FILE* file, const DetectSettings& settings) {
  if (settings.encoding) return {*settings.encoding, EncodingFound::given, 1.0};
  const std::u16string& of_record = settings.options.encoding;
  if (of_record != u"UTF-8") return {to_utf8(of_record), EncodingFound::given, 1.0};
  return look_for_encoding(file);
}

// Names of options are not told apart by case.
bool is_encoding(std::string_view name) {
  constexpr std::string_view kUpperCase = "ENCODING";
  return std::equal(name.begin(), name.end(), kUpperCase.begin(), kUpperCase.end(),
                    [](char c, char upper) { return c == upper || c == upper - 'A' + 'a'; });
}

}  // namespace

FileError::~FileError() = default;

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

Layout detect_layout(const std::string& path, const DetectSettings& settings) {
  File file = open_input(path);
  const FoundEncoding encoding = encoding_of(file.get(), settings);
  FileTextSource source;
  source.init_stream(file.release(), encoding.name);
  const TextStream stream(&source);
  const Field sample = get_fixed_stream(stream, settings.options.line_endings);
  if (const int error = source.read_error(); error != 0) {
    throw FileError(fmt::format("cannot read '{}': {}", path, std::strerror(error)));
  }
  Layout layout = layout_of_sample(sample, settings);
  layout.encoding = encoding.name;
  layout.encoding_found = encoding.found;
  layout.encoding_confidence = encoding.confidence;
  layout.ill_formed_parts = source.converter()->ill_formed_parts();
  return layout;
}

Layout detect_layout(std::u16string_view text, const DetectSettings& settings) {
  // One unit per character, as a file's text has it.
  std::u16string folded(text);
  char16_t* const end = fold_surrogate_pairs(folded.data(), folded.data() + folded.size());
  MemoryTextSource source(folded.data(), static_cast<std::size_t>(end - folded.data()));
  const TextStream stream(&source);
  return layout_of_sample(get_fixed_stream(stream, settings.options.line_endings), settings);
}

}  // namespace textio::standalone
