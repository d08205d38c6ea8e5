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
//            all of it is done again.
#pragma once

#include <cstddef>
#include <cstdio>
#include <memory>
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

  // The ill-formed parts in these characters; 0 before.
  std::size_t ill_formed_parts() const { return ill_formed_parts_; }

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

  std::string name_;  // of the input, in messages
  const DetectSettings& settings_;
  FoundEncoding encoding_;
  std::unique_ptr<FileTextSource> source_;
  std::unique_ptr<TextStream> stream_;
  std::size_t ill_formed_parts_ = 0;
};

}  // namespace textio::standalone
