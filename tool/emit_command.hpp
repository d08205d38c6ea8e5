// vltext FILE --emit NAME: prints a program that reads the file. Nothing of it is executed.
#pragma once

#include "tool/command_line.hpp"
#include "tool/messages.hpp"

namespace textio::tool {

// Returns the exit status. The arguments have one file and the name of a target.
int emit_program(const Arguments& arguments, const Streams& streams);

}  // namespace textio::tool
