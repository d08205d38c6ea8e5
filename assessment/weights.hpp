// What each piece of evidence is worth, in natural logarithms of odds. Written by scripts/learn-weights.
#pragma once

#include <vltextstream/assessment/evidence.hpp>
#include <vltextstream/assessment/names_evidence.hpp>

namespace textio::assessment {

inline constexpr EvidenceAmounts kWeights = {
    -3.67,  // ragged
    -8.66,  // outside
    7.60,   // worth
    -3.24,  // unsplit
    -4.83,  // torn
    -4.53,  // cut-values
    -0.84,  // left-together
    -2.47,  // dangling
    2.63,   // well-quoted
    -2.53,  // lost-quotes
    -4.66,  // wordy
    -5.34,  // empty
    -5.88,  // few
    -6.95,  // one
    -0.32,  // runs
    -0.59,  // narrow
    3.15,   // rest
    -0.13,  // dense
    1.77,   // framed
    2.50,   // named
    -3.32,  // clauses
    -4.38,  // numbers-cut
    5.12,   // tab
    2.17,   // comma
    1.62,   // semicolon
    -1.20,  // colon
    -1.06,  // bar
    -0.81,  // blank
    2.60,   // caret
    1.02,   // control
    1.21,   // several
    -3.43,  // rare
    -3.02,  // no-table
    6.21,   // prose
    7.73,   // code
    2.74,   // markup
    4.88,   // keyed
    3.53,   // indented
    3.93,   // spaced
};

inline constexpr double kNamesStart = -0.23;
inline constexpr NamesAmounts kNamesWeights = {
    -2.23,  // value-among-names
    2.56,   // text-over-values
    -0.83,  // name-below
    1.09,   // like-names
    0.84,   // odd-length
    1.14,   // no-data
    -0.71,  // column-of-texts
    -1.53,  // shaped-alike
};

}  // namespace textio::assessment
