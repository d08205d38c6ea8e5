#include <vltextstream/standalone/files/bounded_stream.hpp>

#include <algorithm>
#include <cerrno>
#include <cstdio>

#include <vltextstream/standalone/files/end_look.hpp>
#include <vltextstream/standalone/files/read_problem.hpp>

namespace textio::standalone {

ssize_t BoundedStream::read(char* to, std::size_t size) {
  if (size == 0) return 0;
  const std::int64_t bound = looks_at_end() ? INT64_MAX : bound_;
  if (position_ >= bound) return read_at_bound();
  const auto allowed = static_cast<std::uint64_t>(bound - position_);
  const ssize_t count = bytes_->read(to, std::min<std::uint64_t>(size, allowed));
  if (count > 0) position_ += count;
  return count;
}

// 0 where the stream ends, else an error. The byte that shows it is given back: the next read looks
// again.
ssize_t BoundedStream::read_at_bound() {
  char next = 0;
  ssize_t count = 1;
  if (position_ == bound_) count = bytes_->read(&next, sizeof next);
  if (count <= 0) return count;
  bytes_->seek(position_, SEEK_SET);
  errno = kTooManyBytes;
  return -1;
}

std::int64_t BoundedStream::seek(std::int64_t offset, int whence) {
  const std::int64_t target = bytes_->seek(offset, whence);
  if (target >= 0) position_ = target;
  return target;
}

}  // namespace textio::standalone
