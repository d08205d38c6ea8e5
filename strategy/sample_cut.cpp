// A list of all fields of a large sample takes many times the memory of its text and is read once,
// most of it never: a classification looks at a few lines. So lines are counted, and those few are
// cut a second time.
#include <vltextstream/strategy/sample_cut.hpp>

#include <utility>

#include <vltextstream/strategy/line_scan.hpp>

namespace textio {

SampleCut::SampleCut(Strategy& strategy)
    : strategy_(strategy),
      stable_(strategy, Field()),
      fixed_(dynamic_cast<FixedWidthStrategy*>(&strategy)),
      first_column_(fixed_ ? fixed_->next_column_ : 0),
      keeps_all_(!is_of_the_library(strategy)) {
  if (!strategy.lines_.empty() && strategy.counted_fields_.size() == strategy.lines_.size()) {
    counts_ = std::exchange(strategy.counted_fields_, {});
    return;
  }
  counts_.reserve(strategy.lines_.size());
  for (const Field& line : strategy.lines_) {
    if (!keeps_all_) fields_.clear();
    const std::size_t before = fields_.size();
    stable_.move_to(line);
    strategy.append_fields(line, fields_);
    strategy.reset_fields();
    counts_.push_back(fields_.size() - before);
  }
}

std::span<const Field> SampleCut::fields(std::size_t line) {
  if (fixed_ || keeps_all_) go_to(line);
  if (keeps_all_) return std::span<const Field>(fields_).subspan(fields_before_, counts_[line]);
  fields_.clear();
  if (fields_.capacity() == 0) fields_.reserve(counts_[line]);
  cut_again(line);
  return fields_;
}

// A fixed-width strategy cuts from the column that it came to the first time, and then stands where
// it stood.
void SampleCut::cut_again(std::size_t line) {
  stable_.move_to(strategy_.lines_[line]);
  if (!fixed_) {
    strategy_.append_fields(strategy_.lines_[line], fields_);
    return;
  }
  const std::size_t column = fixed_->next_column_;
  fixed_->next_column_ = (first_column_ + fields_before_) % fixed_->widths_.size();
  strategy_.append_fields(strategy_.lines_[line], fields_);
  fixed_->next_column_ = column;
}

void SampleCut::go_to(std::size_t line) {
  while (line_ < line) fields_before_ += counts_[line_++];
  while (line_ > line) fields_before_ -= counts_[--line_];
}

}  // namespace textio
