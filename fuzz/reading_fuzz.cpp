// A whole table that is read: every line and byte is accounted for, rows and columns are consistent, and windows and
// threads change nothing. See tests/differential/reading_comparison.hpp.
//
// The first 24 bytes are choices: how the bytes that follow are read (a detected layout, a layout of choices, or a table
// made of choices in place of the bytes), the encoding, the import rules.
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

#include <vltextstream/layout/file_error.hpp>
#include "differential/reading_comparison.hpp"
#include "fuzz/check.hpp"
#include "fuzz/input.hpp"

namespace textio::fuzz {
namespace {

constexpr std::size_t kReadingChoiceBytes = 24;
constexpr const char* kEncodings[] = {"UTF-8",    "windows-1252", "UTF-16LE",
                                      "UTF-16BE", "Shift_JIS",    "GB18030"};

void check_table_of_choices(Input& input, const differential::ReadingChecks& checks) {
  const differential::Choose choose = [&](std::size_t bound) { return input.below(bound); };
  const differential::RandomTable table = differential::random_table(choose);
  require_no_difference(differential::difference_from_reference(table, 256));
  require_no_difference(differential::difference_in_reading(table.bytes, &table.layout, checks));
}

void check_bytes(std::string_view bytes, Input& choices, bool is_detected,
                 const differential::ReadingChecks& checks) {
  if (is_detected)
    return require_no_difference(differential::difference_in_reading(bytes, nullptr, checks));
  standalone::Layout layout =
      differential::random_layout([&](std::size_t bound) { return choices.below(bound); });
  layout.encoding = choices.one_of(kEncodings);
  require_no_difference(differential::difference_in_reading(bytes, &layout, checks));
}

}  // namespace
}  // namespace textio::fuzz

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using namespace textio;
  fuzz::Input input(data, size);
  fuzz::Input choices(input.take(fuzz::kReadingChoiceBytes));
  const std::size_t kind = choices.below(4);
  differential::ReadingChecks checks;
  checks.with_threads = choices.below(32) == 31;
  checks.settings =
      differential::random_settings([&](std::size_t bound) { return choices.below(bound); });
  if (kind == 3) {
    fuzz::check_table_of_choices(input, checks);
  } else {
    fuzz::check_bytes(input.rest(), choices, kind == 0, checks);
  }
  return 0;
}
