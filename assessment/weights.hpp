// What each piece of evidence is worth, in natural logarithms of odds. Written by scripts/learn-weights.
#pragma once

#include <vltextstream/assessment/evidence.hpp>
#include <vltextstream/assessment/names_evidence.hpp>

namespace textio::assessment {

inline constexpr EvidenceAmounts kWeights = {
    -5.83,  // ragged
    -7.95,  // outside
    5.65,   // worth
    -2.81,  // unsplit
    -5.86,  // torn
    -4.70,  // cut-values
    -0.96,  // left-together
    -2.91,  // dangling
    2.59,   // well-quoted
    -4.22,  // lost-quotes
    -5.52,  // wordy
    -0.21,  // empty
    -5.51,  // few
    -7.13,  // one
    -0.43,  // runs
    -0.26,  // narrow
    3.10,   // rest
    0.18,   // dense
    2.06,   // framed
    2.62,   // named
    -3.30,  // clauses
    -4.77,  // numbers-cut
    -2.98,  // gaps-inside
    -0.16,  // by-names
    5.55,   // tab
    2.15,   // comma
    1.55,   // semicolon
    -1.42,  // colon
    -0.63,  // bar
    -0.45,  // blank
    2.46,   // caret
    1.42,   // control
    1.40,   // several
    -3.49,  // rare
    -3.45,  // no-table
    6.28,   // prose
    8.08,   // code
    4.57,   // markup
    5.24,   // keyed
    2.30,   // indented
    1.69,   // spaced
    -6.76,  // brief
};

inline constexpr double kNamesStart = 0.02;
inline constexpr NamesAmounts kNamesWeights = {
    -2.54,  // value-among-names
    1.85,   // text-over-values
    -0.82,  // name-below
    1.41,   // like-names
    0.65,   // odd-length
    0.94,   // no-data
    -0.92,  // column-of-texts
    -1.25,  // shaped-alike
    -0.63,  // only-texts
    0.40,   // other-case
    -1.22,  // mixed-case
};

}  // namespace textio::assessment
