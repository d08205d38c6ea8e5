// A unit is a product of symbols, each with or without an exponent: "kg m-2 s^-1", "km/h". A symbol
// is in one list, or is a metric prefix and a symbol of another list, or is a currency code.
// Brackets around the whole text are ignored.
#include <vltextstream/assessment/unit_symbols.hpp>

#include <algorithm>
#include <array>
#include <iterator>
#include <string>

#include <unicode/ucurr.h>

namespace textio::assessment {
namespace {

using View = std::u16string_view;

constexpr std::size_t kLongestUnit = 32;

// The two-letter prefix comes first, so that "da" is not read as "d" and an "a".
constexpr View kPrefixes[] = {u"da",     u"Y",      u"Z", u"E", u"P", u"T", u"G",
                              u"M",      u"k",      u"h", u"d", u"c", u"m", u"u",
                              u"\u00B5", u"\u03BC", u"n", u"p", u"f", u"a"};

// Symbols that may have a prefix.
constexpr View kMetric[] = {
    u"m",   u"g",   u"s",   u"A",   u"K",   u"mol",    u"cd",     u"Hz",  u"N",   u"Pa",
    u"J",   u"W",   u"C",   u"V",   u"F",   u"S",      u"Wb",     u"T",   u"H",   u"lm",
    u"lx",  u"Bq",  u"Gy",  u"Sv",  u"kat", u"L",      u"l",      u"bar", u"eV",  u"B",
    u"b",   u"bit", u"t",   u"cal", u"Wh",  u"Ah",     u"VA",     u"var", u"rad", u"sr",
    u"ohm", u"Ohm", u"bps", u"iB",  u"Wp",  u"\u03A9", u"\u2126", u"Nm",
};

// Symbols without a prefix.
constexpr View kPlain[] = {
    u"%",
    u"\u2030",
    u"\u00B0",
    u"\u00B0C",
    u"\u00B0F",
    u"\u2103",
    u"\u2109",
    u"deg",
    u"degC",
    u"degF",
    u"ppm",
    u"ppb",
    u"ppt",
    u"ppmv",
    u"ppbv",
    u"min",
    u"h",
    u"hr",
    u"hrs",
    u"d",
    u"yr",
    u"yrs",
    u"wk",
    u"sec",
    u"secs",
    u"in",
    u"ft",
    u"yd",
    u"mi",
    u"nmi",
    u"kn",
    u"kt",
    u"kts",
    u"mph",
    u"kmh",
    u"kph",
    u"lb",
    u"lbs",
    u"oz",
    u"psi",
    u"atm",
    u"Torr",
    u"mmHg",
    u"inHg",
    u"mmH2O",
    u"cmH2O",
    u"dB",
    u"dBm",
    u"dBA",
    u"pH",
    u"pcs",
    u"rpm",
    u"ha",
    u"gal",
    u"px",
    u"cps",
    u"cpm",
    u"NTU",
    u"FNU",
    u"PSU",
    u"psu",
    u"$",
    u"\u20AC",
    u"\u00A3",
    u"\u00A5",
    // Common misspellings.
    u"mins",
    u"msec",
    u"usec",
    u"bpm",
    u"\u00BAC",
    u"Kg",
    u"Km",
    u"KB",
    u"KiB",
    u"KHz",
    u"KW",
    u"KWh",
};

// Words, in upper or lower case, with or without a plural "s".
constexpr View kWords[] = {
    u"second",     u"minute",     u"hour",       u"day",       u"week",      u"month",
    u"year",       u"meter",      u"metre",      u"kilometer", u"kilometre", u"centimeter",
    u"centimetre", u"millimeter", u"millimetre", u"mile",      u"inch",      u"inche",
    u"foot",       u"feet",       u"yard",       u"gram",      u"kilogram",  u"ton",
    u"tonne",      u"pound",      u"ounce",      u"liter",     u"litre",     u"kelvin",
    u"celsius",    u"fahrenheit", u"degree",     u"percent",   u"pascal",    u"volt",
    u"watt",       u"ampere",     u"newton",     u"joule",     u"hertz",     u"decibel",
    u"knot",       u"euro",       u"dollar",     u"piece",     u"count",
};

constexpr View kNoUnit[] = {u"",     u"-",    u"--",   u"\u2013",   u"\u2014",
                            u"n/a",  u"N/A",  u"n.a.", u"none",     u"None",
                            u"text", u"Text", u"name", u"unitless", u"dimensionless"};

constexpr View kTimePatterns[] = {u"utc",      u"gmt",     u"local", u"local time",
                                  u"iso 8601", u"iso8601", u"yyyy"};

constexpr View kPatternLetters = u"ymdhsazt";
constexpr View kPatternSeparators = u" -/.:,_'";
constexpr View kFactorSeparators = u"/*. \u00B7\u22C5()";
constexpr View kPer = u"per";
constexpr View kDigits = u"0123456789";
constexpr View kExponentMarks = u"^+-\u2212";
constexpr View kSuperscripts =
    u"\u00B9\u00B2\u00B3\u2070\u2074\u2075\u2076\u2077\u2078\u2079\u207A\u207B";

template <std::size_t N>
bool is_one_of(const View (&list)[N], View text) {
  return std::find(std::begin(list), std::end(list), text) != std::end(list);
}

std::u16string lower_case(View text) {
  std::u16string lower(text);
  std::transform(lower.begin(), lower.end(), lower.begin(), [](char16_t unit) {
    return unit >= u'A' && unit <= u'Z' ? static_cast<char16_t>(unit + (u'a' - u'A')) : unit;
  });
  return lower;
}

bool starts_with(View text, View start) { return text.substr(0, start.size()) == start; }

// The text inside one pair of brackets around the whole text, or the text itself.
View without_brackets(View text) {
  constexpr View kOpening = u"([{<";
  constexpr View kClosing = u")]}>";
  if (text.size() < 2) return text;
  const std::size_t pair = kOpening.find(text.front());
  const bool is_enclosed = pair != View::npos && text.back() == kClosing[pair];
  return is_enclosed ? text.substr(1, text.size() - 2) : text;
}

View trimmed(View text) {
  const std::size_t begin = std::min(text.find_first_not_of(u' '), text.size());
  return text.substr(begin, text.find_last_not_of(u' ') + 1 - begin);
}

bool is_word_for_unit(View text) {
  std::u16string word = lower_case(text);
  if (is_one_of(kWords, word)) return true;
  if (word.empty() || word.back() != u's') return false;
  word.pop_back();
  return is_one_of(kWords, word);
}

bool is_currency_code(View text) {
  const bool has_form = text.size() == 3 && std::all_of(text.begin(), text.end(), [](char16_t u) {
                          return u >= u'A' && u <= u'Z';
                        });
  const std::u16string code(text);
  return has_form && ucurr_getNumericCode(code.c_str()) != 0;
}

bool has_metric_prefix(View text) {
  return std::any_of(std::begin(kPrefixes), std::end(kPrefixes), [text](View prefix) {
    return starts_with(text, prefix) && is_one_of(kMetric, text.substr(prefix.size()));
  });
}

bool is_symbol(View text) {
  return is_one_of(kPlain, text) || is_one_of(kMetric, text) || has_metric_prefix(text) ||
         is_word_for_unit(text) || is_currency_code(text);
}

// "m2", "m^-2", "s-1" and "m" with a superscript 2 without their exponents. "A12" and "W1" are
// labels: an exponent has one digit, and one without a mark is 2, 3 or 4.
View without_exponent(View text) {
  const auto cut_after = [text](View set) {
    return text.substr(0, text.find_last_not_of(set) + 1);
  };
  if (!text.empty() && kSuperscripts.find(text.back()) != View::npos) {
    return cut_after(kSuperscripts);
  }
  if (text.empty() || kDigits.find(text.back()) == View::npos) return text;
  const View marked = text.substr(0, text.size() - 1);
  const View base = marked.substr(0, marked.find_last_not_of(kExponentMarks) + 1);
  const bool has_mark = base.size() < marked.size();
  const bool is_small_power = text.back() >= u'2' && text.back() <= u'4';
  return has_mark || is_small_power ? base : text;
}

bool is_factor(View text) {
  return is_symbol(text) || text == kPer || is_symbol(without_exponent(text));
}

// Any word in brackets: a text such as "[count rate]" is meant as a unit.
bool is_bracketed_remark(View text) {
  const View inside = without_brackets(text);
  const char16_t first = inside.size() == text.size() || inside.empty() ? u'\0' : inside.front();
  return (first >= u'a' && first <= u'z') || (first >= u'A' && first <= u'Z') || first > 0x7F;
}

bool is_product_of_symbols(View text) {
  if (starts_with(text, u"1/")) text.remove_prefix(1);
  bool has_factor = false;
  while (!text.empty()) {
    const std::size_t length = std::min(text.find_first_of(kFactorSeparators), text.size());
    const View factor = text.substr(0, length);
    if (!factor.empty() && !is_factor(factor)) return false;
    has_factor = has_factor || (!factor.empty() && factor != kPer);
    text.remove_prefix(std::min(length + 1, text.size()));
  }
  return has_factor;
}

bool is_pattern_letter(char16_t unit) { return kPatternLetters.find(unit) != View::npos; }

// A single letter next to other pattern letters makes a word ("mass", "add"). The exceptions are
// the "T" between a date and a time, and a "Z" at the end.
bool is_run_of_pattern(View pattern, std::size_t begin, std::size_t end) {
  const bool has_left = begin > 0 && is_pattern_letter(pattern[begin - 1]);
  const bool has_right = end < pattern.size() && is_pattern_letter(pattern[end]);
  const bool is_separate = !has_left && !has_right;
  const bool is_time_mark = pattern[begin] == u't' && has_left && has_right;
  const bool is_zone_mark = pattern[begin] == u'z' && has_left && !has_right;
  return end - begin > 1 || is_separate || is_time_mark || is_zone_mark;
}

// Two or more runs, each of one letter, and at least one of them longer than one: "yyyy-mm-dd",
// "h:mm". A single run is a unit or a word.
bool is_pattern_of_runs(View pattern) {
  std::size_t runs = 0;
  std::size_t longest = 0;
  for (std::size_t i = 0; i < pattern.size();) {
    const std::size_t end = std::min(pattern.find_first_not_of(pattern[i], i), pattern.size());
    if (is_pattern_letter(pattern[i])) {
      if (!is_run_of_pattern(pattern, i, end)) return false;
      ++runs;
      longest = std::max(longest, end - i);
    } else if (kPatternSeparators.find(pattern[i]) == View::npos) {
      return false;
    }
    i = end;
  }
  return runs >= 2 && longest >= 2 && longest <= 4;
}

// The text in the last pair of brackets, if it ends the name and is not all of it.
View bracketed_end(View name, char16_t open, char16_t close) {
  const std::size_t begin = name.rfind(open);
  if (name.empty() || name.back() != close || begin == View::npos || begin == 0) return {};
  return trimmed(name.substr(begin + 1, name.size() - begin - 2));
}

// Quantities that are measured in units of time; "events/s" is a rate.
constexpr View kTimes[] = {u"time",       u"times",  u"duration", u"elapsed", u"delay",
                           u"latency",    u"period", u"age",      u"runtime", u"uptime",
                           u"zeit",       u"dauer",  u"laufzeit", u"alter",   u"temps",
                           u"dur\u00E9e", u"tiempo", u"tempo",    u"tid",     u"tijd"};
constexpr View kUnitsOfTime[] = {u"ns",   u"us",    u"\u00B5s", u"\u03BCs", u"ms",
                                 u"s",    u"sec",   u"min",     u"h",       u"hr",
                                 u"d",    u"day",   u"a",       u"y",       u"yr",
                                 u"days", u"hours", u"minutes", u"seconds", u"years"};

// What is per unit of another quantity: "price/kg".
constexpr View kRates[] = {u"price", u"prices", u"cost",   u"costs", u"fee",    u"rate",
                           u"preis", u"preise", u"kosten", u"prix",  u"precio", u"prezzo"};

bool is_name_character(char16_t unit) {
  const char16_t lower = unit | 0x20;
  return unit == u' ' || unit == u'_' || (lower >= u'a' && lower <= u'z') || unit > 0xBF;
}

// "Time/s" or "speed/km/h": a quantity of three characters or more, and a unit in which it is expressed. Not "events/s",
// "price/kg", "km/h" or "max/min".
View unit_of_quantity(View name) {
  constexpr std::size_t kShortest = 3;
  const std::size_t at = name.find(u'/');
  if (at == View::npos || at < kShortest) return {};
  const View quantity = name.substr(0, at);
  const View unit = name.substr(at + 1);
  if (!is_unit(unit) || is_unit(quantity)) return {};
  if (!std::all_of(quantity.begin(), quantity.end(), is_name_character)) return {};
  const std::u16string words = lower_case(quantity);
  const View last = View(words).substr(words.find_last_of(u" _") + 1);
  const bool is_of_time = is_one_of(kUnitsOfTime, unit);
  return is_of_time == is_one_of(kTimes, last) && !is_one_of(kRates, last) ? unit : View();
}

// What follows the last occurrence of `mark`.
View after_last(View name, View mark) {
  const std::size_t at = name.rfind(mark);
  return at == View::npos || at == 0 ? View() : trimmed(name.substr(at + mark.size()));
}

}  // namespace

bool is_unit(View text) {
  if (text.empty() || text.size() > kLongestUnit || is_no_unit(text)) return false;
  return is_product_of_symbols(without_brackets(text)) || is_bracketed_remark(text);
}

bool is_time_pattern(View text) {
  const View inside = without_brackets(text);
  if (inside.size() > kLongestUnit) return false;
  const std::u16string pattern = lower_case(inside);
  return is_one_of(kTimePatterns, pattern) || is_pattern_of_runs(pattern);
}

bool is_no_unit(View text) {
  return is_one_of(kNoUnit, text) || is_one_of(kNoUnit, trimmed(without_brackets(text)));
}

std::u16string_view unit_in_name(std::u16string_view name) {
  const View text = trimmed(name);
  const View square = bracketed_end(text, u'[', u']');
  const bool has_letter = std::any_of(square.begin(), square.end(), [](char16_t unit) {
    return unit > 0x7F || (unit | 0x20) >= u'a' || unit == u'%';
  });
  if (has_letter && square.size() <= kLongestUnit && !is_no_unit(square)) return square;
  const View round = bracketed_end(text, u'(', u')');
  if (is_unit(round)) return round;
  for (const View mark : {View(u" / "), View(u" in ")}) {
    const View last = after_last(text, mark);
    if (is_unit(last)) return last;
  }
  if (const View unit = unit_of_quantity(text); !unit.empty()) return unit;
  const View word = after_last(text, u" ");
  return word == u"%" || (is_unit(word) && word.front() == u'\u00B0') ? word : View();
}

}  // namespace textio::assessment
