// The page of --html as a whole: what is known of each file becomes a section, and several files have an overview.
//
//   std::string text = page_of({section_of("gauge.csv", 0, arguments)});
//
// The page needs nothing from elsewhere, and a browser obeys nothing on it but its own style sheet and script: the texts
// of the files can neither run nor fetch anything.
//
// Errors  std::bad_alloc.
#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include "tool/catalog/catalog_row.hpp"

namespace textio::tool {

struct PageFile {
  std::string path;

  // Why nothing is known of the file; otherwise empty.
  std::string problem;

  // As in a catalogue; for the overview.
  CatalogRow row;

  std::string confidence;  // "98 %"; empty if nothing was weighed
  bool is_doubtful = false;

  // HTML: what is below the heading with the path.
  std::string section;
};

// The place of the file in the page: "file-1" for the first.
std::string anchor_of(std::size_t index);

// Files that are less sure than this are counted as doubtful.
std::string page_of(const std::vector<PageFile>& files, double least_confidence = 0.5);

}  // namespace textio::tool
