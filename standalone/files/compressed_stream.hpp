// CompressedStream: what compressed data say, as a stream that can go to any position.
//
//   CompressedStream text(std::move(archive), std::make_unique<GzipDecoder>());
//   text.read(head, sizeof head);
//   text.seek(0, SEEK_END);            // the length of the text, found by decoding all of it
//
// Units      positions count bytes of the text, not of the archive.
// Errors     what decodes well comes first, then the error, in each run through the data: -1 with
//            errno, kDataDamaged, kDataEndTooEarly and their like of read_problem.hpp, or what the
//            archive gives. Data that are not read are not checked: a checksum stands behind what
//            it is for. Cut off between two members, an archive is a shorter one that is whole, and
//            nobody can tell. Going back gives ESPIPE when the archive cannot.
// Cost       64 KiB and what the decoder needs, whatever the sizes. Going back means decoding
//            again from the start, going forward decoding what lies between, at the next read.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>

#include <vltextstream/standalone/files/byte_stream.hpp>

namespace textio::standalone {

// One format of compression.
class Decoder {
 public:
  // Bytes that are still to be decoded, and room that is still to be filled.
  struct Input {
    const char* begin;
    const char* end;
  };
  struct Output {
    char* begin;
    char* end;
  };

  virtual ~Decoder() = default;

  // Decodes from the one to the other and moves both begins. It stops only where one of the two is
  // used up, or on an error, which it returns; else 0. What was decoded before the error stands.
  virtual int decode(Input& input, Output& output) = 0;

  // Whether the data may end here: in front of a member or frame.
  virtual bool may_end() const = 0;

  // As if nothing had been decoded yet.
  virtual void restart() = 0;
};

class CompressedStream : public ByteStream {
 public:
  static constexpr std::size_t kBlockBytes = 65'536;

  // `archive` stands at its start.
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
  std::int64_t decoded_ = 0;   // how far the decoder has come in the text
  std::int64_t position_ = 0;  // where the next read begins
  bool archive_ended_ = false;
  int error_ = 0;  // what ends the text, until the next restart
};

}  // namespace textio::standalone
