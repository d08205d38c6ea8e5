#include <vltextstream/reading/account.hpp>

#include <iterator>
#include <utility>

namespace textio::reading {

std::string_view to_string(LineFate fate) noexcept {
  constexpr std::string_view kNames[] = {"preamble", "names",   "units",   "descriptions",
                                         "data",     "blank",   "comment", "rule",
                                         "footer",   "omitted", "failed"};
  static_assert(std::size(kNames) == kLineFates);
  const auto index = static_cast<std::size_t>(fate);
  return index < std::size(kNames) ? kNames[index] : std::string_view();
}

std::string_view to_string(Oddity oddity) noexcept {
  constexpr std::string_view kNames[] = {"misfit", "short-row", "long-row", "ill-formed",
                                         "widened"};
  static_assert(std::size(kNames) == kOddities);
  const auto index = static_cast<std::size_t>(oddity);
  return index < std::size(kNames) ? kNames[index] : std::string_view();
}

void Account::add(LineFate fate, std::uint64_t lines, std::uint64_t bytes) {
  if (lines == 0 && bytes == 0) return;
  Sum& sum = sums[static_cast<std::size_t>(fate)];
  sum.lines += lines;
  sum.bytes += bytes;
  if (!has_more_runs && !runs.empty() && runs.back().fate == fate) {
    runs.back().num_lines += lines;
    runs.back().num_bytes += bytes;
  } else if (runs.size() < kMostRuns) {
    runs.push_back({fate, num_lines + 1, lines, bytes});
  } else {
    has_more_runs = true;
  }
  num_lines += lines;
  num_bytes += bytes;
}

void Account::add(OddPlace place) {
  std::uint64_t& count = oddities[static_cast<std::size_t>(place.oddity)];
  if (++count <= kMostPlaces) places.push_back(std::move(place));
}

}  // namespace textio::reading
