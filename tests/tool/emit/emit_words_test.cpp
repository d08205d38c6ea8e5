#include "tool/emit/emit_words.hpp"

#include <ostream>
#include <stdexcept>
#include <string>

#include <gtest/gtest.h>
#include <rapidcheck.h>

#include "support/literals.hpp"
#include "support/rule_name.hpp"

namespace textio::tool {
namespace {

using testing_support::ByRule;
using testing_support::read_backslash_literal;
using testing_support::read_doubled_literal;
using testing_support::read_shell_word;

struct HostileCase {
  const char* rule;
  std::string text;
  std::string python;
  std::string r;
  std::string json;
  std::string sql;    // a text
  std::string name;   // an identifier of SQL
  std::string house;  // a text of ClickHouse
  std::string shell;
  std::string sqlite;  // an argument of a dot command
};

std::ostream& operator<<(std::ostream& out, const HostileCase& row) { return out << row.rule; }

const HostileCase kHostileCases[] = {
    {"APlainText", "level", R"("level")", R"("level")", R"("level")", "'level'", R"("level")",
     "'level'", "'level'", R"("level")"},
    {"NoText", "", R"("")", R"("")", R"("")", "''", R"("")", "''", "''", R"("")"},
    {"TheEndOfACallInPython", R"("); import os)", R"("\"); import os")", R"("\"); import os")",
     R"("\"); import os")", R"('"); import os')", R"("""); import os")", R"('"); import os')",
     R"('"); import os')", R"("\"); import os")"},
    {"TheEndOfAStatementInSql", "'; DROP TABLE t; --", R"("'; DROP TABLE t; --")",
     R"("'; DROP TABLE t; --")", R"("'; DROP TABLE t; --")", "'''; DROP TABLE t; --'",
     R"("'; DROP TABLE t; --")", R"('\'; DROP TABLE t; --')", R"(''\''; DROP TABLE t; --')",
     R"("'; DROP TABLE t; --")"},
    {"ACommandOfTheShell", "$(rm -rf .)`id`", R"("$(rm -rf .)`id`")", R"("$(rm -rf .)`id`")",
     R"("$(rm -rf .)`id`")", "'$(rm -rf .)`id`'", R"("$(rm -rf .)`id`")", "'$(rm -rf .)`id`'",
     "'$(rm -rf .)`id`'", R"("$(rm -rf .)`id`")"},
    {"ABackslashAtTheEnd", "a\\", R"("a\\")", R"("a\\")", R"("a\\")", "'a\\'", "\"a\\\"",
     R"('a\\')", "'a\\'", R"("a\\")"},
    {"LineBreaks", "a\nb\rc\td", R"("a\nb\rc\td")", R"("a\nb\rc\td")", R"("a\nb\rc\td")",
     "'a\nb\rc\td'", "\"a\nb\rc\td\"", R"('a\nb\rc\td')", "'a\nb\rc\td'", R"("a\nb\rc\td")"},
    {"DollarQuotesOfPostgres", "$$; DROP $$", R"("$$; DROP $$")", R"("$$; DROP $$")",
     R"("$$; DROP $$")", "'$$; DROP $$'", R"("$$; DROP $$")", "'$$; DROP $$'", "'$$; DROP $$'",
     R"("$$; DROP $$")"},
    {"ATerminalEscape", "\x1B[31m", R"("\u001b[31m")", R"("\u001b[31m")", R"("\u001b[31m")",
     "'\x1B[31m'", "\"\x1B[31m\"", R"('\x1b[31m')", "'\x1B[31m'", R"("\033[31m")"},
    {"ADirectionMark",
     "a\xE2\x80\xAE"
     "b",
     R"("a\u202eb")", R"("a\u202eb")", R"("a\u202eb")",
     "'a\xE2\x80\xAE"
     "b'",
     "\"a\xE2\x80\xAE"
     "b\"",
     R"('a\xe2\x80\xaeb')",
     "'a\xE2\x80\xAE"
     "b'",
     R"("a\342\200\256b")"},
    {"LettersStay", "Gen\xC3\xA8ve", "\"Gen\xC3\xA8ve\"", "\"Gen\xC3\xA8ve\"", "\"Gen\xC3\xA8ve\"",
     "'Gen\xC3\xA8ve'", "\"Gen\xC3\xA8ve\"", "'Gen\xC3\xA8ve'", "'Gen\xC3\xA8ve'",
     "\"Gen\xC3\xA8ve\""},
    {"AByteThatIsNoCharacter",
     "a\xFF"
     "b",
     R"("a\udcffb")", R"("a\xffb")",
     "\"a\xEF\xBF\xBD"
     "b\"",
     "'a\xFF"
     "b'",
     "\"a\xFF"
     "b\"",
     R"('a\xffb')",
     "'a\xFF"
     "b'",
     R"("a\377b")"},
};

class HostileTexts : public testing::TestWithParam<HostileCase> {};
TEST_P(HostileTexts, StayTexts) {
  const HostileCase& row = GetParam();
  EXPECT_EQ(python_text(row.text), row.python);
  EXPECT_EQ(r_text(row.text), row.r);
  EXPECT_EQ(json_text(row.text), row.json);
  EXPECT_EQ(sql_text(row.text), row.sql);
  EXPECT_EQ(sql_identifier(row.text), row.name);
  EXPECT_EQ(clickhouse_text(row.text), row.house);
  EXPECT_EQ(shell_text(row.text), row.shell);
  EXPECT_EQ(sqlite_argument(row.text), row.sqlite);
}
INSTANTIATE_TEST_SUITE_P(Table, HostileTexts, testing::ValuesIn(kHostileCases), ByRule());

TEST(EmitWords, HaveLiteralsForNulWhereTheLanguageHas) {
  const std::string nul("a\0b", 3);
  EXPECT_EQ(python_text(nul), R"("a\u0000b")");
  EXPECT_EQ(json_text(nul), R"("a\u0000b")");
  EXPECT_EQ(clickhouse_text(nul), R"('a\x00b')");
  EXPECT_THROW(r_text(nul), std::invalid_argument);
  EXPECT_THROW(sql_text(nul), std::invalid_argument);
  EXPECT_THROW(sql_identifier(nul), std::invalid_argument);
  EXPECT_THROW(shell_text(nul), std::invalid_argument);
  EXPECT_THROW(sqlite_argument(nul), std::invalid_argument);
}

TEST(EmitWords, QuoteNamesOfClickHouseWithBackQuotes) {
  EXPECT_EQ(clickhouse_name("a`; b"), "`a\\`; b`");
}

TEST(EmitWords, GiveTheTextBackFromEveryLiteral) {
  rc::check([](const std::string& drawn) {
    std::string text = drawn;
    std::erase(text, '\0');
    RC_ASSERT(read_backslash_literal(python_text(text), '"') == text);
    RC_ASSERT(read_backslash_literal(r_text(text), '"') == text);
    RC_ASSERT(read_backslash_literal(clickhouse_text(text), '\'') == text);
    RC_ASSERT(read_backslash_literal(sqlite_argument(text), '"') == text);
    RC_ASSERT(read_doubled_literal(sql_text(text), '\'') == text);
    RC_ASSERT(read_doubled_literal(sql_identifier(text), '"') == text);
    RC_ASSERT(read_shell_word(shell_text(text)) == text);
  });
}

TEST(EmitWords, KeepCommentsInOneLine) {
  EXPECT_EQ(comment_text("a\nb"),
            "a\xEF\xBF\xBD"
            "b");
}

struct EncodingCase {
  const char* rule;
  Codecs codecs;
  const char* encoding;
  const char* word;  // null: none
};
std::ostream& operator<<(std::ostream& out, const EncodingCase& row) { return out << row.rule; }

const EncodingCase kEncodingCases[] = {
    {"PythonHasCodePages", Codecs::python, "windows-1252", "cp1252"},
    {"PythonReadsShiftJisAsWindowsDoes", Codecs::python, "Shift_JIS", "cp932"},
    {"DuckDbKnowsLatin", Codecs::duckdb, "ISO-8859-1", "latin-1"},
    {"DuckDbKnowsNoCodePages", Codecs::duckdb, "windows-1252", nullptr},
    {"PostgresHasNamesOfItsOwn", Codecs::postgres, "windows-1251", "WIN1251"},
    {"PostgresReadsNoUtf16", Codecs::postgres, "UTF-16LE", nullptr},
    {"SomeKnowUtf8Alone", Codecs::utf8, "ISO-8859-1", nullptr},
    {"AsciiIsUtf8", Codecs::utf8, "US-ASCII", "utf-8"},
    {"SparkKnowsLatin", Codecs::spark, "ISO-8859-1", "ISO-8859-1"},
    {"SparkKnowsNoShiftJis", Codecs::spark, "Shift_JIS", nullptr},
    {"WhatNobodyListedIsUnknown", Codecs::python, "IBM037", nullptr},
};

class EncodingWords : public testing::TestWithParam<EncodingCase> {};
TEST_P(EncodingWords, AreThoseOfTheReader) {
  const EncodingCase& row = GetParam();
  const std::optional<std::string> word = encoding_word(row.codecs, row.encoding);
  EXPECT_EQ(word.value_or("-"), row.word == nullptr ? "-" : row.word);
}
INSTANTIATE_TEST_SUITE_P(Table, EncodingWords, testing::ValuesIn(kEncodingCases), ByRule());

}  // namespace
}  // namespace textio::tool
