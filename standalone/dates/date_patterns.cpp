// A pattern consists of texts and runs of one letter. Text in apostrophes is literal, and two
// apostrophes are one. A letter outside of them is a part of the date; the length of its run
// distinguishes a number from a name.
#include <vltextstream/standalone/dates/date_patterns.hpp>

#include <algorithm>
#include <string>

namespace textio::datetime {
namespace {

using View = std::u16string_view;
using Kind = DatePart::Kind;

constexpr bool is_ascii_letter(char16_t unit) {
  return (unit >= u'a' && unit <= u'z') || (unit >= u'A' && unit <= u'Z');
}

std::optional<Kind> kind_of(char16_t letter, std::size_t count) {
  const bool is_name = count == 3 || count == 4;
  switch (letter) {
    case u'y':
    case u'u':
      return Kind::year;
    case u'M':
    case u'L':
      if (count <= 2) return Kind::month;
      return is_name ? std::optional(Kind::month_name) : std::nullopt;
    case u'd':
      return Kind::day;
    case u'E':
      return count <= 4 ? std::optional(Kind::weekday) : std::nullopt;
    case u'c':
    case u'e':
      return is_name ? std::optional(Kind::weekday) : std::nullopt;
    case u'G':
      return Kind::era;
    default:
      return std::nullopt;
  }
}

class PatternParser {
 public:
  PatternParser(View rest, const Folding& folding) : rest_(rest), folding_(folding) {}

  // Parses the whole pattern; false if it contains something that is no part of a date.
  bool parse() {
    while (!rest_.empty()) {
      if (!is_ascii_letter(rest_.front())) {
        take_text();
      } else if (!take_letters()) {
        return false;
      }
    }
    end_text();
    return true;
  }

  DatePattern pattern;

 private:
  // A literal code unit, or a text in apostrophes.
  void take_text() {
    const bool is_quoted = rest_.front() == u'\'';
    if (!is_quoted) {
      text_.push_back(rest_.front());
      rest_.remove_prefix(1);
      return;
    }
    const std::size_t close = std::min(rest_.find(u'\'', 1), rest_.size());
    text_ += close == 1 ? View(u"'") : rest_.substr(1, close - 1);
    rest_.remove_prefix(std::min(close + 1, rest_.size()));
  }

  bool take_letters() {
    const char16_t letter = rest_.front();
    const std::size_t count = std::min(rest_.find_first_not_of(letter), rest_.size());
    rest_.remove_prefix(count);
    const std::optional<Kind> kind = kind_of(letter, count);
    if (!kind) return false;
    end_text();
    pattern.parts.push_back({*kind, {}});
    if (kind == Kind::year && count == 2) pattern.short_year = true;
    return true;
  }

  void end_text() {
    if (text_.empty()) return;
    pattern.parts.push_back({Kind::literal, folded(text_, folding_)});
    text_.clear();
  }

  View rest_;
  const Folding& folding_;
  std::u16string text_;
};

std::ptrdiff_t count_of(const DatePattern& pattern, Kind kind) {
  return std::count_if(pattern.parts.begin(), pattern.parts.end(),
                       [kind](const DatePart& part) { return part.kind == kind; });
}

bool is_date(const DatePattern& pattern) {
  return count_of(pattern, Kind::day) == 1 && count_of(pattern, Kind::year) == 1 &&
         count_of(pattern, Kind::month) + count_of(pattern, Kind::month_name) == 1;
}

// Fields have no blanks at their ends, and a text of only direction marks is empty.
void trim(DatePattern& pattern) {
  std::u16string& first = pattern.parts.front().literal;
  first.erase(0, std::min(first.find_first_not_of(u' '), first.size()));
  std::u16string& last = pattern.parts.back().literal;
  last.erase(last.find_last_not_of(u' ') + 1);
  std::erase_if(pattern.parts, [](const DatePart& part) {
    return part.kind == Kind::literal && part.literal.empty();
  });
}

// Numbers with only dots and hyphens between them, and a year of two digits.
bool looks_like_version(const DatePattern& pattern) {
  const bool is_bare =
      std::all_of(pattern.parts.begin(), pattern.parts.end(), [](const DatePart& part) {
        return part.kind != Kind::month_name && part.kind != Kind::weekday &&
               part.kind != Kind::era && part.literal.find_first_not_of(u".-") == View::npos;
      });
  return is_bare && pattern.short_year;
}

}  // namespace

std::optional<DatePattern> parse_date_pattern(View text, const Folding& folding) {
  PatternParser parser(text, folding);
  if (!parser.parse() || !is_date(parser.pattern)) return std::nullopt;
  trim(parser.pattern);
  parser.pattern.wants_pairs = looks_like_version(parser.pattern);
  return std::move(parser.pattern);
}

std::optional<std::u16string> parse_literal_pattern(View text, const Folding& folding) {
  PatternParser parser(text, folding);
  const bool is_one_text =
      parser.parse() && parser.pattern.parts.size() == 1 && count_of(parser.pattern, Kind::literal);
  if (!is_one_text) return std::nullopt;
  return std::move(parser.pattern.parts.front().literal);
}

std::optional<DatePattern> with_other_article(const DatePattern& pattern) {
  DatePattern other = pattern;
  const auto year = std::find_if(other.parts.begin(), other.parts.end(),
                                 [](const DatePart& part) { return part.kind == Kind::year; });
  if (year == other.parts.begin() || year == other.parts.end()) return std::nullopt;
  std::u16string& article = std::prev(year)->literal;
  if (article != u" de " && article != u" del ") return std::nullopt;
  article = article == u" de " ? u" del " : u" de ";
  return other;
}

}  // namespace textio::datetime
