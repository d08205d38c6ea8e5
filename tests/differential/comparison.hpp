// Compares the library with the plain reference, every result bit for bit.
#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

#include <vltextstream/options/parser_options.hpp>
#include <vltextstream/scoring/strategy_valuation.hpp>
#include "reference/reference.hpp"

namespace textio::differential {

// The choices of a caller that a detection reads.
struct Choices {
  std::vector<std::u16string> line_endings{u"\r\n", u"\n", u"\r"};
  std::vector<std::u16string> comment_style;
  std::u16string whitespace = u" \b\t";
  std::optional<std::size_t> header_lines;   // none: to be detected
  std::optional<std::size_t> num_variables;  // none: to be detected
  unsigned long num_lines = 100;
};

// The record that holds these choices, for the library and for the reference.
parser::options library_options(const Choices& choices);
reference::Options reference_options(const Choices& choices);

// The differences when library and reference detect the layout of `text`. Empty if they agree on
// candidates, valuations, survivors and winner.
std::string difference_in_detection(const std::u16string& text, const Choices& choices);

// The same for each strategy separately, the fixed-width one with `widths`: lines, fields, counts,
// valuation, header lines, column classes.
std::string difference_in_strategies(const std::u16string& text, const Choices& choices,
                                     const std::vector<unsigned long>& widths);

// The same for a strategy over lines with these numbers of fields, each of which is a digit. If
// header lines are to be detected, also with blanks as separators, where large deviations count
// less.
std::string difference_in_scores(const std::vector<std::size_t>& counts, const Choices& choices);

// Which members of the two records differ in any bit.
std::string difference_in_valuations(const StrategyValuation& library,
                                     const reference::Valuation& plain);

// The first three with other choices for the reference, which is then wrong. The tests use them to
// check that the comparisons find differences.
std::string difference_in_detection(const std::u16string& text, const Choices& choices,
                                    const Choices& plain_choices);
std::string difference_in_strategies(const std::u16string& text, const Choices& choices,
                                     const Choices& plain_choices,
                                     const std::vector<unsigned long>& widths);
std::string difference_in_scores(const std::vector<std::size_t>& counts, const Choices& choices,
                                 const Choices& plain_choices);

}  // namespace textio::differential
