// DelimiterSet: the matcher for a list of marker strings (line endings, delimiters).
//
//   auto set = textio::get_or_create_delim({u"\r\n", u"\n"});
//   // set->strings[0] == u"\r\n": of two markers that match, the earlier one wins
//
// Ownership  made by the host, shared and immutable once made; the pointers among its members
//            point into the set itself and live as long as it does.
// Threads    may be read by any number of threads.
#pragma once

#include <memory>
#include <string>
#include <vector>

#include <vltextstream/host/export.hpp>

namespace textio {

struct DelimiterSet {
  DelimiterSet() = default;
  DelimiterSet(const DelimiterSet&) = delete;
  DelimiterSet& operator=(const DelimiterSet&) = delete;

  // The markers in the order in which they are tried.
  std::vector<std::u16string> strings;

  // The one character when `is_single_char` is set; not read otherwise.
  const char16_t* single_char = nullptr;

  // The set is exactly one marker of exactly one character.
  bool is_single_char = false;

  // The distinct first characters of all markers. An empty marker contributes U+0000; an empty
  // set has null here and never matches.
  const char16_t* first_chars_begin = nullptr;
  const char16_t* first_chars_end = nullptr;

  // Storage that a host may use for the first characters; nothing else reads it.
  std::u16string first_chars;
};

// Host service: a set for `markers`, in their order. May return a set that it made before.
// Errors  std::bad_alloc.
VLTEXTSTREAM_IMPORT std::shared_ptr<const DelimiterSet> get_or_create_delim(
    const std::vector<std::u16string>& markers);

}  // namespace textio
