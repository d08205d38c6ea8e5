// DateWords: the names of months and weekdays in the languages whose dates are recognised.
//
//   const DateWord* word = find_date_word(u"Okt");   // month 10, short, in "de", "nl", "sv", ...
//
// A name may belong to several languages and be both long and short: "mai". A set of 64 bits says
// which, one bit for each form in each language. The set of a column is the intersection of those
// of its cells.
//
// Units    folded or not, without a point at the end.
// Errors   std::bad_alloc at the first call.
// Cost     the first call sorts some 900 names; a look-up is a binary search.
// Threads  all functions may run at the same time.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

namespace textio::columns {

// The forms that ICU distinguishes. A name in a form "alone" has no day before it.
enum class NameForm : std::uint8_t { full, abbreviated, full_alone, abbreviated_alone };

inline constexpr std::size_t kNameForms = 4;

// Names as a set of (language, form).
using NameSet = std::uint64_t;

struct DateWord {
  std::u16string text;  // folded, without a point
  int month = 0;        // 1 to 12; 0 if it is not a month
  NameSet months = 0;
  NameSet weekdays = 0;
};

// Null if the text is neither a month nor a weekday.
const DateWord* find_date_word(std::u16string_view text);

// A language and a form in each set, the first language that both have. An empty set stands for a
// column without such names.
struct NameChoice {
  std::string_view language;  // "en"; empty if both sets are
  NameForm month = NameForm::full;
  NameForm weekday = NameForm::full;
};
NameChoice choose_names(NameSet months, NameSet weekdays);

// Whether one language is in both sets; an empty set is in every language.
bool have_common_language(NameSet months, NameSet weekdays);

// Whether ICU's names of months, or of weekdays, end with a point in this language and form, as
// "Okt." does in German: its formats read such a name with or without the point.
bool month_has_point(std::string_view language, NameForm form);
bool weekday_has_point(std::string_view language, NameForm form);

}  // namespace textio::columns
