// vltext: prints how the tables in text files are laid out.
#include <cstdio>

#include "tool/answers.hpp"

int main(int argc, char** argv) {
  // Messages are written in pieces, and should arrive as whole lines.
  static char line[4096];
  std::setvbuf(stderr, line, _IOLBF, sizeof line);
  return textio::tool::run_tool(argc, argv, {stdout, stderr});
}
