// InputText: the sample of a file or of bytes in memory, decoded.
//
//   InputText input("measurements.csv", settings);
//   input.sample();                  // valid as long as `input`
//   input.encoding().name;           // "UTF-8"
//
// Ownership  bytes in memory are borrowed and must outlive the input; so must the settings.
// Errors     FileError when the file cannot be opened or a read fails; std::invalid_argument for an
//            unknown encoding.
// Cost       each byte of the sample is read once, the first 64 KB twice. Where these are ASCII and
//            what follows is not UTF-8, the sample is read once more.
#pragma once

#include <cstddef>
#include <cstdio>
#include <memory>
#include <string>
#include <string_view>

#include <vltextstream/layout/detect_layout.hpp>
#include <vltextstream/source/file_text_source.hpp>
#include <vltextstream/source/text_stream.hpp>
#include <vltextstream/standalone/encoding_detection/find_encoding.hpp>
#include <vltextstream/strategy/field.hpp>

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

  const Field& sample() const { return sample_; }
  const FoundEncoding& encoding() const { return encoding_; }
  std::size_t ill_formed_parts() const { return ill_formed_parts_; }

  // Whether the text continues after the sample.
  bool has_more_text() const { return stream_->at(sample_.length) != TextStream::kEnd; }

 private:
  struct CloseFile {
    void operator()(std::FILE* file) const { std::fclose(file); }
  };
  using File = std::unique_ptr<std::FILE, CloseFile>;

  void read(File file);
  void decode(File file);
  void look_past_the_head();
  void doubt_utf8();

  std::string name_;  // of the input, in messages
  const DetectSettings& settings_;
  FoundEncoding encoding_;
  std::unique_ptr<FileTextSource> source_;
  std::unique_ptr<TextStream> stream_;
  Field sample_;
  std::size_t ill_formed_parts_ = 0;
};

}  // namespace textio::standalone
