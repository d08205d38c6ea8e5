// unique_names: a name for each column that no other column has.
//
//   unique_names({u"level", u"", u"level"}, 4);   // level, column_2, level_2, column_4
//
// Cost  linear in the names, but for names that are numbered already.
#pragma once

#include <cstddef>
#include <string>
#include <vector>

namespace textio::standalone {

// Runs of blanks, line endings and control characters become one blank, those at the ends none.
std::vector<std::u16string> unique_names(const std::vector<std::u16string>& names,
                                         std::size_t num_columns);

}  // namespace textio::standalone
