// A sign is tried if enough lines contain it.
#include <algorithm>
#include <array>
#include <map>

#include <unicode/uchar.h>

#include <vltextstream/assessment/cuts.hpp>
#include <vltextstream/assessment/field_borders.hpp>
#include <vltextstream/assessment/find_unit.hpp>
#include <vltextstream/assessment/reading.hpp>
#include <vltextstream/assessment/rest_of_line.hpp>

namespace textio::assessment {
namespace {

// Tried wherever they occur.
constexpr std::u16string_view kUsualSigns = u",\t;|: ";

// Tried only if nine in ten lines contain them, because they also occur inside dates, paths and words.
constexpr std::u16string_view kSignsOfValues = u"-_/";

// Tried if one line in ten contains them, because they occur in hardly anything else: long quoted cells may
// take most of the lines.
constexpr std::u16string_view kSignsOfSeparators = u"^~\u00A7\u00A6";

// How many signs are tried besides the usual ones.
constexpr std::size_t kMostUnusualSigns = 16;

// Never tried: they are part of numbers, quotes or brackets.
constexpr std::u16string_view kNeverSigns = u".\"'()[]{}`\r\n\u2019\u201C\u201D\uFFFD\u001A";

constexpr std::array<std::u16string_view, 20> kMarks = {
    u"||", u"::", u";;", u"~|~", u"^|^", u"|~|",  u"@@",  u"##",  u"$$", u"%%",
    u"~~", u"^^", u"<>", u"->",  u"=>",  u"\t\t", u"<|>", u"|;|", u",,", u" : "};

// Tried as other marks are, if the sign occurs without the blanks as well, as the decimal comma in
// "1,5, 2,5".
constexpr std::array<std::u16string_view, 3> kPaddedSigns = {u" | ", u", ", u"; "};

bool may_separate(char16_t unit) {
  if (kNeverSigns.find(unit) != kNeverSigns.npos) return false;
  if (unit < 0x80)
    return !((unit >= u'0' && unit <= u'9') || (unit >= u'a' && unit <= u'z') ||
             (unit >= u'A' && unit <= u'Z'));
  if (unit < 0xA0) return true;
  const int type = u_charType(unit);
  return u_ispunct(unit) || type == U_MATH_SYMBOL || type == U_CURRENCY_SYMBOL ||
         type == U_OTHER_SYMBOL || type == U_MODIFIER_SYMBOL || type == U_SPACE_SEPARATOR;
}

class Signs {
 public:
  explicit Signs(const SampledLines& lines) : lines_(lines) {
    find_plain_lines();
    count_lines();
  }

  std::size_t num_plain() const { return plain_.size(); }
  std::size_t num_texts() const { return num_texts_; }
  const std::vector<std::size_t>& plain() const { return plain_; }

  // How many of the plain lines have a sign.
  std::size_t lines_with(char16_t unit) const {
    if (has_own_bit(unit)) return ascii_[unit];
    const auto found = others_.find(unit);
    return found == others_.end() ? 0 : found->second.lines;
  }

  double share(char16_t unit) const { return share_of(lines_with(unit)); }
  double share_of(std::size_t lines) const {
    return static_cast<double>(lines) /
           static_cast<double>(std::max<std::size_t>(plain_.size(), 1));
  }

  // How often a sign occurs in all lines; counts no further than to `enough`.
  std::size_t count(char16_t unit, std::size_t enough = static_cast<std::size_t>(-1)) const {
    std::size_t count = 0;
    for (std::size_t k = 0; k < lines_.size() && count < enough; ++k) {
      if ((lines_.characters(k) & set_of(unit)) == 0) continue;
      const std::u16string_view line = lines_.view(k);
      for (std::size_t i = find_unit(line, unit, 0, line.size()); i < line.size() && count < enough;
           i = find_unit(line, unit, i + 1, line.size())) {
        ++count;
      }
    }
    return count;
  }

  // Those that may separate and that a share of at least `least` of the plain lines has.
  template <typename Least>
  std::vector<char16_t> frequent(Least least) const {
    std::vector<char16_t> found;
    const auto look_at = [&](char16_t unit) {
      if (may_separate(unit) && share(unit) >= least(unit)) found.push_back(unit);
    };
    for (const auto& [unit, census] : others_) look_at(unit);
    for (const char16_t unit : character_set::kUnits) look_at(unit);
    std::sort(found.begin(), found.end(), [&](char16_t a, char16_t b) {
      const std::size_t lines_a = lines_with(a);
      const std::size_t lines_b = lines_with(b);
      return lines_a != lines_b ? lines_a > lines_b : a < b;
    });
    return found;
  }

 private:
  static bool has_own_bit(char16_t unit) {
    return (set_of(unit) & (kBeyondAscii | kControls)) == 0;
  }

  // Lines that begin outside of quotes, by the parity of `"`: else long quoted cells would hide the
  // separator. All lines if these are few.
  void find_plain_lines() {
    std::vector<std::size_t> texts;
    bool inside = false;
    for (std::size_t k = 0; k < lines_.size(); ++k) {
      const std::u16string_view line = lines_.view(k);
      if (is_blank(line)) continue;
      texts.push_back(k);
      if (!inside) plain_.push_back(k);
      if ((lines_.characters(k) & set_of(u'"')) == 0) continue;
      inside = inside != (std::count(line.begin(), line.end(), u'"') % 2 == 1);
    }
    num_texts_ = texts.size();
    if (10 * plain_.size() < 3 * texts.size()) plain_ = std::move(texts);
  }

  void count_lines() {
    for (const std::size_t k : plain_) {
      const CharacterSet characters = lines_.characters(k);
      for (const char16_t unit : character_set::kUnits) {
        ascii_[unit] += (characters & set_of(unit)) != 0;
      }
      if ((characters & (kBeyondAscii | kControls)) == 0) continue;
      for (const char16_t unit : lines_.view(k)) {
        if (!has_own_bit(unit)) add_other(unit, k);
      }
    }
  }

  void add_other(char16_t unit, std::size_t line) {
    if (!may_separate(unit)) return;
    Other& other = others_[unit];
    if (other.last_line == line) return;
    other.last_line = line;
    ++other.lines;
  }

  struct Other {
    std::size_t lines = 0;
    std::size_t last_line = static_cast<std::size_t>(-1);
  };

  const SampledLines& lines_;
  std::size_t num_texts_ = 0;
  std::vector<std::size_t> plain_;
  std::array<std::size_t, 128> ascii_ = {};
  std::map<char16_t, Other> others_;  // control characters and those beyond ASCII
};

// What stands next to the quotes of the sample: separators, or the ends of lines.
class QuoteNeighbours {
 public:
  QuoteNeighbours(const SampledLines& lines, char16_t quote) : quote_(quote) {
    for (std::size_t k = 0; k < lines.size(); ++k) {
      if ((lines.characters(k) & set_of(quote)) != 0) look_at(lines.view(k));
    }
  }

  bool next_to(std::u16string_view delimiter) const {
    if (count_ < 2) return false;
    return at_line_end_ || before_.find(delimiter.back()) != before_.npos ||
           after_.find(delimiter.front()) != after_.npos;
  }
  bool at_line_end() const { return count_ > 1 && at_line_end_; }
  bool has_escapes() const { return has_escapes_; }

 private:
  void look_at(std::u16string_view line) {
    for (std::size_t i = line.find(quote_); i != line.npos; i = line.find(quote_, i + 1)) {
      ++count_;
      if (i > 0 && line[i - 1] == u'\\') has_escapes_ = true;
      std::size_t before = i;
      while (before > 0 && line[before - 1] == u' ') --before;
      std::size_t after = i + 1;
      while (after < line.size() && line[after] == u' ') ++after;
      if (before == 0 || after == line.size()) at_line_end_ = true;
      if (i > 0) add(before_, line[i - 1]);
      if (before > 0) add(before_, line[before - 1]);
      if (i + 1 < line.size()) add(after_, line[i + 1]);
      if (after < line.size()) add(after_, line[after]);
    }
  }

  static void add(std::u16string& set, char16_t unit) {
    if (set.size() < 64 && set.find(unit) == set.npos) set.push_back(unit);
  }

  const char16_t quote_;
  std::size_t count_ = 0;
  bool at_line_end_ = false;
  bool has_escapes_ = false;
  std::u16string before_;
  std::u16string after_;
};

class Finder {
 public:
  explicit Finder(const SampledLines& lines)
      : lines_(lines), signs_(lines), double_(lines, u'"'), single_(lines, u'\'') {
    if ((lines.characters() & set_of(u'\\')) != 0) find_escaped();
  }

  std::vector<Reading> take() {
    for (const char16_t unit : kUsualSigns) try_sign(unit);
    for (const char16_t unit : unusual_signs()) try_sign(unit);
    for (const std::u16string_view mark : kMarks) try_mark(mark);
    for (const std::u16string_view mark : kPaddedSigns) try_mark(mark);
    if (has_frame()) add_framed();
    add_aligned();
    add_by_names();
    add_rest_of_line();
    add_fields();
    add({Form::one});
    if (double_.at_line_end()) add({Form::one, u"", u'"'});
    add({Form::none});
    return std::move(readings_);
  }

 private:
  void add(Reading reading) { readings_.push_back(std::move(reading)); }

  // Signs directly after a backslash.
  void find_escaped() {
    for (std::size_t k = 0; k < lines_.size(); ++k) {
      const std::u16string_view line = lines_.view(k);
      for (std::size_t i = line.find(u'\\'); i < line.size() - 1; i = line.find(u'\\', i + 2)) {
        const char16_t unit = line[i + 1];
        const bool has_room = escaped_.size() < kMostEscaped;
        if (has_room && escaped_.find(unit) == escaped_.npos && may_separate(unit))
          escaped_ += unit;
        if (i + 2 >= line.size()) break;
      }
    }
  }

  // Those that enough lines have; of very many, those that most lines have.
  std::vector<char16_t> unusual_signs() const {
    std::vector<char16_t> found = signs_.frequent([](char16_t unit) {
      if (kSignsOfSeparators.find(unit) != kSignsOfSeparators.npos) return 0.1;
      return kSignsOfValues.find(unit) != kSignsOfValues.npos ? 0.9 : 0.5;
    });
    std::erase_if(found, [](char16_t unit) { return kUsualSigns.find(unit) != kUsualSigns.npos; });
    found.resize(std::min(found.size(), kMostUnusualSigns));
    return found;
  }

  void try_sign(char16_t unit) {
    const double share = signs_.share(unit);
    if (share == 0) return;
    if (share < 0.1 && signs_.num_texts() > 5 && signs_.count(unit, 3) < 3) return;
    add_delimited(std::u16string(1, unit), true);
  }

  void try_mark(std::u16string_view mark) {
    const auto is_rare = [&](char16_t unit) { return signs_.share(unit) < kLeastShareOfMark; };
    if (std::any_of(mark.begin(), mark.end(), is_rare) || signs_.count(mark[0], 2) < 2) return;
    std::size_t lines = 0;
    std::size_t count = 0;
    std::size_t lines_without = 0;
    for (const std::size_t k : signs_.plain()) {
      if (5 * lines_without > signs_.num_plain()) return;
      const std::size_t end = lines_[k].end;
      const std::size_t before = count;
      for (std::size_t i = find_text(lines_.text(), mark, lines_[k].begin, end); i < end;
           i = find_text(lines_.text(), mark, i + mark.size(), end)) {
        ++count;
      }
      ++(count > before ? lines : lines_without);
    }
    if (signs_.share_of(lines) < kLeastShareOfMark) return;
    // Else empty cells would look like doubled signs.
    const bool is_doubled = mark.find_first_not_of(mark[0]) == mark.npos;
    if (is_doubled && 2 * count * mark.size() < signs_.count(mark[0])) return;
    const bool is_padded =
        std::find(kPaddedSigns.begin(), kPaddedSigns.end(), mark) != kPaddedSigns.end();
    if (is_padded && count == signs_.count(trimmed(mark)[0])) return;
    add_delimited(std::u16string(mark), false);
  }

  void add_delimited(const std::u16string& delimiter, bool is_sign) {
    add({Form::delimited, delimiter});
    if (is_sign && escaped_.find(delimiter[0]) != escaped_.npos) {
      add({Form::delimited, delimiter, 0, u'\\'});
    }
    add_quoted(delimiter, double_, u'"');
    if (is_sign) add_quoted(delimiter, single_, u'\'');
  }

  void add_quoted(const std::u16string& delimiter, const QuoteNeighbours& neighbours,
                  char16_t quote) {
    if (delimiter[0] == quote || !neighbours.next_to(delimiter)) return;
    // Of readings for which as much speaks, the first wins: where all escaped quotes are in pairs, both cut
    // alike.
    if (neighbours.has_escapes()) add({Form::delimited, delimiter, quote, u'\\'});
    add({Form::delimited, delimiter, quote});
  }

  char16_t most_frequent_bar() const {
    char16_t most = u'|';
    for (const char16_t bar : {u'\u2502', u'\u2551'}) {
      if (signs_.count(bar) > signs_.count(most)) most = bar;
    }
    return most;
  }

  void add_framed() {
    const char16_t bar = most_frequent_bar();
    if (escaped_.find(bar) != escaped_.npos) add({Form::framed, std::u16string(1, bar), 0, u'\\'});
    add({Form::framed, std::u16string(1, bar)});
  }

  // Bars in most lines that are no rules, and rules or bars at both ends of lines.
  bool has_frame() const {
    if ((lines_.characters() & (set_of(u'|') | kBeyondAscii)) == 0) return false;
    std::size_t rules = 0;
    std::size_t barred = 0;
    std::size_t framed = 0;
    for (const std::size_t k : signs_.plain()) {
      const std::u16string_view line = trimmed(lines_.view(k));
      if (is_rule(line)) {
        ++rules;
      } else if (std::any_of(line.begin(), line.end(), is_bar)) {
        ++barred;
        if (is_bar(line.front()) && is_bar(line.back())) ++framed;
      }
    }
    const std::size_t others = signs_.num_plain() - rules;
    return 2 * barred >= std::max<std::size_t>(others, 1) &&
           (rules > 0 || 10 * framed >= 8 * others);
  }

  // Whether at least one line in five contains a tab or two consecutive blanks.
  bool have_runs() const {
    std::size_t lines = 0;
    for (const std::size_t k : signs_.plain()) {
      if ((lines_.characters(k) & kBlanks) == 0) continue;
      const std::u16string_view line = trimmed(lines_.view(k));
      const bool may_have_tab = (lines_.characters(k) & set_of(u'\t')) != 0;
      lines += find_text(line, u"  ", 0, line.size()) < line.size() ||
               (may_have_tab && line.find(u'\t') != line.npos);
      if (5 * lines >= signs_.num_plain()) return true;
    }
    return false;
  }

  void add_aligned() {
    if ((lines_.characters() & kBlanks) == 0) return;
    const bool has_runs = have_runs();
    for (const Form form : {Form::runs, Form::gaps}) {
      add({form, u" ", 0, 0, 1});
      if (has_runs) add({form, u" ", 0, 0, 2});
    }
  }

  // Only where blanks, not tabs, are in nearly all lines.
  void add_by_names() {
    if (signs_.share(u' ') < 0.9 || signs_.share(u'\t') >= 0.5) return;
    Reading reading{Form::gaps, u" ", 0, 0, 1};
    reading.by_names = true;
    add(std::move(reading));
  }

  // Only where blanks, not tabs, are in nearly all lines.
  void add_rest_of_line() {
    if (signs_.share(u' ') < 0.9 || signs_.share(u'\t') >= 0.5) return;
    const std::size_t most_cells = cells_with_rest(lines_);
    if (most_cells > 0) add({Form::runs, u" ", 0, 0, 1, most_cells});
  }

  void add_fields() {
    std::vector<std::size_t> borders = find_borders(lines_);
    if (!borders.empty()) add({Form::fields, u"", 0, 0, 1, 0, std::move(borders)});
  }

  static constexpr std::size_t kMostEscaped = 64;
  static constexpr double kLeastShareOfMark = 0.8;
  static constexpr CharacterSet kBlanks = characters_in(u" \t");

  const SampledLines& lines_;
  const Signs signs_;
  const QuoteNeighbours double_;
  const QuoteNeighbours single_;
  std::u16string escaped_;
  std::vector<Reading> readings_;
};

}  // namespace

std::vector<Reading> find_readings(const SampledLines& lines) { return Finder(lines).take(); }

Records cut(const SampledLines& lines, const Reading& reading) {
  switch (reading.form) {
    case Form::delimited:
    case Form::one:
    case Form::none:
      return cut_delimited(lines, reading);
    case Form::framed:
      return cut_framed(lines, reading.escape);
    case Form::runs:
      return cut_runs(lines, reading.least_blanks, reading.most_cells);
    case Form::gaps:
      if (!reading.widths.empty()) return cut_widths(lines, reading.widths);
      return cut_gaps(lines, reading.least_blanks, reading.by_names);
    case Form::fields:
      return cut_fields(lines, reading.borders);
  }
  return Records(lines.text());
}

}  // namespace textio::assessment
