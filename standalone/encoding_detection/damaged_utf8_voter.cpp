// Bytes above 127 rarely form a UTF-8 sequence by chance in another encoding. So each sequence
// counts like one letter, and each ill-formed part like a rare accident.
#include <vltextstream/standalone/encoding_detection/damaged_utf8_voter.hpp>

#include <cstddef>
#include <limits>

#include <unicode/utf8.h>

namespace textio::standalone {
namespace {

// Natural logarithms of likelihoods.
constexpr double kRarity = 1.0;
constexpr double kIllFormed = -10.0;
constexpr double kSequences[] = {0.0, 0.0, -4.0, -6.0, -8.0};  // by their length

}  // namespace

ScoredEncoding score_damaged_utf8(std::string_view bytes, bool is_whole) {
  const auto* const units = reinterpret_cast<const unsigned char*>(bytes.data());
  double score = -kRarity;
  std::size_t sequences = 0;
  std::size_t ill_formed = 0;
  for (std::size_t i = 0; i < bytes.size();) {
    const std::size_t begin = i;
    UChar32 c = 0;
    U8_NEXT(units, i, bytes.size(), c);
    if (c >= 0) {
      score += kSequences[i - begin];
      if (i - begin > 1) ++sequences;
    } else if (is_whole || i < bytes.size()) {
      score += kIllFormed;
      ++ill_formed;
    }
  }
  // A text without sequences shows no sign of UTF-8, and one with few of them a weak one.
  if (sequences == 0 || sequences < ill_formed) score = -std::numeric_limits<double>::infinity();
  return {"UTF-8", score, {}};
}

}  // namespace textio::standalone
