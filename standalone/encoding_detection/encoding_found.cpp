#include <vltextstream/standalone/encoding_detection/encoding_found.hpp>

namespace textio::standalone {

std::string_view to_string(EncodingFound found) {
  switch (found) {
    case EncodingFound::given:
      return "given";
    case EncodingFound::byte_order_mark:
      return "byte-order mark";
    case EncodingFound::valid_utf8:
      return "valid UTF-8";
    case EncodingFound::zero_bytes:
      return "zero bytes";
    case EncodingFound::escape_sequences:
      return "escape sequences";
    case EncodingFound::statistics:
      return "statistics";
    case EncodingFound::fallback:
      return "fallback";
    case EncodingFound::none:
      return "none";
  }
  return "";
}

}  // namespace textio::standalone
