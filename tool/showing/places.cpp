// A terminal places character after character; what joins them is known from the characters before.
#include "tool/showing/places.hpp"

#include <unicode/uchar.h>

#include <vltextstream/text/utf8.hpp>

namespace textio::tool {
namespace {

constexpr char32_t kJoiner = 0x200D;
constexpr char32_t kEmojiSelector = 0xFE0F;
constexpr std::size_t kMostMarks = 8;

bool has(char32_t code, UProperty property) {
  return u_hasBinaryProperty(static_cast<UChar32>(code), property) != 0;
}

// Of the character alone.
std::size_t own_width(char32_t code) {
  const auto c = static_cast<UChar32>(code);
  constexpr int kMarks = U_GC_MN_MASK | U_GC_ME_MASK | U_GC_CF_MASK;
  if ((U_GET_GC_MASK(c) & kMarks) != 0) return 0;
  const bool is_later_jamo = code >= 0x1160 && code <= 0x11FF;  // part of the syllable before it
  if (is_later_jamo) return 0;
  const int width = u_getIntPropertyValue(c, UCHAR_EAST_ASIAN_WIDTH);
  return width == U_EA_WIDE || width == U_EA_FULLWIDTH ? 2 : 1;
}

class Places {
 public:
  explicit Places(bool joins_emoji) : joins_emoji_(joins_emoji) {}

  // How many places the character adds to those before it.
  std::size_t add(char32_t code) {
    if (code < 0x80) {
      note(code, 1);
      return 1;
    }
    const bool is_flag_letter = has(code, UCHAR_REGIONAL_INDICATOR);
    if (is_flag_letter) {
      // The first letter of a flag has the places of both.
      const bool is_second = flag_letters_ % 2 == 1;
      ++flag_letters_;
      last_ = code;
      num_marks_ = 0;
      return is_second ? 0 : 2;
    }
    std::size_t width = own_width(code);
    if (code == kEmojiSelector) {
      width = width_ == 1 && has(last_, UCHAR_EMOJI) ? 1 : 0;
      if (width == 1) width_ = 2;
      ++num_marks_;
      return width;
    }
    const bool is_joined =
        (is_after_joiner_ || has(code, UCHAR_EMOJI_MODIFIER)) && is_pictograph(last_);
    if (joins_emoji_ && is_joined && is_pictograph(code)) width = 0;
    if (width == 0) {
      is_after_joiner_ = code == kJoiner;
      ++num_marks_;
      return 0;
    }
    note(code, width);
    return width;
  }

  std::size_t num_marks() const { return num_marks_; }

 private:
  static bool is_pictograph(char32_t code) {
    return has(code, UCHAR_EXTENDED_PICTOGRAPHIC) || has(code, UCHAR_EMOJI_MODIFIER);
  }

  void note(char32_t code, std::size_t width) {
    last_ = code;
    width_ = width;
    flag_letters_ = 0;
    is_after_joiner_ = false;
    num_marks_ = 0;
  }

  const bool joins_emoji_;
  char32_t last_ = 0;  // that took places
  std::size_t width_ = 0;
  std::size_t flag_letters_ = 0;
  std::size_t num_marks_ = 0;  // since
  bool is_after_joiner_ = false;
};

// What a reader takes for one letter or emoji, by the rules of Unicode (UAX #29).
class Clusters {
 public:
  // Whether the next character begins one.
  bool begins(char32_t code) {
    const int kind = code < 0x80 ? static_cast<int>(U_GCB_OTHER)
                                 : u_getIntPropertyValue(static_cast<UChar32>(code),
                                                         UCHAR_GRAPHEME_CLUSTER_BREAK);
    const bool is_pictograph = code >= 0x80 && has(code, UCHAR_EXTENDED_PICTOGRAPHIC);
    const bool is_joined = has_before_ && joins(kind, is_pictograph);
    num_flag_letters_ = kind == U_GCB_REGIONAL_INDICATOR ? num_flag_letters_ + 1 : 0;
    if (!(kind == U_GCB_EXTEND || kind == U_GCB_ZWJ)) is_after_pictograph_ = is_pictograph;
    before_ = kind;
    has_before_ = true;
    return !is_joined;
  }

 private:
  bool joins(int kind, bool is_pictograph) const {
    if (kind == U_GCB_EXTEND || kind == U_GCB_ZWJ || kind == U_GCB_SPACING_MARK) return true;
    switch (before_) {
      case U_GCB_PREPEND:
        return true;
      case U_GCB_L:
        return kind == U_GCB_L || kind == U_GCB_V || kind == U_GCB_LV || kind == U_GCB_LVT;
      case U_GCB_LV:
      case U_GCB_V:
        return kind == U_GCB_V || kind == U_GCB_T;
      case U_GCB_LVT:
      case U_GCB_T:
        return kind == U_GCB_T;
      case U_GCB_ZWJ:
        return is_after_pictograph_ && is_pictograph;
      case U_GCB_REGIONAL_INDICATOR:
        return kind == U_GCB_REGIONAL_INDICATOR && num_flag_letters_ % 2 == 1;
      default:
        return false;
    }
  }

  bool has_before_ = false;
  int before_ = U_GCB_OTHER;
  bool is_after_pictograph_ = false;  // with nothing but marks and joiners between
  std::size_t num_flag_letters_ = 0;  // one after the other
};

std::size_t width_of(std::string_view text, Places places) {
  std::size_t width = 0;
  while (!text.empty()) {
    const Utf8Character c = first_character(text);
    width += places.add(c.code);
    text.remove_prefix(c.length);
  }
  return width;
}

}  // namespace

std::size_t display_width(std::string_view text) { return width_of(text, Places(true)); }

std::size_t most_width(std::string_view text) { return width_of(text, Places(false)); }

std::size_t length_within(std::string_view text, std::size_t most) {
  Places places(false);
  Clusters clusters;
  std::size_t whole = 0;  // bytes
  std::size_t length = 0;
  std::size_t width = 0;
  while (length < text.size()) {
    const Utf8Character c = first_character(text.substr(length));
    if (clusters.begins(c.code)) whole = length;
    width += places.add(c.code);
    if (width > most) return whole;
    if (places.num_marks() > kMostMarks) return length;
    length += c.length;
  }
  return length;
}

std::size_t length_of_characters(std::string_view text, std::size_t most) {
  Clusters clusters;
  std::size_t whole = 0;  // bytes
  std::size_t length = 0;
  for (std::size_t count = 0; length < text.size(); ++count) {
    const Utf8Character c = first_character(text.substr(length));
    if (clusters.begins(c.code)) whole = length;
    if (count == most) return whole;
    length += c.length;
  }
  return length;
}

bool has_right_to_left(std::string_view text) {
  while (!text.empty()) {
    const Utf8Character c = first_character(text);
    text.remove_prefix(c.length);
    if (c.code < 0x0590) continue;
    const UCharDirection direction = u_charDirection(static_cast<UChar32>(c.code));
    if (direction == U_RIGHT_TO_LEFT || direction == U_RIGHT_TO_LEFT_ARABIC) return true;
  }
  return false;
}

}  // namespace textio::tool
