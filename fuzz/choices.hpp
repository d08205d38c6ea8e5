// The choices of a caller, made from the first bytes of an input; the text follows them.
//
//   const TextInput input(data, size);
//   difference_in_detection(input.text(), input.choices());
//
// If all bytes are 0, the choices are the defaults. The number of bytes is fixed, so that a mutator
// can change the text and the choices separately.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "differential/comparison.hpp"
#include "fuzz/input.hpp"

namespace textio::fuzz {

inline constexpr std::size_t kChoiceBytes = 16;

using Texts = std::vector<std::u16string>;

// Positions of the choice bytes.
enum ChoiceByte : std::size_t {
  kNumLinesByte,
  kHeaderLinesByte,
  kNumVariablesByte,
  kLineEndingsByte,
  kCommentsByte,
  kWhitespaceByte,
  kFreeBytes
};

inline const std::vector<Texts>& line_ending_lists() {
  static const std::vector<Texts> lists = {
      {u"\r\n", u"\n", u"\r"}, {u"\n"}, {u"\r"}, {u"\r\n"}, {}, {u""}, {u";"}, {u" "},
      {u"\t\n", u"\n"},        {u"ab"}};
  return lists;
}
inline const std::vector<Texts>& comment_lists() {
  static const std::vector<Texts> lists = {{},    {u"%"},       {u"#"},  {u"//"}, {u"/*", u"*/"},
                                           {u""}, {u"a", u"b"}, {u"\""}, {u" "}};
  return lists;
}
inline const Texts& whitespace_sets() {
  static const Texts sets = {u" \b\t", u"", u" ", u" \t", u"\t", u"a ", u"\"", u",", u"\u00a0 "};
  return sets;
}

class TextInput {
 public:
  TextInput(const std::uint8_t* data, std::size_t size) : all_(data, size) {
    Input choices(all_.take(kChoiceBytes));
    read(choices);
    bytes_ = all_.rest();
  }

  const differential::Choices& choices() const { return choices_; }
  std::string_view bytes() const { return bytes_; }
  std::u16string text() const { return text_of_bytes(bytes_); }

  // The rest of the choice bytes, for choices that only one target makes.
  Input more() const { return Input(more_); }

 private:
  void read(Input& input) {
    static constexpr unsigned long kNumLines[] = {100, 0, 1, 2, 3, 5, 10, 1000};
    const std::uint8_t num_lines = input.byte();
    choices_.num_lines = num_lines == 255 ? ~0UL : kNumLines[num_lines % 8];
    if (const std::uint8_t lines = input.byte()) {
      Input number(std::string_view(reinterpret_cast<const char*>(&lines), 1));
      choices_.header_lines = lines < 200 ? lines % 8U : number.count();
    }
    if (const std::uint8_t variables = input.byte()) {
      Input number(std::string_view(reinterpret_cast<const char*>(&variables), 1));
      choices_.num_variables = variables < 200 ? variables % 8U : number.count();
    }
    const std::uint8_t endings = input.byte();
    const std::uint8_t comments = input.byte();
    const std::uint8_t whitespace = input.byte();
    more_ = input.rest();
    Input free_text(more_);
    choices_.line_endings = of_list(line_ending_lists(), endings, free_text);
    choices_.comment_style = of_list(comment_lists(), comments, free_text);
    choices_.whitespace = whitespace < 128
                              ? whitespace_sets()[whitespace % whitespace_sets().size()]
                              : free_text.text(3);
  }

  static Texts of_list(const std::vector<Texts>& lists, std::uint8_t choice, Input& free_text) {
    return choice < 192 ? lists[choice % lists.size()] : free_text.short_texts();
  }

  Input all_;
  differential::Choices choices_;
  std::string_view more_;
  std::string_view bytes_;
};

}  // namespace textio::fuzz
