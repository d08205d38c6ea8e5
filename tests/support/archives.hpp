// Compressed data, written by the libraries of their formats.
//
//   gzip_of("x,y\n") + gzip_of("1,2\n");      // two members
#pragma once

#include <cstddef>
#include <stdexcept>
#include <string>
#include <string_view>

#include <zlib.h>
#include <zstd.h>

namespace textio::testing_support {

// One member; `header` adds the optional parts of its header.
inline std::string gzip_of(std::string_view text, gz_header* header = nullptr) {
  z_stream deflater = {};
  deflateInit2(&deflater, Z_BEST_COMPRESSION, Z_DEFLATED, 15 + 16, 8, Z_DEFAULT_STRATEGY);
  if (header != nullptr) deflateSetHeader(&deflater, header);
  std::string bytes(deflateBound(&deflater, text.size()) + 64, '\0');
  deflater.next_in = reinterpret_cast<Bytef*>(const_cast<char*>(text.data()));
  deflater.avail_in = static_cast<uInt>(text.size());
  deflater.next_out = reinterpret_cast<Bytef*>(bytes.data());
  deflater.avail_out = static_cast<uInt>(bytes.size());
  const int result = deflate(&deflater, Z_FINISH);
  bytes.resize(deflater.total_out);
  deflateEnd(&deflater);
  if (result != Z_STREAM_END) throw std::runtime_error("cannot compress");
  return bytes;
}

struct ZstdSettings {
  bool checksum = true;
  bool content_size = true;
  int window_log = 0;  // 0: the default of the library
};

// One frame.
inline std::string zstd_of(std::string_view text, const ZstdSettings& settings) {
  ZSTD_CCtx* const context = ZSTD_createCCtx();
  ZSTD_CCtx_setParameter(context, ZSTD_c_checksumFlag, settings.checksum ? 1 : 0);
  ZSTD_CCtx_setParameter(context, ZSTD_c_contentSizeFlag, settings.content_size ? 1 : 0);
  ZSTD_CCtx_setParameter(context, ZSTD_c_windowLog, settings.window_log);
  std::string bytes(ZSTD_compressBound(text.size()), '\0');
  const std::size_t size =
      ZSTD_compress2(context, bytes.data(), bytes.size(), text.data(), text.size());
  ZSTD_freeCCtx(context);
  if (ZSTD_isError(size) != 0) throw std::runtime_error("cannot compress");
  bytes.resize(size);
  return bytes;
}

inline std::string zstd_of(std::string_view text) { return zstd_of(text, {}); }

// `value` in four bytes, least significant byte first.
inline std::string little_endian(std::size_t value) {
  std::string bytes;
  for (int shift = 0; shift < 32; shift += 8) {
    bytes.push_back(static_cast<char>((value >> shift) & 0xFF));
  }
  return bytes;
}

// A zstd frame without text.
inline std::string skippable_frame(std::string_view content) {
  return "\x5A\x2A\x4D\x18" + little_endian(content.size()) + std::string(content);
}

}  // namespace textio::testing_support
