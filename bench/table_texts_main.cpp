// Writes a table of at least BYTES bytes to standard output: table_texts mixed|quoted BYTES.
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <iostream>
#include <optional>
#include <string>

#include "bench/table_texts.hpp"

int main(int argc, char** argv) {
  using textio::bench::TableKind;
  const std::optional<TableKind> kind =
      argc == 3 ? textio::bench::find_table(argv[1]) : std::nullopt;
  if (!kind) {
    std::cerr << "usage: table_texts mixed|quoted BYTES\n";
    return 2;
  }
  constexpr std::size_t kPiece = 1'000'000;
  const std::uint64_t bytes = std::strtoull(argv[2], nullptr, 10);
  textio::bench::TableText table(*kind);
  std::string text;
  for (std::uint64_t written = 0; written < bytes;) {
    text.clear();
    while (text.size() < kPiece && written + text.size() < bytes) table.append_row(text);
    if (std::fwrite(text.data(), 1, text.size(), stdout) != text.size()) {
      std::cerr << "table_texts: cannot write\n";
      return 1;
    }
    written += text.size();
  }
  return std::fflush(stdout) == 0 ? 0 : 1;
}
