#include <vltextstream/detection/fixed_stream.hpp>

#include <vltextstream/host/delimiter_set.hpp>
#include <vltextstream/strategy/search/marker_matcher.hpp>
#include <vltextstream/strategy/search/marker_search.hpp>

namespace textio {
namespace {

// The length of `text` up to and including the first code unit of its last line ending.
std::size_t length_to_last_line(const Field& text, const MarkerMatcher& line_endings) {
  MarkerSearch search(line_endings, text);
  for (std::size_t length = text.length; length > 0; --length) {
    if (search.length_at(length - 1) > 0) return length;
  }
  return 0;
}

}  // namespace

Field get_fixed_stream(const TextStream& stream, const std::vector<std::u16string>& line_endings) {
  if (stream.at(kSampleUnits) == TextStream::kEnd) {
    const unsigned long length = stream.find_first_pos_of(TextStream::kEnd, 0);
    return {stream.window_begin(), length};
  }
  const Field most(stream.window_begin(), kSampleUnits);
  return {most.data, length_to_last_line(most, MarkerMatcher(get_or_create_delim(line_endings)))};
}

}  // namespace textio
