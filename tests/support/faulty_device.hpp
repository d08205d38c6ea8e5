// A file with faults that a test chooses: reads are short, fail or find nothing, and seeks fail.
//
//   FaultyDevice device("a,b\n1,2\n");
//   device.fail_reads_at(3, EIO);      // "a,b" can be read, and then no more
//   source.init_stream(device.open(), "UTF-8");
//
// Ownership  the device must outlive the streams that it opened.
#pragma once

#include <algorithm>
#include <cerrno>
#include <cstddef>
#include <cstdio>
#include <cstring>
#include <limits>
#include <string>
#include <utility>

#include <sys/types.h>

namespace textio::testing_support {

class FaultyDevice {
 public:
  static constexpr std::size_t kAlways = std::numeric_limits<std::size_t>::max();

  explicit FaultyDevice(std::string bytes) : bytes_(std::move(bytes)) {}
  FaultyDevice(const FaultyDevice&) = delete;
  FaultyDevice& operator=(const FaultyDevice&) = delete;

  // A read gives at most this many bytes.
  void shorten_reads(std::size_t most) { most_ = most; }

  // The bytes before `position` can be read. A read there fails with `error`, the first `times`
  // times. With the error 0 it finds nothing, as at the end of a file.
  void fail_reads_at(std::size_t position, int error, std::size_t times = kAlways) {
    barrier_ = {position, error, times};
  }

  // Seeks from the `nth` on, counted from 1, fail `times` times.
  void fail_seeks(std::size_t nth, int error, std::size_t times = kAlways) {
    first_failing_seek_ = seeks_ + nth;
    failing_seeks_ = times;
    seek_error_ = error;
  }

  // Opens the file at its start.
  std::FILE* open() {
    position_ = 0;
    ++opened_;
    return ::fopencookie(this, "rb", {read, nullptr, seek, close});
  }

  std::size_t reads() const { return reads_; }
  std::size_t seeks() const { return seeks_; }

  // The number of streams that have been opened and not closed.
  std::size_t open_streams() const { return opened_ - closed_; }

 private:
  struct Barrier {
    std::size_t position = kAlways;
    int error = 0;
    std::size_t times = 0;
  };

  static ssize_t read(void* cookie, char* to, std::size_t size) {
    return static_cast<FaultyDevice*>(cookie)->read(to, size);
  }
  static int seek(void* cookie, off64_t* offset, int whence) {
    return static_cast<FaultyDevice*>(cookie)->seek(*offset, whence);
  }
  static int close(void* cookie) {
    ++static_cast<FaultyDevice*>(cookie)->closed_;
    return 0;
  }

  ssize_t read(char* to, std::size_t size) {
    ++reads_;
    std::size_t end = bytes_.size();
    const bool is_barred = barrier_.times > 0 && position_ <= barrier_.position;
    if (is_barred && position_ == barrier_.position) {
      if (barrier_.times != kAlways) --barrier_.times;
      errno = barrier_.error;
      return barrier_.error == 0 ? 0 : -1;
    }
    if (is_barred) end = std::min(end, barrier_.position);
    const std::size_t count = std::min({size, most_, end - position_});
    std::memcpy(to, bytes_.data() + position_, count);
    position_ += count;
    return static_cast<ssize_t>(count);
  }

  int seek(off64_t& offset, int whence) {
    ++seeks_;
    if (seeks_ >= first_failing_seek_ && seeks_ - first_failing_seek_ < failing_seeks_) {
      errno = seek_error_;
      return -1;
    }
    const off64_t base = whence == SEEK_SET   ? 0
                         : whence == SEEK_CUR ? static_cast<off64_t>(position_)
                                              : static_cast<off64_t>(bytes_.size());
    if (base + offset < 0) {
      errno = EINVAL;
      return -1;
    }
    position_ = std::min(static_cast<std::size_t>(base + offset), bytes_.size());
    offset = static_cast<off64_t>(position_);
    return 0;
  }

  std::string bytes_;
  std::size_t position_ = 0;
  std::size_t most_ = kAlways;
  Barrier barrier_;
  std::size_t first_failing_seek_ = kAlways;
  std::size_t failing_seeks_ = 0;
  int seek_error_ = 0;
  std::size_t reads_ = 0;
  std::size_t seeks_ = 0;
  std::size_t opened_ = 0;
  std::size_t closed_ = 0;
};

}  // namespace textio::testing_support
