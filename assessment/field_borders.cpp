// Counts what is in each column of characters, then walks over the columns from left to right.
#include <vltextstream/assessment/field_borders.hpp>

#include <algorithm>
#include <string_view>

namespace textio::assessment {
namespace {

constexpr std::size_t kLeastLines = 10;
constexpr std::size_t kLeastGroup = 16;
constexpr std::size_t kLeastWord = 4;
constexpr std::size_t kLeastFields = 3;
constexpr std::size_t kLeastFieldsWithoutBlanks = 4;  // else every code would be a record

constexpr std::u16string_view kSeparators = u",;|\t~^#@";

bool is_share(std::size_t part, std::size_t whole, std::size_t percent) {
  return 100 * part >= percent * whole;
}

enum class Class { none, blank, letter, digit, sign, mark, mixed };

// How often each kind of character is in one place.
class Place {
 public:
  void add(char16_t unit) {
    if (unit == u' ') {
      ++blanks_;
    } else if (unit >= u'0' && unit <= u'9') {
      ++digits_;
    } else if ((unit >= u'A' && unit <= u'Z') || (unit >= u'a' && unit <= u'z') || unit >= 0xC0) {
      ++letters_;
    } else if (unit == u'+' || unit == u'-') {
      ++signs_;
      pluses_ += unit == u'+';
    } else if (kSeparators.find(unit) != kSeparators.npos) {
      ++separators_;
    } else {
      ++marks_;
    }
  }

  bool is_separator(std::size_t lines) const { return is_share(separators_, lines, 90); }
  bool is_padding(std::size_t lines) const { return is_share(blanks_, lines, 99); }
  bool is_often_blank(std::size_t lines) const { return is_share(blanks_, lines, 80); }
  bool is_never_blank(std::size_t lines) const { return is_share(lines - blanks_, lines, 98); }
  bool has_blanks() const { return blanks_ > 0; }
  bool has_pluses() const { return pluses_ > 0; }

  // Of the characters that are not blank; none if these are too few to tell.
  Class of(std::size_t lines) const {
    const std::size_t filled = lines - blanks_;
    if (filled == 0) return Class::blank;
    if (filled < 2 || !is_share(filled, lines, 5)) return Class::none;
    if (2 * signs_ > filled) return Class::sign;
    const std::size_t both = letters_ + digits_;
    if (2 * both <= filled) return Class::mark;
    if (is_share(letters_, both, 95)) return Class::letter;
    return is_share(digits_, both, 95) ? Class::digit : Class::mixed;
  }

 private:
  std::size_t blanks_ = 0;
  std::size_t digits_ = 0;
  std::size_t letters_ = 0;
  std::size_t signs_ = 0;
  std::size_t pluses_ = 0;
  std::size_t separators_ = 0;
  std::size_t marks_ = 0;
};

class BorderFinder {
 public:
  explicit BorderFinder(const SampledLines& lines) : lines_(lines) {}

  std::vector<std::size_t> take() {
    if (!find_length()) return {};
    count();
    const auto separates = [&](const Place& place) { return place.is_separator(num_lines_); };
    if (std::any_of(places_.begin(), places_.end(), separates)) return {};
    find();
    const bool has_blanks = std::any_of(places_.begin(), places_.end(),
                                        [](const Place& place) { return place.has_blanks(); });
    const std::size_t least = has_blanks ? kLeastFields : kLeastFieldsWithoutBlanks;
    if (!shows_touching_ || borders_.size() <= least) return {};
    return std::move(borders_);
  }

 private:
  // The length of nearly all lines.
  bool find_length() {
    std::vector<std::size_t> lengths;
    for (std::size_t k = 0; k < lines_.size(); ++k) {
      const std::u16string_view line = lines_.view(k);
      if (!is_blank(line)) lengths.push_back(line.size());
    }
    if (lengths.size() < kLeastLines) return false;
    const auto middle = lengths.begin() + static_cast<std::ptrdiff_t>(lengths.size() / 2);
    std::nth_element(lengths.begin(), middle, lengths.end());
    length_ = *middle;
    num_lines_ = static_cast<std::size_t>(std::count(lengths.begin(), lengths.end(), length_));
    return num_lines_ >= kLeastLines && is_share(num_lines_, lengths.size(), 90);
  }

  void count() {
    places_.resize(length_);
    num_lines_ = 0;
    for (std::size_t k = 0; k < lines_.size(); ++k) {
      const std::u16string_view line = lines_.view(k);
      if (line.size() != length_ || is_blank(line)) continue;
      ++num_lines_;
      for (std::size_t i = 0; i < length_; ++i) places_[i].add(line[i]);
    }
  }

  void find() {
    begin(0);
    for (std::size_t i = 1; i < length_; ++i) {
      look_at_group(i - 1);
      const Class now = places_[i].of(num_lines_);
      if (follows_padding(i)) {
        begin(i);
      } else if (follows_blanks(i)) {
        touch(i);
      } else if (changes_to(i, now)) {
        const bool is_after_digits = last_ == Class::digit && now == Class::letter;
        touch(last_ == Class::letter ? sign_or(i) : i);
        is_after_digits_ = is_after_digits;
      }
      if (now == Class::letter && is_after_digits_ && ++letters_ == kLeastWord)
        group_.has_word = true;
      if (now == Class::letter || now == Class::digit || now == Class::mixed) last_ = now;
      if (now != Class::sign) sign_ = kNone;
      if (now == Class::sign && sign_ == kNone) sign_ = i;
    }
    look_at_group(length_ - 1);
    end_group();
    borders_.push_back(length_);
  }

  // A group is what has no padding inside. A short one may be a code of letters and digits, unless digits
  // are before a word.
  void look_at_group(std::size_t place) {
    if (places_[place].is_padding(num_lines_)) return end_group();
    ++group_.length;
  }

  void end_group() {
    const bool is_code = group_.length < kLeastGroup && !group_.has_word;
    shows_touching_ = shows_touching_ || (group_.touches && !is_code);
    group_ = {};
  }

  void touch(std::size_t place) {
    group_.touches = true;
    begin(place);
  }

  void begin(std::size_t place) {
    borders_.push_back(place);
    is_after_digits_ = false;
    letters_ = 0;
    const Class of = places_[place].of(num_lines_);
    last_ = of == Class::letter || of == Class::digit || of == Class::mixed ? of : Class::none;
  }

  bool follows_padding(std::size_t i) const {
    return places_[i - 1].is_padding(num_lines_) && !places_[i].is_padding(num_lines_);
  }

  // A number aligned to the right has blanks before its last digits, but only digits besides.
  bool follows_blanks(std::size_t i) const {
    const bool within_number =
        places_[i - 1].of(num_lines_) == Class::digit && places_[i].of(num_lines_) == Class::digit;
    return places_[i - 1].is_often_blank(num_lines_) && places_[i].is_never_blank(num_lines_) &&
           !within_number;
  }

  // Digits after letters; letters, of which none is blank, after digits; or signs after digits, which are
  // not those of a date if there is a plus.
  bool changes_to(std::size_t i, Class now) const {
    if (last_ == Class::letter) return now == Class::digit;
    if (last_ == Class::digit && now == Class::sign) return places_[i].has_pluses();
    return last_ == Class::digit && now == Class::letter && places_[i].is_never_blank(num_lines_);
  }

  // The sign of a number belongs to it.
  std::size_t sign_or(std::size_t i) const { return sign_ == kNone ? i : sign_; }

  static constexpr auto kNone = static_cast<std::size_t>(-1);

  const SampledLines& lines_;
  std::size_t length_ = 0;
  std::size_t num_lines_ = 0;
  std::vector<Place> places_;
  std::vector<std::size_t> borders_;
  struct {
    std::size_t length = 0;
    bool has_word = false;
    bool touches = false;
  } group_;
  bool is_after_digits_ = false;  // the field that touches them
  std::size_t letters_ = 0;       // of this field
  bool shows_touching_ = false;   // a group of fields that is no code
  Class last_ = Class::none;      // of the field so far
  std::size_t sign_ = kNone;      // that is directly before the place
};

}  // namespace

std::vector<std::size_t> find_borders(const SampledLines& lines) {
  return BorderFinder(lines).take();
}

}  // namespace textio::assessment
