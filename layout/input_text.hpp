// InputText: the text of a file or of bytes in memory, decoded as far as it is asked for.
//
//   InputText input("measurements.csv", settings);
//   TextPrefix prefix = input.prefix(65'536);
//   // ... an answer that rests on the first 2,000 characters ...
//   if (input.confirm_encoding(2'000)) input.encoding().name;   // "UTF-8"
//
// Ownership  bytes in memory are borrowed and must outlive the input; so must the settings. A prefix
//            is valid until the next call that is not const.
// Errors     FileError when the file cannot be opened or a read fails; std::invalid_argument for an
//            unknown encoding.
// Cost       each byte of the longest prefix is read once, the first 64 KB twice. If an answer rests
//            on ill-formed parts, its characters are decoded once more, and if they are not UTF-8,
//            all of it is done again. The end of the text is read only on request.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include <vltextstream/layout/detect_layout.hpp>
#include <vltextstream/layout/text_prefix.hpp>
#include <vltextstream/source/file_text_source.hpp>
#include <vltextstream/source/text_stream.hpp>
#include <vltextstream/standalone/encoding_detection/find_encoding.hpp>

namespace textio::standalone {

// The content of a file, perhaps compressed.
struct FileContent {
  std::string_view bytes;
};

// Bytes that are read as they are, whatever they look like.
struct PlainBytes {
  std::string_view bytes;
};

class InputText {
 public:
  InputText(const std::string& path, const DetectSettings& settings);

  // Of an open file at its start, which is called `name` in messages. No limit of bytes is in force.
  InputText(std::FILE* file, std::string name, const DetectSettings& settings);

  InputText(FileContent content, const DetectSettings& settings);
  InputText(PlainBytes text, const DetectSettings& settings);

  // As prefix_of.
  TextPrefix prefix(std::size_t units);

  // The text, to look at in what the last prefix has loaded, and at the code unit after it.
  const TextStream& text() const { return *stream_; }

  // Settles the encoding for an answer that rests on the first `length` characters of the last
  // prefix. False when these or the first 131,072 prove another encoding than the one that was found in the first bytes:
  // then the text is decoded anew, and the answer must be found again. Otherwise the text can no
  // longer be read. The second call is always true.
  bool confirm_encoding(std::size_t length);

  const FoundEncoding& encoding() const { return encoding_; }

  // Whether the file begins with the byte-order mark of its encoding.
  bool has_byte_order_mark() const { return has_mark_; }

  // The ill-formed parts in these characters; 0 before.
  std::size_t ill_formed_parts() const { return ill_formed_parts_; }

  // The open file, at any position; null if there is none. The text can no longer be read.
  std::FILE* release();

  // --- after confirm_encoding was true

  // The text as far as it is loaded, whether that is all of it, and how many bytes were read for it.
  std::u16string_view loaded() const { return {stream_->window_begin(), units_loaded_}; }
  bool is_all_loaded() const { return is_all_loaded_; }
  std::uint64_t bytes_loaded() const { return bytes_loaded_; }

  // The first bytes, at most `most`; none if they cannot be read again.
  std::string first_bytes(std::size_t most);

  // The number of bytes of the file; no value if it would have to be read or unpacked for this.
  std::optional<std::uint64_t> num_bytes();

  // The text of the last `count` bytes, which begin at position `begin`, a multiple of the code units of the
  // encoding; the first character may be cut. No value if they cannot be read, or the file has got shorter.
  std::optional<std::u16string> end_from(std::uint64_t begin, std::size_t count);

  // About `units` characters from byte `begin` on, as for end_from, of any part of the file, and the bytes that they take.
  // No value if they cannot be read.
  struct Part {
    std::u16string text;
    std::size_t bytes = 0;
  };
  std::optional<Part> part_from(std::uint64_t begin, std::size_t units);

  // The byte that follows the `units` characters from byte `begin` on, which begins a character.
  std::optional<std::uint64_t> byte_after(std::uint64_t begin, std::size_t units);

 private:
  struct CloseFile {
    void operator()(std::FILE* file) const { std::fclose(file); }
  };
  using File = std::unique_ptr<std::FILE, CloseFile>;

  void read(File file);
  void decode(File file);
  void refuse_read_errors() const;
  std::size_t ill_formed_among(std::u16string_view characters);
  bool is_other_past_the_head();
  void doubt_utf8(std::u16string_view characters, std::size_t contradictions);
  std::u16string_view first_characters(std::size_t most) const;
  void note_loaded();
  std::u16string read_from(std::uint64_t begin, std::size_t count);

  std::string name_;  // of the input, in messages
  const DetectSettings& settings_;
  FoundEncoding encoding_;
  std::unique_ptr<FileTextSource> source_;
  std::unique_ptr<TextStream> stream_;
  std::FILE* file_ = nullptr;  // the source owns it
  std::size_t ill_formed_parts_ = 0;
  std::size_t units_loaded_ = 0;
  std::uint64_t bytes_loaded_ = 0;
  bool is_all_loaded_ = false;
  bool has_mark_ = false;
};

}  // namespace textio::standalone
