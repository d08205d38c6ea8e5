// The strategies that are compared for a sample.
#pragma once

#include <span>
#include <string>
#include <vector>

#include <vltextstream/detection/sample_store.hpp>
#include <vltextstream/detection/selection_trace.hpp>
#include <vltextstream/options/parser_options.hpp>
#include <vltextstream/strategy/strategy.hpp>

namespace textio::detection {

using Candidates = std::vector<Candidate>;

// The characters of the middle lines that could separate fields, in order of first appearance.
// `lines` are the sampled lines; empty ones do not count.
std::u16string find_candidate_chars(const std::vector<Field>& lines);

// The input for building candidates.
struct CandidateInput {
  const parser::options& options;
  unsigned long header_lines;  // used if the caller has fixed them
  SampleStore& samples;
};

// The candidates for `chars`, which must be distinct, in the same order. Each one has been scored,
// and its sample has been kept or dropped. If there is a `trace`, all built, kept and refused
// candidates are added to it.
Candidates build_candidates(const std::u16string& chars, const CandidateInput& input,
                            SelectionTrace* trace);

// The column widths that fit lines with these texts. A column begins with the blanks that precede
// its text on all lines. Empty if the lines have more than `most_columns` columns in the end, or
// vary by more than `variation`.
std::vector<unsigned long> find_column_widths(std::span<const Field> data_lines, std::size_t width,
                                              double variation, std::size_t most_columns);

}  // namespace textio::detection
