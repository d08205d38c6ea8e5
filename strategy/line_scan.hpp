// LineScan: the lines of one text, found one after the other by a strategy.
//
//   const std::unique_ptr<LineScan> scan = LineScan::of(strategy, text);
//   const ScannedLine line = scan->line_at(pos);
//
// Gives what get_line_extent gives, and on the way counts the fields that the strategy would cut
// the line into, where this costs nothing: a delimited line is found field by field.
//
// Lines with nothing on them may come by the million: those behind one another are told at once.
//
// Ownership  refers to the strategy and the text, which must not change while the scan lives.
// Cost       a strategy from outside the library is asked through its virtual operation.
#pragma once

#include <cstddef>
#include <memory>
#include <string_view>
#include <typeinfo>

#include <vltextstream/strategy/field.hpp>
#include <vltextstream/strategy/marker_matcher.hpp>
#include <vltextstream/strategy/strategy.hpp>

namespace textio {

struct ScannedLine {
  FieldExtent extent;
  std::size_t num_fields = 0;  // unless the line is empty, and if they are counted
};

// Lines that are nothing but their line endings, one behind the other.
struct EmptyLines {
  std::size_t count = 0;
  std::size_t next = 0;
};

class LineScan {
 public:
  static std::unique_ptr<LineScan> of(const Strategy& strategy, const Field& text);

  LineScan(const LineScan&) = delete;
  LineScan& operator=(const LineScan&) = delete;
  virtual ~LineScan() = default;

  // Whether the fields are counted.
  virtual bool counts_fields() const = 0;

  // The line that starts at `start`, where text is left.
  virtual ScannedLine line_at(std::size_t start) = 0;

  // Empty lines from `start` on, `most` of them at most, and where the line behind them starts.
  // Others may follow, for not every strategy tells them.
  EmptyLines empty_lines_at(std::size_t start, std::size_t most) const;

 protected:
  // `endings` are those of the strategy, null if they are not known; a line that begins with one of
  // `openers` may be another than the line ending behind it says, and is not told to be empty.
  LineScan(const Field& text, const MarkerMatcher* endings, std::u16string_view openers)
      : text_(text), endings_(endings), openers_(openers) {}

  const Field text_;

 private:
  template <typename Own>
  class Fieldwise;
  template <typename Own>
  class Unitwise;
  class Virtual;

  const MarkerMatcher* endings_;
  std::u16string_view openers_;
};

// `strategy` as one of the library's own classes; null when it is of another class, be it one
// derived from that: what is known of the library's is not known of these.
template <typename Own>
const Own* as_own(const Strategy& strategy) {
  return typeid(strategy) == typeid(Own) ? static_cast<const Own*>(&strategy) : nullptr;
}

// Whether `strategy` is of any of these classes.
bool is_of_the_library(const Strategy& strategy);

}  // namespace textio
