// TextInput: the whole text of a file, decoded piece by piece.
//
//   TextInput input(std::move(file), "'gauge.csv'", "windows-1252");
//   TextBuffer text;
//   input.read(text, 1'000'000);
//   input.end_of_line(3);   // 57: the bytes up to and with the ending of the third line
//
// Characters outside the Basic Multilingual Plane are surrogate pairs.
//
// Units      positions and lengths of text count code units, those of the file bytes. Lines end with "\n",
//            "\r\n" or "\r", as far as these are line endings here, and are numbered from 1.
// Ownership  owns the file.
// Errors     FileError when a read fails; std::invalid_argument for an unknown encoding.
// Cost       one pass over the bytes; eight bytes of memory for each line that is not forgotten.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include <vltextstream/assessment/sampled_lines.hpp>
#include <vltextstream/host/code_converter.hpp>

namespace textio::reading {

// Text that grows at its end without being set to zero first.
class TextBuffer {
 public:
  std::size_t size() const { return size_; }
  char16_t* data() { return units_.get(); }
  const char16_t* data() const { return units_.get(); }
  std::u16string_view view() const { return {units_.get(), size_}; }

  // Room for `count` more code units, which the caller writes and then adds.
  char16_t* room_for(std::size_t count);
  void add(std::size_t count) { size_ += count; }
  void append(std::u16string_view text);

  // Forgets the text, keeps the memory.
  void clear() { size_ = 0; }

 private:
  std::unique_ptr<char16_t[]> units_;
  std::size_t size_ = 0;
  std::size_t capacity_ = 0;
};

struct CloseFile {
  void operator()(std::FILE* file) const { std::fclose(file); }
};
using File = std::unique_ptr<std::FILE, CloseFile>;

class TextInput {
 public:
  // `file` is at its start; `name` is for messages.
  TextInput(File file, std::string name, const std::string& encoding,
            const assessment::LineEndings& endings = {});

  // Appends text until `text` has at least `units` code units or the input has ended.
  void read(TextBuffer& text, std::size_t units);

  // Whether all text was read.
  bool is_at_end() const { return is_at_end_; }

  // The bytes up to the end of a line that was read, its line ending included; of the last line of the file, all
  // bytes. Lines before the one that was asked for last are forgotten.
  std::uint64_t end_of_line(std::uint64_t line);

  // All bytes read, and the ill-formed parts among them.
  std::uint64_t num_bytes() const { return num_bytes_; }
  std::size_t ill_formed_parts() const { return converter_->ill_formed_parts(); }

 private:
  void note_lines_of(std::string_view bytes);
  void note_lines_of(std::u16string_view text);
  template <typename Unit, typename EndAt>
  void note_lines(std::basic_string_view<Unit> units, EndAt end_at);

  File file_;
  std::string name_;
  std::unique_ptr<StreamCodeConverter> converter_;
  assessment::LineEndings endings_;

  // The bytes of a code unit, if each has as many and line endings are looked for in the text; 0: they are
  // looked for in the bytes, where "\n" and "\r" are as they are in ASCII.
  std::size_t unit_bytes_;

  std::unique_ptr<char[]> chunk_;
  bool is_at_end_ = false;
  std::uint64_t num_bytes_ = 0;
  std::uint64_t num_text_bytes_ =
      0;  // of the text so far, its mark included, if unit_bytes_ is not 0

  // Where lines end, from `first_line_` on; and whether the last unit was a "\r", which a "\n" may follow.
  std::vector<std::uint64_t> line_ends_;
  std::uint64_t first_line_ = 1;
  bool is_after_cr_ = false;
};

}  // namespace textio::reading
