// FixedWidthStrategy: every field has a fixed number of characters.
//
//   FixedWidthStrategy strategy(options, {8, 10, 12});
//
// A field reports the full width of its column even where the line is shorter. The column index
// continues from line to line: a line with one field more shifts the widths of all lines after it.
//
// Errors  the constructor throws std::invalid_argument if the list of widths is empty or its sum is
//         0: no scan would ever advance.
#pragma once

#include <cstddef>
#include <memory>
#include <vector>

#include <vltextstream/host/delimiter_set.hpp>
#include <vltextstream/strategy/strategy.hpp>

namespace textio {

struct FixedWidthRules;

class VLTEXTSTREAM_EXPORT FixedWidthStrategy : public Strategy {
 public:
  // `widths` in code units, in column order.
  FixedWidthStrategy(const parser::options& options, const std::vector<unsigned long>& widths);
  ~FixedWidthStrategy() override;

  int mode() const override;
  FieldExtent get_line_extent(const Field& text, unsigned long start) const override;
  FieldExtent get_next_field(const Field& line, unsigned long start) override;

  // The column widths in code units. Valid as long as the strategy exists.
  const std::vector<std::size_t>& widths() const { return widths_; }

 private:
  std::shared_ptr<const DelimiterSet> line_endings_;
  std::vector<std::size_t> widths_;
  std::size_t total_width_;
  std::size_t next_column_ = 0;
  std::shared_ptr<const FixedWidthRules> rules_;
};

}  // namespace textio
