// Where the matchers of a strategy are, is told by its class: the table of virtual operations stays
// what it is, and a strategy of somebody else has none.
#include <memory>

#include <vltextstream/strategy/delimited_strategy.hpp>
#include <vltextstream/strategy/fixed_width_strategy.hpp>
#include <vltextstream/strategy/line_reader_strategy.hpp>
#include <vltextstream/strategy/marker_index.hpp>
#include <vltextstream/strategy/space_aligned_strategy.hpp>
#include <vltextstream/strategy/strategy.hpp>

namespace textio {

Strategy::StableText::StableText(const Strategy& strategy, const Field& text) {
  if (const auto* delimited = dynamic_cast<const DelimitedStrategy*>(&strategy)) {
    add(delimited->tokenizer_.delimiter_matcher_);
    add(delimited->tokenizer_.ending_matcher_);
    add(delimited->ending_matcher_);
  } else if (const auto* aligned = dynamic_cast<const SpaceAlignedStrategy*>(&strategy)) {
    add(aligned->tokenizer_.ending_matcher_);
    add(aligned->ending_matcher_);
  } else if (const auto* fixed = dynamic_cast<const FixedWidthStrategy*>(&strategy)) {
    add(fixed->ending_matcher_);
  } else if (const auto* reader = dynamic_cast<const LineReaderStrategy*>(&strategy)) {
    add(reader->ending_matcher_);
  }
  move_to(text);
}

Strategy::StableText::~StableText() = default;

void Strategy::StableText::add(const MarkerMatcher& matcher) {
  if (matcher.may_need_index()) indexes_.push_back(std::make_unique<MarkerIndex>(matcher));
}

void Strategy::StableText::bind(const Field& text) {
  for (const std::unique_ptr<MarkerIndex>& index : indexes_) index->bind(text);
}

}  // namespace textio
