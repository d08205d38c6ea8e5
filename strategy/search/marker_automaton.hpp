// MarkerAutomaton: finds all markers of a list in one pass over a text.
//
//   MarkerAutomaton automaton({u"ab", u"b"});
//   automaton.run({u"abb", 3}, lengths);      // lengths == {2, 1, 1}
//
// Units      lengths count UTF-16 code units.
// Ownership  keeps no view of the markers.
// Errors     std::bad_alloc. If run() throws it, `lengths` is valid but unspecified.
// Cost       construction is linear in the code units of all markers, run() in those of the text,
//            each times at most the logarithm of the number of markers. Keeps 16 bytes per code
//            unit of the markers.
// Threads    any number of threads may call run() once the object is constructed.
#pragma once

#include <cstddef>
#include <cstdint>
#include <limits>
#include <string_view>
#include <vector>

#include <vltextstream/strategy/field.hpp>

namespace textio {

class MarkerAutomaton {
 public:
  // The largest number of code units that all markers may have together.
  static constexpr std::size_t kMostUnits = std::numeric_limits<std::uint32_t>::max() - 2;

  // `markers` in the order in which they are tried. None may be empty.
  explicit MarkerAutomaton(const std::vector<std::u16string_view>& markers);

  // Sets lengths[i] to the length of the first marker in the list that matches at `i` of `text`; 0
  // if none does.
  void run(const Field& text, std::vector<std::uint32_t>& lengths) const;

 private:
  using NodeId = std::uint32_t;

  // A node represents a suffix of a marker. The children of node k are the nodes from its
  // `first_child` up to, but not including, the `first_child` of node k + 1, in ascending order of
  // their code units.
  struct Node {
    NodeId first_child = 0;
    NodeId fallback = 0;       // the longest shorter suffix that the node's text begins with
    std::uint32_t marker = 0;  // the first in the list that the node's text begins with
    char16_t unit = 0;
  };

  void make_nodes(const std::vector<std::u16string_view>& markers);
  void make_fallbacks();
  NodeId child(NodeId node, char16_t unit) const;
  NodeId step(NodeId node, char16_t unit) const;

  std::vector<Node> nodes_;
  std::vector<std::uint32_t> lengths_;  // of the markers
};

}  // namespace textio
