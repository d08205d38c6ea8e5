// A grouping as text for people, and as JSON.
//
//   group_text(found, {})   // "5 files: 1 group, 3 odd ones\n\nGroup 1: 2 files, comma, UTF-8, 3 columns\n..."
//
// Text that files have is printable.
//
// Errors  std::bad_alloc.
#pragma once

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

// The whole document, with the end of its last line.
std::string group_json(const Grouping& found);

}  // namespace textio::tool
