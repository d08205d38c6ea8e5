#include "python/cpp/layout_picture.hpp"

#include <stdexcept>

#include <sys/stat.h>

#include <vltextstream/layout/detect_input.hpp>
#include <vltextstream/reading/first_lines.hpp>
#include <vltextstream/text/utf8.hpp>

#include "python/cpp/layout_state.hpp"
#include "tool/html/layout_html.hpp"
#include "tool/html/picture_html.hpp"
#include "tool/showing/picture.hpp"

namespace textio::python {
namespace {

using reading::FileTop;
using standalone::DetectSettings;
using standalone::Layout;
using tool::kPictureRows;
using tool::Row;
using tool::Span;

constexpr std::size_t kMostKeptBytes = 16'384;

// None of a pipe, and of standard input.
std::optional<FileStamp> stamp_of(const std::string& path) {
  struct stat about {};
  if (path == "-" || ::stat(path.c_str(), &about) != 0 || !S_ISREG(about.st_mode))
    return std::nullopt;
  return FileStamp{static_cast<std::int64_t>(about.st_dev), static_cast<std::int64_t>(about.st_ino),
                   about.st_size, about.st_mtim.tv_sec, about.st_mtim.tv_nsec};
}

// One character more than is shown, so that it is seen to be cut.
void shorten(Span& span) {
  const bool is_line = span.role == tool::SpanRole::text;
  std::size_t left = (is_line ? tool::kLongestShownLine : tool::kLongestShownCell) + 1;
  std::size_t end = 0;
  for (; left > 0 && end < span.text.size(); --left)
    end += first_character(std::string_view(span.text).substr(end)).length;
  span.text.resize(end);
}

// Up to the first cell that is not shown.
void shorten(Row& row) {
  for (std::size_t i = 0; i < row.spans.size(); ++i) {
    shorten(row.spans[i]);
    const std::size_t column = row.spans[i].column;
    if (column != tool::kNoColumn && column >= tool::kMostShownCells) row.spans.resize(i + 1);
  }
}

std::string drawn(const FileTop& top) {
  std::optional<tool::Picture> picture = tool::picture_of(top);
  if (!picture) return {};
  for (Row& row : picture->rows) shorten(row);
  return state_of(*picture);
}

// As look_at_top: the layout is known, and lines that cannot be had are left out.
template <typename Read>
std::string drawn_from(const Layout& layout, Read read) {
  FileTop top;
  try {
    top.lines = read();
  } catch (const std::runtime_error&) {
    return {};
  }
  top.layout = layout;
  return drawn(top);
}

std::string drawn_from_bytes(std::string_view bytes, const Layout& layout,
                             const DetectSettings& settings) {
  return drawn_from(
      layout, [&] { return reading::first_lines_of_bytes(bytes, layout, settings, kPictureRows); });
}

}  // namespace

PictureSource::PictureSource(std::string drawn) : drawn_(std::move(drawn)) {}

PictureSource::PictureSource(std::string path, SharedDetectSettings settings)
    : path_(std::move(path)), settings_(std::move(settings)), stamp_(stamp_of(path_)) {}

PictureSource::PictureSource(std::string_view bytes, const Layout& layout,
                             SharedDetectSettings settings)
    : settings_(std::move(settings)) {
  if (bytes.size() <= kMostKeptBytes) {
    bytes_ = bytes;
  } else {
    drawn_ = drawn_from_bytes(bytes, layout, *settings_);
  }
}

// The file is asked again after it was read: nothing is shown of one that changed meanwhile.
std::string PictureSource::draw(const Layout& layout) const {
  if (!bytes_.empty()) return drawn_from_bytes(bytes_, layout, *settings_);
  if (!stamp_) return drawn_;
  if (stamp_of(path_) != stamp_) return {};
  std::string picture = drawn_from(
      layout, [&] { return reading::first_lines(path_, layout, *settings_, kPictureRows); });
  return stamp_of(path_) == stamp_ ? picture : std::string();
}

std::pair<Layout, PictureSource> detect_pictured(const std::string& path,
                                                 const SharedDetectSettings& settings) {
  PictureSource source(path, settings);
  if (source.has_file()) return {standalone::detect_layout(path, *settings), std::move(source)};
  FileTop top = reading::look_at_top(path, *settings, kPictureRows);
  source = PictureSource(drawn(top));
  return {std::move(top.layout), std::move(source)};
}

std::pair<Layout, PictureSource> detect_pictured_bytes(std::string_view bytes,
                                                       const SharedDetectSettings& settings) {
  standalone::InputText text(standalone::FileContent{bytes}, *settings);
  Layout layout = detect_input(text, *settings);
  PictureSource source(bytes, layout, settings);
  return {std::move(layout), std::move(source)};
}

std::string html_of(const std::string& path, const Layout& layout, const PictureSource& source) {
  const std::string drawn = source.draw(layout);
  std::optional<tool::Picture> picture;
  if (!drawn.empty()) picture = picture_of_state(drawn);
  return tool::layout_html(path, layout, picture);
}

}  // namespace textio::python
