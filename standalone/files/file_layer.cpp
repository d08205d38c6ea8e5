// A path becomes a descriptor, and the descriptor a stream of bytes that can go back. If its first
// bytes show a compressed format, a decoder is put before it. The result is a C stream.
#include <vltextstream/host/file_layer.hpp>

#include <array>
#include <cerrno>
#include <memory>
#include <mutex>
#include <string_view>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <vltextstream/standalone/decoding/utf_text.hpp>
#include <vltextstream/standalone/files/bounded_stream.hpp>
#include <vltextstream/standalone/files/byte_stream.hpp>
#include <vltextstream/standalone/files/compressed_stream.hpp>
#include <vltextstream/standalone/files/compression_format.hpp>
#include <vltextstream/standalone/files/gzip_decoder.hpp>
#include <vltextstream/standalone/files/memory_bytes.hpp>
#include <vltextstream/standalone/files/read_limit.hpp>
#include <vltextstream/standalone/files/read_problem.hpp>
#include <vltextstream/standalone/files/rewindable_stream.hpp>
#include <vltextstream/standalone/files/zstd_decoder.hpp>

namespace textio {
namespace standalone {
namespace {

std::nullptr_t refuse(int reason) {
  errno = reason;
  return nullptr;
}

bool only_reads(std::string_view mode) {
  return !mode.empty() && mode.front() == 'r' &&
         mode.substr(0, mode.find(',')).find('+') == std::string_view::npos;
}

bool is_standard_input(const std::u16string& path) { return path == u"-"; }

Descriptor descriptor_of(const std::u16string& path) {
  if (is_standard_input(path)) return Descriptor(::fcntl(STDIN_FILENO, F_DUPFD_CLOEXEC, 0));
  return Descriptor(::open(to_utf8(path).c_str(), O_RDONLY | O_CLOEXEC | O_NOCTTY));
}

// Whether the input, a pipe or similar, is opened as standard input for the first time. The
// previous stream has read ahead, so a second one would begin somewhere in the middle and look like
// another text. This is the only state between calls, just as the pipe keeps its own position. A
// process whose standard input is replaced can read the new one.
bool first_time(const struct stat& input) {
  static std::mutex mutex;
  static std::array<std::uint64_t, 2> last = {0, 0};
  const std::array<std::uint64_t, 2> now = {input.st_dev, input.st_ino};
  const std::lock_guard<std::mutex> lock(mutex);
  const bool is_first = now != last;
  last = now;
  return is_first;
}

// `stream` within the limit of this thread.
std::unique_ptr<ByteStream> bounded(std::unique_ptr<ByteStream> stream) {
  const std::int64_t limit = read_limit();
  if (limit == kNoReadLimit) return stream;
  return std::make_unique<BoundedStream>(std::move(stream), limit);
}

// A file in /proc or /sys may be a regular file that cannot seek.
std::unique_ptr<ByteStream> stream_of(Descriptor input, const struct stat& about,
                                      bool is_standard_input) {
  const std::int64_t start = S_ISREG(about.st_mode) ? ::lseek(input.number(), 0, SEEK_CUR) : -1;
  if (start >= 0) return std::make_unique<FileBytes>(std::move(input), start);
  if (is_standard_input && !first_time(about)) return refuse(kStandardInputIsGone);
  return std::make_unique<RewindableStream>(std::make_unique<PipeBytes>(std::move(input)));
}

// Looks at the first bytes; the stream goes back to its start. A read error here occurs again when
// the text is read.
CompressionFormat format_of(ByteStream& stream) {
  char head[kFormatBytes];
  std::size_t size = 0;
  ssize_t count = 1;
  while (count > 0 && size < sizeof head) {
    count = stream.read(head + size, sizeof head - size);
    if (count > 0) size += static_cast<std::size_t>(count);
  }
  stream.seek(0, SEEK_SET);
  return compression_format({head, size});
}

// An archive in an archive must not be taken for a text.
std::unique_ptr<ByteStream> text_of(std::unique_ptr<ByteStream> archive,
                                    std::unique_ptr<Decoder> decoder) {
  auto text = std::make_unique<CompressedStream>(std::move(archive), std::move(decoder));
  if (format_of(*text) != CompressionFormat::none) {
    return refuse(kCompressedTwice);
  }
  return bounded(std::move(text));
}

// The text of the file, within the limit before and after decompression.
std::unique_ptr<ByteStream> decompressed(std::unique_ptr<ByteStream> stream) {
  stream = bounded(std::move(stream));
  switch (format_of(*stream)) {
    case CompressionFormat::none:
      return stream;
    case CompressionFormat::gzip:
      return text_of(std::move(stream), std::make_unique<GzipDecoder>());
    case CompressionFormat::zstd:
      return text_of(std::move(stream), std::make_unique<ZstdDecoder>());
    case CompressionFormat::bzip2:
      return refuse(kFormatBzip2);
    case CompressionFormat::lz4:
      return refuse(kFormatLz4);
    case CompressionFormat::xz:
      return refuse(kFormatXz);
    case CompressionFormat::zip:
      return refuse(kFormatZip);
  }
  return stream;
}

}  // namespace

std::FILE* open_bytes(std::string_view bytes) {
  auto stream = decompressed(std::make_unique<MemoryBytes>(bytes));
  return stream ? as_c_stream(std::move(stream)) : nullptr;
}

}  // namespace standalone

std::FILE* open_file(const std::u16string& path, const char* mode) {
  using namespace standalone;
  if (!only_reads(mode)) return refuse(EINVAL);
  if (path.find(u'\0') != path.npos) return refuse(ENOENT);
  Descriptor input = descriptor_of(path);
  struct stat about {};
  if (input.number() < 0 || ::fstat(input.number(), &about) != 0) return nullptr;
  // A directory opens for reading like a file, and would look like an empty text.
  if (S_ISDIR(about.st_mode)) return refuse(EISDIR);
  auto stream = stream_of(std::move(input), about, is_standard_input(path));
  if (stream) stream = decompressed(std::move(stream));
  return stream ? as_c_stream(std::move(stream)) : nullptr;
}

}  // namespace textio
