// A large file in parts that can be read apart from one another: each begins where a record begins.
//
//   const FileParts parts = find_parts("large.csv", layout, settings, 64'000'000, obey_signals);
//   parts.begins;                                   // {{0, 1}, {64'012'345, 800'123}, ...}
//   layout_of_part(layout, quote, false, true);     // of the last one
//
// One pass over the file finds the places and the types of all columns, by the code that reads tables: a line ending within
// quotes is no border, whatever the quotes before it look like.
#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <string>
#include <vector>

#include <vltextstream/layout/layout.hpp>
#include <vltextstream/reading/account.hpp>
#include <vltextstream/reading/table_reader.hpp>

#include "python/cpp/table_data.hpp"

namespace textio::python {

struct PartBegin {
  std::uint64_t byte = 0;
  std::uint64_t line = 1;
};

struct FileParts {
  std::vector<PartBegin> begins;  // at least one
  SharedSchema schema;            // of the whole file
  std::uint64_t num_bytes = 0;

  // The cells that widened columns, and nothing else.
  reading::Account widened;

  // What quotes cells in all parts; U+0000: nothing does.
  char16_t quote = 0;
};

// The file at `path`, in parts of at least `least_bytes`; what is compressed is one part. `pause` is called now and then
// with the number of bytes that were read, and may throw.
FileParts find_parts(const std::string& path, const standalone::Layout& layout,
                     const reading::ReadSettings& settings, std::uint64_t least_bytes,
                     const std::function<void(std::uint64_t)>& pause);

// The layout to read a part by: only the first has lines above the data, only the last may have a footer.
standalone::Layout layout_of_part(const standalone::Layout& layout, char16_t quote, bool is_first,
                                  bool is_last);

}  // namespace textio::python
