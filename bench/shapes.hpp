// Texts of known shape for measuring detections. A text is the same in each run and on each
// machine. All are ASCII, except those with many first code units.
//
// Units  a size counts UTF-16 code units.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

#include <vltextstream/layout/detect_layout.hpp>

namespace textio::bench {

struct Shape {
  const char* name;

  // A text of `units` code units, or slightly less if it has whole lines only.
  std::u16string (*make)(std::size_t units);

  // Sets the options for a text of `units` code units; null if there are none.
  void (*set)(standalone::DetectSettings& settings, std::size_t units) = nullptr;
};

// Ordinary tables: narrow, regular (20 columns, four candidate characters), wide, quoted, aligned,
// fixed, dates, text, one long line, and a regular one in which all candidate characters occur.
const std::vector<Shape>& data_shapes();

// Texts unlike any table, each of which is a trap for some scan.
const std::vector<Shape>& adversarial_shapes();

// Texts with hostile options: markers that match almost everywhere, huge counts.
const std::vector<Shape>& option_shapes();

// The shape `name` of any list, null if there is none.
const Shape* find_shape(std::string_view name);

// A table of names and numbers, with letters throughout each line.
std::u16string names_table(std::size_t units);

// A quoted field of `pairs` doubled quotes.
std::u16string doubled_quotes(std::size_t pairs);

// The bytes of a text of code units below 256, one byte each.
std::string ascii_bytes(std::u16string_view text);

// The bytes of a text in UTF-16, little-endian, with a byte-order mark.
std::string utf16_bytes(std::u16string_view text);

}  // namespace textio::bench
