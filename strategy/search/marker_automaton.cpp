// An Aho-Corasick automaton over the reversed markers, which reads the text from its end. At each
// position its node is the longest suffix of a marker that the text continues with from there, so
// all markers that begin at that position are known.
//
// The reversed markers are sorted, so the nodes can be numbered level by level without a table: the
// children of a node are adjacent and are found by bisection. Nothing depends on hashes, for which
// a text could be made to collide.
#include <vltextstream/strategy/search/marker_automaton.hpp>

#include <algorithm>

namespace textio {
namespace {

constexpr std::uint32_t kNoMarker = std::numeric_limits<std::uint32_t>::max();

// The code unit `depth` positions before the end of `marker`.
char16_t unit_at(std::u16string_view marker, std::size_t depth) {
  return marker[marker.size() - 1 - depth];
}

// The numbers of the markers, ordered by their reversed texts and then by number. A merge sort
// compares each marker once per level, whatever the markers contain.
std::vector<std::uint32_t> sort_reversed(const std::vector<std::u16string_view>& markers) {
  std::vector<std::uint32_t> order(markers.size());
  for (std::size_t k = 0; k < order.size(); ++k) order[k] = static_cast<std::uint32_t>(k);
  std::stable_sort(order.begin(), order.end(), [&](std::uint32_t a, std::uint32_t b) {
    return std::lexicographical_compare(markers[a].rbegin(), markers[a].rend(), markers[b].rbegin(),
                                        markers[b].rend());
  });
  return order;
}

}  // namespace

MarkerAutomaton::MarkerAutomaton(const std::vector<std::u16string_view>& markers) {
  std::size_t most_nodes = 2;  // the root, and the sentinel at the end
  lengths_.reserve(markers.size());
  for (const std::u16string_view marker : markers) {
    lengths_.push_back(static_cast<std::uint32_t>(marker.size()));
    most_nodes += marker.size();
  }
  nodes_.reserve(most_nodes);
  make_nodes(markers);
  make_fallbacks();
}

// The markers below a node are a range of the sorted ones. Those that end at the node come first;
// the rest is divided into one range per child. A sentinel node without text ends the children of
// the last real node.
void MarkerAutomaton::make_nodes(const std::vector<std::u16string_view>& markers) {
  struct Range {
    std::size_t begin;
    std::size_t end;
  };
  const std::vector<std::uint32_t> sorted = sort_reversed(markers);
  const auto marker_at = [&](std::size_t place) { return markers[sorted[place]]; };

  std::vector<Range> level = {{0, sorted.size()}};
  std::vector<Range> next_level;
  nodes_.push_back({});
  NodeId node = 0;
  for (std::size_t depth = 0; !level.empty(); ++depth) {
    next_level.clear();
    for (const Range& range : level) {
      std::size_t place = range.begin;
      std::uint32_t marker = kNoMarker;
      for (; place < range.end && marker_at(place).size() == depth; ++place) {
        marker = std::min(marker, sorted[place]);
      }
      nodes_[node].marker = marker;
      nodes_[node].first_child = static_cast<NodeId>(nodes_.size());
      ++node;
      while (place < range.end) {
        const std::size_t begin = place;
        const char16_t unit = unit_at(marker_at(begin), depth);
        while (place < range.end && unit_at(marker_at(place), depth) == unit) ++place;
        nodes_.push_back({0, 0, kNoMarker, unit});
        next_level.push_back({begin, place});
      }
    }
    level.swap(next_level);
  }
  nodes_.push_back({static_cast<NodeId>(nodes_.size()), 0, kNoMarker, 0});
}

// Parents come before their children, and shorter texts before longer ones.
void MarkerAutomaton::make_fallbacks() {
  for (NodeId node = 0; node + 1 < nodes_.size(); ++node) {
    for (NodeId k = nodes_[node].first_child; k < nodes_[node + 1].first_child; ++k) {
      Node& below = nodes_[k];
      if (node > 0) below.fallback = step(nodes_[node].fallback, below.unit);
      below.marker = std::min(below.marker, nodes_[below.fallback].marker);
    }
  }
}

// 0 if there is none: the root is no node's child.
MarkerAutomaton::NodeId MarkerAutomaton::child(NodeId node, char16_t unit) const {
  NodeId begin = nodes_[node].first_child;
  const NodeId last = nodes_[node + 1].first_child;
  NodeId end = last;
  while (begin < end) {
    const NodeId middle = begin + (end - begin) / 2;
    if (nodes_[middle].unit < unit) {
      begin = middle + 1;
    } else {
      end = middle;
    }
  }
  return begin < last && nodes_[begin].unit == unit ? begin : 0;
}

// Every fallback is shorter, and a step lengthens the text by at most one code unit. So over a
// whole text there are no more fallbacks than steps.
MarkerAutomaton::NodeId MarkerAutomaton::step(NodeId node, char16_t unit) const {
  for (;;) {
    if (const NodeId next = child(node, unit)) return next;
    if (node == 0) return 0;
    node = nodes_[node].fallback;
  }
}

void MarkerAutomaton::run(const Field& text, std::vector<std::uint32_t>& lengths) const {
  lengths.resize(text.length);
  NodeId node = 0;
  for (std::size_t i = text.length; i-- > 0;) {
    node = step(node, text.data[i]);
    const std::uint32_t marker = nodes_[node].marker;
    lengths[i] = marker == kNoMarker ? 0 : lengths_[marker];
  }
}

}  // namespace textio
