// Runs a program as a user does: its arguments, what it prints, how it ends.
#pragma once

#include <string>
#include <vector>

namespace textio::testing_support {

struct CommandResult {
  int status = -1;  // exit status, or 128 plus the number of the signal that ended it
  std::string out;
  std::string err;
};

// Runs `program` (a path) with `arguments`, without a shell. `input` is its standard input.
CommandResult run_command(const std::string& program, const std::vector<std::string>& arguments,
                          const std::string& input = {});

}  // namespace textio::testing_support
