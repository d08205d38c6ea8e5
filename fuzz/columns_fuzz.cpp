// Descriptions of columns, and the formats of their table. A line is a column, a bar ends a cell.
#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include <vltextstream/columns/table_formats.hpp>
#include "fuzz/check.hpp"
#include "fuzz/input.hpp"
#include "support/exact_text.hpp"

namespace textio::fuzz {
namespace {

using namespace columns;
using testing_support::ExactText;

std::vector<std::u16string_view> split(std::u16string_view text, char16_t separator) {
  std::vector<std::u16string_view> pieces;
  for (std::size_t begin = 0; begin <= text.size();) {
    const std::size_t end = std::min(text.find(separator, begin), text.size());
    pieces.push_back(text.substr(begin, end - begin));
    begin = end + 1;
  }
  return pieces;
}

ColumnHints random_hints(Input& input) {
  constexpr char16_t kMarks[] = {0, u'.', u',', u' '};
  constexpr std::u16string_view kNames[] = {u"", u"time", u"id"};
  ColumnHints hints;
  hints.name = input.one_of(kNames);
  hints.marks.decimal = input.one_of(kMarks);
  hints.marks.grouping = input.one_of(kMarks);
  hints.marks.are_given = input.flag();
  hints.marks.delimiter = input.flag() ? u';' : u'\0';
  hints.order.order = static_cast<DateOrder>(input.below(5));
  hints.order.is_given = input.flag();
  if (input.flag()) hints.missing = {u"x", u"-1"};
  return hints;
}

bool is_same(const ColumnDescription& a, const ColumnDescription& b) {
  return a.kind == b.kind && a.num_fitting == b.num_fitting && a.num_missing == b.num_missing &&
         a.first_misfit == b.first_misfit && a.missing == b.missing && a.number == b.number &&
         a.money == b.money && a.boolean == b.boolean && a.date == b.date &&
         a.examples == b.examples;
}

void check_counts(const ColumnDescription& column, std::size_t cells) {
  require_equal("cells", column.num_cells, cells);
  const std::size_t known = column.num_empty + column.num_missing + column.num_fitting;
  require(known <= cells, "each cell is counted once");
  require(column.first_misfit.has_value() == (known < cells), "the first odd cell is named");
  if (column.first_misfit) require(*column.first_misfit < cells, "it is a cell of the column");
  std::size_t missing = 0;
  for (const MissingWord& word : column.missing) missing += word.count;
  require(missing <= column.num_missing, "missing words are counted");
  if (column.missing.size() < 32) require_equal("missing", missing, column.num_missing);
  require(column.least_width <= column.most_width, "widths ascend");
  require(column.examples.size() <= std::min<std::size_t>(5, column.num_fitting),
          "examples are cells that fit");
}

void check_kind(const ColumnDescription& column) {
  if (column.kind == ColumnKind::empty) {
    require_equal("values of an empty column", column.num_fitting, std::size_t{0});
    require(!column.first_misfit, "an empty column has no odd cells");
    return;
  }
  require(column.num_fitting > 0 || is_text(column.kind), "a cell has the kind of its column");
  if (is_text(column.kind)) require(!column.first_misfit, "each text fits");
  const NumberFormat& number = column.number;
  require(number.decimal == 0 || number.decimal != number.grouping || !number.is_certain,
          "a mark that is certain has one meaning");
}

void check_blanks_around(const std::vector<std::u16string_view>& cells, const ColumnHints& hints,
                         const ColumnDescription& column) {
  std::vector<std::u16string> padded;
  for (const std::u16string_view cell : cells) {
    padded.push_back(u" " + std::u16string(cell) + u"\t ");
  }
  const std::vector<std::u16string_view> views(padded.begin(), padded.end());
  require(is_same(describe_column(views, hints), column), "blanks around cells do not matter");
}

}  // namespace
}  // namespace textio::fuzz

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using namespace textio::fuzz;
  using namespace textio::columns;
  Input input(data, size);
  const auto hints = random_hints(input);
  const std::u16string text = input.rest_as_text();
  std::vector<TableColumn> table;
  for (const std::u16string_view line : split(text, u'\n')) {
    std::vector<std::u16string_view> cells = split(line, u'|');
    // The sanitizer sees a read past the end of a cell that is alone.
    const textio::testing_support::ExactText exact(cells.front());
    const std::u16string_view alone[] = {exact.view()};
    check_counts(describe_column(alone, hints), 1);
    table.push_back({std::move(cells), hints});
  }
  const auto columns = describe_columns(table);
  for (std::size_t i = 0; i < table.size(); ++i) {
    check_counts(columns[i], table[i].cells.size());
    check_kind(columns[i]);
    const ColumnDescription column = describe_column(table[i].cells, hints);
    require(is_same(describe_column(table[i].cells, hints), column), "twice is the same");
    check_blanks_around(table[i].cells, hints, column);
  }
  return 0;
}
