// What a table is read from, and its layout.
//
//   Opened opened = detected({path, std::nullopt}, settings);
//   File file = opened.file ? std::move(opened.file) : opened.source.open();   // at its start
//
// Ownership  bytes in memory are borrowed.
// Errors     FileError when the source cannot be opened or read; those of detect_layout.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <utility>

#include <vltextstream/layout/detect_layout.hpp>
#include <vltextstream/layout/layout.hpp>
#include <vltextstream/reading/text_input.hpp>

namespace textio::reading {

// A file, or bytes.
struct Source {
  std::string path;
  std::optional<std::string_view> bytes;

  // As messages call it.
  std::string name() const;

  File open() const;

  // Whether it can be opened a second time.
  bool is_repeatable() const;
};

// A source and its layout; of a pipe, the file that was opened to detect it, which keeps what was read.
struct Opened {
  explicit Opened(Source from) : source(std::move(from)) {}
  Opened(Source from, const standalone::Layout& known) : source(std::move(from)), layout(known) {}

  Source source;
  standalone::Layout layout;
  File file;
};

Opened detected(Source source, const standalone::DetectSettings& settings);

}  // namespace textio::reading
