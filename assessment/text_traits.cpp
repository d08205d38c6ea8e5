#include <vltextstream/assessment/text_traits.hpp>

#include <algorithm>
#include <cstddef>

#include <unicode/uchar.h>

#include <vltextstream/assessment/cuts.hpp>
#include <vltextstream/assessment/find_unit.hpp>
#include <vltextstream/assessment/nesting.hpp>

namespace textio::assessment {
namespace {

using View = std::u16string_view;

bool is_one_of(char16_t unit, View set) { return set.find(unit) != set.npos; }
bool is_letter(char16_t unit) {
  return unit < 0x80 ? (unit | 0x20) >= u'a' && (unit | 0x20) <= u'z' : u_isalpha(unit);
}
bool is_digit(char16_t unit) { return unit >= u'0' && unit <= u'9'; }
bool is_name_unit(char16_t unit) { return is_letter(unit) || is_digit(unit) || unit == u'_'; }
bool starts_with(View line, View start) {
  return line.front() == start.front() && line.substr(0, start.size()) == start;
}

constexpr CharacterSet kSeparators = characters_in(u",;|");
constexpr CharacterSet kBrackets = characters_in(u"{}()[]");

bool has(CharacterSet characters, CharacterSet wanted) { return (characters & wanted) != 0; }

// A word of running text: letters, perhaps with a mark of punctuation behind or a quote before them.
bool is_plain_word(View word) {
  while (!word.empty() && is_one_of(word.front(), u"\"'(\u201C\u201E\u00AB\u2018\u00BF\u00A1"))
    word.remove_prefix(1);
  while (!word.empty() && is_one_of(word.back(), u".,;:!?\"')\u201D\u00BB\u2019\u2026"))
    word.remove_suffix(1);
  return !word.empty() && std::all_of(word.begin(), word.end(), [](char16_t unit) {
    return is_letter(unit) || unit == u'\'' || unit == u'\u2019' || unit == u'-';
  });
}

constexpr std::size_t kFewestWords = 5;

// Whether a usual separator has no blanks around it and is not between two digits.
bool has_tight_separator(View line) {
  for (std::size_t i = 1; i + 1 < line.size(); ++i) {
    if (!is_one_of(line[i], u",;|")) continue;
    const char16_t before = line[i - 1];
    const char16_t after = line[i + 1];
    const bool is_tight = before != u' ' && after != u' ';
    const bool ends_speech = is_one_of(after, u"\"'\u201D\u2019");
    if (is_tight && !ends_speech && !(is_digit(before) && is_digit(after))) return true;
  }
  return false;
}

// Chinese and Japanese have no blanks between words.
bool is_unspaced_letter(char16_t unit) {
  const bool is_kana = unit >= 0x3041 && unit <= 0x30FF;
  const bool is_han = (unit >= 0x3400 && unit <= 0x4DBF) || (unit >= 0x4E00 && unit <= 0x9FFF);
  return is_kana || is_han;
}

// A line of such letters with the end of a sentence in it.
bool is_unspaced_prose(View line) {
  constexpr std::ptrdiff_t kFewestLetters = 8;
  constexpr View kSentenceEnds = u"\u3002\uFF01\uFF1F";
  if (line.find_first_of(kSentenceEnds) == line.npos) return false;
  const std::ptrdiff_t letters = std::count_if(line.begin(), line.end(), is_unspaced_letter);
  return letters >= kFewestLetters && 4 * letters >= 3 * static_cast<std::ptrdiff_t>(line.size());
}

bool is_prose(View line, CharacterSet characters) {
  if (has(characters, kSeparators) && has_tight_separator(line)) return false;
  if (has(characters, set_of(u'\t')) && line.find(u'\t') != line.npos) return false;
  if (has(characters, kBeyondAscii) && is_unspaced_prose(line)) return true;
  std::size_t words = 0;
  std::size_t plain = 0;
  std::size_t wide_gaps = 0;
  for (std::size_t i = 0; i < line.size();) {
    const std::size_t end = find_unit(line, u' ', i, line.size());
    if (end == i) {
      ++wide_gaps;
    } else {
      ++words;
      plain += is_plain_word(line.substr(i, end - i));
    }
    i = end + 1;
  }
  return words >= kFewestWords && 4 * plain >= 3 * words && wide_gaps <= 1;
}

// A name directly followed by an opening bracket.
bool has_call(View line) {
  for (std::size_t i = line.find(u'('); i != line.npos; i = line.find(u'(', i + 1)) {
    if (i > 0 && is_name_unit(line[i - 1])) return true;
  }
  return false;
}

// A block at the end of the line, as in style sheets: a curly bracket directly after a name or a parenthesis, and its
// counterpart.
bool ends_with_block(View line) {
  if (line.back() != u'}') return false;
  for (std::size_t i = line.find(u'{'); i != line.npos; i = line.find(u'{', i + 1)) {
    if (i > 0 && (is_name_unit(line[i - 1]) || line[i - 1] == u')')) return true;
  }
  return false;
}

constexpr View kOpeningsOfCode[] = {u"//",       u"/*",      u"* ",      u"#!",
                                    u"#include", u"#define", u"import ", u"from ",
                                    u"def ",     u"return",  u"}",       u")"};

bool is_code(View line, CharacterSet characters) {
  const bool is_bracketed = has(characters, kBrackets);
  if (is_one_of(line.back(), u"{\\")) return true;
  if (is_bracketed && line.find_first_not_of(u"{}()[];,") == line.npos) return true;
  // A command of TeX. A lone letter after the backslash may be a missing value.
  if (line.front() == u'\\' && line.size() > 2 && is_letter(line[1]) && is_letter(line[2]))
    return true;
  // One of a list of tuples.
  if (line.front() == u'(' && (line.ends_with(u"),") || line.ends_with(u");"))) return true;
  const bool ends_statement = line.back() == u';' && line.find(u';') + 1 == line.size();
  if (ends_statement && has(characters, set_of(u'(') | set_of(u'='))) return true;
  const auto opens = [line](View start) { return starts_with(line, start); };
  if (std::any_of(std::begin(kOpeningsOfCode), std::end(kOpeningsOfCode), opens)) return true;
  if (is_bracketed && (has_call(line) || ends_with_block(line))) return true;
  const bool may_assign = has(characters, set_of(u'='));
  return (may_assign && line.find(u" = ") != line.npos) ||
         (has(characters, set_of(u'>')) && line.find(u"->") != line.npos) ||
         (may_assign && line.find(u"==") != line.npos);
}

// A branch of a tree that is drawn with lines: U+251C or U+2514, two of U+2500, and a blank.
bool is_branch(View line) {
  const std::size_t at = line.find_first_not_of(u" \u00A0\u2502");
  if (at == line.npos || line.size() < at + 4) return false;
  return is_one_of(line[at], u"\u251C\u2514") && line.substr(at + 1, 2) == u"\u2500\u2500" &&
         is_space(line[at + 3]);
}

bool is_markup(View line, CharacterSet characters) {
  if (line.front() == u'<') return true;
  if (is_one_of(line.front(), u"{}[]") && is_one_of(line.back(), u"{}[],;:")) return true;
  if (line.back() == u'>' && line.find(u"</") != line.npos) return true;
  if (has(characters, kBeyondAscii) && is_branch(line)) return true;
  // "key": value
  if (line.front() != u'"') return false;
  const std::size_t close = line.find(u'"', 1);
  return close != line.npos && trimmed(line.substr(close + 1)).substr(0, 1) == u":";
}

constexpr std::ptrdiff_t kManyColons = 4;

bool is_keyed(View line) {
  if (line.front() == u'[' && line.back() == u']') return true;
  if (starts_with(line, u"- ")) line = trimmed(line.substr(2));
  if (line.empty() || !is_letter(line[0])) return false;
  std::size_t i = 0;
  while (i < line.size() && (is_name_unit(line[i]) || is_one_of(line[i], u".-/"))) ++i;
  View rest = trimmed(line.substr(i));
  // "DTSTART;TZID=Europe/Berlin:20200101", as in calendars and address books
  if (rest.substr(0, 1) == u";") {
    const std::size_t equals = rest.find(u'=');
    const std::size_t colon = rest.find(u':');
    if (equals != rest.npos && colon != rest.npos && equals < colon) rest = rest.substr(colon);
  }
  const bool is_address = rest.substr(0, 3) == u"://";
  if (rest.empty() || is_address) return false;
  // Many colons separate fields.
  return rest[0] == u'=' ||
         (rest[0] == u':' && std::count(rest.begin(), rest.end(), u':') < kManyColons);
}

}  // namespace

TextTraits traits_of(const SampledLines& lines, std::size_t most) {
  TextTraits traits;
  double texts = 0;
  std::size_t indent_before = 0;
  bool inside = false;  // of quotes
  bool follows_blank = false;
  for (std::size_t k = 0; k < lines.size() && texts < static_cast<double>(most); ++k) {
    const View line = trimmed(lines.view(k));
    if (line.empty()) follows_blank = true;
    if (line.empty() || is_rule(line)) continue;
    const bool begins_inside = inside;
    const CharacterSet characters = lines.characters(k);
    if (has(characters, set_of(u'"'))) {
      inside = inside != (std::count(line.begin(), line.end(), u'"') % 2 == 1);
    }
    if (begins_inside) continue;
    const View whole = lines.view(k);
    const auto indent = static_cast<std::size_t>(line.data() - whole.data());
    traits.indented += indent != indent_before && texts > 0;
    indent_before = indent;
    traits.spaced += follows_blank && texts > 0;
    follows_blank = false;
    ++texts;
    traits.prose += is_prose(line, characters);
    traits.code += is_code(line, characters);
    traits.markup += is_markup(line, characters);
    traits.keyed += is_keyed(line);
  }
  if (texts == 0) return traits;
  traits.nested = is_nested(lines.text().substr(0, lines.end())) ? 1 : 0;
  traits.prose /= texts;
  traits.code /= texts;
  traits.markup /= texts;
  traits.keyed /= texts;
  traits.indented /= texts;
  traits.spaced /= texts;
  traits.brief = traits.nested > 0 ? 0 : 1 / texts;
  return traits;
}

}  // namespace textio::assessment
