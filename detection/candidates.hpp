// The strategies that are worth comparing for a sample.
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

// What candidates are made from.
struct CandidateInput {
  const parser::options& options;
  unsigned long header_lines;  // if the caller has settled them
  SampleStore& samples;
};

// The candidates for `chars`, which are distinct, in their order; each has been valued, and its
// sample has been put away. What was built, kept and refused is added to `trace`, if there is one.
Candidates build_candidates(const std::u16string& chars, const CandidateInput& input,
                            SelectionTrace* trace);

// The column widths that fit lines with these texts: a column begins with the blanks that precede its
// text on all lines. Nothing if the lines have more columns in the end than `most_columns`, or vary
// by more than `variation`.
std::vector<unsigned long> find_column_widths(std::span<const Field> data_lines, std::size_t width,
                                              double variation, std::size_t most_columns);

}  // namespace textio::detection
