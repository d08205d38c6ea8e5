// What each piece of evidence is worth, in natural logarithms of odds. Written by scripts/learn-weights.
#pragma once

#include <vltextstream/assessment/evidence.hpp>
#include <vltextstream/assessment/names_evidence.hpp>

namespace textio::assessment {

inline constexpr EvidenceAmounts kWeights = {
    -5.69,  // ragged
    -7.69,  // outside
    5.84,   // worth
    -2.72,  // unsplit
    -5.07,  // torn
    -4.55,  // cut-values
    -1.17,  // left-together
    -3.34,  // dangling
    3.18,   // well-quoted
    -5.05,  // lost-quotes
    -5.16,  // wordy
    -0.00,  // empty
    -5.25,  // few
    -6.85,  // one
    -0.36,  // runs
    -0.37,  // narrow
    2.88,   // rest
    0.23,   // dense
    1.95,   // framed
    2.81,   // named
    -4.15,  // clauses
    -4.73,  // numbers-cut
    -2.92,  // gaps-inside
    -0.29,  // by-names
    6.30,   // tab
    2.12,   // comma
    1.45,   // semicolon
    -1.67,  // colon
    -0.77,  // bar
    -1.26,  // blank
    2.39,   // caret
    1.26,   // control
    0.94,   // several
    -3.82,  // rare
    -3.18,  // no-table
    6.31,   // prose
    7.37,   // code
    3.96,   // markup
    1.01,   // nested
    4.99,   // keyed
    2.55,   // indented
    1.92,   // spaced
    -6.14,  // brief
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
