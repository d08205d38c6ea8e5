// What evidence says, in words.
//
//   sentence_of(Evidence::ragged, verdict, hypothesis);   // "97 of 97 records have 6 fields"
#pragma once

#include <string>

#include <vltextstream/assessment/evidence.hpp>
#include <vltextstream/assessment/verdict.hpp>

namespace textio::assessment {

// What a unit of this evidence adds to the logarithm of the odds.
double weight_of(Evidence evidence);

// A sentence about the hypothesis, without a full stop.
std::string sentence_of(Evidence evidence, const Verdict& verdict, const Hypothesis& hypothesis);

// The evidence that speaks most for the winner and against `rival`, as a sentence about either.
std::string deciding_sentence(const Verdict& verdict, const Hypothesis& rival);

// Why the line is the line of the names, or is not.
std::string names_reason(const NamesVerdict& names, bool has_names);

// "running text", "source code", "a document" or "settings": what most lines of the text look like.
std::string kind_of_text(const EvidenceAmounts& amounts);

}  // namespace textio::assessment
