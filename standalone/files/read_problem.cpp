#include <vltextstream/standalone/files/read_problem.hpp>

#include <cstring>

namespace textio::standalone {

std::string read_problem(int error) {
  switch (error) {
    case kDataDamaged:
      return "the compressed data are damaged";
    case kDataEndTooEarly:
      return "the compressed data end too early";
    case kDataNeedMoreMemory:
      return "the compressed data need a window of more than 128 MiB";
    case kDataNeedADictionary:
      return "the compressed data need a dictionary";
    case kStandardInputIsGone:
      return "standard input has been read already";
    case kFormatBzip2:
      return "it is compressed with bzip2, which is not read here; decompress it first";
    case kFormatLz4:
      return "it is compressed with lz4, which is not read here; decompress it first";
    case kFormatXz:
      return "it is compressed with xz, which is not read here; decompress it first";
    case kFormatZip:
      return "it is a zip archive, which is not read here; unpack it first";
    case kCompressedTwice:
      return "it is compressed more than once; decompress it first";
    case kTooManyBytes:
      return "it has more bytes than the limit allows";
    default:
      return std::strerror(error);
  }
}

}  // namespace textio::standalone
