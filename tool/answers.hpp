// The main job of the tool: the layouts of files, printed in the order of the command line.
//
//   return answer_files(parse_command_line(argc, argv), {stdout, stderr});
//
// An answer is written as soon as those before it are. A file that fails is reported on standard
// error and does not stop the others. Nothing is written to standard output when all of them fail.
//
// Errors  none. A lack of memory is reported as the fault of the file that it concerns.
#pragma once

#include <string>

#include "tool/command_line.hpp"
#include "tool/messages.hpp"
#include "tool/ordered_work.hpp"

namespace textio::tool {

// What is printed about a file.
Answer answer_for(const std::string& file, const Arguments& arguments);

// In which threads the files are looked at.
WorkPlan plan_of(const Arguments& arguments);

// Whether no table was found, or not with confidence.
bool is_doubtful(const standalone::Layout& layout, const Arguments& arguments);

// What a file without a table is; empty for a table.
std::string kind_without_table(const standalone::Layout& layout);

// The exit status: kFailed when a file could not be read or standard output not be written, otherwise
// kDoubtful when no table was found in a file, or not with confidence.
int answer_files(const Arguments& arguments, const Streams& streams);

// All that the program does.
int run_tool(int argc, const char* const* argv, const Streams& streams);

}  // namespace textio::tool
