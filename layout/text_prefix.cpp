#include <vltextstream/layout/text_prefix.hpp>

#include <algorithm>

#include <vltextstream/detection/fixed_stream.hpp>
#include <vltextstream/source/unit_block.hpp>

namespace textio::standalone {
namespace {

// The most lines that have to be in a sample. Each has a code unit or a line ending.
std::size_t most_lines(const DetectSettings& settings) {
  const parser::options& options = settings.options;
  const std::size_t header = options.detect_header_lines ? 0 : options.header_lines;
  return std::min<std::size_t>(settings.num_lines, kSampleUnits) +
         std::min<std::size_t>(header, kSampleUnits);
}

bool is_end(char16_t unit) { return unit == TextStream::kEnd; }

bool has_end_mark(const char16_t* begin, const char16_t* end) {
  while (end - begin >= kBlockUnits && !any_in_block(begin, is_end)) begin += kBlockUnits;
  return std::any_of(begin, end, is_end);
}

}  // namespace

std::size_t first_prefix_units(const DetectSettings& settings) {
  const std::size_t lines = most_lines(settings);
  std::size_t units = kPrefixUnits;
  while (units < lines) units *= kPrefixGrowth;
  return units;
}

TextPrefix prefix_of(const TextStream& stream, const std::vector<std::u16string>& line_endings,
                     std::size_t units) {
  const bool is_shorter = units < kSampleUnits && !is_end(stream.at(2 * units - 1));
  const char16_t* const begin = stream.window_begin();
  if (!is_shorter || has_end_mark(begin, begin + units)) {
    return {get_fixed_stream(stream, line_endings), true};
  }
  return {Field(begin, units), false};
}

}  // namespace textio::standalone
