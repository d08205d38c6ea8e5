// Two readings by the table reader give the types that hold for every cell, and the cells as they are written; a third
// pass over the bytes tells whether a reader that is told the dialect alone finds the same cells.
#include "tool/emit/emit_facts.hpp"

#include <algorithm>
#include <array>
#include <fstream>
#include <stdexcept>

#include <fmt/format.h>

#include <vltextstream/reading/table_reader.hpp>
#include <vltextstream/text/utf8.hpp>

#include "tool/emit/file_scan.hpp"

namespace textio::tool {
namespace {

using reading::Account;
using reading::Batch;
using reading::Column;
using reading::ColumnType;
using reading::LineFate;
using reading::Oddity;
using reading::ReadSettings;
using reading::TableReader;
using standalone::Layout;
using standalone::LayoutMode;

constexpr std::size_t kMostExactDigits = 15;

std::string utf8_of(std::optional<char16_t> unit) {
  return unit && *unit != 0 ? to_utf8_lossy(std::u16string(1, *unit)) : std::string();
}

bool is_digit(char c) { return c >= '0' && c <= '9'; }

// ---------------------------------------------------------------------------------------------
// How cells are written

// Reads a text from its start to its end.
class CellCursor {
 public:
  explicit CellCursor(std::string_view cell) : rest_(cell) {}

  bool take(std::string_view text) {
    if (text.empty() || !rest_.starts_with(text)) return false;
    rest_.remove_prefix(text.size());
    return true;
  }

  std::size_t take_digits(std::size_t most = 1000) {
    std::size_t count = 0;
    while (count < most && count < rest_.size() && is_digit(rest_[count])) ++count;
    rest_.remove_prefix(count);
    return count;
  }

  bool is_at_end() const { return rest_.empty(); }

 private:
  std::string_view rest_;
};

// "1234", "1.234" with a grouping mark.
std::size_t take_whole_number(CellCursor& cursor, const std::string& grouping) {
  std::size_t digits = cursor.take_digits();
  if (digits == 0 || grouping.empty() || digits > 3) return digits;
  while (cursor.take(grouping)) {
    const std::size_t group = cursor.take_digits();
    if (group != 3) return 0;
    digits += group;
  }
  return digits;
}

// The digits of a plain integer; 0 if it is none.
std::size_t digits_of_integer(const std::string& cell, const std::string& grouping) {
  CellCursor cursor(cell);
  cursor.take("-");
  const std::size_t digits = take_whole_number(cursor, grouping);
  return cursor.is_at_end() ? digits : 0;
}

bool is_plain_real(const std::string& cell, const ColumnFact& column) {
  CellCursor cursor(cell);
  cursor.take("-");
  if (take_whole_number(cursor, column.grouping) == 0) return false;
  if (cursor.take(column.decimal) && cursor.take_digits() == 0) return false;
  if (cursor.take("e") || cursor.take("E")) {
    if (!cursor.take("-")) cursor.take("+");
    if (cursor.take_digits(3) == 0) return false;
  }
  return cursor.is_at_end();
}

// Fractions, zones, words and short forms are read by few readers alike.
bool is_plain_format(std::string_view format) {
  constexpr std::string_view kPlainParts = "YmdHMS";
  for (std::size_t i = 0; i < format.size(); ++i) {
    if (format[i] != '%') continue;
    if (++i == format.size() || kPlainParts.find(format[i]) == std::string_view::npos) return false;
  }
  return !format.empty();
}

bool is_missing_word(const std::string& cell, const ColumnFact& column) {
  return std::find(column.missing.begin(), column.missing.end(), cell) != column.missing.end();
}

bool is_plain_cell(const std::string& cell, ColumnFact& column) {
  switch (column.type) {
    case ColumnType::integer: {
      const std::size_t digits = digits_of_integer(cell, column.grouping);
      if (digits > kMostExactDigits) column.fits_double = false;
      return digits > 0;
    }
    case ColumnType::real:
      return is_plain_real(cell, column);
    case ColumnType::boolean:
      return cell == column.true_word || cell == column.false_word;
    case ColumnType::date:
    case ColumnType::date_time:
      return follows_format(cell, column.format);
    case ColumnType::time:
      return column.format == "%H:%M:%S" && follows_format(cell, column.format);
    case ColumnType::text:
    case ColumnType::category:
      return column.missing.empty();
    case ColumnType::decimal:
    case ColumnType::duration:
      break;
  }
  return false;
}

// ---------------------------------------------------------------------------------------------
// Columns

ColumnFact column_fact(const Layout& layout, std::size_t index) {
  ColumnFact column;
  column.kind = to_string(columns::ColumnKind::text);
  if (index >= layout.columns.size()) return column;
  const standalone::ColumnFacts& facts = layout.columns[index];
  column.kind = to_string(facts.kind);
  const std::string decimal = utf8_of(facts.decimal ? facts.decimal : layout.dialect.decimal);
  if (!decimal.empty()) column.decimal = decimal;
  column.grouping = utf8_of(facts.grouping);
  if (column.grouping == column.decimal) column.grouping.clear();
  column.true_word = to_utf8_lossy(facts.true_word);
  column.false_word = to_utf8_lossy(facts.false_word);
  column.format = facts.date.strptime;
  return column;
}

void add_word(const std::u16string& word, std::vector<std::string>& words) {
  std::string utf8 = to_utf8_lossy(word);
  if (std::find(words.begin(), words.end(), utf8) == words.end()) words.push_back(std::move(utf8));
}

void add_missing(const Layout& layout, std::size_t index,
                 const standalone::DetectSettings& settings, ColumnFact& column) {
  if (index < layout.columns.size()) {
    for (const auto& each : layout.columns[index].missing) add_word(each.word, column.missing);
  }
  for (const std::u16string& word : settings.missing) add_word(word, column.missing);
  if (column.is_text()) return;
  for (const auto& each : layout.dialect.missing) add_word(each.word, column.missing);
}

// Types that hold for all rows: those of the last batch.
Account read_types(TableReader& reader, const standalone::DetectSettings& settings, Facts& facts) {
  std::vector<ColumnType> types;
  std::vector<bool> are_utc;
  while (const std::optional<Batch> batch = reader.next()) {
    are_utc.resize(batch->columns.size(), false);
    types.clear();
    for (std::size_t c = 0; c < batch->columns.size(); ++c) {
      types.push_back(batch->columns[c].type);
      if (batch->columns[c].is_utc) are_utc[c] = true;
    }
  }
  const Layout& layout = reader.layout();
  const std::vector<std::string>& names = reader.names();
  for (std::size_t c = 0; c < names.size(); ++c) {
    ColumnFact column = column_fact(layout, c);
    column.name = names[c];
    if (c < types.size()) column.type = types[c];
    if (c < are_utc.size()) column.is_utc = are_utc[c];
    add_missing(layout, c, settings, column);
    if (!column.is_text() && column.type != ColumnType::boolean && column.is_utc) {
      column.is_plain = false;
    }
    if (column.is_text() && !column.missing.empty()) column.is_plain = false;
    facts.columns.push_back(std::move(column));
  }
  return reader.account();
}

void look_at_cells(const std::string& path, const Layout& layout, ReadSettings settings,
                   Facts& facts) {
  settings.all_text = true;
  TableReader reader(path, layout, settings);
  while (const std::optional<Batch> batch = reader.next()) {
    const std::size_t count = std::min(batch->columns.size(), facts.columns.size());
    for (std::size_t c = 0; c < count; ++c) {
      ColumnFact& column = facts.columns[c];
      const bool is_settled = column.is_text() || !column.is_plain;
      if (is_settled && column.type != ColumnType::integer) continue;
      const Column& cells = batch->columns[c];
      for (std::size_t row = 0; row < batch->num_rows; ++row) {
        if (cells.is_missing(row)) continue;
        const std::string cell(cells.text_at(row));
        if (cell.empty() || is_missing_word(cell, column)) continue;
        if (!is_plain_cell(cell, column)) column.is_plain = false;
      }
    }
  }
}

// ---------------------------------------------------------------------------------------------
// Lines

// Where the data begins, and what is between its lines.
void count_lines(const Account& account, Facts& facts) {
  std::size_t first = account.num_lines + 1;
  for (const reading::FateRun& run : account.runs) {
    if (run.fate == LineFate::data) {
      first = std::min<std::size_t>(first, run.first_line);
      continue;
    }
    if (run.first_line < first) continue;
    if (run.fate == LineFate::blank) facts.blank_lines += run.num_lines;
    if (run.fate == LineFate::comment) facts.comment_lines += run.num_lines;
    if (run.fate == LineFate::footer) facts.footer_lines += run.num_lines;
  }
  facts.first_data_line = first;
  facts.num_rows = account.num_rows;
  facts.num_names_lines = account.lines_of(LineFate::names);
}

std::string compression_of(const std::string& path) {
  std::ifstream file(path, std::ios::binary);
  std::array<char, 4> head{};
  file.read(head.data(), head.size());
  const std::string_view bytes(head.data(), head.size());
  if (bytes.starts_with("\x1F\x8B")) return "gzip";
  if (bytes.starts_with("\x28\xB5\x2F\xFD")) return "zstd";
  return "";
}

std::size_t unit_bytes_of(const std::string& encoding) {
  if (encoding.starts_with("UTF-16")) return 2;
  return encoding.starts_with("UTF-32") ? 4 : 1;
}

// In some encodings of East Asia, bytes of ASCII from '@' on are parts of other characters.
bool may_be_part_of_character(char c, const std::string& encoding) {
  constexpr std::array kEncodings = {"Shift_JIS", "GBK", "GB18030", "Big5", "EUC-KR"};
  const bool has_such_bytes =
      std::find(kEncodings.begin(), kEncodings.end(), encoding) != kEncodings.end();
  return has_such_bytes && c >= '@';
}

std::string oddity_of_layout(const Layout& layout, const Facts& facts) {
  if (facts.mode == LayoutMode::fixed_width) return "its columns have fixed widths";
  if (facts.mode == LayoutMode::space_aligned) return "its columns are aligned with blanks";
  if (facts.mode == LayoutMode::line_reader) return "its lines are not divided into fields";
  if (facts.is_framed) return "its table is drawn with bars";
  if (facts.delimiters.size() != 1) return "it has several delimiters";
  if (facts.delimiters[0].size() != 1) return "its delimiter is not a single character of ASCII";
  if (facts.quote.size() > 1) return "its quote is not a character of ASCII";
  if (!facts.compression.empty()) return fmt::format("it is compressed with {}", facts.compression);
  if (!layout.confidence) return "its delimiter was given without its quotes";
  if (facts.columns.size() != layout.num_variables)
    return "some records have more cells than names";
  if (facts.has_backslash && may_be_part_of_character('\\', facts.encoding)) {
    return "backslashes are parts of its characters";
  }
  if (may_be_part_of_character(facts.delimiters[0][0], facts.encoding)) {
    return "its delimiter is a byte of other characters";
  }
  return "";
}

std::string oddity_of_account(const Account& account) {
  if (account.has_more_runs) return "its data is interrupted very often";
  if (account.num_rows == 0) return "it has no rows";
  if (account.count_of(Oddity::short_row) > 0) return "some records have fewer cells than columns";
  if (account.count_of(Oddity::long_row) > 0) return "some records have more cells than columns";
  if (account.count_of(Oddity::ill_formed) > 0)
    return "some bytes are no characters of its encoding";
  if (account.count_of(Oddity::widened) + account.count_of(Oddity::misfit) > 0) {
    return "some cells do not fit their columns";
  }
  if (account.lines_of(LineFate::rule) > 0) return "rules are drawn between its lines";
  if (account.lines_of(LineFate::omitted) > 0) return "rows are left out as it was asked for";
  return "";
}

// Names and units may also be below the first lines of data, or in the midst of it.
std::string oddity_of_order(const Account& account, const Facts& facts) {
  for (const reading::FateRun& run : account.runs) {
    const bool is_heading = run.fate == LineFate::names || run.fate == LineFate::units ||
                            run.fate == LineFate::descriptions || run.fate == LineFate::preamble;
    if (is_heading && run.first_line > facts.first_data_line) return "headings are within its data";
  }
  return "";
}

void find_oddity(const Layout& layout, const Account& account, Facts& facts) {
  facts.oddity = oddity_of_layout(layout, facts);
  if (facts.oddity.empty()) facts.oddity = oddity_of_account(account);
  if (facts.oddity.empty()) facts.oddity = oddity_of_order(account, facts);
  if (!facts.oddity.empty()) return;
  ExpectedRecords expected;
  expected.delimiter = facts.delimiters[0][0];
  expected.quote = facts.quote.empty() ? '\0' : facts.quote[0];
  expected.has_backslash = facts.has_backslash;
  expected.comment = facts.comment;
  expected.unit_bytes = unit_bytes_of(facts.encoding);
  expected.is_big_endian = facts.encoding.ends_with("BE");
  expected.first_line = facts.first_data_line;
  expected.num_columns = facts.columns.size();
  expected.num_rows = facts.num_rows + facts.footer_lines;
  ScannedRecords scanned = scan_records(facts.path, expected);
  facts.has_breaks_in_cells = scanned.has_breaks_in_cells;
  facts.oddity = std::move(scanned.oddity);
}

std::vector<std::string> arguments_of(const std::vector<GivenOption>& given,
                                      const standalone::DetectSettings& settings) {
  std::vector<std::string> arguments;
  for (const GivenOption& option : given) {
    for (const std::string& value : option.values) {
      if (option.typed_as.starts_with("--")) {
        arguments.push_back(option.typed_as + '=' + value);
      } else {
        arguments.push_back("--option=" + option.name + (option.is_json ? ":=" : "=") + value);
      }
    }
  }
  const standalone::DetectSettings usual;
  if (settings.judge != usual.judge) {
    arguments.push_back(fmt::format("--judge={}", to_string(settings.judge)));
  }
  if (settings.num_lines != usual.num_lines) {
    arguments.push_back(fmt::format("--lines={}", settings.num_lines));
  }
  if (settings.look_at_end != usual.look_at_end) arguments.emplace_back("--no-tail");
  return arguments;
}

void describe(const Layout& layout, Facts& facts) {
  facts.encoding = layout.encoding;
  facts.has_mark = layout.dialect.has_byte_order_mark;
  facts.mode = layout.mode;
  for (const std::u16string& each : layout.delimiters) {
    facts.delimiters.push_back(to_utf8_lossy(each));
  }
  facts.widths = layout.widths;
  facts.is_framed = layout.is_framed;
  facts.quote = utf8_of(layout.quote);
  facts.has_backslash = layout.escape.value_or(0) == u'\\';
  facts.comment = to_utf8_lossy(layout.dialect.comment_prefix);
  if (layout.line_ending) facts.line_ending = to_utf8_lossy(*layout.line_ending);
  facts.names_line = layout.names_line;
  facts.confidence = layout.confidence;
}

}  // namespace

bool follows_format(const std::string& cell, const std::string& format) {
  if (!is_plain_format(format)) return false;
  CellCursor cursor(cell);
  for (std::size_t i = 0; i < format.size(); ++i) {
    if (format[i] != '%') {
      if (!cursor.take(std::string_view(format).substr(i, 1))) return false;
      continue;
    }
    const std::size_t width = format[++i] == 'Y' ? 4 : 2;
    if (cursor.take_digits(width) != width) return false;
  }
  return cursor.is_at_end();
}

Facts facts_of(const std::string& path, const standalone::DetectSettings& settings,
               const std::vector<GivenOption>& given) {
  ReadSettings read;
  read.detect = settings;
  TableReader reader(path, read);
  const Layout& layout = reader.layout();
  if (!layout.no_table.empty()) {
    throw std::runtime_error("no table was found in it: " + layout.no_table);
  }
  Facts facts;
  facts.path = path;
  facts.given = arguments_of(given, settings);
  facts.compression = compression_of(path);
  describe(layout, facts);
  const Account account = read_types(reader, settings, facts);
  count_lines(account, facts);
  look_at_cells(path, layout, read, facts);
  find_oddity(layout, account, facts);
  facts.account = account;
  return facts;
}

Facts converted(const Facts& facts) {
  Facts plain;
  plain.path = facts.path;
  plain.given = facts.given;
  plain.encoding = "UTF-8";
  plain.delimiters = {","};
  plain.quote = "\"";
  plain.first_data_line = 2;
  plain.names_line = 1;
  plain.num_rows = facts.num_rows;
  plain.has_breaks_in_cells = true;
  plain.is_converted = true;
  for (const ColumnFact& each : facts.columns) {
    ColumnFact column;
    column.name = each.name;
    column.type = each.type;
    column.kind = each.kind;
    column.is_utc = each.is_utc;
    column.fits_double = each.fits_double;
    if (each.type == ColumnType::date) column.format = "%Y-%m-%d";
    if (each.type == ColumnType::date_time) column.format = "%Y-%m-%dT%H:%M:%S";
    plain.columns.push_back(std::move(column));
  }
  return plain;
}

}  // namespace textio::tool
