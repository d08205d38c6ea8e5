// What speaks for names in the first record of a table.
//
// Cost  linear in the first hundred records.
#pragma once

#include <array>
#include <cstddef>
#include <string_view>
#include <vector>

#include <vltextstream/assessment/evidence.hpp>
#include <vltextstream/assessment/records.hpp>

namespace textio::assessment {

enum class NamesEvidence {
  value_among_names,  // 1 if a cell of the record is a number, date, time or address
  text_over_values,   // 1 if a text is above a column of at least 80 % values
  name_below,         // 1 if a name occurs again in its column
  like_names,         // share of cells that begin with a letter and are short
  odd_length,  // how many spreads a name's length is away from its column's mean, at most 3; mean
  no_data,     // 1 if there is no second record
  column_of_texts,  // 1 if the only column is of texts, so that there is little to compare
  shaped_alike,  // 1 if a name with digits has the shape of 80 % of the cells below it, as identifiers do
  only_texts,  // 1 if there are several columns, and none of which at least half are values
  other_case,  // share of columns whose cells, at least 80 %, begin in another case than the name
  mixed_case,  // 1 if some names begin in upper case and some in lower case, each as the cells below it
};
inline constexpr std::size_t kNumNamesEvidence =
    static_cast<std::size_t>(NamesEvidence::mixed_case) + 1;

using NamesAmounts = std::array<double, kNumNamesEvidence>;

std::string_view to_string(NamesEvidence evidence);

// For the first of the data records, or for `names` in its place if these are given. `kinds` are those of
// the first data, at least of kRecordsForNames if there are so many. Column `row_names`, if it is not 0, needs no
// name.
inline constexpr std::size_t kRecordsForNames = 100;
NamesAmounts weigh_names(const Records& records, const TableFrame& table, const CellKinds& kinds,
                         const std::vector<std::u16string_view>* names = nullptr,
                         std::size_t row_names = 0);

}  // namespace textio::assessment
