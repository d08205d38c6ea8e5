// Text from strangers on a page: names of files and columns, cells, messages.
//
//   html("<b>\"x\"</b>")            // "&lt;b&gt;&quot;x&quot;&lt;/b&gt;"
//   html_cut("a very long cell", 6) // "a very" and an ellipsis
//
// The result is safe between tags and in attributes with double quotes. What is ill-formed, invisible or would change
// the direction of the text around it is U+FFFD.
//
// Units   lengths count characters.
// Errors  std::bad_alloc.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace textio::tool {

std::string html(std::string_view text);

// At most `most` characters of the text, and an ellipsis if there are more; never within a letter with marks or an emoji.
std::string html_cut(std::string_view text, std::size_t most);

// The lines of a program: line breaks and tabs are kept.
std::string html_lines(std::string_view text);

}  // namespace textio::tool
