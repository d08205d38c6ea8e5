// Tables at random, and what must hold of each reading of a text: it equals the plain reference, and every line and
// byte is accounted for. Each check gives a text that describes the first difference, empty if there is none.
//
//   const RandomTable table = random_table(choose);
//   EXPECT_EQ(difference_from_reference(table, 256), "");
//   EXPECT_EQ(difference_in_reading(table.bytes, &table.layout, {}), "");
#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include <vltextstream/layout/layout.hpp>
#include <vltextstream/reading/table_reader.hpp>

namespace textio::differential {

// A number below the given one, which is at most 256; 0 is the ordinary choice.
using Choose = std::function<std::size_t(std::size_t bound)>;

// A text and the dialect that it was written in, mostly.
struct RandomTable {
  std::string bytes;    // UTF-8, perhaps with a byte-order mark
  std::u16string text;  // the same without the mark
  standalone::Layout layout;
};

RandomTable random_table(const Choose& choose);

// A layout that has nothing to do with any text.
standalone::Layout random_layout(const Choose& choose);

// Between a reading with all columns as text and the reference: rows, cells, fates.
std::string difference_from_reference(const RandomTable& table, std::size_t window);

// Some rules, so that nothing is an error.
reading::ReadSettings random_settings(const Choose& choose);

// Of the account and the batches of a reading: sums, runs, rows, arrays. Then of other windows, of two passes, and of
// several threads if these are wanted: they give the same. The layout is detected if there is none. ReadError and
// FileError are results like others.
struct ReadingChecks {
  reading::ReadSettings settings;
  bool with_threads = false;
};
std::string difference_in_reading(std::string_view bytes, const standalone::Layout* layout,
                                  const ReadingChecks& checks);

}  // namespace textio::differential
