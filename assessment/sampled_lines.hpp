// SampledLines: the first lines of a text, as an editor shows them.
//
//   const SampledLines lines = sample_lines(u"a,b\r\n1,2\n", 100);
//   lines.view(0);      // u"a,b"
//   lines.has_more();   // false
//
// Units      positions and lengths count code units, lines are numbered from 0.
// Ownership  the lines are views of the text, which must outlive them.
// Cost       linear in the sampled text.
#pragma once

#include <cstddef>
#include <string_view>
#include <vector>

#include <vltextstream/assessment/character_set.hpp>

namespace textio::assessment {

struct TextLine {
  std::size_t begin = 0;
  std::size_t end = 0;          // before the line ending
  std::size_t next = 0;         // after it
  CharacterSet characters = 0;  // before the line ending
  std::size_t hidden_end = 0;   // `end` of a line that is hidden, whose `end` is `begin`
};

// Which of "\n" and "\r" end lines, and whether "\r\n" is one line ending.
struct LineEndings {
  bool has_lf = true;
  bool has_cr = true;
  bool has_crlf = true;
};

// What is known of the lines of a text.
struct LineRules {
  LineEndings endings = {};

  // How many lines are above the table, comments among them. They are taken besides the others.
  std::size_t num_above = 0;

  // A line that begins with this text, after blanks, is a comment, and no other line is. Empty: the usual
  // signs are looked for.
  std::u16string_view comment_prefix = {};
};

class SampledLines {
 public:
  // Without `looks_for_comments` no line is a comment.
  SampledLines(std::u16string_view text, std::vector<TextLine> lines, bool has_more,
               bool looks_for_comments = true);

  std::size_t size() const { return lines_.size(); }
  bool empty() const { return lines_.empty(); }
  const TextLine& operator[](std::size_t index) const { return lines_[index]; }
  std::u16string_view view(std::size_t index) const {
    return text_.substr(lines_[index].begin, lines_[index].end - lines_[index].begin);
  }
  std::u16string_view text() const { return text_; }

  // Which characters a line contains, and which all lines.
  CharacterSet characters(std::size_t index) const { return lines_[index].characters; }
  CharacterSet characters() const { return characters_; }

  // Whether a line begins with one of the usual comment signs and is probably a comment: it is above all
  // other lines, or fewer than half of those have such a sign.
  bool is_comment(std::size_t index) const { return is_comment_[index]; }

  // view() shows these lines as blank, because they are known not to belong to the table.
  void hide(const std::vector<std::size_t>& indices);
  bool is_hidden(std::size_t index) const { return lines_[index].hidden_end > 0; }

  // The line as it is in the text, hidden or not.
  std::u16string_view whole(std::size_t index) const {
    const std::size_t end = is_hidden(index) ? lines_[index].hidden_end : lines_[index].end;
    return text_.substr(lines_[index].begin, end - lines_[index].begin);
  }

  // Sets whether a line is a comment.
  void set_comment(std::size_t index, bool is_comment) { is_comment_[index] = is_comment; }

  // Whether it is known that the table begins with the first record.
  bool has_known_top() const { return has_known_top_; }
  void set_known_top() { has_known_top_ = true; }

  // Whether the text continues after the last line.
  bool has_more() const { return has_more_; }

  // The end of the last line and its line ending.
  std::size_t end() const { return lines_.empty() ? 0 : lines_.back().next; }

 private:
  std::u16string_view text_;
  std::vector<TextLine> lines_;
  std::vector<bool> is_comment_;
  CharacterSet characters_ = 0;
  bool has_more_;
  bool has_known_top_ = false;
};

// Lines end with "\r\n", "\n" or "\r". Takes lines until `num_lines` of them are neither blank nor comments
// above all others, of which the first 1,000 do not count. A last line without an ending is one; an empty one is
// none.
SampledLines sample_lines(std::u16string_view text, std::size_t num_lines,
                          const LineRules& rules = {});

// The line at `pos`, which must be before the end of the text.
TextLine line_at(std::u16string_view text, std::size_t pos, const LineEndings& endings);

// Whether a line begins with `prefix`, after blanks; false if that is empty.
bool has_prefix(std::u16string_view line, std::u16string_view prefix);

// Space or tab.
inline bool is_blank(char16_t unit) { return unit == u' ' || unit == u'\t'; }

bool is_blank(std::u16string_view line);  // has nothing but spaces, tabs and other white space

// A space, a tab or another white space of ASCII, or a no-break space.
constexpr bool is_space(char16_t unit) {
  return unit == u' ' || (unit >= u'\t' && unit <= u'\r') || unit == u'\u00A0';
}

// Without such characters at its ends.
constexpr std::u16string_view trimmed(std::u16string_view text) {
  while (!text.empty() && is_space(text.front())) text.remove_prefix(1);
  while (!text.empty() && is_space(text.back())) text.remove_suffix(1);
  return text;
}

// A line that begins with one of the usual comment signs, # % // ! ; or *, and what follows the sign.
bool has_comment_sign(std::u16string_view line);
std::u16string_view without_comment_sign(std::u16string_view line);

}  // namespace textio::assessment
