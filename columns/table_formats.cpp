#include <vltextstream/columns/table_formats.hpp>

#include <algorithm>
#include <utility>

namespace textio::columns {
namespace {

// Marks and how many columns have each; there are few of them.
class MarkCounts {
 public:
  void add(char16_t mark) {
    if (mark == 0) return;
    const auto found = std::find_if(counts_.begin(), counts_.end(),
                                    [mark](const auto& each) { return each.first == mark; });
    if (found == counts_.end()) {
      counts_.emplace_back(mark, 1);
    } else {
      ++found->second;
    }
  }

  // The first of the commonest marks other than `excluded`; 0 if there is none.
  char16_t commonest(char16_t excluded = 0) const {
    char16_t best = 0;
    std::size_t most = 0;
    for (const auto& [mark, count] : counts_) {
      if (mark == excluded || count <= most) continue;
      best = mark;
      most = count;
    }
    return best;
  }

 private:
  std::vector<std::pair<char16_t, std::size_t>> counts_;
};

DateOrder common_order(std::span<const ColumnDescription> columns) {
  const auto is_of = [columns](DateOrder order) {
    return std::any_of(columns.begin(), columns.end(), [order](const ColumnDescription& column) {
      return column.date.order == order;
    });
  };
  const bool has_day_first = is_of(DateOrder::day_first);
  const bool has_month_first = is_of(DateOrder::month_first);
  if (has_day_first == has_month_first) return DateOrder::none;
  return has_day_first ? DateOrder::day_first : DateOrder::month_first;
}

// Whether the doubtful mark of a column was taken for what it is in the table.
bool is_as_in_table(const NumberFormat& number, const TableFormats& formats) {
  if (number.decimal != 0) return number.decimal == formats.decimal;
  return number.grouping == formats.grouping ||
         (formats.decimal != 0 && formats.decimal != number.grouping);
}

// Whether the formats of the table may change the description of a column.
bool may_change(const ColumnDescription& column, const TableFormats& formats) {
  const bool has_doubtful_mark =
      !column.number.is_certain && !is_as_in_table(column.number, formats);
  const bool has_doubtful_order =
      column.date.order == DateOrder::ambiguous && formats.order != DateOrder::none;
  return has_doubtful_mark || has_doubtful_order;
}

}  // namespace

TableFormats find_formats(std::span<const ColumnDescription> columns) {
  MarkCounts decimals;
  MarkCounts groupings;
  for (const ColumnDescription& column : columns) {
    if (!column.number.is_certain) continue;
    decimals.add(column.number.decimal);
    groupings.add(column.number.grouping);
  }
  TableFormats formats;
  formats.decimal = decimals.commonest();
  formats.grouping = groupings.commonest(formats.decimal);
  formats.order = common_order(columns);
  return formats;
}

ColumnHints with_formats(ColumnHints hints, const TableFormats& formats) {
  if (!hints.marks.are_given) {
    if (hints.marks.decimal == 0) hints.marks.decimal = formats.decimal;
    if (hints.marks.grouping == 0) hints.marks.grouping = formats.grouping;
  }
  if (hints.order.order == DateOrder::none) hints.order.order = formats.order;
  return hints;
}

std::vector<ColumnDescription> describe_columns(std::span<const TableColumn> columns) {
  std::vector<ColumnDescription> described;
  described.reserve(columns.size());
  for (const TableColumn& column : columns) {
    described.push_back(describe_column(column.cells, column.hints));
  }
  const TableFormats formats = find_formats(described);
  if (formats == TableFormats{}) return described;
  for (std::size_t i = 0; i < columns.size(); ++i) {
    if (!may_change(described[i], formats)) continue;
    described[i] = describe_column(columns[i].cells, with_formats(columns[i].hints, formats));
  }
  return described;
}

}  // namespace textio::columns
