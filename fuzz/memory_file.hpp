// MemoryFile: bytes in memory that are read as a C stream, in pieces of a chosen size, and whose
// reads can fail.
//
//   MemoryFile file("a,b\n1,2\n", 3);
//   source.init_stream(file.open(), "UTF-8");       // reads three bytes at a time
//   file.open_streams();                            // 1 until the source closes its stream
//
// Ownership  the caller closes the stream that it opens; the bytes and the object must outlive it.
#pragma once

#include <algorithm>
#include <cerrno>
#include <cstddef>
#include <cstdio>
#include <cstring>
#include <string_view>

#include <sys/types.h>

namespace textio::fuzz {

class MemoryFile {
 public:
  // A read gives at most `piece` bytes; 0 means as many as requested.
  MemoryFile(std::string_view bytes, std::size_t piece) : bytes_(bytes), piece_(piece) {}
  MemoryFile(const MemoryFile&) = delete;
  MemoryFile& operator=(const MemoryFile&) = delete;

  std::FILE* open() {
    cookie_io_functions_t calls{};
    calls.read = [](void* self, char* to, std::size_t most) {
      return static_cast<MemoryFile*>(self)->read(to, most);
    };
    calls.seek = [](void* self, off64_t* offset, int from) {
      return static_cast<MemoryFile*>(self)->seek(offset, from);
    };
    calls.close = [](void* self) {
      --static_cast<MemoryFile*>(self)->open_streams_;
      return 0;
    };
    position_ = 0;
    ++open_streams_;
    return ::fopencookie(this, "rb", calls);
  }

  // The `nth` read from now on fails, counted from 1, or it and all later ones; 0 means none.
  void fail_read(std::size_t nth, bool all_after_it) {
    failing_read_ = nth == 0 ? 0 : reads_ + nth;
    all_after_it_ = all_after_it;
  }

  int open_streams() const { return open_streams_; }
  std::size_t reads() const { return reads_; }

 private:
  ssize_t read(char* to, std::size_t most) {
    ++reads_;
    const bool is_later = all_after_it_ && reads_ > failing_read_;
    if (failing_read_ != 0 && (reads_ == failing_read_ || is_later)) {
      errno = EIO;
      return -1;
    }
    const std::string_view rest = bytes_.substr(position_);
    const std::size_t count = std::min({rest.size(), most, piece_ == 0 ? most : piece_});
    std::memcpy(to, rest.data(), count);
    position_ += count;
    return static_cast<ssize_t>(count);
  }

  int seek(off64_t* offset, int from) {
    const auto base = from == SEEK_CUR   ? static_cast<off64_t>(position_)
                      : from == SEEK_END ? static_cast<off64_t>(bytes_.size())
                                         : 0;
    const off64_t target = base + *offset;
    if (target < 0) return -1;
    position_ = std::min(static_cast<std::size_t>(target), bytes_.size());
    *offset = static_cast<off64_t>(position_);
    return 0;
  }

  std::string_view bytes_;
  std::size_t piece_;
  std::size_t position_ = 0;
  std::size_t reads_ = 0;
  std::size_t failing_read_ = 0;
  bool all_after_it_ = false;
  int open_streams_ = 0;
};

}  // namespace textio::fuzz
