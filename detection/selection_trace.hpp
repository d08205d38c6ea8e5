// SelectionTrace: how a selection reached its result.
//
//   detection::SelectionTrace trace;
//   auto winner = selector.pick_strategy(text, 100, trace);
//   for (const auto& candidate : trace.candidates) ...
//
// A plain record without views: it stays valid after the text, the options and the strategies have
// been destroyed. Tracing never changes the result.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

#include <vltextstream/host/export.hpp>
#include <vltextstream/scoring/strategy_valuation.hpp>
#include <vltextstream/strategy/dialect.hpp>

namespace textio::detection {

// The outcome for one candidate when it was built.
enum class CandidateFate {
  kept,
  irregular,        // refused: its data lines deviate by one field or more on average
  single_column,    // refused: its lines have one field
  made_fixed_width  // replaced by a fixed-width candidate
};

// How a selection ended.
enum class SelectionEnd {
  single_survivor,   // a filter left one candidate
  only_candidate,    // there was one candidate from the start
  no_candidate,      // no character of the sample separates fields: the line reader
  empty_sample,      // no line was sampled: the line reader
  whole_line_dates,  // each line as a whole is a date: the single-column fallback
  unresolved_tie,    // several candidates passed all filters: the single-column fallback
  given              // there was no selection: the caller gave the delimiters or the widths
};

// The name of the enumerator with hyphens, such as "made-fixed-width"; empty for any other value.
VLTEXTSTREAM_EXPORT std::string_view to_string(CandidateFate fate);
VLTEXTSTREAM_EXPORT std::string_view to_string(SelectionEnd end);

struct VLTEXTSTREAM_EXPORT CandidateTrace {
  Dialect dialect;
  std::size_t header_lines = 0;
  StrategyValuation valuation;
  CandidateFate fate = CandidateFate::kept;
};

struct VLTEXTSTREAM_EXPORT FilterTrace {
  std::string name;                    // of the filter, such as "reduce_by_dates"
  std::vector<std::size_t> survivors;  // indexes into the kept candidates, ascending
};

struct VLTEXTSTREAM_EXPORT SelectionTrace {
  // The characters for which candidates were built, in order.
  std::u16string candidate_chars;

  // All candidates that were built, in order, including the refused ones.
  std::vector<CandidateTrace> candidates;

  // The filters that ran, in order. Their survivors are numbered from 0 among the kept candidates.
  std::vector<FilterTrace> filters;

  SelectionEnd end = SelectionEnd::no_candidate;

  // Whether a sample reached the end of the text. Only then could more text have changed the
  // result.
  bool reached_end = false;
};

// How a selection ended, without the steps that led there.
struct VLTEXTSTREAM_EXPORT SelectionOutcome {
  SelectionEnd end = SelectionEnd::no_candidate;

  // The name of the filter that left a single candidate, a constant string; empty if none did.
  std::string_view decided_by;

  // As in SelectionTrace.
  bool reached_end = false;
};

}  // namespace textio::detection
