// What a layout says about how a table is written, each in one line without what is empty, so that a row
// of a table test shows all of it.
#pragma once

#include <optional>
#include <string>
#include <utility>
#include <vector>

#include <vltextstream/layout/layout.hpp>
#include "support/printing.hpp"

namespace textio::testing_support {

inline std::string shown(std::optional<char16_t> mark) {
  return mark ? readable(std::u16string(1, *mark)) : std::string();
}

class Facts {
 public:
  explicit Facts(std::string text) : text_(std::move(text)) {}

  Facts& add(const char* name, const std::string& value) {
    if (!value.empty()) text_ += std::string(" ") + name + "=" + value;
    return *this;
  }
  Facts& add_if(bool holds, const std::string& word) {
    if (holds && !word.empty()) text_ += " " + word;
    return *this;
  }
  Facts& add(const std::vector<standalone::MissingWord>& words) {
    for (const standalone::MissingWord& each : words) {
      add("missing", readable(each.word) + "*" + std::to_string(each.count));
    }
    return *this;
  }
  const std::string& text() const { return text_; }

 private:
  std::string text_;
};

// The delimiter, or "aligned"; then the rest but for line endings:
// "; quote=\" escape=doubled seen comment=# dec=, grp=. missing=NA*2".
inline std::string facts_of(const standalone::Layout& layout) {
  const standalone::TableDialect& dialect = layout.dialect;
  std::string separators;
  switch (layout.mode) {
    case LayoutMode::delimited:
      for (const std::u16string& each : dialect.delimiters) separators += readable(each);
      break;
    case LayoutMode::line_reader:
      separators = "lines";
      break;
    default:
      separators = "aligned";
  }
  if (separators == readable(u"\t")) separators = "tab";
  return Facts(separators)
      .add("quote", shown(dialect.quote))
      .add("escape", dialect.escape == standalone::Escape::none
                         ? std::string()
                         : std::string(to_string(dialect.escape)))
      .add_if(dialect.is_escape_seen, "seen")
      .add_if(dialect.blanks_after_delimiters, "blanks")
      .add("comment", readable(dialect.comment_prefix))
      .add("dec", shown(dialect.decimal))
      .add("grp", shown(dialect.grouping))
      .add(dialect.missing)
      .text();
}

// "money dec=, grp=. cur=EUR< missing=NA*1 odd=1@5": one cell, in line 5, does not fit.
inline std::string facts_of(const standalone::ColumnFacts& column) {
  const standalone::DateFacts& date = column.date;
  const std::size_t misfits =
      column.num_cells - column.num_empty - column.num_missing - column.num_fitting;
  const bool has_order = date.order != standalone::DateOrder::none;
  return Facts(std::string(to_string(column.kind)))
      .add("dec", shown(column.decimal))
      .add("grp", shown(column.grouping))
      .add_if(!column.are_marks_certain, "unsure")
      .add("cur", column.currency.empty()
                      ? std::string()
                      : readable(column.currency) + (column.is_currency_before ? "<" : ">"))
      .add("true", readable(column.true_word))
      .add("false", readable(column.false_word))
      .add("strptime", date.strptime)
      .add("icu", date.icu)
      .add_if(has_order, std::string(to_string(date.order)))
      .add("language", date.language)
      .add("zone", date.zone)
      .add(column.missing)
      .add("empty", column.num_empty == 0 ? std::string() : std::to_string(column.num_empty))
      .add("odd", misfits == 0 ? std::string()
                               : std::to_string(misfits) + "@" +
                                     std::to_string(column.first_misfit_line.value_or(0)))
      .text();
}

}  // namespace textio::testing_support
