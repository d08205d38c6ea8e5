// A character of the sampled lines that is no part of words and numbers may separate fields. For
// each such character one delimited candidate is built; for the space, also a space-aligned one,
// which turns into a fixed-width one when all its data lines have one length and columns of blanks
// run through them.
#include <vltextstream/detection/candidates.hpp>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>

#include <vltextstream/scoring/line_statistics.hpp>
#include <vltextstream/strategy/delimited_strategy.hpp>
#include <vltextstream/strategy/fixed_width_strategy.hpp>
#include <vltextstream/strategy/scan.hpp>
#include <vltextstream/strategy/space_aligned_strategy.hpp>

namespace textio::detection {
namespace {

constexpr std::size_t kAsciiCount = 128;

// Besides the delimited candidate: a space-aligned one, and a fixed-width one made of it.
constexpr std::size_t kMoreForTheSpace = 2;

constexpr std::u16string_view kNeverDelimiters = u"@-.\"$'+\r\n\x1A";

bool is_word_char(char16_t unit) {
  return (unit >= u'a' && unit <= u'z') || (unit >= u'A' && unit <= u'Z') ||
         (unit >= u'0' && unit <= u'9');
}

// Of the ASCII characters.
bool may_delimit(char16_t unit) { return !is_word_char(unit) && !contains(kNeverDelimiters, unit); }

// The lines in the middle, where header and trailer do not reach; of a few lines, all but the
// first.
struct Range {
  std::size_t first;
  std::size_t last;
};
Range lines_to_scan(std::size_t n) {
  if (n > 5) return {(n + 2) / 3, n * 5 / 6};
  return {n == 1 ? std::size_t{0} : std::size_t{1}, n};
}

// Collects the characters that may delimit, each the first time that it is met.
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

bool all_as_long_as_the_first(const std::vector<Field>& lines, std::size_t begin) {
  return std::all_of(lines.begin() + static_cast<std::ptrdiff_t>(begin), lines.end(),
                     [&](const Field& line) { return line.length == lines[0].length; });
}

// A place stays blank while every line so far has a space there; text behind such a place begins a
// column. Both loops take many places at a time: nothing else has the type of the marks.
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
  trace.mode = strategy.mode();
  if (const auto* delimited = dynamic_cast<const DelimitedStrategy*>(&strategy)) {
    trace.delimiter = delimited->delimiters().front();
  }
  if (const auto* fixed = dynamic_cast<const FixedWidthStrategy*>(&strategy)) {
    trace.widths = fixed->widths();
  }
  trace.valuation = strategy.valuation();
  trace.header_lines = strategy.header_lines();
  trace.fate = fate;
  return trace;
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
      auto delimited = std::make_shared<DelimitedStrategy>(input_.options, c);
      samples_.draw(*delimited);
      add_if_accepted(delimited);
    }
    return std::move(candidates_);
  }

 private:
  void add_space_aligned() {
    auto aligned = std::make_shared<SpaceAlignedStrategy>(input_.options);
    if (!input_.options.detect_header_lines) aligned->header_lines(input_.header_lines);
    const unsigned long header_lines_before = aligned->header_lines();
    samples_.draw(*aligned);
    aligned->valuation();
    const std::vector<Field>& lines = aligned->lines();
    // Without a data line, or with nothing but blanks in them, there are no columns to find.
    const bool has_data =
        lines.size() > 1 && aligned->header_lines() < lines.size() && lines[0].length > 0;
    if (has_data && all_as_long_as_the_first(lines, aligned->header_lines())) {
      add_aligned_or_fixed(aligned, lines);
    } else {
      // A valuation may override header lines that are given, and with them how much is sampled.
      const bool are_settled = aligned->header_lines() == header_lines_before;
      if (!input_.options.detect_header_lines && !are_settled) samples_.draw(*aligned);
      add_if_accepted(aligned);
    }
  }

  // `lines` are those of `aligned`; its data lines have one length.
  void add_aligned_or_fixed(const std::shared_ptr<SpaceAlignedStrategy>& aligned,
                            const std::vector<Field>& lines) {
    const StrategyValuation& score = aligned->valuation();
    std::size_t begin = aligned->header_lines();
    if (input_.options.detect_header_lines) {
      while (begin > 0 && lines[begin - 1].length == lines[begin].length) --begin;
    }
    std::vector<unsigned long> widths;
    if (score.data_variation != 0.0) {
      widths = find_column_widths(std::span(lines).subspan(begin), lines[begin].length,
                                  score.data_variation, score.num_variables);
    }
    if (widths.empty()) {
      add(aligned, CandidateFate::kept);
      return;
    }
    record(*aligned, CandidateFate::made_fixed_width);
    auto fixed = std::make_shared<FixedWidthStrategy>(input_.options, widths);
    fixed->header_lines(begin);
    samples_.draw(*fixed, lines.size());
    fixed->valuation();
    add(fixed, CandidateFate::kept);
  }

  void add_if_accepted(const std::shared_ptr<Strategy>& strategy) {
    const CandidateFate fate = judge(samples_.value(*strategy, [this](const StrategyValuation& v) {
      return trace_ != nullptr || judge(v) == CandidateFate::kept;
    }));
    if (fate == CandidateFate::kept) {
      add(strategy, fate);
    } else {
      record(*strategy, fate);
    }
  }

  // A reading with one column is kept when the caller has settled the number of variables.
  CandidateFate judge(const StrategyValuation& score) const {
    const bool several_columns = score.modal_field_count > 1;
    const bool caller_wants_it = !input_.options.detect_num_variables && score.num_lines > 1;
    const bool regular = score.data_variation < 1.0;
    if (regular && (several_columns || caller_wants_it)) return CandidateFate::kept;
    return several_columns ? CandidateFate::irregular : CandidateFate::single_column;
  }

  void add(const std::shared_ptr<Strategy>& strategy, CandidateFate fate) {
    record(*strategy, fate);
    candidates_.push_back(strategy);
    samples_.put_away(*strategy);
  }

  void record(Strategy& strategy, CandidateFate fate) {
    if (trace_) trace_->candidates.push_back(trace_of(strategy, fate));
  }

  const CandidateInput& input_;
  SampleKeeper& samples_;
  SelectionTrace* trace_;
  Candidates candidates_;
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

  // The blanks in front of a text are part of its column, so a column ends where blanks begin.
  std::vector<unsigned long> widths;
  widths.reserve(counts.back() + 1);  // blanks at the end are a column, too
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
