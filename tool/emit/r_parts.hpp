// What the programs in R have in common: values of columns that were read as texts.
#pragma once

#include <string>

#include "tool/emit/emit_facts.hpp"

namespace textio::tool {

// Whether R holds the column as numbers. Integers that a double does not hold stay texts.
bool is_r_number(const ColumnFact& column);

// Whether numbers are read as texts first: quoted ones are no numbers to the readers of R.
bool reads_numbers_as_texts(const Facts& facts);

// table[["day"]] <- as.Date(...) for each column that needs it, and notes for those that stay text.
std::string r_conversions(const Facts& facts);

// What keeps R from a file that its readers can be told all of; or empty.
std::string r_obstacle(const Facts& facts);

// c("a", "b")
std::string r_names(const Facts& facts);

// pipe("vltext convert ...")
std::string r_pipe(const Facts& facts);

}  // namespace textio::tool
