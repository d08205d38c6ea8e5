// Header lines come first and deviate; data lines agree. The squared running mean of the
// deviations, scaled by length, rises over the header and falls after it, and the header ends where
// it bends most sharply. Long runs without deviation are cut off first. A result that makes most of
// the file a header is rejected.
#include <vltextstream/scoring/header_lines.hpp>

#include <algorithm>

namespace textio::detection {
namespace {

// The running sums of the deviations. Those after the first count at most `cap` each.
std::vector<double> running_sums(const std::vector<std::size_t>& d, bool cap_deviations) {
  std::vector<double> sums(d.size());
  sums[0] = static_cast<double>(d[0]);
  for (std::size_t i = 1; i < d.size(); ++i) {
    const auto deviation = static_cast<double>(d[i]);
    sums[i] = sums[i - 1] + (cap_deviations ? std::min(2.0, deviation) : deviation);
  }
  return sums;
}

std::size_t zeros_among_first(const std::vector<std::size_t>& d, std::size_t count) {
  const auto end = d.begin() + static_cast<std::ptrdiff_t>(count);
  return static_cast<std::size_t>(std::count(d.begin(), end, 0U));
}

// The squared running mean, multiplied by the number of entries in the mean.
void to_scaled_square_means(std::vector<double>& sums) {
  for (std::size_t i = 0; i < sums.size(); ++i) {
    sums[i] = (sums[i] / static_cast<double>(i + 1)) * sums[i];
  }
}

}  // namespace

std::vector<double> three_point_filter(const std::vector<double>& x, double a, double b, double c) {
  const std::size_t n = x.size();
  if (n < 2) return x;
  std::vector<double> smooth(n);
  smooth[0] = (b + a) * x[0] + c * x[1];
  for (std::size_t i = 1; i + 1 < n; ++i) smooth[i] = a * x[i - 1] + b * x[i] + c * x[i + 1];
  smooth[n - 1] = (b + c) * x[n - 1] + c * x[n - 2];
  return smooth;
}

std::size_t get_header_lines(const std::vector<std::size_t>& d, std::size_t first,
                             bool cap_deviations) {
  const std::size_t n = d.size();
  if (n < 2) return first;
  if (n == 2) return d[0] != d[1] ? 1 : 0;

  // The first k entries are candidates; the last entry of all never is.
  std::size_t k = n - 1;
  while (k > first && d[k - 1] == 0) --k;
  if (k <= first) return first;

  // At most half of the candidates may agree with the modal count.
  std::size_t zeros = zeros_among_first(d, k);
  while (k > first && zeros > k / 2) zeros -= d[--k] == 0 ? 1 : 0;
  if (k <= first) return first;

  std::vector<double> series = running_sums(d, cap_deviations);
  to_scaled_square_means(series);
  const std::vector<double> bend = three_point_filter(series, -1.0, 2.0, -1.0);
  const auto sharpest =
      std::max_element(bend.begin(), bend.begin() + static_cast<std::ptrdiff_t>(k));
  k = std::max(static_cast<std::size_t>(sharpest - bend.begin()) + 1, first);

  while (k > 0 && d[k - 1] == 0) --k;
  if (k == 0) return 0;
  return 3 * k > 2 * n ? first : k;
}

}  // namespace textio::detection
