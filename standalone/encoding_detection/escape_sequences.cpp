// An encoding is a candidate if the text contains one of its designations of a character set, and
// it is the answer if it decodes the whole text. The designation of ASCII proves nothing: terminals
// use it too.
#include <vltextstream/standalone/encoding_detection/escape_sequences.hpp>

#include <memory>

#include <unicode/ucnv.h>

#include <vltextstream/standalone/decoding/icu_status.hpp>

namespace textio::standalone {
namespace {

struct Designation {
  std::string_view sequence;
  const char* encoding;
};
// Half-width kana, JIS X 0212 and the sets of other languages belong to the extensions of
// ISO-2022-JP.
constexpr Designation kDesignations[] = {
    {"\x1B$@", "ISO-2022-JP"},    {"\x1B$B", "ISO-2022-JP"},    {"\x1B(J", "ISO-2022-JP"},
    {"\x1B(I", "ISO-2022-JP-3"},  {"\x1B$(D", "ISO-2022-JP-1"}, {"\x1B$A", "ISO-2022-JP-2"},
    {"\x1B$(C", "ISO-2022-JP-2"}, {"\x1B$)C", "ISO-2022-KR"},   {"\x1B$)A", "ISO-2022-CN"},
    {"\x1B$)G", "ISO-2022-CN"},   {"\x1B$*H", "ISO-2022-CN"},   {"\x1B$)E", "ISO-2022-CN-EXT"},
};

bool decodes(const char* encoding, std::string_view bytes, bool is_whole) {
  constexpr std::size_t kUnits = 1024;
  UErrorCode status = U_ZERO_ERROR;
  const std::unique_ptr<UConverter, decltype(&ucnv_close)> converter(ucnv_open(encoding, &status),
                                                                     ucnv_close);
  throw_if_out_of_memory(status);
  if (!converter || U_FAILURE(status)) return false;
  ucnv_setToUCallBack(converter.get(), UCNV_TO_U_CALLBACK_STOP, nullptr, nullptr, nullptr, &status);
  const char* next = bytes.data();
  char16_t units[kUnits] = {};
  do {
    status = U_ZERO_ERROR;
    char16_t* end = units;
    ucnv_toUnicode(converter.get(), &end, units + kUnits, &next, bytes.data() + bytes.size(),
                   nullptr, static_cast<UBool>(is_whole), &status);
  } while (status == U_BUFFER_OVERFLOW_ERROR);
  throw_if_out_of_memory(status);
  return U_SUCCESS(status);
}

}  // namespace

const char* find_escaped_encoding(std::string_view bytes, bool is_whole) {
  if (bytes.find('\x1B') == std::string_view::npos) return nullptr;
  for (const auto& [sequence, encoding] : kDesignations) {
    const bool is_named = bytes.find(sequence) != std::string_view::npos;
    if (is_named && decodes(encoding, bytes, is_whole)) return encoding;
  }
  return nullptr;
}

}  // namespace textio::standalone
