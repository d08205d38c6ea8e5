// ArenaSource: a scripted source whose buffer is in one half of a block that is allocated once.
// Every resize moves it to the other half, and memory outside the buffer is poisoned for the
// sanitizer. So any access outside the bounds is reported, as with ExactBufferManager, but without
// an allocation each time. One source at a time.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstring>
#include <memory>
#include <stdexcept>
#include <string>
#include <utility>

#include <sanitizer/asan_interface.h>

#include "support/scripted_source.hpp"

namespace textio::fuzz {

class ArenaBufferManager : public BufferManager {
 public:
  static constexpr std::size_t kHalfUnits = std::size_t{1} << 23;

  ArenaBufferManager() = default;
  ArenaBufferManager(const ArenaBufferManager&) = delete;
  ArenaBufferManager& operator=(const ArenaBufferManager&) = delete;
  ~ArenaBufferManager() override { poison_buffer(); }

  std::size_t resize(std::size_t n, char16_t*& begin, char16_t*& end) override {
    if (failing_.fails_now()) throw testing_support::ScriptedFailure("resize");
    if (n > kHalfUnits) throw std::length_error("resize");
    char16_t* const moved = units_ == halves() ? halves() + kHalfUnits : halves();
    ASAN_UNPOISON_MEMORY_REGION(moved, n * sizeof(char16_t));
    const std::size_t kept = std::min(n, size_);
    if (kept > 0) std::copy_n(units_, kept, moved);
    std::memset(moved + kept, 0, (n - kept) * sizeof(char16_t));
    poison_buffer();
    units_ = moved;
    size_ = n;
    begin = this->begin();
    end = this->end();
    return n;
  }
  char16_t* begin() override { return units_; }
  char16_t* end() override { return units_ + size_; }

  testing_support::FailingCall& failing() { return failing_; }

 private:
  // Poisoned except for the buffer of the one manager that exists.
  static char16_t* halves() {
    static const std::unique_ptr<char16_t[]> units = [] {
      auto block = std::make_unique<char16_t[]>(2 * kHalfUnits);
      ASAN_POISON_MEMORY_REGION(block.get(), 2 * kHalfUnits * sizeof(char16_t));
      return block;
    }();
    return units.get();
  }

  void poison_buffer() {
    if (units_ != nullptr) ASAN_POISON_MEMORY_REGION(units_, size_ * sizeof(char16_t));
  }

  char16_t* units_ = nullptr;
  std::size_t size_ = 0;
  testing_support::FailingCall failing_;
};

class ArenaSource : public testing_support::ScriptedSource {
 public:
  explicit ArenaSource(std::u16string text) : ScriptedSource(std::move(text)) {}

  BufferManager* getBufferManager() override { return &manager_; }
  void fail_resize(std::size_t nth) { manager_.failing().arm(nth); }
  void fail_no_more() {
    ScriptedSource::fail_no_more();
    manager_.failing().disarm();
  }

 private:
  ArenaBufferManager manager_;
};

}  // namespace textio::fuzz
