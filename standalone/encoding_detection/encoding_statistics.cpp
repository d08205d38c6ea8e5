// Bayes' rule: each voter gives the likelihood of the bytes under its encodings, times how common
// these are; ICU's detector raises the encodings that it names. The best reading wins, and its
// share among all different readings is the confidence.
#include <vltextstream/standalone/encoding_detection/encoding_statistics.hpp>

#include <algorithm>
#include <cmath>
#include <iterator>
#include <string>
#include <vector>

#include <vltextstream/standalone/encoding_detection/damaged_utf8_voter.hpp>
#include <vltextstream/standalone/encoding_detection/east_asian_voter.hpp>
#include <vltextstream/standalone/encoding_detection/icu_voter.hpp>
#include <vltextstream/standalone/encoding_detection/single_byte_voter.hpp>

namespace textio::standalone {
namespace {

constexpr const char* kUsual = "windows-1252";
constexpr std::size_t kMostHighBytes = 16'384;
constexpr double kLeastShare = 0.5;
constexpr double kDoubt = 0.3;  // bytes above 127 that nobody has seen
constexpr double kLeastGain = 0.0;
constexpr double kLeastGainOfUnusual = 2.5;

bool read_alike(const Reading& a, const Reading& b) {
  const bool same_name = std::string_view(a.encoding) == b.encoding;
  return same_name || (!a.characters.empty() && a.characters == b.characters);
}

std::vector<Reading> all_readings(std::string_view bytes, bool is_whole) {
  std::vector<Reading> readings = single_byte_readings(bytes);
  const std::vector<Reading> others = east_asian_readings(bytes, is_whole);
  readings.insert(readings.end(), others.begin(), others.end());
  readings.push_back(damaged_utf8_reading(bytes, is_whole));
  raise_named_by_icu(bytes, readings);
  return readings;
}

// Only the best of those that read alike is counted.
double share_of_best(std::vector<Reading> readings) {
  std::stable_sort(readings.begin(), readings.end(),
                   [](const Reading& a, const Reading& b) { return a.score > b.score; });
  double sum = 0;
  for (auto one = readings.begin(); one != readings.end(); ++one) {
    const bool is_new = std::none_of(
        readings.begin(), one, [&](const Reading& better) { return read_alike(better, *one); });
    if (is_new) sum += std::exp((one->score - readings.front().score));
  }
  return 1.0 / sum;
}

// However clear the answer, a single byte above 127 may be a mishap.
double confidence_of(double share, std::string_view bytes) {
  const auto seen = static_cast<double>(std::count_if(bytes.begin(), bytes.end(), [](char byte) {
    return static_cast<unsigned char>(byte) >= 0x80;
  }));
  return share * seen / (seen + kDoubt);
}

// The bytes that all voters look at: up to so many above 127.
std::string_view looked_at(std::string_view bytes) {
  std::size_t left = kMostHighBytes;
  const auto* const end = std::find_if(bytes.begin(), bytes.end(), [&](char byte) {
    return static_cast<unsigned char>(byte) >= 0x80 && left-- == 0;
  });
  return bytes.substr(0, static_cast<std::size_t>(end - bytes.begin()));
}

}  // namespace

StatisticalGuess guess_encoding(std::string_view bytes, bool is_whole) {
  const std::string_view head = looked_at(bytes);
  const std::vector<Reading> readings = all_readings(head, is_whole && head.size() == bytes.size());
  const Reading& best =
      *std::max_element(readings.begin(), readings.end(),
                        [](const Reading& a, const Reading& b) { return a.score < b.score; });
  const double share = share_of_best(readings);
  const double gain = best.score - score_of_chance(head);
  const bool is_usual = std::string_view(best.encoding) == kUsual;
  const bool beats_chance = gain > (is_usual ? kLeastGain : kLeastGainOfUnusual);
  if (!beats_chance || share < kLeastShare) return {kUsual, 0.0, gain, false};
  return {best.encoding, confidence_of(share, head), gain, true};
}

}  // namespace textio::standalone
