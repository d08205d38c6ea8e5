// Utf8Writer: appends UTF-16 texts to a string as UTF-8.
//
//   Utf8Writer writer(bytes);
//   writer.expect(2000);               // units, in all texts that follow
//   writer.append(u"Z\u00FCrich");
//   writer.finish();                   // the string has its size
//
// A surrogate without its other half becomes U+FFFD.
//
// Ownership  the string must outlive the writer, and is not used until finish().
// Errors     std::bad_alloc.
// Cost       linear in the texts; ASCII four units at a time. No allocation if all texts together have as many units as
//            expected and are ASCII.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string>
#include <string_view>

#include <vltextstream/reading/number_parser.hpp>
#include <vltextstream/text/utf8.hpp>

namespace textio::reading {

class Utf8Writer {
 public:
  explicit Utf8Writer(std::string& bytes) : bytes_(bytes), size_(bytes.size()) {}

  void expect(std::size_t units) { grow(units); }

  std::size_t size() const { return size_; }

  void append(std::u16string_view text) {
    if (bytes_.size() - size_ < text.size()) grow(text.size());
    char* const out = bytes_.data() + size_;
    const char16_t* const units = text.data();
    const std::size_t size = text.size();
    std::uint64_t all = 0;
    if (size >= kStep) {
      // Steps may overlap: to write a unit twice changes nothing, and there is no rest to loop over.
      for (std::size_t at = 0; at + kStep < size; at += kStep)
        all |= write_step(units + at, out + at);
      all |= write_step(units + size - kStep, out + size - kStep);
    } else {
      for (std::size_t at = 0; at < size; ++at) {
        all |= units[at];
        out[at] = static_cast<char>(units[at]);
      }
    }
    if ((all & digits::kNotAscii) != 0) return append_others(text);
    size_ += size;
  }

  void finish() { bytes_.resize(size_); }

 private:
  static constexpr std::size_t kStep = 4;

  static std::uint64_t write_step(const char16_t* units, char* out) {
    const std::uint64_t four = digits::load_four(units);
    const auto narrow = static_cast<std::uint32_t>(digits::narrowed_four(four));
    std::memcpy(out, &narrow, sizeof narrow);
    return four;
  }

  // Makes room for this many bytes more.
  void grow(std::size_t bytes) { bytes_.resize(size_ + bytes); }

  void append_others(std::u16string_view text) {
    constexpr std::size_t kMostBytesOfUnit = 3;
    const std::size_t room = bytes_.size() - size_;
    bytes_.resize(size_ + room + kMostBytesOfUnit * text.size());
    for (std::size_t at = 0; at < text.size();) {
      char32_t code = next_character(text, at);
      if (is_surrogate(code)) code = kReplacement;
      write(code);
    }
  }

  void write(char32_t code) {
    const auto put = [this](char32_t byte) { bytes_[size_++] = static_cast<char>(byte); };
    const auto rest = [code](unsigned shift) { return 0x80U | ((code >> shift) & 0x3FU); };
    if (code < 0x80) {
      put(code);
    } else if (code < 0x800) {
      put(0xC0U | code >> 6U);
      put(rest(0));
    } else if (code < 0x10000) {
      put(0xE0U | code >> 12U);
      put(rest(6));
      put(rest(0));
    } else {
      put(0xF0U | code >> 18U);
      put(rest(12));
      put(rest(6));
      put(rest(0));
    }
  }

  std::string& bytes_;
  std::size_t size_;  // what is written; the string is longer
};

}  // namespace textio::reading
