// The locale whose names a date may be written with, besides the English ones.
//
//   {
//     const DateLocaleScope scope(u"de_DE");
//     datetime::is_datetime(field);          // "1. Maerz 2024" with its a-umlaut is a date
//   }                                        // and is none here
//
// Errors   DateLocaleScope throws std::invalid_argument for what is no locale,
//          "DateLocale: Expected the name of a locale such as de_DE, got 'xx'."; std::runtime_error
//          when ICU lacks its data; std::bad_alloc. Nothing is bound then.
// Cost     the first scope of a locale reads its names, some milliseconds; the tables of the 64
//          locales used first are kept, and of others as long as a scope needs them. Later scopes
//          look the locale up.
// Threads  a scope counts on its thread alone. Tables are immutable and shared by threads.
#pragma once

#include <memory>
#include <string_view>

#include <vltextstream/standalone/dates/date_names.hpp>

namespace textio::datetime {

// Binds a locale to the thread until its end, when the former one comes back: scopes nest. Names
// are taken as in "de", "de_DE", "zh-Hant-TW", in any case; a region that is not known does not
// matter. The empty name stands for English alone.
class DateLocaleScope {
 public:
  explicit DateLocaleScope(std::u16string_view locale);
  ~DateLocaleScope();
  DateLocaleScope(const DateLocaleScope&) = delete;
  DateLocaleScope& operator=(const DateLocaleScope&) = delete;

 private:
  std::shared_ptr<const DateNames> names_;
  const DateNames* former_;
};

// What the innermost scope of this thread has bound, the English names outside of all scopes.
const DateNames& names_in_force() noexcept;

}  // namespace textio::datetime
