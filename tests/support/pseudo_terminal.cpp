#include "support/pseudo_terminal.hpp"

#include <cerrno>
#include <system_error>
#include <utility>

#include <pty.h>
#include <sys/wait.h>
#include <unistd.h>

namespace textio::testing_support {
namespace {

std::vector<char*> pointers_to(const std::vector<std::string>& texts) {
  std::vector<char*> pointers;
  for (const std::string& text : texts) pointers.push_back(const_cast<char*>(text.c_str()));
  pointers.push_back(nullptr);
  return pointers;
}

// Until the program has closed its end, which is an error of this one.
std::string all_of(int terminal) {
  std::string out;
  char bytes[4096];
  while (true) {
    const ssize_t count = ::read(terminal, bytes, sizeof bytes);
    if (count < 0 && errno == EINTR) continue;
    if (count <= 0) return out;
    out.append(bytes, static_cast<std::size_t>(count));
  }
}

// The terminal writes "\r\n" for "\n".
std::string as_written(std::string text) {
  for (std::size_t at = text.find("\r\n"); at != text.npos; at = text.find("\r\n", at + 1))
    text.erase(at, 1);
  return text;
}

}  // namespace

std::string run_in_terminal(const std::string& program, const std::vector<std::string>& arguments,
                            const TerminalSettings& settings) {
  std::vector<std::string> words = {program};
  words.insert(words.end(), arguments.begin(), arguments.end());
  const std::vector<char*> argv = pointers_to(words);
  const std::vector<char*> environment = pointers_to(settings.environment);
  const winsize size = {24, settings.columns, 0, 0};
  int terminal = -1;
  const pid_t child = forkpty(&terminal, nullptr, nullptr, &size);
  if (child < 0) throw std::system_error(errno, std::generic_category(), "forkpty");
  if (child == 0) {
    execve(program.c_str(), argv.data(), environment.data());
    _exit(127);
  }
  std::string out = all_of(terminal);
  close(terminal);
  waitpid(child, nullptr, 0);
  return as_written(std::move(out));
}

}  // namespace textio::testing_support
