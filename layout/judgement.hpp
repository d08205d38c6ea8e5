// Who judges a text, and why the answer is as it is.
#pragma once

#include <string>
#include <string_view>

#include <vltextstream/host/export.hpp>

namespace textio::standalone {

// Who chooses among the layouts a text may have.
enum class Judge {
  assessment,  // the reading for which most speaks, with a probability
  cascade,     // the filters of the StrategySelector
};

// The name of the enumerator; empty for any other value.
VLTEXTSTREAM_EXPORT std::string_view to_string(Judge judge);

// A piece of evidence, and what it is worth: how much it raises, or lowers, the natural logarithm of
// the odds.
struct VLTEXTSTREAM_EXPORT EvidenceItem {
  std::string name;
  double worth = 0.0;
  std::string sentence;

  bool operator==(const EvidenceItem&) const = default;
};

}  // namespace textio::standalone
