// The first bytes give the encoding, as a rule for the whole text: only when all of them are ASCII,
// which fits nearly every encoding, can the bytes that follow prove them wrong. Of these, only those
// count that an answer rests on, so that it does not depend on how much of the text was loaded.
#include <vltextstream/layout/input_text.hpp>

#include <algorithm>
#include <cerrno>
#include <iterator>
#include <new>
#include <stdexcept>
#include <string_view>
#include <utility>

#include <fmt/format.h>

#include <vltextstream/host/code_converter.hpp>
#include <vltextstream/host/file_layer.hpp>
#include <vltextstream/standalone/decoding/utf_text.hpp>
#include <vltextstream/standalone/files/end_look.hpp>
#include <vltextstream/standalone/files/memory_bytes.hpp>
#include <vltextstream/standalone/files/read_limit.hpp>
#include <vltextstream/standalone/files/read_problem.hpp>

namespace textio::standalone {
namespace {

// The part of a file that is searched for its encoding.
constexpr std::size_t kHeadBytes = 65'536;

// At least this many characters must agree with the encoding, whatever was sampled: as many as the
// stream loads for the first prefix.
constexpr std::size_t kEvidenceUnits = 131'072;

// Memory that runs out is no error of the input.
[[noreturn]] void refuse(const char* action, const std::string& name, int error) {
  if (error == ENOMEM) throw std::bad_alloc();
  const std::string problem =
      error == kTooManyBytes
          ? fmt::format(
                "a look at it takes more than {} bytes, before or after decompression; the limit "
                "is max_bytes (--max-bytes)",
                read_limit())
          : read_problem(error);
  throw FileError(fmt::format("cannot {} {}: {}", action, name, problem));
}

// A file that is read for its encoding before it is read for its text. An error here must be
// reported: the second reading may succeed, and would give another text.
class Preview {
 public:
  Preview(std::FILE* file, const std::string& name)
      : file_(file), name_(name), bytes_(std::make_unique_for_overwrite<char[]>(kHeadBytes)) {}

  // The next 64 KB; fewer at the end. Valid until the next call.
  std::string_view read() {
    errno = 0;
    const std::size_t size = std::fread(bytes_.get(), 1, kHeadBytes, file_);
    if (std::ferror(file_) != 0) refuse("read", name_, errno != 0 ? errno : EIO);
    return {bytes_.get(), size};
  }

  bool is_at_end() const { return std::feof(file_) != 0; }

  void go_back() {
    errno = 0;
    if (::fseeko64(file_, 0, SEEK_SET) != 0) refuse("read", name_, errno);
  }

 private:
  std::FILE* file_;
  const std::string& name_;
  const std::unique_ptr<char[]> bytes_;
};

std::size_t count_of_ascii(std::string_view bytes) {
  const auto first_other =
      std::find_if(bytes.begin(), bytes.end(), [](char byte) { return (byte & 0x80) != 0; });
  return static_cast<std::size_t>(first_other - bytes.begin());
}

// An input that cannot be read twice is read as UTF-8.
FoundEncoding look_for_encoding(std::FILE* file, const std::string& name) {
  if (std::ftell(file) != 0) return {"UTF-8", EncodingFound::fallback, 0.0};
  Preview preview(file, name);
  const std::string_view head = preview.read();
  preview.go_back();
  return find_encoding(head, head.size() < kHeadBytes);
}

FoundEncoding encoding_of(std::FILE* file, const std::string& name,
                          const DetectSettings& settings) {
  if (settings.encoding) return {*settings.encoding, EncodingFound::given, 1.0};
  const std::u16string& of_record = settings.options.encoding;
  if (of_record != u"UTF-8") return {to_utf8(of_record), EncodingFound::given, 1.0};
  return look_for_encoding(file, name);
}

// The encoding that fits the bytes from the first one above 127 on; UTF-8 when there are none, or
// when they begin inside the head, which was examined before.
FoundEncoding encoding_past_ascii(Preview& preview) {
  bool is_head = true;
  for (std::string_view bytes = preview.read(); !bytes.empty(); bytes = preview.read()) {
    const std::size_t ascii = count_of_ascii(bytes);
    if (ascii < bytes.size() && !is_head) {
      std::string region(bytes.substr(ascii - std::min<std::size_t>(ascii, 1)));
      region += preview.read();
      return find_encoding(region, preview.is_at_end());
    }
    if (ascii < bytes.size()) break;
    is_head = false;
  }
  return {"UTF-8", EncodingFound::valid_utf8, 1.0};
}

// Whether the name of an encoding, in any case, has these characters: "utf", "8".
bool has_in_name(std::string_view name, std::string_view part) {
  const auto lower = [](char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c + 0x20) : c; };
  return std::search(name.begin(), name.end(), part.begin(), part.end(),
                     [lower](char a, char b) { return lower(a) == b; }) != name.end();
}

bool begins_with_mark(std::string_view bytes, std::string_view encoding) {
  constexpr std::string_view kOfUtf8 = "\xEF\xBB\xBF";
  constexpr std::string_view kOfOthers[] = {"\xFF\xFE", "\xFE\xFF", {"\0\0\xFE\xFF", 4}};
  if (!has_in_name(encoding, "utf")) return false;
  if (has_in_name(encoding, "8")) return bytes.starts_with(kOfUtf8);
  return std::any_of(std::begin(kOfOthers), std::end(kOfOthers),
                     [bytes](std::string_view mark) { return bytes.starts_with(mark); });
}

// The first bytes, which are read again. C guarantees that one can be put back; here they all are still in the
// buffer of the stream, and nothing but the place in it changes.
std::string peek(std::FILE* file, const std::string& name) {
  constexpr std::size_t kLongestMark = 4;
  std::string bytes;
  errno = 0;
  while (bytes.size() < kLongestMark) {
    const int byte = std::fgetc(file);
    if (byte == EOF) break;
    bytes.push_back(static_cast<char>(byte));
  }
  if (std::ferror(file) != 0) refuse("read", name, errno != 0 ? errno : EIO);
  for (std::size_t i = bytes.size(); i-- > 0;) {
    if (std::ungetc(static_cast<unsigned char>(bytes[i]), file) == EOF) refuse("read", name, EIO);
  }
  return bytes;
}

}  // namespace

InputText::InputText(const std::string& path, const DetectSettings& settings)
    : name_(fmt::format("'{}'", path)), settings_(settings) {
  const ReadLimitScope limit(settings.max_bytes);
  errno = 0;
  read(File(open_file(from_utf8(path), "rb")));
}

InputText::InputText(std::FILE* file, std::string name, const DetectSettings& settings)
    : name_(std::move(name)), settings_(settings) {
  read(File(file));
}

std::FILE* InputText::release() { return source_->release(); }

InputText::InputText(FileContent content, const DetectSettings& settings)
    : name_("the bytes"), settings_(settings) {
  const ReadLimitScope limit(settings.max_bytes);
  errno = 0;
  read(File(open_bytes(content.bytes)));
}

InputText::InputText(PlainBytes text, const DetectSettings& settings)
    : name_("the text"), settings_(settings) {
  errno = 0;
  read(File(as_c_stream(std::make_unique<MemoryBytes>(text.bytes))));
}

// Right after the attempt to open `file`, while errno holds the reason if it is null.
void InputText::read(File file) {
  if (!file) refuse("open", name_, errno);
  encoding_ = encoding_of(file.get(), name_, settings_);
  has_mark_ = encoding_.found == EncodingFound::byte_order_mark;
  if (encoding_.found == EncodingFound::given && has_in_name(encoding_.name, "utf")) {
    has_mark_ = begins_with_mark(peek(file.get(), name_), encoding_.name);
  }
  decode(std::move(file));
}

void InputText::decode(File file) {
  stream_.reset();
  source_ = std::make_unique<FileTextSource>();
  file_ = file.get();
  source_->init_stream(file.release(), encoding_.name);
  stream_ = std::make_unique<TextStream>(source_.get());
  refuse_read_errors();
}

void InputText::refuse_read_errors() const {
  if (const int error = source_->read_error(); error != 0) refuse("read", name_, error);
}

TextPrefix InputText::prefix(std::size_t units) {
  const ReadLimitScope limit(settings_.max_bytes);
  TextPrefix prefix = prefix_of(*stream_, settings_.options.line_endings, units);
  refuse_read_errors();
  return prefix;
}

bool InputText::confirm_encoding(std::size_t length) {
  const ReadLimitScope limit(settings_.max_bytes);
  const std::u16string_view evidence = first_characters(std::max(length, kEvidenceUnits));
  note_loaded();
  ill_formed_parts_ = ill_formed_among(evidence.substr(0, length));
  if (encoding_.found != EncodingFound::valid_utf8) return true;
  const std::size_t contradictions = ill_formed_among(evidence);
  if (contradictions == 0) return true;
  if (source_->getPos() >= 0 && is_other_past_the_head()) return false;
  doubt_utf8(evidence, contradictions);
  return true;
}

// The first `most` characters of the text; fewer if it ends before.
std::u16string_view InputText::first_characters(std::size_t most) const {
  const bool is_full = stream_->at(most - 1) != TextStream::kEnd;
  refuse_read_errors();
  const std::size_t length = is_full ? most : stream_->find_first_pos_of(TextStream::kEnd, 0);
  return {stream_->window_begin(), length};
}

// The buffer of the stream is full unless the text has ended in it.
void InputText::note_loaded() {
  BufferManager* const buffer = source_->getBufferManager();
  const auto room = static_cast<std::size_t>(buffer->end() - buffer->begin());
  is_all_loaded_ = stream_->at(room - 1) == TextStream::kEnd;
  units_loaded_ = is_all_loaded_ ? stream_->find_first_pos_of(TextStream::kEnd, 0) : room;
  bytes_loaded_ = static_cast<std::uint64_t>(std::max<source_pos>(source_->getPos(), 0));
}

// The converter counts what it has decoded for all that is loaded. Of the characters at the start of
// the text, those that are U+FFFD may be so in the file. So these are decoded again, where that is
// possible; it is not for a pipe of which too much was read to go back.
std::size_t InputText::ill_formed_among(std::u16string_view characters) {
  const std::size_t loaded = source_->converter()->ill_formed_parts();
  if (loaded == 0) return 0;
  const auto replaced =
      static_cast<std::size_t>(std::count(characters.begin(), characters.end(), u'\uFFFD'));
  const std::size_t most = std::min(loaded, replaced);
  if (most == 0 || source_->getPos() < 0) return most;
  source_->skipFromPos(0, characters.size());
  if (source_->read_error() == ESPIPE) return most;
  refuse_read_errors();
  return std::min(source_->converter()->ill_formed_parts() - loaded, replaced);
}

// Ill-formed parts in a text whose head was well-formed. If the bytes after the head have another
// encoding, the text is decoded anew.
bool InputText::is_other_past_the_head() {
  File file(source_->release());
  Preview preview(file.get(), name_);
  preview.go_back();
  FoundEncoding found = encoding_past_ascii(preview);
  if (found.name == encoding_.name) {
    source_->init_stream(file.release(), encoding_.name);  // for a look at the end
    return false;
  }
  preview.go_back();
  encoding_ = std::move(found);
  decode(std::move(file));
  return true;
}

// UTF-8 except for some parts: the more characters above 127 it has, the surer.
void InputText::doubt_utf8(std::u16string_view characters, std::size_t contradictions) {
  const auto above_ascii = std::count_if(characters.begin(), characters.end(), [](char16_t unit) {
    return unit > 0x7F || unit == kFoldedCharacter;
  });
  const auto parts = static_cast<double>(contradictions);
  encoding_.found = EncodingFound::statistics;
  encoding_.confidence =
      std::max(0.0, 1.0 - parts / std::max(parts, static_cast<double>(above_ascii)));
}

std::string InputText::first_bytes(std::size_t most) {
  const EndLookScope look;
  if (source_->read_error() != 0 || ::fseeko64(file_, 0, SEEK_SET) != 0) return {};
  std::string bytes(most, '\0');
  bytes.resize(std::fread(bytes.data(), 1, most, file_));
  return std::ferror(file_) == 0 ? bytes : std::string();
}

std::optional<std::uint64_t> InputText::num_bytes() {
  const EndLookScope look;
  if (source_->read_error() != 0 || ::fseeko64(file_, 0, SEEK_END) != 0) return std::nullopt;
  const off64_t size = ::ftello64(file_);
  return size >= 0 ? std::optional(static_cast<std::uint64_t>(size)) : std::nullopt;
}

std::optional<std::u16string> InputText::end_from(std::uint64_t begin, std::size_t count) {
  const EndLookScope look;
  try {
    std::u16string text = read_from(begin, count);
    const bool is_whole =
        source_->read_error() == 0 && source_->getPos() >= static_cast<source_pos>(begin + count);
    return is_whole ? std::optional(std::move(text)) : std::nullopt;
  } catch (const std::runtime_error&) {
    return std::nullopt;  // the decoder failed
  }
}

std::optional<InputText::Part> InputText::part_from(std::uint64_t begin, std::size_t units) {
  const EndLookScope look;
  try {
    std::u16string text = read_from(begin, units);
    const source_pos end = source_->getPos();
    const bool is_whole = source_->read_error() == 0 && end >= static_cast<source_pos>(begin);
    if (!is_whole) return std::nullopt;
    return Part{std::move(text), static_cast<std::size_t>(end) - begin};
  } catch (const std::runtime_error&) {
    return std::nullopt;  // the decoder failed
  }
}

std::optional<std::uint64_t> InputText::byte_after(std::uint64_t begin, std::size_t units) {
  const EndLookScope look;
  try {
    const bool is_long_enough =
        source_->skipFromPos(static_cast<source_pos>(begin), units) == units;
    if (!is_long_enough || source_->read_error() != 0) return std::nullopt;
    return static_cast<std::uint64_t>(source_->getPos());
  } catch (const std::runtime_error&) {
    return std::nullopt;  // the decoder failed
  }
}

// The converter keeps the byte order that a mark at the start of the file has set.
std::u16string InputText::read_from(std::uint64_t begin, std::size_t count) {
  std::u16string text(count, u'\0');
  source_->skipFromPos(static_cast<source_pos>(begin), 0);
  text.resize(source_->fillBuffer(text.data(), text.data() + count));
  return text;
}

}  // namespace textio::standalone
