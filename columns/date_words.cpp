// The names are those of ICU 72 for the Gregorian calendar. They are written down here because to
// read them from ICU takes longer than to analyse a table, and because every text with a number in
// it is looked at once.
#include <vltextstream/columns/date_words.hpp>

#include <algorithm>
#include <bit>
#include <iterator>
#include <utility>
#include <vector>

#include <vltextstream/columns/characters.hpp>

namespace textio::columns {
namespace {

using View = std::u16string_view;

// Names with blanks between them, from January and from Sunday on. Without
// names without a day, they are the same as those after a day.
struct Language {
  std::string_view name;
  View months;
  View short_months;
  View months_alone;
  View short_months_alone;
  View weekdays;
  View short_weekdays;
};

// The order decides which language is told if a column fits several.
constexpr Language kLanguages[] = {
    {"en", u"January February March April May June July August September October November December",
     u"Jan Feb Mar Apr May Jun Jul Aug Sep Oct Nov Dec", u"", u"",
     u"Sunday Monday Tuesday Wednesday Thursday Friday Saturday", u"Sun Mon Tue Wed Thu Fri Sat"},
    {"de",
     u"Januar Februar M\u00E4rz April Mai Juni Juli August September Oktober November Dezember",
     u"Jan. Feb. M\u00E4rz Apr. Mai Juni Juli Aug. Sept. Okt. Nov. Dez.", u"",
     u"Jan Feb M\u00E4r Apr Mai Jun Jul Aug Sep Okt Nov Dez",
     u"Sonntag Montag Dienstag Mittwoch Donnerstag Freitag Samstag",
     u"So. Mo. Di. Mi. Do. Fr. Sa."},
    {"fr",
     u"janvier f\u00E9vrier mars avril mai juin juillet ao\u00FBt septembre octobre novembre "
     u"d\u00E9cembre",
     u"janv. f\u00E9vr. mars avr. mai juin juil. ao\u00FBt sept. oct. nov. d\u00E9c.", u"", u"",
     u"dimanche lundi mardi mercredi jeudi vendredi samedi", u"dim. lun. mar. mer. jeu. ven. sam."},
    {"es",
     u"enero febrero marzo abril mayo junio julio agosto septiembre octubre noviembre diciembre",
     u"ene feb mar abr may jun jul ago sept oct nov dic", u"", u"",
     u"domingo lunes martes mi\u00E9rcoles jueves viernes s\u00E1bado",
     u"dom lun mar mi\u00E9 jue vie s\u00E1b"},
    {"it",
     u"gennaio febbraio marzo aprile maggio giugno luglio agosto settembre ottobre novembre "
     u"dicembre",
     u"gen feb mar apr mag giu lug ago set ott nov dic", u"", u"",
     u"domenica luned\u00EC marted\u00EC mercoled\u00EC gioved\u00EC venerd\u00EC sabato",
     u"dom lun mar mer gio ven sab"},
    {"pt",
     u"janeiro fevereiro mar\u00E7o abril maio junho julho agosto setembro outubro novembro "
     u"dezembro",
     u"jan. fev. mar. abr. mai. jun. jul. ago. set. out. nov. dez.", u"", u"",
     u"domingo segunda-feira ter\u00E7a-feira quarta-feira quinta-feira sexta-feira s\u00E1bado",
     u"dom. seg. ter. qua. qui. sex. s\u00E1b."},
    {"nl",
     u"januari februari maart april mei juni juli augustus september oktober november december",
     u"jan feb mrt apr mei jun jul aug sep okt nov dec", u"", u"",
     u"zondag maandag dinsdag woensdag donderdag vrijdag zaterdag", u"zo ma di wo do vr za"},
    {"pl",
     u"stycznia lutego marca kwietnia maja czerwca lipca sierpnia wrze\u015Bnia "
     u"pa\u017Adziernika listopada grudnia",
     u"sty lut mar kwi maj cze lip sie wrz pa\u017A lis gru",
     u"stycze\u0144 luty marzec kwiecie\u0144 maj czerwiec lipiec sierpie\u0144 wrzesie\u0144 "
     u"pa\u017Adziernik listopad grudzie\u0144",
     u"", u"niedziela poniedzia\u0142ek wtorek \u015Broda czwartek pi\u0105tek sobota",
     u"niedz. pon. wt. \u015Br. czw. pt. sob."},
    {"ru",
     u"\u044F\u043D\u0432\u0430\u0440\u044F \u0444\u0435\u0432\u0440\u0430\u043B\u044F "
     u"\u043C\u0430\u0440\u0442\u0430 \u0430\u043F\u0440\u0435\u043B\u044F \u043C\u0430\u044F "
     u"\u0438\u044E\u043D\u044F \u0438\u044E\u043B\u044F "
     u"\u0430\u0432\u0433\u0443\u0441\u0442\u0430 "
     u"\u0441\u0435\u043D\u0442\u044F\u0431\u0440\u044F "
     u"\u043E\u043A\u0442\u044F\u0431\u0440\u044F \u043D\u043E\u044F\u0431\u0440\u044F "
     u"\u0434\u0435\u043A\u0430\u0431\u0440\u044F",
     u"\u044F\u043D\u0432. \u0444\u0435\u0432\u0440. \u043C\u0430\u0440. \u0430\u043F\u0440. "
     u"\u043C\u0430\u044F \u0438\u044E\u043D. \u0438\u044E\u043B. \u0430\u0432\u0433. "
     u"\u0441\u0435\u043D\u0442. \u043E\u043A\u0442. \u043D\u043E\u044F\u0431. "
     u"\u0434\u0435\u043A.",
     u"\u044F\u043D\u0432\u0430\u0440\u044C \u0444\u0435\u0432\u0440\u0430\u043B\u044C "
     u"\u043C\u0430\u0440\u0442 \u0430\u043F\u0440\u0435\u043B\u044C \u043C\u0430\u0439 "
     u"\u0438\u044E\u043D\u044C \u0438\u044E\u043B\u044C \u0430\u0432\u0433\u0443\u0441\u0442 "
     u"\u0441\u0435\u043D\u0442\u044F\u0431\u0440\u044C "
     u"\u043E\u043A\u0442\u044F\u0431\u0440\u044C \u043D\u043E\u044F\u0431\u0440\u044C "
     u"\u0434\u0435\u043A\u0430\u0431\u0440\u044C",
     u"\u044F\u043D\u0432. \u0444\u0435\u0432\u0440. \u043C\u0430\u0440\u0442 "
     u"\u0430\u043F\u0440. \u043C\u0430\u0439 \u0438\u044E\u043D\u044C "
     u"\u0438\u044E\u043B\u044C \u0430\u0432\u0433. \u0441\u0435\u043D\u0442. "
     u"\u043E\u043A\u0442. \u043D\u043E\u044F\u0431. \u0434\u0435\u043A.",
     u"\u0432\u043E\u0441\u043A\u0440\u0435\u0441\u0435\u043D\u044C\u0435 "
     u"\u043F\u043E\u043D\u0435\u0434\u0435\u043B\u044C\u043D\u0438\u043A "
     u"\u0432\u0442\u043E\u0440\u043D\u0438\u043A \u0441\u0440\u0435\u0434\u0430 "
     u"\u0447\u0435\u0442\u0432\u0435\u0440\u0433 \u043F\u044F\u0442\u043D\u0438\u0446\u0430 "
     u"\u0441\u0443\u0431\u0431\u043E\u0442\u0430",
     u"\u0432\u0441 \u043F\u043D \u0432\u0442 \u0441\u0440 \u0447\u0442 \u043F\u0442 "
     u"\u0441\u0431"},
    {"sv", u"januari februari mars april maj juni juli augusti september oktober november december",
     u"jan. feb. mars apr. maj juni juli aug. sep. okt. nov. dec.", u"", u"",
     u"s\u00F6ndag m\u00E5ndag tisdag onsdag torsdag fredag l\u00F6rdag",
     u"s\u00F6n m\u00E5n tis ons tors fre l\u00F6r"},
    {"da", u"januar februar marts april maj juni juli august september oktober november december",
     u"jan. feb. mar. apr. maj jun. jul. aug. sep. okt. nov. dec.", u"", u"",
     u"s\u00F8ndag mandag tirsdag onsdag torsdag fredag l\u00F8rdag",
     u"s\u00F8n. man. tirs. ons. tors. fre. l\u00F8r."},
    {"nb", u"januar februar mars april mai juni juli august september oktober november desember",
     u"jan. feb. mar. apr. mai jun. jul. aug. sep. okt. nov. des.", u"",
     u"jan feb mar apr mai jun jul aug sep okt nov des",
     u"s\u00F8ndag mandag tirsdag onsdag torsdag fredag l\u00F8rdag",
     u"s\u00F8n. man. tir. ons. tor. fre. l\u00F8r."},
    {"fi",
     u"tammikuuta helmikuuta maaliskuuta huhtikuuta toukokuuta kes\u00E4kuuta hein\u00E4kuuta "
     u"elokuuta syyskuuta lokakuuta marraskuuta joulukuuta",
     u"tammik. helmik. maalisk. huhtik. toukok. kes\u00E4k. hein\u00E4k. elok. syysk. lokak. "
     u"marrask. jouluk.",
     u"tammikuu helmikuu maaliskuu huhtikuu toukokuu kes\u00E4kuu hein\u00E4kuu elokuu syyskuu "
     u"lokakuu marraskuu joulukuu",
     u"tammi helmi maalis huhti touko kes\u00E4 hein\u00E4 elo syys loka marras joulu",
     u"sunnuntaina maanantaina tiistaina keskiviikkona torstaina perjantaina lauantaina",
     u"su ma ti ke to pe la"},
    {"cs",
     u"ledna \u00FAnora b\u0159ezna dubna kv\u011Btna \u010Dervna \u010Dervence srpna "
     u"z\u00E1\u0159\u00ED \u0159\u00EDjna listopadu prosince",
     u"led \u00FAno b\u0159e dub kv\u011B \u010Dvn \u010Dvc srp z\u00E1\u0159 \u0159\u00EDj "
     u"lis pro",
     u"leden \u00FAnor b\u0159ezen duben kv\u011Bten \u010Derven \u010Dervenec srpen "
     u"z\u00E1\u0159\u00ED \u0159\u00EDjen listopad prosinec",
     u"",
     u"ned\u011Ble pond\u011Bl\u00ED \u00FAter\u00FD st\u0159eda \u010Dtvrtek p\u00E1tek sobota",
     u"ne po \u00FAt st \u010Dt p\u00E1 so"},
    {"tr",
     u"Ocak \u015Eubat Mart Nisan May\u0131s Haziran Temmuz A\u011Fustos Eyl\u00FCl Ekim "
     u"Kas\u0131m Aral\u0131k",
     u"Oca \u015Eub Mar Nis May Haz Tem A\u011Fu Eyl Eki Kas Ara", u"", u"",
     u"Pazar Pazartesi Sal\u0131 \u00C7ar\u015Famba Per\u015Fembe Cuma Cumartesi",
     u"Paz Pzt Sal \u00C7ar Per Cum Cmt"},
};
static_assert(std::size(kLanguages) * kNameForms <= 64);

constexpr NameSet bit_of(std::size_t language, NameForm form) {
  return NameSet{1} << (language * kNameForms + static_cast<std::size_t>(form));
}

const Language* language_of(std::string_view name) {
  const auto* const found =
      std::find_if(std::begin(kLanguages), std::end(kLanguages),
                   [name](const Language& each) { return each.name == name; });
  return found == std::end(kLanguages) ? nullptr : found;
}

// Abbreviations that ICU does not have, but programs and people write.
struct OtherMonth {
  View name;  // folded
  int month;
  std::string_view language;
};
constexpr OtherMonth kOtherMonths[] = {{u"mrz", 3, "de"}};

class Collector {
 public:
  std::vector<DateWord> collect() {
    for (std::size_t i = 0; i < std::size(kLanguages); ++i) {
      const Language& language = kLanguages[i];
      add_months(language.months, bit_of(i, NameForm::full));
      add_months(language.short_months, bit_of(i, NameForm::abbreviated));
      add_months(language.months_alone, bit_of(i, NameForm::full_alone));
      add_months(language.short_months_alone, bit_of(i, NameForm::abbreviated_alone));
      add_weekdays(language.weekdays, bit_of(i, NameForm::full));
      add_weekdays(language.short_weekdays, bit_of(i, NameForm::abbreviated));
    }
    for (const OtherMonth& other : kOtherMonths) add_other(other);
    return merged();
  }

 private:
  template <typename Add>
  static void for_each_name(View names, Add add) {
    while (!names.empty()) {
      const std::size_t end = std::min(names.find(u' '), names.size());
      View name = names.substr(0, end);
      if (name.back() == u'.') name.remove_suffix(1);
      add(folded(name));
      names.remove_prefix(std::min(end + 1, names.size()));
    }
  }

  void add_months(View names, NameSet set) {
    int month = 0;
    for_each_name(names, [&](std::u16string name) {
      words_.push_back({std::move(name), ++month, set, 0});
    });
  }

  void add_weekdays(View names, NameSet set) {
    for_each_name(names, [&](std::u16string name) {
      words_.push_back({std::move(name), 0, 0, set});
    });
  }

  void add_other(const OtherMonth& other) {
    const auto language = static_cast<std::size_t>(language_of(other.language) - kLanguages);
    const NameSet forms =
        bit_of(language, NameForm::abbreviated) | bit_of(language, NameForm::abbreviated_alone);
    words_.push_back({std::u16string(other.name), other.month, forms, 0});
  }

  // Each text once. No name is that of two different months.
  std::vector<DateWord> merged() {
    std::stable_sort(words_.begin(), words_.end(),
                     [](const DateWord& a, const DateWord& b) { return a.text < b.text; });
    std::vector<DateWord> merged;
    for (DateWord& word : words_) {
      if (merged.empty() || merged.back().text != word.text) {
        merged.push_back(std::move(word));
        continue;
      }
      DateWord& same = merged.back();
      same.month = std::max(same.month, word.month);
      same.months |= word.months;
      same.weekdays |= word.weekdays;
    }
    return merged;
  }

  std::vector<DateWord> words_;
};

constexpr std::size_t kLongestName = 14;

// The forms of one language in a set.
NameSet forms_of(NameSet set, std::size_t language) {
  constexpr NameSet kForms = (NameSet{1} << kNameForms) - 1;
  return set >> (language * kNameForms) & kForms;
}

NameForm first_form(NameSet forms) {
  return forms == 0 ? NameForm::full : static_cast<NameForm>(std::countr_zero(forms));
}

bool has_point(View names) { return names.find(u'.') != View::npos; }

}  // namespace

const DateWord* find_date_word(View text) {
  static const std::vector<DateWord> words = Collector().collect();
  if (text.empty() || text.size() > kLongestName) return nullptr;
  const std::u16string key = folded(text);
  const auto at = std::lower_bound(words.begin(), words.end(), key,
                                   [](const DateWord& a, const auto& b) { return a.text < b; });
  return at != words.end() && at->text == key ? &*at : nullptr;
}

NameChoice choose_names(NameSet months, NameSet weekdays) {
  for (std::size_t i = 0; i < std::size(kLanguages); ++i) {
    const NameSet month = forms_of(months, i);
    const NameSet weekday = forms_of(weekdays, i);
    const bool fits = (months == 0 || month != 0) && (weekdays == 0 || weekday != 0);
    const bool has_any = month != 0 || weekday != 0;
    if (fits && has_any) return {kLanguages[i].name, first_form(month), first_form(weekday)};
  }
  return {};
}

bool have_common_language(NameSet months, NameSet weekdays) {
  return months == 0 || weekdays == 0 || !choose_names(months, weekdays).language.empty();
}

bool month_has_point(std::string_view language, NameForm form) {
  const Language* const found = language_of(language);
  if (found == nullptr) return false;
  if (form == NameForm::abbreviated) return has_point(found->short_months);
  return form == NameForm::abbreviated_alone && has_point(found->short_months_alone);
}

bool weekday_has_point(std::string_view language, NameForm form) {
  const Language* const found = language_of(language);
  return found != nullptr && form == NameForm::abbreviated && has_point(found->short_weekdays);
}

}  // namespace textio::columns
