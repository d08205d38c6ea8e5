// A text source that a test controls: it delivers a given text, records every call, can deliver
// less than requested and can fail at a chosen call.
//
//   ScriptedSource source(u"abcdef");
//   source.shorten_fill(1, 2);         // the first fill delivers "ab" and no more
//   source.fail_fill(2);               // the second one from now on throws ScriptedFailure
//
// A failing fill has overwritten the whole range it was given; any other call that fails changes
// nothing. Each failure happens once. A position counts the code units delivered or skipped.
#pragma once

#include <algorithm>
#include <cstddef>
#include <memory>
#include <ostream>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

#include <vltextstream/source/text_source.hpp>

namespace textio::testing_support {

struct ScriptedFailure : std::runtime_error {
  using std::runtime_error::runtime_error;
};

// Counts calls down to the one that fails.
class FailingCall {
 public:
  void arm(std::size_t nth) { left_ = nth; }
  void disarm() { left_ = 0; }
  bool fails_now() { return left_ != 0 && --left_ == 0; }

 private:
  std::size_t left_ = 0;
};

// Keeps the text in a heap block of exactly its size. Every resize moves it to a new block, so that
// a sanitizer reports any use of earlier bounds.
class ExactBufferManager : public BufferManager {
 public:
  // More than any test needs. Larger sizes count as more than memory can hold.
  static constexpr std::size_t kMostUnits = std::size_t{1} << 32;

  std::size_t resize(std::size_t n, char16_t*& begin, char16_t*& end) override {
    if (failing_.fails_now()) throw ScriptedFailure("resize");
    if (n > kMostUnits) throw std::length_error("resize");
    auto block = std::make_unique<char16_t[]>(n);
    std::copy_n(units_.get(), std::min(n, size_), block.get());
    units_ = std::move(block);
    size_ = n;
    sizes_.push_back(n);
    begin = this->begin();
    end = this->end();
    return n;
  }
  char16_t* begin() override { return units_.get(); }
  char16_t* end() override { return units_.get() + size_; }

  std::size_t size() const { return size_; }
  const std::vector<std::size_t>& sizes() const { return sizes_; }
  FailingCall& failing() { return failing_; }

 private:
  std::unique_ptr<char16_t[]> units_;
  std::size_t size_ = 0;
  std::vector<std::size_t> sizes_;
  FailingCall failing_;
};

struct SkipCall {
  source_pos from;
  unsigned long count;
  bool operator==(const SkipCall&) const = default;
};
inline std::ostream& operator<<(std::ostream& out, const SkipCall& call) {
  return out << call.count << " from " << call.from;
}

class ScriptedSource : public TextSource {
 public:
  explicit ScriptedSource(std::u16string text) : text_(std::move(text)) {}

  const std::u16string& text() const { return text_; }

  // The `nth` fill of all, counted from 1, delivers at most `units`.
  void shorten_fill(std::size_t nth, std::size_t units) { shortened_ = {nth, units}; }

  // The `nth` call from now on fails, counted from 1.
  void fail_fill(std::size_t nth) { failing_fill_.arm(nth); }
  void fail_skip(std::size_t nth) { failing_skip_.arm(nth); }
  void fail_resize(std::size_t nth) { manager_.failing().arm(nth); }
  void fail_no_more() {
    failing_fill_.disarm();
    failing_skip_.disarm();
    manager_.failing().disarm();
  }

  // The requests so far: the sizes of the ranges to fill, the skips, the buffer sizes set.
  const std::vector<std::size_t>& fills() const { return fills_; }
  const std::vector<SkipCall>& skips() const { return skips_; }
  const std::vector<std::size_t>& resizes() const { return manager_.sizes(); }
  std::size_t buffer_size() const { return manager_.size(); }

  // Forgets the requests so far, except the number of fills.
  void forget_calls() {
    forgotten_fills_ += fills_.size();
    fills_.clear();
    skips_.clear();
  }

  std::size_t fillBuffer(char16_t* begin, char16_t* end) override {
    const auto asked = static_cast<std::size_t>(end - begin);
    fills_.push_back(asked);
    if (failing_fill_.fails_now()) {
      std::fill(begin, end, u'?');
      throw ScriptedFailure("fill");
    }
    std::size_t delivered = std::min(asked, text_.size() - position_);
    if (forgotten_fills_ + fills_.size() == shortened_.first) {
      delivered = std::min(delivered, shortened_.second);
    }
    std::copy_n(text_.data() + position_, delivered, begin);
    position_ += delivered;
    return delivered;
  }

  bool isEoS() const override { return position_ == text_.size(); }
  BufferManager* getBufferManager() override { return &manager_; }
  source_pos getPos() const override { return static_cast<source_pos>(position_); }

  unsigned long skipFromPos(source_pos pos, unsigned long count) override {
    skips_.push_back({pos, count});
    if (failing_skip_.fails_now()) throw ScriptedFailure("skip");
    position_ = static_cast<std::size_t>(pos);
    const unsigned long skipped = std::min<unsigned long>(count, text_.size() - position_);
    position_ += skipped;
    return skipped;
  }

 private:
  std::u16string text_;
  std::size_t position_ = 0;
  ExactBufferManager manager_;
  std::pair<std::size_t, std::size_t> shortened_{0, 0};
  FailingCall failing_fill_;
  FailingCall failing_skip_;
  std::vector<std::size_t> fills_;
  std::vector<SkipCall> skips_;
  std::size_t forgotten_fills_ = 0;
};

}  // namespace textio::testing_support
