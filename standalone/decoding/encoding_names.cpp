// ICU's table of aliases is the list of names. Nothing else is ever opened, so that a name cannot
// make ICU look for a file. The four names that need no ICU are known without the table.
//
// The nearest name is the one with the fewest edits (a character inserted, removed or replaced, two
// neighbours exchanged) between the comparison forms: letters and digits, in lower case. Among
// equally near names, well-known encodings come first, then the order of ICU's table decides.
#include <vltextstream/standalone/decoding/encoding_names.hpp>

#include <algorithm>
#include <array>
#include <cstdint>
#include <iterator>
#include <stdexcept>
#include <string_view>
#include <vector>

#include <fmt/format.h>
#include <unicode/ucnv.h>

namespace textio::standalone {
namespace {

constexpr const char* kNamesWithoutTable[] = {"UTF-8", "UTF-16LE", "UTF-16BE", "UTF-16"};

// In the order in which equally near names are suggested.
constexpr const char* kWellKnown[] = {
    "UTF-8",     "UTF-16",       "UTF-16LE",     "UTF-16BE", "UTF-32",    "windows-1252",
    "Shift_JIS", "ISO-8859-1",   "GB18030",      "Big5",     "EUC-JP",    "EUC-KR",
    "US-ASCII",  "windows-1251", "windows-1250", "KOI8-R",   "macintosh", "ISO-8859-15",
};

// ICU's converter for it decodes the same bytes differently if they are cut differently.
constexpr std::string_view kCompoundText = "x11-compound-text";

constexpr std::size_t kMostShownBytes = 64;
constexpr std::size_t kLongestForm = 48;  // far longer than any name in the table

// One of three characters may be wrong, and three of a long name.
constexpr std::size_t kCharactersPerEdit = 3;
constexpr std::size_t kMostEdits = 3;

bool is_digit(char c) { return c >= '0' && c <= '9'; }
bool is_lower(char c) { return c >= 'a' && c <= 'z'; }
bool is_upper(char c) { return c >= 'A' && c <= 'Z'; }

std::string comparison_form(std::string_view name) {
  std::string form;
  for (const char c : name) {
    if (is_upper(c)) form.push_back(static_cast<char>(c - 'A' + 'a'));
    if (is_lower(c) || is_digit(c)) form.push_back(c);
  }
  return form;
}

// --- ICU's table -------------------------------------------------------------------------------

std::string text_or_empty(const char* text) { return text == nullptr ? "" : text; }

// The encoding with this name or alias; empty if there is none.
std::string table_entry(const std::string& name) {
  UErrorCode status = U_ZERO_ERROR;
  const char* const canonical = ucnv_getAlias(name.c_str(), 0, &status);
  return U_SUCCESS(status) ? text_or_empty(canonical) : "";
}

std::string standard_name(const std::string& canonical, const char* standard) {
  UErrorCode status = U_ZERO_ERROR;
  const char* const name = ucnv_getStandardName(canonical.c_str(), standard, &status);
  return U_SUCCESS(status) ? text_or_empty(name) : "";
}

std::vector<std::string> aliases_of(const char* canonical) {
  UErrorCode status = U_ZERO_ERROR;
  std::vector<std::string> aliases;
  const std::uint16_t count = ucnv_countAliases(canonical, &status);
  for (std::uint16_t i = 0; i < count; ++i) {
    status = U_ZERO_ERROR;
    aliases.push_back(text_or_empty(ucnv_getAlias(canonical, i, &status)));
  }
  return aliases;
}

// The best known name of the encoding that `alias` names. Several encodings may share a name of a
// standard; such a name counts only if it names this encoding.
std::string best_spelling(const std::string& alias) {
  const std::string canonical = table_entry(alias);
  for (const char* standard : {"MIME", "IANA"}) {
    std::string name = standard_name(canonical, standard);
    if (!name.empty() && table_entry(name) == canonical) return name;
  }
  return alias;
}

// --- distance ----------------------------------------------------------------------------------

// The number of edits from `a` to `b`, by the usual table of prefixes, of which three rows are
// kept. Both texts have at most kLongestForm characters.
std::size_t edits_between(std::string_view a, std::string_view b) {
  using Row = std::array<std::size_t, kLongestForm + 1>;
  Row rows[3] = {};
  Row* before = &rows[0];
  Row* last = &rows[1];
  Row* next = &rows[2];
  for (std::size_t j = 0; j <= b.size(); ++j) (*last)[j] = j;
  for (std::size_t i = 1; i <= a.size(); ++i) {
    (*next)[0] = i;
    for (std::size_t j = 1; j <= b.size(); ++j) {
      const std::size_t replaced = (*last)[j - 1] + (a[i - 1] == b[j - 1] ? 0 : 1);
      (*next)[j] = std::min({replaced, (*last)[j] + 1, (*next)[j - 1] + 1});
      const bool exchanged = i > 1 && j > 1 && a[i - 1] == b[j - 2] && a[i - 2] == b[j - 1];
      if (exchanged) (*next)[j] = std::min((*next)[j], (*before)[j - 2] + 1);
    }
    Row* const oldest = before;
    before = last;
    last = next;
    next = oldest;
  }
  return (*last)[b.size()];
}

// The position among the well-known encodings; their number for any other.
std::size_t renown(const std::string& spelling) {
  const auto* const place = std::find(std::begin(kWellKnown), std::end(kWellKnown), spelling);
  return static_cast<std::size_t>(place - std::begin(kWellKnown));
}

// --- messages ----------------------------------------------------------------------------------

bool is_continuation(char c) { return (static_cast<unsigned char>(c) & 0xC0) == 0x80; }

// The name as messages show it.
std::string shown(const std::string& name) {
  std::size_t end = std::min(name.size(), kMostShownBytes);
  while (end > 0 && end < name.size() && is_continuation(name[end])) --end;
  std::string text;
  for (const char c : name.substr(0, end)) {
    const auto byte = static_cast<unsigned char>(c);
    const bool is_control = byte < 0x20 || byte == 0x7F;
    text += is_control ? fmt::format("\\x{:02X}", byte) : std::string(1, c);
  }
  return end < name.size() ? text + "..." : text;
}

[[noreturn]] void refuse_unknown(const std::string& name) {
  const std::size_t comma = name.find(',');
  const bool has_options = comma != name.npos && comma > 0;
  const std::string nearest = nearest_encoding(has_options ? name.substr(0, comma) : name);
  const char* const reason = has_options ? ": options behind a comma are not taken" : "";
  const std::string advice = nearest.empty()
                                 ? ". Expected a name such as UTF-8, windows-1252 or Shift_JIS"
                                 : fmt::format(" (did you mean '{}'?)", nearest);
  throw std::invalid_argument(
      fmt::format("unknown encoding '{}'{}{}", shown(name), reason, advice));
}

[[noreturn]] void refuse_compound_text(const std::string& name) {
  throw std::invalid_argument(fmt::format(
      "encoding '{}' is not supported: what its bytes mean would depend on how they are "
      "read. Convert the text to UTF-8 first",
      shown(name)));
}

// ICU ignores everything but letters and digits; other characters are refused here.
bool is_printable_ascii(char c) { return c >= 0x20 && c < 0x7F; }

}  // namespace

std::string nearest_encoding(const std::string& name) {
  // Longer names are not near any name, and comparing them would take long.
  if (name.size() > 2 * kLongestForm) return "";
  const std::string form = comparison_form(name);
  if (form.size() > kLongestForm) return "";
  std::size_t fewest = std::min(form.size() / kCharactersPerEdit, kMostEdits) + 1;
  std::string nearest;
  for (std::int32_t i = 0; i < ucnv_countAvailable(); ++i) {
    const char* const canonical = ucnv_getAvailableName(i);
    if (canonical == kCompoundText) continue;
    for (const std::string& alias : aliases_of(canonical)) {
      const std::string other = comparison_form(alias);
      if (other.size() > kLongestForm) continue;
      const std::size_t edits = edits_between(form, other);
      const bool is_tie = edits == fewest && !nearest.empty();
      if (edits > fewest || (edits == fewest && !is_tie)) continue;
      const std::string spelling = best_spelling(alias);
      if (is_tie && renown(spelling) >= renown(nearest)) continue;
      fewest = edits;
      nearest = spelling;
    }
  }
  return nearest;
}

std::string canonical_encoding(const std::string& name) {
  if (!std::all_of(name.begin(), name.end(), is_printable_ascii)) refuse_unknown(name);
  const bool has_options = name.find(',') != name.npos;
  for (const char* known : kNamesWithoutTable) {
    if (!has_options && ucnv_compareNames(name.c_str(), known) == 0) return known;
  }
  std::string canonical = table_entry(name);
  const bool has_options_of_table = has_options && canonical.find(',') != canonical.npos &&
                                    ucnv_compareNames(name.c_str(), canonical.c_str()) == 0;
  if (canonical.empty() || (has_options && !has_options_of_table)) refuse_unknown(name);
  if (canonical == kCompoundText) refuse_compound_text(name);
  return canonical;
}

}  // namespace textio::standalone
