// The two routes of the text decoder on the same bytes, in the same pieces. Both must give the same
// result for each call.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <ostream>
#include <random>
#include <sstream>
#include <string>
#include <string_view>
#include <vector>

#include <vltextstream/standalone/decoding/text_decoder.hpp>
#include "support/printing.hpp"

namespace textio::testing_support {

// The result of one call, and the state of the decoder after it.
struct DecoderAnswer {
  std::u16string units;
  bool must_reset;
  bool has_more;
  std::size_t ill_formed;

  bool operator==(const DecoderAnswer&) const = default;
};
inline std::ostream& operator<<(std::ostream& out, const DecoderAnswer& answer) {
  return out << '"' << readable(answer.units) << "\", " << answer.ill_formed << " ill-formed"
             << (answer.must_reset ? ", must reset" : "") << (answer.has_more ? ", has more" : "");
}

// One call, from and into heap blocks of exactly the given sizes.
inline DecoderAnswer answer_of(standalone::TextDecoder& decoder, std::string_view bytes,
                               std::size_t room, bool final) {
  const auto input = std::make_unique<char[]>(bytes.size());
  std::copy(bytes.begin(), bytes.end(), input.get());
  const auto output = std::make_unique<char16_t[]>(room);
  const char* in = input.get();
  char16_t* out = output.get();
  const bool must_reset =
      decoder.convert(out, output.get() + room, in, input.get() + bytes.size(), final);
  return {{output.get(), static_cast<std::size_t>(out - output.get())},
          must_reset,
          decoder.has_more(),
          decoder.ill_formed_parts()};
}

// The decoders of both routes, the fast one first.
class BothRoutes {
 public:
  BothRoutes(const std::string& encoding, bool one_unit)
      : fast_(encoding, one_unit, standalone::DecodeRoute::fastest),
        icu_(encoding, one_unit, standalone::DecodeRoute::icu) {}

  standalone::TextDecoder& fast() { return fast_; }
  standalone::TextDecoder& icu() { return icu_; }

  void reset(bool at_start) {
    fast_.reset(at_start);
    icu_.reset(at_start);
  }

 private:
  standalone::TextDecoder fast_;
  standalone::TextDecoder icu_;
};

// `bytes` in chunks of the given size, with the same room; the last one is final.
inline std::vector<DecoderAnswer> answers_of(standalone::TextDecoder& decoder,
                                             std::string_view bytes, std::size_t chunk) {
  std::vector<DecoderAnswer> answers;
  for (std::size_t pos = 0; pos < bytes.size(); pos += chunk) {
    const bool final = pos + chunk >= bytes.size();
    answers.push_back(answer_of(decoder, bytes.substr(pos, chunk), chunk, final));
  }
  while (!answers.empty() && !answers.back().must_reset) {
    answers.push_back(answer_of(decoder, {}, chunk, true));
  }
  return answers;
}

// `bytes` in chunks and rooms of random sizes, some of them 0, with an occasional early end or
// reset. Equal seeds give equal pieces.
inline std::vector<DecoderAnswer> answers_at_random(standalone::TextDecoder& decoder,
                                                    std::string_view bytes, std::uint32_t seed) {
  std::mt19937 random(seed);
  const std::size_t longest = seed % 3 == 0 ? 5 : 80;
  std::vector<DecoderAnswer> answers;
  for (std::size_t pos = 0; pos < bytes.size();) {
    const std::size_t chunk = std::min<std::size_t>(random() % longest, bytes.size() - pos);
    const bool final = random() % 32 == 0;
    answers.push_back(answer_of(decoder, bytes.substr(pos, chunk), random() % longest, final));
    if (answers.back().must_reset) decoder.reset(random() % 2 == 0);
    if (random() % 64 == 0) decoder.reset(random() % 4 == 0);
    pos += chunk;
  }
  answers.push_back(answer_of(decoder, {}, 2 * bytes.size() + 2, true));
  return answers;
}

// The first result in which two runs differ; empty if there is none.
inline std::string first_different_answer(const std::vector<DecoderAnswer>& a,
                                          const std::vector<DecoderAnswer>& b) {
  const auto [in_a, in_b] = std::mismatch(a.begin(), a.end(), b.begin(), b.end());
  if (in_a == a.end() && in_b == b.end()) return "";
  if (in_a == a.end() || in_b == b.end()) return "one run has more answers";
  std::ostringstream text;
  text << "answer " << in_a - a.begin() << ": " << *in_a << " against " << *in_b;
  return text.str();
}

// Every sequence of `count` of the given pieces, each after `separator`.
inline std::string all_sequences_of(const std::vector<std::string>& pieces, std::size_t count,
                                    const std::string& separator) {
  std::string all;
  std::vector<std::size_t> digits(count, 0);
  for (;;) {
    all += separator;
    for (const std::size_t digit : digits) all += pieces[digit];
    std::size_t place = 0;
    while (place < count && ++digits[place] == pieces.size()) digits[place++] = 0;
    if (place == count) return all;
  }
}

inline std::vector<std::string> single_bytes(std::string_view bytes) {
  std::vector<std::string> pieces;
  for (const char byte : bytes) pieces.emplace_back(1, byte);
  return pieces;
}

}  // namespace textio::testing_support
