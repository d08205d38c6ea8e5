// The lines are found again where they were sampled. A walk over line endings, whatever stands
// around them, counts the lines of the text, and most lines of a table are lines of the text: where
// one of those ends as the next line that was kept does, that is it. The strategy is asked for the
// others: records with line endings inside quotes, which take several lines, comments and lines of
// blanks. What it kept tells a line from a comment.
#include <vltextstream/layout/sampled_table.hpp>

#include <algorithm>
#include <iterator>
#include <limits>
#include <string_view>

#include <vltextstream/scoring/datatype_recognizers.hpp>
#include <vltextstream/strategy/fixed_width_strategy.hpp>
#include <vltextstream/strategy/line_reader_strategy.hpp>
#include <vltextstream/strategy/line_walk.hpp>
#include <vltextstream/strategy/scan.hpp>

namespace textio::standalone {
namespace {

bool is_blank(const Field& line, const std::u16string& whitespace) {
  return std::u16string_view(line.data, line.length).find_first_not_of(whitespace) ==
         std::u16string_view::npos;
}

// The lines of a text that are asked for in ascending order, and their numbers.
class TextLines {
 public:
  TextLines(const Field& text, const parser::options& options)
      : text_(text), reader_(options), walk_(reader_, text), line_(walk_.line_at(0)) {}

  // Goes on to the line that holds unit `pos`. Every line has a unit or a line ending, so the walk
  // moves on. It does not pass a U+FFFF.
  void go_to(std::size_t pos) {
    while (pos >= line_.next && !ends_at(text_, line_.next)) {
      line_ = walk_.line_at(line_.next);
      ++number_;
    }
  }

  std::size_t number() const { return number_; }

  // Where the line ends, and where the next starts.
  std::size_t end() const { return static_cast<std::size_t>(end_of(line_.field) - text_.data); }
  std::size_t next() const { return line_.next; }

  // Whether `field`, of this text or an empty one, ends where the line does.
  bool ends_with(const Field& field) const { return end_of(field) == end_of(line_.field); }

 private:
  static const char16_t* end_of(const Field& field) { return field.data + field.length; }

  const Field& text_;
  LineReaderStrategy reader_;
  LineWalk walk_;
  FieldExtent line_;
  std::size_t number_ = 1;
};

// The lines of a strategy.
//
// A line of a strategy ends at a line ending or with the text, and no line ending stands in front
// of the one that closes a line of the text. So of the lines that a strategy kept, only the one
// that it found at `pos` can end where the text's line around `pos` does.
class SampleWalk {
 public:
  // A line that was kept as it is, one that is blank, or neither.
  struct Line {
    bool is_kept = false;
    bool is_blank = false;
    std::size_t first_line = 0;
    std::size_t last_line = 0;
    std::size_t next = 0;
  };

  SampleWalk(const Strategy& strategy, const Field& sample, const parser::options& options)
      : sample_(sample),
        whitespace_(options.whitespace),
        text_lines_(sample, options),
        walk_(strategy, sample) {}

  // The line at `pos`. `next_kept` is the first of those that were kept and not met yet.
  Line line_at(std::size_t pos, const Field* next_kept) {
    text_lines_.go_to(pos);
    const std::size_t number = text_lines_.number();
    const std::size_t end = text_lines_.end();
    if (!ends_at(sample_, end)) {
      const bool is_kept = next_kept && text_lines_.ends_with(*next_kept);
      const bool is_empty = pos == end && !contains(kAlignedLineOpeners, sample_.data[pos]);
      if (is_kept || is_empty) return {is_kept, is_empty, number, number, text_lines_.next()};
    }
    const FieldExtent line = walk_.line_at(pos);
    const bool is_kept = next_kept && next_kept->data == line.field.data;
    text_lines_.go_to(line.next - 1);
    return {is_kept, is_blank(line.field, whitespace_), number, text_lines_.number(), line.next};
  }

 private:
  const Field& sample_;
  const std::u16string& whitespace_;
  TextLines text_lines_;
  LineWalk walk_;
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
  SampleWalk walk(strategy_, sample, options_);
  std::size_t index = 0;
  std::size_t texts = 0;
  std::size_t pos = 0;
  while (!ends_at(sample, pos) && (index < kept.size() || texts < budget)) {
    const Field* const next_kept = index < kept.size() ? &kept[index] : nullptr;
    const SampleWalk::Line line = walk.line_at(pos, next_kept);
    const bool is_left_out = !line.is_kept && (!next_kept || !line.is_blank);
    const Kind kind = line.is_kept ? Kind::text : is_left_out ? Kind::comment : Kind::blank;
    add_line({kind, line.first_line, line.last_line, index, 1});
    if (line.is_kept) ++texts;
    if (!is_left_out) ++index;
    pos = line.next;
  }
}

void SampledTable::add_line(const Run& line) {
  if (!runs_.empty()) {
    Run& run = runs_.back();
    const bool is_one_each = run.last_line - run.first_line + 1 == run.count;
    const bool is_next_line =
        line.first_line == run.last_line + 1 && line.last_line == line.first_line;
    if (run.kind == line.kind && is_one_each && is_next_line) {
      run.last_line = line.last_line;
      ++run.count;
      return;
    }
  }
  runs_.push_back(line);
}

// Of the runs that begin at this index or before, the last one holds it: comments in front of the
// line begin there as well.
std::size_t SampledTable::line_number(std::size_t index) const {
  const auto behind =
      std::upper_bound(runs_.begin(), runs_.end(), index,
                       [](std::size_t i, const Run& run) { return i < run.first_index; });
  const Run& run = *std::prev(behind);
  return run.first_line + (index - run.first_index);
}

// A strategy may come without classes: the one for a single column is not valued, and a sample with
// one field on each line is not inspected.
std::vector<DatatypeCode> SampledTable::column_classes() const {
  if (is_single_column()) return {class_of_lines()};
  std::vector<DatatypeCode> classes = strategy_.column_classes();
  if (classes.empty()) classes = strategy_.classify_columns(strategy_.get_fields_from_lines());
  classes.resize(static_cast<std::size_t>(strategy_.num_variables()), DatatypeCode::empty);
  return classes;
}

// The class of the lowest line that has one. The first may hold the name and is not asked.
DatatypeCode SampledTable::class_of_lines() const {
  const std::vector<Field>& lines = strategy_.lines();
  DatatypeCode code = DatatypeCode::empty;
  for (std::size_t i = lines.size(); i > 1 && code == DatatypeCode::empty; --i) {
    code = class_of(lines[i - 1]);
  }
  return code;
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

std::vector<std::u16string> SampledTable::texts(const std::vector<Field>& fields) const {
  std::vector<std::u16string> texts;
  texts.reserve(fields.size());
  for (const Field& field : fields) texts.push_back(value_text(field, options_.whitespace));
  return texts;
}

DatatypeCode SampledTable::class_of(const Field& field) const {
  return classify_field(field, options_.whitespace);
}

}  // namespace textio::standalone
