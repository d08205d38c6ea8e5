// The steps of a selection: whole-line dates, no sample, no candidate, one candidate, and then the
// filters one after the other until one candidate is left.
#include <vltextstream/detection/strategy_selector.hpp>

#include <iterator>
#include <numeric>
#include <utility>

#include <vltextstream/detection/candidates.hpp>
#include <vltextstream/detection/sample_store.hpp>
#include <vltextstream/strategy/delimited_strategy.hpp>
#include <vltextstream/strategy/line_reader_strategy.hpp>

namespace textio::detection {
namespace {

// A strategy that owns the options record it was made from.
struct SingleColumn {
  explicit SingleColumn(const parser::options& given)
      : options(with_one_column(given)), strategy(options) {}

  static parser::options with_one_column(parser::options options) {
    options.delimiters = {u","};
    options.detect_delimiters = false;
    options.detect_header_lines = false;
    options.header_lines = 0;
    options.num_variables = 1;
    return options;
  }

  parser::options options;
  DelimitedStrategy strategy;
};

// One step of the filter sequence; one of the two pointers is set.
struct FilterStep {
  using Survivors = StrategySelector::Survivors;
  using Valuations = StrategySelector::Valuations;

  const char* name;
  bool for_given_number_of_variables = false;
  Survivors (StrategySelector::*by_valuations)(const Survivors&, const Valuations&) const = nullptr;
  Survivors (StrategySelector::*by_candidates)(
      const Survivors&, const Valuations&,
      const std::vector<std::shared_ptr<Strategy>>&) const = nullptr;
};

constexpr FilterStep kCascade[] = {
    {"reduce_by_numvariables", true, &StrategySelector::reduce_by_numvariables},
    {"reduce_by_dates", false, &StrategySelector::reduce_by_dates},
    {"reduce_by_variation", false, &StrategySelector::reduce_by_variation},
    {"reduce_by_class_value", false, &StrategySelector::reduce_by_class_value},
    {"reduce_by_header_lines", false, nullptr, &StrategySelector::reduce_by_header_lines},
    {"reduce_by_non_empty", false, &StrategySelector::reduce_by_non_empty},
    {"reduce_by_priors_rank", false, &StrategySelector::reduce_by_priors_rank},
};

bool reads_as_dates(const StrategyValuation& score) {
  return static_cast<std::int32_t>(score.date_columns + score.datetime_columns) >= 1;
}

}  // namespace

StrategySelector::StrategySelector(const parser::options& options)
    : options_(&options),
      delimiters_(options.delimiters),
      header_lines_(options.header_lines),
      detect_delimiters_(options.detect_delimiters),
      detect_header_lines_(options.detect_header_lines) {}

StrategySelector::~StrategySelector() = default;
StrategySelector::StrategySelector(const StrategySelector&) = default;

// The copies, which can fail, come first: if one fails, the selector is unchanged.
StrategySelector& StrategySelector::operator=(const StrategySelector& other) {
  if (this == &other) return *this;
  std::vector<std::u16string> delimiters = other.delimiters_;
  options_ = other.options_;
  delimiters_ = std::move(delimiters);
  header_lines_ = other.header_lines_;
  detect_delimiters_ = other.detect_delimiters_;
  detect_header_lines_ = other.detect_header_lines_;
  return *this;
}

std::shared_ptr<Strategy> StrategySelector::pick_strategy(const Field& text,
                                                          unsigned long num_lines) const {
  SelectionOutcome outcome;
  return pick(text, num_lines, outcome, nullptr);
}

std::shared_ptr<Strategy> StrategySelector::pick_strategy(const Field& text,
                                                          unsigned long num_lines,
                                                          SelectionTrace& trace) const {
  trace = SelectionTrace();
  SelectionOutcome outcome;
  auto winner = pick(text, num_lines, outcome, &trace);
  trace.end = outcome.end;
  trace.reached_end = outcome.reached_end;
  return winner;
}

std::shared_ptr<Strategy> StrategySelector::pick_strategy(const Field& text,
                                                          unsigned long num_lines,
                                                          SelectionOutcome& outcome) const {
  outcome = SelectionOutcome();
  return pick(text, num_lines, outcome, nullptr);
}

std::shared_ptr<Strategy> StrategySelector::pick(const Field& text, unsigned long num_lines,
                                                 SelectionOutcome& outcome,
                                                 SelectionTrace* trace) const {
  SampleStore samples(text, num_lines);
  auto winner = pick(samples, outcome, trace);
  outcome.reached_end = samples.reached_end();
  return winner;
}

std::shared_ptr<Strategy> StrategySelector::pick(SampleStore& samples, SelectionOutcome& outcome,
                                                 SelectionTrace* trace) const {
  const auto ended = [&outcome](SelectionEnd end) { outcome.end = end; };
  const auto won_by = [&samples](Candidate winner) {
    samples.restore(winner);
    winner.strategy->keep(std::move(winner.sample), winner.counts);
    return std::move(winner.strategy);
  };

  const auto line_reader = std::make_shared<LineReaderStrategy>(*options_);
  line_reader->header_lines(0);
  Candidate reader = valued(line_reader, samples.draw(*line_reader));
  if (reads_as_dates(line_reader->valuation())) {
    ended(SelectionEnd::whole_line_dates);
    return single_column(samples);
  }
  if (reader.sample.size() == 0) {
    ended(SelectionEnd::empty_sample);
    return won_by(std::move(reader));
  }

  const std::u16string chars = find_candidate_chars(reader.sample.texts);
  if (trace) trace->candidate_chars = chars;
  samples.remember_blanks(reader.sample);
  samples.keep_or_drop(reader);
  Candidates candidates = build_candidates(chars, {*options_, header_lines_, samples}, trace);
  if (candidates.empty()) {
    ended(SelectionEnd::no_candidate);
    return won_by(std::move(reader));
  }
  if (candidates.size() == 1) {
    ended(SelectionEnd::only_candidate);
    return won_by(std::move(candidates.front()));
  }

  std::vector<std::shared_ptr<Strategy>> strategies;
  strategies.reserve(candidates.size());
  for (const Candidate& candidate : candidates) strategies.push_back(candidate.strategy);
  const Survivors survivors = reduce(strategies, outcome, trace);
  if (survivors.size() == 1) {
    ended(SelectionEnd::single_survivor);
    return won_by(std::move(candidates[survivors.front()]));
  }
  ended(SelectionEnd::unresolved_tie);
  return single_column(samples);
}

// Runs the filters in order until one candidate is left.
StrategySelector::Survivors StrategySelector::reduce(
    const std::vector<std::shared_ptr<Strategy>>& candidates, SelectionOutcome& outcome,
    SelectionTrace* trace) const {
  Valuations valuations;
  valuations.reserve(candidates.size());
  for (const auto& candidate : candidates) valuations.push_back(candidate->valuation());
  Survivors survivors(candidates.size());
  std::iota(survivors.begin(), survivors.end(), 0UL);
  if (trace) trace->filters.reserve(std::size(kCascade));

  for (const FilterStep& step : kCascade) {
    if (step.for_given_number_of_variables && options_->detect_num_variables) continue;
    survivors = step.by_candidates ? (this->*step.by_candidates)(survivors, valuations, candidates)
                                   : (this->*step.by_valuations)(survivors, valuations);
    if (trace) trace->filters.push_back({step.name, {survivors.begin(), survivors.end()}});
    if (survivors.size() == 1) {
      outcome.decided_by = step.name;
      break;
    }
  }
  return survivors;
}

std::shared_ptr<Strategy> StrategySelector::single_column(SampleStore& samples) const {
  const auto holder = std::make_shared<SingleColumn>(*options_);
  holder->strategy.keep(samples.draw(holder->strategy), {});
  return {holder, &holder->strategy};
}

}  // namespace textio::detection
