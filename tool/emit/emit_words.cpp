#include "tool/emit/emit_words.hpp"

#include <stdexcept>

#include <fmt/format.h>

#include <vltextstream/text/utf8.hpp>

#include "tool/safe_text.hpp"

namespace textio::tool {
namespace {

// Whether the character must be escaped, apart from those that the language itself needs.
bool is_hidden(std::string_view character) { return printable(character) != character; }

void refuse_zero(std::string_view text, const char* language) {
  if (text.find('\0') != std::string_view::npos) {
    throw std::invalid_argument(fmt::format("{} has no literal for U+0000", language));
  }
}

std::string between(std::string_view quote, std::string_view text, std::string_view special,
                    std::string_view escape) {
  std::string out(quote);
  for (const char c : text) {
    if (special.find(c) != std::string_view::npos)
      out += escape.empty() ? std::string_view(&c, 1) : escape;
    out += c;
  }
  return out += quote;
}

// The escape of a hidden character or an ill-formed byte.
using EscapeCode = std::string (*)(char32_t code);
using EscapeByte = std::string (*)(unsigned char byte);

struct BackslashStyle {
  EscapeCode code;
  EscapeByte byte;
  std::string_view also;  // characters that a backslash precedes, besides the backslash
};

std::string with_backslashes(std::string_view text, const BackslashStyle& style) {
  std::string out;
  while (!text.empty()) {
    const Utf8Character c = first_character(text);
    const std::string_view bytes = text.substr(0, c.length);
    const bool is_ill_formed = c.code == kReplacement && bytes != kReplacementUtf8;
    text.remove_prefix(c.length);
    if (is_ill_formed) {
      for (const char byte : bytes) out += style.byte(static_cast<unsigned char>(byte));
    } else if (c.code == '\\' || style.also.find(bytes) != std::string_view::npos) {
      (out += '\\') += bytes;
    } else if (c.code == '\n') {
      out += "\\n";
    } else if (c.code == '\r') {
      out += "\\r";
    } else if (c.code == '\t') {
      out += "\\t";
    } else if (is_hidden(bytes)) {
      out += style.code(c.code);
    } else {
      out += bytes;
    }
  }
  return out;
}

std::string short_or_long_code(char32_t code) {
  return code > 0xFFFF ? fmt::format("\\U{:08x}", static_cast<unsigned>(code))
                       : fmt::format("\\u{:04x}", static_cast<unsigned>(code));
}

// Python opens paths with bytes that are not UTF-8 by lone surrogates.
std::string surrogate_escape(unsigned char byte) { return fmt::format("\\udc{:02x}", byte); }

std::string json_code(char32_t code) {
  const auto number = static_cast<unsigned>(code);
  if (code <= 0xFFFF) return fmt::format("\\u{:04x}", number);
  const unsigned rest = number - 0x10000;
  return fmt::format("\\u{:04x}\\u{:04x}", 0xD800 + (rest >> 10), 0xDC00 + (rest & 0x3FF));
}

std::string replacement(unsigned char /*byte*/) { return std::string(kReplacementUtf8); }

// ClickHouse and the sqlite3 shell know bytes alone.
std::string hex_bytes(char32_t code) {
  std::string utf8;
  append_utf8(utf8, code);
  std::string out;
  for (const char c : utf8) out += fmt::format("\\x{:02x}", static_cast<unsigned char>(c));
  return out;
}

std::string octal_bytes(char32_t code) {
  std::string utf8;
  append_utf8(utf8, code);
  std::string out;
  for (const char c : utf8) out += fmt::format("\\{:03o}", static_cast<unsigned char>(c));
  return out;
}

std::string hex_byte(unsigned char byte) { return fmt::format("\\x{:02x}", byte); }
std::string octal_byte(unsigned char byte) { return fmt::format("\\{:03o}", byte); }

bool is_utf8(std::string_view text) {
  while (!text.empty()) {
    const Utf8Character c = first_character(text);
    if (c.code == kReplacement && text.substr(0, c.length) != kReplacementUtf8) return false;
    text.remove_prefix(c.length);
  }
  return true;
}

}  // namespace

std::string python_text(std::string_view text) {
  return '"' + with_backslashes(text, {short_or_long_code, surrogate_escape, "\""}) + '"';
}

// R refuses literals with both kinds of escapes. One with ill-formed bytes has only bytes.
std::string r_text(std::string_view text) {
  refuse_zero(text, "R");
  if (is_utf8(text)) {
    return '"' + with_backslashes(text, {short_or_long_code, replacement, "\""}) + '"';
  }
  return '"' + with_backslashes(text, {hex_bytes, hex_byte, "\""}) + '"';
}

std::string json_text(std::string_view text) {
  return '"' + with_backslashes(text, {json_code, replacement, "\""}) + '"';
}

std::string sql_text(std::string_view text) {
  refuse_zero(text, "SQL");
  return between("'", text, "'", "");
}

std::string sql_identifier(std::string_view text) {
  refuse_zero(text, "SQL");
  return between("\"", text, "\"", "");
}

std::string clickhouse_text(std::string_view text) {
  return '\'' + with_backslashes(text, {hex_bytes, hex_byte, "'"}) + '\'';
}

std::string clickhouse_name(std::string_view text) {
  return '`' + with_backslashes(text, {hex_bytes, hex_byte, "`"}) + '`';
}

std::string shell_text(std::string_view text) {
  refuse_zero(text, "sh");
  std::string out = "'";
  for (const char c : text) out += c == '\'' ? std::string("'\\''") : std::string(1, c);
  return out += '\'';
}

std::string sqlite_argument(std::string_view text) {
  refuse_zero(text, "the sqlite3 shell");
  return '"' + with_backslashes(text, {octal_bytes, octal_byte, "\""}) + '"';
}

std::string comment_text(std::string_view text) { return printable(text); }

std::string joined(const std::vector<std::string>& parts, std::string_view separator) {
  std::string out;
  for (const std::string& part : parts) {
    if (&part != &parts.front()) out += separator;
    out += part;
  }
  return out;
}

// ---------------------------------------------------------------------------------------------
// Encodings

namespace {

struct EncodingRow {
  const char* name;  // as a detection calls it
  const char* python;
  const char* duckdb;
  const char* iconv;  // as R knows it, too
  const char* spark;
  const char* postgres;
  const char* web;  // as HTML and JSON documents of the web know it
};

// An empty word: unknown, or not surely the same.
constexpr EncodingRow kEncodings[] = {
    {"UTF-8", "utf-8", "utf-8", "UTF-8", "UTF-8", "UTF8", "utf-8"},
    {"US-ASCII", "ascii", "utf-8", "UTF-8", "UTF-8", "UTF8", "utf-8"},
    {"UTF-16LE", "utf-16-le", "", "UTF-16LE", "", "", "utf-16le"},
    {"UTF-16BE", "utf-16-be", "", "UTF-16BE", "", "", "utf-16be"},
    {"UTF-32LE", "utf-32-le", "", "UTF-32LE", "", "", ""},
    {"UTF-32BE", "utf-32-be", "", "UTF-32BE", "", "", ""},
    {"ISO-8859-1", "latin-1", "latin-1", "ISO-8859-1", "ISO-8859-1", "LATIN1", "iso-8859-1"},
    {"ISO-8859-2", "iso8859-2", "", "ISO-8859-2", "", "LATIN2", "iso-8859-2"},
    {"ISO-8859-5", "iso8859-5", "", "ISO-8859-5", "", "ISO_8859_5", "iso-8859-5"},
    {"ISO-8859-7", "iso8859-7", "", "ISO-8859-7", "", "ISO_8859_7", "iso-8859-7"},
    {"ISO-8859-9", "iso8859-9", "", "ISO-8859-9", "", "LATIN5", "iso-8859-9"},
    {"ISO-8859-15", "iso8859-15", "", "ISO-8859-15", "", "LATIN9", "iso-8859-15"},
    {"windows-1250", "cp1250", "", "CP1250", "", "WIN1250", "windows-1250"},
    {"windows-1251", "cp1251", "", "CP1251", "", "WIN1251", "windows-1251"},
    {"windows-1252", "cp1252", "", "CP1252", "", "WIN1252", "windows-1252"},
    {"windows-1253", "cp1253", "", "CP1253", "", "WIN1253", "windows-1253"},
    {"windows-1254", "cp1254", "", "CP1254", "", "WIN1254", "windows-1254"},
    {"windows-1257", "cp1257", "", "CP1257", "", "WIN1257", "windows-1257"},
    {"KOI8-R", "koi8-r", "", "KOI8-R", "", "KOI8R", "koi8-r"},
    {"KOI8-U", "koi8-u", "", "KOI8-U", "", "KOI8U", "koi8-u"},
    {"Shift_JIS", "cp932", "", "CP932", "", "", "shift_jis"},
    {"EUC-JP", "euc_jp", "", "EUC-JP", "", "EUC_JP", "euc-jp"},
    {"EUC-KR", "cp949", "", "CP949", "", "", "euc-kr"},
    {"GB18030", "gb18030", "", "GB18030", "", "", "gb18030"},
    {"Big5", "cp950", "", "CP950", "", "", "big5"},
};

}  // namespace

std::optional<std::string> encoding_word(Codecs codecs, const std::string& encoding) {
  for (const EncodingRow& row : kEncodings) {
    if (row.name != encoding) continue;
    const std::string_view word = [&]() -> std::string_view {
      switch (codecs) {
        case Codecs::utf8:
          return row.web == std::string_view("utf-8") ? row.web : "";
        case Codecs::python:
          return row.python;
        case Codecs::duckdb:
          return row.duckdb;
        case Codecs::spark:
          return row.spark;
        case Codecs::iconv:
          return row.iconv;
        case Codecs::icu:
          return row.name;
        case Codecs::postgres:
          return row.postgres;
        case Codecs::web:
          return row.web;
      }
      return "";
    }();
    if (word.empty()) return std::nullopt;
    return std::string(word);
  }
  return std::nullopt;
}

}  // namespace textio::tool
