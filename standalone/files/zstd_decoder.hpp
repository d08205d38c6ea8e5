// ZstdDecoder: zstd data with any number of frames, including skippable ones.
//
// The checksum and the length of a frame are checked if it has them. Both are optional; the
// format's command line tool writes the checksum.
//
// Errors     kDataDamaged, kDataNeedMoreMemory for a window beyond 128 MiB, kDataNeedADictionary,
//            ENOMEM; the constructor throws std::bad_alloc.
// Cost       the window of the frame, at most 128 MiB, and about 400 KiB.
#pragma once

#include <memory>

#include <zstd.h>

#include <vltextstream/standalone/files/compressed_stream.hpp>

namespace textio::standalone {

class ZstdDecoder : public Decoder {
 public:
  // The largest window, as a power of two, that every decoder of the format allows by default.
  static constexpr int kLargestWindowLog = 27;

  ZstdDecoder();

  int decode(Input& input, Output& output) override;
  bool may_end() const override { return between_frames_; }
  void restart() override;

 private:
  struct Free {
    void operator()(ZSTD_DCtx* context) const { ZSTD_freeDCtx(context); }
  };

  std::unique_ptr<ZSTD_DCtx, Free> context_;
  bool between_frames_ = true;
};

}  // namespace textio::standalone
