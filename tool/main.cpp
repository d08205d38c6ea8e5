// vltext: prints how the tables in text files are laid out.
#include <cstdio>

#include "tool/answers.hpp"

int main(int argc, char** argv) { return textio::tool::run_tool(argc, argv, {stdout, stderr}); }
