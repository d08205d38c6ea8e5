// SampleCut: a sample cut into fields by its strategy. Gives the number of fields on each line, and
// the fields of a line on request.
//
//   SampleCut cut(strategy, sample);
//   cut.counts();                      // 3, 3, 0, 2
//   cut.fields(3);                     // two fields
//
// Ownership  refers to the strategy and the sample, which must not change meanwhile. Does not
//            change the strategy, unless it is one from outside the library.
// Cost       cuts every line once if sampling has not counted its fields, and cuts a line again
//            each time its fields are requested. Holds the fields of one line. A strategy from
//            outside may cut a line differently the second time, so all its fields are kept.
//            `fields` is cheap for a line near the previous one.
#pragma once

#include <cstddef>
#include <memory>
#include <span>
#include <utility>
#include <vector>

#include <vltextstream/scoring/line_fields.hpp>
#include <vltextstream/strategy/sampling/sampler.hpp>
#include <vltextstream/strategy/splitter.hpp>
#include <vltextstream/strategy/strategy.hpp>

namespace textio {

class SampleCut final : public LineFields {
 public:
  // Moves the numbers of fields out of the sample if they have been counted.
  SampleCut(Strategy& strategy, DrawnSample& sample);

  const LineCounts& counts() const { return counts_; }
  LineCounts take_counts() { return std::move(counts_); }

  // The column at which the strategy is after the last line.
  std::size_t end_column() const { return end_column_; }

  std::span<const Field> fields(std::size_t line) override;

 private:
  FieldCutter& cutter();
  void count_all(Strategy& strategy);
  void go_to(std::size_t line);

  const DrawnSample& sample_;
  const std::shared_ptr<const Splitter> splitter_;
  std::unique_ptr<FieldCutter> cutter_;  // made when the first line is cut
  const std::size_t first_column_;
  std::size_t end_column_;
  LineCounts counts_;
  std::vector<Field> fields_;  // of all lines, or of a single one

  // A line, and the number of fields on all lines before it.
  std::size_t line_ = 0;
  std::size_t fields_before_ = 0;
};

}  // namespace textio
