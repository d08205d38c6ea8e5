// LineScan: the lines of one text, found one after the other by a strategy.
//
//   const std::unique_ptr<LineScan> scan = LineScan::of(strategy, text);
//   const ScannedLine line = scan->line_at(pos);
//
// Gives what get_line_extent gives, and on the way counts the fields that the strategy would cut
// the line into, where this costs nothing: a delimited line is found field by field.
//
// Ownership  refers to the strategy and the text, which must not change while the scan lives.
// Cost       a strategy from outside the library is asked through its virtual operation.
#pragma once

#include <cstddef>
#include <memory>
#include <typeinfo>

#include "strategy/field.hpp"
#include "strategy/strategy.hpp"

namespace textio {

struct ScannedLine {
  FieldExtent extent;
  std::size_t num_fields = 0;  // unless the line is empty, and if they are counted
};

class LineScan {
 public:
  static std::unique_ptr<LineScan> of(const Strategy& strategy, const Field& text);

  LineScan() = default;
  LineScan(const LineScan&) = delete;
  LineScan& operator=(const LineScan&) = delete;
  virtual ~LineScan() = default;

  // Whether the fields are counted.
  virtual bool counts_fields() const = 0;

  // The line that starts at `start`, where text is left.
  virtual ScannedLine line_at(std::size_t start) = 0;

 private:
  template <typename Own>
  class Fieldwise;
  template <typename Own>
  class Unitwise;
  class Virtual;
};

// `strategy` as one of the library's own classes; null when it is of another class, be it one derived
// from that: what is known of the library's is not known of these.
template <typename Own>
const Own* as_own(const Strategy& strategy) {
  return typeid(strategy) == typeid(Own) ? static_cast<const Own*>(&strategy) : nullptr;
}

// Whether `strategy` is of any of these classes.
bool is_of_the_library(const Strategy& strategy);

}  // namespace textio
