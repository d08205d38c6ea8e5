// Runs a program as a separate process.
//
//   const EndedProgram ended = run_program({"/usr/bin/sort", "names.txt"});
//   ended.status;   // 0
//
// Errors  std::runtime_error where the process cannot be started or waited for; run_or_throw also
//         where it ends with another status than 0.
// Cost    returns when the process has ended.
#pragma once

#include <cstddef>
#include <string>
#include <vector>

namespace textio::bench {

// The path of the program, and its arguments.
using Arguments = std::vector<std::string>;

struct EndedProgram {
  int status;              // its exit status, -1 if a signal ended it
  std::size_t peak_bytes;  // the most memory in use
};

// Its output is discarded.
EndedProgram run_program(const Arguments& arguments);

void run_or_throw(const Arguments& arguments);

}  // namespace textio::bench
