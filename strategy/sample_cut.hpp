// SampleCut: the numbers of fields on the sampled lines of a strategy, and the fields of a line
// when they are asked for.
//
//   SampleCut cut(strategy);
//   cut.counts();                      // {3, 3, 0, 2}
//   cut.fields(3);                     // two fields
//
// Ownership  refers to the strategy, whose sample must stay as it is.
// Cost       cuts every line once, and a line again each time its fields are asked for; holds the
//            fields of one line. A class derived outside the library may cut a line otherwise the
//            second time, so that of such a strategy all fields are kept. `fields` is cheap for
//            lines that lie beside the one asked for before.
#pragma once

#include <cstddef>
#include <span>
#include <vector>

#include <vltextstream/scoring/line_fields.hpp>
#include <vltextstream/strategy/fixed_width_strategy.hpp>
#include <vltextstream/strategy/strategy.hpp>

namespace textio {

class SampleCut final : public LineFields {
 public:
  explicit SampleCut(Strategy& strategy);

  // The number of fields on each line.
  const std::vector<std::size_t>& counts() const { return counts_; }
  std::vector<std::size_t> take_counts() { return std::move(counts_); }

  std::size_t num_lines() const override { return counts_.size(); }
  std::size_t count(std::size_t line) const override { return counts_[line]; }
  std::span<const Field> fields(std::size_t line) override;

 private:
  void cut_again(std::size_t line);
  void go_to(std::size_t line);

  Strategy& strategy_;
  Strategy::StableText stable_;
  FixedWidthStrategy* fixed_;  // the only one of the library's that remembers something: its column
  std::size_t first_column_;
  bool keeps_all_;
  std::vector<std::size_t> counts_;
  std::vector<Field> fields_;  // all, or those of one line

  // A line, and the number of fields on all lines before it.
  std::size_t line_ = 0;
  std::size_t fields_before_ = 0;
};

}  // namespace textio
