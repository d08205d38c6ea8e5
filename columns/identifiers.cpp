#include <vltextstream/columns/identifiers.hpp>

#include <algorithm>

#include <vltextstream/columns/characters.hpp>

namespace textio::columns {
namespace {

using View = std::u16string_view;

constexpr std::size_t kFewestDigits = 7;
constexpr std::size_t kMostDigits = 15;

bool is_between_groups(char16_t unit) {
  return is_any_blank(unit) || View(u"-./()").find(unit) != View::npos;
}

// The largest integer up to which a double holds each one is 2^53 = 9007199254740992.
bool is_beyond_double(View digits) {
  constexpr View kLargest = u"9007199254740992";
  if (digits.size() != kLargest.size()) return digits.size() > kLargest.size();
  return digits > kLargest;
}

}  // namespace

bool is_phone_like(View text) {
  constexpr std::size_t kLongest = 30;
  if (text.empty() || text.size() > kLongest) return false;
  const bool has_plus = text.front() == u'+';
  std::size_t digits = 0;
  std::size_t hyphens = 0;
  std::size_t gaps = 0;
  for (const char16_t unit : text.substr(has_plus ? 1 : 0)) {
    if (is_digit(unit)) {
      ++digits;
    } else if (!is_between_groups(unit)) {
      return false;
    } else {
      ++gaps;
      if (View(u"-./").find(unit) != View::npos) ++hyphens;
    }
  }
  if (digits < kFewestDigits || digits > kMostDigits) return false;
  if (has_plus) return gaps > 0 || digits > kFewestDigits + 2;
  const bool has_prefix = text.front() == u'(' || text.front() == u'0';
  return (has_prefix && gaps > 0) || hyphens >= 2;
}

void IdentifierVotes::add(View text) {
  if (!text.empty() && is_sign(text.front())) text.remove_prefix(1);
  if (!std::all_of(text.begin(), text.end(), is_digit)) return;
  has_one_width_ = has_one_width_ && (count_ == 0 || width_ == text.size());
  width_ = text.size();
  ++count_;
  if (text.size() > 1 && digit_value(text.front()) == 0) ++padded_;
  if (is_beyond_double(text)) ++too_long_;
}

bool IdentifierVotes::are_identifiers() const {
  const std::size_t marked = std::max(padded_, too_long_);
  return marked > 0 && (has_one_width_ || marked >= (count_ + 9) / 10);
}

}  // namespace textio::columns
