// Bytes to read, from wherever they come, and the C stream that hands them to the library.
//
//   std::unique_ptr<ByteStream> bytes = std::make_unique<FileBytes>(std::move(descriptor), 0);
//   std::FILE* file = as_c_stream(std::move(bytes));
//   std::fclose(file);                                   // closes the descriptor as well
//
// Units      positions and sizes count bytes.
// Ownership  each object owns what it reads from.
// Errors     -1 with the reason in errno, which no destructor changes; std::bad_alloc. In a C
//            stream the latter becomes ENOMEM, for no exception may pass through its C code.
// Threads    one thread at a time; separate objects are independent.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <memory>

#include <sys/types.h>

namespace textio::standalone {

// What can be read once, from its start to its end.
class ByteReader {
 public:
  virtual ~ByteReader() = default;

  // Up to `size` bytes, as many as are at hand; 0 at the end (or when `size` is 0), -1 on an error.
  virtual ssize_t read(char* to, std::size_t size) = 0;
};

// What can be read from any position. One past the end is a position like any other: nothing is
// there.
class ByteStream : public ByteReader {
 public:
  // Moves as std::fseek does; returns the new position. On an error it stays where it was.
  virtual std::int64_t seek(std::int64_t offset, int whence) = 0;
};

// `base` and `offset` added up; -1 with EINVAL or EOVERFLOW where no position can be.
std::int64_t sum_of_positions(std::int64_t base, std::int64_t offset);

// A C stream for reading, which owns `bytes`. Null, with the reason in errno, when there is none.
std::FILE* as_c_stream(std::unique_ptr<ByteStream> bytes);

// An open file of the operating system, closed with the object; negative for none.
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

// A file that can be read at any position. Position 0 is where the descriptor stood; it stays
// there, so that whoever shares it finds it unmoved.
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

// A pipe, socket or device. Waits for bytes, also where the descriptor is one that does not.
class PipeBytes : public ByteReader {
 public:
  explicit PipeBytes(Descriptor pipe) : pipe_(std::move(pipe)) {}
  ssize_t read(char* to, std::size_t size) override;

 private:
  Descriptor pipe_;
};

}  // namespace textio::standalone
