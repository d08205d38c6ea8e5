// A layout on a page: the answer, the columns, and both with the picture as a fragment that needs no page around it.
//
//   std::string fragment = layout_html("gauge.csv", layout, picture_of(top));   // as a notebook shows it
//
// A fragment is a `div` of the class "vltext" with its style sheet, tool/html/layout.css. It has no script, fetches
// nothing, and looks well in light and dark surroundings.
//
// Errors  std::bad_alloc.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include <vltextstream/layout/layout.hpp>

#include "tool/html/column_values.hpp"
#include "tool/report.hpp"
#include "tool/showing/picture.hpp"

namespace textio::tool {

// Characters of the name of a column, and of a sentence.
inline constexpr std::size_t kLongestShownName = 80;
inline constexpr std::size_t kLongestDetail = 200;

// A paragraph: what the table is delimited by, or that there is none.
std::string verdict_html(const standalone::Layout& layout, const LayoutWords& words);

// A table of the columns in `words`. Without values it has no place for them.
std::string columns_html(const standalone::Layout& layout, const LayoutWords& words,
                         const std::vector<ColumnValues>& values);

// The names of the columns as the picture has them where they have characters outside the Basic Multilingual Plane, such
// as emojis, of which a layout has a replacement.
void complete_names(const Picture& picture, LayoutWords& words);

// The path may be empty.
std::string layout_html(const std::string& path, const standalone::Layout& layout,
                        const std::optional<Picture>& picture);

}  // namespace textio::tool
