#include <vltextstream/strategy/strategy.hpp>

#include <algorithm>
#include <utility>

#include <vltextstream/scoring/count_score.hpp>
#include <vltextstream/scoring/datatype_inspection.hpp>
#include <vltextstream/scoring/header_lines.hpp>
#include <vltextstream/scoring/line_statistics.hpp>
#include <vltextstream/strategy/sampling/sampler.hpp>
#include <vltextstream/strategy/sampling/trial.hpp>
#include <vltextstream/strategy/splitter.hpp>

namespace textio {
namespace {

// A line seldom has more fields.
constexpr std::size_t kUsualFields = 32;

std::size_t saturating_add(std::size_t a, std::size_t b) {
  constexpr auto kMost = std::numeric_limits<std::size_t>::max();
  return a > kMost - b ? kMost : a + b;
}

// The sample that consists of these lines.
DrawnSample sample_of(const Field& text, const std::vector<Field>& lines) {
  DrawnSample sample;
  sample.found.text = text;
  for (const Field& line : lines) {
    const SampleLineKind kind = line.length > 0 ? SampleLineKind::text : SampleLineKind::blank;
    add_run(sample.found.runs, {kind, 0, sample.size(), sample.texts.size(), 0}, 1);
    if (kind == SampleLineKind::text) sample.texts.push_back(line);
  }
  return sample;
}

}  // namespace

Strategy::Strategy(const parser::options& options)
    : options_(&options),
      header_lines_(options.header_lines),
      header_lines_auto_(options.detect_header_lines) {
  quoted_format_.quote = u'"';
  number_format_.exp_chars = options.exp_chars;
  number_format_.exp_chars_default = options.exp_chars == u"eEdD";
  reset_whitespace(options.whitespace);
}

Strategy::~Strategy() = default;

void Strategy::reset_fields() {}

// The copies, which can fail, come first.
void Strategy::reset_whitespace(const std::u16string& whitespace) {
  std::u16string of_text = whitespace;
  std::u16string of_quoted = whitespace;
  std::u16string of_number = whitespace;
  text_format_.whitespace = std::move(of_text);
  quoted_format_.whitespace = std::move(of_quoted);
  number_format_.whitespace = std::move(of_number);
}

void Strategy::header_lines(unsigned long n) {
  header_lines_ = n;
  header_lines_auto_ = n == kUnknownHeaderLines;
}

long Strategy::num_variables() const {
  return valuation_done_ ? static_cast<long>(valuation_.num_variables) : -1;
}

void Strategy::split_by(std::shared_ptr<const Splitter> splitter, const std::type_info& own_class,
                        std::size_t* column) {
  own_splitter_ = std::move(splitter);
  own_class_ = &own_class;
  column_ = column;
}

// Null for a class from outside the library, whatever it derives from. Only this function asks for
// the class of a strategy.
const Splitter* Strategy::own_splitter() const {
  const bool is_own = own_class_ != nullptr && typeid(*this) == *own_class_;
  return is_own ? own_splitter_.get() : nullptr;
}

std::shared_ptr<const Splitter> Strategy::splitter() {
  return own_splitter() ? own_splitter_ : splitter_by_operations(*this);
}

std::unique_ptr<LineCursor> Strategy::lines_of(const Field& text) const {
  const Splitter* const own = own_splitter();
  return own ? own->lines_of(text) : lines_by_operations(*this, text);
}

Dialect Strategy::dialect() const {
  const Splitter* const own = own_splitter();
  return own ? own->dialect() : Dialect{static_cast<LayoutMode>(mode()), {}, {}};
}

// ---------------------------------------------------------------------------------------------
// Sampling

std::size_t Strategy::most_texts(unsigned long num_lines) const {
  return header_lines_auto_ ? num_lines : saturating_add(num_lines, header_lines_);
}

DrawnSample Strategy::draw(const Field& text, const SampleLimits& limits) {
  return draw_sample(text, *splitter(), {text_format_, options_->comment_style}, limits);
}

// The previous sample is kept until the new one and its copy exist.
std::vector<Field> Strategy::populate_fields(const Field& text, unsigned long num_lines) {
  DrawnSample sample = draw(text, {most_texts(num_lines)});
  std::vector<Field> lines = sample.take_lines();
  std::vector<Field> copy = lines;
  text_ = text;
  lines_ = std::move(lines);
  sample_ = std::move(sample.found);
  return copy;
}

void Strategy::keep(DrawnSample&& sample, const LineCounts& counts) {
  std::vector<std::size_t> field_counts = counts.to_vector();
  lines_ = sample.take_lines();
  sample_ = std::move(sample.found);
  text_ = sample_.text;
  field_counts_ = std::move(field_counts);
}

// ---------------------------------------------------------------------------------------------
// Cutting

// If `cut` throws, the column of the next field is restored.
template <typename Cut>
void Strategy::cut_or_restore(Cut cut) {
  const std::size_t column = next_column();
  try {
    cut();
  } catch (...) {
    if (column_) *column_ = column;
    throw;
  }
}

void Strategy::cut_line(const Field& line, std::vector<Field>& fields) {
  const std::shared_ptr<const Splitter> splitter = this->splitter();
  const std::unique_ptr<FieldCutter> cutter = splitter->field_cutter();
  const std::size_t before = fields.size();
  try {
    cut_or_restore([&] {
      const std::size_t column = cutter->append_fields(line, next_column(), fields);
      if (column_) *column_ = column;
    });
  } catch (...) {
    fields.erase(fields.begin() + static_cast<std::ptrdiff_t>(before), fields.end());
    throw;
  }
}

std::vector<Field> Strategy::fields_of(const Field& line) {
  std::vector<Field> fields;
  fields.reserve(kUsualFields);
  const std::shared_ptr<const Splitter> splitter = this->splitter();
  splitter->field_cutter()->append_fields(line, 0, fields);
  return fields;
}

FieldArray Strategy::get_fields_from_lines() {
  FieldArray result;
  result.counts.reserve(lines_.size());
  cut_or_restore([&] {
    const std::shared_ptr<const Splitter> splitter = this->splitter();
    const std::unique_ptr<FieldCutter> cutter = splitter->field_cutter();
    std::size_t column = next_column();
    for (const Field& line : lines_) {
      column = cutter->append_fields(line, column, result.fields);
      reset_fields();
      result.counts.push_back(result.fields.size());
    }
    if (column_) *column_ = column;
  });
  return result;
}

// ---------------------------------------------------------------------------------------------
// Valuing

const StrategyValuation& Strategy::valuation() {
  if (valuation_done_) return valuation_;
  cut_or_restore([this] {
    DrawnSample sample = sample_of(text_, lines_);
    Trial trial(*this, sample);
    std::vector<std::size_t> field_counts = trial.counts().to_vector();
    trial.settle();
    field_counts_ = std::move(field_counts);
  });
  return valuation_;
}

CountScore Strategy::score(const LineCounts& counts) const {
  HeaderLines headers{std::nullopt, header_lines_auto_, space_separated_};
  if (header_lines_ != kUnknownHeaderLines) headers.given = header_lines_;
  return score_counts(counts, headers, valuation_);
}

InspectionScope Strategy::scope(const CountScore& score, const Field& text) const {
  return {score.header_lines.value_or(kUnknownHeaderLines), score.valuation.modal_field_count,
          static_cast<std::size_t>(score.valuation.num_variables), options_->whitespace, text};
}

void Strategy::settle(const CountScore& score, std::vector<DatatypeCode> classes,
                      std::size_t column) noexcept {
  valuation_ = score.valuation;
  header_lines_ = score.header_lines.value_or(kUnknownHeaderLines);
  if (score.has_columns) {
    add_classes(classes, valuation_);
    column_classes_ = std::move(classes);
  }
  if (column_) *column_ = column;
  valuation_done_ = true;
}

std::vector<DatatypeCode> Strategy::classify_columns(const FieldArray& fields) const {
  return textio::classify_columns(fields, scope({valuation_, header_lines_, true}, text_));
}

void Strategy::inspect_datatypes(const FieldArray& fields) {
  std::vector<DatatypeCode> classes = classify_columns(fields);
  add_classes(classes, valuation_);
  column_classes_ = std::move(classes);
}

// ---------------------------------------------------------------------------------------------
// Statistics

void Strategy::calculate_headerlines(const std::vector<std::size_t>& diffs, std::size_t first) {
  if (header_lines_ != kUnknownHeaderLines) return;
  header_lines_ = valuation_.total_variation == 0.0
                      ? 0
                      : detection::get_header_lines(diffs, first, space_separated_);
}

double Strategy::get_total_variation(const std::vector<std::size_t>& diffs) const {
  return textio::get_total_variation(diffs);
}

double Strategy::get_data_variation(const std::vector<std::size_t>& diffs) const {
  return textio::get_data_variation(diffs, header_lines_, valuation_.total_variation);
}

std::size_t Strategy::get_number_of_variables(const std::vector<std::size_t>& line_counts) const {
  return textio::get_number_of_variables(line_counts, header_lines_);
}

std::vector<std::size_t> Strategy::get_abs_diffs(
    const std::vector<std::size_t>& line_counts) const {
  return textio::get_abs_diffs(line_counts, valuation_.modal_field_count);
}

std::size_t Strategy::get_modified_median(const std::vector<std::size_t>& line_counts,
                                          std::size_t first) const {
  return textio::get_modified_median(line_counts, first);
}

}  // namespace textio
