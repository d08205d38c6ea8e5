#include <vltextstream/standalone/files/compression_format.hpp>

#include <algorithm>

namespace textio::standalone {
namespace {

using namespace std::string_view_literals;

// The formats that are read here are recognised even in a file that is cut off, which must not be
// taken for a short text. One byte alone is a text.
constexpr std::size_t kTwoBytes = 2;
constexpr std::size_t kAllBytes = kFormatBytes;

// The bytes that a format begins with. Only the bits of the mask count. A file that is shorter than
// the signature needs at least `fewest` bytes of it.
struct Signature {
  CompressionFormat format;
  std::string_view bytes;
  std::string_view mask;
  std::size_t fewest = kAllBytes;
};

constexpr std::string_view kAllBits = "\xFF\xFF\xFF\xFF\xFF\xFF\xFF\xFF\xFF\xFF"sv;

constexpr Signature kSignatures[] = {
    // The two magic bytes, deflate as the method, and no flag that is reserved.
    {CompressionFormat::gzip, "\x1F\x8B\x08\x00"sv, "\xFF\xFF\xFF\xE0"sv, kTwoBytes},
    {CompressionFormat::zstd, "\x28\xB5\x2F\xFD"sv, kAllBits, kTwoBytes},
    {CompressionFormat::zstd, "\x50\x2A\x4D\x18"sv, "\xF0\xFF\xFF\xFF"sv},  // a skippable frame
    // The block size, then the first block, or the end of an empty archive.
    {CompressionFormat::bzip2, "BZh0\x31\x41\x59\x26\x53\x59"sv,
     "\xFF\xFF\xFF\xF0\xFF\xFF\xFF\xFF\xFF\xFF"sv},
    {CompressionFormat::bzip2, "BZh0\x17\x72\x45\x38\x50\x90"sv,
     "\xFF\xFF\xFF\xF0\xFF\xFF\xFF\xFF\xFF\xFF"sv},
    {CompressionFormat::lz4, "\x04\x22\x4D\x18"sv, kAllBits},
    {CompressionFormat::xz, "\xFD\x37\x7A\x58\x5A\x00"sv, kAllBits},
    {CompressionFormat::zip, "PK\x03\x04"sv, kAllBits},
    {CompressionFormat::zip, "PK\x05\x06"sv, kAllBits},  // an empty archive
};

bool begins_with(std::string_view head, const Signature& signature) {
  if (head.size() < std::min(signature.fewest, signature.bytes.size())) return false;
  const std::size_t count = std::min(head.size(), signature.bytes.size());
  for (std::size_t i = 0; i < count; ++i) {
    const int different = head[i] ^ signature.bytes[i];
    if ((different & signature.mask[i]) != 0) return false;
  }
  return true;
}

}  // namespace

CompressionFormat compression_format(std::string_view head) {
  const auto* const found =
      std::find_if(std::begin(kSignatures), std::end(kSignatures),
                   [&](const Signature& signature) { return begins_with(head, signature); });
  return found != std::end(kSignatures) ? found->format : CompressionFormat::none;
}

}  // namespace textio::standalone
