// MarkerSearch: the lookups of one scan over a text in a MarkerMatcher.
//
//   MarkerSearch endings(matcher, text);
//   endings.length_at(3);             // as matcher.length_at(text, 3)
//   endings.move_to(next_text);
//
// A few short markers are compared wherever one may begin. Many or long markers are compared only
// until that has taken about as long as finding all of them at once would. Then an automaton is
// made, which finds them in one pass over each text. It is kept from text to text.
//
// Ownership  refers to the matcher and the text, which must not change while the search uses them.
// Errors     std::bad_alloc. The search remains usable.
// Cost       all lookups together are linear in the markers and the texts. An index takes 4 bytes
//            per code unit of the text and 16 per code unit of the markers.
#pragma once

#include <cstddef>
#include <memory>

#include <vltextstream/strategy/search/marker_matcher.hpp>

namespace textio {

class MarkerSearch {
 public:
  MarkerSearch(const MarkerMatcher& matcher, const Field& text);
  ~MarkerSearch();

  // Continues with another text.
  void move_to(const Field& text);

  // The length of the first marker that matches at `i`; 0 if none does.
  std::size_t length_at(std::size_t i) {
    return index_ ? indexed_length_at(i) : matcher_.length_at(text_, i);
  }

  // Whether the results for this text come from an index.
  bool is_indexed() const;

 private:
  struct Index;

  std::size_t indexed_length_at(std::size_t i);
  std::size_t compare_at(std::size_t i);
  void find_all();

  const MarkerMatcher& matcher_;
  Field text_;
  std::unique_ptr<Index> index_;  // null for a few short markers
};

}  // namespace textio
