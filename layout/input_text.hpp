// InputText: the sample of a file, opened once and decoded.
//
//   InputText input("measurements.csv", settings);
//   input.sample();                  // valid as long as `input`
//   input.encoding().name;           // "UTF-8"
//
// Errors  FileError when the file cannot be opened or a read fails; std::invalid_argument for an
//         encoding that is not known.
// Cost    each byte of the sample is read once, a head of 64 KB twice. Where this head is ASCII and
//         what follows turns out not to be UTF-8, the sample is read once more.
#pragma once

#include <cstddef>
#include <cstdio>
#include <memory>
#include <string>

#include <vltextstream/layout/detect_layout.hpp>
#include <vltextstream/source/file_text_source.hpp>
#include <vltextstream/source/text_stream.hpp>
#include <vltextstream/standalone/encoding_detection/find_encoding.hpp>
#include <vltextstream/strategy/field.hpp>

namespace textio::standalone {

class InputText {
 public:
  InputText(const std::string& path, const DetectSettings& settings);

  const Field& sample() const { return sample_; }
  const FoundEncoding& encoding() const { return encoding_; }
  std::size_t ill_formed_parts() const { return ill_formed_parts_; }

  // Whether the text goes on behind the sample.
  bool has_more_text() const { return stream_->at(sample_.length) != TextStream::kEnd; }

 private:
  struct CloseFile {
    void operator()(std::FILE* file) const { std::fclose(file); }
  };
  using File = std::unique_ptr<std::FILE, CloseFile>;

  void decode(File file);
  void look_behind_the_head();
  void doubt_utf8();

  std::string path_;
  const DetectSettings& settings_;
  FoundEncoding encoding_;
  std::unique_ptr<FileTextSource> source_;
  std::unique_ptr<TextStream> stream_;
  Field sample_;
  std::size_t ill_formed_parts_ = 0;
};

}  // namespace textio::standalone
