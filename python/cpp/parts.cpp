#include "python/cpp/parts.hpp"

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstring>
#include <fstream>
#include <memory>
#include <optional>
#include <string_view>
#include <utility>

#include <fmt/format.h>

#include <vltextstream/host/file_layer.hpp>
#include <vltextstream/layout/file_error.hpp>
#include <vltextstream/layout/given_settings.hpp>
#include <vltextstream/reading/record_stream.hpp>
#include <vltextstream/reading/text_input.hpp>
#include <vltextstream/standalone/decoding/utf_text.hpp>

namespace textio::python {
namespace {

using reading::Batch;
using reading::Column;
using reading::ReadSettings;
using reading::TableReader;
using standalone::Layout;
using standalone::LayoutMode;

constexpr std::size_t kLeastWindow = 256;

constexpr std::array<std::string_view, 2> kPacked = {"\x1F\x8B", "\x28\xB5\x2F\xFD"};
constexpr std::array<std::string_view, 3> kMarks = {"\xEF\xBB\xBF", "\xFF\xFE", "\xFE\xFF"};

std::string bytes_at(std::ifstream& file, std::uint64_t byte) {
  std::array<char, 4> bytes{};
  file.clear();
  file.seekg(static_cast<std::streamoff>(byte));
  file.read(bytes.data(), bytes.size());
  return {bytes.data(), static_cast<std::size_t>(file.gcount())};
}

template <typename Texts>
bool begins_with_one_of(const std::string& bytes, const Texts& texts) {
  return std::any_of(texts.begin(), texts.end(),
                     [&](std::string_view text) { return bytes.starts_with(text); });
}

// At the start of a text these bytes would be a byte-order mark, or be unpacked.
bool may_begin_text(const std::string& bytes) {
  return !begins_with_one_of(bytes, kPacked) && !begins_with_one_of(bytes, kMarks);
}

char16_t quote_in(const std::string& path, const Layout& layout, const ReadSettings& settings) {
  reading::File file(open_file(standalone::from_utf8(path), "rb"));
  if (!file) {
    throw standalone::FileError(fmt::format("cannot open '{}': {}", path, std::strerror(errno)));
  }
  const reading::RecordStream stream(
      reading::TextInput(std::move(file), path, layout.encoding,
                         standalone::line_endings_of(settings.detect)),
      layout, settings);
  return stream.cutter().quote();
}

// The types of the columns; moments of any batch may have zones.
void note_types(const Batch& batch, std::vector<Column>& types) {
  types.resize(std::max(types.size(), batch.columns.size()));
  for (std::size_t c = 0; c < batch.columns.size(); ++c) {
    types[c].type = batch.columns[c].type;
    types[c].is_utc = types[c].is_utc || batch.columns[c].is_utc;
  }
}

}  // namespace

FileParts find_parts(const std::string& path, const Layout& layout, const ReadSettings& settings,
                     std::uint64_t least_bytes, const std::function<void(std::uint64_t)>& pause) {
  std::ifstream file(path, std::ios::binary);
  const bool can_part = layout.has_more_text && !begins_with_one_of(bytes_at(file, 0), kPacked);
  ReadSettings narrow = settings;
  narrow.window = std::max<std::size_t>(
      kLeastWindow,
      static_cast<std::size_t>(std::min<std::uint64_t>(settings.window, least_bytes)));
  FileParts parts;
  parts.begins.emplace_back();
  TableReader reader(path, layout, narrow);
  Batch types;
  bool has_rows = false;
  while (const std::optional<Batch> batch = reader.next()) {
    has_rows = true;
    note_types(*batch, types.columns);
    const std::uint64_t end = reader.account().num_bytes;
    const bool is_large = end - parts.begins.back().byte >= least_bytes;
    if (can_part && is_large && may_begin_text(bytes_at(file, end))) {
      parts.begins.push_back({end, reader.account().num_lines + 1});
    }
    pause(end);
  }
  parts.num_bytes = reader.account().num_bytes;
  for (const reading::OddPlace& place : reader.account().places) {
    if (place.oddity == reading::Oddity::widened) parts.widened.add(place);
  }
  if (parts.begins.size() > 1 && parts.begins.back().byte >= parts.num_bytes)
    parts.begins.pop_back();
  std::vector<SharedBatch> seen;
  if (has_rows) seen.push_back(std::make_shared<const Batch>(std::move(types)));
  parts.schema = schema_of(layout, reader.names(), seen, settings);
  if (parts.begins.size() > 1) parts.quote = quote_in(path, layout, settings);
  return parts;
}

Layout layout_of_part(const Layout& layout, char16_t quote, bool is_first, bool is_last) {
  Layout part = layout;
  if (layout.mode == LayoutMode::delimited && !layout.quote) part.quote = quote;
  part.has_more_text = true;
  if (!is_last) part.tail.reset();
  if (is_first) return part;
  part.lines.clear();
  part.header_lines = 0;
  part.names_line.reset();
  part.units_line.reset();
  part.descriptions_line.reset();
  return part;
}

}  // namespace textio::python
