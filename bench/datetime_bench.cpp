// Date checks, without a locale and with one bound. The scope that binds a locale is internal to
// the host, so this program is linked from its objects.
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include <vltextstream/host/datetime.hpp>
#include <vltextstream/standalone/dates/date_locale.hpp>
#include <vltextstream/strategy/field.hpp>
#include "bench/measure.hpp"

namespace textio::bench {
namespace {

// Typical inputs of a date check: fields with a digit that are not numbers. A quarter of them is
// written in the style of the named locale.
struct Fields {
  const char* name;
  const char16_t* locale;
  std::u16string_view own[8];
};

constexpr std::u16string_view kCommon[] = {
    u"2024-03-01",    u"2024-03-01 10:00:00",
    u"01.03.2024",    u"Fri, 01 Mar 2024 10:00:00 GMT",
    u"March 1, 2024", u"20240301T100000Z",
    u"12 apples",     u"room 7",
    u"192.168.0.1",   u"A-17",
    u"1.2.3-rc4",     u"2024-13-01",
    u"3/4 inch",      u"9th avenue",
    u"10:00, 12 km",  u"01/Mar/2024:10:00:00 +0000",
    u"+49 30 123456", u"52.52, 13.40",
    u"30.02.2021",    u"no. 12 of 31",
    u"1,234.50",      u"X-100-2024",
    u"Mai Street 12", u"10-12",
};

constexpr Fields kEnglish = {"english_alone",
                             u"",
                             {u"1 Mar 2024", u"31 December 1999", u"Mar 1 2024", u"1st May 2024",
                              u"mars 2024", u"maybe 3", u"sun 4", u"Mon 1"}};
constexpr Fields kGerman = {
    "german",
    u"de_DE",
    {u"1. M\u00e4rz 2024", u"31. Dezember 1999", u"Fr., 1. M\u00e4rz 2024", u"1. Mai 2024 um 10:00",
     u"M\u00e4rz 2024", u"\u00dcbung 3", u"Raum 12", u"Mo 1"}};
constexpr Fields kSpanish = {
    "spanish",
    u"es_ES",
    {u"1 de marzo de 2024", u"31 de diciembre de 1999", u"viernes, 1 de marzo de 2024",
     u"1 ene 2024", u"marzo 2024", u"a\u00f1o 3", u"calle de la Paz 12", u"1 de 3"}};
constexpr Fields kJapanese = {
    "japanese",
    u"ja_JP",
    {u"2024\u5e743\u67081\u65e5", u"2024\u5e743\u67081\u65e5\u91d1\u66dc\u65e5",
     u"2024\u5e743\u67081\u65e5 10:00", u"2024/03/01", u"3\u67081\u65e5", u"7\u53f7\u5ba4",
     u"12\u500b", u"2024\u5e743\u6708"}};
constexpr Fields kVietnamese = {
    "vietnamese",
    u"vi_VN",
    {u"1 th\u00e1ng 3, 2024", u"31 th\u00e1ng 12, 2024", u"Th\u1ee9 S\u00e1u, 1 th\u00e1ng 3, 2024",
     u"1 thg 3, 2024", u"th\u00e1ng 3", u"ph\u00f2ng 7", u"12 qu\u1ea3", u"s\u1ed1 9"}};

// 32 fields.
Step recognise_dates(const Fields& texts) {
  const auto scope = std::make_shared<datetime::DateLocaleScope>(texts.locale);
  std::vector<Field> fields;
  for (const auto text : kCommon) fields.emplace_back(text.data(), text.size());
  std::size_t bytes = 0;
  for (const auto text : texts.own) fields.emplace_back(text.data(), text.size());
  for (const Field& field : fields) bytes += field.length * sizeof(char16_t);
  return {[scope, fields] {
            for (const Field& field : fields) keep(datetime::is_datetime(field));
          },
          bytes,
          {{"fields", static_cast<double>(fields.size())}}};
}

Step bind_known_locale() {
  return {[] { keep(datetime::DateLocaleScope(u"de_DE")); }};
}

void add_all() {
  for (const Fields* texts : {&kEnglish, &kGerman, &kSpanish, &kJapanese, &kVietnamese}) {
    add_step(std::string("recognise_dates/") + texts->name,
             [texts] { return recognise_dates(*texts); });
  }
  add_step("bind_known_locale", bind_known_locale);
}

}  // namespace
}  // namespace textio::bench

int main(int argc, char** argv) { return textio::bench::run(argc, argv, textio::bench::add_all); }
