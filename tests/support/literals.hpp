// Reads the literals of other languages: what a program in them would hold.
//
//   read_backslash_literal(R"("a\"b")", '"');   // a"b
//   read_doubled_literal("'it''s'", '\'');      // it's
//
// No value: the text is not one whole literal, so that something of it would be taken for code.
#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

#include <vltextstream/text/utf8.hpp>

namespace textio::testing_support {

// The number of `digits` digits of base 8 or 16 that `text` begins with.
inline std::optional<char32_t> number_at(std::string_view text, std::size_t digits, unsigned base) {
  if (text.size() < digits) return std::nullopt;
  char32_t number = 0;
  for (const char c : text.substr(0, digits)) {
    unsigned digit = 99;
    if (c >= '0' && c <= '9') digit = static_cast<unsigned>(c - '0');
    if (c >= 'a' && c <= 'f') digit = static_cast<unsigned>(c - 'a') + 10;
    if (digit >= base) return std::nullopt;
    number = number * base + digit;
  }
  return number;
}

// Of Python, R, JSON, ClickHouse, and the shell of SQLite: \n, \r, \t, \xHH, \uHHHH, \UHHHHHHHH, \OOO, and a
// backslash before any other character. A lone low surrogate from U+DC80 on is a byte, as in Python; a pair is one
// character, as in JSON.
inline std::optional<std::string> read_backslash_literal(std::string_view literal, char quote) {
  if (literal.size() < 2 || literal.front() != quote || literal.back() != quote)
    return std::nullopt;
  std::string_view rest = literal.substr(1, literal.size() - 2);
  std::string text;
  char32_t high = 0;
  while (!rest.empty()) {
    const char c = rest.front();
    rest.remove_prefix(1);
    if (c == quote || c == '\n' || c == '\r' || c == '\0') return std::nullopt;
    if (c != '\\') {
      text += c;
      continue;
    }
    if (rest.empty()) return std::nullopt;
    const char kind = rest.front();
    const bool is_octal = kind >= '0' && kind <= '7';
    if (!is_octal) rest.remove_prefix(1);
    const std::size_t digits = is_octal      ? 3
                               : kind == 'x' ? 2
                               : kind == 'u' ? 4
                               : kind == 'U' ? 8
                                             : 0;
    if (digits == 0) {
      text += kind == 'n' ? '\n' : kind == 'r' ? '\r' : kind == 't' ? '\t' : kind;
      continue;
    }
    const std::optional<char32_t> code = number_at(rest, digits, is_octal ? 8 : 16);
    if (!code) return std::nullopt;
    rest.remove_prefix(digits);
    if (is_octal || kind == 'x') {
      text += static_cast<char>(*code);
    } else if (*code >= 0xD800 && *code < 0xDC00) {
      high = *code;
    } else if (*code >= 0xDC00 && *code < 0xE000 && high != 0) {
      append_utf8(text, 0x10000 + ((high - 0xD800) << 10) + (*code - 0xDC00));
      high = 0;
    } else if (*code >= 0xDC80 && *code < 0xDD00) {
      text += static_cast<char>(*code - 0xDC00);
    } else {
      append_utf8(text, *code);
    }
  }
  return text;
}

// Of SQL: a doubled quote is one.
inline std::optional<std::string> read_doubled_literal(std::string_view literal, char quote) {
  if (literal.size() < 2 || literal.front() != quote || literal.back() != quote)
    return std::nullopt;
  std::string text;
  for (std::size_t i = 1; i + 1 < literal.size(); ++i) {
    if (literal[i] == '\0') return std::nullopt;
    if (literal[i] == quote && (++i + 1 >= literal.size() || literal[i] != quote))
      return std::nullopt;
    text += literal[i];
  }
  return text;
}

// Of sh: pieces between single quotes, and \' between them.
inline std::optional<std::string> read_shell_word(std::string_view word) {
  std::string text;
  while (!word.empty()) {
    if (word.starts_with("\\'")) {
      text += '\'';
      word.remove_prefix(2);
      continue;
    }
    const std::size_t end = word.find('\'', 1);
    if (word.front() != '\'' || end == std::string_view::npos) return std::nullopt;
    text += word.substr(1, end - 1);
    word.remove_prefix(end + 1);
  }
  return text;
}

}  // namespace textio::testing_support
