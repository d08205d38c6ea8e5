// RewindableStream: what can be read only once, such as a pipe, as a stream that goes back.
//
//   RewindableStream text(std::make_unique<PipeBytes>(std::move(descriptor)));
//   text.read(head, sizeof head);
//   text.seek(0, SEEK_SET);              // and read the same again
//
// The first 16 MiB + 64 KiB are kept: the sample of a detection, in any encoding, with what is read
// beyond it. Once more has been read than that, all but the last 64 KiB to 128 KiB are forgotten.
//
// Errors     going back to what is forgotten: ESPIPE. So does SEEK_END before the end has been met,
//            for looking for it could forget the beginning. An error or the end of the source, once
//            met, is there for good: a terminal would go on behind its end.
// Cost       memory for what is kept, in blocks of 64 KiB that come as they are filled. Going
//            forward reads what lies between, at the next read.
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
  std::deque<std::unique_ptr<char[]>> blocks_;  // the bytes from begin_ on, all blocks but one full
  std::int64_t begin_ = 0;
  std::int64_t end_ = 0;  // as far as the source has been read
  std::int64_t position_ = 0;
  bool at_end_ = false;
  int error_ = 0;
};

}  // namespace textio::standalone
