// Runs a program in a terminal of its own, and returns what it writes there.
//
//   run_in_terminal(VLTEXT_PROGRAM, {"data.csv"}, {.columns = 80, .environment = {"TERM=xterm"}});
#pragma once

#include <string>
#include <vector>

namespace textio::testing_support {

struct TerminalSettings {
  unsigned short columns = 80;  // 0: the terminal does not know

  // All variables of the program.
  std::vector<std::string> environment = {};
};

// Standard output and standard error, with the line endings of the program.
std::string run_in_terminal(const std::string& program, const std::vector<std::string>& arguments,
                            const TerminalSettings& settings);

}  // namespace textio::testing_support
