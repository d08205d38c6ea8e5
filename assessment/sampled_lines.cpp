#include <vltextstream/assessment/sampled_lines.hpp>

#include <algorithm>

namespace textio::assessment {
bool is_blank(std::u16string_view line) { return std::all_of(line.begin(), line.end(), is_space); }

bool has_comment_sign(std::u16string_view line) {
  line = trimmed(line);
  constexpr std::u16string_view kSigns = u"#%!;*";
  if (line.empty()) return false;
  // Nothing but semicolons is a record of empty cells.
  if (line[0] == u';') return line.find_first_not_of(u"; \t") != line.npos;
  return kSigns.find(line[0]) != line.npos || line.substr(0, 2) == u"//";
}

std::u16string_view without_comment_sign(std::u16string_view line) {
  line = trimmed(line);
  const std::u16string_view sign = line.substr(0, 2) == u"//" ? u"/" : line.substr(0, 1);
  while (!sign.empty() && line.substr(0, 1) == sign) line.remove_prefix(1);
  return trimmed(line);
}

SampledLines::SampledLines(std::u16string_view text, std::vector<TextLine> lines, bool has_more,
                           bool looks_for_comments)
    : text_(text), lines_(std::move(lines)), is_comment_(lines_.size()), has_more_(has_more) {
  for (const TextLine& line : lines_) characters_ |= line.characters;
  if (!looks_for_comments) return;
  std::size_t first_other = 0;
  while (first_other < size() &&
         (is_blank(view(first_other)) || has_comment_sign(view(first_other)))) {
    ++first_other;
  }
  if (first_other == size()) return;
  std::size_t texts = 0;
  std::size_t signs = 0;
  for (std::size_t k = 0; k < size(); ++k) {
    is_comment_[k] = has_comment_sign(view(k));
    if (k < first_other || is_blank(view(k))) continue;
    ++texts;
    signs += is_comment_[k];
  }
  if (2 * signs >= texts)
    std::fill(is_comment_.begin() + static_cast<std::ptrdiff_t>(first_other), is_comment_.end(),
              false);
}

// The number of comments above all other lines that do not count towards the sample.
constexpr std::size_t kMostComments = 1000;

// The length of the line ending at `pos`; 0 if there is none.
std::size_t length_of_ending(std::u16string_view text, std::size_t pos,
                             const LineEndings& endings) {
  if (text[pos] == u'\n') return endings.has_lf ? 1 : 0;
  if (text[pos] != u'\r') return 0;
  if (endings.has_crlf && text.substr(pos, 2) == u"\r\n") return 2;
  return endings.has_cr ? 1 : 0;
}

void SampledLines::hide(const std::vector<std::size_t>& indices) {
  for (const std::size_t index : indices) {
    TextLine& line = lines_[index];
    if (is_hidden(index) || line.end == line.begin) continue;
    line.hidden_end = line.end;
    line.end = line.begin;
    line.characters = 0;
  }
  characters_ = 0;
  for (const TextLine& each : lines_) characters_ |= each.characters;
}

TextLine line_at(std::u16string_view text, std::size_t pos, const LineEndings& endings) {
  CharacterSet characters = 0;
  std::size_t end = pos;
  std::size_t length = 0;
  for (; end < text.size(); ++end) {
    const CharacterSet one = set_of(text[end]);
    if (one == kControls) {
      length = length_of_ending(text, end, endings);
      if (length > 0) break;
    }
    characters |= one;
  }
  return {pos, end, end + length, characters};
}

bool has_prefix(std::u16string_view line, std::u16string_view prefix) {
  return !prefix.empty() && trimmed(line).substr(0, prefix.size()) == prefix;
}

SampledLines sample_lines(std::u16string_view text, std::size_t num_lines, const LineRules& rules) {
  std::vector<TextLine> lines;
  std::size_t pos = 0;
  std::size_t comments = 0;
  for (std::size_t texts = 0; pos < text.size() && texts < num_lines;) {
    lines.push_back(line_at(text, pos, rules.endings));
    const std::u16string_view line = text.substr(pos, lines.back().end - pos);
    const bool is_known = lines.size() <= rules.num_above || has_prefix(line, rules.comment_prefix);
    const bool is_above = texts == 0 && comments < kMostComments && rules.comment_prefix.empty() &&
                          has_comment_sign(line);
    if (is_above && !is_known) {
      ++comments;
    } else if (!is_known && !is_blank(line)) {
      ++texts;
    }
    pos = lines.back().next;
  }
  return {text, std::move(lines), pos < text.size()};
}

}  // namespace textio::assessment
