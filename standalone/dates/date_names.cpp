// The tables are sorted by the first code unit of their names, longer names first. So the names
// that may match are neighbours, and the first match is the longest. A word of 64 bits, one bit for
// each first code unit modulo 64, answers most look-ups without a search: fields that are no dates
// rarely have a letter in the place of a name.
#include <vltextstream/standalone/dates/date_names.hpp>

#include <algorithm>
#include <array>

#include <unicode/uchar.h>

namespace textio::datetime {
namespace {

using View = std::u16string_view;

// --- English -----------------------------------------------------------------------------------

template <std::size_t N>
constexpr std::array<Name, N> sorted(std::array<Name, N> names) {
  std::sort(names.begin(), names.end(), stands_before);
  return names;
}

constexpr auto kMonths = sorted(std::to_array<Name>({
    {u"january", 1, false},   {u"jan", 1, true},        {u"february", 2, false},
    {u"feb", 2, true},        {u"march", 3, false},     {u"mar", 3, true},
    {u"april", 4, false},     {u"apr", 4, true},        {u"may", 5, true},
    {u"june", 6, false},      {u"jun", 6, true},        {u"july", 7, false},
    {u"jul", 7, true},        {u"august", 8, false},    {u"aug", 8, true},
    {u"september", 9, false}, {u"sept", 9, true},       {u"sep", 9, true},
    {u"october", 10, false},  {u"oct", 10, true},       {u"november", 11, false},
    {u"nov", 11, true},       {u"december", 12, false}, {u"dec", 12, true},
}));

constexpr auto kWeekdays = sorted(std::to_array<Name>({
    {u"monday", 1, false},
    {u"mon", 1, true},
    {u"tuesday", 2, false},
    {u"tues", 2, true},
    {u"tue", 2, true},
    {u"wednesday", 3, false},
    {u"wed", 3, true},
    {u"thursday", 4, false},
    {u"thurs", 4, true},
    {u"thur", 4, true},
    {u"thu", 4, true},
    {u"friday", 5, false},
    {u"fri", 5, true},
    {u"saturday", 6, false},
    {u"sat", 6, true},
    {u"sunday", 7, false},
    {u"sun", 7, true},
}));

constexpr auto kHalfDays = sorted(std::to_array<Name>({{u"am", 0, false}, {u"pm", 1, false}}));

constexpr DateNames kEnglish{
    {}, NameTable(kMonths), NameTable(kWeekdays), NameTable(kHalfDays), {}, {}, {}};

// --- folding -----------------------------------------------------------------------------------

constexpr char16_t kNothing = 0xFFFE;  // not a character, so no text has it

constexpr char16_t lower_ascii(char16_t unit) {
  return unit >= u'A' && unit <= u'Z' ? static_cast<char16_t>(unit + (u'a' - u'A')) : unit;
}

constexpr bool is_no_break_or_thin_space(char16_t unit) {
  return unit == 0x00A0 || unit == 0x2009 || unit == 0x202F;
}

constexpr bool is_apostrophe(char16_t unit) { return unit == 0x2019 || unit == 0x02BC; }

// Left-to-right, right-to-left and Arabic letter mark: some locales write them between digits.
constexpr bool is_direction_mark(char16_t unit) {
  return unit == 0x200E || unit == 0x200F || unit == 0x061C;
}

constexpr bool is_turkic_i(char16_t unit) { return unit == 0x0130 || unit == 0x0131; }

bool is_own_digit(char16_t unit, const Folding& folding) {
  return unit >= folding.zero && unit < folding.zero + 10;
}

// A code unit above 127, as the locale folds it.
char16_t folded_unit(char16_t unit, const Folding& folding) {
  if (is_own_digit(unit, folding)) return static_cast<char16_t>(u'0' + (unit - folding.zero));
  if (is_no_break_or_thin_space(unit)) return u' ';
  if (is_apostrophe(unit)) return u'\'';
  if (is_direction_mark(unit)) return kNothing;
  if (folding.turkic && is_turkic_i(unit)) return u'i';
  return static_cast<char16_t>(u_foldCase(unit, U_FOLD_CASE_DEFAULT));
}

// --- the end of a name -------------------------------------------------------------------------

bool ends_word(View text, std::size_t length) {
  if (length == text.size()) return true;
  const char16_t last = text[length - 1];
  const char16_t next = text[length];
  return !(is_letter(last) && is_letter(next)) && !(is_digit(last) && is_digit(next));
}

}  // namespace

std::size_t fold_text(View text, const Folding& folding, char16_t* to) {
  char16_t* end = to;
  for (const char16_t unit : text) {
    const bool as_ascii = unit <= 127 || !folding.of_locale;
    const char16_t result = as_ascii ? lower_ascii(unit) : folded_unit(unit, folding);
    if (as_ascii || result != kNothing) *end++ = result;
  }
  return static_cast<std::size_t>(end - to);
}

std::u16string folded(View text, const Folding& folding) {
  std::u16string result(text.size(), u'\0');
  result.resize(fold_text(text, folding, result.data()));
  return result;
}

const Name* NameTable::find(View text, NameEnd end) const {
  if (text.empty() || (first_units_ & bit_of(text.front())) == 0) return nullptr;
  auto name =
      std::lower_bound(names_.begin(), names_.end(), text.front(),
                       [](const Name& entry, char16_t unit) { return entry.text.front() < unit; });
  for (; name != names_.end() && name->text.front() == text.front(); ++name) {
    const bool fits = text.starts_with(name->text);
    if (fits && (end == NameEnd::anywhere || ends_word(text, name->text.size()))) return &*name;
  }
  return nullptr;
}

const DateNames& english_names() { return kEnglish; }

}  // namespace textio::datetime
