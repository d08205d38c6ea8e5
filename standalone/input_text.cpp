// The first bytes tell the encoding, for the whole sample as a rule: only when they are nothing but
// ASCII, which goes with nearly every encoding, may what follows prove them wrong.
#include "standalone/input_text.hpp"

#include <algorithm>
#include <cerrno>
#include <string_view>

#include <fmt/format.h>

#include "detection/fixed_stream.hpp"
#include "host/code_converter.hpp"
#include "host/file_layer.hpp"
#include "standalone/read_problem.hpp"
#include "standalone/utf_text.hpp"

namespace textio::standalone {
namespace {

// As much of a file as is looked at for its encoding.
constexpr std::size_t kHeadBytes = 65'536;

std::string read_bytes(std::FILE* file) {
  std::string bytes(kHeadBytes, '\0');
  bytes.resize(std::fread(bytes.data(), 1, bytes.size(), file));
  return bytes;
}

std::size_t count_of_ascii(std::string_view bytes) {
  const auto first_other =
      std::find_if(bytes.begin(), bytes.end(), [](char byte) { return (byte & 0x80) != 0; });
  return static_cast<std::size_t>(first_other - bytes.begin());
}

// An input that cannot be read twice is taken for UTF-8. What was a read error here is one again
// when the text is read.
FoundEncoding look_for_encoding(std::FILE* file) {
  if (std::ftell(file) != 0) return {"UTF-8", EncodingFound::fallback, 0.0};
  const std::string head = read_bytes(file);
  std::rewind(file);
  return find_encoding(head, head.size() < kHeadBytes);
}

FoundEncoding encoding_of(std::FILE* file, const DetectSettings& settings) {
  if (settings.encoding) return {*settings.encoding, EncodingFound::given, 1.0};
  const std::u16string& of_record = settings.options.encoding;
  if (of_record != u"UTF-8") return {to_utf8(of_record), EncodingFound::given, 1.0};
  return look_for_encoding(file);
}

// What the bytes from the first one above 127 on are read best as; UTF-8 when there are none, or
// when they begin before the end of the head and were seen before.
FoundEncoding encoding_behind_ascii(std::FILE* file) {
  bool is_head = true;
  for (std::string bytes = read_bytes(file); !bytes.empty(); bytes = read_bytes(file)) {
    const std::size_t ascii = count_of_ascii(bytes);
    if (ascii < bytes.size() && !is_head) {
      const std::string region =
          bytes.substr(ascii - std::min<std::size_t>(ascii, 1)) + read_bytes(file);
      return find_encoding(region, std::feof(file) != 0);
    }
    if (ascii < bytes.size()) break;
    is_head = false;
  }
  return {"UTF-8", EncodingFound::valid_utf8, 1.0};
}

}  // namespace

InputText::InputText(const std::string& path, const DetectSettings& settings)
    : path_(path), settings_(settings) {
  errno = 0;
  File file(open_file(from_utf8(path), "rb"));
  if (!file) throw FileError(fmt::format("cannot open '{}': {}", path, read_problem(errno)));
  encoding_ = encoding_of(file.get(), settings);
  decode(std::move(file));
  if (encoding_.found == EncodingFound::valid_utf8 && ill_formed_parts_ > 0) look_behind_the_head();
}

void InputText::decode(File file) {
  stream_.reset();
  source_ = std::make_unique<FileTextSource>();
  source_->init_stream(file.release(), encoding_.name);
  stream_ = std::make_unique<TextStream>(source_.get());
  sample_ = get_fixed_stream(*stream_, settings_.options.line_endings);
  ill_formed_parts_ = source_->converter()->ill_formed_parts();
  if (const int error = source_->read_error(); error != 0) {
    throw FileError(fmt::format("cannot read '{}': {}", path_, read_problem(error)));
  }
}

// Ill-formed parts in a text whose head was well-formed.
void InputText::look_behind_the_head() {
  File file(source_->release());
  if (::fseeko64(file.get(), 0, SEEK_SET) != 0) return;
  const FoundEncoding found = encoding_behind_ascii(file.get());
  if (found.name == encoding_.name || ::fseeko64(file.get(), 0, SEEK_SET) != 0) return;
  encoding_ = found;
  decode(std::move(file));
}

}  // namespace textio::standalone
