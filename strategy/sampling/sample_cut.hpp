// SampleCut: a sample cut into fields by its strategy: how many on each line, and the fields of a
// line when they are asked for.
//
//   SampleCut cut(strategy, sample);
//   cut.counts();                      // 3, 3, 0, 2
//   cut.fields(3);                     // two fields
//
// Ownership  refers to the strategy and the sample, which must stay as they are. Does not change the
//            strategy, unless that is one from outside the library.
// Cost       cuts every line once if sampling has not counted its fields, and a line again each time
//            its fields are asked for; holds the fields of one line. A strategy from outside may cut
//            a line otherwise the second time, so that all its fields are kept. `fields` is cheap
//            for a line near the one asked for before.
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
  // Takes the numbers of fields out of the sample if they have been counted.
  SampleCut(Strategy& strategy, DrawnSample& sample);

  const LineCounts& counts() const { return counts_; }
  LineCounts take_counts() { return std::move(counts_); }

  // The column that the strategy is at after the last line.
  std::size_t end_column() const { return end_column_; }

  std::span<const Field> fields(std::size_t line) override;

 private:
  FieldCutter& cutter();
  void count_all(Strategy& strategy);
  void go_to(std::size_t line);

  const DrawnSample& sample_;
  const std::shared_ptr<const Splitter> splitter_;
  std::unique_ptr<FieldCutter> cutter_;  // made when a line is cut
  const std::size_t first_column_;
  std::size_t end_column_;
  LineCounts counts_;
  std::vector<Field> fields_;  // of all lines, or of one

  // A line, and the number of fields on all lines before it.
  std::size_t line_ = 0;
  std::size_t fields_before_ = 0;
};

}  // namespace textio
