// The lines are found again the way they were sampled: the strategy tells where each line ends, and
// what it kept tells a line from a comment. A second walk, over line endings whatever stands around
// them, counts the lines of the text: a record with line endings inside quotes takes several.
#include "standalone/sampled_table.hpp"

#include <algorithm>
#include <limits>

#include "scoring/datatype_inspection.hpp"
#include "scoring/datatype_recognizers.hpp"
#include "strategy/fixed_width_strategy.hpp"
#include "strategy/line_reader_strategy.hpp"

namespace textio::standalone {
namespace {

constexpr char16_t kEndMark = 0xFFFF;

bool ends_at(const Field& text, std::size_t pos) {
  return pos >= text.length || text.data[pos] == kEndMark;
}

bool is_blank(const Field& line, const std::u16string& whitespace) {
  return std::u16string_view(line.data, line.length).find_first_not_of(whitespace) ==
         std::u16string_view::npos;
}

// Counts the lines of a text up to places that are asked for in ascending order.
class LineNumbers {
 public:
  LineNumbers(const Field& text, const parser::options& options)
      : text_(text),
        reader_(options),
        stable_(reader_, text),
        next_(reader_.get_line_extent(text, 0).next) {}

  // The number of the line that holds unit `pos`. Every line has a unit or a line ending, so the
  // walk moves on.
  std::size_t at(std::size_t pos) {
    while (pos >= next_ && !ends_at(text_, next_)) {
      next_ = reader_.get_line_extent(text_, next_).next;
      ++number_;
    }
    return number_;
  }

 private:
  const Field& text_;
  LineReaderStrategy reader_;
  Strategy::StableText stable_;
  std::size_t next_;
  std::size_t number_ = 1;
};

// How many lines that are neither empty nor comments a sampling asks for at most.
std::size_t line_budget(const parser::options& options, unsigned long num_lines) {
  if (options.detect_header_lines) return num_lines;
  const std::size_t most = std::numeric_limits<std::size_t>::max();
  return options.header_lines > most - num_lines ? most : num_lines + options.header_lines;
}

}  // namespace

SampledTable::SampledTable(Strategy& strategy, const Field& sample, const DetectSettings& settings)
    : strategy_(strategy), options_(settings.options) {
  find_lines(sample, settings.num_lines);
  classes_ = column_classes();
}

// A line that was not kept is blank or a comment; whether a marker stands in it depends on what the
// strategy takes for white space, whether it is blank does not.
//
// Behind the last line that was kept only comments can have been looked at, and only if the budget
// was not used up before.
void SampledTable::find_lines(const Field& sample, unsigned long num_lines) {
  const std::vector<Field>& kept = strategy_.lines();
  const std::size_t budget = line_budget(options_, num_lines);
  LineNumbers numbers(sample, options_);
  lines_.reserve(kept.size());
  line_numbers_.reserve(kept.size());
  const Strategy::StableText stable(strategy_, sample);
  std::size_t texts = 0;
  std::size_t pos = 0;
  while (!ends_at(sample, pos) && (line_numbers_.size() < kept.size() || texts < budget)) {
    const FieldExtent extent = strategy_.get_line_extent(sample, pos);
    const std::size_t index = line_numbers_.size();
    const bool is_text = index < kept.size() && kept[index].data == extent.field.data;
    const bool is_left_out =
        !is_text && (index == kept.size() || !is_blank(extent.field, options_.whitespace));
    const Kind kind = is_text ? Kind::text : is_left_out ? Kind::comment : Kind::blank;
    lines_.push_back({kind, numbers.at(pos), numbers.at(extent.next - 1)});
    if (is_text) ++texts;
    if (!is_left_out) line_numbers_.push_back(lines_.back().first_line);
    pos = extent.next;
  }
}

// A strategy may come without classes: the one for a single column is not valued, and a sample with
// one field on each line is not inspected.
std::vector<DatatypeCode> SampledTable::column_classes() const {
  if (is_single_column()) {
    FieldArray lines;
    for (const Field& line : strategy_.lines()) {
      if (line.length > 0) lines.fields.push_back(line);
      lines.counts.push_back(lines.fields.size());
    }
    return classify_columns(lines, {0, 1, 1, options_.whitespace, {}});
  }
  std::vector<DatatypeCode> classes = strategy_.column_classes();
  if (classes.empty()) classes = strategy_.classify_columns(strategy_.get_fields_from_lines());
  classes.resize(static_cast<std::size_t>(strategy_.num_variables()), DatatypeCode::empty);
  return classes;
}

std::size_t SampledTable::field_count(std::size_t index) const {
  const std::vector<std::size_t>& counts = strategy_.field_counts();
  if (index < counts.size()) return counts[index];
  return strategy_.lines()[index].length > 0 ? 1 : 0;
}

// A fixed-width strategy remembers the column that it stopped at, so the line is cut by a new one.
// Where nothing was found to separate fields, a line is one field whatever the strategy would do.
std::vector<Field> SampledTable::fields(std::size_t index) const {
  const Field& line = strategy_.lines()[index];
  if (is_single_column()) return {line};
  std::vector<Field> fields;
  fields.reserve(field_count(index));
  if (const auto* fixed = dynamic_cast<const FixedWidthStrategy*>(&strategy_)) {
    FixedWidthStrategy(options_, fixed->widths()).cut_line(line, fields);
  } else {
    strategy_.cut_line(line, fields);
  }
  // A fixed-width field reports its full width where the line is shorter.
  for (Field& field : fields) {
    const auto rest = static_cast<std::size_t>(line.data + line.length - field.data);
    field.length = std::min(field.length, rest);
  }
  return fields;
}

std::vector<std::u16string> SampledTable::texts(std::size_t index) const {
  const std::vector<Field> found = fields(index);
  std::vector<std::u16string> texts;
  texts.reserve(found.size());
  for (const Field& field : found) {
    texts.push_back(value_text(field, options_.whitespace));
  }
  return texts;
}

std::vector<DatatypeCode> SampledTable::classes_of_line(std::size_t index) const {
  std::vector<DatatypeCode> classes;
  classes.reserve(field_count(index));
  for (const Field& field : fields(index)) {
    classes.push_back(classify_field(field, options_.whitespace));
  }
  return classes;
}

}  // namespace textio::standalone
