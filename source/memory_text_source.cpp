#include <vltextstream/source/memory_text_source.hpp>

#include <algorithm>

namespace textio {

// Readers get writable code units, but none writes to these: a reader moves or overwrites text only
// to load more, and there is never more.
MemoryTextSource::MemoryTextSource(const char16_t* text, std::size_t length)
    : next_(const_cast<char16_t*>(text)),
      lent_end_(next_ + length),
      text_(next_),
      length_(length),
      buffer_manager_(this),
      lent_begin_(text_) {}

MemoryTextSource::~MemoryTextSource() = default;

std::size_t MemoryTextSource::fillBuffer(char16_t* begin, char16_t* end) {
  if (begin != next_) return 0;
  next_ = end;
  lent_end_ = end;
  position_ = static_cast<std::size_t>(end - begin);
  return position_;
}

bool MemoryTextSource::isEoS() const { return true; }

BufferManager* MemoryTextSource::getBufferManager() { return &buffer_manager_; }

source_pos MemoryTextSource::getPos() const { return static_cast<source_pos>(position_); }

unsigned long MemoryTextSource::skipFromPos(source_pos pos, unsigned long count) {
  const std::size_t from = std::min(static_cast<std::size_t>(pos), length_);
  const std::size_t skipped = std::min<std::size_t>(count, length_ - from);
  position_ = from + skipped;
  next_ = text_ + position_;
  lent_begin_ = next_;
  lent_end_ = text_ + length_;
  return skipped;
}

std::size_t MemoryTextSource::LendingBufferManager::resize(std::size_t n, char16_t*& begin,
                                                           char16_t*& end) {
  begin = source_->lent_begin_;
  end = source_->lent_end_;
  return n;
}

char16_t* MemoryTextSource::LendingBufferManager::begin() { return source_->lent_begin_; }

char16_t* MemoryTextSource::LendingBufferManager::end() { return source_->lent_end_; }

MemoryTextSource::LendingBufferManager::~LendingBufferManager() = default;

}  // namespace textio
