#include "support/command.hpp"

#include <cstdio>
#include <memory>
#include <stdexcept>

#include <fcntl.h>
#include <spawn.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

extern char** environ;

namespace textio::testing_support {
namespace {

// An unnamed file, deleted when it is closed. It stores the data of a standard stream.
using Spool = std::unique_ptr<std::FILE, int (*)(std::FILE*)>;

Spool make_spool(const std::string& content = {}) {
  Spool spool(std::tmpfile(), &std::fclose);
  if (!spool) throw std::runtime_error("no temporary file");
  std::fwrite(content.data(), 1, content.size(), spool.get());
  std::rewind(spool.get());
  return spool;
}

std::string content_of(const Spool& spool) {
  std::rewind(spool.get());
  std::string content;
  char block[4096];
  while (const std::size_t count = std::fread(block, 1, sizeof block, spool.get())) {
    content.append(block, count);
  }
  return content;
}

}  // namespace

CommandResult run_command(const std::string& program, const std::vector<std::string>& arguments,
                          const std::string& input) {
  std::vector<char*> argv = {const_cast<char*>(program.c_str())};
  for (const std::string& argument : arguments) {
    argv.push_back(const_cast<char*>(argument.c_str()));
  }
  argv.push_back(nullptr);

  const Spool in = make_spool(input);
  const Spool out = make_spool();
  const Spool err = make_spool();
  posix_spawn_file_actions_t streams;
  posix_spawn_file_actions_init(&streams);
  posix_spawn_file_actions_adddup2(&streams, fileno(in.get()), STDIN_FILENO);
  posix_spawn_file_actions_adddup2(&streams, fileno(out.get()), STDOUT_FILENO);
  posix_spawn_file_actions_adddup2(&streams, fileno(err.get()), STDERR_FILENO);
  pid_t child = 0;
  const int failed = posix_spawn(&child, program.c_str(), &streams, nullptr, argv.data(), environ);
  posix_spawn_file_actions_destroy(&streams);
  if (failed != 0) throw std::runtime_error("cannot run " + program);

  int status = 0;
  rusage used = {};
  wait4(child, &status, 0, &used);
  return {WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status), content_of(out),
          content_of(err), static_cast<std::size_t>(used.ru_maxrss)};
}

}  // namespace textio::testing_support
