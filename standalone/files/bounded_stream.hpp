// BoundedStream: the first bytes of a stream, and an error where there are more.
//
//   BoundedStream bytes(std::move(file), 1'000'000);
//   bytes.read(to, size);                // kTooManyBytes after 1,000,000 bytes
//
// The bound is a position, so bytes that are read twice count once.
//
// Units      positions and the bound count bytes.
// Errors     reading beyond the bound: -1 with kTooManyBytes. A stream that ends there, ends. Other
//            errors are those of the inner stream. An EndLookScope lifts the bound.
// Cost       one byte more is read at the bound, to see whether the stream ends there. SEEK_END
//            passes to the inner stream, which may have to read everything.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>

#include <vltextstream/standalone/files/byte_stream.hpp>

namespace textio::standalone {

class BoundedStream : public ByteStream {
 public:
  // `bytes` is at its start.
  BoundedStream(std::unique_ptr<ByteStream> bytes, std::int64_t bound)
      : bytes_(std::move(bytes)), bound_(bound) {}

  ssize_t read(char* to, std::size_t size) override;
  std::int64_t seek(std::int64_t offset, int whence) override;

 private:
  ssize_t read_at_bound();

  std::unique_ptr<ByteStream> bytes_;
  std::int64_t bound_;
  std::int64_t position_ = 0;
};

}  // namespace textio::standalone
