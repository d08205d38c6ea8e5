#include "tool/writing/byte_sink.hpp"

#include <cerrno>
#include <cstring>
#include <string_view>

#include <unistd.h>

#include "tool/writing/table_writer.hpp"

namespace textio::tool {

void ByteSink::flush() {
  std::string_view rest = text_;
  while (!rest.empty()) {
    const ssize_t count = write(fd_, rest.data(), rest.size());
    if (count < 0 && errno == EINTR) continue;
    if (count < 0) throw WriteError(name_ + ": " + std::strerror(errno));
    rest.remove_prefix(static_cast<std::size_t>(count));
  }
  text_.clear();
}

}  // namespace textio::tool
