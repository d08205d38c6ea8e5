// StrategySelector: decides which strategy describes a text.
//
//   parser::options options;
//   detection::StrategySelector selector(options);
//   std::shared_ptr<Strategy> winner = selector.pick_strategy(sample, 100);
//   winner->mode();                    // Strategy::kDelimited, ...
//
// A detection takes these steps:
//
//  1. Sample     a LineReaderStrategy samples the lines. If each line as a whole is a date, the
//                text has a single column; if there is no line, the line reader wins
//                (strategy/sampling/sampler.hpp).
//  2. Characters the characters of the middle lines that could separate fields are collected
//                (find_candidate_chars in detection/candidates.hpp).
//  3. Candidates for each character a DelimitedStrategy; for the space also a SpaceAlignedStrategy,
//                which may become a FixedWidthStrategy (build_candidates).
//  4. Score      each candidate samples the text; the numbers of fields on its lines are scored
//                (scoring/count_score.hpp). An irregular candidate is refused here.
//  5. Classes    the columns of the others are classified (scoring/datatype_inspection.hpp).
//  6. Filters    the reduce_by_* filters run in the order in which they are declared, until one
//                candidate is left.
//
// Units      line budgets and header lines count lines; see strategy/strategy.hpp.
// Ownership  the options record must outlive the selector and every strategy it returns. The text
//            must outlive every use of the returned strategy's lines and fields.
// Errors     none of its own; std::bad_alloc is passed on.
// Cost       each candidate samples the text once or twice and is scored once; the cost of the
//            filters is negligible.
// Threads    one thread at a time. Selectors that share an options record are independent.
#pragma once

#include <memory>
#include <string>
#include <vector>

#include <vltextstream/detection/selection_trace.hpp>
#include <vltextstream/host/export.hpp>
#include <vltextstream/options/parser_options.hpp>
#include <vltextstream/scoring/strategy_valuation.hpp>
#include <vltextstream/strategy/field.hpp>
#include <vltextstream/strategy/strategy.hpp>

namespace textio::detection {

class SampleStore;

class VLTEXTSTREAM_EXPORT StrategySelector {
 public:
  // Indexes of candidates, ascending.
  using Survivors = std::vector<unsigned long>;
  using Valuations = std::vector<StrategyValuation>;

  explicit StrategySelector(const parser::options& options);
  ~StrategySelector();
  StrategySelector(const StrategySelector&);
  StrategySelector& operator=(const StrategySelector&);

  // The strategy that best fits the first `num_lines` data lines of `text`, populated and scored;
  // never null. If there is no candidate, the result is the line reader. If each line is a date, or
  // the filters leave several candidates, the result is a comma-delimited strategy for a single
  // column, which owns its options and has not been scored.
  std::shared_ptr<Strategy> pick_strategy(const Field& text, unsigned long num_lines) const;

  // The same, and records how the result was found; the previous contents of `trace` are lost.
  std::shared_ptr<Strategy> pick_strategy(const Field& text, unsigned long num_lines,
                                          SelectionTrace& trace) const;

  // The same, and reports how the selection ended. This is cheaper than a trace: the columns of
  // refused candidates are not classified.
  std::shared_ptr<Strategy> pick_strategy(const Field& text, unsigned long num_lines,
                                          SelectionOutcome& outcome) const;

  // The values of the options when the selector was made; a detection does not change them.
  const std::vector<std::u16string>& delimiters() const { return delimiters_; }
  unsigned long header_lines() const { return header_lines_; }

  // The filters. Each returns the `survivors`, in order, whose valuation meets its criterion, or
  // all of them if none does.

  // The number of variables is the one that the options give.
  Survivors reduce_by_numvariables(const Survivors& survivors, const Valuations& valuations) const;

  // At least one column holds dates, with or without a time.
  Survivors reduce_by_dates(const Survivors& survivors, const Valuations& valuations) const;

  // The data lines deviate hardly more than those of the most regular survivor.
  Survivors reduce_by_variation(const Survivors& survivors, const Valuations& valuations) const;

  // The column classes are worth as much as those of the best survivor.
  Survivors reduce_by_class_value(const Survivors& survivors, const Valuations& valuations) const;

  // Perfectly regular, with the fewest header lines. Applies only to detected header lines, and
  // only if the first survivor is perfectly regular.
  Survivors reduce_by_header_lines(const Survivors& survivors, const Valuations& valuations,
                                   const std::vector<std::shared_ptr<Strategy>>& candidates) const;

  // The share of columns that are not empty is as large as the best survivor's.
  Survivors reduce_by_non_empty(const Survivors& survivors, const Valuations& valuations) const;

  // The one survivor with the smallest prior rank, if that rank is in the priority list.
  Survivors reduce_by_priors_rank(const Survivors& survivors, const Valuations& valuations) const;

 private:
  VLTEXTSTREAM_LOCAL std::shared_ptr<Strategy> pick(const Field& text, unsigned long num_lines,
                                                    SelectionOutcome& outcome,
                                                    SelectionTrace* trace) const;
  VLTEXTSTREAM_LOCAL std::shared_ptr<Strategy> pick(SampleStore& samples, SelectionOutcome& outcome,
                                                    SelectionTrace* trace) const;
  VLTEXTSTREAM_LOCAL Survivors reduce(const std::vector<std::shared_ptr<Strategy>>& candidates,
                                      SelectionOutcome& outcome, SelectionTrace* trace) const;
  VLTEXTSTREAM_LOCAL std::shared_ptr<Strategy> single_column(SampleStore& samples) const;

  const parser::options* options_;
  std::vector<std::u16string> delimiters_;
  unsigned long header_lines_;
  bool detect_delimiters_;
  bool detect_header_lines_;
};

}  // namespace textio::detection
