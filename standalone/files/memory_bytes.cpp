#include <vltextstream/standalone/files/memory_bytes.hpp>

#include <algorithm>

namespace textio::standalone {

ssize_t MemoryBytes::read(char* to, std::size_t size) {
  const auto begin = std::min(static_cast<std::size_t>(position_), bytes_.size());
  const std::size_t count = bytes_.substr(begin).copy(to, size);
  position_ += static_cast<std::int64_t>(count);
  return static_cast<ssize_t>(count);
}

std::int64_t MemoryBytes::seek(std::int64_t offset, int whence) {
  const auto end = static_cast<std::int64_t>(bytes_.size());
  const std::int64_t base = whence == SEEK_CUR ? position_ : whence == SEEK_END ? end : 0;
  const std::int64_t target = sum_of_positions(base, offset);
  if (target >= 0) position_ = target;
  return target;
}

}  // namespace textio::standalone
