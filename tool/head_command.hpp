// `vltext head`: the first rows of tables, printed for people.
//
//   return print_heads(parse_head_line(argc, argv), {stdout, stderr});
//
// A file that fails is reported on standard error and does not stop the others. Several files have a line with their
// names before them.
#pragma once

#include <string>

#include "tool/messages.hpp"
#include "tool/table_commands.hpp"
#include "tool/table_source.hpp"

namespace textio::tool {

// The first rows as text: the names, the types, and the values. No more batches are taken than they need.
std::string head_of(TableSource& table, std::size_t num_rows);

// The exit status.
int print_heads(const HeadArguments& arguments, const Streams& streams);

}  // namespace textio::tool
