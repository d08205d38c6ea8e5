// TableMaker: the bytes of inputs that contain tables, made or changed as a whole, so that a fuzzer
// need not find the grammar of tables first.
//
//   TableMaker maker(seed);
//   std::string choices = maker.choices();     // kChoiceBytes bytes
//   std::string table = maker.table();         // rows and columns, a preamble, comments, ...
//   maker.change(table);                       // another line, another delimiter, ...
//
// Equal seeds make equal bytes on every machine.
#pragma once

#include <cstddef>
#include <cstdint>
#include <random>
#include <string>
#include <string_view>
#include <vector>

namespace textio::fuzz {

class TableMaker {
 public:
  explicit TableMaker(std::uint32_t seed) : random_(seed) {}

  std::size_t below(std::size_t bound) { return random_() % bound; }
  bool one_in(std::size_t n) { return below(n) == 0; }

  // The choices of a caller, mostly the defaults.
  std::string choices();

  std::string table();

  // One change of the lines, the fields or the separators.
  void change(std::string& table);

  // Inserts, removes and exchanges single bytes.
  void add_noise(std::string& bytes);

 private:
  using Lines = std::vector<std::string>;

  template <typename T, std::size_t N>
  const T& one_of(const T (&list)[N]) {
    return list[below(N)];
  }

  std::string cell(std::size_t kind);
  std::string row(const std::vector<std::size_t>& kinds, const std::string& delimiter,
                  std::size_t width);
  void change_lines(Lines& lines);
  void change_fields(std::string& line);
  char delimiter_in(const std::string& line);

  std::mt19937 random_;
};

}  // namespace textio::fuzz
