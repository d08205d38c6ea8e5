// ICU writes into the caller's room. Each call gets only as many bytes as are sure to fit, because
// some of ICU's converters lose their place when the room runs out. The output is then corrected in
// place: low surrogates are dropped where one unit per character is wanted, exchanged controls are
// swapped back, and lone surrogates that ICU lets pass become U+FFFD.
#include <vltextstream/standalone/decoding/icu_decoder.hpp>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <iterator>
#include <stdexcept>
#include <string_view>

#include <fmt/format.h>
#include <unicode/ucnv_cb.h>

#include <vltextstream/source/unit_block.hpp>
#include <vltextstream/standalone/decoding/icu_status.hpp>
#include <vltextstream/standalone/decoding/surrogates.hpp>

namespace textio::standalone {
namespace {

// Output is corrected in pieces of this size, while they are in the cache.
constexpr std::ptrdiff_t kMostUnits = 8192;

// A byte gives at most two units; a byte that ends a sequence also gives what the sequence gives.
constexpr std::ptrdiff_t kUnitsPerByte = 2;
constexpr std::ptrdiff_t kUnitsPerSequence = 64;

// One U+FFFD for each ill-formed part; ICU's own substitution writes U+001A for some encodings.
void replace_ill_formed(const void* context, UConverterToUnicodeArgs* args, const char* /*bytes*/,
                        std::int32_t /*length*/, UConverterCallbackReason reason,
                        UErrorCode* status) {
  if (reason > UCNV_IRREGULAR) return;
  ++*static_cast<std::size_t*>(const_cast<void*>(context));
  *status = U_ZERO_ERROR;
  ucnv_cbToUWriteUChars(args, &kReplacement, 1, 0, status);
}

// Some of ICU's tables exchange three control characters, as old code pages for screens did. There
// U+001A, which marks a folded character in this library, comes from byte 0x7F.
bool exchanges_controls(UConverter* converter) {
  const char bytes[] = {0x1A, 0x1C, 0x7F};
  char16_t units[8];
  UErrorCode status = U_ZERO_ERROR;
  const std::int32_t count = ucnv_toUChars(converter, units, 8, bytes, sizeof bytes, &status);
  return U_SUCCESS(status) &&
         std::u16string_view(units, static_cast<std::size_t>(count)) == u"\x1C\x7F\x1A";
}

char16_t control_of_its_byte(char16_t unit) {
  switch (unit) {
    case 0x1C:
      return 0x1A;
    case 0x7F:
      return 0x1C;
    case 0x1A:
      return 0x7F;
    default:
      return unit;
  }
}

// Whether the unit may need a correction in an encoding without lone surrogates. Few texts have
// one.
bool may_change(char16_t unit) {
  const bool is_low = (unit & 0xFC00) == 0xDC00;
  const bool is_exchanged = (unit == 0x1A) | (unit == 0x1C) | (unit == 0x7F);
  return is_low | is_exchanged;
}

// The encodings that encode UTF-16 code units; ICU copies these without a check.
bool passes_lone_surrogates(const UConverter* converter) {
  switch (ucnv_getType(converter)) {
    case UCNV_UTF7:
    case UCNV_IMAP_MAILBOX:
    case UCNV_SCSU:
    case UCNV_BOCU1:
    case UCNV_CESU8:
      return true;
    default:
      return false;
  }
}

}  // namespace

IcuDecoder::IcuDecoder(const std::string& encoding, bool one_unit) : one_unit_(one_unit) {
  UErrorCode status = U_ZERO_ERROR;
  converter_.reset(ucnv_open(encoding.c_str(), &status));
  throw_if_out_of_memory(status);
  if (!converter_ || U_FAILURE(status)) {
    throw std::invalid_argument(fmt::format("cannot open encoding '{}'", encoding));
  }
  ucnv_setToUCallBack(converter_.get(), replace_ill_formed, &ill_formed_, nullptr, nullptr,
                      &status);
  passes_lone_surrogates_ = passes_lone_surrogates(converter_.get());
  exchanges_controls_ = exchanges_controls(converter_.get());
  ill_formed_ = 0;  // the bytes of that test belong to no text
}

bool IcuDecoder::decode(DecodeWindow& window, bool final) {
  bool is_done = window.in == window.in_end && !final;
  while (!is_done) {
    // A high surrogate that waits comes before what ICU writes now.
    char16_t* const begin = window.out + (high_ != 0 ? 1 : 0);
    const std::ptrdiff_t room = std::min(window.out_end - begin, kMostUnits);
    const std::ptrdiff_t bytes_with_room = (room - kUnitsPerSequence) / kUnitsPerByte;
    if (bytes_with_room < 1) return false;
    const char* const in_end = window.in + std::min(window.in_end - window.in, bytes_with_room);
    const bool is_last = in_end == window.in_end;
    char16_t* end = begin;
    UErrorCode status = U_ZERO_ERROR;
    ucnv_toUnicode(converter_.get(), &end, begin + room, &window.in, in_end, nullptr,
                   final && is_last ? 1 : 0, &status);
    window.out = settle(window.out, begin, end);
    throw_if_out_of_memory(status);
    const bool is_full = status == U_BUFFER_OVERFLOW_ERROR;
    if (!is_full && U_FAILURE(status)) {
      throw std::runtime_error(fmt::format("cannot decode: {}", u_errorName(status)));
    }
    is_done = is_last && !is_full;
  }
  if (!final || high_ == 0) return true;
  if (!put_replacement(window)) return false;
  high_ = 0;
  return true;
}

// Corrects what ICU wrote to [begin, end) and moves it to [out, returned). A high surrogate that
// waits has a free unit before `begin`, so no unit is overwritten before it is read.
char16_t* IcuDecoder::settle(char16_t* out, const char16_t* begin, const char16_t* end) {
  if (!one_unit_ && !exchanges_controls_ && !passes_lone_surrogates_) return out + (end - begin);
  if (!passes_lone_surrogates_) {  // no high surrogate waits, so the first units need not move
    while (end - begin >= kBlockUnits && !any_in_block(begin, may_change)) {
      begin += kBlockUnits;
      out += kBlockUnits;
    }
  }
  for (; begin != end; ++begin) {
    const char16_t unit = exchanges_controls_ ? control_of_its_byte(*begin) : *begin;
    if (passes_lone_surrogates_) {
      out = settle_surrogate(out, unit);
    } else if (!one_unit_ || !is_low_surrogate(unit)) {
      *out++ = unit;
    }
  }
  return out;
}

// A high surrogate waits for the next unit; without a low one there it is ill-formed.
char16_t* IcuDecoder::settle_surrogate(char16_t* out, char16_t unit) {
  const bool is_pair = high_ != 0 && is_low_surrogate(unit);
  const bool is_lone_low = high_ == 0 && is_low_surrogate(unit);
  if (high_ != 0) *out++ = is_pair ? high_ : kReplacement;
  if ((high_ != 0 && !is_pair) || is_lone_low) ++ill_formed_;
  high_ = is_high_surrogate(unit) ? unit : char16_t{0};
  if (is_lone_low) *out++ = kReplacement;
  const bool comes_out = is_pair ? !one_unit_ : !is_surrogate(unit);
  if (comes_out) *out++ = unit;
  return out;
}

// A copy of the converter gets the end of the input: what it gives then is unfinished. ICU's own
// count of pending bytes does not answer this. It leaves out the character that an ISCII converter
// delays until it has seen the next one, and it counts bytes that only pad a run of UTF-7.
bool IcuDecoder::has_unfinished() const {
  if (high_ != 0) return true;
  UErrorCode status = U_ZERO_ERROR;
  const std::unique_ptr<UConverter, Close> copy(ucnv_clone(converter_.get(), &status));
  throw_if_out_of_memory(status);
  std::size_t ill_formed = 0;
  ucnv_setToUCallBack(copy.get(), replace_ill_formed, &ill_formed, nullptr, nullptr, &status);
  char16_t units[kUnitsPerSequence];
  char16_t* end = units;
  const char* no_bytes = "";
  ucnv_toUnicode(copy.get(), &end, std::end(units), &no_bytes, no_bytes, nullptr, 1, &status);
  return end != units;
}

void IcuDecoder::reset() {
  ucnv_resetToUnicode(converter_.get());
  high_ = 0;
}

bool IcuDecoder::is_single_byte() const {
  return ucnv_getMinCharSize(converter_.get()) == 1 && ucnv_getMaxCharSize(converter_.get()) == 1;
}

}  // namespace textio::standalone
