#include "tool/html/layout_html.hpp"

#include <algorithm>
#include <string_view>

#include <fmt/format.h>

#include <vltextstream/text/utf8.hpp>

#include "tool/answers.hpp"
#include "tool/grouped.hpp"
#include "tool/html/html_text.hpp"
#include "tool/html/page_assets.hpp"
#include "tool/html/picture_html.hpp"
#include "tool/html/values_html.hpp"

namespace textio::tool {
namespace {

using standalone::Layout;

constexpr std::size_t kMostColumns = 50;  // of a fragment
constexpr std::size_t kLongestPath = 300;

std::string row_of_column(const ColumnWords& column, std::size_t number,
                          const std::string& values) {
  std::string details;
  for (const std::string& each : column.details) {
    if (!details.empty()) details += "; ";
    details += each;
  }
  return fmt::format(
      "<tr><td class=\"number\">{}</td><th scope=\"row\"><bdi>{}</bdi></th><td "
      "class=\"kind\">{}</td>"
      "<td><bdi>{}</bdi></td><td><bdi>{}</bdi></td>{}</tr>\n",
      number, column.name.empty() ? "<em>no name</em>" : html_cut(column.name, kLongestShownName),
      html(column.kind), html_cut(column.unit, kLongestShownName),
      html_cut(details, kLongestDetail), values);
}

// The answer of the judge, and what speaks for the next best one.
std::string confidence_note(const LayoutWords& words) {
  if (words.confidence.empty()) return {};
  std::string out = fmt::format("<p class=\"note\">{} sure", html(words.confidence));
  if (!words.rivals.empty())
    out += fmt::format("; next best answer: {}, {}",
                       html_cut(words.rivals.front().what, kLongestDetail),
                       html(words.rivals.front().percent));
  return out + ".</p>\n";
}

}  // namespace

std::string verdict_html(const Layout& layout, const LayoutWords& words) {
  if (!layout.no_table.empty())
    return fmt::format("<p class=\"verdict\">No table was found: <strong>{}</strong>.</p>\n",
                       html(words.no_table));
  return fmt::format(
      "<p class=\"verdict\">The table is <strong>{}</strong>, with {} column{}.</p>\n",
      html_cut(words.layout, kLongestDetail), grouped(layout.num_variables),
      layout.num_variables == 1 ? "" : "s");
}

std::string columns_html(const Layout& layout, const LayoutWords& words,
                         const std::vector<ColumnValues>& values) {
  std::string out = fmt::format(
      "<div class=\"scroll\" role=\"group\" aria-label=\"Columns\" tabindex=\"0\">\n"
      "<table class=\"columns\">\n<thead><tr><th scope=\"col\" class=\"number\">No.</th><th "
      "scope=\"col\">Name</th>"
      "<th scope=\"col\">Kind</th><th scope=\"col\">Unit</th><th scope=\"col\">Written</th>"
      "{}</tr></thead>\n<tbody>\n",
      values.empty() ? "" : "<th scope=\"col\">Values</th>");
  for (std::size_t i = 0; i < words.columns.size(); ++i) {
    std::string cell;
    if (!values.empty())
      cell = fmt::format("<td class=\"values\">{}</td>",
                         i < values.size() ? values_html(values[i]) : std::string());
    out += row_of_column(words.columns[i], i + 1, cell);
  }
  out += "</tbody>\n</table>\n</div>\n";
  if (words.columns.size() < layout.num_variables)
    out += fmt::format("<p class=\"note\">Of the {} columns the first {} are shown.</p>\n",
                       grouped(layout.num_variables), grouped(words.columns.size()));
  return out;
}

void complete_names(const Picture& picture, LayoutWords& words) {
  for (const Row& row : picture.rows) {
    if (row.role != RowRole::names) continue;
    for (const Span& span : row.spans) {
      if (span.role != SpanRole::name || span.column >= words.columns.size()) continue;
      std::string& name = words.columns[span.column].name;
      if (name.find(kReplacementUtf8) != std::string::npos) name = span.text;
    }
  }
}

std::string layout_html(const std::string& path, const Layout& layout,
                        const std::optional<Picture>& picture) {
  LayoutWords words = words_of(layout, kMostColumns, kind_without_table(layout));
  if (picture) complete_names(*picture, words);
  std::string out = fmt::format("<div class=\"vltext\">\n<style>{}</style>\n", kLayoutStyle);
  if (!path.empty())
    out += fmt::format("<p class=\"note\"><bdi>{}</bdi></p>\n", html_cut(path, kLongestPath));
  out += verdict_html(layout, words) + confidence_note(words);
  if (!words.encoding.empty())
    out += fmt::format("<p class=\"note\">Encoding: <bdi>{}</bdi></p>\n",
                       html_cut(words.encoding, kLongestDetail));
  if (picture) out += picture_html(*picture);
  if (layout.no_table.empty()) out += columns_html(layout, words, {});
  return out + "</div>\n";
}

}  // namespace textio::tool
