#include <vltextstream/scoring/line_counts.hpp>

#include <algorithm>
#include <iterator>

namespace textio {
namespace {

// Of runs that do not fit into the object, there are seldom more.
constexpr std::size_t kUsualRuns = 128;

}  // namespace

LineCounts::LineCounts(const std::vector<std::size_t>& counts) {
  for (const std::size_t fields : counts) add(fields);
}

void LineCounts::grow() { reserve(std::max(kUsualRuns, 2 * runs_.size())); }

std::size_t LineCounts::run_at(std::size_t line) const {
  if (line >= size_) return runs_.size();
  const auto after =
      std::upper_bound(runs_.begin(), runs_.end(), line,
                       [](std::size_t number, const Run& run) { return number < run.first; });
  return static_cast<std::size_t>(std::distance(runs_.begin(), after)) - 1;
}

std::vector<std::size_t> LineCounts::to_vector() const {
  std::vector<std::size_t> counts;
  counts.reserve(size_);
  for (std::size_t k = 0; k < runs_.size(); ++k) {
    append_times(counts, end_of(k) - runs_[k].first, runs_[k].fields);
  }
  return counts;
}

}  // namespace textio
