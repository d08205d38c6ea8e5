// A grouping as text for people, and as JSON.
//
//   group_text(found, {})   // "5 files: 1 group, 3 odd ones\n\nGroup 1: 2 files, comma, UTF-8, 3 columns\n..."
//
// Text that files have is printable.
//
// Errors  std::bad_alloc.
#pragma once

#include <cstddef>
#include <string>

#include "tool/catalog/grouping.hpp"

namespace textio::tool {

struct GroupTextSettings {
  // Name all files, columns and groups, not the first of many.
  bool is_complete = false;

  // Only count the files that cannot be read, where they are complained of anyway.
  bool counts_failures_only = false;
};

std::string group_text(const Grouping& found, const GroupTextSettings& settings);

// Parts of the text, for those who arrange it otherwise.
std::string summary_words(const Grouping& found);  // "5 files: 1 group, 3 odd ones"
std::string layout_words(const CatalogRow& row);   // "comma, UTF-8, 3 columns"
std::string columns_words(const CatalogRow& row,
                          std::size_t most);  // "level (number, cm), day (date)"

// How many of the groups have several files; these come first.
std::size_t num_large_groups(const Grouping& found);

// The whole document, with the end of its last line.
std::string group_json(const Grouping& found);

}  // namespace textio::tool
