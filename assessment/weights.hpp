// What each piece of evidence is worth, in natural logarithms of odds. Written by scripts/learn-weights.
#pragma once

#include <vltextstream/assessment/evidence.hpp>
#include <vltextstream/assessment/names_evidence.hpp>

namespace textio::assessment {

inline constexpr EvidenceAmounts kWeights = {
    -6.81,  // ragged
    -8.17,  // outside
    8.81,   // worth
    -3.95,  // unsplit
    -4.08,  // torn
    -2.90,  // cut-values
    -0.90,  // left-together
    -2.36,  // dangling
    2.06,   // well-quoted
    -3.08,  // lost-quotes
    -4.75,  // wordy
    -5.23,  // empty
    -5.35,  // few
    -5.07,  // one
    0.06,   // runs
    -0.76,  // narrow
    1.57,   // framed
    2.33,   // named
    -4.61,  // clauses
    -3.44,  // numbers-cut
    5.18,   // tab
    2.54,   // comma
    2.08,   // semicolon
    -1.48,  // colon
    -1.03,  // bar
    -0.27,  // blank
    2.34,   // caret
    0.36,   // control
    2.17,   // several
    -2.86,  // rare
    -3.02,  // no-table
    4.47,   // prose
    8.96,   // code
    2.77,   // markup
    5.20,   // keyed
    3.83,   // indented
};

inline constexpr double kNamesStart = -0.06;
inline constexpr NamesAmounts kNamesWeights = {
    -2.70,  // value-among-names
    2.44,   // text-over-values
    -0.45,  // name-below
    1.07,   // like-names
    0.83,   // odd-length
    1.21,   // no-data
    -1.00,  // column-of-texts
};

}  // namespace textio::assessment
