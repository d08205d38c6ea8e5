// LineCounts: the number of fields on each sampled line.
//
//   LineCounts counts;
//   counts.add(3);           // a line with three fields
//   counts.add(0, 1'000);    // a thousand blank lines
//
// Consecutive lines with the same number are stored once, because a sample may have millions of
// blank lines.
//
// Units  lines are numbered from 0.
// Cost   16 bytes for each run of equal numbers. A few runs, as a regular table has, take no
//        allocation.
#pragma once

#include <cstddef>
#include <span>
#include <vector>

#include <boost/container/small_vector.hpp>

namespace textio {

class LineCounts {
 public:
  // Lines from `first` up to the start of the next run, each with `fields` fields.
  struct Run {
    std::size_t first;
    std::size_t fields;
  };

  LineCounts() = default;
  explicit LineCounts(const std::vector<std::size_t>& counts);

  // Reserves room for `runs` runs.
  void reserve(std::size_t runs) { runs_.reserve(runs); }

  // Appends `num_lines` lines with `fields` fields each.
  void add(std::size_t fields, std::size_t num_lines = 1) {
    if (num_lines == 0) return;
    if (runs_.empty() || runs_.back().fields != fields) start_run(fields);
    size_ += num_lines;
  }

  // The number of lines.
  std::size_t size() const { return size_; }

  std::span<const Run> runs() const { return {runs_.data(), runs_.size()}; }

  // The number of the line after the last one of run `k`.
  std::size_t end_of(std::size_t k) const {
    return k + 1 < runs_.size() ? runs_[k + 1].first : size_;
  }

  // The number of the run that contains `line`; the number of runs if the line does not exist.
  std::size_t run_at(std::size_t line) const;

  // The number of fields on `line`, which must exist. Logarithmic in the number of runs.
  std::size_t operator[](std::size_t line) const { return runs_[run_at(line)].fields; }

  // One number for each line.
  std::vector<std::size_t> to_vector() const;

 private:
  static constexpr std::size_t kFewRuns = 8;

  void start_run(std::size_t fields) {
    if (runs_.size() == runs_.capacity()) grow();
    runs_.push_back({size_, fields});
  }
  void grow();

  boost::container::small_vector<Run, kFewRuns> runs_;
  std::size_t size_ = 0;
};

// Appends `value` `count` times. If lines are ragged, most runs have a single line.
inline void append_times(std::vector<std::size_t>& list, std::size_t count, std::size_t value) {
  if (count == 1) {
    list.push_back(value);
  } else {
    list.insert(list.end(), count, value);
  }
}

}  // namespace textio
