// A character of the sampled lines that is not part of words or numbers may separate fields. Each
// such character gives one delimited candidate. The space also gives a space-aligned candidate,
// which becomes a fixed-width one if all its data lines have the same length and share columns of
// blanks.
#include <vltextstream/detection/candidates.hpp>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>

#include <vltextstream/scoring/line_statistics.hpp>
#include <vltextstream/strategy/delimited_strategy.hpp>
#include <vltextstream/strategy/field_text.hpp>
#include <vltextstream/strategy/fixed_width_strategy.hpp>
#include <vltextstream/strategy/sampling/trial.hpp>
#include <vltextstream/strategy/space_aligned_strategy.hpp>

namespace textio::detection {
namespace {

constexpr std::size_t kAsciiCount = 128;

// Besides the delimited candidate: a space-aligned one, and a fixed-width one made from it.
constexpr std::size_t kMoreForTheSpace = 2;

constexpr std::u16string_view kNeverDelimiters = u"@-.\"$'+\r\n\x1A";

bool is_word_char(char16_t unit) {
  return (unit >= u'a' && unit <= u'z') || (unit >= u'A' && unit <= u'Z') ||
         (unit >= u'0' && unit <= u'9');
}

// For ASCII characters only.
bool may_delimit(char16_t unit) { return !is_word_char(unit) && !contains(kNeverDelimiters, unit); }

// The lines in the middle, away from header and trailer; if there are only a few lines, all except
// the first.
struct Range {
  std::size_t first;
  std::size_t last;
};
Range lines_to_scan(std::size_t n) {
  if (n > 5) return {(n + 2) / 3, n * 5 / 6};
  return {n == 1 ? std::size_t{0} : std::size_t{1}, n};
}

// Collects the characters that may delimit, each one where it first appears.
class NewCandidateChars {
 public:
  NewCandidateChars() {
    for (std::size_t unit = 0; unit < kAsciiCount; ++unit) {
      is_new_[unit] = may_delimit(static_cast<char16_t>(unit));
    }
  }

  // A U+FFFF ends the line.
  void add_those_of(const Field& line) {
    for (const char16_t unit : view_of(line)) {
      if (unit >= kAsciiCount) {
        if (unit == kEndMark) return;
      } else if (is_new_[unit]) {
        is_new_[unit] = false;
        found_.push_back(unit);
      }
    }
  }

  const std::u16string& found() const { return found_; }

 private:
  std::array<bool, kAsciiCount> is_new_;
  std::u16string found_;
};

// The last `count` sampled lines. None of them may be blank.
std::span<const Field> last_texts(const DrawnSample& sample, std::size_t count) {
  return std::span(sample.texts).last(count);
}

// A position stays blank while every line so far has a space there. A column begins where text
// follows such a position. uint16_t cannot alias, so both loops vectorise.
class BlankPlaces {
 public:
  explicit BlankPlaces(std::size_t width) : is_blank_(width, 1) {}

  bool operator[](std::size_t place) const { return is_blank_[place] != 0; }

  void keep_those_of(const Field& line) {
    const std::size_t length = std::min(line.length, is_blank_.size());
    std::uint16_t* const marks = is_blank_.data();
    for (std::size_t i = 0; i < length; ++i) {
      marks[i] = static_cast<std::uint16_t>(marks[i] & (line.data[i] == u' ' ? 1 : 0));
    }
    std::fill(is_blank_.begin() + static_cast<std::ptrdiff_t>(length), is_blank_.end(), 0);
  }

  std::size_t num_columns() const {
    std::size_t columns = 1;
    for (std::size_t i = 1; i < is_blank_.size(); ++i) columns += is_blank_[i - 1] > is_blank_[i];
    return columns;
  }

 private:
  std::vector<std::uint16_t> is_blank_;
};

double mean_deviation(std::vector<std::size_t> counts, std::size_t from) {
  for (std::size_t& count : counts) count = count > from ? count - from : from - count;
  return get_total_variation(counts);
}

CandidateTrace trace_of(Strategy& strategy, CandidateFate fate) {
  CandidateTrace trace;
  trace.dialect = strategy.dialect();
  trace.valuation = strategy.valuation();
  trace.header_lines = strategy.header_lines();
  trace.fate = fate;
  return trace;
}

// Whether the lines from `begin` on are as long as the first one, so that none of them is blank.
bool all_as_long_as_the_first(const DrawnSample& sample, std::size_t begin) {
  const std::size_t length = sample.line(0).length;
  const auto is_other = [&](const SampleRun& run) {
    return run.kind == SampleLineKind::blank && run.first_line + run.num_lines > begin;
  };
  const std::vector<SampleRun>& runs = sample.found.runs;
  if (std::any_of(runs.begin(), runs.end(), is_other)) return false;
  const std::span<const Field> lines = last_texts(sample, sample.size() - begin);
  return std::all_of(lines.begin(), lines.end(),
                     [length](const Field& line) { return line.length == length; });
}

class CandidateBuilder {
 public:
  CandidateBuilder(const CandidateInput& input, SelectionTrace* trace)
      : input_(input), samples_(input.samples), trace_(trace) {}

  Candidates build(const std::u16string& chars) {
    candidates_.reserve(chars.size() + kMoreForTheSpace);
    if (trace_) trace_->candidates.reserve(chars.size() + kMoreForTheSpace);
    for (const char16_t c : chars) {
      if (c == u' ') add_space_aligned();
      add_delimited(c);
    }
    return std::move(candidates_);
  }

 private:
  // Counts and judges every candidate; classifies only those that are kept or traced.
  void add_delimited(char16_t delimiter) {
    const auto strategy = std::make_shared<DelimitedStrategy>(input_.options, list_of(delimiter));
    DrawnSample sample = shares_blank_lines(delimiter) ? samples_.draw_past_blanks(*strategy)
                                                       : samples_.draw(*strategy);
    Trial trial(*strategy, sample);
    const CandidateFate fate = judge(trial.score().valuation);
    if (fate == CandidateFate::kept || trace_) trial.settle();
    record(*strategy, fate);
    if (fate != CandidateFate::kept) return;
    LineCounts counts = trial.take_counts();
    keep({strategy, std::move(sample), std::move(counts)});
  }

  void add_space_aligned() {
    const auto aligned = std::make_shared<SpaceAlignedStrategy>(input_.options);
    if (!input_.options.detect_header_lines) aligned->header_lines(input_.header_lines);
    const unsigned long header_lines_before = aligned->header_lines();
    Candidate candidate =
        valued(aligned, aligned_shares_blank_lines() ? samples_.draw_past_blanks(*aligned)
                                                     : samples_.draw(*aligned));
    const DrawnSample& sample = candidate.sample;
    // Without a data line, or with only blanks in the data lines, there are no columns to find.
    const bool has_data =
        sample.size() > 1 && aligned->header_lines() < sample.size() && sample.line(0).length > 0;
    if (has_data && all_as_long_as_the_first(sample, aligned->header_lines())) {
      add_aligned_or_fixed(std::move(candidate));
      return;
    }
    // A valuation may override given header lines, and this changes the size of the sample.
    const bool are_settled = aligned->header_lines() == header_lines_before;
    if (!input_.options.detect_header_lines && !are_settled) {
      candidate.sample = samples_.draw(*aligned);
    }
    const CandidateFate fate = judge(aligned->valuation());
    record(*aligned, fate);
    if (fate == CandidateFate::kept) keep(std::move(candidate));
  }

  // The data lines of `aligned` have the same length.
  void add_aligned_or_fixed(Candidate aligned) {
    const StrategyValuation& score = aligned.strategy->valuation();
    const DrawnSample& sample = aligned.sample;
    std::size_t begin = aligned.strategy->header_lines();
    const std::size_t width = sample.line(begin).length;
    if (input_.options.detect_header_lines) {
      while (begin > 0 && sample.line(begin - 1).length == width) --begin;
    }
    std::vector<unsigned long> widths;
    if (score.data_variation != 0.0) {
      widths = find_column_widths(last_texts(sample, sample.size() - begin), width,
                                  score.data_variation, score.num_variables);
    }
    if (widths.empty()) {
      record(*aligned.strategy, CandidateFate::kept);
      keep(std::move(aligned));
      return;
    }
    record(*aligned.strategy, CandidateFate::made_fixed_width);
    add_fixed_width(widths, begin, sample);
  }

  void add_fixed_width(const std::vector<unsigned long>& widths, std::size_t header_lines,
                       const DrawnSample& aligned) {
    const auto fixed = std::make_shared<FixedWidthStrategy>(input_.options, widths);
    fixed->header_lines(header_lines);
    Candidate candidate = valued(fixed, samples_.draw_like(aligned, *fixed));
    record(*fixed, CandidateFate::kept);
    keep(std::move(candidate));
  }

  // A list of one delimiter, valid until the next call.
  const std::vector<std::u16string>& list_of(char16_t delimiter) {
    delimiters_.front().assign(1, delimiter);
    return delimiters_;
  }

  // The blank lines of the line reader are the same lines for a strategy, and blank, if they
  // contain neither its delimiter nor a quote.
  bool shares_blank_lines(char16_t delimiter) const {
    const std::u16string& units = samples_.blank_units();
    return !contains(units, delimiter) && !contains(units, u'"');
  }

  // For the aligned candidate, a line of blanks is empty. The blanks must not include a line
  // ending.
  bool aligned_shares_blank_lines() const {
    const auto& endings = input_.options.line_endings;
    const auto ends_lines = [&endings](char16_t unit) {
      return std::any_of(endings.begin(), endings.end(),
                         [unit](const std::u16string& ending) { return contains(ending, unit); });
    };
    const std::u16string& units = samples_.blank_units();
    return !ends_lines(u' ') && !ends_lines(u'\t') &&
           std::all_of(units.begin(), units.end(), [&](char16_t unit) {
             return unit == u' ' || unit == u'\t' || ends_lines(unit);
           });
  }

  // A candidate with one column is kept if the caller has fixed the number of variables.
  CandidateFate judge(const StrategyValuation& score) const {
    const bool several_columns = score.modal_field_count > 1;
    const bool caller_wants_it = !input_.options.detect_num_variables && score.num_lines > 1;
    const bool regular = score.data_variation < 1.0;
    if (regular && (several_columns || caller_wants_it)) return CandidateFate::kept;
    return several_columns ? CandidateFate::irregular : CandidateFate::single_column;
  }

  void keep(Candidate candidate) {
    samples_.keep_or_drop(candidate);
    candidates_.push_back(std::move(candidate));
  }

  void record(Strategy& strategy, CandidateFate fate) {
    if (trace_) trace_->candidates.push_back(trace_of(strategy, fate));
  }

  const CandidateInput& input_;
  SampleStore& samples_;
  SelectionTrace* trace_;
  Candidates candidates_;
  std::vector<std::u16string> delimiters_{1};
};

}  // namespace

std::u16string find_candidate_chars(const std::vector<Field>& lines) {
  const auto is_empty = [](const Field& line) { return line.length == 0; };
  const auto n =
      lines.size() - static_cast<std::size_t>(std::count_if(lines.begin(), lines.end(), is_empty));
  const Range range = lines_to_scan(n);
  NewCandidateChars chars;
  std::size_t index = 0;
  for (const Field& line : lines) {
    if (is_empty(line)) continue;
    const std::size_t i = index++;
    if (i >= range.first && i < range.last) chars.add_those_of(line);
  }
  return chars.found();
}

Candidates build_candidates(const std::u16string& chars, const CandidateInput& input,
                            SelectionTrace* trace) {
  return CandidateBuilder(input, trace).build(chars);
}

std::vector<unsigned long> find_column_widths(std::span<const Field> data_lines, std::size_t width,
                                              double variation, std::size_t most_columns) {
  BlankPlaces blank(width);
  std::vector<std::size_t> counts;
  counts.reserve(data_lines.size());
  for (const Field& line : data_lines) {
    blank.keep_those_of(line);
    counts.push_back(blank.num_columns());
  }
  const double deviation = mean_deviation(counts, get_modified_median(counts, 0));
  if (deviation > variation || counts.back() > most_columns) return {};

  // The blanks before a text are part of its column, so a column ends where blanks begin.
  std::vector<unsigned long> widths;
  widths.reserve(counts.back() + 1);  // blanks at the end are a column as well
  std::size_t begin = 0;
  for (std::size_t j = 1; j < width; ++j) {
    if (blank[j - 1] || !blank[j]) continue;
    widths.push_back(j - begin);
    begin = j;
  }
  widths.push_back(width - begin);
  return widths;
}

}  // namespace textio::detection
