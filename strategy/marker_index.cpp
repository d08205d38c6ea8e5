// Markers are compared one by one until that has taken about as long as finding all of them at once
// would; then the automaton is made, and runs over the text. So an index costs twice the cheaper of
// the two ways at most, and ordinary texts never have one made. Over a line there are few units to
// compare and many to make the automaton of: it is kept from text to text.
#include <vltextstream/strategy/marker_index.hpp>

#include <algorithm>
#include <string_view>
#include <utility>

#include <vltextstream/strategy/scan.hpp>

namespace textio {
namespace {

// How many units are compared in the time that one unit takes to be put into an index.
constexpr std::size_t kComparisonsPerUnit = 8;

// The markers that can match at all: none behind an empty one does, nor one whose first unit the
// set does not list.
std::vector<std::u16string_view> usable_markers(const DelimiterSet& set,
                                                const UnitBits& first_units) {
  std::vector<std::u16string_view> markers;
  for (const std::u16string& marker : set.strings) {
    if (marker.empty()) break;
    if (first_units[marker.front()]) markers.emplace_back(marker);
  }
  return markers;
}

std::size_t common_prefix(std::u16string_view a, std::u16string_view b) {
  const auto length = static_cast<std::ptrdiff_t>(std::min(a.size(), b.size()));
  const auto end = std::mismatch(a.begin(), a.begin() + length, b.begin()).first;
  return static_cast<std::size_t>(end - a.begin());
}

}  // namespace

MarkerIndex::MarkerIndex(const MarkerMatcher& matcher)
    : matcher_(matcher), outer_(matcher.index_), work_(outer_ ? outer_->work_ : own_work_) {
  if (outer_ == nullptr) {
    std::size_t units = 0;
    for (const std::u16string& marker : matcher.set_->strings) units += marker.size() + 1;
    work_.fits = units <= MarkerAutomaton::kMostUnits;
    work_.allowed = kComparisonsPerUnit * units;
  }
  matcher.index_ = this;
}

void MarkerIndex::bind(const Field& text) {
  text_ = text;
  is_made_ = false;
  work_.allowed += kComparisonsPerUnit * text.length;
}

std::size_t MarkerIndex::length_at(std::size_t i) {
  if (!is_made_) {
    if (should_compare()) return compare_at(i);
    make();
  }
  return lengths_[i];
}

bool MarkerIndex::should_compare() const {
  return !work_.automaton && (work_.compared < work_.allowed || !work_.fits);
}

// What match_length does, counted.
std::size_t MarkerIndex::compare_at(std::size_t i) {
  const std::u16string_view rest = view_of(slice(text_, i, text_.length));
  for (const std::u16string& marker : matcher_.set_->strings) {
    const std::size_t common = common_prefix(rest, marker);
    work_.compared += common + 1;
    if (common == marker.size()) return marker.size();
  }
  return 0;
}

void MarkerIndex::make() {
  if (!work_.automaton) {
    work_.automaton =
        std::make_unique<MarkerAutomaton>(usable_markers(*matcher_.set_, *matcher_.first_units_));
  }
  work_.automaton->run(text_, lengths_);
  is_made_ = true;
}

}  // namespace textio
