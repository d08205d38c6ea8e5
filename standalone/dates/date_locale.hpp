// DateLocaleScope: the locale whose names a date may have, besides the English ones.
//
//   {
//     const DateLocaleScope scope(u"de_DE");
//     datetime::is_datetime(field);          // "1. Maerz 2024" with its a-umlaut is a date
//   }                                        // no longer a date here
//
// Errors   DateLocaleScope throws std::invalid_argument for an unknown locale,
//          "DateLocale: Expected the name of a locale such as de_DE, got 'xx'."; std::runtime_error
//          if ICU lacks its data; std::bad_alloc. Nothing is bound then.
// Cost     the first scope of a locale reads its names, which takes some milliseconds. The tables
//          of the first 64 locales are kept for later scopes, those of others while a scope uses
//          them.
// Threads  a scope affects only its own thread. Tables are immutable and shared by threads.
#pragma once

#include <memory>
#include <string_view>

#include <vltextstream/standalone/dates/date_names.hpp>

namespace textio::datetime {

// Binds a locale to the thread until the end of the scope, which restores the previous one. Names
// are written as in "de", "de_DE", "zh-Hant-TW", in any case; an unknown region is ignored. The
// empty name means English alone.
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

// The names of the innermost scope of this thread; outside of all scopes the English names.
const DateNames& names_in_force() noexcept;

}  // namespace textio::datetime
