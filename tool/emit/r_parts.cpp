#include "tool/emit/r_parts.hpp"

#include <fmt/format.h>

#include "tool/emit/emit_words.hpp"
#include "tool/emit/program_parts.hpp"

namespace textio::tool {
namespace {

using reading::ColumnType;

// An expression of `cells`.
std::string value_of(const Facts& facts, const ColumnFact& column, const std::string& cells) {
  switch (column.type) {
    case ColumnType::boolean:
      return fmt::format("c(TRUE, FALSE)[match({}, c({}, {}))]", cells, r_text(column.true_word),
                         r_text(column.false_word));
    case ColumnType::date:
      return fmt::format("as.Date({}, format = {})", cells, r_text(column.format));
    case ColumnType::date_time: {
      std::string format = column.format;
      if (facts.is_converted) format.replace(format.find("%S"), 2, "%OS");
      return fmt::format("as.POSIXct({}, format = {}, tz = \"UTC\")", cells, r_text(format));
    }
    default:
      return "";
  }
}

}  // namespace

bool is_r_number(const ColumnFact& column) {
  return column.type == ColumnType::real ||
         (column.type == ColumnType::integer && column.fits_double);
}

bool reads_numbers_as_texts(const Facts& facts) {
  return !facts.quote.empty() && !facts.is_converted;
}

std::string r_obstacle(const Facts& facts) {
  for (const ColumnFact* column : columns_of(facts, {ColumnType::date})) {
    if (column->format.find("%d") == std::string::npos) {
      return fmt::format("{} holds months without a day, which R takes for no dates",
                         r_text(comment_text(column->name)));
    }
  }
  if (facts.delimiters[0] == common_decimal(facts)) {
    return "its delimiter is its decimal mark as well";
  }
  return "";
}

std::string r_conversions(const Facts& facts) {
  std::string text;
  for (const ColumnFact& column : facts.columns) {
    const std::string cells = fmt::format("table[[{}]]", r_text(column.name));
    const std::string value = value_of(facts, column, cells);
    if (!value.empty()) text += fmt::format("{} <- {}\n", cells, value);
    if (column.type == ColumnType::integer && !column.fits_double) {
      text +=
          fmt::format("# {} holds integers that R would round: text.\n", comment_text(column.name));
    }
    if (column.type == ColumnType::time || column.type == ColumnType::duration) {
      text +=
          fmt::format("# {} holds times as ISO 8601 writes them, for which R has no type: text.\n",
                      comment_text(column.name));
    }
  }
  return text;
}

std::string r_names(const Facts& facts) {
  return fmt::format("c({})", joined(name_literals(facts, r_text)));
}

std::string r_pipe(const Facts& facts) {
  return fmt::format("pipe({})", r_text(convert_command(facts)));
}

}  // namespace textio::tool
