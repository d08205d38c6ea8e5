// The classes are visited from the largest to the smallest, so each meets the groups that it may be odd in.
#include "tool/catalog/grouping.hpp"

#include <algorithm>
#include <map>
#include <numeric>
#include <optional>

#include <fmt/format.h>

#include "tool/catalog/fingerprint.hpp"

namespace textio::tool {
namespace {

constexpr std::size_t kLargestShare = 10;      // of a class that is odd: a tenth
constexpr std::size_t kMostNames = 3;          // of missing columns
constexpr std::size_t kMostColumnRemarks = 3;  // about single columns

using Words = std::vector<std::string>;
using Counts = std::map<std::string, std::size_t>;

// ---------------------------------------------------------------------------------------------
// Words

struct Named {
  std::string_view text;
  std::string_view name;
};
constexpr Named kDelimiterNames[] = {
    {",", "comma"}, {";", "semicolon"}, {"\t", "tab"}, {" ", "blank"}, {"|", "bar"}, {":", "colon"},
};

std::string delimiter_name(const std::string& delimiter) {
  for (const Named& each : kDelimiterNames) {
    if (each.text == delimiter) return std::string(each.name);
  }
  return '\'' + delimiter + '\'';
}

std::string quote_of(const CatalogRow& row) { return row.quote.empty() ? "\"" : row.quote; }

std::string decimal_of(const CatalogRow& row) { return row.decimal.empty() ? "." : row.decimal; }

// "a column", "2 columns"
std::string counted_columns(std::size_t count) {
  return count == 1 ? "a column" : fmt::format("{} columns", count);
}

std::string or_none(const std::string& text) { return text.empty() ? "none" : text; }

// ---------------------------------------------------------------------------------------------
// Columns

bool has_names(const CatalogRow& row) {
  return std::any_of(row.columns.begin(), row.columns.end(),
                     [](const CatalogColumn& column) { return !column.name.empty(); });
}

Counts names_of(const CatalogRow& row) {
  Counts names;
  for (const CatalogColumn& column : row.columns) ++names[column.name];
  return names;
}

// The names in `row` that are not in `other`, in their order.
Words names_only_in(const CatalogRow& row, const CatalogRow& other) {
  Counts left = names_of(other);
  Words names;
  for (const CatalogColumn& column : row.columns) {
    const auto found = left.find(column.name);
    const bool is_there = found != left.end() && found->second > 0;
    if (is_there) --found->second;
    if (!is_there && !column.name.empty()) names.push_back(column.name);
  }
  return names;
}

std::size_t columns_in_common(const CatalogRow& a, const CatalogRow& b) {
  std::size_t count = 0;
  if (has_names(a) && has_names(b)) {
    const Counts in_b = names_of(b);
    for (const auto& [name, in_a] : names_of(a)) {
      const auto found = in_b.find(name);
      if (found != in_b.end() && !name.empty()) count += std::min(in_a, found->second);
    }
    return count;
  }
  for (std::size_t i = 0; i < std::min(a.columns.size(), b.columns.size()); ++i) {
    if (family_of(a.columns[i].kind) == family_of(b.columns[i].kind)) ++count;
  }
  return count;
}

bool share_half_of_their_columns(const CatalogRow& a, const CatalogRow& b) {
  return 2 * columns_in_common(a, b) >= std::max(a.columns.size(), b.columns.size());
}

void add_number_of_columns(const CatalogRow& odd, const CatalogRow& usual, Words& found) {
  const std::size_t has = odd.columns.size();
  const std::size_t wants = usual.columns.size();
  if (has == wants) return;
  const bool is_less = has < wants;
  std::string words =
      is_less ? counted_columns(wants - has) + " less" : counted_columns(has - wants) + " more";
  if (has_names(odd) && has_names(usual)) {
    Words names = is_less ? names_only_in(usual, odd) : names_only_in(odd, usual);
    const bool are_all = names.size() <= kMostNames;
    names.resize(std::min(names.size(), kMostNames));
    if (!names.empty()) {
      words += fmt::format(" ({}{})", fmt::join(names, ", "), are_all ? "" : ", ...");
    }
  }
  found.push_back(std::move(words));
}

// What is said of a column that both have.
void add_column(const std::string& name, const CatalogColumn& odd, const CatalogColumn& usual,
                Words& found) {
  if (odd.unit != usual.unit) {
    found.push_back(
        fmt::format("unit of {}: {}, not {}", name, or_none(odd.unit), or_none(usual.unit)));
  }
  const std::string_view has = family_of(odd.kind);
  const std::string_view wants = family_of(usual.kind);
  if (has != wants) found.push_back(fmt::format("{}: {}, not {}", name, has, wants));
}

void add_columns_by_name(const CatalogRow& odd, const CatalogRow& usual, Words& found) {
  for (const CatalogColumn& column : usual.columns) {
    if (column.name.empty()) continue;
    const auto same =
        std::find_if(odd.columns.begin(), odd.columns.end(),
                     [&](const CatalogColumn& each) { return each.name == column.name; });
    if (same != odd.columns.end()) add_column(column.name, *same, column, found);
  }
}

void add_columns_by_place(const CatalogRow& odd, const CatalogRow& usual, Words& found) {
  for (std::size_t i = 0; i < std::min(odd.columns.size(), usual.columns.size()); ++i) {
    add_column(fmt::format("column {}", i + 1), odd.columns[i], usual.columns[i], found);
  }
}

// Of tables with names and the same number of columns.
void add_names(const CatalogRow& odd, const CatalogRow& usual, Words& found) {
  const bool has_same_names = names_of(odd) == names_of(usual);
  for (std::size_t i = 0; i < usual.columns.size(); ++i) {
    const std::string& has = odd.columns[i].name;
    const std::string& wants = usual.columns[i].name;
    if (has == wants) continue;
    if (has_same_names) {
      found.emplace_back("columns in another order");
      return;
    }
    found.push_back(
        fmt::format("column {} is named {}, not {}", i + 1, or_none(has), or_none(wants)));
  }
}

void add_single_columns(const CatalogRow& odd, const CatalogRow& usual, Words& found) {
  Words remarks;
  const bool has_both_names = has_names(odd) && has_names(usual);
  if (has_both_names && odd.columns.size() == usual.columns.size()) add_names(odd, usual, remarks);
  if (has_both_names) {
    add_columns_by_name(odd, usual, remarks);
  } else {
    add_columns_by_place(odd, usual, remarks);
  }
  const std::size_t num_shown = std::min(remarks.size(), kMostColumnRemarks);
  found.insert(found.end(), remarks.begin(),
               remarks.begin() + static_cast<std::ptrdiff_t>(num_shown));
  if (remarks.size() > num_shown) {
    found.push_back(fmt::format("{} more about its columns", remarks.size() - num_shown));
  }
}

// ---------------------------------------------------------------------------------------------
// Layouts

void add_header(const CatalogRow& odd, const CatalogRow& usual, Words& found) {
  if (odd.header_lines != usual.header_lines) {
    found.push_back(fmt::format("{} header line{} instead of {}", odd.header_lines,
                                odd.header_lines == 1 ? "" : "s", usual.header_lines));
  }
  if (odd.names_line.has_value() != usual.names_line.has_value())
    found.emplace_back(odd.names_line ? "a line of names" : "no line of names");
  if (odd.units_line.has_value() != usual.units_line.has_value())
    found.emplace_back(odd.units_line ? "a line of units" : "no line of units");
}

void add_layout(const CatalogRow& odd, const CatalogRow& usual, Words& found) {
  if (odd.encoding != usual.encoding) found.push_back(or_none(odd.encoding));
  if (odd.has_byte_order_mark != usual.has_byte_order_mark)
    found.emplace_back(odd.has_byte_order_mark ? "a byte order mark" : "no byte order mark");
  const bool has_same_separators = odd.mode == usual.mode && odd.delimiters == usual.delimiters;
  if (!has_same_separators) found.push_back(separator_words(odd));
  if (has_same_separators && odd.widths != usual.widths) found.emplace_back("other column widths");
  if (quote_of(odd) != quote_of(usual)) found.push_back("quote " + quote_of(odd));
  if (decimal_of(odd) != decimal_of(usual)) found.push_back(decimal_words(odd));
  if (odd.line_ending != usual.line_ending)
    found.push_back(line_ending_word(odd) + " line endings");
  add_header(odd, usual, found);
}

// ---------------------------------------------------------------------------------------------
// Classes

// The places of the larger classes first.
template <typename Class>
std::vector<std::size_t> by_size(const std::vector<Class>& classes) {
  std::vector<std::size_t> order(classes.size());
  std::iota(order.begin(), order.end(), std::size_t{0});
  std::stable_sort(order.begin(), order.end(), [&](std::size_t a, std::size_t b) {
    return classes[a].places.size() > classes[b].places.size();
  });
  return order;
}

bool is_small_beside(std::size_t size, std::size_t usual) {
  return size < usual && size <= std::max<std::size_t>(1, usual / kLargestShare);
}

struct Home {
  std::size_t group;
  Words differences;
};

// The group in which `size` files like `row` are odd.
std::optional<Home> home_of(const CatalogRow& row, std::size_t size,
                            const std::vector<FileGroup>& groups) {
  std::optional<Home> best;
  for (std::size_t i = 0; i < std::min(groups.size(), kMostCompared); ++i) {
    const FileGroup& group = groups[i];
    if (!is_small_beside(size, group.files.size())) break;  // those that follow are smaller
    if (!share_half_of_their_columns(row, group.example)) continue;
    Words differences = differences_between(row, group.example);
    if (!best || differences.size() < best->differences.size()) best = {i, std::move(differences)};
  }
  return best;
}

}  // namespace

std::string separator_words(const CatalogRow& row) {
  if (row.mode == "space-aligned") return "aligned by blanks";
  if (row.mode == "fixed-width") return "fixed width";
  if (row.delimiters.empty()) return "one column";
  Words names;
  for (const std::string& delimiter : row.delimiters) names.push_back(delimiter_name(delimiter));
  return fmt::format("{}", fmt::join(names, " and "));
}

std::string line_ending_word(const CatalogRow& row) {
  if (row.line_ending == "\n") return "LF";
  if (row.line_ending == "\r\n") return "CRLF";
  if (row.line_ending == "\r") return "CR";
  return row.line_ending.empty() ? "no" : "other";
}

std::string decimal_words(const CatalogRow& row) {
  const std::string mark = decimal_of(row);
  if (mark == ",") return "decimal comma";
  if (mark == ".") return "decimal point";
  return "decimal mark " + mark;
}

std::vector<std::string> differences_between(const CatalogRow& odd, const CatalogRow& usual) {
  Words found;
  add_layout(odd, usual, found);
  add_number_of_columns(odd, usual, found);
  add_single_columns(odd, usual, found);
  if (found.empty()) found.emplace_back("other columns");
  return found;
}

void Grouper::add(CatalogRow row) {
  ++found_.num_files;
  if (row.status == RowStatus::error) {
    found_.failures.push_back({std::move(row.path), std::move(row.error)});
    return;
  }
  if (row.status == RowStatus::no_table) {
    found_.no_tables.push_back({std::move(row.path), std::move(row.no_table)});
    return;
  }
  if (row.confidence && *row.confidence < least_confidence_)
    found_.doubtful.push_back({row.path, *row.confidence});
  paths_.push_back(row.path);
  const auto [entry, is_new] = index_.try_emplace(
      std::pair(row.layout_fingerprint, row.schema_fingerprint), classes_.size());
  if (is_new) classes_.push_back({std::move(row), {}});
  classes_[entry->second].places.push_back(paths_.size() - 1);
}

Grouping Grouper::finish() {
  Grouping found = std::move(found_);
  std::vector<std::vector<std::pair<std::size_t, OddFile>>>
      odd;  // of each group, with their places
  for (const std::size_t i : by_size(classes_)) {
    FileClass& files = classes_[i];
    const std::optional<Home> home = home_of(files.example, files.places.size(), found.groups);
    if (home) {
      for (const std::size_t place : files.places)
        odd[home->group].push_back({place, {paths_[place], home->differences}});
      continue;
    }
    FileGroup group = {std::move(files.example), {}, {}};
    for (const std::size_t place : files.places) group.files.push_back(paths_[place]);
    found.groups.push_back(std::move(group));
    odd.emplace_back();
  }
  for (std::size_t i = 0; i < odd.size(); ++i) {
    std::sort(odd[i].begin(), odd[i].end(),
              [](const auto& a, const auto& b) { return a.first < b.first; });
    for (auto& entry : odd[i]) found.groups[i].odd.push_back(std::move(entry.second));
  }
  *this = Grouper(least_confidence_);
  return found;
}

}  // namespace textio::tool
