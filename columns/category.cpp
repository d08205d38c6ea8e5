#include <vltextstream/columns/category.hpp>

namespace textio::columns {
namespace {

// A column with more texts than a person would choose from is not a category: there are some 50 states and 90
// departments, but hundreds of towns.
constexpr std::size_t kMostTexts = 100;

// Longer ones are remarks that happen to be repeated.
constexpr std::size_t kLongestText = 50;

// In fewer cells a text may be repeated by chance.
constexpr std::size_t kLeastCells = 8;

// Each text occurs four times or more, on average: the next cell is probably one of them, too.
constexpr std::size_t kLeastRepeats = 4;

}  // namespace

void CategoryTally::add(std::u16string_view text) {
  if (is_refused_) return;
  ++total_;
  ++counts_[text];
  is_refused_ = text.size() > kLongestText || counts_.size() > kMostTexts;
  if (is_refused_) counts_.clear();
}

bool CategoryTally::is_category() const {
  return !is_refused_ && total_ >= kLeastCells && counts_.size() * kLeastRepeats <= total_;
}

}  // namespace textio::columns
