// Parses date patterns of CLDR ("d 'de' MMMM 'de' y"), for recognition.
//
//   auto pattern = parse_date_pattern(u"d. MMMM y", folding);   // day, ". ", month's name, ...
//
// Errors   nothing is returned unless the pattern is made of one day, one month, one year,
//          weekdays, eras and texts; std::bad_alloc.
#pragma once

#include <optional>
#include <string_view>

#include <vltextstream/standalone/dates/date_names.hpp>

namespace textio::datetime {

std::optional<DatePattern> parse_date_pattern(std::u16string_view pattern, const Folding& folding);

// The folded text of a pattern that is only text, such as the one between date and time. Nothing if
// it has other parts.
std::optional<std::u16string> parse_literal_pattern(std::u16string_view pattern,
                                                    const Folding& folding);

// `pattern` with "de" before the year replaced by "del", or the reverse; nothing if it has neither.
// Catalan and Spanish writers use both.
std::optional<DatePattern> with_other_article(const DatePattern& pattern);

}  // namespace textio::datetime
