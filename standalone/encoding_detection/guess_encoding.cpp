// Bayes' rule: each voter gives the likelihood of the bytes in its encodings, times how common
// these are. ICU's detector raises the scores of the encodings that it names. The highest score
// wins; its share among all encodings that decode the text differently is the confidence.
#include <vltextstream/standalone/encoding_detection/guess_encoding.hpp>

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
constexpr double kDoubt = 0.3;  // bytes above 127 that might contradict the answer
constexpr double kLeastGain = 0.0;
constexpr double kLeastGainOfUnusual = 2.5;

bool read_alike(const ScoredEncoding& a, const ScoredEncoding& b) {
  const bool same_name = std::string_view(a.encoding) == b.encoding;
  return same_name || (!a.characters.empty() && a.characters == b.characters);
}

std::vector<ScoredEncoding> score_all_encodings(std::string_view bytes, bool is_whole) {
  std::vector<ScoredEncoding> scored = score_single_byte_encodings(bytes);
  const std::vector<ScoredEncoding> others = score_east_asian_encodings(bytes, is_whole);
  scored.insert(scored.end(), others.begin(), others.end());
  scored.push_back(score_damaged_utf8(bytes, is_whole));
  raise_named_by_icu(bytes, scored);
  return scored;
}

// Of encodings that decode the text alike only the best is counted.
double share_of_best(std::vector<ScoredEncoding> scored) {
  std::stable_sort(
      scored.begin(), scored.end(),
      [](const ScoredEncoding& a, const ScoredEncoding& b) { return a.score > b.score; });
  double sum = 0;
  for (auto one = scored.begin(); one != scored.end(); ++one) {
    const bool is_new = std::none_of(scored.begin(), one, [&](const ScoredEncoding& better) {
      return read_alike(better, *one);
    });
    if (is_new) sum += std::exp((one->score - scored.front().score));
  }
  return 1.0 / sum;
}

// Few bytes above 127 are weak evidence, however clear the answer: a single one may be an accident.
double confidence_of(double share, std::string_view bytes) {
  const auto seen = static_cast<double>(std::count_if(bytes.begin(), bytes.end(), [](char byte) {
    return static_cast<unsigned char>(byte) >= 0x80;
  }));
  return share * seen / (seen + kDoubt);
}

// The bytes that the voters look at: a prefix with at most kMostHighBytes above 127.
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
  const std::vector<ScoredEncoding> scored =
      score_all_encodings(head, is_whole && head.size() == bytes.size());
  const ScoredEncoding& best = *std::max_element(
      scored.begin(), scored.end(),
      [](const ScoredEncoding& a, const ScoredEncoding& b) { return a.score < b.score; });
  const double share = share_of_best(scored);
  const double gain = best.score - score_of_chance(head);
  const bool is_usual = std::string_view(best.encoding) == kUsual;
  const bool beats_chance = gain > (is_usual ? kLeastGain : kLeastGainOfUnusual);
  if (!beats_chance || share < kLeastShare) return {kUsual, 0.0, gain, false};
  return {best.encoding, confidence_of(share, head), gain, true};
}

}  // namespace textio::standalone
