// GzipDecoder: gzip data with any number of members.
//
// The checksum and the length of each member are checked. Zero bytes may follow the last member,
// because tapes and block devices pad with them; other bytes there are damage.
//
// Errors     kDataDamaged, ENOMEM; the constructor throws std::bad_alloc.
// Cost       about 48 KiB.
#pragma once

#include <zlib.h>

#include <vltextstream/standalone/files/compressed_stream.hpp>

namespace textio::standalone {

class GzipDecoder : public Decoder {
 public:
  GzipDecoder();
  GzipDecoder(const GzipDecoder&) = delete;
  GzipDecoder& operator=(const GzipDecoder&) = delete;
  ~GzipDecoder() override;

  int decode(Input& input, Output& output) override;
  bool may_end() const override { return place_ != Place::in_member; }
  void restart() override;

 private:
  enum class Place { at_start, in_member, between_members, in_padding };

  int decode_member(Input& input, Output& output);
  int pass_padding(Input& input);

  z_stream inflater_ = {};
  Place place_ = Place::at_start;
};

}  // namespace textio::standalone
