// MarkerMatcher: which marker of a list matches at a position of a text.
//
//   const MarkerMatcher endings(get_or_create_delim({u"\r\n", u"\n"}));
//   endings.length_at(text, 5);      // 2 at u"\r\n", 1 at a line feed alone, otherwise 0
//
// If two markers match, the earlier one in the list wins. A marker must fit into the text. An empty
// marker ends the search: the markers after it never match.
//
// Ownership  shares the set.
// Cost       compares the markers one by one. Code that scans a whole text uses a MarkerSearch,
//            whose lookups together are linear in the text and the markers.
// Threads    immutable: any number of threads may use it.
#pragma once

#include <cstddef>
#include <memory>

#include <vltextstream/host/delimiter_set.hpp>
#include <vltextstream/strategy/field_text.hpp>
#include <vltextstream/strategy/search/code_unit_set.hpp>

namespace textio {

class MarkerMatcher {
 public:
  explicit MarkerMatcher(std::shared_ptr<const DelimiterSet> set);

  // The length of the first marker that matches at `i`; 0 if none does.
  std::size_t length_at(const Field& text, std::size_t i) const {
    const char16_t unit = i < text.length ? text.data[i] : kEndMark;
    if (set_->is_single_char) return unit == *set_->single_char ? 1 : 0;
    return first_units_.contains(unit) ? compare_at(text, i) : 0;
  }

  // The code units with which a match can begin.
  const CodeUnitSet& first_units() const { return first_units_; }

  // Whether comparing all markers takes more than a few code units.
  bool is_large() const { return is_large_; }

  // The length of the longest marker in code units.
  std::size_t longest() const;

  const DelimiterSet& set() const { return *set_; }
  const std::shared_ptr<const DelimiterSet>& shared_set() const { return set_; }

 private:
  std::size_t compare_at(const Field& text, std::size_t i) const;

  std::shared_ptr<const DelimiterSet> set_;
  CodeUnitSet first_units_;
  bool is_large_;
};

}  // namespace textio
