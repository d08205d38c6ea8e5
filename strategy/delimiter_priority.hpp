// The single-character delimiters that are plausible before any text is read, best first. The prior
// rank of a strategy is the position of its delimiter in this list.
#pragma once

#include <string_view>

namespace textio {

inline constexpr std::u16string_view kDelimiterPriority = u",\t; ";

}  // namespace textio
