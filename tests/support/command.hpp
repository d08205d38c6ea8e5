// Runs a program as a user does: its arguments, what it prints, how it ends.
#pragma once

#include <cstddef>
#include <string>
#include <vector>

namespace textio::testing_support {

struct CommandResult {
  int status = -1;  // exit status, or 128 plus the number of the signal that ended it
  std::string out;
  std::string err;

  // The most memory that it held, but no less than this process had held when it was started.
  std::size_t peak_kilobytes = 0;
};

// Runs `program` (a path) with `arguments`; no shell sees them. `input` is what it reads from
// standard input.
CommandResult run_command(const std::string& program, const std::vector<std::string>& arguments,
                          const std::string& input = {});

}  // namespace textio::testing_support
