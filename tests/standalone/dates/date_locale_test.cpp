#include <vltextstream/host/datetime.hpp>
#include <vltextstream/layout/detect_layout.hpp>
#include <vltextstream/standalone/dates/date_locale.hpp>

#include <gtest/gtest.h>

#include <clocale>
#include <cstddef>
#include <latch>
#include <ostream>
#include <stdexcept>
#include <string>
#include <string_view>
#include <thread>
#include <vector>

#include "support/allocation_counter.hpp"
#include "support/exact_text.hpp"
#include "support/printing.hpp"
#include "support/rule_name.hpp"

namespace textio {
namespace {

using datetime::DateLocaleScope;
using testing_support::allocations_of_this_thread;
using testing_support::ExactText;
using testing_support::readable;

using Texts = std::vector<std::u16string>;

bool is_datetime(std::u16string_view text) {
  const ExactText exact(text);
  return datetime::is_datetime(exact.field());
}

// --- what is a date under a locale -------------------------------------------------------------

struct LocaleCase {
  const char* rule;
  std::u16string locale;
  Texts accepted;
  Texts refused;
};
std::ostream& operator<<(std::ostream& out, const LocaleCase& row) { return out << row.rule; }

const LocaleCase kLocales[] = {
    {"German",
     u"de_DE",
     {u"1. M\u00e4rz 2024", u"1. M\u00c4RZ 2024", u"1. Ma\u0308rz 2024", u"01. Okt. 2024",
      u"1 Okt 2024", u"1-Mai-2024", u"Freitag, 1. M\u00e4rz 2024", u"Fr., 1. M\u00e4rz 2024",
      u"Fr 01.03.2024", u"31. Dezember 2024 um 10:00", u"24. Dez. 2024, 10:00"},
     {u"1 f\u00e9vr. 2024", u"1 janvier 2024", u"30. Februar 2024", u"M\u00e4rz 2024",
      u"1. M\u00e4rzen 2024", u"1. M\u00e4rz. 2024.", u"Freitag", u"1. 3. 24",
      u"1. M\u00e4rz 2024 um"}},
    {"French",
     u"fr-FR",
     {u"1 f\u00e9vr. 2024", u"1 f\u00e9vr 2024", u"1 f\u00e9vrier 2024", u"1 fe\u0301vrier 2024",
      u"1 F\u00c9VRIER 2024", u"vendredi 1 mars 2024", u"ven. 1 mars 2024", u"14-juil.-2024",
      u"31 ao\u00fbt 2024 \u00e0 10:00"},
     {u"1 M\u00e4rz 2024", u"30 f\u00e9vrier 2024", u"1 fevrier 2024", u"f\u00e9vr. 2024",
      u"1 f\u00e9vriers 2024", u"1 de mars de 2024"}},
    {"Spanish",
     u"es",
     {u"1 de marzo de 2024", u"1 de enero del 2024", u"1 mar 2024", u"1-ene-2024",
      u"viernes, 1 de marzo de 2024", u"mar, 5 mar 2024", u"mar 5, 2024",
      u"1/3/2024 2:05 p.\u00a0m.", u"1/3/2024 2:05 p. m.", u"1/3/2024 2:05 p.m.",
      u"1/3/2024 2:05 pm"},
     {u"1 de mars de 2024", u"31 de abril de 2024", u"1 de marzo", u"1 de 3 de 2024", u"1 marzo de",
      u"1/3/2024 14:05 p.m."}},
    {"Portuguese",
     u"pt_BR",
     {u"1 de mar\u00e7o de 2024", u"1 de MAR\u00c7O de 2024", u"1 de mar. de 2024",
      u"1 de mar de 2024", u"sexta-feira, 1 de mar\u00e7o de 2024", u"1 fev. 2024"},
     {u"1 de marzo de 2024", u"30 de fevereiro de 2024", u"sexta-feira"}},
    {"Catalan",
     u"ca_ES",
     {u"1 de mar\u00e7 de 2024", u"1 de mar\u00e7 del 2024", u"1 d\u2019abril del 2024",
      u"1 d'abril de 2024", u"1 mar\u00e7 2024"},
     {u"1 de marzo de 2024", u"31 d'abril de 2024"}},
    {"Italian",
     u"it",
     {u"1 marzo 2024", u"venerd\u00ec 1 marzo 2024", u"1 gen 2024", u"VENERD\u00cc 1 MARZO 2024"},
     {u"1 janvier 2024", u"31 giugno 2024"}},
    {"Dutch",
     u"nl_NL",
     {u"1 maart 2024", u"1 mrt. 2024", u"1 mrt 2024", u"vrijdag 1 maart 2024", u"1-mei-2024"},
     {u"1 marzo 2024", u"29 februari 2023"}},
    {"Polish",
     u"pl_PL",
     {u"1 marca 2024", u"1 marzec 2024", u"pi\u0105tek, 1 marca 2024", u"1 pa\u017adziernika 2024",
      u"1 PA\u0179DZIERNIKA 2024", u"1 lip 2024"},
     {u"1 b\u0159ezna 2024", u"31 kwietnia 2024"}},
    {"Czech",
     u"cs",
     {u"1. b\u0159ezna 2024", u"1. br\u030cezna 2024", u"p\u00e1tek 1. b\u0159ezna 2024",
      u"1. 3. 2024", u"1. 3. 2024 10:00"},
     {u"1. marca 2024", u"31. 2. 2024", u"1. 3. 24"}},
    {"Russian",
     u"ru_RU",
     {u"1 \u043c\u0430\u0440\u0442\u0430 2024 \u0433.", u"1 \u043c\u0430\u0440\u0442\u0430 2024",
      u"1 \u0441\u0435\u043d\u0442. 2024 \u0433.", u"1 \u041c\u0410\u0420\u0422\u0410 2024 \u0433.",
      u"\u043f\u044f\u0442\u043d\u0438\u0446\u0430, 1 \u043c\u0430\u0440\u0442\u0430 2024 \u0433."},
     {u"31 \u0441\u0435\u043d\u0442. 2024 \u0433.", u"\u043c\u0430\u0440\u0442 2024 \u0433.",
      u"1 \u0431\u0435\u0440\u0435\u0437\u043d\u044f 2024"}},
    {"Ukrainian",
     u"uk",
     {u"1 \u0431\u0435\u0440\u0435\u0437\u043d\u044f 2024 \u0440.",
      u"1 \u0431\u0435\u0440\u0435\u0437\u043d\u044f 2024"},
     {u"1 \u043c\u0430\u0440\u0442\u0430 2024"}},
    {"Bulgarian",
     u"bg_BG",
     {u"1 \u043c\u0430\u0440\u0442 2024 \u0433.", u"1.03.2024 \u0433.", u"1.03.24 \u0433."},
     {u"1.03.24", u"32 \u043c\u0430\u0440\u0442 2024 \u0433."}},
    {"Turkish",
     u"tr_TR",
     {u"1 Kas\u0131m 2024", u"1 KASIM 2024", u"1 N\u0130SAN 2024", u"1 nisan 2024",
      u"1 NI\u0307SAN 2024", u"1 Mart 2024 Cuma", u"30 APRIL 2024", u"1 Haz 2024"},
     {u"31 N\u0130SAN 2024", u"1 giugno 2024"}},
    {"Greek",
     u"el",
     {u"1 \u039c\u03b1\u03c1\u03c4\u03af\u03bf\u03c5 2024",
      u"1 \u039c\u03b1\u03c1\u03c4\u03b9\u0301\u03bf\u03c5 2024",
      u"1 \u039c\u0391\u03a1\u03a4\u0399\u039f\u03a5 2024",
      u"1 \u039c\u03ac\u03c1\u03c4\u03b9\u03bf\u03c2 2024"},
     {u"1 \u043c\u0430\u0440\u0442\u0430 2024"}},
    {"Japanese",
     u"ja_JP",
     {u"2024\u5e743\u67081\u65e5", u"2024\u5e7403\u670801\u65e5",
      u"2024\u5e743\u67081\u65e5\u91d1\u66dc\u65e5", u"2024\u5e743\u67081\u65e5 10:00",
      u"2024\u5e743\u67081\u65e5 10:00:30", u"2024/03/01"},
     {u"2024\u5e742\u670830\u65e5", u"2024\u5e743\u6708", u"3\u67081\u65e5", u"2024\u5e743\u67081",
      u"2024\ub144 3\uc6d4 1\uc77c"}},
    {"Chinese",
     u"zh_CN",
     {u"2024\u5e743\u67081\u65e5", u"2024\u5e743\u67081\u65e5\u661f\u671f\u4e94",
      u"2024\u5e743\u67081\u65e5 \u4e0b\u53482:05"},
     {u"2024\u5e7413\u67081\u65e5", u"2024\u5e743\u67081\u65e5 \u4e0b\u534814:05"}},
    {"Korean",
     u"ko_KR",
     {u"2024\ub144 3\uc6d4 1\uc77c", u"2024\ub144 3\uc6d4 1\uc77c \uae08\uc694\uc77c",
      u"2024. 3. 1.", u"2024. 3. 1", u"24. 3. 1.", u"2024. 3. 1. \uc624\ud6c4 2:05",
      u"2024\ub144 3\uc6d4 1\uc77c \uc624\uc804 10:00"},
     {u"2024\ub144 2\uc6d4 30\uc77c", u"2024\ub144 3\uc6d4", u"24. 3. 1"}},
    {"Vietnamese",
     u"vi",
     {u"1 th\u00e1ng 3, 2024", u"1 th\u00e1ng 12, 2024", u"31 TH\u00c1NG 12, 2024",
      u"Th\u1ee9 S\u00e1u, 1 th\u00e1ng 3, 2024"},
     {u"31 th\u00e1ng 2, 2024", u"1 th\u00e1ng 13, 2024", u"th\u00e1ng 3, 2024"}},
    {"Hungarian",
     u"hu_HU",
     {u"2024. m\u00e1rcius 1.", u"2024. m\u00e1rcius 1", u"2024. 03. 01.", u"2024. febr. 29."},
     {u"2023. febr. 29.", u"2024. marec 1."}},
    {"Finnish",
     u"fi",
     {u"1. maaliskuuta 2024", u"1. maaliskuuta 2024 klo 10:00", u"1.3.2024"},
     {u"31. kes\u00e4kuuta 2024", u"1. mars 2024"}},
    {"Swedish",
     u"sv_SE",
     {u"1 mars 2024", u"1 jan. 2024", u"fredag 1 mars 2024"},
     {u"1 marts 2024", u"30 feb. 2024"}},
    {"Norwegian", u"nb_NO", {u"1. mars 2024", u"fredag 1. mars 2024"}, {u"1. maart 2024"}},
    {"Danish", u"da", {u"1. marts 2024", u"1. maj 2024"}, {u"1. mai 2024"}},
    {"Lithuanian",
     u"lt",
     {u"2024 m. kovo 1 d.", u"2024 m. kovo 1 d., penktadienis"},
     {u"2024 m. kovo 32 d.", u"2024 m. marca 1 d."}},
    {"Basque",
     u"eu",
     {u"2024(e)ko martxoaren 1(a)", u"24/3/1"},
     {u"2024(e)ko martxoaren 32(a)", u"24/13/1", u"2024(e)ko marca 1(a)"}},
    {"Arabic",
     u"ar_EG",
     {u"\u0661 \u0645\u0627\u0631\u0633 \u0662\u0660\u0662\u0664",
      u"1 \u0645\u0627\u0631\u0633 2024", u"\u0662\u0660\u0662\u0664-\u0660\u0663-\u0660\u0661",
      u"\u0661\u200f/\u0663\u200f/\u0662\u0660\u0662\u0664"},
     {u"\u0663\u0662 \u0645\u0627\u0631\u0633 \u0662\u0660\u0662\u0664",
      u"1 \u0645\u0627\u0631\u0633", u"\u0967-\u0969-\u0968\u0966\u0968\u096a"}},
    {"Hindi",
     u"hi_IN",
     {u"1 \u092e\u093e\u0930\u094d\u091a 2024",
      u"\u0967 \u092e\u093e\u0930\u094d\u091a \u0968\u0966\u0968\u096a"},
     {u"32 \u092e\u093e\u0930\u094d\u091a 2024", u"\u0661 \u092e\u093e\u0930\u094d\u091a 2024"}},
    {"Thai",
     u"th",
     {u"1 \u0e21\u0e35\u0e19\u0e32\u0e04\u0e21 2024", u"1 \u0e21\u0e35.\u0e04. 2024",
      u"1 \u0e21\u0e35.\u0e04 2567"},
     {u"32 \u0e21\u0e35.\u0e04. 2024", u"\u0e21\u0e35.\u0e04. 2024"}},
    {"Hebrew",
     u"he",
     {u"1 \u05d1\u05de\u05e8\u05e5 2024", u"1 \u05de\u05e8\u05e5 2024"},
     {u"31 \u05d1\u05d9\u05d5\u05e0\u05d9 2024"}},
};

class DatesOfALocale : public testing::TestWithParam<LocaleCase> {};

TEST_P(DatesOfALocale, AreAccepted) {
  const DateLocaleScope scope(GetParam().locale);
  for (const auto& text : GetParam().accepted) EXPECT_TRUE(is_datetime(text)) << readable(text);
}

TEST_P(DatesOfALocale, OfAnotherOrOffTheCalendarAreRefused) {
  const DateLocaleScope scope(GetParam().locale);
  for (const auto& text : GetParam().refused) EXPECT_FALSE(is_datetime(text)) << readable(text);
}

TEST_P(DatesOfALocale, AllocateNothing) {
  const DateLocaleScope scope(GetParam().locale);
  std::vector<ExactText> texts;
  for (const auto& text : GetParam().accepted) texts.emplace_back(text);
  for (const auto& text : GetParam().refused) texts.emplace_back(text);
  std::size_t dates = 0;
  const std::size_t before = allocations_of_this_thread();
  for (const ExactText& text : texts) dates += datetime::is_datetime(text.field()) ? 1 : 0;
  EXPECT_EQ(allocations_of_this_thread(), before);
  EXPECT_EQ(dates, GetParam().accepted.size());
}

// The block ends with the field, so a read past the field's end is found at each name and pattern.
TEST_P(DatesOfALocale, ReadNothingAroundAnyPartOfAText) {
  const DateLocaleScope scope(GetParam().locale);
  for (const std::u16string& text : GetParam().accepted) {
    for (std::size_t i = 0; i < text.size(); ++i) {
      const bool head = is_datetime(std::u16string_view(text).substr(0, i));
      const bool tail = is_datetime(std::u16string_view(text).substr(i));
      EXPECT_EQ(datetime::is_datetime(Field(text.data(), i)), head) << readable(text);
      EXPECT_EQ(datetime::is_datetime(Field(text.data() + i, text.size() - i)), tail);
    }
  }
}

INSTANTIATE_TEST_SUITE_P(Table, DatesOfALocale, testing::ValuesIn(kLocales),
                         testing_support::ByRule());

// --- scopes ------------------------------------------------------------------------------------

constexpr std::u16string_view kGermanDate = u"1. M\u00e4rz 2024";
constexpr std::u16string_view kFrenchDate = u"1 f\u00e9vrier 2024";
constexpr std::u16string_view kEnglishDate = u"1 March 2024";

TEST(DateLocaleScope, LeavesEnglishAloneOutsideOfAll) {
  EXPECT_FALSE(is_datetime(kGermanDate));
  EXPECT_FALSE(is_datetime(kFrenchDate));
  EXPECT_TRUE(is_datetime(kEnglishDate));
}

TEST(DateLocaleScope, CountsUntilItsEnd) {
  {
    const DateLocaleScope scope(u"de");
    EXPECT_TRUE(is_datetime(kGermanDate));
    EXPECT_TRUE(is_datetime(kEnglishDate));
  }
  EXPECT_FALSE(is_datetime(kGermanDate));
}

TEST(DateLocaleScope, GivesWayToAnInnerOneAndComesBack) {
  const DateLocaleScope german(u"de");
  {
    const DateLocaleScope french(u"fr");
    EXPECT_TRUE(is_datetime(kFrenchDate));
    EXPECT_FALSE(is_datetime(kGermanDate));
    {
      const DateLocaleScope english(u"");
      EXPECT_FALSE(is_datetime(kFrenchDate));
      EXPECT_FALSE(is_datetime(kGermanDate));
      EXPECT_TRUE(is_datetime(kEnglishDate));
    }
    EXPECT_TRUE(is_datetime(kFrenchDate));
  }
  EXPECT_TRUE(is_datetime(kGermanDate));
  EXPECT_FALSE(is_datetime(kFrenchDate));
}

TEST(DateLocaleScope, EndsWithAnException) {
  const DateLocaleScope german(u"de");
  try {
    const DateLocaleScope french(u"fr");
    throw std::runtime_error("");
  } catch (const std::runtime_error&) {
    EXPECT_TRUE(is_datetime(kGermanDate));
  }
}

TEST(DateLocaleScope, ThatIsRefusedLeavesTheFormerOne) {
  const DateLocaleScope german(u"de");
  EXPECT_THROW(DateLocaleScope(u"xx"), std::invalid_argument);
  EXPECT_TRUE(is_datetime(kGermanDate));
}

TEST(DateLocaleScope, DoesNotAskTheLocaleOfTheProcess) {
  const std::string former = std::setlocale(LC_ALL, nullptr);
  std::setlocale(LC_ALL, "");
  EXPECT_FALSE(is_datetime(kGermanDate));
  const DateLocaleScope scope(u"de_XX");
  EXPECT_TRUE(is_datetime(kGermanDate));
  EXPECT_FALSE(is_datetime(kFrenchDate));
  std::setlocale(LC_ALL, former.c_str());
}

// More locales than are kept: other tables last as long as their scope.
TEST(DateLocaleScope, WorksForMoreLocalesThanAreKept) {
  for (char16_t first = u'A'; first <= u'Z'; ++first) {
    for (const char16_t second : {u'A', u'F', u'M'}) {
      const DateLocaleScope outer(std::u16string(u"de_") + first + second);
      const DateLocaleScope inner(std::u16string(u"fr_") + first + second);
      EXPECT_TRUE(is_datetime(kFrenchDate));
      EXPECT_FALSE(is_datetime(kGermanDate));
    }
  }
}

// --- names of locales --------------------------------------------------------------------------

TEST(DateLocaleNames, AreTakenInEverySpelling) {
  for (const std::u16string_view name :
       {u"de", u"DE", u"de_DE", u"de-DE", u"DE-de", u"dE_dE", u"deu", u"de_XX", u"de-Latn-DE",
        u"de_Latn", u"de_1996", u"de-AT-1996", u"de_ZZ"}) {
    const DateLocaleScope scope(name);
    EXPECT_TRUE(is_datetime(kGermanDate)) << readable(name);
  }
}

TEST(DateLocaleNames, OfScriptsMatter) {
  const std::u16string cyrillic = u"1. \u0458\u0430\u043d\u0443\u0430\u0440 2024.";
  const std::u16string latin = u"1. januar 2024.";
  {
    const DateLocaleScope scope(u"sr-cyrl-rs");
    EXPECT_TRUE(is_datetime(cyrillic));
    EXPECT_FALSE(is_datetime(latin));
  }
  const DateLocaleScope scope(u"SR_LATN");
  EXPECT_TRUE(is_datetime(latin));
  EXPECT_FALSE(is_datetime(cyrillic));
}

struct RefusedName {
  const char* rule;
  std::u16string name;
  std::string shown;
};
std::ostream& operator<<(std::ostream& out, const RefusedName& row) { return out << row.rule; }

const RefusedName kRefusedNames[] = {
    {"UnknownLanguage", u"xx", "xx"},
    {"UnknownLanguageWithRegion", u"xx_YY", "xx_YY"},
    {"UnknownLanguageWithKnownRegion", u"xx_DE", "xx_DE"},
    {"Word", u"klingon", "klingon"},
    {"NameOfALanguage", u"german", "german"},
    {"QuestionMarks", u"??", "??"},
    {"Blank", u" ", "?"},
    {"BlankAfter", u"de ", "de?"},
    {"BlankInside", u"de DE", "de?DE"},
    {"SeparatorAlone", u"_", "_"},
    {"SeparatorBefore", u"_DE", "_DE"},
    {"SeparatorAfter", u"de_", "de_"},
    {"TwoSeparators", u"de__DE", "de__DE"},
    {"Codeset", u"de_DE.UTF-8", "de_DE.UTF-8"},
    {"Keyword", u"th@calendar=buddhist", "th@calendar=buddhist"},
    {"RootLocale", u"root", "root"},
    {"UndeterminedLanguage", u"und", "und"},
    {"ProcessLocaleOfC", u"C", "C"},
    {"OneLetter", u"d", "d"},
    {"Digits", u"12", "12"},
    {"Path", u"../de", "../de"},
    {"Backslash", u"\\q", "\\q"},
    {"LongSubtag", u"de_abcdefghi", "de_abcdefghi"},
    {"EmbeddedNul", std::u16string(u"de\0DE", 5), "de?DE"},
    {"NulAfter", std::u16string(u"de\0", 3), "de?"},
    {"ControlCharacters", u"de\u001b[1m", "de?[1m"},
    {"NonAscii", u"d\u00e9", "d?"},
    {"LoneSurrogate", std::u16string(1, char16_t{0xD800}), "?"},
    {"ThreeHundredCharacters", std::u16string(300, u'x'), std::string(40, 'x') + "..."},
    {"ThreeHundredCharactersOfAKnownLanguage", u"de_" + std::u16string(297, u'D'),
     "de_" + std::string(37, 'D') + "..."},
};

class DateLocaleRefused : public testing::TestWithParam<RefusedName> {};

std::string refusal_of(const std::u16string& name) {
  standalone::DetectSettings settings;
  settings.options.date_locale = name;
  try {
    standalone::detect_layout(u"1,2\n3,4\n", settings);
  } catch (const std::invalid_argument& error) {
    return error.what();
  }
  return "";
}

TEST_P(DateLocaleRefused, SaysWhatWasExpectedAndGiven) {
  EXPECT_EQ(
      refusal_of(GetParam().name),
      "DateLocale: Expected the name of a locale such as de_DE, got '" + GetParam().shown + "'.");
}
INSTANTIATE_TEST_SUITE_P(Table, DateLocaleRefused, testing::ValuesIn(kRefusedNames),
                         testing_support::ByRule());

// --- a detection -------------------------------------------------------------------------------

DatatypeCode first_class(const std::u16string& locale) {
  standalone::DetectSettings settings;
  settings.options.date_locale = locale;
  settings.options.delimiters = {u";"};
  settings.options.detect_delimiters = false;
  return standalone::detect_layout(
             u"1. M\u00e4rz 2024;1\n2. Mai 2024;2\n3. Dez. 2024;3\n4. Juli 2024;4\n", settings)
      .classes.at(0);
}

TEST(DateLocaleOfADetection, DecidesTheClassOfAColumn) {
  EXPECT_EQ(first_class(u"de_DE"), DatatypeCode::date);
  EXPECT_EQ(first_class(u"fr_FR"), DatatypeCode::text);
  EXPECT_EQ(first_class(u""), DatatypeCode::text);
}

TEST(DateLocaleOfADetection, IsItsOwnInsideOfAnotherScope) {
  const DateLocaleScope french(u"fr");
  EXPECT_EQ(first_class(u""), DatatypeCode::text);
  EXPECT_EQ(first_class(u"de"), DatatypeCode::date);
  EXPECT_TRUE(is_datetime(kFrenchDate));
}

TEST(DateLocaleOfADetection, EndsWithIt) {
  first_class(u"de_DE");
  EXPECT_FALSE(is_datetime(kGermanDate));
}

// --- threads -----------------------------------------------------------------------------------

// Eight threads, each with its own locale, check the dates of all eight.
TEST(DateLocaleThreads, EachHaveTheirOwn) {
  struct Own {
    const char16_t* locale;
    std::u16string_view date;
  };
  constexpr Own kOwn[] = {
      {u"de", u"1. M\u00e4rz 2024"},
      {u"fr", u"1 f\u00e9vrier 2024"},
      {u"pl", u"1 pa\u017adziernika 2024"},
      {u"ja", u"2024\u5e743\u67081\u65e5"},
      {u"ko", u"2024\ub144 3\uc6d4 1\uc77c"},
      {u"pt", u"1 de mar\u00e7o de 2024"},
      {u"ru", u"1 \u043c\u0430\u0440\u0442\u0430 2024"},
      {u"fi", u"1. maaliskuuta 2024"},
  };
  std::latch all_ready(std::size(kOwn));
  std::vector<std::size_t> wrong(std::size(kOwn));
  std::vector<std::thread> threads;
  for (std::size_t self = 0; self < std::size(kOwn); ++self) {
    threads.emplace_back([&, self] {
      all_ready.arrive_and_wait();
      for (int round = 0; round < 100; ++round) {
        const DateLocaleScope scope(kOwn[self].locale);
        for (std::size_t other = 0; other < std::size(kOwn); ++other) {
          wrong[self] += is_datetime(kOwn[other].date) != (other == self) ? 1 : 0;
        }
        wrong[self] += is_datetime(kEnglishDate) ? 0 : 1;
      }
    });
  }
  for (std::thread& thread : threads) thread.join();
  EXPECT_EQ(wrong, std::vector<std::size_t>(std::size(kOwn), 0));
}

// All threads need the same tables at once, before any of them exist.
TEST(DateLocaleThreads, MayMakeTheTablesOfOneLocaleAtOnce) {
  constexpr std::size_t kThreads = 8;
  std::latch all_ready(kThreads);
  std::vector<char> found(kThreads);
  std::vector<std::thread> threads;
  for (std::size_t self = 0; self < kThreads; ++self) {
    threads.emplace_back([&, self] {
      all_ready.arrive_and_wait();
      const DateLocaleScope scope(u"gl_ES");
      found[self] = is_datetime(u"1 de xaneiro de 2024") ? 1 : 0;
    });
  }
  for (std::thread& thread : threads) thread.join();
  EXPECT_EQ(found, std::vector<char>(kThreads, 1));
}

}  // namespace
}  // namespace textio
