// The picture of a layout: the first lines of its text, as the tool shows them.
//
//   const PictureSource source(path, settings);        // before the file is looked at
//   const Layout layout = detect_layout(path, *settings);
//   html_of(path, layout, source);                     // what a notebook shows
//   PictureSource(source.draw(layout));                // on another machine
//
// To draw a picture takes longer than a detection may be slowed down by. So that of a file is drawn when it is wanted, if
// the file is still what it was, and that of a few bytes from a copy of them. Of more bytes, and of a pipe, it is drawn at
// once. It is a text of this version of the library, and holds no more than is shown: at most 15 lines, their first cells,
// and the first characters of each.
//
// Ownership  bytes in memory are borrowed for the call; at most 16,384 are kept.
// Errors     std::invalid_argument for a picture that this version did not draw; std::bad_alloc. Lines that cannot be
//            read make an empty picture.
#pragma once

#include <array>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <utility>

#include <vltextstream/layout/detect_layout.hpp>
#include <vltextstream/layout/layout.hpp>

namespace textio::python {

using SharedDetectSettings = std::shared_ptr<const standalone::DetectSettings>;

// What tells a file that was replaced or changed.
using FileStamp = std::array<std::int64_t, 5>;

class PictureSource {
 public:
  // None.
  PictureSource() = default;

  // One that was drawn before; none if it is empty.
  explicit PictureSource(std::string drawn);

  // That of a file as it is now. None of what is no regular file.
  PictureSource(std::string path, SharedDetectSettings settings);

  // That of bytes whose layout was detected with these settings.
  PictureSource(std::string_view bytes, const standalone::Layout& layout,
                SharedDetectSettings settings);

  // Empty if there is none, or none any more.
  std::string draw(const standalone::Layout& layout) const;

  // Whether there is a file to draw it from.
  bool has_file() const { return stamp_.has_value(); }

 private:
  std::string drawn_;
  std::string path_;
  std::string bytes_;
  SharedDetectSettings settings_;
  std::optional<FileStamp> stamp_;
};

// A layout, and where its picture comes from. The errors are those of detect_layout.
std::pair<standalone::Layout, PictureSource> detect_pictured(const std::string& path,
                                                             const SharedDetectSettings& settings);
std::pair<standalone::Layout, PictureSource> detect_pictured_bytes(
    std::string_view bytes, const SharedDetectSettings& settings);

std::string html_of(const std::string& path, const standalone::Layout& layout,
                    const PictureSource& source);

}  // namespace textio::python
