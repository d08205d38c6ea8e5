// A text that is loaded as a whole is looked at there. Of a larger file only its end is read, if it can
// go there at once.
#include <vltextstream/layout/beyond_sample.hpp>

#include <algorithm>
#include <cmath>

namespace textio::standalone {
namespace {

using assessment::from_next_line;
using assessment::TableProfile;

// A read from here on is one of whole blocks of a C stream.
constexpr std::uint64_t kBlockBytes = 8192;

// The longest character of an encoding is a divisor of this.
constexpr std::uint64_t kAlignment = 4;

std::size_t lines_looked_at(const Layout& layout) {
  return layout.lines.empty() ? 0 : layout.lines.back().last_line;
}

// `times` is how many times as long as the sample the text is.
void estimate_lines(double times, Layout& layout) {
  const auto looked_at = static_cast<double>(lines_looked_at(layout));
  const auto lines = static_cast<std::uint64_t>(std::llround(looked_at * std::max(times, 1.0)));
  layout.lines_estimated = std::max<std::uint64_t>(lines, lines_looked_at(layout) + 1);
}

// Whether there is more of the text to look at.
bool goes_on(Layout& layout) {
  if (layout.has_more_text) return layout.characters_sampled > 0;
  layout.lines_estimated = lines_looked_at(layout);
  return false;
}

TailLook tail_of(std::u16string_view text, const TableProfile& profile, bool follows_data) {
  const assessment::EndFooter footer = assessment::footer_at_end(text, profile, follows_data);
  TailLook tail;
  tail.footer_lines = footer.num_lines;
  tail.characters = footer.num_units;
  for (const std::u16string_view line : footer.lines) {
    if (tail.footer.size() == TailLook::kMostTexts) break;
    tail.footer.emplace_back(assessment::trimmed(line).substr(0, TailLook::kLongestText));
  }
  return tail;
}

bool wants_tail(const DetectSettings& settings, const Layout& layout) {
  return settings.look_at_end && layout.no_table.empty();
}

// The bytes from which on the end is read: those after the sample, which ends about at `sampled`, if the
// file ends soon after it.
std::uint64_t tail_begin(std::uint64_t size, std::uint64_t sampled) {
  const std::uint64_t first = size - std::min<std::uint64_t>(size, kTailBytes);
  const std::uint64_t begin = (first + kBlockBytes - 1) / kBlockBytes * kBlockBytes;
  if (begin > sampled) return begin;
  // One character before the end of the sample is its line ending.
  return (sampled - std::min(sampled, kAlignment)) / kAlignment * kAlignment;
}

void look_at_end_of_file(InputText& input, std::uint64_t size, std::uint64_t sampled,
                         const TableProfile& profile, const DetectSettings& settings,
                         Layout& layout) {
  const std::uint64_t begin = tail_begin(size, sampled);
  const std::uint64_t read = input.bytes_loaded();
  if (begin >= size || size - begin > settings.max_bytes - std::min(read, settings.max_bytes))
    return;
  const auto count = static_cast<std::size_t>(size - begin);
  const std::optional<std::u16string> text = input.end_from(begin, count);
  if (!text) return;
  layout.tail = tail_of(from_next_line(*text), profile, false);
  layout.tail->bytes = count;
}

}  // namespace

void look_beyond_sample(std::u16string_view text, const TableProfile& profile,
                        const DetectSettings& settings, Layout& layout) {
  if (!goes_on(layout)) return;
  const std::size_t sampled = layout.characters_sampled;
  estimate_lines(static_cast<double>(text.size()) / static_cast<double>(sampled), layout);
  if (!wants_tail(settings, layout)) return;
  std::u16string_view rest = text.substr(sampled);
  const bool follows_data = rest.size() <= kTailBytes;
  if (!follows_data) rest = from_next_line(rest.substr(rest.size() - kTailBytes));
  layout.tail = tail_of(rest, profile, follows_data);
}

void look_beyond_sample(InputText& input, const TableProfile& profile,
                        const DetectSettings& settings, Layout& layout) {
  const std::u16string_view loaded = input.loaded();
  if (input.is_all_loaded()) return look_beyond_sample(loaded, profile, settings, layout);
  if (!goes_on(layout)) return;
  const std::optional<std::uint64_t> size = input.num_bytes();
  if (!size || loaded.empty() || *size <= input.bytes_loaded()) return;
  const double sampled = static_cast<double>(layout.characters_sampled) *
                         static_cast<double>(input.bytes_loaded()) /
                         static_cast<double>(loaded.size());
  estimate_lines(static_cast<double>(*size) / sampled, layout);
  if (!wants_tail(settings, layout)) return;
  look_at_end_of_file(input, *size, static_cast<std::uint64_t>(sampled), profile, settings, layout);
}

}  // namespace textio::standalone
