// A list of all fields of a large sample takes many times the memory of its text, and most of it is
// never read: classification examines only a few lines. So fields are counted first, and the fields
// of those few lines are cut again.
#include <vltextstream/strategy/sampling/sample_cut.hpp>

namespace textio {

SampleCut::SampleCut(Strategy& strategy, DrawnSample& sample)
    : sample_(sample),
      splitter_(strategy.splitter()),
      first_column_(strategy.next_column()),
      end_column_(first_column_) {
  if (sample.has_counts()) {
    counts_ = std::exchange(sample.counts, {});
  } else {
    count_all(strategy);
  }
}

FieldCutter& SampleCut::cutter() {
  if (!cutter_) cutter_ = splitter_->field_cutter();
  return *cutter_;
}

// A strategy from outside gets a reset_fields() call at the end of each line, including blank
// lines.
void SampleCut::count_all(Strategy& strategy) {
  const bool keeps_all = !splitter_->is_repeatable();
  for (const SampleRun& run : sample_.found.runs) {
    if (run.kind == SampleLineKind::comment) continue;
    if (run.kind == SampleLineKind::blank) {
      counts_.add(0, run.num_lines);
      for (std::size_t i = 0; keeps_all && i < run.num_lines; ++i) strategy.reset_fields();
      continue;
    }
    for (std::size_t i = 0; i < run.num_lines; ++i) {
      if (!keeps_all) fields_.clear();
      const std::size_t before = fields_.size();
      end_column_ = cutter().append_fields(sample_.texts[run.first_text + i], end_column_, fields_);
      if (keeps_all) strategy.reset_fields();
      counts_.add(fields_.size() - before);
    }
  }
}

std::span<const Field> SampleCut::fields(std::size_t line) {
  if (splitter_->num_columns() > 1 || !splitter_->is_repeatable()) go_to(line);
  if (!splitter_->is_repeatable()) {
    return std::span<const Field>(fields_).subspan(fields_before_, counts_[line]);
  }
  fields_.clear();
  if (fields_.capacity() == 0) fields_.reserve(counts_[line]);
  const std::size_t column = (first_column_ + fields_before_) % splitter_->num_columns();
  cutter().append_fields(sample_.line(line), column, fields_);
  return fields_;
}

void SampleCut::go_to(std::size_t line) {
  while (line_ < line) fields_before_ += counts_[line_++];
  while (line_ > line) fields_before_ -= counts_[--line_];
}

}  // namespace textio
