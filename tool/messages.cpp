#include "tool/messages.hpp"

#include <cerrno>
#include <cstring>

#include "tool/safe_text.hpp"

namespace textio::tool {
namespace {

constexpr std::size_t kLongestPath = 4096;  // bytes; the system opens no longer one

void complain_of_output(const Streams& streams, int error) noexcept {
  std::fprintf(streams.err, "vltext: standard output: %s\n", std::strerror(error));
}

}  // namespace

void complain(std::string_view message, std::FILE* err) noexcept {
  std::fputs("vltext: ", err);
  write_printable(message, err);
  std::fputc('\n', err);
}

void complain_of_memory(std::string_view file, std::FILE* err) noexcept {
  std::fputs("vltext: cannot read '", err);
  write_printable(file.substr(0, kLongestPath), err);
  std::fprintf(err, "': %s\n", std::strerror(ENOMEM));
}

bool write_out(std::string_view first, std::string_view second, const Streams& streams) noexcept {
  errno = 0;
  const auto is_written = [&](std::string_view text) {
    return std::fwrite(text.data(), 1, text.size(), streams.out) == text.size();
  };
  if (is_written(first) && is_written(second) && std::fflush(streams.out) == 0) return true;
  complain_of_output(streams, errno);
  return false;
}

}  // namespace textio::tool
