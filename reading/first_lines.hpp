// first_lines: the first lines of a file as they are in it, and where the table reader cuts them into cells.
//
//   const FileTop top = look_at_top("gauge.csv", settings, 10);
//   top.layout.num_variables;       // 4
//   top.lines[5].fate;              // LineFate::names
//   top.lines[6].text;              // u"2024-01-01,143,12.8,good"
//   top.lines[6].cells[1];          // column 1, from 11 to 14
//
// What can be shown of a file without reading the table: all lines above it, its first rows, and the lines of its
// footer if the text ends within the sample. A row that goes on over several lines has a CutLine for each.
//
// Units      lines are numbered from 1, columns from 0; positions count code units of the line.
// Ownership  plain values without views. Bytes in memory are borrowed for the call.
// Errors     those of detect_layout. Where the layout is known, FileError when the file cannot be opened or read,
//            and ReadError for line endings with which no table is read.
// Cost       what detect_layout takes, and linear in the sampled text. No more of the file is read, and a pipe is
//            read once.
// Threads    calls are independent of one another.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include <vltextstream/host/export.hpp>
#include <vltextstream/layout/detect_layout.hpp>
#include <vltextstream/layout/layout.hpp>
#include <vltextstream/reading/account.hpp>

namespace textio::reading {

// A cell, without the quotes around it, or the part of it that is in a line.
struct VLTEXTSTREAM_EXPORT CutCell {
  std::size_t column = 0;
  std::size_t begin = 0;
  std::size_t end = 0;
  bool is_quoted = false;

  bool operator==(const CutCell&) const = default;
};

struct VLTEXTSTREAM_EXPORT CutLine {
  std::uint64_t number = 0;
  LineFate fate = LineFate::data;

  // Without its line ending; UTF-16 with surrogate pairs.
  std::u16string text;

  // Whether it is part of a row that began in a line above.
  bool is_continued = false;

  // In their order, which is that of the columns: of data, and of names and units if they have a cell for each
  // column.
  std::vector<CutCell> cells;
};

struct VLTEXTSTREAM_EXPORT FileTop {
  standalone::Layout layout;
  std::vector<CutLine> lines;
};

// Detects the layout of the file at `path`, and gives its lines up to the first `num_rows` rows of the table. No
// lines if the file cannot be opened or read again, or has other line endings.
VLTEXTSTREAM_EXPORT FileTop look_at_top(const std::string& path,
                                        const standalone::DetectSettings& settings,
                                        std::size_t num_rows);

// The lines of a file, or of its content, whose layout was detected with these settings.
VLTEXTSTREAM_EXPORT std::vector<CutLine> first_lines(const std::string& path,
                                                     const standalone::Layout& layout,
                                                     const standalone::DetectSettings& settings,
                                                     std::size_t num_rows);
VLTEXTSTREAM_EXPORT std::vector<CutLine> first_lines_of_bytes(
    std::string_view bytes, const standalone::Layout& layout,
    const standalone::DetectSettings& settings, std::size_t num_rows);

}  // namespace textio::reading
