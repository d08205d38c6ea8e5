// A date in one of a locale's own styles (full, long, medium, short) is recognised in that locale:
// all locales of ICU, with the Gregorian calendar.
#include <vltextstream/host/datetime.hpp>
#include <vltextstream/standalone/dates/date_locale.hpp>

#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
#include <cstddef>
#include <cstdint>
#include <iterator>
#include <set>
#include <string>
#include <string_view>
#include <vector>

#include <unicode/localpointer.h>
#include <unicode/locid.h>
#include <unicode/udat.h>
#include <unicode/uloc.h>
#include <unicode/unorm2.h>
#include <unicode/ustring.h>

#include "support/allocation_counter.hpp"
#include "support/exact_text.hpp"
#include "support/printing.hpp"

namespace textio {
namespace {

using datetime::DateLocaleScope;
using std::chrono::sys_days;
using std::chrono::year_month_day;
using testing_support::ExactText;
using testing_support::readable;
using namespace std::chrono_literals;

bool is_datetime(std::u16string_view text) {
  const ExactText exact(text);
  return datetime::is_datetime(exact.field());
}

// --- the locales and their styles --------------------------------------------------------------

// All of them; only some under valgrind, which is slow.
std::vector<std::string> locales() {
  std::vector<std::string> names;
  const int32_t step = testing_support::allocations_are_counted() ? 1 : 40;
  for (int32_t i = 0; i < uloc_countAvailable(); i += step)
    names.emplace_back(uloc_getAvailable(i));
  return names;
}

std::u16string wide(const std::string& ascii) { return {ascii.begin(), ascii.end()}; }

constexpr UDateFormatStyle kStyles[] = {UDAT_FULL, UDAT_LONG, UDAT_MEDIUM, UDAT_SHORT};

const char* name_of(UDateFormatStyle style) {
  constexpr const char* kNames[] = {"full", "long", "medium", "short"};
  return kNames[style];
}

class Formatter {
 public:
  Formatter(const std::string& locale, UDateFormatStyle style) {
    UErrorCode status = U_ZERO_ERROR;
    const std::string gregorian = locale + "@calendar=gregorian";
    format_.adoptInstead(
        udat_open(UDAT_NONE, style, gregorian.c_str(), u"Etc/UTC", -1, nullptr, 0, &status));
    EXPECT_TRUE(U_SUCCESS(status)) << locale;
  }

  std::u16string operator()(year_month_day day) const {
    UErrorCode status = U_ZERO_ERROR;
    const std::chrono::duration<double, std::milli> time = sys_days(day).time_since_epoch();
    UChar text[256];
    const int32_t length =
        udat_format(format_.getAlias(), time.count(), text, std::size(text), nullptr, &status);
    EXPECT_TRUE(U_SUCCESS(status));
    return {text, static_cast<std::size_t>(length)};
  }

 private:
  icu::LocalUDateFormatPointer format_;
};

// Each month and weekday; days with one and two digits, last days of months, short years of both
// centuries that they may mean.
constexpr year_month_day kDays[] = {
    2024y / 1 / 31, 2024y / 2 / 29,  2023y / 3 / 1,  2019y / 4 / 30,
    2001y / 5 / 5,  1999y / 6 / 10,  2010y / 7 / 14, 2022y / 8 / 9,
    1987y / 9 / 20, 2030y / 10 / 11, 1970y / 11 / 2, 2025y / 12 / 25,
};

// --- what is not recognised --------------------------------------------------------------------

struct Exception {
  const char* locale;  // and all whose names start with it
  std::set<UDateFormatStyle> styles;
};

const std::set<UDateFormatStyle> kAll(std::begin(kStyles), std::end(kStyles));

const Exception kExceptions[] = {
    // "1.3.24", "1-3-24" with a year of two digits could be a version or a part number.
    {"be", {UDAT_SHORT}},
    {"bs_Cyrl", {UDAT_SHORT}},
    {"dsb", {UDAT_SHORT}},
    {"en_MV", {UDAT_SHORT}},
    {"hsb", {UDAT_SHORT}},
    {"kok", {UDAT_SHORT}},
    {"mk", {UDAT_SHORT}},
    {"sq", {UDAT_SHORT}},
    {"sr", {UDAT_SHORT}},
    // The month is a Roman number: "1/iii/24".
    {"haw", {UDAT_SHORT}},
    // The abbreviations of months are numbers.
    {"dz", {UDAT_MEDIUM}},
    // Letters outside the Basic Multilingual Plane, which are all the same code unit in a file.
    {"ccp", kAll},
    {"ff_Adlm", kAll},
    // Longer than the longest field that may be a date: more than 64 code units in some months.
    {"kde", {UDAT_FULL}},
};

bool is_of(const std::string& locale, const std::string& group) {
  return locale == group || locale.starts_with(group + "_");
}

bool is_exception(const std::string& locale, UDateFormatStyle style) {
  return std::any_of(std::begin(kExceptions), std::end(kExceptions), [&](const Exception& row) {
    return is_of(locale, row.locale) && row.styles.contains(style);
  });
}

// --- the dates of a style ----------------------------------------------------------------------

TEST(DateStyles, AreRecognisedUnderTheirLocale) {
  for (const std::string& locale : locales()) {
    const DateLocaleScope scope(wide(locale));
    for (const UDateFormatStyle style : kStyles) {
      if (is_exception(locale, style)) continue;
      const Formatter format(locale, style);
      for (const year_month_day day : kDays) {
        const std::u16string text = format(day);
        EXPECT_TRUE(is_datetime(text))
            << locale << ", " << name_of(style) << ": " << readable(text);
      }
    }
  }
}

// A row without a refused date would be obsolete.
TEST(DateStyles, AreRefusedForEachExceptionAtLeastOnce) {
  for (const Exception& row : kExceptions) {
    const DateLocaleScope scope(wide(row.locale));
    for (const UDateFormatStyle style : row.styles) {
      const Formatter format(row.locale, style);
      const bool all = std::all_of(std::begin(kDays), std::end(kDays),
                                   [&](year_month_day day) { return is_datetime(format(day)); });
      EXPECT_FALSE(all) << row.locale << ", " << name_of(style);
    }
  }
}

std::u16string upper_case(const std::u16string& text, const std::string& locale) {
  UErrorCode status = U_ZERO_ERROR;
  UChar to[256];
  const int32_t length = u_strToUpper(to, std::size(to), text.data(),
                                      static_cast<int32_t>(text.size()), locale.c_str(), &status);
  return {to, static_cast<std::size_t>(length)};
}

std::u16string decomposed(const std::u16string& text) {
  UErrorCode status = U_ZERO_ERROR;
  UChar to[256];
  const int32_t length =
      unorm2_normalize(unorm2_getNFDInstance(&status), text.data(),
                       static_cast<int32_t>(text.size()), to, std::size(to), &status);
  return {to, static_cast<std::size_t>(length)};
}

bool has_region(const std::string& locale) {
  return *icu::Locale(locale.c_str()).getCountry() != '\0';
}

TEST(DateStyles, AreRecognisedWithATimeDecomposedAndInCapitals) {
  // One locale for each language and script; regions only differ in the order of the parts.
  for (const std::string& locale : locales()) {
    const bool is_out = is_exception(locale, UDAT_LONG) || is_exception(locale, UDAT_MEDIUM);
    if (has_region(locale) || is_out) continue;
    const DateLocaleScope scope(wide(locale));
    for (const UDateFormatStyle style : {UDAT_LONG, UDAT_MEDIUM}) {
      const Formatter format(locale, style);
      for (const year_month_day day : kDays) {
        const std::u16string text = format(day);
        const std::u16string capitals = upper_case(text, locale);
        EXPECT_TRUE(is_datetime(text + u" 10:00")) << locale << ": " << readable(text);
        EXPECT_TRUE(is_datetime(decomposed(text))) << locale << ": " << readable(text);
        EXPECT_TRUE(is_datetime(capitals)) << locale << ": " << readable(capitals);
        EXPECT_TRUE(is_datetime(decomposed(capitals))) << locale << ": " << readable(capitals);
      }
    }
  }
}

// --- what a locale does not change -------------------------------------------------------------

constexpr std::u16string_view kDatesAnywhere[] = {
    u"2024-03-01",
    u"2024/3/1 10:00",
    u"01.03.2024",
    u"3/1/24",
    u"1 MAR 2024",
    u"Fri, 01 Mar 2024 10:00:00 GMT",
    u"March 1st, 2024, 2:05 PM",
    u"APRIL 30, 2024",
    u"Mon Apr 15 10:00:00 2024",
    u"20240301T100000Z",
    u"01/Mar/2024:10:00:00 +0000",
};

constexpr std::u16string_view kNoDatesAnywhere[] = {
    u"1.2.3",         u"v1.24.3",
    u"1.3.24",        u"192.168.0.1",
    u"2001:db8::1",   u"+49 30 1234567",
    u"555-123-4567",  u"10-12",
    u"3:2",           u"1/2",
    u"3 1/2",         u"A-17/3",
    u"12-345-67",     u"52.52, 13.4",
    u"2020-13-45",    u"30.02.2021",
    u"31 April 2024", u"1.234,56",
    u"$1,200.00",     u"10:00",
    u"2:05 PM",       u"20240301",
    u"2024",          u"2024-03",
    u"12 apples",     u"room 7",
    u"9th avenue",    u"2024-03-01 25:00",
    u"May 2024",      u"100 m 2024",
};

TEST(DateStyles, ChangeNoAnswerForWhatEveryLocaleWritesAlike) {
  for (const std::string& locale : locales()) {
    const DateLocaleScope scope(wide(locale));
    for (const auto text : kDatesAnywhere) {
      EXPECT_TRUE(is_datetime(text)) << locale << ": " << readable(text);
    }
    for (const auto text : kNoDatesAnywhere) {
      EXPECT_FALSE(is_datetime(text)) << locale << ": " << readable(text);
    }
  }
}

}  // namespace
}  // namespace textio
