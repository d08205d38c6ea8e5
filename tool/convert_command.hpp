// `vltext convert`: reads tables and writes them as clean ones.
//
//   return convert_files(parse_convert_line(argc, argv), {stdout, stderr});
//
// What is written to a file replaces it when the whole table was read, and only then: see OutputFile. A file that
// fails is reported on standard error and does not stop the others.
//
// Errors  none, except UsageError and BadArgument for outputs that the arguments cannot have.
#pragma once

#include "tool/messages.hpp"
#include "tool/table_commands.hpp"

namespace textio::tool {

// The exit status: kFailed when a file was not converted, otherwise kDoubtful when something of it was dropped that
// no option asked for, or its layout is in doubt.
int convert_files(const ConvertArguments& arguments, const Streams& streams);

// The name of a SQLite table for a file: "gauge" for "data/gauge.csv.gz".
std::string table_named_after(const std::string& file);

}  // namespace textio::tool
