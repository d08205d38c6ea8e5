// The words of other languages: texts and names of a file as literals, and encodings as each reader calls them.
//
//   python_text("a\"); import os");    // "\"a\\\"); import os\""
//   sql_identifier("'; DROP TABLE");         // "\"'; DROP TABLE\""
//   encoding_word(Codecs::python, "windows-1252");   // "cp1252"
//
// A literal holds the whole text and ends where it ends, whatever is in the text. Characters that an editor hides or
// obeys are escaped where the language can escape them.
//
// Units   UTF-8. A byte that is none (of a path) stays itself where the language can say so: Python, R, the shell.
//         In JSON it becomes U+FFFD.
// Errors  std::invalid_argument for U+0000 where a language has no literal for it: R, SQL, the shells.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace textio::tool {

std::string python_text(std::string_view text);
std::string r_text(std::string_view text);
std::string json_text(std::string_view text);

// With quotes doubled, and nothing else special: PostgreSQL, DuckDB, SQLite.
std::string sql_text(std::string_view text);
std::string sql_identifier(std::string_view text);

// With backslashes: ClickHouse.
std::string clickhouse_text(std::string_view text);
std::string clickhouse_name(std::string_view text);

// For sh.
std::string shell_text(std::string_view text);

// An argument of a command of the sqlite3 shell that begins with a dot.
std::string sqlite_argument(std::string_view text);

// For a comment: one line, without characters that a terminal obeys.
std::string comment_text(std::string_view text);

// Joined by ", ".
std::string joined(const std::vector<std::string>& parts, std::string_view separator = ", ");

enum class Codecs {
  utf8,    // a reader that knows no other
  python,  // pandas, polars and pyarrow too
  duckdb,  // fread, too
  spark,
  icu,
  iconv,
  postgres,
  web,
};

// No value: the reader does not know the encoding, or not surely under one name.
std::optional<std::string> encoding_word(Codecs codecs, const std::string& encoding);

}  // namespace textio::tool
