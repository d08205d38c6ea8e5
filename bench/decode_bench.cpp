// The host's code converter by itself: a full sample in the chunks that a file source passes on,
// with the decoder of the encoding and with ICU's, which can decode any encoding; and the
// construction of a converter, which every file needs.
#include <algorithm>
#include <memory>
#include <string>
#include <vector>

#include <vltextstream/vltextstream.hpp>

#include <vltextstream/standalone/decoding/text_decoder.hpp>
#include "bench/encoded_texts.hpp"
#include "bench/measure.hpp"

namespace textio::bench {
namespace {

using standalone::DecodeRoute;
using standalone::TextDecoder;

constexpr std::size_t kChunk = 65'535;

// `units` has room for one code unit per byte.
void decode_all(TextDecoder& decoder, const std::string& bytes, std::vector<char16_t>& units) {
  decoder.reset(true);
  char16_t* out = units.data();
  char16_t* const out_end = out + units.size();
  const char* const end = bytes.data() + bytes.size();
  for (const char* in = bytes.data(); in != end;) {
    const auto left = static_cast<std::size_t>(end - in);
    decoder.convert(out, out_end, in, in + std::min(left, kChunk), left <= kChunk);
  }
  keep(units.front());
}

Step decode(const EncodedText& text, DecodeRoute route) {
  const auto bytes = std::make_shared<std::string>(text.make(kSampleUnits));
  const auto units = std::make_shared<std::vector<char16_t>>(bytes->size());
  const auto decoder = std::make_shared<TextDecoder>(text.encoding, true, route);
  return {[=] { decode_all(*decoder, *bytes, *units); }, bytes->size()};
}

Step make_converter(const std::string& encoding) {
  return {[encoding] { keep(StreamCodeConverter(encoding, true).has_more()); }};
}

void add_all() {
  for (const EncodedText& text : encoded_texts()) {
    const std::string name = text.name;
    add_step("decode/" + name, [&text] { return decode(text, DecodeRoute::fastest); });
    add_step("decode_by_icu/" + name, [&text] { return decode(text, DecodeRoute::icu); });
  }
  for (const char* encoding : {"UTF-8", "UTF-16", "windows-1252", "Shift_JIS"}) {
    add_step(std::string("make_converter/") + encoding,
             [encoding] { return make_converter(encoding); });
  }
}

}  // namespace
}  // namespace textio::bench

int main(int argc, char** argv) { return textio::bench::run(argc, argv, textio::bench::add_all); }
