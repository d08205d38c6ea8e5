// Files are read with pread, which does not change the offset of a descriptor that other processes
// share, such as standard input. The C stream comes from fopencookie, whose callbacks call the
// virtual functions.
#include <vltextstream/standalone/files/byte_stream.hpp>

#include <algorithm>
#include <cerrno>
#include <new>

#include <poll.h>
#include <sys/stat.h>
#include <unistd.h>

namespace textio::standalone {
namespace {

// Turns a failed allocation into an error of the stream. No other exceptions occur; the unwinding
// of a cancelled thread must pass through.
template <typename Call>
auto with_errno(Call call) -> decltype(call()) {
  try {
    return call();
  } catch (const std::bad_alloc&) {
    errno = ENOMEM;
    return -1;
  }
}

ssize_t read_cookie(void* cookie, char* to, std::size_t size) {
  return with_errno([&] { return static_cast<ByteStream*>(cookie)->read(to, size); });
}

int seek_cookie(void* cookie, off64_t* offset, int whence) {
  const std::int64_t position =
      with_errno([&] { return static_cast<ByteStream*>(cookie)->seek(*offset, whence); });
  if (position < 0) return -1;
  *offset = position;
  return 0;
}

int close_cookie(void* cookie) {
  delete static_cast<ByteStream*>(cookie);
  return 0;
}

// Repeats the call while signals interrupt it.
template <typename Call>
ssize_t uninterrupted(Call call) {
  ssize_t result = -1;
  do {
    result = call();
  } while (result < 0 && errno == EINTR);
  return result;
}

}  // namespace

std::int64_t sum_of_positions(std::int64_t base, std::int64_t offset) {
  std::int64_t sum = 0;
  if (__builtin_add_overflow(base, offset, &sum)) {
    errno = EOVERFLOW;
    return -1;
  }
  if (sum < 0) errno = EINVAL;
  return std::max<std::int64_t>(sum, -1);
}

std::FILE* as_c_stream(std::unique_ptr<ByteStream> bytes) {
  std::FILE* const file =
      ::fopencookie(bytes.get(), "r", {read_cookie, nullptr, seek_cookie, close_cookie});
  if (file != nullptr) static_cast<void>(bytes.release());
  return file;
}

Descriptor::~Descriptor() {
  const int reason = errno;
  if (number_ >= 0) ::close(number_);
  errno = reason;
}

ssize_t FileBytes::read(char* to, std::size_t size) {
  const std::int64_t at = sum_of_positions(start_, position_);
  if (at < 0) return 0;  // no file is that long
  const ssize_t count = uninterrupted([&] { return ::pread(file_.number(), to, size, at); });
  if (count > 0) position_ += count;
  return count;
}

std::int64_t FileBytes::seek(std::int64_t offset, int whence) {
  std::int64_t base = whence == SEEK_CUR ? position_ : 0;
  if (whence == SEEK_END) {
    struct stat about {};
    if (::fstat(file_.number(), &about) != 0) return -1;
    base = std::max<std::int64_t>(about.st_size - start_, 0);
  }
  const std::int64_t target = sum_of_positions(base, offset);
  if (target >= 0) position_ = target;
  return target;
}

ssize_t PipeBytes::read(char* to, std::size_t size) {
  for (;;) {
    const ssize_t count = uninterrupted([&] { return ::read(pipe_.number(), to, size); });
    if (count >= 0 || (errno != EAGAIN && errno != EWOULDBLOCK)) return count;
    pollfd wanted = {pipe_.number(), POLLIN, 0};
    if (::poll(&wanted, 1, -1) < 0 && errno != EINTR) return -1;
  }
}

}  // namespace textio::standalone
