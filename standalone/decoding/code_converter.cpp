// TextDecoder does the work, so that tests can reach both of its routes.
#include <vltextstream/host/code_converter.hpp>

#include <vltextstream/standalone/decoding/text_decoder.hpp>

namespace textio {

struct StreamCodeConverter::State {
  standalone::TextDecoder decoder;
};

StreamCodeConverter::StreamCodeConverter(const std::string& encoding, bool one_unit_per_character)
    : state_(new State{{encoding, one_unit_per_character, standalone::DecodeRoute::fastest}}) {}

StreamCodeConverter::~StreamCodeConverter() = default;

bool StreamCodeConverter::convert(char16_t*& out, char16_t* out_end, const char*& in,
                                  const char* in_end, bool final) {
  return state_->decoder.convert(out, out_end, in, in_end, final);
}

bool StreamCodeConverter::has_more() const { return state_->decoder.has_more(); }

std::size_t StreamCodeConverter::ill_formed_parts() const {
  return state_->decoder.ill_formed_parts();
}

void StreamCodeConverter::reset(bool at_start) { state_->decoder.reset(at_start); }

}  // namespace textio
