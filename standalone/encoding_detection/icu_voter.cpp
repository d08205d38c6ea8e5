// ICU gives marks from 0 to 100 to the encodings that it knows. Its marks for Unicode encodings are
// ignored: it sometimes takes ASCII with one byte above 127 for UTF-16, and these encodings were
// already ruled out.
#include <vltextstream/standalone/encoding_detection/icu_voter.hpp>

#include <algorithm>
#include <cstdint>
#include <iterator>
#include <memory>
#include <new>

#include <unicode/ucsdet.h>

#include <vltextstream/standalone/decoding/icu_status.hpp>

namespace textio::standalone {
namespace {

constexpr std::size_t kHeard = 8'192;  // bytes
constexpr double kWeight = 3.0;        // of the highest mark, a natural logarithm

struct CloseDetector {
  void operator()(UCharsetDetector* detector) const { ucsdet_close(detector); }
};

// A superset of an encoding that ICU names, which decodes most texts alike.
struct Extension {
  std::string_view named;
  std::string_view extended;
};
constexpr Extension kExtensions[] = {{"ISO-8859-1", "windows-1252"},
                                     {"ISO-8859-7", "windows-1253"},
                                     {"ISO-8859-8", "windows-1255"},
                                     {"ISO-8859-9", "windows-1254"},
                                     {"EUC-KR", "windows-949"}};

bool is_meant(std::string_view encoding, std::string_view named) {
  return encoding == named ||
         std::any_of(std::begin(kExtensions), std::end(kExtensions), [&](const Extension& one) {
           return one.named == named && one.extended == encoding;
         });
}

bool is_unicode(std::string_view named) { return named.substr(0, 4) == "UTF-"; }

}  // namespace

void raise_named_by_icu(std::string_view bytes, std::vector<ScoredEncoding>& scored) {
  const std::string_view heard = bytes.substr(0, kHeard);
  UErrorCode status = U_ZERO_ERROR;
  const std::unique_ptr<UCharsetDetector, CloseDetector> detector(ucsdet_open(&status));
  throw_if_out_of_memory(status);
  if (!detector) throw std::bad_alloc();  // ICU reports no error here
  ucsdet_setText(detector.get(), heard.data(), static_cast<std::int32_t>(heard.size()), &status);
  std::int32_t count = 0;
  const UCharsetMatch** const matches = ucsdet_detectAll(detector.get(), &count, &status);
  throw_if_out_of_memory(status);
  if (U_FAILURE(status)) return;
  for (std::int32_t i = 0; i < count; ++i) {
    const std::string_view named = ucsdet_getName(matches[i], &status);
    const double mark = ucsdet_getConfidence(matches[i], &status) / 100.0;
    if (U_FAILURE(status) || is_unicode(named)) continue;
    for (ScoredEncoding& encoding : scored) {
      if (is_meant(encoding.encoding, named)) encoding.score += kWeight * mark;
    }
  }
}

}  // namespace textio::standalone
