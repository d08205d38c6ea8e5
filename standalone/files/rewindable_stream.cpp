// All bytes go from the source into the blocks, and from there to the reader. A block is allocated
// before the source is read, so that no byte is lost when memory runs out. The last bytes are
// always kept, because the C library goes back to the start of its own buffer before it goes
// forward.
#include <vltextstream/standalone/files/rewindable_stream.hpp>

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstring>

#include <vltextstream/standalone/files/end_look.hpp>

namespace textio::standalone {

ssize_t RewindableStream::read(char* to, std::size_t size) {
  if (size == 0) return 0;
  while (position_ >= end_) {
    const ssize_t came = read_on();
    if (came <= 0) return came;
  }
  const std::int64_t at = position_ - begin_;
  const char* const block = blocks_[static_cast<std::size_t>(at / kBlockBytes)].get();
  const std::int64_t in_block = kBlockBytes - at % kBlockBytes;
  const std::size_t count =
      std::min(size, static_cast<std::size_t>(std::min(end_ - position_, in_block)));
  std::memcpy(to, block + at % kBlockBytes, count);
  position_ += static_cast<std::int64_t>(count);
  return static_cast<ssize_t>(count);
}

// Adds the bytes that the source has available.
ssize_t RewindableStream::read_on() {
  if (at_end_) return 0;
  if (error_ != 0) {
    errno = error_;
    return -1;
  }
  const std::int64_t kept = end_ - begin_;
  if (kept == static_cast<std::int64_t>(blocks_.size()) * kBlockBytes) {
    blocks_.push_back(std::make_unique<char[]>(kBlockBytes));
  }
  const std::int64_t used = kept % kBlockBytes;
  const ssize_t count =
      source_->read(blocks_.back().get() + used, static_cast<std::size_t>(kBlockBytes - used));
  if (count < 0) error_ = errno;
  at_end_ = count == 0;
  if (count > 0) end_ += count;
  const bool keeps_all = begin_ == 0 && end_ <= kKeptBytes;
  if (!keeps_all) forget();
  return count;
}

void RewindableStream::forget() {
  for (; blocks_.size() > 2; blocks_.pop_front()) begin_ += kBlockBytes;
}

std::int64_t RewindableStream::seek(std::int64_t offset, int whence) {
  const bool is_known = whence != SEEK_END || (at_end_ && !looks_at_end());
  const std::int64_t base = whence == SEEK_SET ? 0 : whence == SEEK_CUR ? position_ : end_;
  const std::int64_t target = sum_of_positions(base, offset);
  if (target < 0 && is_known) return -1;
  if (!is_known || target < begin_) {
    errno = ESPIPE;
    return -1;
  }
  position_ = target;
  return target;
}

}  // namespace textio::standalone
