// The runs of the sample say which lines there are; a walk over the line endings of the text numbers
// them. As a rule a sampled line is one line of the text. The strategy is asked again only for blank
// lines and comments that may span several.
#include <vltextstream/layout/sampled_table.hpp>

#include <algorithm>
#include <functional>
#include <iterator>
#include <memory>
#include <utility>

#include <vltextstream/scoring/datatype_recognizers.hpp>
#include <vltextstream/strategy/field_text.hpp>
#include <vltextstream/strategy/line_cursor.hpp>

namespace textio::standalone {
namespace {

// Where `field` of `text` ends.
std::size_t end_of(const Field& field, const Field& text) {
  return static_cast<std::size_t>(field.data + field.length - text.data);
}

// A run is of blank lines or of comments.
SampledTable::Kind kind_of(const SampleRun& run) {
  return run.kind == SampleLineKind::blank ? SampledTable::Kind::blank
                                           : SampledTable::Kind::comment;
}

// Numbers the lines of a sample.
class LineNumbers {
 public:
  using AddLine = std::function<void(const SampledTable::Run&)>;

  LineNumbers(Strategy& strategy, TextLines& text_lines, AddLine add_line)
      : strategy_(strategy),
        runs_(strategy.take_sample_runs()),
        text_(strategy.sample().text),
        skips_blanks_(strategy.mode() == Strategy::kSpaceAligned),
        text_lines_(text_lines),
        add_line_(std::move(add_line)) {}

  void add_all() {
    for (std::size_t k = 0; k < runs_.size(); ++k) {
      const std::size_t end = k + 1 < runs_.size() ? runs_[k + 1].begin : strategy_.sample().end;
      if (runs_[k].kind == SampleLineKind::text) {
        add_texts(runs_[k], end);
      } else {
        add_others(runs_[k], end);
      }
    }
  }

  std::size_t num_runs() const { return runs_.size(); }

 private:
  void add_texts(const SampleRun& run, std::size_t run_end) {
    std::size_t start = run.begin;
    const std::size_t end = run.first_line + run.num_lines;
    for (std::size_t index = run.first_line; index < end; ++index) {
      text_lines_.go_to(start);
      const std::size_t first_line = text_lines_.number();
      start = index + 1 < end ? start_after(index) : run_end;
      text_lines_.go_to(start - 1);
      add_line_({SampledTable::Kind::text, first_line, text_lines_.number(), index, 1});
    }
  }

  // Where the line after line `index`, a text, starts. Blanks before aligned fields are not part of
  // the line that was kept.
  std::size_t start_after(std::size_t index) const {
    const std::vector<Field>& lines = strategy_.lines();
    auto start = static_cast<std::size_t>(lines[index + 1].data - text_.data);
    if (!skips_blanks_) return start;
    const std::size_t end_before = end_of(lines[index], text_);
    while (start > end_before + 1 && contains(u" \t", text_.data[start - 1])) --start;
    return start;
  }

  // As a rule each of these is one line of the text. Then their numbers follow from those of the first
  // and the last.
  void add_others(const SampleRun& run, std::size_t run_end) {
    text_lines_.go_to(run.begin);
    const TextLines::Place first = text_lines_.place();
    text_lines_.go_to(run_end - 1);
    const std::size_t last_line = text_lines_.number();
    if (last_line - first.number + 1 == run.num_lines) {
      add_line_({kind_of(run), first.number, last_line, run.first_line, run.num_lines});
      return;
    }
    text_lines_.return_to(first);
    add_one_by_one(run);
  }

  void add_one_by_one(const SampleRun& run) {
    const std::unique_ptr<LineCursor> lines = strategy_.lines_of(text_);
    std::size_t pos = run.begin;
    for (std::size_t i = 0; i < run.num_lines; ++i) {
      text_lines_.go_to(pos);
      const std::size_t first_line = text_lines_.number();
      pos = lines->line_at(pos).extent.next;
      text_lines_.go_to(pos - 1);
      const bool is_sampled = run.kind == SampleLineKind::blank;
      add_line_({kind_of(run), first_line, text_lines_.number(),
                 run.first_line + (is_sampled ? i : 0), 1});
    }
  }

  const Strategy& strategy_;
  const std::vector<SampleRun> runs_;
  const Field text_;
  const bool skips_blanks_;
  TextLines& text_lines_;
  const AddLine add_line_;
};

}  // namespace

SampledTable::SampledTable(Strategy& strategy, const DetectSettings& settings,
                           TextLines& text_lines)
    : strategy_(strategy), options_(settings.options) {
  find_lines(text_lines);
  classes_ = column_classes();
}

void SampledTable::find_lines(TextLines& text_lines) {
  LineNumbers numbers(strategy_, text_lines, [this](const Run& lines) { add_lines(lines); });
  runs_.reserve(numbers.num_runs());
  numbers.add_all();
}

void SampledTable::add_lines(const Run& lines) {
  const auto is_one_each = [](const Run& run) {
    return run.last_line - run.first_line + 1 == run.count;
  };
  if (!runs_.empty()) {
    Run& run = runs_.back();
    const bool follows = run.kind == lines.kind && lines.first_line == run.last_line + 1;
    if (follows && is_one_each(run) && is_one_each(lines)) {
      run.last_line = lines.last_line;
      run.count += lines.count;
      return;
    }
  }
  runs_.push_back(lines);
}

// Of the runs that begin at this index or before, the last one holds it: comments before the line
// begin there as well.
std::size_t SampledTable::line_number(std::size_t index) const {
  const auto after =
      std::upper_bound(runs_.begin(), runs_.end(), index,
                       [](std::size_t i, const Run& run) { return i < run.first_index; });
  const Run& run = *std::prev(after);
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

// Where nothing was found to separate fields, a line is one field whatever the strategy would do.
std::vector<Field> SampledTable::fields(std::size_t index) const {
  const Field& line = strategy_.lines()[index];
  if (is_single_column()) return {line};
  std::vector<Field> fields = strategy_.fields_of(line);
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
