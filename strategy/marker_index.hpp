// MarkerIndex: what one matcher finds in texts that stand still.
//
//   MarkerIndex index(matcher);
//   index.bind(line);                 // `line` does not change until the next bind()
//   matcher.length_at(line, 3);       // the matcher asks the index
//
// While an index lives, its matcher asks it about the text that it is bound to, and answers for
// other texts as ever. Indexes of one matcher are nested: the inner one is asked, and the outer one
// again when it is gone.
//
// The matcher is one whose markers are many or long.
//
// Ownership  refers to the matcher and the text; both must outlive it.
// Errors     length_at and make throw std::bad_alloc and then leave the index as it was.
// Cost       of all questions together linear in the markers and the texts that were bound.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <vector>

#include <vltextstream/strategy/field.hpp>
#include <vltextstream/strategy/marker_automaton.hpp>
#include <vltextstream/strategy/marker_matcher.hpp>

namespace textio {

class MarkerIndex {
 public:
  explicit MarkerIndex(const MarkerMatcher& matcher);
  MarkerIndex(const MarkerIndex&) = delete;
  MarkerIndex& operator=(const MarkerIndex&) = delete;
  ~MarkerIndex() { matcher_.index_ = outer_; }

  // Answers for `text` from now on.
  void bind(const Field& text);

  bool is_bound_to(const Field& text) const {
    return text.data == text_.data && text.length == text_.length;
  }

  // As MarkerMatcher::length_at; `i` lies in the text.
  std::size_t length_at(std::size_t i);

  // Finds all markers of the text now, whether plain comparisons have been wasteful or not.
  void make();

  // Whether the answers are looked up.
  bool is_made() const { return is_made_; }

 private:
  // What nested indexes of one matcher share.
  struct Work {
    std::size_t compared = 0;  // units, by plain comparisons
    std::size_t allowed = 0;
    bool fits = true;  // into the numbers of an automaton
    std::unique_ptr<const MarkerAutomaton> automaton;
  };

  bool should_compare() const;
  std::size_t compare_at(std::size_t i);

  const MarkerMatcher& matcher_;
  MarkerIndex* outer_;
  Work own_work_;
  Work& work_;
  Field text_;
  bool is_made_ = false;
  std::vector<std::uint32_t> lengths_;
};

}  // namespace textio
