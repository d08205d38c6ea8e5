// The decoder only goes forward. A position before it needs a restart; a position after it needs a
// skip, which the next read does. An error is stored when it occurs and reported when no text
// before it is left, so that it does not depend on the sizes of the reads.
#include <vltextstream/standalone/files/compressed_stream.hpp>

#include <algorithm>
#include <cerrno>
#include <cstdio>

#include <vltextstream/standalone/files/end_look.hpp>
#include <vltextstream/standalone/files/read_problem.hpp>

namespace textio::standalone {

CompressedStream::CompressedStream(std::unique_ptr<ByteStream> archive,
                                   std::unique_ptr<Decoder> decoder)
    : archive_(std::move(archive)),
      decoder_(std::move(decoder)),
      block_(new char[kBlockBytes]),
      input_{block_.get(), block_.get()} {}

ssize_t CompressedStream::read(char* to, std::size_t size) {
  if (size == 0) return 0;
  if (decoded_ > position_ && !restart()) return -1;
  while (decoded_ < position_) {
    const ssize_t skipped = skip();
    if (skipped <= 0) return skipped;
  }
  const ssize_t count = decode(to, size);
  if (count > 0) position_ = decoded_;
  return count;
}

// Decodes and discards a block: up to the position, or beyond it once the position is reached.
ssize_t CompressedStream::skip() {
  char unused[kBlockBytes];
  std::size_t count = sizeof unused;
  if (decoded_ < position_) {
    count = static_cast<std::size_t>(std::min<std::int64_t>(position_ - decoded_, sizeof unused));
  }
  return decode(unused, count);
}

// Decodes at least one byte, if there is one.
ssize_t CompressedStream::decode(char* to, std::size_t size) {
  Decoder::Output output = {to, to + size};
  while (output.begin == to && error_ == 0) {
    if (input_.begin == input_.end && !archive_ended_) refill();
    if (error_ != 0) break;
    error_ = decoder_->decode(input_, output);
    const bool is_all = archive_ended_ && input_.begin == input_.end;
    if (!is_all || output.begin != to || error_ != 0) continue;
    if (decoder_->may_end()) return 0;
    error_ = kDataEndTooEarly;
  }
  const ssize_t count = output.begin - to;
  decoded_ += count;
  if (count > 0) return count;
  errno = error_;
  return -1;
}

void CompressedStream::refill() {
  const ssize_t count = archive_->read(block_.get(), kBlockBytes);
  if (count < 0) error_ = errno;
  archive_ended_ = count == 0;
  input_ = {block_.get(), block_.get() + std::max<ssize_t>(count, 0)};
}

bool CompressedStream::restart() {
  if (archive_->seek(0, SEEK_SET) != 0) return false;
  decoder_->restart();
  input_ = {block_.get(), block_.get()};
  decoded_ = 0;
  archive_ended_ = false;
  error_ = 0;
  return true;
}

std::int64_t CompressedStream::seek(std::int64_t offset, int whence) {
  std::int64_t base = whence == SEEK_CUR ? position_ : 0;
  if (whence == SEEK_END) {
    if (looks_at_end()) {
      errno = ESPIPE;
      return -1;
    }
    ssize_t count = 1;
    while (count > 0) count = skip();
    if (count < 0) return -1;
    base = decoded_;
  }
  const std::int64_t target = sum_of_positions(base, offset);
  if (target < 0 || (target < decoded_ && !restart())) return -1;
  position_ = target;
  return target;
}

}  // namespace textio::standalone
