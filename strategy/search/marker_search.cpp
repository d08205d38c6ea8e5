// Comparisons are counted. An index is made once they have cost as much as the index would, so the
// total is at most twice the cheaper of the two ways. Ordinary texts never need an index.
#include <vltextstream/strategy/search/marker_search.hpp>

#include <algorithm>
#include <cstdint>
#include <string_view>
#include <vector>

#include <vltextstream/strategy/search/marker_automaton.hpp>

namespace textio {
namespace {

// The number of code units that can be compared in the time that adding one to an index takes.
constexpr std::size_t kComparisonsPerUnit = 8;

// The markers that can match at all: not those after an empty marker, nor those whose first code
// unit is missing from the set's list.
std::vector<std::u16string_view> usable_markers(const MarkerMatcher& matcher) {
  std::vector<std::u16string_view> markers;
  for (const std::u16string& marker : matcher.set().strings) {
    if (marker.empty()) break;
    if (matcher.first_units().contains(marker.front())) markers.emplace_back(marker);
  }
  return markers;
}

std::size_t common_prefix(std::u16string_view a, std::u16string_view b) {
  const auto length = static_cast<std::ptrdiff_t>(std::min(a.size(), b.size()));
  const auto end = std::mismatch(a.begin(), a.begin() + length, b.begin()).first;
  return static_cast<std::size_t>(end - a.begin());
}

}  // namespace

struct MarkerSearch::Index {
  std::size_t compared = 0;  // number of code units
  std::size_t allowed = 0;
  bool fits = true;  // whether the markers fit into the numbers of an automaton
  bool is_made = false;
  std::unique_ptr<const MarkerAutomaton> automaton;
  std::vector<std::uint32_t> lengths;
};

MarkerSearch::MarkerSearch(const MarkerMatcher& matcher, const Field& text) : matcher_(matcher) {
  if (matcher.is_large()) {
    index_ = std::make_unique<Index>();
    std::size_t units = 0;
    for (const std::u16string& marker : matcher.set().strings) units += marker.size() + 1;
    index_->fits = units <= MarkerAutomaton::kMostUnits;
    index_->allowed = kComparisonsPerUnit * units;
  }
  move_to(text);
}

MarkerSearch::~MarkerSearch() = default;

void MarkerSearch::move_to(const Field& text) {
  text_ = text;
  if (!index_) return;
  index_->is_made = false;
  index_->allowed += kComparisonsPerUnit * text.length;
}

bool MarkerSearch::is_indexed() const { return index_ && index_->is_made; }

std::size_t MarkerSearch::indexed_length_at(std::size_t i) {
  if (i >= text_.length || !matcher_.first_units().contains(text_.data[i])) return 0;
  if (!index_->is_made) {
    const bool may_compare = index_->compared < index_->allowed || !index_->fits;
    if (may_compare && !index_->automaton) return compare_at(i);
    find_all();
  }
  return index_->lengths[i];
}

std::size_t MarkerSearch::compare_at(std::size_t i) {
  const std::u16string_view rest = view_of(slice(text_, i, text_.length));
  for (const std::u16string& marker : matcher_.set().strings) {
    const std::size_t common = common_prefix(rest, marker);
    index_->compared += common + 1;
    if (common == marker.size()) return marker.size();
  }
  return 0;
}

void MarkerSearch::find_all() {
  if (!index_->automaton) {
    index_->automaton = std::make_unique<MarkerAutomaton>(usable_markers(matcher_));
  }
  index_->automaton->run(text_, index_->lengths);
  index_->is_made = true;
}

}  // namespace textio
