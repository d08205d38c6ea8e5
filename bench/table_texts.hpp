// Large tables for measuring how they are read, row by row, so that a text of any size needs no memory.
//
//   TableText table(*find_table("mixed"));
//   std::string text;
//   while (text.size() < 1'000'000) table.append_row(text);   // the names come first
//
// A table is the same in each run and on each machine. UTF-8, commas, lines that end with "\n".
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace textio::bench {

enum class TableKind : std::uint8_t {
  mixed,  // 20 columns: integers, reals, dates, moments, truth values and texts; few of them missing
  quoted,  // 6 columns: an integer and quoted texts, with doubled quotes and line breaks
};

// The kind of this name; none if there is no such kind.
std::optional<TableKind> find_table(std::string_view name);

class TableText {
 public:
  explicit TableText(TableKind kind) : kind_(kind) {}

  // Appends the line of the names, and from then on a row with its line ending.
  void append_row(std::string& out);

 private:
  std::uint64_t random();
  std::uint64_t below(std::uint64_t limit) { return random() % limit; }
  void append_mixed(std::string& out);
  void append_quoted(std::string& out);
  void append_words(std::string& out, std::size_t count);

  TableKind kind_;
  std::uint64_t state_ = 20'261'122;
  std::uint64_t row_ = 0;
};

// A table of at least this many bytes; its last row is complete.
std::string table_text(TableKind kind, std::size_t bytes);

}  // namespace textio::bench
