// The help of the tool, made from its table of options.
#pragma once

#include <string>

namespace textio::tool {

// What --help prints, in lines of at most 79 characters.
std::string help_text();

}  // namespace textio::tool
