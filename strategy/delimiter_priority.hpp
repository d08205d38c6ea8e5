// The one-character delimiters that are plausible before any text is seen, best first. A strategy's
// prior rank is the place of its delimiter in this list.
#pragma once

#include <string_view>

namespace textio {

inline constexpr std::u16string_view kDelimiterPriority = u",\t; ";

}  // namespace textio
