#include <vltextstream/scoring/deviations.hpp>

#include <algorithm>

namespace textio {
namespace {

// The number of runs up to and including the last one with `fields` fields; 0 if there is none.
std::size_t runs_to_last(const LineCounts& counts, std::size_t fields) {
  std::size_t k = counts.runs().size();
  while (k > 0 && counts.runs()[k - 1].fields != fields) --k;
  return k;
}

}  // namespace

Deviations::Deviations(const LineCounts& counts, std::int32_t modal_field_count)
    : counts_(counts),
      modal_(static_cast<std::size_t>(modal_field_count)),
      num_runs_(runs_to_last(counts, modal_)) {
  for_each_run([this](std::size_t diff, std::size_t num_lines) {
    size_ += num_lines;
    sum_ += diff * num_lines;
    return true;
  });
}

// Calls `visit(diff, num_lines)` for the runs of lines that are not empty, while it returns true.
template <typename Visit>
void Deviations::for_each_run(Visit visit) const {
  for (std::size_t k = 0; k < num_runs_; ++k) {
    const LineCounts::Run& run = counts_.runs()[k];
    if (run.fields == 0) continue;
    const std::size_t diff = run.fields > modal_ ? run.fields - modal_ : modal_ - run.fields;
    if (!visit(diff, counts_.end_of(k) - run.first)) return;
  }
}

std::vector<std::size_t> Deviations::to_vector() const {
  std::vector<std::size_t> diffs;
  diffs.reserve(size_);
  for_each_run([&diffs](std::size_t diff, std::size_t num_lines) {
    append_times(diffs, num_lines, diff);
    return true;
  });
  return diffs;
}

std::size_t Deviations::sum_of_first(std::size_t count) const {
  std::size_t sum = 0;
  for_each_run([&](std::size_t diff, std::size_t num_lines) {
    const std::size_t taken = std::min(count, num_lines);
    sum += diff * taken;
    count -= taken;
    return count > 0;
  });
  return sum;
}

double Deviations::total_variation() const {
  if (size_ == 0) return std::numeric_limits<double>::infinity();
  return static_cast<double>(sum_) / static_cast<double>(size_);
}

double Deviations::data_variation(std::size_t header_lines, double total_variation) const {
  return mean_after_header(size_, header_lines, total_variation,
                           [&] { return static_cast<double>(sum_ - sum_of_first(header_lines)); });
}

}  // namespace textio
