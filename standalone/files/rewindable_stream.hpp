// RewindableStream: a source that can be read only once, such as a pipe, as a stream that goes
// back.
//
//   RewindableStream text(std::make_unique<PipeBytes>(std::move(descriptor)));
//   text.read(head, sizeof head);
//   text.seek(0, SEEK_SET);              // and read the same again
//
// The first 16 MiB + 64 KiB are kept: the largest sample with four bytes per character. When more
// is read, all but the last 64 KiB to 128 KiB are discarded.
//
// Errors     going back to discarded bytes fails with ESPIPE. SEEK_END does too before the end is
//            reached, because looking for the end could discard the start, and in an EndLookScope. An error or the end of
//            the source is permanent; a terminal could otherwise continue after its end.
// Cost       memory for the kept bytes, in blocks of 64 KiB that are allocated as needed. After
//            going forward, the next read reads what is between.
#pragma once

#include <cstddef>
#include <cstdint>
#include <deque>
#include <memory>

#include <vltextstream/standalone/files/byte_stream.hpp>

namespace textio::standalone {

class RewindableStream : public ByteStream {
 public:
  static constexpr std::int64_t kBlockBytes = 65'536;
  static constexpr std::int64_t kKeptBytes = (16 << 20) + kBlockBytes;

  explicit RewindableStream(std::unique_ptr<ByteReader> source) : source_(std::move(source)) {}

  ssize_t read(char* to, std::size_t size) override;
  std::int64_t seek(std::int64_t offset, int whence) override;

 private:
  ssize_t read_on();
  void forget();

  std::unique_ptr<ByteReader> source_;
  std::deque<std::unique_ptr<char[]>> blocks_;  // the bytes from begin_ on; all but the last full
  std::int64_t begin_ = 0;
  std::int64_t end_ = 0;  // the position of the source
  std::int64_t position_ = 0;
  bool at_end_ = false;
  int error_ = 0;
};

}  // namespace textio::standalone
