// Texts of known shape to measure detections with. Every text is the same on each run and on each
// machine, and all of them are ASCII but those of many first units and the one of two-byte
// characters.
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

  // A text of `units` units, or a little less where only whole lines fit.
  std::u16string (*make)(std::size_t units);

  // Sets the options that belong to a text of `units` units; null when there are none.
  void (*set)(standalone::DetectSettings& settings, std::size_t units) = nullptr;
};

// Tables as people keep them: narrow, regular (20 columns, four candidate characters), wide,
// quoted, aligned, fixed, dates, text, one long line, and a regular one in which all candidate
// characters occur.
const std::vector<Shape>& data_shapes();

// Texts that no table looks like, each a trap for some scan.
const std::vector<Shape>& adversarial_shapes();

// Texts with options that are as hostile: markers made to match almost everywhere, huge counts.
const std::vector<Shape>& option_shapes();

// The shape called `name` of any list, null when there is none.
const Shape* find_shape(std::string_view name);

// A table of names and numbers in which letters stand close together all over the line.
std::u16string names_table(std::size_t units);

// A quoted field of `pairs` doubled quotes.
std::u16string doubled_quotes(std::size_t pairs);

// The bytes of a text of units below 256, one byte each.
std::string ascii_bytes(std::u16string_view text);

// The bytes of a text in UTF-16, little end first, with a byte-order mark.
std::string utf16_bytes(std::u16string_view text);

}  // namespace textio::bench
