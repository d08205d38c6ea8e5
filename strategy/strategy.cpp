// Making a strategy, and the sampling and cutting that all strategies share. The scores are
// computed in scoring/strategy_valuation.cpp.
#include <vltextstream/strategy/strategy.hpp>

#include <algorithm>
#include <limits>
#include <utility>

#include <vltextstream/strategy/cut_rollback.hpp>
#include <vltextstream/strategy/delimited_strategy.hpp>
#include <vltextstream/strategy/field_scan.hpp>
#include <vltextstream/strategy/line_cleaning.hpp>
#include <vltextstream/strategy/line_scan.hpp>
#include <vltextstream/strategy/scan.hpp>
#include <vltextstream/strategy/space_aligned_strategy.hpp>

namespace textio {
namespace {

constexpr auto kNoLimit = std::numeric_limits<std::size_t>::max();
constexpr std::size_t kFirstRoom = 16'384;

std::size_t saturating_add(std::size_t a, std::size_t b) {
  return a > kNoLimit - b ? kNoLimit : a + b;
}

// Whether a line whose cleaned text is `text` is a comment. Only the start marker counts: what a
// block comment encloses is dropped line by line, where a line begins with the marker itself.
bool is_comment(const Field& text, const std::vector<std::u16string>& comment_style) {
  return !comment_style.empty() && !comment_style[0].empty() &&
         view_of(text).substr(0, comment_style[0].size()) == comment_style[0];
}

// The text that stands in for an empty line, if there is one.
Field or_replacement(const Field& cleaned, const FieldFormat& format) {
  const std::u16string& replacement = format.empty_text;
  return cleaned.length > 0 ? cleaned : Field(replacement.data(), replacement.size());
}

enum class LineKind { text, empty, comment };

LineKind kind_of(const Field& line, FieldFormat& format,
                 const std::vector<std::u16string>& comment_style) {
  const Field cleaned = or_replacement(clean_line(line, format), format);
  if (cleaned.length == 0) return LineKind::empty;
  return is_comment(cleaned, comment_style) ? LineKind::comment : LineKind::text;
}

// What was expected or doubled may be far more than is kept.
template <typename Entry>
void give_back_room(std::vector<Entry>& list) {
  if (list.capacity() / 2 > list.size()) list.shrink_to_fit();
}

// The lines of a sample while it is drawn, and the number of fields on each if it is wanted.
class DrawnLines {
 public:
  DrawnLines(std::size_t room, std::vector<std::size_t>* num_fields) : num_fields_(num_fields) {
    make_room(room);
  }

  std::size_t size() const { return lines_.size(); }

  // Makes room for `count` more. Doubles a full list, yet not beyond what the units that are left
  // of the text behind them can add.
  void make_room_for(std::size_t count, std::size_t units_left) {
    if (lines_.capacity() - size() >= count) return;
    make_room(size() + count + std::min(std::max(size(), kFirstRoom), units_left));
  }

  // There is room for it.
  void add(const Field& line, std::size_t num_fields) {
    lines_.push_back(line);
    if (num_fields_) num_fields_->push_back(num_fields);
  }

  void add_empty(std::size_t count, std::size_t units_left) {
    make_room_for(count, units_left);
    lines_.insert(lines_.end(), count, empty_field());
    if (num_fields_) num_fields_->insert(num_fields_->end(), count, 0);
  }

  std::vector<Field> take() {
    give_back_room(lines_);
    if (num_fields_) give_back_room(*num_fields_);
    return std::move(lines_);
  }

 private:
  void make_room(std::size_t lines) {
    lines_.reserve(lines);
    if (num_fields_) num_fields_->reserve(lines);
  }

  std::vector<Field> lines_;
  std::vector<std::size_t>* num_fields_;
};

// Whether `field`, a field of `line`, ends where the line ends. A field may report more units than
// the line has.
bool ends_with(const Field& line, const Field& field) {
  const auto offset = static_cast<std::size_t>(field.data - line.data);
  return offset <= line.length && field.length == line.length - offset;
}

// Every field moves `pos` on: it holds a unit, or a delimiter, or both. (Only columns of width 0 do
// not, and not all columns have width 0.)
template <typename NextField>
void append_fields_of(const Field& line, std::vector<Field>& fields, NextField next_field) {
  std::size_t pos = 0;
  const auto take = [&] {
    const FieldExtent extent = next_field(pos);
    fields.push_back(extent.field);
    pos = extent.next;
  };
  while (!ends_at(line, pos)) {
    take();
    // A line that ends with a delimiter has one more, empty, field behind it; the same step gives
    // a line that is too short for its fixed widths one field more.
    if (ends_at(line, pos) && !ends_with(line, fields.back())) take();
  }
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

// The copies that can fail come first.
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

// The sample before is kept until the new one is there, and its copy.
std::vector<Field> Strategy::populate_fields(const Field& text, unsigned long num_lines) {
  std::vector<Field> lines = sampled_lines(text, num_lines, kNoLimit, kFirstRoom, nullptr);
  std::vector<Field> copy = lines;
  text_ = text;
  lines_ = std::move(lines);
  counted_fields_.clear();
  return copy;
}

// Whether a line that is not cleaned yet is neither empty nor a comment. Nothing is taken off most
// lines but white space, and few begin with it.
bool Strategy::is_surely_text(const Field& line) const {
  const bool is_only_trimmed =
      !text_format_.affixes && !text_format_.quote && options_->comment_style.empty();
  return is_only_trimmed && line.length > 0 && text_format_.whitespace &&
         !contains(*text_format_.whitespace, line.data[0]);
}

// The lines of a sample, of which there are `most_lines` at most and, as a rule, `likely_lines`.
// `num_fields` receives the number of fields on each, if it is wanted and the strategy counts them.
std::vector<Field> Strategy::sampled_lines(const Field& text, unsigned long num_lines,
                                           std::size_t most_lines, std::size_t likely_lines,
                                           std::vector<std::size_t>* num_fields) {
  const std::size_t target =
      header_lines_auto_ ? num_lines : saturating_add(num_lines, header_lines_);
  const StableText stable(*this, text);
  const std::unique_ptr<LineScan> scan = LineScan::of(*this, text);
  DrawnLines lines(std::min({target, saturating_add(text.length, 1), likely_lines}),
                   scan->counts_fields() ? num_fields : nullptr);
  // Every line extent ends behind its start while there is text: it holds a unit, or a line
  // ending, or both. So the loop ends.
  std::size_t pos = 0;
  std::size_t count = 0;
  const auto units_left = [&] { return text.length - std::min(pos, text.length); };
  while (!ends_at(text, pos) && count < target && lines.size() < most_lines) {
    const auto [extent, fields_on_line] = scan->line_at(pos);
    pos = extent.next;
    const Field& line = extent.field;
    const LineKind kind = is_surely_text(line)
                              ? LineKind::text
                              : kind_of(line, text_format_, options_->comment_style);
    if (kind == LineKind::comment) continue;
    if (kind == LineKind::empty) {
      // Nothing stands in for empty lines, or it would have stood in for this one.
      const EmptyLines more = scan->empty_lines_at(pos, most_lines - lines.size() - 1);
      pos = more.next;
      lines.add_empty(1 + more.count, units_left());
      continue;
    }
    lines.make_room_for(1, units_left());
    lines.add(line, line.length > 0 ? fields_on_line : 0);
    ++count;
  }
  return lines.take();
}

// A line that is read field by field is cut in one scan.
void Strategy::append_fields(const Field& line, std::vector<Field>& fields) {
  const auto append_by_scan = [&](const auto& own) {
    FieldScan scan(own.tokenizer_, line);
    append_fields_of(line, fields, [&](std::size_t pos) { return own.next_field(scan, pos); });
  };
  if (const auto* delimited = as_own<DelimitedStrategy>(*this)) {
    append_by_scan(*delimited);
  } else if (const auto* aligned = as_own<SpaceAlignedStrategy>(*this)) {
    append_by_scan(*aligned);
  } else {
    append_fields_of(line, fields, [&](std::size_t pos) { return get_next_field(line, pos); });
  }
}

void Strategy::cut_line(const Field& line, std::vector<Field>& fields) {
  CutRollback rollback(*this);
  const StableText stable(*this, line);
  const std::size_t before = fields.size();
  try {
    append_fields(line, fields);
  } catch (...) {
    fields.erase(fields.begin() + static_cast<std::ptrdiff_t>(before), fields.end());
    throw;
  }
  rollback.dismiss();
}

FieldArray Strategy::get_fields_from_lines() {
  CutRollback rollback(*this);
  FieldArray result;
  result.counts.reserve(lines_.size());
  StableText stable(*this, Field());
  for (const Field& line : lines_) {
    stable.move_to(line);
    append_fields(line, result.fields);
    reset_fields();
    result.counts.push_back(result.fields.size());
  }
  rollback.dismiss();
  return result;
}

}  // namespace textio
