// MemoryBytes: bytes in memory as a stream.
//
//   std::FILE* file = as_c_stream(std::make_unique<MemoryBytes>(bytes));
//
// Ownership  borrows the bytes, which must outlive the stream.
// Cost       a read copies what it delivers, and nothing else is copied.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <string_view>

#include <vltextstream/standalone/files/byte_stream.hpp>

namespace textio::standalone {

class MemoryBytes : public ByteStream {
 public:
  explicit MemoryBytes(std::string_view bytes) : bytes_(bytes) {}
  ssize_t read(char* to, std::size_t size) override;
  std::int64_t seek(std::int64_t offset, int whence) override;

 private:
  std::string_view bytes_;
  std::int64_t position_ = 0;
};

// The content of a file in memory, as open_file opens a file: what is compressed is unpacked. Null,
// with the reason in errno, when it cannot be opened. `bytes` must outlive the stream.
std::FILE* open_bytes(std::string_view bytes);

}  // namespace textio::standalone
