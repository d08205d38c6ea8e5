// How a file is compressed, told by its first bytes, whatever its name.
//
//   compression_format("\x1F\x8B\x08");      // CompressionFormat::gzip
//   compression_format("x,y\n1,2\n");        // CompressionFormat::none
//
// Each format is known by bytes that no text begins with: by more than its two letters where these
// are letters, and for gzip by what the rest of its header must be. Of a file cut off within these
// bytes two are enough.
#pragma once

#include <cstddef>
#include <string_view>

namespace textio::standalone {

enum class CompressionFormat { none, gzip, zstd, bzip2, lz4, xz, zip };

// As many bytes as are looked at.
inline constexpr std::size_t kFormatBytes = 10;

// The format of a file that begins with `head`: its first `kFormatBytes`, or all of it if it is
// shorter.
CompressionFormat compression_format(std::string_view head);

}  // namespace textio::standalone
