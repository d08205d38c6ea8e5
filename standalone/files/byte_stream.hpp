// ByteReader and ByteStream: sources of bytes, and the C stream that gives them to the library.
//
//   std::unique_ptr<ByteStream> bytes = std::make_unique<FileBytes>(std::move(descriptor), 0);
//   std::FILE* file = as_c_stream(std::move(bytes));
//   std::fclose(file);                                   // closes the descriptor as well
//
// Units      positions and sizes count bytes.
// Ownership  each object owns what it reads from.
// Errors     -1 with the reason in errno, which no destructor changes; std::bad_alloc. A C stream
//            turns the latter into ENOMEM, because no exception may pass through C code.
// Threads    one thread at a time; separate objects are independent.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <memory>

#include <sys/types.h>

namespace textio::standalone {

// A source that can be read once, from its start to its end.
class ByteReader {
 public:
  virtual ~ByteReader() = default;

  // Reads up to `size` bytes, as many as are available. Returns 0 at the end (or if `size` is 0),
  // -1 on an error.
  virtual ssize_t read(char* to, std::size_t size) = 0;
};

// A source that can be read from any position. A position past the end is valid; there are no bytes
// there.
class ByteStream : public ByteReader {
 public:
  // Moves as std::fseek does, and returns the new position. On an error the position is unchanged.
  virtual std::int64_t seek(std::int64_t offset, int whence) = 0;
};

// The sum of `base` and `offset`; -1 with EINVAL or EOVERFLOW if it is no valid position.
std::int64_t sum_of_positions(std::int64_t base, std::int64_t offset);

// A C stream for reading, which owns `bytes`. Null, with the reason in errno, if it cannot be made.
std::FILE* as_c_stream(std::unique_ptr<ByteStream> bytes);

// An open file descriptor, closed by the destructor; negative for none.
class Descriptor {
 public:
  explicit Descriptor(int number) : number_(number) {}
  Descriptor(Descriptor&& other) noexcept : number_(other.number_) { other.number_ = -1; }
  Descriptor& operator=(Descriptor&&) = delete;
  ~Descriptor();

  int number() const { return number_; }

 private:
  int number_;
};

// A file that can be read at any position. Position 0 is the initial offset of the descriptor. The
// offset does not change, because other processes may share it.
class FileBytes : public ByteStream {
 public:
  FileBytes(Descriptor file, std::int64_t start) : file_(std::move(file)), start_(start) {}
  ssize_t read(char* to, std::size_t size) override;
  std::int64_t seek(std::int64_t offset, int whence) override;

 private:
  Descriptor file_;
  std::int64_t start_;
  std::int64_t position_ = 0;
};

// A pipe, socket or device. Waits for bytes, also if its descriptor is non-blocking.
class PipeBytes : public ByteReader {
 public:
  explicit PipeBytes(Descriptor pipe) : pipe_(std::move(pipe)) {}
  ssize_t read(char* to, std::size_t size) override;

 private:
  Descriptor pipe_;
};

}  // namespace textio::standalone
