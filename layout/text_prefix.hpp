// TextPrefix: the first code units of a text, so that a detection need not load all of a large one.
//
//   std::size_t units = first_prefix_units(settings);
//   TextPrefix prefix = prefix_of(text, settings.options.line_endings, units);
//   prefix.text;        // what a detection looks at
//   prefix.is_sample;   // if not, it may have to look at prefix_of(..., units * kPrefixGrowth)
//
// The last of these prefixes is the sample, which get_fixed_stream gives. A detection over a prefix
// gives the answer of the sample if no line that it looked at reached the end of the prefix.
//
// Ownership  a view of the stream's buffer, valid until the stream loads more text.
// Errors     what the source or an allocation throws.
// Cost       loads twice as much text, and what fills the block of the stream in which that ends.
#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include <vltextstream/layout/detect_layout.hpp>
#include <vltextstream/source/text_stream.hpp>
#include <vltextstream/strategy/field.hpp>

namespace textio::standalone {

// The first prefix, which 100 lines of most tables leave far behind.
inline constexpr std::size_t kPrefixUnits = 65'536;

// The third prefix is the largest sample, and those before it add a seventh to its cost. A text that
// ends soon after one of them is taken as a whole, so that this is at most 9/16.
inline constexpr std::size_t kPrefixGrowth = 8;

struct TextPrefix {
  Field text;

  // Whether this is the sample, after which there is no longer prefix.
  bool is_sample = false;
};

// The first prefix for these settings: longer than kPrefixUnits where that cannot hold the lines.
std::size_t first_prefix_units(const DetectSettings& settings);

// The first `units` code units, at least 1, of the text of `stream`; the sample if the text has less
// than twice as many, or a U+FFFF, which may end it, among them.
TextPrefix prefix_of(const TextStream& stream, const std::vector<std::u16string>& line_endings,
                     std::size_t units);

}  // namespace textio::standalone
