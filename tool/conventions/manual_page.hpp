// The manual page of the tool, vltext(1), in the language of man(7).
//
//   std::string page = manual_page(command_table());
//
// Errors  std::bad_alloc.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "tool/conventions/command_table.hpp"

namespace textio::tool {

std::string manual_page(const std::vector<CommandEntry>& commands);

// A text as it must be written there: hyphens that can be copied, and no line that is a request.
std::string in_roff(std::string_view text);

}  // namespace textio::tool
