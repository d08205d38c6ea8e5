// A stream of bytes in memory that delivers them in pieces and fails at a chosen position.
//
//   ScriptedBytes bytes("abcdef");
//   bytes.piece = 2;              // at most two bytes at a time
//   bytes.fails_at = 4;           // nothing from position 4 on but `error`
#pragma once

#include <algorithm>
#include <cerrno>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <memory>
#include <new>
#include <string>
#include <utility>

#include <vltextstream/standalone/files/byte_stream.hpp>

namespace textio::testing_support {

class ScriptedBytes : public standalone::ByteStream {
 public:
  explicit ScriptedBytes(std::string bytes) : bytes_(std::move(bytes)) {}

  std::size_t piece = std::string::npos;
  std::size_t fails_at = std::string::npos;
  int error = EIO;
  bool runs_out_of_memory = false;  // instead of failing with `error`
  bool goes_back = true;

  ssize_t read(char* to, std::size_t size) override {
    if (position_ >= fails_at) return fail(error);
    const std::size_t until = std::min(bytes_.size(), fails_at);
    const std::size_t count = std::min({size, piece, until - std::min(position_, until)});
    std::memcpy(to, bytes_.data() + position_, count);
    position_ += count;
    return static_cast<ssize_t>(count);
  }

  std::int64_t seek(std::int64_t offset, int whence) override {
    if (!goes_back) return fail(ESPIPE);
    const std::size_t base = whence == SEEK_SET   ? 0
                             : whence == SEEK_CUR ? position_
                                                  : bytes_.size();
    position_ = base + static_cast<std::size_t>(offset);
    return static_cast<std::int64_t>(position_);
  }

 private:
  int fail(int reason) const {
    if (runs_out_of_memory) throw std::bad_alloc();
    errno = reason;
    return -1;
  }

  std::string bytes_;
  std::size_t position_ = 0;
};

// All that a stream still gives when `size` bytes are requested at a time, and the errno at its
// end; 0 for a clean end.
struct AllRead {
  std::string text;
  int error = 0;
};

inline AllRead read_all(standalone::ByteReader& bytes, std::size_t size = 4096) {
  AllRead all;
  for (;;) {
    const std::unique_ptr<char[]> piece(new char[size]);
    errno = 0;
    const ssize_t count = bytes.read(piece.get(), size);
    if (count < 0) all.error = errno;
    if (count <= 0) return all;
    all.text.append(piece.get(), static_cast<std::size_t>(count));
  }
}

}  // namespace textio::testing_support
