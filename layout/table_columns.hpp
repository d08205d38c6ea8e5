// What the columns of a judged table hold.
#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

#include <vltextstream/assessment/verdict.hpp>
#include <vltextstream/layout/column_facts.hpp>
#include <vltextstream/layout/detect_layout.hpp>

namespace textio::standalone {

inline constexpr std::size_t kMostColumnsDescribed = 2000;

struct TableColumns {
  std::vector<ColumnFacts> facts;  // one for each column

  // The marks of most columns with numbers that leave no doubt, or else of the first one with doubt.
  std::optional<char16_t> decimal;
  std::optional<char16_t> grouping;

  // The missing words of all columns, the most frequent first.
  std::vector<MissingWord> missing() const;
};

// The first columns of the winner, at most kMostColumnsDescribed. `rows` are its records that hold data; `names` the names of the columns, if
// there are any.
TableColumns describe_columns(const assessment::Verdict& verdict,
                              const std::vector<std::size_t>& rows,
                              const std::vector<std::u16string>& names,
                              const DetectSettings& settings);

}  // namespace textio::standalone
