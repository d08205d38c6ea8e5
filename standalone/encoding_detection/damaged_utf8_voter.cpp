// Bytes above 127 that happen to form a sequence of UTF-8 are rare in any other encoding, so each
// sequence is as likely as one letter; each ill-formed part is a mishap.
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

Reading damaged_utf8_reading(std::string_view bytes, bool is_whole) {
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
  // Without sequences a text has nothing of UTF-8, and with few of them little.
  if (sequences == 0 || sequences < ill_formed) score = -std::numeric_limits<double>::infinity();
  return {"UTF-8", score, {}};
}

}  // namespace textio::standalone
