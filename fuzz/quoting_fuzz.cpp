// Literals of other languages. The input is a text; what a program in the language holds must be this text.
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>

#include "fuzz/check.hpp"
#include "support/literals.hpp"
#include "tool/emit/emit_words.hpp"

namespace textio::fuzz {
namespace {

using testing_support::read_backslash_literal;
using testing_support::read_doubled_literal;
using testing_support::read_shell_word;

void require_text(const char* language, const std::optional<std::string>& read,
                  const std::string& text) {
  require(read.has_value(), language);
  require_same_lines(language, *read, text);
}

void check(std::string text) {
  require_text("Python", read_backslash_literal(tool::python_text(text), '"'), text);
  require_text("ClickHouse", read_backslash_literal(tool::clickhouse_text(text), '\''), text);
  require_text("a name of ClickHouse", read_backslash_literal(tool::clickhouse_name(text), '`'),
               text);
  require(read_backslash_literal(tool::json_text(text), '"').has_value(), "JSON");
  require(tool::comment_text(text).find_first_of("\r\n") == std::string::npos, "a comment");
  std::erase(text, '\0');
  require_text("R", read_backslash_literal(tool::r_text(text), '"'), text);
  require_text("the shell of SQLite", read_backslash_literal(tool::sqlite_argument(text), '"'),
               text);
  require_text("SQL", read_doubled_literal(tool::sql_text(text), '\''), text);
  require_text("a name of SQL", read_doubled_literal(tool::sql_identifier(text), '"'), text);
  require_text("sh", read_shell_word(tool::shell_text(text)), text);
}

}  // namespace
}  // namespace textio::fuzz

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  textio::fuzz::check({reinterpret_cast<const char*>(data), size});
  return 0;
}
