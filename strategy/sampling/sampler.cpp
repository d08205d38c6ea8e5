// One pass over the lines. There may be millions of blank lines, so they are skipped in groups
// where another strategy has already found them, and where they consist of a line ending only.
#include <vltextstream/strategy/sampling/sampler.hpp>

#include <algorithm>
#include <cstdint>
#include <iterator>
#include <limits>
#include <memory>
#include <span>
#include <utility>

#include <vltextstream/strategy/field_text.hpp>
#include <vltextstream/strategy/sampling/line_cleaning.hpp>

namespace textio {
namespace {

// Whether a line with the cleaned text `text` is a comment. Only the start marker counts: a line
// inside a block comment is dropped only if it begins with the marker itself.
bool is_comment(const Field& text, const std::vector<std::u16string>& comment_style) {
  return !comment_style.empty() && !comment_style[0].empty() &&
         view_of(text).substr(0, comment_style[0].size()) == comment_style[0];
}

// The text that replaces an empty line, if the format has one.
Field or_replacement(const Field& cleaned, const FieldFormat& format) {
  const std::u16string& replacement = format.empty_text;
  return cleaned.length > 0 ? cleaned : Field(replacement.data(), replacement.size());
}

// Whether a line is certainly text before it is cleaned. Cleaning removes only white space from
// most lines, and few begin with white space.
bool is_surely_text(const Field& line, const LineTest& test) {
  const FieldFormat& format = test.format;
  const bool is_only_trimmed = !format.affixes && !format.quote && test.comment_style.empty();
  return is_only_trimmed && line.length > 0 && format.whitespace &&
         !contains(*format.whitespace, line.data[0]);
}

SampleLineKind kind_of(const Field& line, const LineTest& test) {
  if (is_surely_text(line, test)) return SampleLineKind::text;
  const Field cleaned = or_replacement(clean_line(line, test.format), test.format);
  if (cleaned.length == 0) return SampleLineKind::blank;
  return is_comment(cleaned, test.comment_style) ? SampleLineKind::comment : SampleLineKind::text;
}

// A table seldom has more runs of lines of one kind.
constexpr std::size_t kUsualRuns = 16;

// A list may have room for far more than it keeps. Room for `enough` entries is kept in any case.
template <typename Entry>
void give_back_room(std::vector<Entry>& list, std::size_t enough) {
  if (list.capacity() > enough && list.capacity() / 2 > list.size()) list.shrink_to_fit();
}

class Sampler {
 public:
  Sampler(const Field& text, const Splitter& splitter, const LineTest& test,
          const SampleLimits& limits)
      : text_(text),
        splitter_(splitter),
        test_(test),
        limits_(limits),
        known_(limits.blank_runs),
        lines_(splitter.lines_of(text)) {
    const std::size_t room = std::min({limits.num_texts, text.length, limits.likely_lines});
    sample_.texts.reserve(room);
    sample_.found.runs.reserve(std::min(room, kUsualRuns));
  }

  // While there is text, every line ends after its start: it has a code unit, a line ending or
  // both. So the loop ends.
  DrawnSample draw() {
    while (!ends_at(text_, pos_) && sample_.texts.size() < limits_.num_texts) {
      if (!take_known_blanks()) take_line();
    }
    if (limits_.takes_last_comments) take_comments();
    return finish();
  }

 private:
  void take_line() {
    const SplitLine line = lines_->line_at(pos_);
    switch (kind_of(line.extent.field, test_)) {
      case SampleLineKind::comment:
        add(SampleLineKind::comment, 1, line.extent.next);
        break;
      case SampleLineKind::blank:
        add(SampleLineKind::blank, 1, line.extent.next);
        take_empty_lines();
        break;
      case SampleLineKind::text:
        take_text(line);
        break;
    }
  }

  void take_comments() {
    while (!ends_at(text_, pos_)) {
      const SplitLine line = lines_->line_at(pos_);
      if (kind_of(line.extent.field, test_) != SampleLineKind::comment) return;
      add(SampleLineKind::comment, 1, line.extent.next);
    }
  }

  void take_text(const SplitLine& line) {
    sample_.texts.push_back(line.extent.field);
    add(SampleLineKind::text, 1, line.extent.next,
        line.extent.field.length > 0 ? line.num_fields : 0);
  }

  // Nothing replaces empty lines here; otherwise the previous line would not have been blank.
  void take_empty_lines() {
    constexpr std::size_t kMostOfARun = std::numeric_limits<std::uint32_t>::max();
    const EmptyLines more = lines_->empty_lines_at(pos_, kMostOfARun);
    if (more.count > 0) add(SampleLineKind::blank, more.count, more.next);
  }

  bool take_known_blanks() {
    while (!known_.empty() && known_.front().begin < pos_) known_ = known_.subspan(1);
    if (known_.empty() || known_.front().begin != pos_) return false;
    add(SampleLineKind::blank, known_.front().num_lines, known_.front().end);
    return true;
  }

  // Advances to `next`, after `num_lines` lines of one kind.
  void add(SampleLineKind kind, std::size_t num_lines, std::size_t next,
           std::size_t num_fields = 0) {
    add_run(sample_.found.runs, {kind, 0, size_, num_texts_, pos_}, num_lines);
    pos_ = next;
    if (kind == SampleLineKind::comment) return;
    size_ += num_lines;
    if (kind == SampleLineKind::text) num_texts_ += num_lines;
    if (splitter_.counts_fields()) sample_.counts.add(num_fields, num_lines);
  }

  DrawnSample finish() {
    give_back_room(sample_.texts, 0);
    give_back_room(sample_.found.runs, kUsualRuns);
    sample_.most_texts = limits_.num_texts;
    sample_.found.text = text_;
    sample_.found.end = pos_;
    // Text further away than the longest marker cannot change a line.
    const std::size_t rest = text_.length - std::min(pos_, text_.length);
    sample_.found.reached_end = rest <= splitter_.longest_marker();
    return std::move(sample_);
  }

  const Field text_;
  const Splitter& splitter_;
  const LineTest test_;
  const SampleLimits limits_;
  std::span<const BlankRun> known_;  // from here on
  const std::unique_ptr<LineCursor> lines_;
  DrawnSample sample_;
  std::size_t pos_ = 0;
  std::size_t size_ = 0;  // sampled lines
  std::size_t num_texts_ = 0;
};

// The run that contains sampled line `index`: the last run that begins at it or before it. Comments
// directly before a line begin at the same number, and come earlier in the list.
const SampleRun& run_of(const std::vector<SampleRun>& runs, std::size_t index) {
  const auto after =
      std::upper_bound(runs.begin(), runs.end(), index,
                       [](std::size_t i, const SampleRun& run) { return i < run.first_line; });
  return *std::prev(after);
}

}  // namespace

void add_run(std::vector<SampleRun>& runs, const SampleRun& first, std::size_t num_lines) {
  constexpr std::size_t kMost = std::numeric_limits<std::uint32_t>::max();
  const bool goes_on =
      !runs.empty() && runs.back().kind == first.kind && kMost - runs.back().num_lines >= num_lines;
  if (!goes_on) runs.push_back(first);
  runs.back().num_lines += static_cast<std::uint32_t>(num_lines);
}

std::size_t DrawnSample::size() const {
  if (found.runs.empty()) return 0;
  const SampleRun& last = found.runs.back();
  return last.first_line + (last.kind == SampleLineKind::comment ? 0 : last.num_lines);
}

const Field& DrawnSample::line(std::size_t index) const {
  const SampleRun& run = run_of(found.runs, index);
  if (run.kind == SampleLineKind::blank) return empty_field();
  return texts[run.first_text + (index - run.first_line)];
}

std::vector<Field> DrawnSample::take_lines() {
  if (texts.size() == size()) return std::move(texts);
  std::vector<Field> lines;
  lines.reserve(size());
  for (const SampleRun& run : found.runs) {
    if (run.kind == SampleLineKind::blank) {
      lines.insert(lines.end(), run.num_lines, empty_field());
    } else if (run.kind == SampleLineKind::text) {
      const auto first = texts.begin() + static_cast<std::ptrdiff_t>(run.first_text);
      lines.insert(lines.end(), first, first + static_cast<std::ptrdiff_t>(run.num_lines));
    }
  }
  texts = {};
  return lines;
}

DrawnSample draw_sample(const Field& text, const Splitter& splitter, const LineTest& test,
                        const SampleLimits& limits) {
  return Sampler(text, splitter, test, limits).draw();
}

}  // namespace textio
