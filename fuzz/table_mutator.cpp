// The mutator of the targets whose inputs are choices and a text (see choices.hpp): occasionally a
// new table, mostly a change of the present one, otherwise the fuzzer's own changes of bytes.
#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <string>

#include "fuzz/choices.hpp"
#include "fuzz/table_maker.hpp"

extern "C" std::size_t LLVMFuzzerMutate(std::uint8_t* data, std::size_t size, std::size_t most);
extern "C" std::size_t LLVMFuzzerCustomMutator(std::uint8_t* data, std::size_t size,
                                               std::size_t most, unsigned seed);

std::size_t LLVMFuzzerCustomMutator(std::uint8_t* data, std::size_t size, std::size_t most,
                                    unsigned seed) {
  using textio::fuzz::kChoiceBytes;
  textio::fuzz::TableMaker maker(seed);
  if (maker.one_in(3)) return LLVMFuzzerMutate(data, size, most);
  std::string choices(reinterpret_cast<const char*>(data), std::min(size, kChoiceBytes));
  choices.resize(kChoiceBytes);
  std::string table;
  if (size > kChoiceBytes) {
    table.assign(reinterpret_cast<const char*>(data) + kChoiceBytes, size - kChoiceBytes);
  }
  if (maker.one_in(4)) choices = maker.choices();
  if (maker.one_in(8)) table = maker.table();
  for (std::size_t changes = maker.below(4); changes > 0; --changes) maker.change(table);
  if (maker.one_in(4)) maker.add_noise(table);
  const std::string bytes = (choices + table).substr(0, most);
  std::copy(bytes.begin(), bytes.end(), data);
  return bytes.size();
}
