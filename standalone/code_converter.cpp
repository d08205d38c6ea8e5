// ICU does the decoding. What this adds: the byte-order mark is dropped, "UTF-16" and "UTF-32" turn
// into the concrete encoding as soon as their first bytes are known (ICU would forget the order at
// a reset), and all input is consumed whatever the room.
#include "host/code_converter.hpp"

#include <algorithm>
#include <stdexcept>
#include <string_view>

#include <fmt/format.h>
#include <unicode/ucnv.h>
#include <unicode/ucnv_cb.h>

namespace textio {
namespace {

using namespace std::string_view_literals;

constexpr char16_t kByteOrderMark = 0xFEFF;
constexpr char16_t kReplacement = 0xFFFD;
constexpr std::size_t kPivotUnits = 8192;

struct CloseConverter {
  void operator()(UConverter* converter) const { ucnv_close(converter); }
};
using Converter = std::unique_ptr<UConverter, CloseConverter>;

// One U+FFFD for each ill-formed part; ICU's own substitution writes U+001A for some encodings.
void replace_ill_formed(const void* context, UConverterToUnicodeArgs* args, const char* /*bytes*/,
                        std::int32_t /*length*/, UConverterCallbackReason reason,
                        UErrorCode* status) {
  if (reason > UCNV_IRREGULAR) return;
  ++*static_cast<std::size_t*>(const_cast<void*>(context));
  *status = U_ZERO_ERROR;
  ucnv_cbToUWriteUChars(args, &kReplacement, 1, 0, status);
}

Converter open_converter(const std::string& encoding, std::size_t& ill_formed) {
  UErrorCode status = U_ZERO_ERROR;
  const bool has_name = !encoding.empty() && encoding.find('\0') == encoding.npos;
  Converter converter(has_name ? ucnv_open(encoding.c_str(), &status) : nullptr);
  if (!converter || U_FAILURE(status)) {
    throw std::invalid_argument(fmt::format("unknown encoding '{}'", encoding));
  }
  ucnv_setToUCallBack(converter.get(), replace_ill_formed, &ill_formed, nullptr, nullptr, &status);
  return converter;
}

// The encoding's name as ICU has it, without options behind a comma.
std::string canonical_name(UConverter* converter) {
  UErrorCode status = U_ZERO_ERROR;
  const std::string_view name = ucnv_getName(converter, &status);
  return std::string(name.substr(0, name.find(',')));
}

// Some of ICU's tables exchange three control characters, as an old code page for screens did:
// U+001A, which stands for a folded character here, would come from the byte of another one.
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

// The encoding with the byte order that its first bytes tell; big-endian without a mark.
std::string with_byte_order(const std::string& family, std::string_view head) {
  return family + (head == little_mark(family) ? "LE" : "BE");
}

}  // namespace

struct StreamCodeConverter::State {
  // Where the units of one call go: to the caller while there is room, then to `held`.
  struct Output {
    char16_t*& cursor;
    char16_t* end;
  };

  void put(Output out, const char16_t* begin, const char16_t* end) {
    if (at_start && begin != end) {
      at_start = false;
      if (*begin == kByteOrderMark) ++begin;
    }
    for (; begin != end; ++begin) {
      const bool is_second_half = *begin >= 0xDC00 && *begin <= 0xDFFF;
      if (one_unit_per_character && is_second_half) continue;
      const char16_t unit = controls_exchanged ? control_of_its_byte(*begin) : *begin;
      if (out.cursor != out.end) {
        *out.cursor++ = unit;
      } else {
        held.push_back(unit);
      }
    }
  }

  void put_held(Output out) {
    const std::size_t count = std::min(held.size(), static_cast<std::size_t>(out.end - out.cursor));
    out.cursor = std::copy_n(held.begin(), count, out.cursor);
    held.erase(0, count);
  }

  void decode(Output out, std::string_view bytes, bool final) {
    const char* in = bytes.data();
    char16_t pivot[kPivotUnits] = {};
    UErrorCode status = U_BUFFER_OVERFLOW_ERROR;
    while (status == U_BUFFER_OVERFLOW_ERROR) {
      status = U_ZERO_ERROR;
      char16_t* pivot_end = pivot;
      ucnv_toUnicode(converter.get(), &pivot_end, pivot + kPivotUnits, &in,
                     bytes.data() + bytes.size(), nullptr, final ? 1 : 0, &status);
      put(out, pivot, pivot_end);
    }
    if (U_FAILURE(status)) {
      throw std::runtime_error(fmt::format("cannot decode: {}", u_errorName(status)));
    }
  }

  Converter converter;
  bool one_unit_per_character = false;
  bool at_start = true;
  bool controls_exchanged = false;

  // "UTF-16" or "UTF-32" if that is the encoding, whose first bytes tell the order: how many, and
  // those read so far.
  std::string family;
  std::size_t head_bytes = 0;
  std::string head;
  bool order_known = false;
  bool order_marked = false;

  // Units that found no room.
  std::u16string held;

  std::size_t ill_formed = 0;
};

StreamCodeConverter::StreamCodeConverter(const std::string& encoding, bool one_unit_per_character)
    : state_(std::make_unique<State>()) {
  state_->converter = open_converter(encoding, state_->ill_formed);
  state_->one_unit_per_character = one_unit_per_character;
  state_->controls_exchanged = exchanges_controls(state_->converter.get());
  const std::string name = canonical_name(state_->converter.get());
  if (name == "UTF-16" || name == "UTF-32") {
    state_->family = name;
    state_->head_bytes = name == "UTF-16" ? 2 : 4;
  }
}

StreamCodeConverter::~StreamCodeConverter() = default;

bool StreamCodeConverter::convert(char16_t*& out, char16_t* out_end, const char*& in,
                                  const char* in_end, bool final) {
  State& state = *state_;
  const State::Output output{out, out_end};
  state.put_held(output);
  if (!state.family.empty() && !state.order_known) {
    const auto wanted = static_cast<std::ptrdiff_t>(state.head_bytes - state.head.size());
    const char* const head_end = in + std::min(wanted, in_end - in);
    state.head.append(in, head_end);
    in = head_end;
    if (state.head.size() < state.head_bytes && !final) return false;
    state.converter = open_converter(with_byte_order(state.family, state.head), state.ill_formed);
    state.order_known = true;
    state.order_marked = is_mark(state.family, state.head);
    state.decode(output, state.head, final && in == in_end);
    state.head.clear();
  }
  state.decode(output, {in, static_cast<std::size_t>(in_end - in)}, final);
  in = in_end;
  return final && state.held.empty();
}

bool StreamCodeConverter::has_more() const {
  UErrorCode status = U_ZERO_ERROR;
  const State& state = *state_;
  return !state.held.empty() || !state.head.empty() ||
         ucnv_toUCountPending(state.converter.get(), &status) > 0;
}

std::size_t StreamCodeConverter::ill_formed_parts() const { return state_->ill_formed; }

void StreamCodeConverter::reset(bool at_start) {
  ucnv_resetToUnicode(state_->converter.get());
  state_->at_start = at_start;
  if (at_start && !state_->order_marked) state_->order_known = false;
  state_->head.clear();
  state_->held.clear();
}

}  // namespace textio
