// What a shell completes after `vltext`: a script for each shell, made from the table of the commands.
//
//   std::string script = completions("bash", command_table());
//
// Completed are commands, options, the words that an option takes, and the names of files.
//
// Errors  BadArgument for another shell, with the nearest one.
#pragma once

#include <string>
#include <vector>

#include "tool/conventions/command_table.hpp"

namespace textio::tool {

std::string completions(const std::string& shell, const std::vector<CommandEntry>& commands);

// bash, zsh, fish
const std::vector<std::string>& shells();

}  // namespace textio::tool
