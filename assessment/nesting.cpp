#include <vltextstream/assessment/nesting.hpp>

#include <algorithm>
#include <array>
#include <cstddef>
#include <string>
#include <vector>

namespace textio::assessment {
namespace {

using View = std::u16string_view;

constexpr View kBlanks = u" \t\r\n\uFEFF";

bool is_letter(char16_t unit) { return (unit | 0x20) >= u'a' && (unit | 0x20) <= u'z'; }
bool is_digit(char16_t unit) { return unit >= u'0' && unit <= u'9'; }

// A place in a text that only moves on.
class Scan {
 public:
  explicit Scan(View text) : text_(text) {}

  bool at_end() const { return at_ == text_.size(); }
  char16_t unit() const { return at_end() ? u'\0' : text_[at_]; }
  View rest() const { return text_.substr(at_); }
  void skip_units(std::size_t count) { at_ += std::min(count, text_.size() - at_); }

  bool skip(char16_t wanted) {
    if (at_end() || text_[at_] != wanted) return false;
    ++at_;
    return true;
  }

  // Of a text that is cut off here, its part counts.
  bool skip(View wanted) {
    const View here = text_.substr(at_, wanted.size());
    if (here != wanted.substr(0, here.size())) return false;
    at_ += here.size();
    return true;
  }

  void skip_blanks() { at_ = std::min(text_.find_first_not_of(kBlanks, at_), text_.size()); }

  // To the unit after the next `wanted`, or to the end.
  void skip_past(View wanted) {
    const std::size_t found = text_.find(wanted, at_);
    at_ = found == View::npos ? text_.size() : found + wanted.size();
  }

  template <typename Holds>
  View take_while(Holds holds) {
    const std::size_t begin = at_;
    while (!at_end() && holds(text_[at_])) ++at_;
    return text_.substr(begin, at_ - begin);
  }

 private:
  View text_;
  std::size_t at_ = 0;
};

// --- JSON --------------------------------------------------------------------------------------

class JsonScan {
 public:
  explicit JsonScan(View text) : scan_(text) {}

  // Whether the text is JSON as far as it goes.
  bool take() {
    for (scan_.skip_blanks(); !scan_.at_end(); scan_.skip_blanks()) {
      if (!take_next()) return false;
    }
    return values_ > 0;
  }

 private:
  enum class Expects { value, value_or_close, key, key_or_close, comma_or_close };

  bool take_next() {
    if (open_.empty()) return take_open();
    switch (expects_) {
      case Expects::value_or_close:
        return take_close() || take_value();
      case Expects::value:
        return take_value();
      case Expects::key_or_close:
        return take_close() || take_key();
      case Expects::key:
        return take_key();
      case Expects::comma_or_close:
        return take_close() || take_comma();
    }
    return false;
  }

  bool take_open() {
    const char16_t unit = scan_.unit();
    if (unit != u'{' && unit != u'[') return false;
    scan_.skip_units(1);
    open_.push_back(unit);
    expects_ = unit == u'{' ? Expects::key_or_close : Expects::value_or_close;
    return true;
  }

  bool take_close() {
    if (!scan_.skip(open_.back() == u'{' ? u'}' : u']')) return false;
    open_.pop_back();
    end_value();
    return true;
  }

  bool take_comma() {
    if (!scan_.skip(u',')) return false;
    expects_ = open_.back() == u'{' ? Expects::key : Expects::value;
    return true;
  }

  bool take_key() {
    if (!take_string()) return false;
    scan_.skip_blanks();
    if (!scan_.at_end() && !scan_.skip(u':')) return false;
    expects_ = Expects::value;
    return true;
  }

  bool take_value() {
    if (take_open()) return true;
    const bool is_scalar = take_string() || take_number() || take_word();
    if (is_scalar) end_value();
    return is_scalar;
  }

  void end_value() {
    ++values_;
    expects_ = Expects::comma_or_close;
  }

  bool take_string() {
    if (!scan_.skip(u'"')) return false;
    for (;;) {
      scan_.take_while([](char16_t unit) { return View(u"\"\\\r\n").find(unit) == View::npos; });
      if (scan_.at_end() || scan_.skip(u'"')) return true;
      if (!scan_.skip(u'\\')) return false;  // a line break
      scan_.skip_units(1);
    }
  }

  bool take_number() {
    const bool is_number = is_digit(scan_.unit()) || scan_.unit() == u'-';
    if (!is_number) return false;
    scan_.take_while(
        [](char16_t unit) { return is_digit(unit) || View(u"+-.eE").find(unit) != View::npos; });
    return true;
  }

  bool take_word() {
    switch (scan_.unit()) {
      case u't':
        return scan_.skip(View(u"true"));
      case u'f':
        return scan_.skip(View(u"false"));
      case u'n':
        return scan_.skip(View(u"null"));
      default:
        return false;
    }
  }

  Scan scan_;
  std::u16string open_;  // the brackets that are not closed yet
  Expects expects_ = Expects::value;
  std::size_t values_ = 0;
};

// --- XML and HTML ------------------------------------------------------------------------------

bool is_name_unit(char16_t unit) {
  return is_letter(unit) || is_digit(unit) || unit >= 0x80 ||
         View(u"_-.:").find(unit) != View::npos;
}

class TagScan {
 public:
  explicit TagScan(View text) : scan_(text) {}

  // Whether the text is XML as far as it goes. HTML does not close all elements: an element ends with one around it.
  bool take() {
    for (;;) {
      if (!take_text()) return false;
      if (scan_.at_end()) return closed_ > 0;
      if (!take_markup()) return false;
    }
  }

 private:
  // Outside of all elements only blanks.
  bool take_text() {
    const View text = scan_.take_while([](char16_t unit) { return unit != u'<'; });
    return !open_.empty() || text.find_first_not_of(kBlanks) == View::npos;
  }

  bool take_markup() {
    if (skip_past(u"<!--", u"-->") || skip_past(u"<![CDATA[", u"]]>") || skip_past(u"<?", u"?>") ||
        skip_past(u"<!", u">")) {
      return true;
    }
    scan_.skip_units(1);
    if (scan_.skip(u'/')) return take_close();
    if (is_letter(scan_.unit()) || scan_.unit() == u'_') return take_open();
    return !open_.empty() || scan_.at_end();  // "<" as text
  }

  bool skip_past(View start, View end) {
    if (!scan_.rest().starts_with(start)) return false;
    scan_.skip_past(end);
    return true;
  }

  bool take_open() {
    const View name = scan_.take_while(is_name_unit);
    bool is_empty = false;
    while (!scan_.at_end() && !scan_.skip(u'>')) {
      const char16_t unit = scan_.unit();
      scan_.skip_units(1);
      if (unit == u'<') return false;
      is_empty = unit == u'/';
      if (unit == u'"' || unit == u'\'') scan_.skip_past(View(&unit, 1));
    }
    if (is_empty) {
      ++closed_;
      return true;
    }
    open_.push_back(name);
    // Of these the text may hold anything.
    constexpr std::array kRaw = {View(u"script"), View(u"style")};
    if (std::find(kRaw.begin(), kRaw.end(), name) != kRaw.end()) {
      while (!scan_.at_end() && !scan_.rest().starts_with(u"</")) scan_.skip_units(1);
    }
    return true;
  }

  bool take_close() {
    const View name = scan_.take_while(is_name_unit);
    if (scan_.at_end()) return true;
    const auto found = std::find(open_.rbegin(), open_.rend(), name);
    if (found == open_.rend()) return false;
    open_.erase(std::prev(found.base()), open_.end());
    ++closed_;
    scan_.skip_past(u">");
    return true;
  }

  Scan scan_;
  std::vector<View> open_;  // the names of elements
  std::size_t closed_ = 0;
};

}  // namespace

bool is_nested(View text) {
  const std::size_t begin = text.find_first_not_of(kBlanks);
  if (begin == View::npos) return false;
  switch (text[begin]) {
    case u'{':
    case u'[':
      return JsonScan(text).take();
    case u'<':
      return TagScan(text).take();
    default:
      return false;
  }
}

}  // namespace textio::assessment
