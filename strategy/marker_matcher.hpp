// MarkerMatcher: which marker of a list stands at a place of a text.
//
//   MarkerMatcher endings(get_or_create_delim({u"\r\n", u"\n"}));
//   endings.length_at(text, 5);      // 2 where u"\r\n" stands, 1 at a line feed, otherwise 0
//
// Of two markers that match the earlier in the list wins. A marker must fit into the text. An empty
// marker ends the search: those behind it never match.
//
// A part of the strategies and the tokenizer, for them alone: none of its operations is exported.
//
// Ownership  shares the set. A copy shares it too, but not the index of a text that stands still.
// Cost       a question compares the markers one by one. Against a text made to match them that is
//            the product of both, so whoever walks a text that stands still promises it
//            (Strategy::StableText): the questions of the walk then take time linear in text and
//            markers together. Nothing of a text is remembered without that promise.
// Threads    one thread at a time; copies are independent.
#pragma once

#include <bitset>
#include <cstddef>
#include <memory>
#include <string_view>
#include <utility>

#include <vltextstream/host/delimiter_set.hpp>
#include <vltextstream/strategy/field.hpp>

namespace textio {

class MarkerIndex;

// Which code units there are in a list that is too long to be searched.
using UnitBits = std::bitset<65536>;

// The bits of `units`; null for a list short enough to be searched.
std::shared_ptr<const UnitBits> make_unit_bits(std::u16string_view units);

// Whether a marker of `set` begins with `unit`. As a rule there are few such characters: a plain
// loop is faster than std::find, which prepares for many.
inline bool begins_with(const DelimiterSet& set, char16_t unit) {
  const char16_t* first = set.first_chars_begin;
  while (first != set.first_chars_end && *first != unit) ++first;
  return first != set.first_chars_end;
}

class MarkerMatcher {
 public:
  explicit MarkerMatcher(std::shared_ptr<const DelimiterSet> set);
  MarkerMatcher(const MarkerMatcher& other) : set_(other.set_), first_units_(other.first_units_) {}
  MarkerMatcher(MarkerMatcher&& other) noexcept
      : set_(std::move(other.set_)), first_units_(std::move(other.first_units_)) {}
  MarkerMatcher& operator=(const MarkerMatcher& other) {
    if (this == &other) return *this;
    set_ = other.set_;
    first_units_ = other.first_units_;
    return *this;
  }
  ~MarkerMatcher() = default;

  // The length of the first marker that stands at `i`, 0 when none does.
  std::size_t length_at(const Field& text, std::size_t i) const {
    const char16_t unit = i < text.length ? text.data[i] : char16_t{0xFFFF};
    if (set_->is_single_char) return unit == *set_->single_char ? 1 : 0;
    return may_begin_with(unit) ? length_of_several_at(text, i) : 0;
  }

  // Whether the markers are so many or so long that an index may pay.
  bool may_need_index() const { return first_units_ != nullptr; }

 private:
  friend class MarkerIndex;

  bool may_begin_with(char16_t unit) const {
    return first_units_ ? (*first_units_)[unit] : begins_with(*set_, unit);
  }
  std::size_t length_of_several_at(const Field& text, std::size_t i) const;

  std::shared_ptr<const DelimiterSet> set_;
  std::shared_ptr<const UnitBits> first_units_;  // null for few short markers

  // Asked about the text that it is bound to; null while no text is promised to stand still.
  mutable MarkerIndex* index_ = nullptr;
};

}  // namespace textio
