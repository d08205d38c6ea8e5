#include "bench/run_program.hpp"

#include <fcntl.h>
#include <spawn.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <stdexcept>

extern char** environ;

namespace textio::bench {

EndedProgram run_program(const Arguments& arguments) {
  std::vector<char*> argv;
  for (const std::string& argument : arguments) argv.push_back(const_cast<char*>(argument.c_str()));
  argv.push_back(nullptr);
  posix_spawn_file_actions_t streams;
  ::posix_spawn_file_actions_init(&streams);
  ::posix_spawn_file_actions_addopen(&streams, STDOUT_FILENO, "/dev/null", O_WRONLY, 0);
  ::posix_spawn_file_actions_addopen(&streams, STDERR_FILENO, "/dev/null", O_WRONLY, 0);
  pid_t child = 0;
  const int failed = ::posix_spawn(&child, argv[0], &streams, nullptr, argv.data(), environ);
  ::posix_spawn_file_actions_destroy(&streams);
  if (failed != 0) throw std::runtime_error("cannot run " + arguments.front());
  int status = 0;
  rusage usage = {};
  if (::wait4(child, &status, 0, &usage) != child) throw std::runtime_error("lost a process");
  return {WIFEXITED(status) ? WEXITSTATUS(status) : -1,
          static_cast<std::size_t>(usage.ru_maxrss) * 1024};
}

void run_or_throw(const Arguments& arguments) {
  if (run_program(arguments).status != 0) throw std::runtime_error(arguments.front() + " failed");
}

}  // namespace textio::bench
