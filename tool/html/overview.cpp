// In the groups the files are called by their numbers: the same path may be there twice.
#include "tool/html/overview.hpp"

#include <cstddef>

#include <fmt/format.h>

#include "tool/catalog/group_report.hpp"
#include "tool/catalog/grouping.hpp"
#include "tool/html/html_text.hpp"

namespace textio::tool {
namespace {

constexpr std::size_t kLongestPath = 300;  // characters
constexpr std::size_t kLongestSentence = 400;
constexpr std::size_t kMostColumns = 12;

Grouping grouping_of(const std::vector<PageFile>& files, double least_confidence) {
  Grouper grouper(least_confidence);
  for (std::size_t i = 0; i < files.size(); ++i) {
    CatalogRow row = files[i].problem.empty() ? files[i].row : failed_row({}, files[i].problem);
    row.path = std::to_string(i);
    grouper.add(std::move(row));
  }
  return grouper.finish();
}

class Overview {
 public:
  explicit Overview(const std::vector<PageFile>& files) : files_(files) {}

  std::string write(const Grouping& found) {
    out_ = fmt::format(
        "<nav class=\"overview\" aria-labelledby=\"overview\">\n<h2 id=\"overview\">Files by "
        "layout</h2>\n<p>{}.</p>\n",
        html(summary_words(found)));
    const std::size_t num_groups = num_large_groups(found);
    for (std::size_t i = 0; i < num_groups; ++i) add(found.groups[i]);
    add_singles(found, num_groups);
    add_files_without_tables(found);
    return std::move(out_) + "</nav>\n";
  }

 private:
  void add(const FileGroup& group) {
    out_ += fmt::format("<h3>{}</h3>\n", html_cut(layout_words(group.example), kLongestSentence));
    add_columns(group.example);
    out_ += "<ul>\n";
    for (const std::string& file : group.files) add_link(file, "");
    out_ += "</ul>\n";
    if (group.odd.empty()) return;
    out_ += "<p>Odd beside these:</p>\n<ul>\n";
    for (const OddFile& file : group.odd)
      add_link(file.path, fmt::format("{}", fmt::join(file.differences, ", ")));
    out_ += "</ul>\n";
  }

  void add_singles(const Grouping& found, std::size_t first) {
    if (first == found.groups.size()) return;
    out_ += "<h3>Unlike all others</h3>\n<ul>\n";
    for (std::size_t i = first; i < found.groups.size(); ++i)
      add_link(found.groups[i].files.front(), layout_words(found.groups[i].example));
    out_ += "</ul>\n";
  }

  void add_files_without_tables(const Grouping& found) {
    if (found.no_tables.empty()) return;
    out_ += "<h3>Without a table</h3>\n<ul>\n";
    for (const Remark& each : found.no_tables) add_link(each.path, each.text);
    out_ += "</ul>\n";
  }

  void add_columns(const CatalogRow& row) {
    if (row.columns.empty()) return;
    out_ += fmt::format("<p class=\"note\">Columns: <bdi>{}</bdi></p>\n",
                        html_cut(columns_words(row, kMostColumns), kLongestSentence));
  }

  // What is said of the file is the first thing after its path.
  void add_link(const std::string& number, const std::string& remark) {
    const std::size_t index = std::stoul(number);
    const PageFile& file = files_[index];
    out_ += fmt::format("<li><a href=\"#{}\"><bdi>{}</bdi></a>", anchor_of(index),
                        html_cut(file.path, kLongestPath));
    if (!remark.empty()) out_ += fmt::format(": <bdi>{}</bdi>", html_cut(remark, kLongestSentence));
    if (!file.confidence.empty()) out_ += fmt::format(", {} sure", html(file.confidence));
    if (file.is_doubtful) out_ += " <strong class=\"doubt\">doubtful</strong>";
    out_ += "</li>\n";
  }

  const std::vector<PageFile>& files_;
  std::string out_;
};

}  // namespace

std::string overview_html(const std::vector<PageFile>& files, double least_confidence) {
  return Overview(files).write(grouping_of(files, least_confidence));
}

}  // namespace textio::tool
