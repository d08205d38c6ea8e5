// LineWalk: the lines of one text, as a strategy finds them, one after the other.
//
//   LineWalk walk(strategy, text);
//   const FieldExtent first = walk.line_at(0);
//   const FieldExtent second = walk.line_at(first.next);   // in front of a U+FFFF it stands still
//
// Gives what Strategy::get_line_extent gives, and remembers from one line to the next what it saw
// of the text.
//
// Ownership  refers to the strategy and the text. The promise of Strategy::StableText holds while
//            the walk lives.
// Errors     std::bad_alloc, and what a strategy from outside the library throws.
// Cost       all lines of the text together: linear in the text and the markers. Walking on is
//            cheap; a line elsewhere costs what get_line_extent costs.
#pragma once

#include <cstddef>
#include <memory>

#include <vltextstream/host/export.hpp>
#include <vltextstream/strategy/field.hpp>
#include <vltextstream/strategy/strategy.hpp>

namespace textio {

class LineScan;

class VLTEXTSTREAM_EXPORT LineWalk {
 public:
  LineWalk(const Strategy& strategy, const Field& text);
  LineWalk(const LineWalk&) = delete;
  LineWalk& operator=(const LineWalk&) = delete;
  ~LineWalk();

  // The line that starts at `start`, without its line ending, and where the next starts.
  FieldExtent line_at(std::size_t start);

 private:
  Strategy::StableText stable_;
  std::unique_ptr<LineScan> scan_;
};

}  // namespace textio
