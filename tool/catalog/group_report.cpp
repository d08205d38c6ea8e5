#include "tool/catalog/group_report.hpp"

#include <algorithm>
#include <limits>

#include <fmt/format.h>

#include <vltextstream/version.hpp>

#include "tool/catalog/fingerprint.hpp"
#include "tool/grouped.hpp"
#include "tool/json_writer.hpp"
#include "tool/safe_text.hpp"

namespace textio::tool {
namespace {

using Words = std::vector<std::string>;

// How much of each list is shown.
constexpr std::size_t kMostGroups = 20;
constexpr std::size_t kMostColumns = 8;
constexpr std::size_t kMostFiles = 3;
constexpr std::size_t kMostRemarks = 20;

constexpr std::size_t kEverything = std::numeric_limits<std::size_t>::max();

// "1 file", "1,200 files"
std::string counted(std::size_t count, const std::string& noun) {
  return grouped(count) + ' ' + noun + (count == 1 ? "" : "s");
}

// "a, b and 12 more"
std::string first_of(const Words& words, std::size_t most) {
  const std::size_t shown = std::min(words.size(), most);
  std::string text = fmt::format(
      "{}", fmt::join(words.begin(), words.begin() + static_cast<std::ptrdiff_t>(shown), ", "));
  if (shown < words.size()) text += fmt::format(" and {} more", grouped(words.size() - shown));
  return text;
}

// "level (number, cm)"; a column without a name has its place.
std::string column_words(const CatalogColumn& column, std::size_t place) {
  const std::string name =
      column.name.empty() ? fmt::format("column {}", place + 1) : printable(column.name);
  const std::string unit = column.unit.empty() ? "" : ", " + printable(column.unit);
  return fmt::format("{} ({}{})", name, family_of(column.kind), unit);
}

}  // namespace

// What a reader would not expect is said, and what separates the fields.
std::string layout_words(const CatalogRow& row) {
  Words words = {printable(separator_words(row)), printable(row.encoding)};
  if (row.has_byte_order_mark) words.emplace_back("byte order mark");
  if (!row.decimal.empty() && row.decimal != ".") words.push_back(printable(decimal_words(row)));
  if (row.line_ending != "\n") words.push_back(line_ending_word(row) + " line endings");
  if (row.header_lines > 0) words.push_back(counted(row.header_lines, "header line"));
  words.push_back(counted(row.columns.size(), "column"));
  return fmt::format("{}", fmt::join(words, ", "));
}

std::string columns_words(const CatalogRow& row, std::size_t most) {
  Words columns;
  for (std::size_t i = 0; i < row.columns.size(); ++i)
    columns.push_back(column_words(row.columns[i], i));
  return first_of(columns, most);
}

std::size_t num_large_groups(const Grouping& found) {
  const auto is_single = [](const FileGroup& group) { return group.files.size() == 1; };
  const auto end = std::find_if(found.groups.begin(), found.groups.end(), is_single);
  return static_cast<std::size_t>(end - found.groups.begin());
}

std::string summary_words(const Grouping& found) {
  const std::size_t num_groups = num_large_groups(found);
  std::size_t num_odd = 0;
  for (const FileGroup& group : found.groups) num_odd += group.odd.size();
  Words parts = {counted(num_groups, "group")};
  const std::size_t num_singles = found.groups.size() - num_groups;
  if (num_singles > 0) parts.push_back(grouped(num_singles) + " unlike all others");
  if (num_odd > 0) parts.push_back(counted(num_odd, "odd one"));
  if (!found.doubtful.empty()) parts.push_back(grouped(found.doubtful.size()) + " doubtful");
  if (!found.no_tables.empty())
    parts.push_back(grouped(found.no_tables.size()) + " without a table");
  if (!found.failures.empty()) parts.push_back(grouped(found.failures.size()) + " not read");
  return fmt::format("{}: {}", counted(found.num_files, "file"), fmt::join(parts, ", "));
}

namespace {

class TextReport {
 public:
  TextReport(const Grouping& found, const GroupTextSettings& settings)
      : found_(found), settings_(settings), num_groups_(num_large_groups(found)) {}

  std::string text() {
    text_ = summary_words(found_) + '\n';
    const std::size_t shown = std::min(num_groups_, most(kMostGroups));
    for (std::size_t i = 0; i < shown; ++i) add_group(i);
    if (shown < num_groups_) {
      const std::size_t left = num_groups_ - shown;
      text_ +=
          fmt::format("\n{} more with at most {} each; --verbose shows them\n",
                      counted(left, "group"), counted(found_.groups[shown].files.size(), "file"));
    }
    add_remarks("Unlike all others:", singles());
    add_remarks("Doubtful:", doubts());
    add_remarks("Without a table:", texts_of(found_.no_tables));
    if (!settings_.counts_failures_only) add_remarks("Not read:", texts_of(found_.failures));
    return std::move(text_);
  }

 private:
  std::size_t most(std::size_t usual) const { return settings_.is_complete ? kEverything : usual; }

  void add_group(std::size_t index) {
    const FileGroup& group = found_.groups[index];
    text_ += fmt::format("\nGroup {}: {}, {}\n", index + 1, counted(group.files.size(), "file"),
                         layout_words(group.example));
    if (!group.example.columns.empty())
      text_ += "  columns  " + columns_words(group.example, most(kMostColumns)) + '\n';
    Words files;
    for (const std::string& path : group.files) files.push_back(printable(path));
    text_ += "  files    " + first_of(files, most(kMostFiles)) + '\n';
    Words odd;
    for (const OddFile& file : group.odd) {
      odd.push_back(fmt::format("{}: {}", printable(file.path),
                                printable(fmt::format("{}", fmt::join(file.differences, ", ")))));
    }
    add_lines("  odd      ", odd);
  }

  Words singles() const {
    Words lines;
    for (std::size_t i = num_groups_; i < found_.groups.size(); ++i) {
      const FileGroup& group = found_.groups[i];
      lines.push_back(
          fmt::format("{}: {}", printable(group.files.front()), layout_words(group.example)));
    }
    return lines;
  }

  Words doubts() const {
    Words lines;
    for (const DoubtfulFile& file : found_.doubtful) {
      lines.push_back(fmt::format("{}: {} % sure", printable(file.path),
                                  static_cast<int>(file.confidence * 100)));
    }
    return lines;
  }

  static Words texts_of(const std::vector<Remark>& remarks) {
    Words lines;
    for (const Remark& each : remarks)
      lines.push_back(printable(each.path) + ": " + printable(each.text));
    return lines;
  }

  void add_remarks(std::string_view heading, const Words& lines) {
    if (lines.empty()) return;
    text_ += fmt::format("\n{}\n", heading);
    add_lines("  ", lines);
  }

  // The first line follows `heading`, the others blanks.
  void add_lines(std::string heading, const Words& lines) {
    const std::size_t shown = std::min(lines.size(), most(kMostRemarks));
    for (std::size_t i = 0; i < shown; ++i) {
      text_ += heading + lines[i] + '\n';
      heading.assign(heading.size(), ' ');
    }
    if (shown < lines.size()) {
      text_ += fmt::format("{}and {} more; --verbose names them\n", heading,
                           grouped(lines.size() - shown));
    }
  }

  const Grouping& found_;
  const GroupTextSettings& settings_;
  std::size_t num_groups_;
  std::string text_;
};

void write_group(JsonWriter& json, const FileGroup& group) {
  json.begin_object();
  write_common_members(json, group.example);
  json.member("files", group.files);
  json.key("odd");
  json.array(group.odd, [&](const OddFile& file) {
    json.begin_object();
    json.member("path", file.path);
    json.member("differences", file.differences);
    json.end_object();
  });
  json.end_object();
}

void write_remarks(JsonWriter& json, std::string_view key, std::string_view name,
                   const std::vector<Remark>& remarks) {
  json.key(key);
  json.array(remarks, [&](const Remark& each) {
    json.begin_object();
    json.member("path", each.path);
    json.member(name, each.text);
    json.end_object();
  });
}

}  // namespace

std::string group_text(const Grouping& found, const GroupTextSettings& settings) {
  return TextReport(found, settings).text();
}

std::string group_json(const Grouping& found) {
  std::string text;
  JsonWriter json(text);
  json.begin_object();
  json.member("catalog", kCatalogVersion);
  json.member("version", libvltextstream_version);
  json.member("num_files", found.num_files);
  json.key("groups");
  json.array(found.groups, [&](const FileGroup& group) { write_group(json, group); });
  json.key("doubtful");
  json.array(found.doubtful, [&](const DoubtfulFile& file) {
    json.begin_object();
    json.member("path", file.path);
    json.member("confidence", file.confidence);
    json.end_object();
  });
  write_remarks(json, "no_table", "no_table", found.no_tables);
  write_remarks(json, "errors", "error", found.failures);
  json.end_object();
  return text += '\n';
}

}  // namespace textio::tool
