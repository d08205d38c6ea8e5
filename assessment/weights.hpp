// What each piece of evidence is worth, in natural logarithms of odds. Written by scripts/learn-weights.
#pragma once

#include <vltextstream/assessment/evidence.hpp>
#include <vltextstream/assessment/names_evidence.hpp>

namespace textio::assessment {

inline constexpr EvidenceAmounts kWeights = {
    -5.71,  // ragged
    -7.65,  // outside
    5.42,   // worth
    -2.70,  // unsplit
    -5.12,  // torn
    -4.58,  // cut-values
    -1.25,  // left-together
    -3.33,  // dangling
    3.27,   // well-quoted
    -3.67,  // lost-quotes
    -5.20,  // wordy
    0.03,   // empty
    -5.32,  // few
    -6.92,  // one
    -0.35,  // runs
    -0.35,  // narrow
    2.92,   // rest
    0.25,   // dense
    2.04,   // framed
    2.78,   // named
    -4.35,  // clauses
    -4.75,  // numbers-cut
    -2.89,  // gaps-inside
    -0.31,  // by-names
    6.41,   // tab
    2.16,   // comma
    1.52,   // semicolon
    -1.59,  // colon
    -0.67,  // bar
    -1.17,  // blank
    2.49,   // caret
    1.39,   // control
    1.31,   // several
    -3.76,  // rare
    -3.49,  // no-table
    6.52,   // prose
    7.92,   // code
    5.43,   // markup
    0.90,   // nested
    5.10,   // keyed
    2.40,   // indented
    1.79,   // spaced
    -6.84,  // brief
};

inline constexpr double kNamesStart = 0.09;
inline constexpr NamesAmounts kNamesWeights = {
    -2.52,  // value-among-names
    1.93,   // text-over-values
    -0.84,  // name-below
    1.44,   // like-names
    0.52,   // odd-length
    0.87,   // no-data
    -0.89,  // column-of-texts
    -1.28,  // shaped-alike
    -0.61,  // only-texts
    0.45,   // other-case
    -1.21,  // mixed-case
};

}  // namespace textio::assessment
