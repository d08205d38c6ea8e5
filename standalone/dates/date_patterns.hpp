// Date patterns of CLDR ("d 'de' MMMM 'de' y") taken apart, for recognition.
//
//   auto pattern = parse_date_pattern(u"d. MMMM y", folding);   // day, ". ", month's name, ...
//
// Errors   a pattern that is not made of one day, one month, one year, weekdays, eras and texts
//          gives nothing; std::bad_alloc.
#pragma once

#include <optional>
#include <string_view>

#include <vltextstream/standalone/dates/date_names.hpp>

namespace textio::datetime {

std::optional<DatePattern> parse_date_pattern(std::u16string_view pattern, const Folding& folding);

// A pattern of texts alone, such as what stands between date and time: the text, without quotes
// and folded. Nothing if it has other parts.
std::optional<std::u16string> parse_literal_pattern(std::u16string_view pattern,
                                                    const Folding& folding);

// `pattern` with "de" in place of "del" or the other way round where that stands before the year;
// nothing where neither does. Catalan and Spanish writers use both.
std::optional<DatePattern> with_other_article(const DatePattern& pattern);

}  // namespace textio::datetime
