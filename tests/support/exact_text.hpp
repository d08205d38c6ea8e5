// Texts in heap blocks of exactly their size, so that a sanitizer reports any read past the end.
#pragma once

#include <algorithm>
#include <cstddef>
#include <memory>
#include <string>
#include <string_view>

#include <vltextstream/strategy/field.hpp>

namespace textio::testing_support {

class ExactText {
 public:
  ExactText(std::u16string_view text)  // NOLINT: an implicit conversion is meant
      : units_(new char16_t[text.size()]), size_(text.size()) {
    std::copy(text.begin(), text.end(), units_.get());
  }

  Field field() const { return {units_.get(), size_}; }
  std::u16string_view view() const { return {units_.get(), size_}; }
  const char16_t* data() const { return units_.get(); }
  std::size_t size() const { return size_; }

 private:
  std::unique_ptr<char16_t[]> units_;
  std::size_t size_;
};

// The code units of a field as a separate string, for comparisons.
inline std::u16string text_of(const Field& field) { return {field.data, field.length}; }

}  // namespace textio::testing_support
