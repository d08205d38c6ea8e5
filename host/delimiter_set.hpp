// DelimiterSet: a list of marker strings (line endings, delimiters), prepared for matching.
//
//   auto set = textio::get_or_create_delim({u"\r\n", u"\n"});
//   // set->strings[0] == u"\r\n": of two markers that match, the earlier one wins
//
// Ownership  created by the host, then shared and immutable; its pointer members point into the set
//            itself and are valid as long as the set.
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

  // The markers, in matching order.
  std::vector<std::u16string> strings;

  // The only character if `is_single_char` is set; otherwise not read.
  const char16_t* single_char = nullptr;

  // Whether the set is exactly one marker of exactly one character.
  bool is_single_char = false;

  // The distinct first characters of all markers. An empty marker contributes U+0000. Null for an
  // empty set, which never matches.
  const char16_t* first_chars_begin = nullptr;
  const char16_t* first_chars_end = nullptr;

  // Storage that a host can use for the first characters; not read otherwise.
  std::u16string first_chars;
};

// Host service: a set for `markers`, in their order. May return a set that already exists.
// Errors  std::bad_alloc.
VLTEXTSTREAM_IMPORT std::shared_ptr<const DelimiterSet> get_or_create_delim(
    const std::vector<std::u16string>& markers);

}  // namespace textio
