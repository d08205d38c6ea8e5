// The texts in many languages of tests/corpus/, and samples of them in the encodings in use.
//
//   for (const Language& language : read_corpus("tests/corpus", "held-out")) {
//     const Samples samples = samples_of(language.text, "KOI8-R", 200);
//   }
//
// Units  sizes count bytes of the encoded text.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace textio::encodings {

struct Language {
  std::string name;
  std::vector<std::string> encodings;  // those in use besides Unicode
  std::u16string text;
};

// Throws std::runtime_error when a file is not there.
std::vector<Language> read_corpus(const std::string& folder, const std::string& part);

// Whether ICU knows `encoding`.
bool is_known(const std::string& encoding);

// The bytes in `encoding`, ill-formed parts as U+FFFD.
std::u16string decode(std::string_view bytes, const std::string& encoding);

// Throws std::runtime_error when the encoding lacks a character.
std::string encode(std::u16string_view text, const std::string& encoding);

struct Encodable {
  std::u16string text;
  std::size_t dropped = 0;  // characters that the encoding lacks, and that nothing replaces
};
// `text` as somebody writes it who has only `encoding`: with plain quotes and dashes where it has
// no others, with letters in two parts where it has no whole ones.
Encodable encodable_in(const std::string& encoding, std::u16string_view text);

// Parts of `text` in `encoding`, of at most `size` bytes each, from starts all over the text. None
// if the whole is shorter.
std::vector<std::string> samples_of(std::u16string_view text, const std::string& encoding,
                                    std::size_t size);

}  // namespace textio::encodings
