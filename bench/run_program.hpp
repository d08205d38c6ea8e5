// A program as a process of its own.
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

// The path of the program, and what it is told.
using Arguments = std::vector<std::string>;

struct EndedProgram {
  int status;              // what it returned, -1 where a signal ended it
  std::size_t peak_bytes;  // the most memory that it had in use
};

// What it writes is lost.
EndedProgram run_program(const Arguments& arguments);

void run_or_throw(const Arguments& arguments);

}  // namespace textio::bench
