#include <vltextstream/reading/table_plan.hpp>

#include <algorithm>

#include <fmt/format.h>

#include <vltextstream/reading/date_parser.hpp>
#include <vltextstream/text/utf8.hpp>

namespace textio::reading {
namespace {

using columns::ColumnKind;
using standalone::ColumnFacts;
using standalone::Layout;

// Epochs are integers that are only probably moments.
ColumnType type_of(ColumnKind kind, const ReadSettings& settings) {
  if (settings.all_text) return ColumnType::text;
  switch (kind) {
    case ColumnKind::integer:
    case ColumnKind::epoch_seconds:
    case ColumnKind::epoch_milliseconds:
      return ColumnType::integer;
    case ColumnKind::decimal:
    case ColumnKind::money:
      return settings.decimals_as_text ? ColumnType::decimal : ColumnType::real;
    case ColumnKind::scientific:
    case ColumnKind::percentage:
      return ColumnType::real;
    case ColumnKind::boolean:
      return ColumnType::boolean;
    case ColumnKind::date:
      return ColumnType::date;
    case ColumnKind::time:
      return ColumnType::time;
    case ColumnKind::date_time:
      return ColumnType::date_time;
    case ColumnKind::duration:
      return ColumnType::duration;
    case ColumnKind::category:
      return settings.categories ? ColumnType::category : ColumnType::text;
    default:
      return ColumnType::text;
  }
}

bool is_text(ColumnType type) { return type == ColumnType::text || type == ColumnType::category; }

bool is_of_dates(ColumnType type) {
  return type == ColumnType::date || type == ColumnType::time || type == ColumnType::date_time;
}

void add_word(const std::u16string& word, std::vector<std::u16string>& words) {
  if (std::find(words.begin(), words.end(), word) == words.end()) words.push_back(word);
}

class Planner {
 public:
  Planner(const Layout& layout, const ReadSettings& settings)
      : layout_(layout), settings_(settings), rules_(settings.detect.options) {}

  ColumnPlan cells_of(std::size_t column) const {
    ColumnPlan plan;
    ColumnFacts facts;
    facts.kind = ColumnKind::text;
    if (column < layout_.columns.size()) facts = layout_.columns[column];
    plan.kind = facts.kind;
    plan.type = type_of(facts.kind, settings_);
    plan.decimal = facts.decimal.value_or(layout_.dialect.decimal.value_or(u'.'));
    plan.grouping = facts.grouping.value_or(layout_.dialect.grouping.value_or(u'\0'));
    if (plan.grouping == plan.decimal) plan.grouping = 0;
    plan.exponents = rules_.exp_chars;
    plan.words = {facts.true_word, facts.false_word};
    plan.strptime = facts.date.strptime;
    plan.language = facts.date.language;
    plan.order = facts.date.order;
    plan.is_empty_text_missing = rules_.text_type == parser::text_kind::string;
    for (const auto& missing : facts.missing) add_word(missing.word, plan.missing);
    for (const std::u16string& word : settings_.detect.missing) add_word(word, plan.missing);
    if (!is_text(plan.type)) {
      for (const auto& missing : layout_.dialect.missing) add_word(missing.word, plan.missing);
    }
    const bool has_day =
        plan.strptime.empty() || plan.type == ColumnType::time || has_year(plan.strptime);
    const bool stays_text = rules_.datetime_type == parser::datetime_kind::char_ || !has_day;
    if (is_of_dates(plan.type) && stays_text) plan.type = ColumnType::text;
    return plan;
  }

 private:
  const Layout& layout_;
  const ReadSettings& settings_;
  const parser::options& rules_;
};

// The column of a choice. Throws ReadError if there is none.
PlannedColumn& chosen(TablePlan& plan, const ReadSettings::ColumnChoice& choice) {
  if (choice.name.empty()) {
    if (choice.number >= 1 && choice.number <= plan.columns.size()) {
      return plan.columns[choice.number - 1];
    }
    throw ReadError(fmt::format("types: Expected a column from 1 to {}, got {}.",
                                plan.columns.size(), choice.number),
                    0, 0);
  }
  const std::string name = to_utf8_lossy(choice.name);
  const auto found = std::find_if(plan.columns.begin(), plan.columns.end(),
                                  [&](const PlannedColumn& each) { return each.name == name; });
  if (found != plan.columns.end()) return *found;
  throw ReadError(fmt::format("types: Expected the name of a column, got '{}'.", name), 0, 0);
}

}  // namespace

std::string TablePlan::unused_name() const {
  for (std::size_t number = columns.size() + 1;; ++number) {
    std::string name = fmt::format("column_{}", number);
    const bool is_used = std::any_of(columns.begin(), columns.end(),
                                     [&](const PlannedColumn& each) { return each.name == name; });
    if (!is_used) return name;
  }
}

void TablePlan::add_columns(std::size_t count) {
  while (columns.size() < count) {
    std::string name = unused_name();
    columns.push_back({std::move(name), {}, false});
  }
}

TablePlan plan_of(const Layout& layout, const ReadSettings& settings) {
  const Planner planner(layout, settings);
  TablePlan plan;
  plan.num_of_layout = layout.num_variables;
  for (std::size_t c = 0; c < layout.num_variables; ++c) {
    if (c < layout.names_unique.size()) {
      plan.columns.push_back({to_utf8_lossy(layout.names_unique[c]), {}, false});
    } else {
      plan.add_columns(c + 1);
    }
    plan.columns[c].cells = planner.cells_of(c);
  }
  for (const ReadSettings::ColumnChoice& choice : settings.types) {
    chosen(plan, choice).cells.type = choice.type;
  }
  return plan;
}

}  // namespace textio::reading
