// This adds three things to the decoder of an encoding: it drops the byte-order mark, it turns
// "UTF-16" and "UTF-32" into the concrete encoding as soon as their first bytes are known, and it
// consumes all input even if there is too little room.
#include <vltextstream/standalone/decoding/text_decoder.hpp>

#include <algorithm>

#include <vltextstream/standalone/decoding/encoding_names.hpp>
#include <vltextstream/standalone/decoding/icu_decoder.hpp>
#include <vltextstream/standalone/decoding/single_byte_decoder.hpp>
#include <vltextstream/standalone/decoding/utf16_decoder.hpp>
#include <vltextstream/standalone/decoding/utf8_decoder.hpp>

namespace textio::standalone {
namespace {

using namespace std::string_view_literals;

constexpr char16_t kByteOrderMark = 0xFEFF;
constexpr std::size_t kScratchUnits = 1024;
static_assert(kScratchUnits >= kEnoughRoom);

// --- byte order --------------------------------------------------------------------------------

std::size_t head_bytes(const std::string& family) { return family == "UTF-16" ? 2 : 4; }

// The byte-order mark of "UTF-16" or "UTF-32", little-endian and big-endian.
std::string_view little_mark(const std::string& family) {
  return family == "UTF-16" ? "\xFF\xFE"sv : "\xFF\xFE\0\0"sv;
}
std::string_view big_mark(const std::string& family) {
  return family == "UTF-16" ? "\xFE\xFF"sv : "\0\0\xFE\xFF"sv;
}

bool is_mark(const std::string& family, std::string_view head) {
  return head == little_mark(family) || head == big_mark(family);
}

// The encoding with the byte order of its first bytes; big-endian without a mark.
std::string with_byte_order(const std::string& family, std::string_view head) {
  return family + (head == little_mark(family) ? "LE" : "BE");
}

// The name without ICU's options, which concern byte-order marks in these encodings. Marks are not
// left to ICU here.
std::string without_options(const std::string& encoding) {
  const bool has_order = encoding.starts_with("UTF-16") || encoding.starts_with("UTF-32");
  return has_order ? encoding.substr(0, encoding.find(',')) : encoding;
}

// --- decoders ----------------------------------------------------------------------------------

// Null for an encoding that needs ICU, if only to learn its table.
std::unique_ptr<StreamDecoder> decoder_without_icu(const std::string& encoding, bool one_unit) {
  if (encoding == "UTF-8") return std::make_unique<Utf8Decoder>(one_unit);
  if (encoding == "UTF-16LE") return std::make_unique<Utf16Decoder>(ByteOrder::little, one_unit);
  if (encoding == "UTF-16BE") return std::make_unique<Utf16Decoder>(ByteOrder::big, one_unit);
  return nullptr;
}

// Null for an encoding whose characters are not all single bytes.
std::unique_ptr<StreamDecoder> single_byte_decoder(IcuDecoder& icu) {
  if (!icu.is_single_byte()) return nullptr;
  const auto table = single_byte_table(icu);
  return table ? std::make_unique<SingleByteDecoder>(*table) : nullptr;
}

}  // namespace

TextDecoder::TextDecoder(const std::string& encoding, bool one_unit_per_character,
                         DecodeRoute route)
    : one_unit_(one_unit_per_character), route_(route) {
  const std::string name = without_options(canonical_encoding(encoding));
  const bool has_open_order = name == "UTF-16" || name == "UTF-32";
  if (has_open_order) {
    family_ = name;
    order_known_ = false;
  } else {
    set_decoder(name);
  }
}

void TextDecoder::set_decoder(const std::string& encoding) {
  std::unique_ptr<StreamDecoder> chosen;
  if (route_ == DecodeRoute::fastest) chosen = decoder_without_icu(encoding, one_unit_);
  is_fast_ = chosen != nullptr;
  if (!chosen) {
    auto icu = std::make_unique<IcuDecoder>(encoding, one_unit_);
    if (route_ == DecodeRoute::fastest) chosen = single_byte_decoder(*icu);
    is_fast_ = chosen != nullptr;
    if (!chosen) {
      icu->reset();
      chosen = std::move(icu);
    }
  }
  earlier_ill_formed_ = ill_formed_parts();
  decoder_ = std::move(chosen);
}

bool TextDecoder::convert(char16_t*& out, char16_t* out_end, const char*& in, const char* in_end,
                          bool final) {
  put_held(out, out_end);
  std::string_view bytes(in, static_cast<std::size_t>(in_end - in));
  in = in_end;
  if (!order_known_) {
    if (!find_order(bytes, final)) return false;
    DecodeWindow head{head_.data(), head_.data() + head_.size(), out, out_end};
    decode(head, final && bytes.empty());
    out = head.out;
    head_.clear();
  }
  DecodeWindow window{bytes.data(), bytes.data() + bytes.size(), out, out_end};
  decode(window, final);
  out = window.out;
  return final && held_units() == 0;
}

// Moves the first bytes of the text to the head. Returns false while they do not decide the byte
// order.
bool TextDecoder::find_order(std::string_view& bytes, bool final) {
  const std::size_t taken = std::min(head_bytes(family_) - head_.size(), bytes.size());
  head_.append(bytes.substr(0, taken));
  bytes.remove_prefix(taken);
  if (head_.size() < head_bytes(family_) && !final) return false;
  set_decoder(with_byte_order(family_, head_));
  order_known_ = true;
  order_marked_ = is_mark(family_, head_);
  return true;
}

// Decodes all input, into the window as far as it has room.
void TextDecoder::decode(DecodeWindow& window, bool final) {
  char16_t* const begin = window.out;
  const bool all_out = held_units() == 0 && decoder_->decode(window, final);
  if (!all_out) hold_rest(window, final);
  drop_mark(begin, window.out);
  put_held(window.out, window.out_end);
}

void TextDecoder::hold_rest(DecodeWindow& window, bool final) {
  char16_t scratch[kScratchUnits];
  bool all_out = false;
  while (!all_out) {
    DecodeWindow rest{window.in, window.in_end, scratch, scratch + kScratchUnits};
    all_out = decoder_->decode(rest, final);
    held_.append(scratch, rest.out);
    window.in = rest.in;
  }
}

// Drops the byte-order mark at the start of the text. [begin, end) was just decoded; the held units
// come after it.
void TextDecoder::drop_mark(char16_t* begin, char16_t*& end) {
  if (!at_start_ || (begin == end && held_units() == 0)) return;
  at_start_ = false;
  if (begin == end) {
    if (held_[held_begin_] == kByteOrderMark) ++held_begin_;
  } else if (*begin == kByteOrderMark) {
    end = std::copy(begin + 1, end, begin);
  }
}

void TextDecoder::put_held(char16_t*& out, char16_t* out_end) {
  const std::size_t count = std::min(held_units(), static_cast<std::size_t>(out_end - out));
  out = std::copy_n(held_.data() + held_begin_, count, out);
  held_begin_ += count;
  if (held_units() > 0) return;
  held_.clear();
  held_begin_ = 0;
}

bool TextDecoder::has_more() const {
  return held_units() > 0 || !head_.empty() || (decoder_ && decoder_->has_unfinished());
}

std::size_t TextDecoder::ill_formed_parts() const {
  return earlier_ill_formed_ + (decoder_ ? decoder_->ill_formed_parts() : 0);
}

void TextDecoder::reset(bool at_start) {
  if (decoder_) decoder_->reset();
  at_start_ = at_start;
  if (at_start && !order_marked_) order_known_ = family_.empty();
  head_.clear();
  held_.clear();
  held_begin_ = 0;
}

}  // namespace textio::standalone
