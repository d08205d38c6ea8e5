// compression_format: how a file is compressed, by its first bytes; its name does not matter.
//
//   compression_format("\x1F\x8B\x08");      // CompressionFormat::gzip
//   compression_format("x,y\n1,2\n");        // CompressionFormat::none
//
// Each format is recognised by bytes that no text begins with. Where the magic number is letters,
// further bytes are checked; for gzip also the rest of its header. If a file is cut off within
// these bytes, two of them are enough.
#pragma once

#include <cstddef>
#include <string_view>

namespace textio::standalone {

enum class CompressionFormat { none, gzip, zstd, bzip2, lz4, xz, zip };

// The number of bytes that are checked.
inline constexpr std::size_t kFormatBytes = 10;

// The format of a file whose first kFormatBytes bytes are `head`; all of a shorter file.
CompressionFormat compression_format(std::string_view head);

}  // namespace textio::standalone
