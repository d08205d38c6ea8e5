#include <vltextstream/columns/date_words.hpp>

#include <cstddef>
#include <string>
#include <vector>

#include <gtest/gtest.h>
#include <unicode/localpointer.h>
#include <unicode/udat.h>

#include "support/printing.hpp"

namespace textio::columns {
namespace {

using testing_support::readable;

// --- the table against ICU ---------------------------------------------------------------------

constexpr const char* kLanguages[] = {"en", "de", "fr", "es", "it", "pt", "nl", "pl",
                                      "ru", "sv", "da", "nb", "fi", "cs", "tr"};

struct FormOfIcu {
  UDateFormatSymbolType type;
  NameForm form;
  bool is_month;
};
constexpr FormOfIcu kForms[] = {
    {UDAT_MONTHS, NameForm::full, true},
    {UDAT_SHORT_MONTHS, NameForm::abbreviated, true},
    {UDAT_WEEKDAYS, NameForm::full, false},
    {UDAT_SHORT_WEEKDAYS, NameForm::abbreviated, false},
};

std::vector<std::u16string> names_of_icu(const char* language, const FormOfIcu& form) {
  UErrorCode status = U_ZERO_ERROR;
  const icu::LocalUDateFormatPointer format(
      udat_open(UDAT_NONE, UDAT_LONG, language, u"Etc/UTC", -1, nullptr, 0, &status));
  std::vector<std::u16string> names;
  const int32_t first = form.is_month ? 0 : 1;  // there is no weekday 0
  const int32_t count = udat_countSymbols(format.getAlias(), form.type);
  for (int32_t i = first; i < count; ++i) {
    UChar name[64];
    const int32_t size = udat_getSymbols(format.getAlias(), form.type, i, name, 64, &status);
    names.emplace_back(name, static_cast<std::size_t>(size));
  }
  return names;
}

bool has_form(NameSet set, std::size_t language, NameForm form) {
  return (set >> (language * kNameForms + static_cast<std::size_t>(form)) & 1U) != 0;
}

TEST(DateWords, AreThoseOfIcu) {
  for (std::size_t language = 0; language < std::size(kLanguages); ++language) {
    for (const FormOfIcu& form : kForms) {
      const auto names = names_of_icu(kLanguages[language], form);
      ASSERT_EQ(names.size(), form.is_month ? 12U : 7U);
      for (std::size_t i = 0; i < names.size(); ++i) {
        std::u16string name = names[i];
        if (name.find(u'-') != name.npos) continue;  // "segunda-feira": words have no hyphen here
        if (name.back() == u'.') name.pop_back();
        const DateWord* const word = find_date_word(name);
        ASSERT_TRUE(word) << readable(name);
        EXPECT_TRUE(has_form(form.is_month ? word->months : word->weekdays, language, form.form))
            << kLanguages[language] << ' ' << readable(name);
        if (form.is_month) {
          EXPECT_EQ(word->month, static_cast<int>(i) + 1) << readable(name);
        }
      }
    }
  }
}

TEST(DateWords, HavePointsWhereIcuHasSome) {
  for (const char* const language : kLanguages) {
    const auto has_point = [language](const FormOfIcu& form) {
      for (const std::u16string& name : names_of_icu(language, form)) {
        if (name.back() == u'.') return true;
      }
      return false;
    };
    EXPECT_EQ(month_has_point(language, NameForm::abbreviated), has_point(kForms[1])) << language;
    EXPECT_EQ(weekday_has_point(language, NameForm::abbreviated), has_point(kForms[3])) << language;
    EXPECT_FALSE(month_has_point(language, NameForm::full)) << language;
  }
}

// --- look-ups ----------------------------------------------------------------------------------

TEST(DateWords, AreFoundInAnyCase) {
  for (const std::u16string name : {u"January", u"JANUARY", u"january"}) {
    const DateWord* const word = find_date_word(name);
    ASSERT_TRUE(word);
    EXPECT_EQ(word->month, 1);
    EXPECT_EQ(word->weekdays, 0U);
  }
}

TEST(DateWords, AreThoseThatPeopleWriteToo) {
  const DateWord* const word = find_date_word(u"Mrz");
  ASSERT_TRUE(word);
  EXPECT_EQ(word->month, 3);
  const NameChoice choice = choose_names(word->months, 0);
  EXPECT_EQ(choice.language, "de");
  EXPECT_EQ(choice.month, NameForm::abbreviated);
}

TEST(DateWords, AreWholeWords) {
  for (const std::u16string name : {u"", u"J", u"Janu", u"Januarys", u"Ja nuary", u"Jan.", u"Sept1",
                                    u"averyveryverylongname"}) {
    EXPECT_EQ(find_date_word(name), nullptr) << readable(name);
  }
}

TEST(ChooseNames, TakesTheFirstLanguageOfBoth) {
  const DateWord& mars = *find_date_word(u"mars");           // fr, sv, nb
  const DateWord& monday = *find_date_word(u"m\u00E5ndag");  // sv
  EXPECT_EQ(choose_names(mars.months, 0).language, "fr");
  EXPECT_EQ(choose_names(mars.months, monday.weekdays).language, "sv");
  EXPECT_EQ(choose_names(0, monday.weekdays).language, "sv");
  EXPECT_EQ(choose_names(0, 0).language, "");
}

TEST(ChooseNames, TakesTheFirstForm) {
  EXPECT_EQ(choose_names(find_date_word(u"May")->months, 0).month, NameForm::full);
  EXPECT_EQ(choose_names(find_date_word(u"Jun")->months, 0).month, NameForm::abbreviated);
  EXPECT_EQ(choose_names(find_date_word(u"luty")->months, 0).month, NameForm::full_alone);
}

TEST(HaveCommonLanguage, IfNoneIsMissing) {
  const NameSet english = find_date_word(u"March")->months;
  const NameSet german = find_date_word(u"Montag")->weekdays;
  EXPECT_FALSE(have_common_language(english, german));
  EXPECT_TRUE(have_common_language(english, 0));
  EXPECT_TRUE(have_common_language(0, german));
  EXPECT_TRUE(have_common_language(0, 0));
}

}  // namespace
}  // namespace textio::columns
