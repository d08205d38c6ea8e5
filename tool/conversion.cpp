#include "tool/conversion.hpp"

#include <algorithm>
#include <utility>

namespace textio::tool {
namespace {

using reading::Account;
using reading::Batch;
using reading::ColumnType;
using reading::Oddity;

// Columns without a row are of text: nothing is known of them.
std::vector<ColumnHead> heads_of(const TableSource& table, const std::optional<Batch>& batch) {
  const std::vector<std::string>& names = table.names();
  std::vector<ColumnHead> heads;
  for (std::size_t i = 0; i < names.size(); ++i) {
    const bool has_values = batch && i < batch->columns.size();
    heads.push_back({names[i], has_values ? batch->columns[i].type : ColumnType::text});
  }
  return heads;
}

// Whether the writer that began with the heads can take it.
bool fits(const Batch& batch, const std::vector<ColumnHead>& heads) {
  if (batch.columns.size() > heads.size()) return false;
  return std::equal(batch.columns.begin(), batch.columns.end(), heads.begin(),
                    [](const reading::Column& column, const ColumnHead& head) {
                      return column.type == head.type;
                    });
}

// Reads on to the end; the types of each batch are those of the one before, or wider.
void learn_on(TableSource& table, std::optional<Batch> batch, const ConversionSteps& steps,
              std::vector<ColumnHead>& heads) {
  for (; batch; batch = table.next()) {
    heads = heads_of(table, batch);
    steps.progress(table.account());
  }
}

// Of the columns that both have.
std::vector<std::size_t> differing_types(const std::vector<ColumnHead>& first,
                                         const std::vector<ColumnHead>& last) {
  std::vector<std::size_t> positions;
  for (std::size_t i = 0; i < std::min(first.size(), last.size()); ++i) {
    if (first[i].type != last[i].type) positions.push_back(i);
  }
  return positions;
}

Converted converted_by(const TableSource& table) {
  const Account& account = table.account();
  return {account, table.names(), table.layout().confidence, account.count_of(Oddity::widened),
          first_place(account, Oddity::widened)};
}

// Writes the batches as long as they fit. Returns the first that does not.
std::optional<Batch> write_while_fitting(TableSource& table, std::optional<Batch> batch,
                                         const ConversionSteps& steps,
                                         const std::vector<ColumnHead>& heads) {
  TableWriter& writer = steps.restart();
  writer.begin(heads);
  for (; batch && fits(*batch, heads); batch = table.next()) {
    writer.write(*batch);
    steps.progress(table.account());
  }
  if (batch) return batch;
  steps.check(table);
  writer.finish();
  return std::nullopt;
}

bool is_same_text(const Account& one, const Account& other) {
  return one.num_bytes == other.num_bytes && one.num_lines == other.num_lines;
}

// By what the first reading found.
Converted read_again(const ConversionSteps& steps, const LearnedTable& learned, Converted first) {
  const std::unique_ptr<TableSource> table = steps.open(learned);
  if (write_while_fitting(*table, table->next(), steps, learned.heads)) throw FileChanged();
  if (!is_same_text(first.account, table->account())) throw FileChanged();
  first.account = table->account();
  return first;
}

}  // namespace

std::optional<reading::OddPlace> first_place(const Account& account, Oddity oddity) {
  for (const reading::OddPlace& place : account.places) {
    if (place.oddity == oddity) return place;
  }
  return std::nullopt;
}

Converted convert_table(const ConversionSteps& steps) {
  LearnedTable learned;
  Converted first;
  {
    const std::unique_ptr<TableSource> table = steps.open(std::nullopt);
    std::optional<Batch> batch = table->next();
    learned.heads = heads_of(*table, batch);
    if (!steps.learns_first) {
      batch = write_while_fitting(*table, std::move(batch), steps, learned.heads);
      if (!batch) return converted_by(*table);
    }
    const std::vector<ColumnHead> first_heads = learned.heads;
    learn_on(*table, std::move(batch), steps, learned.heads);
    learned.widened = differing_types(first_heads, learned.heads);
    if (steps.learns_first) steps.check(*table);
    learned.layout = table->layout();
    first = converted_by(*table);
  }
  return read_again(steps, learned, std::move(first));
}

}  // namespace textio::tool
