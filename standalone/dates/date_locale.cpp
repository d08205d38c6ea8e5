// Everything about a locale comes from ICU's data for its Gregorian calendar: the names from the
// symbols of a date format, the ways to write a date from the patterns of the four styles. They are
// folded once, here, and put into sorted tables together with the English names.
//
// A date check has no parameter for a locale, so the current one is a thread-local pointer. It is
// never used after the scope that set it, and no other thread sees it. Its tables never change.
// Keeping them for the next scope only saves time. The locale of the process is not used.
#include <vltextstream/standalone/dates/date_locale.hpp>

#include <algorithm>
#include <array>
#include <deque>
#include <iterator>
#include <map>
#include <mutex>
#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include <fmt/format.h>
#include <unicode/localpointer.h>
#include <unicode/locid.h>
#include <unicode/uchar.h>
#include <unicode/udat.h>
#include <unicode/uloc.h>
#include <unicode/unorm2.h>
#include <unicode/unumsys.h>
#include <unicode/ustring.h>

#include <vltextstream/standalone/dates/date_patterns.hpp>
#include <vltextstream/standalone/decoding/icu_status.hpp>

namespace textio::datetime {
namespace {

using View = std::u16string_view;

// --- ICU ---------------------------------------------------------------------------------------

void check(UErrorCode status) {
  standalone::throw_if_out_of_memory(status);
  if (U_FAILURE(status)) {
    throw std::runtime_error(fmt::format("DateLocale: {}", u_errorName(status)));
  }
}

// The text that `write` puts into a buffer, at the second attempt if the first buffer is too small.
template <typename Write>
std::u16string text_from(Write write) {
  std::u16string text(64, u'\0');
  UErrorCode status = U_ZERO_ERROR;
  int32_t length = write(text.data(), static_cast<int32_t>(text.size()), &status);
  if (status == U_BUFFER_OVERFLOW_ERROR) {
    text.resize(static_cast<std::size_t>(length));
    status = U_ZERO_ERROR;
    length = write(text.data(), length, &status);
  }
  check(status);
  text.resize(static_cast<std::size_t>(length));
  return text;
}

icu::LocalUDateFormatPointer open_format(UDateFormatStyle time, UDateFormatStyle date,
                                         const std::string& locale) {
  UErrorCode status = U_ZERO_ERROR;
  // With an explicit zone, ICU does not look for the zone of the machine.
  icu::LocalUDateFormatPointer format(udat_open(
      time, date, (locale + "@calendar=gregorian").c_str(), u"Etc/UTC", -1, nullptr, 0, &status));
  check(status);
  return format;
}

std::u16string pattern_of(const UDateFormat* format) {
  return text_from([format](UChar* to, int32_t room, UErrorCode* status) {
    return udat_toPattern(format, false, to, room, status);
  });
}

std::u16string symbol_of(const UDateFormat* format, UDateFormatSymbolType type, int32_t index) {
  return text_from([=](UChar* to, int32_t room, UErrorCode* status) {
    return udat_getSymbols(format, type, index, to, room, status);
  });
}

std::u16string upper_case(const std::u16string& text, const std::string& locale) {
  return text_from([&](UChar* to, int32_t room, UErrorCode* status) {
    return u_strToUpper(to, room, text.data(), static_cast<int32_t>(text.size()), locale.c_str(),
                        status);
  });
}

std::u16string normalized(const std::u16string& text, const UNormalizer2* form) {
  return text_from([&](UChar* to, int32_t room, UErrorCode* status) {
    return unorm2_normalize(form, text.data(), static_cast<int32_t>(text.size()), to, room, status);
  });
}

// Texts may be composed or decomposed.
std::array<const UNormalizer2*, 2> normal_forms() {
  UErrorCode status = U_ZERO_ERROR;
  const std::array forms{unorm2_getNFCInstance(&status), unorm2_getNFDInstance(&status)};
  check(status);
  return forms;
}

// The first digit of a numbering system; '0' if its digits are not ten consecutive code units.
char16_t zero_of(const std::string& locale) {
  UErrorCode status = U_ZERO_ERROR;
  const icu::LocalUNumberingSystemPointer system(unumsys_open(locale.c_str(), &status));
  check(status);
  if (unumsys_isAlgorithmic(system.getAlias())) return u'0';
  const std::u16string digits = text_from([&system](UChar* to, int32_t room, UErrorCode* error) {
    return unumsys_getDescription(system.getAlias(), to, room, error);
  });
  const bool is_row = digits.size() == 10 && digits[9] - digits[0] == 9 &&
                      u_charDigitValue(static_cast<UChar32>(digits[0])) == 0;
  return is_row ? digits[0] : u'0';
}

// The digits of the locale besides 0 to 9: those that it uses, else those of its script.
char16_t own_zero(const std::string& locale) {
  const char16_t usual = zero_of(locale);
  return usual != u'0' ? usual : zero_of(locale + "@numbers=native");
}

// --- names of locales --------------------------------------------------------------------------

// A name is short: language, script, region and one or two variants.
constexpr std::size_t kLongestLocale = 40;

bool is_subtag_unit(char16_t unit) {
  return is_digit(unit) || (unit >= u'a' && unit <= u'z') || (unit >= u'A' && unit <= u'Z');
}

// Letters and digits in groups of one to eight, with '_' or '-' between them.
bool is_shaped_like_locale(View name) {
  if (name.size() > kLongestLocale) return false;
  std::size_t length = 0;
  for (const char16_t unit : name) {
    const bool is_separator = unit == u'_' || unit == u'-';
    if (is_separator ? length == 0 : !is_subtag_unit(unit) || length == 8) return false;
    length = is_separator ? 0 : length + 1;
  }
  return length > 0;
}

bool is_known_language(std::string_view language) {
  const int32_t count = uloc_countAvailable();
  for (int32_t i = 0; i < count; ++i) {
    const std::string_view locale = uloc_getAvailable(i);
    if (locale.substr(0, locale.find('_')) == language) return true;
  }
  return false;
}

std::string printable(View name) {
  std::string text;
  for (const char16_t unit : name.substr(0, kLongestLocale)) {
    text.push_back(unit > 0x20 && unit < 0x7F ? static_cast<char>(unit) : '?');
  }
  return name.size() > kLongestLocale ? text + "..." : text;
}

[[noreturn]] void refuse(View name) {
  throw std::invalid_argument(fmt::format(
      "DateLocale: Expected the name of a locale such as de_DE, got '{}'.", printable(name)));
}

// ICU's name of the locale, the same for all ways to write it.
std::string known_locale(View name) {
  if (!is_shaped_like_locale(name)) refuse(name);
  const std::string ascii(name.begin(), name.end());
  const icu::Locale locale = icu::Locale::createCanonical(ascii.c_str());
  if (locale.isBogus() || !is_known_language(locale.getLanguage())) refuse(name);
  return locale.getBaseName();
}

// --- tables of names ---------------------------------------------------------------------------

constexpr unsigned kDaysInMonth[] = {0, 31, 29, 31, 30, 31, 30, 31, 31, 30, 31, 30, 31};

unsigned days_of(const Name& name) {
  return name.number < std::size(kDaysInMonth) ? kDaysInMonth[name.number] : 0;
}

// If two months share a name, it means the longer one, so that all days of both are accepted.
bool stands_before_by_days(const Name& a, const Name& b) {
  if (a.text != b.text) return stands_before(a, b);
  return days_of(a) > days_of(b);
}

// Names that are numbers, or that have characters outside the Basic Multilingual Plane, are left
// out: in the text of a file such characters are all the same code unit.
bool can_be_looked_up(View text) {
  const bool has_letter = std::any_of(text.begin(), text.end(), is_letter);
  return has_letter && std::none_of(text.begin(), text.end(),
                                    [](char16_t unit) { return (unit & 0xF800) == 0xD800; });
}

// Collects the names of one table.
class NameCollector {
 public:
  NameCollector(std::deque<std::u16string>& texts, const std::string& locale,
                const Folding& folding)
      : texts_(texts), locale_(locale), folding_(folding) {}

  // Adds `text` and its form in capitals, which folding alone does not map back to it: Greek
  // capitals have no accents.
  void add_in_all_shapes(const std::u16string& text, unsigned number, bool abbreviated) {
    for (const std::u16string& shape : {text, upper_case(text, locale_)}) {
      for (const UNormalizer2* form : normal_forms()) {
        add(folded(normalized(shape, form), folding_), number, abbreviated);
      }
    }
  }

  void add(std::u16string text, unsigned number, bool abbreviated) {
    const std::size_t end = text.find_last_not_of(u". ") + 1;
    const bool has_dot = text.find(u'.', end) != View::npos;
    text.erase(end);
    text.erase(0, std::min(text.find_first_not_of(u' '), text.size()));
    if (!can_be_looked_up(text)) return;
    texts_.push_back(std::move(text));
    names_.push_back({texts_.back(), number, abbreviated || has_dot});
  }

  void add_all_of(const NameTable& table) {
    names_.insert(names_.end(), table.names().begin(), table.names().end());
  }

  // Sorted, with each text once; a dot may follow if it may follow one of its entries.
  std::vector<Name> take() {
    std::sort(names_.begin(), names_.end(), stands_before_by_days);
    std::vector<Name> names;
    for (const Name& name : names_) {
      if (names.empty() || names.back().text != name.text) {
        names.push_back(name);
      } else if (name.abbreviated) {
        names.back().abbreviated = true;
      }
    }
    return names;
  }

 private:
  std::deque<std::u16string>& texts_;  // texts keep their addresses here
  const std::string& locale_;
  const Folding& folding_;
  std::vector<Name> names_;
};

// --- what a locale brings ----------------------------------------------------------------------

struct SymbolType {
  UDateFormatSymbolType type;
  bool abbreviated;
};

constexpr SymbolType kMonthTypes[] = {{UDAT_MONTHS, false},
                                      {UDAT_SHORT_MONTHS, true},
                                      {UDAT_STANDALONE_MONTHS, false},
                                      {UDAT_STANDALONE_SHORT_MONTHS, true}};
constexpr SymbolType kWeekdayTypes[] = {{UDAT_WEEKDAYS, false},
                                        {UDAT_SHORT_WEEKDAYS, true},
                                        {UDAT_STANDALONE_WEEKDAYS, false},
                                        {UDAT_STANDALONE_SHORT_WEEKDAYS, true}};
constexpr SymbolType kHalfDayTypes[] = {{UDAT_AM_PMS, true}};
constexpr SymbolType kEraTypes[] = {{UDAT_ERAS, true}, {UDAT_ERA_NAMES, true}};

constexpr UDateFormatStyle kStyles[] = {UDAT_FULL, UDAT_LONG, UDAT_MEDIUM, UDAT_SHORT};

class LocaleNames {
 public:
  explicit LocaleNames(const std::string& locale) : locale_(locale) {
    const std::string language = icu::Locale(locale.c_str()).getLanguage();
    names_.folding = {true, language == "tr" || language == "az", own_zero(locale)};
    read_names(open_format(UDAT_NONE, UDAT_LONG, locale).getAlias());
    for (const UDateFormatStyle style : kStyles) read_style(style);
    names_.patterns = patterns_;
    names_.gaps_before_time = gaps_;
  }

  const DateNames& names() const { return names_; }

 private:
  void read_names(const UDateFormat* format) {
    const DateNames& english = english_names();
    months_ = collect(format, kMonthTypes, english.months, 0);
    weekdays_ = collect(format, kWeekdayTypes, english.weekdays, 0);
    half_days_ = collect(format, kHalfDayTypes, english.half_days, 0);
    eras_ = collect(format, kEraTypes, english.eras, 1);  // of the two eras, the current one
    names_.months = NameTable(months_);
    names_.weekdays = NameTable(weekdays_);
    names_.half_days = NameTable(half_days_);
    names_.eras = NameTable(eras_);
  }

  template <std::size_t N>
  std::vector<Name> collect(const UDateFormat* format, const SymbolType (&types)[N],
                            const NameTable& english, int32_t first) {
    NameCollector collector(texts_, locale_, names_.folding);
    for (const SymbolType& entry : types) {
      const int32_t count = udat_countSymbols(format, entry.type);
      for (int32_t i = first; i < count; ++i) {
        const std::u16string text = symbol_of(format, entry.type, i);
        // ICU counts months from 0, and has an empty weekday before the first.
        const auto number = static_cast<unsigned>(i) + 1;
        collector.add_in_all_shapes(text, number, entry.abbreviated);
        if (entry.type == UDAT_AM_PMS) add_without_dots(collector, text, number);
      }
    }
    collector.add_all_of(english);
    return collector.take();
  }

  // "a. m." is also written "a.m." and "am".
  static void add_without_dots(NameCollector& collector, const std::u16string& marker,
                               unsigned number) {
    const auto is_blank = [](char16_t unit) { return u_isUWhiteSpace(unit) != 0; };
    std::u16string text = marker;
    std::erase_if(text, is_blank);
    collector.add_in_all_shapes(text, number, true);
    std::erase(text, u'.');
    collector.add_in_all_shapes(text, number, true);
  }

  void read_style(UDateFormatStyle style) {
    const std::u16string date = pattern_of(open_format(UDAT_NONE, style, locale_).getAlias());
    for (const UNormalizer2* form : normal_forms()) {
      const auto pattern = parse_date_pattern(normalized(date, form), names_.folding);
      if (!pattern) continue;
      add(*pattern);
      if (const auto other = with_other_article(*pattern)) add(*other);
    }
    read_gap(style, date);
  }

  void add(const DatePattern& pattern) {
    if (std::find(patterns_.begin(), patterns_.end(), pattern) == patterns_.end()) {
      patterns_.push_back(pattern);
    }
  }

  // The text between the date and the time, as in "1. Mai 2024 um 10:00".
  void read_gap(UDateFormatStyle style, const std::u16string& date) {
    const std::u16string time = pattern_of(open_format(UDAT_SHORT, UDAT_NONE, locale_).getAlias());
    const std::u16string both = pattern_of(open_format(UDAT_SHORT, style, locale_).getAlias());
    const bool date_is_first =
        both.size() > date.size() + time.size() && both.starts_with(date) && both.ends_with(time);
    if (!date_is_first) return;
    const auto gap = parse_literal_pattern(
        View(both).substr(date.size(), both.size() - date.size() - time.size()), names_.folding);
    if (!gap || *gap == u" " || *gap == u", ") return;
    if (std::find(gaps_.begin(), gaps_.end(), *gap) == gaps_.end()) gaps_.push_back(*gap);
  }

  std::string locale_;
  std::deque<std::u16string> texts_;
  std::vector<Name> months_;
  std::vector<Name> weekdays_;
  std::vector<Name> half_days_;
  std::vector<Name> eras_;
  std::vector<DatePattern> patterns_;
  std::vector<std::u16string> gaps_;
  DateNames names_;
};

// --- the tables that are kept ------------------------------------------------------------------

class LocaleCache {
 public:
  // Tables are made outside the lock. If two threads make the same tables, the first ones are kept.
  std::shared_ptr<const DateNames> names_of(const std::string& locale) {
    if (auto known = find(locale)) return known;
    const auto made = std::make_shared<const LocaleNames>(locale);
    return keep(locale, std::shared_ptr<const DateNames>(made, &made->names()));
  }

 private:
  static constexpr std::size_t kMostKept = 64;

  std::shared_ptr<const DateNames> find(const std::string& locale) {
    const std::lock_guard lock(mutex_);
    const auto entry = kept_.find(locale);
    return entry == kept_.end() ? nullptr : entry->second;
  }

  std::shared_ptr<const DateNames> keep(const std::string& locale,
                                        std::shared_ptr<const DateNames> names) {
    const std::lock_guard lock(mutex_);
    if (kept_.size() >= kMostKept && !kept_.contains(locale)) return names;
    return kept_.try_emplace(locale, std::move(names)).first->second;
  }

  std::mutex mutex_;
  std::map<std::string, std::shared_ptr<const DateNames>> kept_;
};

// Never destroyed, because a thread may still use it when the process ends.
LocaleCache& cache() {
  static LocaleCache& instance = *new LocaleCache;
  return instance;
}

thread_local const DateNames* bound_names = nullptr;

}  // namespace

DateLocaleScope::DateLocaleScope(View locale)
    : names_(locale.empty() ? nullptr : cache().names_of(known_locale(locale))),
      former_(std::exchange(bound_names, names_.get())) {}

DateLocaleScope::~DateLocaleScope() { bound_names = former_; }

const DateNames& names_in_force() noexcept {
  return bound_names != nullptr ? *bound_names : english_names();
}

}  // namespace textio::datetime
