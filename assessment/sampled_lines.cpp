#include <vltextstream/assessment/sampled_lines.hpp>

#include <algorithm>

namespace textio::assessment {
namespace {

bool is_space(char16_t unit) {
  return unit == u' ' || (unit >= u'\t' && unit <= u'\r') || unit == u'\u00A0';
}

}  // namespace

bool is_blank(std::u16string_view line) { return std::all_of(line.begin(), line.end(), is_space); }

std::u16string_view trimmed(std::u16string_view text) {
  while (!text.empty() && is_space(text.front())) text.remove_prefix(1);
  while (!text.empty() && is_space(text.back())) text.remove_suffix(1);
  return text;
}

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

SampledLines::SampledLines(std::u16string_view text, std::vector<TextLine> lines, bool has_more)
    : text_(text), lines_(std::move(lines)), is_comment_(lines_.size()), has_more_(has_more) {
  for (const TextLine& line : lines_) characters_ |= line.characters;
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

SampledLines sample_lines(std::u16string_view text, std::size_t num_lines) {
  std::vector<TextLine> lines;
  std::size_t pos = 0;
  std::size_t comments = 0;
  for (std::size_t texts = 0; pos < text.size() && texts < num_lines;) {
    CharacterSet characters = 0;
    std::size_t end = pos;
    for (; end < text.size(); ++end) {
      const CharacterSet one = set_of(text[end]);
      if (one == kControls && (text[end] == u'\n' || text[end] == u'\r')) break;
      characters |= one;
    }
    const bool has_two = text.substr(end, 2) == u"\r\n";
    lines.push_back({pos, end, std::min(end + (has_two ? 2U : 1U), text.size()), characters});
    const std::u16string_view line = text.substr(pos, end - pos);
    const bool is_above = texts == 0 && comments < kMostComments && has_comment_sign(line);
    if (is_above) {
      ++comments;
    } else if (!is_blank(line)) {
      ++texts;
    }
    pos = lines.back().next;
  }
  return {text, std::move(lines), pos < text.size()};
}

}  // namespace textio::assessment
