#include "tool/emit/abilities.hpp"

#include <algorithm>
#include <cctype>

#include <fmt/format.h>

namespace textio::tool {
namespace {

using reading::ColumnType;

bool is_number(const ColumnFact& column) {
  return column.type == ColumnType::integer || column.type == ColumnType::real;
}

std::string called(const ColumnFact& column) {
  return fmt::format("the column {}", python_text(comment_text(column.name)));
}

bool is_usual_word(const ColumnFact& column) {
  const auto is = [](const std::string& word, const char* usual) {
    return word.empty() || word == usual;
  };
  return is(column.true_word, "true") && is(column.false_word, "false");
}

bool is_iso(const ColumnFact& column) {
  return column.type == ColumnType::date ? column.format == "%Y-%m-%d"
                                         : column.format == "%Y-%m-%dT%H:%M:%S";
}

std::string obstacle_of_column(const ColumnFact& column, const Abilities& abilities) {
  if (!column.is_plain) {
    return fmt::format("{} has cells that need a parser of their own ({})", called(column),
                       column.kind);
  }
  if (!column.missing.empty() && !abilities.takes_words) {
    return fmt::format("words mean a missing value in {}, and in it alone", called(column));
  }
  if (is_number(column)) {
    if (!column.grouping.empty() && !abilities.takes_grouping) {
      return fmt::format("the numbers in {} have a mark between groups of digits", called(column));
    }
    const bool is_other_mark = column.type == ColumnType::real && column.decimal != ".";
    const bool is_comma = column.decimal == ",";
    if (is_other_mark && !(is_comma && abilities.takes_decimal_comma)) {
      return fmt::format("the numbers in {} have the decimal mark {}", called(column),
                         comment_text(column.decimal));
    }
  }
  const bool has_own_words = column.type == ColumnType::boolean && !is_usual_word(column);
  if (has_own_words && !abilities.takes_boolean_words) {
    return fmt::format("{} has words of its own for true and false", called(column));
  }
  const bool is_dated = column.type == ColumnType::date || column.type == ColumnType::date_time;
  if (is_dated && !is_iso(column) && !abilities.takes_formats) {
    return fmt::format("the dates in {} are not written as in ISO 8601", called(column));
  }
  return "";
}

// Marks that most readers take for all columns at once.
std::string obstacle_of_marks(const Facts& facts, const Abilities& abilities) {
  if (abilities.takes_own_marks) return "";
  std::string decimal;
  std::string grouping;
  for (const ColumnFact& column : facts.columns) {
    if (!is_number(column)) continue;
    if (column.type == ColumnType::real) {
      if (!decimal.empty() && column.decimal != decimal)
        return "its columns have different decimal marks";
      decimal = column.decimal;
    }
    if (!column.grouping.empty()) {
      if (!grouping.empty() && column.grouping != grouping)
        return "its columns have different grouping marks";
      grouping = column.grouping;
    }
  }
  if (!grouping.empty() && grouping == decimal) return "its columns have different decimal marks";
  if (grouping.size() > 1) return "its grouping mark is not a character of ASCII";
  return "";
}

// Many readers unpack what is only called so.
bool is_called_compressed(const std::string& path) {
  for (const char* end : {".gz", ".bz2", ".zip", ".xz", ".zst", ".tar", ".lz4", ".br", ".Z"}) {
    if (path.ends_with(end)) return true;
  }
  return false;
}

std::string obstacle_of_path(const Facts& facts, const Abilities& abilities) {
  if (is_called_compressed(facts.path)) return "its name says that it is compressed";
  if (facts.path.find("://") != std::string::npos) return "its path looks like an address";
  if (abilities.expands_paths && facts.path.find_first_of("*?[]{}") != std::string::npos) {
    return "its path looks like a pattern";
  }
  return "";
}

std::string obstacle_of_lines(const Facts& facts, const Abilities& abilities) {
  if (facts.lines_to_skip() > 1 && !abilities.skips_lines) {
    return fmt::format("{} lines are above the data", facts.lines_to_skip());
  }
  if (facts.lines_to_skip() == 1 && !facts.names_line && !abilities.skips_lines) {
    return "a line that holds no names is above the data";
  }
  if (facts.blank_lines > 0 && !abilities.skips_blank_lines)
    return "blank lines are among the data";
  if (facts.comment_lines > 0 && (!abilities.skips_comments || facts.has_breaks_in_cells)) {
    return "comments are among the data";
  }
  if (facts.footer_lines > 0 && !abilities.takes_footer) return "lines below the data are no data";
  if (facts.line_ending == "\r" && !abilities.takes_lone_cr) return "its lines end with CR alone";
  return "";
}

std::string obstacle_of_cells(const Facts& facts, const Abilities& abilities) {
  const bool has_other_quote = !facts.quote.empty() && facts.quote != "\"";
  if (has_other_quote && !abilities.takes_other_quotes) return "its quote is not \"";
  if (facts.has_backslash && !abilities.takes_backslash) return "backslashes escape in it";
  if (facts.has_breaks_in_cells && !abilities.takes_breaks_in_cells) {
    return "cells have line breaks in them";
  }
  if (facts.delimiters[0] != "," && !abilities.takes_other_delimiters) {
    return "its delimiter is not a comma";
  }
  return "";
}

}  // namespace

std::string find_obstacle(const Facts& facts, const Abilities& abilities) {
  if (!facts.oddity.empty()) return facts.oddity;
  if (!encoding_word(abilities.codecs, facts.encoding)) {
    return fmt::format("the reader does not know its encoding, {}", comment_text(facts.encoding));
  }
  for (std::string obstacle :
       {obstacle_of_path(facts, abilities), obstacle_of_lines(facts, abilities),
        obstacle_of_cells(facts, abilities), obstacle_of_marks(facts, abilities)}) {
    if (!obstacle.empty()) return obstacle;
  }
  for (const ColumnFact& column : facts.columns) {
    std::string obstacle = obstacle_of_column(column, abilities);
    if (!obstacle.empty()) return obstacle;
  }
  return "";
}

std::string encoding_for(const Facts& facts, Codecs codecs) {
  const bool is_python = codecs == Codecs::python;
  if (is_python && facts.has_mark) {
    if (facts.encoding == "UTF-8") return "utf-8-sig";
    if (facts.encoding.starts_with("UTF-16")) return "utf-16";
    if (facts.encoding.starts_with("UTF-32")) return "utf-32";
  }
  return encoding_word(codecs, facts.encoding).value_or(facts.encoding);
}

}  // namespace textio::tool
