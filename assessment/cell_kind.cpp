// The table kRules at the end of this file is the cascade: the first rule that recognises the whole
// cell gives the kind. Most rules never see the cell. One pass over its characters collects two
// sets of bits, the classes of the characters and the rules that do not allow one of them. The
// compiler makes the table of both for each character of ASCII from kRules. Plain numbers, the
// commonest cells, come before all this.
//
// A rule reads the cell with a Cursor. Functions named skip_... either move the cursor past what
// they recognise or return false and leave it where it was.
#include <vltextstream/assessment/cell_kind.hpp>

#include <algorithm>
#include <array>
#include <bit>
#include <cstdint>
#include <iterator>

#include <unicode/uchar.h>

namespace textio::assessment {
namespace {

using View = std::u16string_view;

// --- classes of characters ---------------------------------------------------------------------

using Marks = std::uint32_t;  // a set of the classes below

constexpr Marks kLetter = 1U << 0;
constexpr Marks kDigit = 1U << 1;  // decimal digits of any script
constexpr Marks kMark = 1U << 2;   // combining marks and joiners, which belong to the letter before
constexpr Marks kBlank = 1U << 3;
constexpr Marks kLineBreak = 1U << 4;
constexpr Marks kPoint = 1U << 5;
constexpr Marks kComma = 1U << 6;
constexpr Marks kColon = 1U << 7;
constexpr Marks kSlash = 1U << 8;
constexpr Marks kHyphen = 1U << 9;
constexpr Marks kPlus = 1U << 10;
constexpr Marks kMinus = 1U << 11;  // U+2212; the sign of the keyboard is the hyphen
constexpr Marks kAt = 1U << 12;
constexpr Marks kCodeMark = 1U << 13;    // _ and #
constexpr Marks kApostrophe = 1U << 14;  // ' and U+2019
constexpr Marks kPercent = 1U << 15;
constexpr Marks kCurrency = 1U << 16;
constexpr Marks kOpenParen = 1U << 17;
constexpr Marks kCloseParen = 1U << 18;
constexpr Marks kOpening = 1U << 19;   // other brackets and quotes that can begin a sentence
constexpr Marks kRelation = 1U << 20;  // < > =
constexpr Marks kProse = 1U << 21;     // other everyday punctuation and symbols
constexpr Marks kBrace = 1U << 22;     // { and }
constexpr Marks kOutside = 1U << 23;   // U+001A for a character outside the BMP
constexpr Marks kOdd = 1U << 24;       // what seldom occurs in prose: | ~ ^ ` and the backslash
constexpr Marks kControl = 1U << 25;   // control characters, tabs among them, and private ones
constexpr Marks kAnything = (1U << 26) - 1;

struct ClassOfUnits {
  View units;
  Marks marks;
};

constexpr ClassOfUnits kAsciiMarks[] = {
    {u" ", kBlank},      {u"\n\r", kLineBreak}, {u".", kPoint},      {u",", kComma},
    {u":", kColon},      {u"/", kSlash},        {u"-", kHyphen},     {u"+", kPlus},
    {u"@", kAt},         {u"_#", kCodeMark},    {u"'", kApostrophe}, {u"%", kPercent},
    {u"$", kCurrency},   {u"(", kOpenParen},    {u")", kCloseParen}, {u"[\"", kOpening},
    {u"<>=", kRelation}, {u"!&*;?]", kProse},   {u"{}", kBrace},     {u"|~^`\\", kOdd},
    {u"\x1A", kOutside},
};

constexpr Marks class_of_ascii(char16_t unit) {
  if (unit >= u'0' && unit <= u'9') return kDigit;
  if ((unit >= u'a' && unit <= u'z') || (unit >= u'A' && unit <= u'Z')) return kLetter;
  for (const ClassOfUnits& each : kAsciiMarks) {
    if (each.units.find(unit) != View::npos) return each.marks;
  }
  return kControl;
}

constexpr std::size_t kAsciiUnits = 128;

constexpr std::array<Marks, kAsciiUnits> kAsciiClasses = [] {
  std::array<Marks, kAsciiUnits> classes{};
  for (char16_t unit = 0; unit < kAsciiUnits; ++unit) classes[unit] = class_of_ascii(unit);
  return classes;
}();

// The letters of the commonest scripts, Latin, Cyrillic and Han, without a look-up of properties.
constexpr bool is_common_letter(char16_t unit) {
  return (unit >= 0x00C0 && unit <= 0x024F && unit != 0x00D7 && unit != 0x00F7) ||
         (unit >= 0x0400 && unit <= 0x0481) || (unit >= 0x4E00 && unit <= 0x9FA5);
}

Marks class_of_category(char16_t unit) {
  switch (u_charType(unit)) {
    case U_UPPERCASE_LETTER:
    case U_LOWERCASE_LETTER:
    case U_TITLECASE_LETTER:
    case U_MODIFIER_LETTER:
    case U_OTHER_LETTER:
      return kLetter;
    case U_NON_SPACING_MARK:
    case U_ENCLOSING_MARK:
    case U_COMBINING_SPACING_MARK:
      return kMark;
    case U_DECIMAL_DIGIT_NUMBER:
      return kDigit;
    case U_SPACE_SEPARATOR:
      return kBlank;
    case U_CURRENCY_SYMBOL:
      return kCurrency;
    // Some languages begin a quotation with what closes it in others.
    case U_START_PUNCTUATION:
    case U_INITIAL_PUNCTUATION:
    case U_FINAL_PUNCTUATION:
      return kOpening;
    case U_LETTER_NUMBER:
    case U_OTHER_NUMBER:
    case U_DASH_PUNCTUATION:
    case U_CONNECTOR_PUNCTUATION:
    case U_END_PUNCTUATION:
    case U_OTHER_PUNCTUATION:
    case U_MATH_SYMBOL:
    case U_MODIFIER_SYMBOL:
    case U_OTHER_SYMBOL:
      return kProse;
    default:
      return kControl;
  }
}

Marks class_of_other(char16_t unit) {
  if (is_common_letter(unit)) return kLetter;
  switch (unit) {
    case 0x00AD:  // soft hyphen
    case 0x200C:  // joiners, and the marks of the direction of writing
    case 0x200D:
    case 0x200E:
    case 0x200F:
      return kMark;
    case 0x2010:
    case 0x2011:
      return kHyphen;
    case 0x2019:
      return kApostrophe;
    case 0x2030:
      return kPercent;
    case 0x2212:
      return kMinus;
    case 0x00A1:  // inverted marks begin a sentence
    case 0x00BF:
      return kOpening;
    default:
      return class_of_category(unit);
  }
}

Marks class_of(char16_t unit) {
  return unit < kAsciiUnits ? kAsciiClasses[unit] : class_of_other(unit);
}

Marks classes_in(View text) {
  Marks marks = 0;
  for (const char16_t unit : text) marks |= class_of(unit);
  return marks;
}

bool has_class(char16_t unit, Marks marks) { return (class_of(unit) & marks) != 0; }

// The units of a literal, which becomes a set by itself: those of ASCII, and at most one other.
class UnitSet {
 public:
  template <std::size_t N>
  consteval UnitSet(const char16_t (&units)[N]) {
    for (const char16_t unit : View(units, N - 1)) add(unit);
  }

  constexpr bool has(char16_t unit) const {
    if (unit >= kAsciiUnits) return unit == other_;
    return ((unit < kWordUnits ? low_ : high_) >> (unit % kWordUnits) & 1U) != 0;
  }

 private:
  static constexpr unsigned kWordUnits = 64;

  constexpr void add(char16_t unit) {
    if (unit >= kAsciiUnits) {
      other_ = unit;
    } else {
      (unit < kWordUnits ? low_ : high_) |= std::uint64_t{1} << (unit % kWordUnits);
    }
  }

  std::uint64_t low_ = 0;
  std::uint64_t high_ = 0;
  char16_t other_ = 0;
};

bool is_one_of_classes(View text, Marks allowed) { return (classes_in(text) & ~allowed) == 0; }

// Lower case of what occurs in the names below.
constexpr char16_t folded(char16_t unit) {
  const bool is_capital = (unit >= u'A' && unit <= u'Z') || unit == 0x00C4;
  return is_capital ? static_cast<char16_t>(unit + 0x20) : unit;
}

bool equals_name(View text, View lower_case_name) {
  return std::equal(text.begin(), text.end(), lower_case_name.begin(), lower_case_name.end(),
                    [](char16_t a, char16_t b) { return folded(a) == b; });
}

constexpr char16_t unchanged(char16_t unit) { return unit; }

// A list of names in buckets by their first units. A text that is not in it seldom has both the
// first unit and the length of a name. `Fold` makes the units of a text comparable with the names.
template <std::size_t N, char16_t (*Fold)(char16_t) = folded>
class NameSet {
 public:
  static constexpr std::size_t kAbsent = N;

  consteval explicit NameSet(const View (&names)[N]) {
    std::uint8_t count = 0;
    for (std::size_t bucket = 0; bucket < kBuckets; ++bucket) {
      starts_[bucket] = count;
      for (std::size_t i = 0; i < N; ++i) {
        if (names[i].empty() || bucket_of(names[i].front()) != bucket) continue;
        names_[count] = names[i];
        places_[count] = static_cast<std::uint8_t>(i);
        lengths_[bucket] |= 1U << names[i].size();
        ++count;
      }
    }
    starts_[kBuckets] = count;
  }

  // The place of `text` in the list; kAbsent if it is not there.
  constexpr std::size_t find(View text) const {
    if (text.empty() || text.size() > kMostUnits) return kAbsent;
    const std::size_t bucket = bucket_of(Fold(text.front()));
    if ((lengths_[bucket] >> text.size() & 1U) == 0) return kAbsent;
    for (std::size_t i = starts_[bucket]; i < starts_[bucket + 1]; ++i) {
      if (is_equal(text, names_[i])) return places_[i];
    }
    return kAbsent;
  }

  bool has(View text) const { return find(text) != kAbsent; }

 private:
  static constexpr std::size_t kBuckets = 32;  // one for each letter, and those of other marks
  static constexpr std::size_t kMostUnits = 31;

  static constexpr std::size_t bucket_of(char16_t unit) { return unit % kBuckets; }

  static constexpr bool is_equal(View text, View name) {
    if (text.size() != name.size()) return false;
    for (std::size_t i = 0; i < text.size(); ++i) {
      if (Fold(text[i]) != name[i]) return false;
    }
    return true;
  }

  std::array<View, N> names_{};
  std::array<std::uint8_t, N> places_{};             // of these names in the list
  std::array<std::uint8_t, kBuckets + 1> starts_{};  // of the buckets in names_
  std::array<std::uint32_t, kBuckets> lengths_{};    // of the names, a bit for each length
};

constexpr int kNoDigit = -1;

int digit_value(char16_t unit) {
  if (unit < kAsciiUnits) return unit >= u'0' && unit <= u'9' ? unit - u'0' : kNoDigit;
  return u_charDigitValue(unit);
}

bool is_digit(char16_t unit) { return digit_value(unit) != kNoDigit; }

bool is_hex_digit(char16_t unit) {
  return (unit >= u'0' && unit <= u'9') || (folded(unit) >= u'a' && folded(unit) <= u'f');
}

bool is_letter(char16_t unit) { return has_class(unit, kLetter); }

bool is_letter_or_digit(char16_t unit) { return has_class(unit, kLetter | kDigit); }

// --- the cursor --------------------------------------------------------------------------------

class Cursor {
 public:
  explicit Cursor(View text) : at_(text.data()), end_(text.data() + text.size()) {}

  bool at_end() const { return at_ == end_; }
  std::size_t left() const { return static_cast<std::size_t>(end_ - at_); }
  View rest() const { return {at_, left()}; }

  // The code unit `ahead` places on; U+0000, which is in none of the rules, past the end.
  char16_t unit(std::size_t ahead = 0) const { return ahead < left() ? at_[ahead] : u'\0'; }

  void skip_units(std::size_t count) { at_ += count; }

  bool skip(char16_t wanted) {
    if (at_end() || *at_ != wanted) return false;
    ++at_;
    return true;
  }

  bool skip_one_of(UnitSet set) {
    if (at_end() || !set.has(*at_)) return false;
    ++at_;
    return true;
  }

  bool skip_class(Marks marks) {
    if (at_end() || !has_class(*at_, marks)) return false;
    ++at_;
    return true;
  }

  std::size_t skip_all(Marks marks) {
    const char16_t* const start = at_;
    while (skip_class(marks)) {
    }
    return static_cast<std::size_t>(at_ - start);
  }

  bool skip_sign() { return skip_one_of(u"+-\u2212"); }
  std::size_t skip_blanks() { return skip_all(kBlank); }
  std::size_t skip_digits() { return skip_all(kDigit); }

  // The letters from here on.
  View letters() const {
    const char16_t* end = at_;
    while (end != end_ && is_letter(*end)) ++end;
    return {at_, static_cast<std::size_t>(end - at_)};
  }

 private:
  const char16_t* at_;
  const char16_t* end_;
};

template <typename Skip>
bool attempt(Cursor& cursor, Skip skip) {
  Cursor ahead = cursor;
  if (!skip(ahead)) return false;
  cursor = ahead;
  return true;
}

// A run of digits. The value is that of the first 8 digits; longer runs have no use for one.
struct Count {
  std::size_t digits = 0;
  int value = 0;

  bool has_digits(std::size_t least, std::size_t most) const {
    return digits >= least && digits <= most;
  }
  bool is_within(int least, int most) const { return value >= least && value <= most; }
};

Count take_count(Cursor& cursor) {
  constexpr std::size_t kCountedDigits = 8;
  Count count;
  for (int digit = 0; (digit = digit_value(cursor.unit())) != kNoDigit; cursor.skip_units(1)) {
    ++count.digits;
    if (count.digits <= kCountedDigits) count.value = count.value * 10 + digit;
  }
  return count;
}

// A run of exactly two digits whose value is at most `most`.
bool skip_two_digits(Cursor& cursor, int most) {
  return attempt(cursor, [most](Cursor& c) {
    const Count count = take_count(c);
    return count.digits == 2 && count.value <= most;
  });
}

// --- the rules ---------------------------------------------------------------------------------

// The least and the most units of the cells that a rule recognises.
struct Lengths {
  std::uint16_t least;
  std::uint16_t most;
};

constexpr Lengths kAnyLength{1, kLongestExaminedCell};

// A cell without blanks at its ends, and the classes of its characters.
struct Cell {
  View text;
  Marks marks;

  bool has(Marks wanted) const { return (marks & wanted) != 0; }
};

CellKind kind_if(bool holds, CellKind kind) { return holds ? kind : CellKind::unknown; }

CellKind digits_kind(const Cell&) { return CellKind::integer; }

// Keywords.

constexpr NameSet kKeywords({
    u"n/a",    u"na",        u"n.a.",     u"null",      u"none",      u"nil",
    u"#n/a",   u"<na>",      u"\\n",      u"-",         u"--",        u"---",
    u"\u2013", u"\u2014",    u"?",        u".",         u"..",        u"...",
    u"true",   u"false",     u"yes",      u"no",  //
    u"inf",    u"+inf",      u"-inf",     u"\u2212inf", u"nan",       u"+nan",
    u"-nan",   u"\u2212nan", u"infinity", u"+infinity", u"-infinity", u"\u2212infinity",
});
constexpr std::size_t kFirstBoolean = kKeywords.find(u"true");
constexpr std::size_t kFirstNotFinite = kKeywords.find(u"inf");
constexpr Lengths kKeywordLengths{1, 9};  // "-infinity"

CellKind keyword_kind(const Cell& cell) {
  const std::size_t place = kKeywords.find(cell.text);
  if (place == kKeywords.kAbsent) return CellKind::unknown;
  if (place < kFirstBoolean) return CellKind::missing;
  return place < kFirstNotFinite ? CellKind::boolean : CellKind::decimal;
}

// Words.

CellKind word_kind(const Cell& cell) {
  if (!cell.has(~kLetter)) return CellKind::word;
  bool follows_letter = false;
  for (const char16_t unit : cell.text) {
    const Marks marks = class_of(unit);
    if (marks == kMark && follows_letter) continue;
    const bool letter = marks == kLetter;
    if (!letter && !follows_letter) return CellKind::unknown;
    follows_letter = letter;
  }
  return kind_if(follows_letter, CellKind::word);
}

// Numbers.

// Blanks, a point, a comma, or one of the apostrophes.
bool is_group_mark(char16_t unit) {
  return has_class(unit, kBlank | kPoint | kComma | kApostrophe);
}

bool skip_group(Cursor& cursor, char16_t mark, std::size_t digits) {
  return attempt(cursor, [=](Cursor& c) { return c.skip(mark) && take_count(c).digits == digits; });
}

// A decimal mark other than `group_mark`, with digits after it.
bool skip_fraction_after_groups(Cursor& cursor, char16_t group_mark) {
  return attempt(cursor, [=](Cursor& c) {
    return c.unit() != group_mark && c.skip_one_of(u".,") && c.skip_digits() > 0;
  });
}

// ",23,456" after the "1" of "1,23,456".
bool skip_indian_groups(Cursor& cursor) {
  return attempt(cursor, [](Cursor& c) {
    std::size_t pairs = 0;
    while (skip_group(c, u',', 2)) ++pairs;
    return pairs > 0 && skip_group(c, u',', 3);
  });
}

std::size_t skip_groups_of_three(Cursor& cursor, char16_t mark) {
  std::size_t groups = 0;
  while (skip_group(cursor, mark, 3)) ++groups;
  return groups;
}

// "1,234", "1.234,56", "1 234 567": integer or decimal. A zero at the start is never grouped, and
// "1.234" is more often a decimal.
CellKind take_grouped(Cursor& cursor) {
  Cursor ahead = cursor;
  const bool has_leading_zero = digit_value(ahead.unit()) == 0;
  const std::size_t head = ahead.skip_digits();
  const char16_t mark = ahead.unit();
  if (has_leading_zero || head == 0 || head > 3 || !is_group_mark(mark)) return CellKind::unknown;

  std::size_t groups = skip_groups_of_three(ahead, mark);
  if (groups == 0 && mark == u',' && head <= 2 && skip_indian_groups(ahead)) groups = 2;
  if (groups == 0) return CellKind::unknown;
  const bool has_fraction = skip_fraction_after_groups(ahead, mark);
  if (groups == 1 && mark == u'.' && !has_fraction) return CellKind::unknown;
  cursor = ahead;
  return has_fraction ? CellKind::decimal : CellKind::integer;
}

// "12", "3.5", "3,5", ".5", "5.". A comma needs digits after it: "5," is a cell cut too late.
CellKind take_plain(Cursor& cursor) {
  Cursor ahead = cursor;
  const std::size_t whole = ahead.skip_digits();
  const bool has_fraction = attempt(ahead, [whole](Cursor& c) {
    const bool may_end_here = whole > 0 && c.unit() == u'.';
    return c.skip_one_of(u".,") && (c.skip_digits() > 0 || may_end_here);
  });
  if (whole == 0 && !has_fraction) return CellKind::unknown;
  cursor = ahead;
  return has_fraction ? CellKind::decimal : CellKind::integer;
}

bool skip_exponent(Cursor& cursor) {
  constexpr std::size_t kMostDigits = 4;
  return attempt(cursor, [](Cursor& c) {
    if (!c.skip_one_of(u"eEdD")) return false;
    c.skip_sign();
    return take_count(c).has_digits(1, kMostDigits);
  });
}

// Digits before anything that neither groups them nor begins a fraction.
CellKind take_whole(Cursor& cursor) {
  Cursor ahead = cursor;
  if (ahead.skip_digits() == 0 || is_group_mark(ahead.unit())) return CellKind::unknown;
  cursor = ahead;
  return CellKind::integer;
}

// A number without a sign: integer, decimal, scientific, or unknown if there is none.
CellKind take_magnitude(Cursor& cursor) {
  if (!has_class(cursor.unit(), kDigit | kPoint | kComma)) return CellKind::unknown;
  CellKind kind = take_whole(cursor);
  if (kind == CellKind::unknown) kind = take_grouped(cursor);
  if (kind == CellKind::unknown) kind = take_plain(cursor);
  if (kind == CellKind::unknown) return kind;
  return skip_exponent(cursor) ? CellKind::scientific : kind;
}

bool skip_one_blank(Cursor& cursor) { return cursor.skip_class(kBlank); }

bool is_in_parentheses(View text) {
  return text.size() > 2 && text.front() == u'(' && text.back() == u')';
}

// The inside of parentheses around the whole text, which accountants write for a minus sign.
View without_parentheses(View text) {
  return is_in_parentheses(text) ? text.substr(1, text.size() - 2) : text;
}

// "1+2i", "1.5 - 2.5j", "3i".
bool is_complex(View text) {
  Cursor cursor(without_parentheses(text));
  const auto skip_unit_at_end = [](Cursor& c) { return c.skip_one_of(u"ij") && c.at_end(); };
  cursor.skip_sign();
  if (take_magnitude(cursor) == CellKind::unknown) return false;
  if (attempt(cursor, skip_unit_at_end)) return true;
  skip_one_blank(cursor);
  if (!cursor.skip_sign()) return false;
  skip_one_blank(cursor);
  take_magnitude(cursor);
  return skip_unit_at_end(cursor);
}

// Some accounting systems write the minus sign after the amount: "1.234,56-".
bool skip_final_minus(Cursor& cursor) {
  return attempt(cursor, [](Cursor& c) { return c.skip(u'-') && c.at_end(); });
}

CellKind number_kind(const Cell& cell) {
  if (cell.has(kLetter) && is_complex(cell.text)) return CellKind::complex;
  Cursor cursor(without_parentheses(cell.text));
  const bool has_sign = cursor.skip_sign();
  const CellKind kind = take_magnitude(cursor);
  if (kind == CellKind::unknown || cursor.at_end()) return kind;
  if (kind == CellKind::decimal && !has_sign && skip_final_minus(cursor)) return kind;
  skip_one_blank(cursor);
  return kind_if(cursor.skip_class(kPercent) && cursor.at_end(), CellKind::percentage);
}

// Money.

constexpr View kCurrencyCodeList[] = {
    u"AED", u"ARS", u"AUD", u"BDT", u"BGN", u"BRL", u"BTC", u"CAD", u"CHF", u"CLP", u"CNY", u"COP",
    u"CZK", u"DEM", u"DKK", u"EGP", u"ETH", u"EUR", u"FRF", u"GBP", u"GHS", u"HKD", u"HRK", u"HUF",
    u"IDR", u"ILS", u"INR", u"ISK", u"JPY", u"KES", u"KRW", u"KWD", u"KZT", u"LKR", u"MAD", u"MXN",
    u"MYR", u"NGN", u"NOK", u"NZD", u"PEN", u"PHP", u"PKR", u"PLN", u"QAR", u"RMB", u"RON", u"RSD",
    u"RUB", u"SAR", u"SEK", u"SGD", u"THB", u"TRY", u"TWD", u"UAH", u"USD", u"UYU", u"VND", u"ZAR"};

// Abbreviations of names; a point may follow.
constexpr View kCurrencyNameList[] = {u"kr", u"Kr", u"Fr",      u"SFr",
                                      u"Rs", u"Ft", u"z\u0142", u"K\u010D"};

constexpr NameSet<std::size(kCurrencyCodeList), unchanged> kCurrencyCodes(kCurrencyCodeList);
constexpr NameSet<std::size(kCurrencyNameList), unchanged> kCurrencyNames(kCurrencyNameList);

// "US$", "R$": up to two capital letters before the sign of the dollar.
bool skip_dollar_of_a_country(Cursor& cursor) {
  constexpr std::size_t kMostLetters = 2;
  return attempt(cursor, [](Cursor& c) {
    const View letters = c.letters();
    c.skip_units(letters.size());
    return letters.size() <= kMostLetters && c.skip(u'$');
  });
}

bool skip_currency(Cursor& cursor) {
  if (cursor.skip_class(kCurrency)) return true;
  const View name = cursor.letters();
  if (name.empty() || name.size() > 3) return false;
  if (skip_dollar_of_a_country(cursor)) return true;
  if (kCurrencyCodes.has(name)) {
    cursor.skip_units(name.size());
    return true;
  }
  if (!kCurrencyNames.has(name)) return false;
  cursor.skip_units(name.size());
  cursor.skip(u'.');
  return true;
}

// "1.2bn", "5M", "10k" after a currency.
bool skip_scale(Cursor& cursor) {
  static constexpr NameSet kScales({u"k", u"m", u"b", u"mn", u"mm", u"mio", u"bn", u"mrd", u"tn"});
  return attempt(cursor, [](Cursor& c) {
    skip_one_blank(c);
    const View letters = c.letters();
    c.skip_units(letters.size());
    return kScales.has(letters);
  });
}

bool skip_amount(Cursor& cursor) {
  const CellKind kind = take_magnitude(cursor);
  return kind == CellKind::integer || kind == CellKind::decimal;
}

// "$5", "- EUR 5", "$ -5", "$(5)": whether all of the text is a currency and an amount.
bool is_currency_and_amount(View text) {
  Cursor cursor(text);
  const bool has_sign = cursor.skip_sign();
  if (!skip_currency(cursor)) return false;
  skip_one_blank(cursor);
  Cursor amount(without_parentheses(cursor.rest()));
  if (!has_sign) amount.skip_sign();
  if (!skip_amount(amount)) return false;
  skip_scale(amount);
  return amount.at_end() || skip_final_minus(amount);
}

bool is_amount_and_currency(View text) {
  Cursor cursor(text);
  cursor.skip_sign();
  if (!skip_amount(cursor)) return false;
  skip_one_blank(cursor);
  return skip_currency(cursor) && cursor.at_end();
}

CellKind money_kind(const Cell& cell) {
  const View text = without_parentheses(cell.text);
  return kind_if(is_currency_and_amount(text) || is_amount_and_currency(text), CellKind::money);
}

// Times.

// "am", "PM", "a.m.", with or without a blank before it.
bool skip_half_of_day(Cursor& cursor) {
  return attempt(cursor, [](Cursor& c) {
    skip_one_blank(c);
    if (!c.skip_one_of(u"aApP")) return false;
    const bool has_points = c.skip(u'.');
    return c.skip_one_of(u"mM") && (!has_points || c.skip(u'.')) && !is_letter(c.unit());
  });
}

// "+01:00", "-0330", "+01".
bool skip_offset(Cursor& cursor) {
  constexpr int kMostHours = 14;
  constexpr int kMostMinutes = 59;
  return attempt(cursor, [](Cursor& c) {
    skip_one_blank(c);
    if (!c.skip_sign() || !is_digit(c.unit(1))) return false;
    const bool has_four_digits = is_digit(c.unit(2)) && is_digit(c.unit(3));
    if (has_four_digits) {
      const Count count = take_count(c);
      return count.digits == 4 && count.value / 100 <= kMostHours &&
             count.value % 100 <= kMostMinutes;
    }
    if (!skip_two_digits(c, kMostHours)) return false;
    return !c.skip(u':') || skip_two_digits(c, kMostMinutes);
  });
}

bool skip_named_zone(Cursor& cursor) {
  static constexpr NameSet kZones({u"utc",  u"gmt",  u"cet",  u"cest", u"mez", u"mesz", u"wet",
                                   u"bst",  u"eet",  u"est",  u"edt",  u"cst", u"cdt",  u"mst",
                                   u"mdt",  u"pst",  u"pdt",  u"ist",  u"jst", u"msk",  u"aest",
                                   u"eest", u"west", u"aedt", u"z"});
  return attempt(cursor, [](Cursor& c) {
    skip_one_blank(c);
    const View name = c.letters();
    c.skip_units(name.size());
    return kZones.has(name);
  });
}

void skip_zone_if_any(Cursor& cursor) {
  if (skip_named_zone(cursor)) return;
  skip_offset(cursor);
}

// A point or comma and up to nine digits.
bool skip_fraction_of_second(Cursor& cursor) {
  constexpr std::size_t kMostDigits = 9;
  return attempt(cursor, [](Cursor& c) {
    return c.skip_one_of(u".,") && take_count(c).has_digits(1, kMostDigits);
  });
}

constexpr int kMostMinutes = 59;
constexpr int kMostSeconds = 60;  // with a leap second

// ":mm:ss.f", ":mm:ss", ":mm.f" or ":mm".
bool skip_minutes_and_seconds(Cursor& cursor) {
  const auto skip_part = [](int most) {
    return [most](Cursor& c) { return c.skip(u':') && skip_two_digits(c, most); };
  };
  if (!attempt(cursor, skip_part(kMostMinutes))) return false;
  const bool has_seconds = attempt(cursor, skip_part(kMostSeconds));
  if (has_seconds || cursor.unit() == u'.') skip_fraction_of_second(cursor);
  return true;
}

// "15:04", "3:04:05.25 pm", "5pm", with or without a zone.
bool skip_time(Cursor& cursor) {
  constexpr int kMostHours = 24;
  constexpr int kMostHoursOfHalf = 12;
  return attempt(cursor, [](Cursor& c) {
    const Count hours = take_count(c);
    if (!hours.has_digits(1, 2) || hours.value > kMostHours) return false;
    const bool has_minutes = skip_minutes_and_seconds(c);
    const bool has_half = hours.value <= kMostHoursOfHalf && skip_half_of_day(c);
    if (!has_minutes && !has_half) return false;
    skip_zone_if_any(c);
    return true;
  });
}

// Dates.

constexpr NameSet kMonths({u"january",  u"february",  u"march",      u"april",     u"may",
                           u"june",     u"july",      u"august",     u"september", u"october",
                           u"november", u"december",  u"jan",        u"feb",       u"mar",
                           u"apr",      u"jun",       u"jul",        u"aug",       u"sep",
                           u"sept",     u"oct",       u"nov",        u"dec",       u"januar",
                           u"februar",  u"m\u00E4rz", u"maerz",      u"mai",       u"juni",
                           u"juli",     u"oktober",   u"dezember",   u"m\u00E4r",  u"mrz",
                           u"okt",      u"dez",       u"j\u00E4nner"});

constexpr NameSet kWeekdays({u"monday",     u"tuesday", u"wednesday", u"thursday",  u"friday",
                             u"saturday",   u"sunday",  u"mon",       u"tue",       u"tues",
                             u"wed",        u"thu",     u"thur",      u"thurs",     u"fri",
                             u"sat",        u"sun",     u"montag",    u"dienstag",  u"mittwoch",
                             u"donnerstag", u"freitag", u"samstag",   u"sonnabend", u"sonntag",
                             u"mo",         u"di",      u"mi",        u"do",        u"fr",
                             u"sa",         u"so"});

template <std::size_t N>
bool skip_name(Cursor& cursor, const NameSet<N>& names) {
  const View name = cursor.letters();
  if (!names.has(name)) return false;
  cursor.skip_units(name.size());
  return true;
}

// A month, with a point if it is short: "Jan."
bool skip_month(Cursor& cursor) {
  if (!skip_name(cursor, kMonths)) return false;
  cursor.skip(u'.');
  return true;
}

// Blanks, or one of "-/." or a comma with or without blanks after it.
bool skip_date_separator(Cursor& cursor) {
  const bool has_mark = cursor.skip_one_of(u"-/.,");
  return cursor.skip_blanks() > 0 || has_mark;
}

constexpr int kDays = 31;
constexpr int kMonthsOfYear = 12;

bool is_day(const Count& count) { return count.has_digits(1, 2) && count.is_within(1, kDays); }

// A day and a month in either order.
bool are_day_and_month(const Count& a, const Count& b) {
  return is_day(a) && is_day(b) && std::min(a.value, b.value) <= kMonthsOfYear;
}

// A year of this and the last century, for short forms that could be anything else.
bool is_recent_year(const Count& year) { return year.is_within(1900, 2099); }

// "2020", "20" or "'20". The "20" of "20:15" is an hour.
bool skip_year(Cursor& cursor) {
  return attempt(cursor, [](Cursor& c) {
    c.skip_class(kApostrophe);
    const Count year = take_count(c);
    return year.digits == 4 || (year.digits == 2 && c.unit() != u':');
  });
}

bool skip_year_after_separator(Cursor& cursor) {
  return attempt(cursor, [](Cursor& c) { return skip_date_separator(c) && skip_year(c); });
}

// "2020-01-12" and "2020-01" after the year.
bool skip_rest_after_year(Cursor& cursor, const Count& year) {
  const char16_t mark = cursor.unit();
  if (!cursor.skip_one_of(u"-/.")) return false;
  const Count second = take_count(cursor);
  const bool has_third = cursor.unit() == mark;
  if (!has_third) {
    const bool is_month = second.digits == 2 && second.is_within(1, kMonthsOfYear);
    return is_recent_year(year) && is_month;
  }
  cursor.skip_units(1);
  return are_day_and_month(second, take_count(cursor));
}

// "-Jan-12", "Jan12", " Jan" after the year.
bool skip_month_after_year(Cursor& cursor) {
  skip_date_separator(cursor);
  if (!skip_month(cursor)) return false;
  attempt(cursor, [](Cursor& c) {
    skip_date_separator(c);
    return is_day(take_count(c)) && c.unit() != u':';
  });
  return true;
}

// U+5E74, U+6708 and U+65E5 for year, month and day.
bool skip_east_asian_rest(Cursor& cursor) {
  if (!cursor.skip(0x5E74)) return false;
  const Count month = take_count(cursor);
  if (!month.has_digits(1, 2) || !month.is_within(1, kMonthsOfYear)) return false;
  if (!cursor.skip(0x6708)) return false;
  attempt(cursor, [](Cursor& c) { return is_day(take_count(c)) && c.skip(0x65E5); });
  return true;
}

// "/01/2020", "-1-20" and "/2020" after the first number.
bool skip_rest_after_day(Cursor& cursor, const Count& first) {
  const char16_t mark = cursor.unit();
  if (!cursor.skip_one_of(u"-/.")) return false;
  const Count second = take_count(cursor);
  if (second.digits == 4) return is_recent_year(second) && first.is_within(1, kMonthsOfYear);
  if (!are_day_and_month(first, second) || !cursor.skip(mark)) return false;
  const Count year = take_count(cursor);
  return year.digits == 2 || year.digits == 4;
}

void skip_ordinal_if_any(Cursor& cursor) {
  static constexpr NameSet kOrdinals({u"st", u"nd", u"rd", u"th"});
  const View letters = cursor.letters();
  if (kOrdinals.has(letters)) cursor.skip_units(letters.size());
}

// What a date says about its year: "2 Jan" has none.
enum class DateForm { none, without_year, with_year };

DateForm with_year_if(bool holds) { return holds ? DateForm::with_year : DateForm::none; }

// " January 2020", "-Jan-20", "Jan2020", ". Jan" after the day.
DateForm take_month_after_day(Cursor& cursor) {
  skip_ordinal_if_any(cursor);
  const bool is_separate = skip_date_separator(cursor);
  if (!skip_month(cursor)) return DateForm::none;
  if (skip_year_after_separator(cursor)) return DateForm::with_year;
  if (is_separate) return DateForm::without_year;
  return skip_year(cursor) ? DateForm::with_year : DateForm::none;
}

// "Jan 12, 2020", "January 2020", "Jan 12".
DateForm take_date_from_month(Cursor& cursor) {
  if (!skip_month(cursor)) return DateForm::none;
  if (!skip_date_separator(cursor)) return DateForm::none;
  if (has_class(cursor.unit(), kApostrophe)) return with_year_if(skip_year(cursor));
  const Count number = take_count(cursor);
  if (number.digits == 4) return DateForm::with_year;
  if (number.digits == 2 && number.value > kDays) return DateForm::with_year;
  if (!is_day(number)) return DateForm::none;
  skip_ordinal_if_any(cursor);
  return skip_year_after_separator(cursor) ? DateForm::with_year : DateForm::without_year;
}

DateForm take_date_from_number(Cursor& cursor) {
  const Count first = take_count(cursor);
  if (first.digits == 4) {
    return with_year_if(
        attempt(cursor, [&first](Cursor& c) { return skip_rest_after_year(c, first); }) ||
        attempt(cursor, skip_month_after_year) || attempt(cursor, skip_east_asian_rest));
  }
  if (!is_day(first)) return DateForm::none;
  if (attempt(cursor, [&first](Cursor& c) { return skip_rest_after_day(c, first); })) {
    return DateForm::with_year;
  }
  return take_month_after_day(cursor);
}

// "Mon ", "Monday, ", "Mo. ".
void skip_weekday_if_any(Cursor& cursor) {
  attempt(cursor, [](Cursor& c) { return skip_name(c, kWeekdays) && skip_date_separator(c); });
  cursor.skip_blanks();
}

DateForm take_date(Cursor& cursor) {
  Cursor ahead = cursor;
  if (!is_digit(ahead.unit())) skip_weekday_if_any(ahead);
  const DateForm form =
      is_digit(ahead.unit()) ? take_date_from_number(ahead) : take_date_from_month(ahead);
  if (form != DateForm::none) cursor = ahead;
  return form;
}

// Dates with times.

// "T", "_", blanks, a comma and blanks, or the colon of access logs.
bool skip_date_time_separator(Cursor& cursor) {
  if (cursor.skip_one_of(u"T_:")) return true;
  return attempt(cursor, [](Cursor& c) {
    c.skip(u',');
    return c.skip_blanks() > 0;
  });
}

constexpr std::size_t kDigitsOfCompactDate = 8;

// "20200112T1504", "20200112T150405Z", "20200112 15:04".
bool is_compact_date_time(View text) {
  Cursor cursor(text);
  const Count day = take_count(cursor);
  const int month_and_day = day.value % 10000;
  const bool is_date = day.digits == kDigitsOfCompactDate && month_and_day / 100 >= 1 &&
                       month_and_day / 100 <= kMonthsOfYear && month_and_day % 100 >= 1 &&
                       month_and_day % 100 <= kDays;
  if (!is_date) return false;
  const auto is_time = [](Cursor& c) {
    return skip_date_time_separator(c) && skip_time(c) && c.at_end();
  };
  if (attempt(cursor, is_time)) return true;
  if (!cursor.skip_one_of(u"T_")) return false;
  const Count clock = take_count(cursor);
  if (clock.digits != 4 && clock.digits != 6) return false;
  skip_fraction_of_second(cursor);
  skip_zone_if_any(cursor);
  return cursor.at_end();
}

// The year at the end of "Mon Jan  2 15:04:05 2006".
bool skip_late_year(Cursor& cursor) {
  return attempt(cursor,
                 [](Cursor& c) { return c.skip_blanks() > 0 && take_count(c).digits == 4; });
}

CellKind date_first_kind(View text) {
  Cursor cursor(text);
  const DateForm form = take_date(cursor);
  if (form == DateForm::none) return CellKind::unknown;
  if (cursor.at_end()) return CellKind::date;
  if (!skip_date_time_separator(cursor) || !skip_time(cursor)) return CellKind::unknown;
  if (form == DateForm::without_year) skip_late_year(cursor);
  return kind_if(cursor.at_end(), CellKind::date_time);
}

CellKind time_first_kind(View text) {
  Cursor cursor(text);
  if (!skip_time(cursor)) return CellKind::unknown;
  if (cursor.at_end()) return CellKind::time;
  cursor.skip(u',');
  const bool has_date = cursor.skip_blanks() > 0 && take_date(cursor) != DateForm::none;
  return kind_if(has_date && cursor.at_end(), CellKind::date_time);
}

// "2020-01-12", "12.1.20" and "01/2020", the dates without letters. No time follows them: times
// have colons or letters.
CellKind plain_date_kind(View text) {
  constexpr std::size_t kLongest = 10;
  if (text.size() > kLongest) return CellKind::unknown;
  Cursor cursor(text);
  const Count first = take_count(cursor);
  const bool is_date = first.digits == 4 ? skip_rest_after_year(cursor, first)
                                         : is_day(first) && skip_rest_after_day(cursor, first);
  return kind_if(is_date && cursor.at_end(), CellKind::date);
}

// A date that begins with a name, as few words do.
CellKind named_date_kind(View text) {
  const View name = Cursor(text).letters();
  return kMonths.has(name) || kWeekdays.has(name) ? date_first_kind(text) : CellKind::unknown;
}

CellKind calendar_kind(const Cell& cell) {
  if (!cell.has(kLetter | kColon | kCodeMark)) return plain_date_kind(cell.text);
  Cursor cursor(cell.text);
  const Count first = take_count(cursor);
  if (first.digits == 0) return named_date_kind(cell.text);
  if (first.digits == kDigitsOfCompactDate) {
    return kind_if(is_compact_date_time(cell.text), CellKind::date_time);
  }
  if (first.has_digits(1, 2) && cursor.unit() == u':') return time_first_kind(cell.text);
  const CellKind kind = date_first_kind(cell.text);
  const bool may_be_hour = kind == CellKind::unknown && first.has_digits(1, 2);
  return may_be_hour ? time_first_kind(cell.text) : kind;
}

// Durations.

constexpr std::size_t kNamesOfUnit = 5;
constexpr NameSet kUnitsOfTime({
    u"y",  u"yr",  u"yrs",  u"year",   u"years",    //
    u"mo", u"mos", u"mon",  u"month",  u"months",   //
    u"w",  u"wk",  u"wks",  u"week",   u"weeks",    //
    u"d",  u"day", u"days", u"",       u"",         //
    u"h",  u"hr",  u"hrs",  u"hour",   u"hours",    //
    u"m",  u"min", u"mins", u"minute", u"minutes",  //
    u"s",  u"sec", u"secs", u"second", u"seconds",
});
constexpr std::size_t kDayRank = 3;  // the line of the unit in the list above
constexpr std::size_t kNoRank = 7;

std::size_t take_unit_of_time(Cursor& cursor) {
  const View name = cursor.letters();
  const std::size_t place = kUnitsOfTime.find(name);
  if (place == kUnitsOfTime.kAbsent) return kNoRank;
  cursor.skip_units(name.size());
  return place / kNamesOfUnit;
}

bool skip_quantity(Cursor& cursor) {
  if (cursor.skip_digits() == 0) return false;
  attempt(cursor, [](Cursor& c) { return c.skip_one_of(u".,") && c.skip_digits() > 0; });
  return true;
}

// Blanks, a comma, "and", or nothing.
void skip_duration_separator(Cursor& cursor) {
  cursor.skip(u',');
  cursor.skip_blanks();
  attempt(cursor, [](Cursor& c) {
    const View word = c.letters();
    c.skip_units(word.size());
    return equals_name(word, u"and") && c.skip_blanks() > 0;
  });
}

// The "4:05:06" of "3 days, 4:05:06"; one library writes a sign before it.
bool is_clock_at_end(Cursor cursor) {
  cursor.skip(u'+');
  return take_count(cursor).has_digits(1, 2) && skip_minutes_and_seconds(cursor) && cursor.at_end();
}

// Two or more units from the larger to the smaller, or days and a clock.
bool is_sum_of_units(View text) {
  Cursor cursor(text);
  cursor.skip_sign();
  std::size_t next_rank = 0;
  for (int units = 1; skip_quantity(cursor); ++units) {
    cursor.skip_blanks();
    const std::size_t rank = take_unit_of_time(cursor);
    if (rank == kNoRank || rank < next_rank) return false;
    next_rank = rank + 1;
    if (cursor.at_end()) return units >= 2;
    skip_duration_separator(cursor);
    if (rank == kDayRank && is_clock_at_end(cursor)) return true;
  }
  return false;
}

// Quantities with the letters of `units`, each at most once and in this order.
std::size_t skip_iso_part(Cursor& cursor, View units) {
  std::size_t parts = 0;
  std::size_t next = 0;
  while (attempt(cursor, [&](Cursor& c) {
    if (!skip_quantity(c)) return false;
    const std::size_t at = units.find(c.unit(), next);
    if (at == View::npos) return false;
    c.skip_units(1);
    next = at + 1;
    return true;
  })) {
    ++parts;
  }
  return parts;
}

// "P3Y6M4DT12H30M5S", "PT5M", "P2W".
bool is_iso_duration(View text) {
  Cursor cursor(text);
  cursor.skip_sign();
  if (!cursor.skip(u'P')) return false;
  const std::size_t dates = skip_iso_part(cursor, u"YMWD");
  const bool has_time = cursor.skip(u'T');
  const std::size_t times = has_time ? skip_iso_part(cursor, u"HMS") : 0;
  return cursor.at_end() && (has_time ? times > 0 : dates > 0);
}

// "36:15:00": more hours than a day has.
bool is_long_clock(View text) {
  constexpr std::size_t kMostDigitsOfHours = 5;
  Cursor cursor(text);
  cursor.skip_sign();
  const bool has_hours = take_count(cursor).has_digits(1, kMostDigitsOfHours);
  const bool has_seconds = std::count(text.begin(), text.end(), u':') == 2;
  return has_hours && has_seconds && skip_minutes_and_seconds(cursor) && cursor.at_end();
}

CellKind duration_kind(const Cell& cell) {
  const bool has_units =
      cell.has(kLetter) && (is_sum_of_units(cell.text) || is_iso_duration(cell.text));
  return kind_if(has_units || is_long_clock(cell.text), CellKind::duration);
}

// Addresses of machines.

bool skip_ip4(Cursor& cursor) {
  constexpr int kParts = 4;
  constexpr int kMostOfPart = 255;
  return attempt(cursor, [](Cursor& c) {
    for (int part = 0; part < kParts; ++part) {
      if (part > 0 && !c.skip(u'.')) return false;
      const Count count = take_count(c);
      if (!count.has_digits(1, 3) || count.value > kMostOfPart) return false;
    }
    return true;
  });
}

bool skip_hex_group(Cursor& cursor) {
  constexpr std::size_t kMostDigits = 4;
  return attempt(cursor, [](Cursor& c) {
    std::size_t digits = 0;
    for (; is_hex_digit(c.unit()); c.skip_units(1)) ++digits;
    return digits >= 1 && digits <= kMostDigits;
  });
}

bool skip_double_colon(Cursor& cursor) {
  return attempt(cursor, [](Cursor& c) { return c.skip(u':') && c.skip(u':'); });
}

// Groups with a colon between them; the last two may be in the form of the older addresses.
std::size_t skip_hex_groups(Cursor& cursor) {
  std::size_t groups = 0;
  const auto skip_next = [&groups](Cursor& c) {
    if (groups > 0 && !c.skip(u':')) return false;
    return skip_hex_group(c) && c.unit() != u'.';
  };
  while (attempt(cursor, skip_next)) ++groups;
  const bool has_old_form = attempt(cursor, [&groups](Cursor& c) {
    if (groups > 0 && !c.skip(u':')) return false;
    return skip_ip4(c);
  });
  return has_old_form ? groups + 2 : groups;
}

bool skip_ip6(Cursor& cursor) {
  constexpr std::size_t kGroups = 8;
  return attempt(cursor, [](Cursor& c) {
    const std::size_t before = skip_hex_groups(c);
    if (!skip_double_colon(c)) return before == kGroups;
    const std::size_t groups = before + skip_hex_groups(c);
    return groups > 0 && groups < kGroups;
  });
}

bool skip_port(Cursor& cursor) {
  constexpr int kMostPort = 65535;
  return attempt(cursor, [](Cursor& c) {
    if (!c.skip(u':')) return false;
    const Count port = take_count(c);
    return port.has_digits(1, 5) && port.value <= kMostPort;
  });
}

bool skip_prefix_length(Cursor& cursor, int most) {
  return attempt(cursor, [most](Cursor& c) {
    if (!c.skip(u'/')) return false;
    const Count length = take_count(c);
    return length.has_digits(1, 3) && length.value <= most;
  });
}

bool is_ip4(View text) {
  constexpr int kBits = 32;
  Cursor cursor(text);
  if (!skip_ip4(cursor)) return false;
  if (!skip_port(cursor)) skip_prefix_length(cursor, kBits);
  return cursor.at_end();
}

// "fe80::1", "2001:db8::/32", "[::1]:80".
bool is_ip6(View text) {
  constexpr int kBits = 128;
  Cursor cursor(text);
  const bool has_brackets = cursor.skip(u'[');
  if (!skip_ip6(cursor)) return false;
  if (!has_brackets) {
    skip_prefix_length(cursor, kBits);
  } else {
    if (!cursor.skip(u']')) return false;
    skip_port(cursor);
  }
  return cursor.at_end();
}

constexpr Lengths kIp4Lengths{7, 21};  // "1.2.3.4", "192.168.100.200:12345"

CellKind ip4_kind(const Cell& cell) { return kind_if(is_ip4(cell.text), CellKind::ip); }

CellKind ip6_kind(const Cell& cell) { return kind_if(is_ip6(cell.text), CellKind::ip); }

// Five groups of 8, 4, 4, 4 and 12 hexadecimal digits, with or without braces.
constexpr Lengths kUuidLengths{36, 38};

CellKind uuid_kind(const Cell& cell) {
  constexpr std::size_t kLength = 36;
  constexpr std::size_t kHyphens[] = {8, 13, 18, 23};
  View text = cell.text;
  const bool has_braces = text.size() == kLength + 2 && text.front() == u'{' && text.back() == u'}';
  if (has_braces) text = text.substr(1, kLength);
  if (text.size() != kLength) return CellKind::unknown;
  for (std::size_t i = 0; i < kLength; ++i) {
    const bool wants_hyphen =
        std::find(std::begin(kHyphens), std::end(kHyphens), i) != std::end(kHyphens);
    if (wants_hyphen ? text[i] != u'-' : !is_hex_digit(text[i])) return CellKind::unknown;
  }
  return CellKind::uuid;
}

// Structures.

bool is_structure(View text) {
  if (text.size() < 2) return false;
  return (text.front() == u'{' && text.back() == u'}') ||
         (text.front() == u'[' && text.back() == u']');
}

CellKind structure_kind(const Cell& cell) {
  return kind_if(is_structure(cell.text), CellKind::structure);
}

// Addresses of pages and files.

// Letters and digits of any script, and `marks`.
bool consists_of(View text, UnitSet marks) {
  return std::all_of(text.begin(), text.end(), [marks](char16_t unit) {
    return has_class(unit, kLetter | kDigit | kMark) || marks.has(unit);
  });
}

bool has_any(View text, Marks marks) { return (classes_in(text) & marks) != 0; }

bool is_host_and_path(View text) {
  const std::size_t host_end = std::min(text.find_first_of(u"/?#"), text.size());
  return consists_of(text.substr(0, host_end), u".-_~:@%[]") &&
         consists_of(text.substr(host_end), u".-_~:@%[]/?#!$&'()*+,;=") &&
         has_any(text, kLetter | kDigit);
}

// "s3", "git+ssh". The rule applies only to cells that begin with a letter, as a scheme does.
bool is_scheme(View text) {
  constexpr std::size_t kLongestScheme = 12;
  return text.size() >= 2 && text.size() <= kLongestScheme && consists_of(text, u"+.-");
}

bool has_scheme_and_host(View text) {
  constexpr View kSchemeEnd = u"://";
  const std::size_t end = text.find(kSchemeEnd);
  return end != View::npos && is_scheme(text.substr(0, end)) &&
         is_host_and_path(text.substr(end + kSchemeEnd.size()));
}

bool is_web_name(View text) {
  constexpr View kWeb = u"www.";
  return text.size() > kWeb.size() && equals_name(text.substr(0, kWeb.size()), kWeb) &&
         is_letter_or_digit(text[kWeb.size()]) && is_host_and_path(text);
}

CellKind url_kind(const Cell& cell) {
  const bool holds = (cell.has(kColon) && has_scheme_and_host(cell.text)) || is_web_name(cell.text);
  return kind_if(holds, CellKind::url);
}

// "/a/b.c", "./x", "../x", "~/x".
bool is_slash_path(View text) {
  constexpr UnitSet kMarks = u"/._-~+@#%:=&$()[]{}!";
  Cursor cursor(text);
  if (!cursor.skip(u'~') && cursor.skip(u'.')) cursor.skip(u'.');
  const bool is_absolute = cursor.rest().size() == text.size();
  const Marks wanted = is_absolute ? kLetter : kLetter | kDigit;
  return cursor.skip(u'/') && consists_of(text, kMarks) && has_any(text, wanted);
}

// "C:\My Files\x.txt", "C:/x", "\\server\share", "..\x". Blanks may be inside.
bool is_backslash_path(View text) {
  constexpr View kForbidden = u",;:|\"<>?*";
  constexpr Marks kAllowed = kAnything & ~(kControl | kLineBreak);
  const bool has_drive = text.size() > 2 && is_letter(text[0]) && text[1] == u':' &&
                         (text[2] == u'/' || text[2] == u'\\');
  const View inside = has_drive ? text.substr(2) : text;
  const bool is_rooted = has_drive || inside.substr(0, 2) == u"\\\\" ||
                         inside.substr(0, 2) == u".\\" || inside.substr(0, 3) == u"..\\";
  return is_rooted && has_any(text, kLetter | kDigit) && is_one_of_classes(inside, kAllowed) &&
         inside.find_first_of(kForbidden) == View::npos;
}

CellKind path_kind(const Cell& cell) {
  return kind_if(is_slash_path(cell.text) || is_backslash_path(cell.text), CellKind::path);
}

// "a.b+c@mail.example.org".
CellKind email_kind(const Cell& cell) {
  const View text = cell.text;
  const std::size_t at = text.find(u'@');
  const View name = text.substr(0, at);
  const View domain = text.substr(at + 1);
  const std::size_t last_point = domain.rfind(u'.');
  if (name.empty() || last_point == View::npos || last_point == 0) return CellKind::unknown;
  const View top = domain.substr(last_point + 1);
  const bool holds = consists_of(name, u"._%+-'") && consists_of(domain, u".-") &&
                     domain.find(u"..") == View::npos && is_letter_or_digit(domain.front()) &&
                     top.size() >= 2 && is_one_of_classes(top, kLetter);
  return kind_if(holds, CellKind::email);
}

// Other text.

constexpr Lengths kCodeLengths{1, 59};

CellKind code_kind(const Cell&) { return CellKind::code; }

// A mark of another kind begins a sentence only with a letter or digit right after it: "+49 30 12",
// "#5 of 7", "<0.1 mg".
bool begins_like_a_sentence(View text) {
  constexpr Marks kAlways = kLetter | kDigit | kOutside | kOpening | kOpenParen | kApostrophe;
  constexpr Marks kBeforeText =
      kHyphen | kPlus | kMinus | kCodeMark | kAt | kPoint | kCurrency | kRelation;
  if (has_class(text.front(), kAlways)) return true;
  Cursor cursor(text);
  return cursor.skip_class(kBeforeText) && is_letter_or_digit(cursor.unit());
}

constexpr Marks kInSentence = kAnything & ~(kBrace | kOdd | kControl);

CellKind sentence_kind(const Cell& cell) {
  return kind_if(begins_like_a_sentence(cell.text), CellKind::sentence);
}

// --- the cascade -------------------------------------------------------------------------------

constexpr Marks kSigns = kHyphen | kPlus | kMinus;
constexpr Marks kInWord = kLetter | kMark | kApostrophe | kHyphen;
constexpr Marks kNumberStart = kDigit | kSigns | kPoint | kComma | kOpenParen;
constexpr Marks kInNumber = kNumberStart | kCloseParen | kBlank | kApostrophe | kPercent | kLetter;
constexpr Marks kInMoney = kInNumber | kCurrency;
constexpr Marks kInDate = kDigit | kLetter | kBlank | kPoint | kComma | kColon | kSlash | kSigns |
                          kApostrophe | kCodeMark;
constexpr Marks kInDuration = kDigit | kLetter | kBlank | kPoint | kComma | kColon | kSigns;
constexpr Marks kInIp4 = kDigit | kPoint | kColon | kSlash;
constexpr Marks kInIp6 = kInIp4 | kLetter | kOpening | kProse;  // with brackets
constexpr Marks kInUuid = kDigit | kLetter | kHyphen | kBrace;
constexpr Marks kInCode =
    kLetter | kDigit | kMark | kPoint | kColon | kSlash | kHyphen | kPlus | kAt | kCodeMark;

constexpr Marks kInKeyword = kAnything & ~(kDigit | kBlank | kComma | kColon | kOpening);
constexpr Marks kInEmail = kInCode | kPercent | kApostrophe;
constexpr Marks kInUrl = kAnything & ~(kBlank | kLineBreak | kMinus | kBrace | kOutside | kControl);
constexpr Marks kDateMarks = kCodeMark | kHyphen | kSlash | kPoint | kColon | kLetter;

constexpr Marks kNumberEnd = kDigit | kPoint | kCloseParen | kPercent | kHyphen | kLetter;
constexpr Marks kMoneyNames = kCurrency | kLetter;
constexpr Marks kMoneyStart = kNumberStart | kMoneyNames;
constexpr Marks kMoneyEnd = kNumberEnd | kCurrency;
constexpr Marks kDateStart = kDigit | kLetter;
constexpr Marks kDateEnd = kDigit | kLetter | kPoint;  // "12 Jan."
constexpr Marks kDurationStart = kDigit | kLetter | kSigns;
constexpr Marks kIp6Start = kDigit | kLetter | kColon | kOpening;
constexpr Marks kIp6End = kDigit | kLetter | kColon | kProse;
constexpr Marks kUuidStart = kDigit | kLetter | kBrace;  // and its end
constexpr Marks kPathStart = kSlash | kPoint | kOdd | kLetter;
constexpr Marks kInText = kLetter | kDigit | kOutside;

constexpr UnitSet kAllLetters = u"abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ";
constexpr UnitSet kHexLetters = u"abcdefABCDEF";
constexpr UnitSet kNumberLetters = u"eEdDij";  // exponents and "2i"
constexpr UnitSet kDurationLetters =
    u"acdehikmnorstuwyACDEHIKMNORSTUWYP";  // of the units and "and"

// A rule applies to cells of these lengths whose first character is in `start` and whose last is in
// `end`, which have each class of `all_of`, at least one of `one_of`, none but `allowed`, and of
// the letters none but `letters`. Letters outside ASCII are allowed only where all letters are.
struct Rule {
  Marks start;
  Marks end;
  Marks all_of;
  Marks one_of;
  Marks allowed;
  Lengths lengths;
  UnitSet letters;
  CellKind (*kind)(const Cell&);
};

// "192.168.100.200" is also a number in groups of three, and the letters and hyphens of a uuid may
// form words: the address and the uuid come before these.
constexpr Rule kRules[] = {
    {kDigit, kDigit, 0, kAnything, kDigit, kAnyLength, kAllLetters, digits_kind},
    {kAnything, kAnything, 0, kAnything, kInKeyword, kKeywordLengths, kAllLetters, keyword_kind},
    {kUuidStart, kUuidStart, kHyphen, kAnything, kInUuid, kUuidLengths, kHexLetters, uuid_kind},
    {kLetter, kLetter | kMark, 0, kAnything, kInWord, kAnyLength, kAllLetters, word_kind},
    {kDigit, kDigit, kPoint, kAnything, kInIp4, kIp4Lengths, kAllLetters, ip4_kind},
    {kNumberStart, kNumberEnd, kDigit, kAnything, kInNumber, kAnyLength, kNumberLetters,
     number_kind},
    {kMoneyStart, kMoneyEnd, kDigit, kMoneyNames, kInMoney, kAnyLength, kAllLetters, money_kind},
    {kDateStart, kDateEnd, kDigit, kDateMarks, kInDate, kAnyLength, kAllLetters, calendar_kind},
    {kDurationStart, kDateStart, kDigit, kLetter | kColon, kInDuration, kAnyLength,
     kDurationLetters, duration_kind},
    {kIp6Start, kIp6End, kDigit | kColon, kAnything, kInIp6, kAnyLength, kHexLetters, ip6_kind},
    {kBrace | kOpening, kBrace | kProse, 0, kAnything, kAnything, kAnyLength, kAllLetters,
     structure_kind},
    {kLetter, kAnything, 0, kColon | kPoint, kInUrl, kAnyLength, kAllLetters, url_kind},
    {kPathStart, kAnything, 0, kSlash | kOdd, kAnything, kAnyLength, kAllLetters, path_kind},
    {kAnything, kLetter, kAt | kPoint, kLetter, kInEmail, kAnyLength, kAllLetters, email_kind},
    {kAnything, kAnything, 0, kLetter | kDigit, kInCode, kCodeLengths, kAllLetters, code_kind},
    {kAnything, kAnything, 0, kInText, kInSentence, kAnyLength, kAllLetters, sentence_kind},
};

bool has_what_it_needs(const Rule& rule, const Cell& cell) {
  return (cell.marks & rule.all_of) == rule.all_of && cell.has(rule.one_of) &&
         cell.text.size() >= rule.lengths.least && cell.text.size() <= rule.lengths.most;
}

// --- which rules can apply ---------------------------------------------------------------------

using Rules = std::uint32_t;  // a set of the rules above, the first in the lowest bit

template <typename Holds>
constexpr Rules rules_where(Holds holds) {
  Rules rules = 0;
  for (std::size_t i = 0; i < std::size(kRules); ++i) {
    if (holds(kRules[i])) rules |= Rules{1} << i;
  }
  return rules;
}

constexpr std::size_t kClasses = std::popcount(kAnything);

std::size_t index_of(Marks one_class) {
  return static_cast<std::size_t>(std::countr_zero(one_class));
}

template <typename Holds>
constexpr std::array<Rules, kClasses> rules_by_class(Holds holds) {
  std::array<Rules, kClasses> rules{};
  for (std::size_t i = 0; i < kClasses; ++i) {
    rules[i] = rules_where([=](const Rule& rule) { return holds(rule, Marks{1} << i); });
  }
  return rules;
}

// For each class, the rules for cells that begin, and that end with it.
constexpr std::array<Rules, kClasses> kRulesByStart =
    rules_by_class([](const Rule& rule, Marks start) { return (rule.start & start) != 0; });
constexpr std::array<Rules, kClasses> kRulesByEnd =
    rules_by_class([](const Rule& rule, Marks end) { return (rule.end & end) != 0; });

// Classes that many cells lack. The rules that need one of them go together.
constexpr Marks kOftenAbsent[] = {kDigit, kColon | kPoint, kSlash | kOdd, kHyphen, kAt};

constexpr std::array<Rules, std::size(kOftenAbsent)> kRulesWithout = [] {
  std::array<Rules, std::size(kOftenAbsent)> rules{};
  for (std::size_t i = 0; i < rules.size(); ++i) {
    const Marks absent = kOftenAbsent[i];
    rules[i] = rules_where([absent](const Rule& rule) {
      return (rule.all_of & absent) == 0 && (rule.one_of & ~absent) != 0;
    });
  }
  return rules;
}();

Rules without_absent(Rules rules, const Cell& cell) {
  for (std::size_t i = 0; i < std::size(kOftenAbsent); ++i) {
    if (!cell.has(kOftenAbsent[i])) rules &= kRulesWithout[i];
  }
  return rules;
}

// In the low half the classes of some characters, in the high half the rules that do not allow one
// of them.
using Census = std::uint64_t;

constexpr int kHalf = 32;

constexpr Census census_of(Marks one_class, Rules excluded) {
  return Census{excluded} << kHalf | one_class;
}

// The rules that do not allow a unit of ASCII.
constexpr Rules rules_against(Marks one_class, char16_t unit) {
  return rules_where([=](const Rule& rule) {
    return (rule.allowed & one_class) == 0 || (one_class == kLetter && !rule.letters.has(unit));
  });
}

constexpr std::array<Census, kAsciiUnits> kAsciiCensus = [] {
  std::array<Census, kAsciiUnits> census{};
  for (char16_t unit = 0; unit < kAsciiUnits; ++unit) {
    const Marks one_class = kAsciiClasses[unit];
    census[unit] = census_of(one_class, rules_against(one_class, unit));
  }
  return census;
}();

// For each class, the rules that do not allow its units outside ASCII.
constexpr std::array<Rules, kClasses> kRulesAgainstOthers =
    rules_by_class([](const Rule& rule, Marks one_class) {
      const bool has_all_letters = rule.letters.has(u'z');
      return (rule.allowed & one_class) == 0 || (one_class == kLetter && !has_all_letters);
    });

Census census_of(char16_t unit) {
  if (unit < kAsciiUnits) return kAsciiCensus[unit];
  const Marks marks = class_of_other(unit);
  return census_of(marks, kRulesAgainstOthers[index_of(marks)]);
}

constexpr std::size_t kStep = 4;

// The census of four units: one look whether all are ASCII instead of one at each.
Census census_of_step(const char16_t* units) {
  if ((units[0] | units[1] | units[2] | units[3]) < static_cast<int>(kAsciiUnits)) {
    return (kAsciiCensus[units[0]] | kAsciiCensus[units[1]]) |
           (kAsciiCensus[units[2]] | kAsciiCensus[units[3]]);
  }
  return census_of(units[0]) | census_of(units[1]) | census_of(units[2]) | census_of(units[3]);
}

// Of a text that is not empty. Steps may overlap: to count a unit twice changes nothing, and there
// is no rest to loop over.
Census census_of(View text) {
  const std::size_t size = text.size();
  if (size < kStep) {
    return census_of(text.front()) | census_of(text[size / 2]) | census_of(text.back());
  }
  Census census = census_of_step(text.data() + size - kStep);
  for (std::size_t at = 0; at + kStep < size; at += kStep) {
    census |= census_of_step(text.data() + at);
  }
  return census;
}

// ASCII digits with or without a sign and a point: integer, decimal, or unknown for all else.
CellKind simple_number_kind(View text) {
  const bool has_sign = text.front() == u'-' || text.front() == u'+';
  const View magnitude = text.substr(has_sign ? 1 : 0);
  std::size_t points = 0;
  for (const char16_t unit : magnitude) {
    if (unit == u'.') {
      ++points;
    } else if (unit < u'0' || unit > u'9') {
      return CellKind::unknown;
    }
  }
  if (points > 1 || points == magnitude.size()) return CellKind::unknown;
  return points == 0 ? CellKind::integer : CellKind::decimal;
}

CellKind long_cell_kind(View text) {
  if (is_structure(text)) return CellKind::structure;
  if (!begins_like_a_sentence(text)) return CellKind::unknown;
  const Marks marks = static_cast<Marks>(census_of(text.substr(0, kLongestExaminedCell)));
  const bool has_text = (marks & (kLetter | kDigit | kOutside)) != 0;
  return kind_if(has_text && (marks & ~kInSentence) == 0, CellKind::sentence);
}

// Only the rules that are left after the census, the first and the last character see the cell.
CellKind kind_by_rules(View text) {
  const Census census = census_of(text);
  const Cell cell{text, static_cast<Marks>(census)};
  Rules rules = without_absent(~static_cast<Rules>(census >> kHalf), cell);
  rules &= kRulesByStart[index_of(class_of(text.front()))];
  rules &= kRulesByEnd[index_of(class_of(text.back()))];
  for (; rules != 0; rules &= rules - 1) {
    const Rule& rule = kRules[std::countr_zero(rules)];
    if (!has_what_it_needs(rule, cell)) continue;
    const CellKind kind = rule.kind(cell);
    if (kind != CellKind::unknown) return kind;
  }
  return CellKind::unknown;
}

bool is_trimmed(char16_t unit) { return unit == u' ' || unit == u'\t' || unit == 0x00A0; }

View trimmed(View text) {
  while (!text.empty() && is_trimmed(text.front())) text.remove_prefix(1);
  while (!text.empty() && is_trimmed(text.back())) text.remove_suffix(1);
  return text;
}

}  // namespace

CellKind kind_of(std::u16string_view cell_text) noexcept {
  const View inside = trimmed(cell_text);
  if (inside.empty()) return CellKind::empty;
  if (inside.size() > kLongestExaminedCell) return long_cell_kind(inside);

  const CellKind number = simple_number_kind(inside);
  return number != CellKind::unknown ? number : kind_by_rules(inside);
}

double worth_of(CellKind kind) noexcept {
  switch (kind) {
    case CellKind::url:
    case CellKind::path:
      return 0.95;
    case CellKind::missing:
    case CellKind::word:
      return 0.9;
    case CellKind::code:
      return 0.8;
    case CellKind::sentence:
      return 0.75;
    case CellKind::structure:
      return 0.7;
    case CellKind::empty:
      return 0.55;
    case CellKind::unknown:
      return 0.1;
    default:
      return 1.0;
  }
}

bool is_year(std::u16string_view text) noexcept {
  return text.size() == 4 && text >= u"1800" && text <= u"2099" &&
         text.find_first_not_of(u"0123456789") == text.npos;
}

std::string_view to_string(CellKind kind) noexcept {
  constexpr std::string_view kNames[] = {
      "empty", "integer",   "decimal",   "scientific", "complex", "percentage", "money",  "time",
      "date",  "date-time", "duration",  "missing",    "boolean", "url",        "path",   "email",
      "ip",    "uuid",      "structure", "word",       "code",    "sentence",   "unknown"};
  static_assert(std::size(kNames) == kCellKinds);
  return kNames[static_cast<std::size_t>(kind)];
}

}  // namespace textio::assessment
