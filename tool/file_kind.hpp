// What a file is that holds no table, by the first bytes of its content, as libmagic names it.
//
//   file_kind("%PDF-1.4\n");             // "PDF document"
//   file_kind("Once upon a time ...");   // "": plain text
//
// Errors   none: without a name, or without the database of libmagic, the kind is empty.
// Cost     some milliseconds for the database, once in each thread, and about one for each call.
// Threads  each has a database of its own.
#pragma once

#include <string>
#include <string_view>

namespace textio::tool {

std::string file_kind(std::string_view first_bytes);

}  // namespace textio::tool
