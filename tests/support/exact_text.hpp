// Texts in heap blocks of exactly their size, so that a sanitizer sees any unit read past the end.
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
  ExactText(std::u16string_view text)  // NOLINT: a text is one, wherever it lies
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

// The units of a field as a string of its own, for comparisons.
inline std::u16string text_of(const Field& field) { return {field.data, field.length}; }

}  // namespace textio::testing_support
