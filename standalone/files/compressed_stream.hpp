// CompressedStream: the text of compressed data, as a stream that can go to any position.
//
//   CompressedStream text(std::move(archive), std::make_unique<GzipDecoder>());
//   text.read(head, sizeof head);
//   text.seek(0, SEEK_END);            // the length of the text, found by decoding all of it
//
// Units      positions count bytes of the text, not of the archive.
// Errors     -1 with errno: kDataDamaged, kDataEndTooEarly and others of read_problem.hpp, or an
//            error of the archive. All text before the error is read first. Data that are not read
//            are not checked, and a checksum comes after the data that it covers. An archive that
//            is cut off between two members is a shorter valid archive; this cannot be detected.
//            Going back fails with ESPIPE if the archive cannot go back, and so does SEEK_END in an
//            EndLookScope.
// Cost       64 KiB and the memory of the decoder, for data of any size. After going back, the next
//            read decodes from the start again; after going forward, it decodes what is between.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>

#include <vltextstream/standalone/files/byte_stream.hpp>

namespace textio::standalone {

// The decoder of one compression format.
class Decoder {
 public:
  // The bytes still to decode, and the room still to fill.
  struct Input {
    const char* begin;
    const char* end;
  };
  struct Output {
    char* begin;
    char* end;
  };

  virtual ~Decoder() = default;

  // Decodes from `input` to `output` and moves both begins. It stops only when one of them is used
  // up, or on an error. Returns the error, else 0. The output before an error is valid.
  virtual int decode(Input& input, Output& output) = 0;

  // Whether the data may end here: between two members or frames.
  virtual bool may_end() const = 0;

  // Returns to the initial state.
  virtual void restart() = 0;
};

class CompressedStream : public ByteStream {
 public:
  static constexpr std::size_t kBlockBytes = 65'536;

  // `archive` is at its start.
  CompressedStream(std::unique_ptr<ByteStream> archive, std::unique_ptr<Decoder> decoder);

  ssize_t read(char* to, std::size_t size) override;
  std::int64_t seek(std::int64_t offset, int whence) override;

 private:
  bool restart();
  ssize_t skip();
  ssize_t decode(char* to, std::size_t size);
  void refill();

  std::unique_ptr<ByteStream> archive_;
  std::unique_ptr<Decoder> decoder_;
  std::unique_ptr<char[]> block_;
  Decoder::Input input_;
  std::int64_t decoded_ = 0;   // the position of the decoder in the text
  std::int64_t position_ = 0;  // where the next read begins
  bool archive_ended_ = false;
  int error_ = 0;  // the error that ends the text, until the next restart
};

}  // namespace textio::standalone
