#include "differential/reading_comparison.hpp"

#include <algorithm>
#include <array>
#include <cmath>
#include <optional>
#include <sstream>
#include <utility>

#include <vltextstream/layout/file_error.hpp>
#include <vltextstream/text/utf8.hpp>
#include "reference/table_reference.hpp"
#include "support/printing.hpp"

namespace textio::differential {
namespace {

using namespace reading;
using standalone::Layout;
using standalone::LayoutMode;
using standalone::LineRole;
using testing_support::readable;

// ---------------------------------------------------------------------------------------------
// Tables at random

template <typename List>
const auto& one_of(const Choose& choose, const List& list) {
  return list[choose(std::size(list))];
}

// One time in `times`.
bool seldom(const Choose& choose, std::size_t times) { return choose(times) == times - 1; }

constexpr std::u16string_view kEndings[] = {u"\n", u"\r\n", u"\r"};
constexpr std::u16string_view kOdd[] = {
    u"\"", u"'", u"\n", u"\r", u"\r\n",   u",",          u"\\",     u" ",  u"\t",
    u"\0", u"#", u"|",  u";",  u"\uFFFF", u"\U0001F600", u"\u00A0", u"::", u"\uFEFF"};

class TableWriter {
 public:
  TableWriter(const Choose& choose, Layout& layout) : choose_(choose), layout_(layout) {}

  std::u16string take() {
    const std::size_t rows = seldom(choose_, 40) ? 300 + choose_(256) : choose_(30);
    const bool is_long = seldom(choose_, 6);
    add_lines(choose_(4), [&] { line(word()); });
    for (std::size_t r = 0; r < rows; ++r) {
      const std::size_t times = is_long ? 10 : 1;
      for (std::size_t i = 0; i < times; ++i) add_row();
    }
    add_lines(choose_(3), [&] { line(word()); });
    if (seldom(choose_, 3)) drop_last_ending();
    const std::size_t changes = seldom(choose_, 2) ? choose_(6) : 0;
    for (std::size_t i = 0; i < changes; ++i) change();
    return std::move(text_);
  }

 private:
  template <typename Add>
  static void add_lines(std::size_t count, Add add) {
    for (std::size_t i = 0; i < count; ++i) add();
  }

  void line(const std::u16string& content) {
    text_ += content;
    text_ += seldom(choose_, 12) ? one_of(choose_, kEndings) : ending_;
  }

  void add_row() {
    if (seldom(choose_, 12)) return line(seldom(choose_, 2) ? u"  " : u"");
    if (seldom(choose_, 10)) return line(layout_.dialect.comment_prefix + u" " + word());
    std::size_t cells = layout_.num_variables;
    if (seldom(choose_, 8)) cells = choose_(7);
    std::u16string row;
    for (std::size_t c = 0; c < cells; ++c) {
      if (layout_.mode == LayoutMode::fixed_width) {
        row += padded(word(), c < layout_.widths.size() ? layout_.widths[c] : 3);
      } else if (layout_.mode == LayoutMode::space_aligned) {
        row += padded(word(), 5);
        row.append(layout_.least_blanks, u' ');
      } else {
        if (c > 0) row += delimiter();
        row += cell();
      }
    }
    line(row);
  }

  static std::u16string padded(std::u16string text, std::size_t width) {
    if (text.size() < width) text.append(width - text.size(), u' ');
    return text;
  }

  std::u16string delimiter() {
    if (layout_.delimiters.empty()) return u"";
    std::u16string text = one_of(choose_, layout_.delimiters);
    if (layout_.dialect.blanks_after_delimiters && !seldom(choose_, 3)) text += u' ';
    return text;
  }

  std::u16string word() {
    static constexpr std::u16string_view kWords[] = {u"a",          u"12",
                                                     u"",           u"2.5",
                                                     u"x y",        u"north",
                                                     u"-7",         u"NA",
                                                     u"1e3",        u"\u00E9t\u00E9",
                                                     u"2024-01-31", u"\U0001F600b",
                                                     u"yes",        u"99999999999999999999",
                                                     u" b",         u"c  ",
                                                     u"\u4EAC",     u"no",
                                                     u"0"};
    return std::u16string(one_of(choose_, kWords));
  }

  std::u16string cell() {
    const char16_t quote = layout_.quote.value_or(u'"');
    if (!seldom(choose_, 4)) return word();
    std::u16string text(1, quote);
    const std::size_t parts = choose_(4);
    for (std::size_t i = 0; i < parts; ++i) {
      switch (choose_(6)) {
        case 0:
          text += word();
          break;
        case 1:
          text += ending_;
          break;
        case 2:
          text += delimiter();
          break;
        case 3:
          text += layout_.escape ? std::u16string{*layout_.escape, quote} : word();
          break;
        default:
          text += std::u16string(2, quote);
      }
    }
    text += quote;
    return seldom(choose_, 6) ? u" " + text + u" " : text;
  }

  void drop_last_ending() {
    while (!text_.empty() && (text_.back() == u'\n' || text_.back() == u'\r')) text_.pop_back();
  }

  void change() {
    const std::size_t places = text_.size() + 1;
    const std::size_t at = (choose_(256) * 256 + choose_(256)) % places;
    const bool splits_pair = at < text_.size() && (text_[at] & 0xFC00) == 0xDC00;
    if (!splits_pair) text_.insert(at, one_of(choose_, kOdd));
  }

  const Choose& choose_;
  Layout& layout_;
  std::u16string ending_{one_of(choose_, kEndings)};
  std::u16string text_;
};

void choose_separators(const Choose& choose, Layout& layout) {
  static const std::vector<std::u16string> kDelimiters = {u",",  u";", u"\t", u"|",
                                                          u"::", u" ", u"ab"};
  switch (choose(8)) {
    case 0:
      layout.mode = LayoutMode::line_reader;
      layout.num_variables = 1;
      break;
    case 1:
    case 2:
      layout.mode = LayoutMode::space_aligned;
      layout.delimiters = {u" ", u"\t"};
      layout.least_blanks = 1 + choose(3);
      layout.rest_in_last = seldom(choose, 3);
      return;
    case 3:
    case 4:
      layout.mode = LayoutMode::fixed_width;
      for (std::size_t c = 0; c < layout.num_variables; ++c) layout.widths.push_back(1 + choose(6));
      return;
    default:
      layout.mode = LayoutMode::delimited;
      layout.delimiters = {one_of(choose, kDelimiters)};
      if (seldom(choose, 6)) layout.delimiters.push_back(one_of(choose, kDelimiters));
      layout.dialect.blanks_after_delimiters = seldom(choose, 4);
  }
  constexpr char16_t kQuotes[] = {u'"', u'"', u'\'', u'"'};
  if (!seldom(choose, 4)) layout.quote = one_of(choose, kQuotes);
  if (seldom(choose, 4)) layout.escape = u'\\';
}

std::size_t num_lines_of(const std::u16string& text) {
  std::size_t count = 0;
  for (std::size_t i = 0; i < text.size(); ++i) {
    const bool is_crlf = text[i] == u'\r' && i + 1 < text.size() && text[i + 1] == u'\n';
    if ((text[i] == u'\n' || text[i] == u'\r') && !is_crlf) ++count;
  }
  const bool is_open = !text.empty() && text.back() != u'\n' && text.back() != u'\r';
  return count + (is_open ? 1 : 0);
}

// Puts lines above the table and a footer into the layout of a text of `num_lines` lines.
void choose_lines(const Choose& choose, std::size_t num_lines, Layout& layout) {
  const std::size_t above = choose(5);
  layout.header_lines = above;
  if (above > 0 && !seldom(choose, 3)) layout.names_line = above;
  if (above > 1 && seldom(choose, 3)) layout.units_line = above - 1;
  if (above > 2 && seldom(choose, 3)) layout.descriptions_line = above - 2;
  if (seldom(choose, 4)) {
    layout.has_more_text = true;
    layout.tail.emplace().footer_lines = choose(5);
  } else if (seldom(choose, 4) && num_lines > above + 4) {
    const std::size_t footer = num_lines - choose(3);
    if (above > 0) layout.lines.push_back({LineRole::header, 1, above});
    layout.lines.push_back({LineRole::data, above + 1, footer - 1});
    layout.lines.push_back({LineRole::footer, footer, num_lines});
  }
}

Layout layout_without_lines(const Choose& choose) {
  constexpr std::u16string_view kComments[] = {u"", u"", u"#", u"//"};
  Layout layout;
  layout.encoding = "UTF-8";
  layout.confidence = 1.0;
  layout.num_variables = 1 + choose(5);
  layout.dialect.comment_prefix = one_of(choose, kComments);
  choose_separators(choose, layout);
  return layout;
}

// ---------------------------------------------------------------------------------------------
// Differences

class Differences {
 public:
  template <typename A, typename B>
  void expect_equal(std::string_view what, const A& got, const B& expected) {
    if (got == expected || !first_.empty()) return;
    std::ostringstream out;
    out << what << ": " << got << ", expected " << expected;
    first_ = out.str();
  }
  void expect(bool holds, std::string_view what) {
    if (!holds && first_.empty()) first_ = what;
  }
  const std::string& first() const { return first_; }

 private:
  std::string first_;
};

// ---------------------------------------------------------------------------------------------
// What a reading gives

struct Outcome {
  std::vector<Batch> batches;
  Account account;
  std::vector<std::string> names;
  std::string error;
};

Outcome outcome_of(std::string_view bytes, const Layout* layout, const ReadSettings& settings) {
  Outcome outcome;
  try {
    TableReader reader = layout != nullptr ? TableReader::of_bytes(bytes, *layout, settings)
                                           : TableReader::of_bytes(bytes, settings);
    try {
      while (std::optional<Batch> batch = reader.next())
        outcome.batches.push_back(std::move(*batch));
    } catch (const ReadError& error) {
      outcome.error = error.what();
      if (reader.next()) outcome.error += "; and then a batch";
    }
    outcome.account = reader.account();
    outcome.names = reader.names();
  } catch (const ReadError& error) {
    outcome.error = error.what();
  } catch (const standalone::FileError& error) {
    outcome.error = error.what();
  }
  return outcome;
}

std::string fates_of(const Account& account) {
  std::string fates;
  for (const FateRun& run : account.runs) {
    for (std::uint64_t i = 0; i < run.num_lines; ++i) {
      fates += to_string(run.fate);
      fates += '\n';
    }
  }
  return fates;
}

// In quotes and on one line.
std::string shown(std::string_view text) {
  std::string out = "'";
  for (const char byte : text) {
    if (byte == '\n') {
      out += "\\n";
    } else if (byte == '\r') {
      out += "\\r";
    } else {
      out += byte;
    }
  }
  return out + "'";
}

// A value as text, so that values of different batches can be compared.
std::string value_at(const Column& column, std::size_t row) {
  if (column.is_missing(row)) return "missing";
  switch (column.type) {
    case ColumnType::integer:
    case ColumnType::time:
    case ColumnType::date_time:
    case ColumnType::duration:
      return std::to_string(column.integers[row]);
    case ColumnType::real: {
      std::ostringstream out;
      out.precision(17);
      out << column.reals[row];
      return out.str();
    }
    case ColumnType::boolean:
      return column.boolean_at(row) ? "true" : "false";
    case ColumnType::date:
      return std::to_string(column.days[row]);
    default:
      return shown(column.text_at(row));
  }
}

// A line for each row: its line in the file, and its values up to the last one that is not missing.
std::string rows_of(const std::vector<Batch>& batches) {
  std::string out;
  for (const Batch& batch : batches) {
    for (std::size_t row = 0; row < batch.num_rows; ++row) {
      out += std::to_string(batch.lines[row]);
      std::string pending;
      for (const Column& column : batch.columns) {
        pending += " " + value_at(column, row);
        if (column.is_missing(row)) continue;
        out += pending;
        pending.clear();
      }
      out += '\n';
    }
  }
  return out;
}

std::string first_lines_that_differ(const std::string& got, const std::string& expected) {
  if (got == expected) return {};
  std::istringstream ours(got);
  std::istringstream theirs(expected);
  std::string a;
  std::string b;
  for (std::size_t line = 1;; ++line) {
    const bool has_a = static_cast<bool>(std::getline(ours, a));
    const bool has_b = static_cast<bool>(std::getline(theirs, b));
    if (!has_a) a = "nothing";
    if (!has_b) b = "nothing";
    if (a != b || !has_a) return std::to_string(line) + ": " + a + "\nexpected: " + b;
  }
}

// ---------------------------------------------------------------------------------------------
// What holds of every column

bool is_utf8(std::string_view text) {
  for (std::size_t i = 0; i < text.size();) {
    const auto byte = [&](std::size_t at) {
      return at < text.size() ? static_cast<unsigned char>(text[at]) : 0U;
    };
    const unsigned first = byte(i);
    const std::size_t length = first < 0x80 ? 1 : first < 0xE0 ? 2 : first < 0xF0 ? 3 : 4;
    unsigned code = length == 1 ? first : first & (0xFFU >> (length + 1));
    if (first >= 0x80 && (first < 0xC2 || first > 0xF4)) return false;
    for (std::size_t k = 1; k < length; ++k) {
      if ((byte(i + k) & 0xC0) != 0x80) return false;
      code = code << 6U | (byte(i + k) & 0x3FU);
    }
    constexpr unsigned kLeast[] = {0, 0, 0x80, 0x800, 0x10000};
    if (code < kLeast[length] || code > 0x10FFFF || (code >= 0xD800 && code <= 0xDFFF))
      return false;
    i += length;
  }
  return true;
}

bool has_bits(const std::vector<std::uint8_t>& bits, std::size_t size) {
  return bits.size() == (size + 7) / 8;
}

void check_texts(const Column& column, Differences& found) {
  found.expect_equal("offsets", column.offsets.size(), column.size + 1);
  if (!found.first().empty()) return;
  found.expect_equal("the first offset", column.offsets.front(), 0);
  found.expect_equal("the last offset", static_cast<std::size_t>(column.offsets.back()),
                     column.bytes.size());
  found.expect(std::is_sorted(column.offsets.begin(), column.offsets.end()), "offsets ascend");
  if (!found.first().empty()) return;
  for (std::size_t row = 0; row < column.size; ++row) {
    const std::string_view text = column.text_at(row);
    found.expect(is_utf8(text), "a text is UTF-8");
    if (column.is_missing(row)) found.expect_equal("bytes of a missing text", text.size(), 0U);
  }
}

void check_codes(const Column& column, Differences& found) {
  found.expect_equal("codes", column.codes.size(), column.size);
  if (!found.first().empty()) return;
  for (std::size_t row = 0; row < column.size; ++row) {
    const auto code = static_cast<std::size_t>(column.codes[row]);
    if (!column.is_missing(row)) found.expect(code < column.words.size(), "a code has a word");
  }
  for (const std::string& word : column.words) found.expect(is_utf8(word), "a word is UTF-8");
}

void check_arrays(const Column& column, Differences& found) {
  const bool is_integer = column.type == ColumnType::integer || column.type == ColumnType::time ||
                          column.type == ColumnType::date_time ||
                          column.type == ColumnType::duration;
  const auto size_if = [&](bool is_used) { return is_used ? column.size : 0; };
  found.expect_equal("integers", column.integers.size(), size_if(is_integer));
  found.expect_equal("reals", column.reals.size(), size_if(column.type == ColumnType::real));
  found.expect_equal("days", column.days.size(), size_if(column.type == ColumnType::date));
  found.expect(has_bits(column.booleans, size_if(column.type == ColumnType::boolean)),
               "bits of booleans");
  if (column.type == ColumnType::category) return check_codes(column, found);
  if (column.type == ColumnType::text || column.type == ColumnType::decimal)
    return check_texts(column, found);
}

void check_column(const Column& column, std::size_t num_rows, Differences& found) {
  found.expect_equal("values of a column", column.size, num_rows);
  found.expect(column.validity.empty() || has_bits(column.validity, num_rows), "validity bits");
  if (!found.first().empty()) return;
  check_arrays(column, found);
  if (!found.first().empty()) return;
  std::size_t missing = 0;
  for (std::size_t row = 0; row < num_rows; ++row) missing += column.is_missing(row) ? 1 : 0;
  found.expect_equal("missing values", column.num_missing, missing);
  found.expect_equal("whether there are validity bits", !column.validity.empty(), missing > 0);
}

// ---------------------------------------------------------------------------------------------
// What holds of every account

// The lines of bytes in which "\n" and "\r" are as in ASCII, or as two or four bytes each.
std::uint64_t lines_in(std::string_view bytes, const std::string& encoding) {
  const std::size_t step =
      encoding.starts_with("UTF-32") ? 4 : (encoding.starts_with("UTF-16") ? 2 : 1);
  const bool is_little = encoding.ends_with("LE");
  const auto unit_at = [&](std::size_t i) {
    std::uint32_t unit = 0;
    for (std::size_t k = 0; k < step; ++k) {
      const std::size_t at = i + (is_little ? step - 1 - k : k);
      unit = unit << 8U | (at < bytes.size() ? static_cast<unsigned char>(bytes[at]) : 0xFFU);
    }
    return unit;
  };
  std::size_t begin = 0;
  if (encoding == "UTF-8" && bytes.starts_with("\xEF\xBB\xBF")) begin = 3;
  if (step > 1 && unit_at(0) == 0xFEFF) begin = step;
  std::uint64_t lines = 0;
  bool is_open = false;
  for (std::size_t i = begin; i < bytes.size(); i += step) {
    const std::uint32_t unit = unit_at(i);
    const bool is_crlf = unit == '\r' && i + step < bytes.size() && unit_at(i + step) == '\n';
    if (is_crlf) i += step;
    is_open = unit != '\n' && unit != '\r';
    if (!is_open) ++lines;
  }
  return lines + (is_open ? 1 : 0);
}

void check_sums(const Account& account, Differences& found) {
  Account::Sum sum;
  for (const Account::Sum& each : account.sums) {
    sum.lines += each.lines;
    sum.bytes += each.bytes;
  }
  found.expect_equal("lines of all fates", sum.lines, account.num_lines);
  found.expect_equal("bytes of all fates", sum.bytes, account.num_bytes);
  if (account.has_more_runs) return;
  std::array<Account::Sum, kLineFates> sums{};
  std::uint64_t next = 1;
  for (std::size_t i = 0; i < account.runs.size(); ++i) {
    const FateRun& run = account.runs[i];
    found.expect_equal("the first line of a run", run.first_line, next);
    found.expect(run.num_lines > 0, "a run has lines");
    found.expect(run.num_bytes > 0, "a run has bytes");
    if (i > 0)
      found.expect(run.fate != account.runs[i - 1].fate, "runs differ from their neighbours");
    next += run.num_lines;
    sums[static_cast<std::size_t>(run.fate)].lines += run.num_lines;
    sums[static_cast<std::size_t>(run.fate)].bytes += run.num_bytes;
  }
  found.expect(sums == account.sums, "runs add up to the sums");
}

void check_places(const Account& account, Differences& found) {
  std::array<std::uint64_t, kOddities> places{};
  for (const OddPlace& place : account.places) {
    ++places[static_cast<std::size_t>(place.oddity)];
    found.expect(place.line >= 1 && place.line <= account.num_lines, "a place is in the file");
    found.expect(is_utf8(place.text), "the text of a place is UTF-8");
  }
  for (std::size_t i = 0; i < kOddities; ++i) {
    if (static_cast<Oddity>(i) == Oddity::ill_formed) continue;
    found.expect_equal("places of an oddity", places[i],
                       std::min<std::uint64_t>(account.oddities[i], Account::kMostPlaces));
  }
}

void check_batches(const Outcome& outcome, Differences& found) {
  std::uint64_t rows = 0;
  std::uint64_t line = 0;
  std::size_t columns = 0;
  for (const Batch& batch : outcome.batches) {
    rows += batch.num_rows;
    found.expect(batch.num_rows > 0, "a batch has rows");
    found.expect_equal("lines of a batch", batch.lines.size(), batch.num_rows);
    for (const std::uint64_t each : batch.lines) {
      found.expect(each >= line, "lines ascend");
      line = each;
    }
    found.expect(batch.columns.size() >= columns, "columns are added only");
    columns = batch.columns.size();
    for (const Column& column : batch.columns) check_column(column, batch.num_rows, found);
  }
  found.expect(line <= outcome.account.num_lines, "rows are in lines of the file");
  if (!outcome.error.empty()) return;
  found.expect_equal("rows", rows, outcome.account.num_rows);
  // A record that adds a column may be left out itself.
  const std::size_t names = outcome.names.size();
  const bool may_have_more = outcome.account.lines_of(LineFate::omitted) > 0;
  found.expect(outcome.batches.empty() || names == columns || (may_have_more && names > columns),
               "names");
}

void check_account(std::string_view bytes, const std::string& encoding, const Outcome& outcome,
                   Differences& found) {
  const Account& account = outcome.account;
  check_sums(account, found);
  check_batches(outcome, found);
  if (!outcome.error.empty()) return;
  check_places(account, found);
  const std::uint64_t lines = lines_in(bytes, encoding);
  found.expect_equal("lines", account.num_lines, lines);
  // A byte-order mark alone is no line.
  found.expect_equal("bytes", account.num_bytes, lines == 0 ? 0 : bytes.size());
  found.expect_equal("failed lines", account.lines_of(LineFate::failed), 0U);
}

// All that does not depend on where windows end: cells that are widened do.
void compare(std::string_view what, const Outcome& a, const Outcome& b, bool with_values,
             Differences& found) {
  found.expect_equal(std::string(what) + ": error", a.error, b.error);
  const auto expect_same = [&](const char* part, const std::string& x, const std::string& y) {
    const std::string difference = first_lines_that_differ(x, y);
    found.expect(difference.empty(), std::string(what) + ": " + part + " " + difference);
  };
  if (with_values) expect_same("row", rows_of(a.batches), rows_of(b.batches));
  expect_same("fate of line", fates_of(a.account), fates_of(b.account));
  found.expect(a.account.runs == b.account.runs, std::string(what) + ": runs");
  found.expect_equal(std::string(what) + ": rows", a.account.num_rows, b.account.num_rows);
  for (const Oddity oddity : {Oddity::ill_formed, Oddity::short_row, Oddity::long_row}) {
    found.expect_equal(std::string(what) + ": " + std::string(to_string(oddity)),
                       a.account.count_of(oddity), b.account.count_of(oddity));
  }
}

}  // namespace

Layout random_layout(const Choose& choose) {
  Layout layout = layout_without_lines(choose);
  choose_lines(choose, 1 + choose(40), layout);
  if (seldom(choose, 4) && layout.mode == LayoutMode::delimited) {
    layout.is_framed = true;
  }
  if (seldom(choose, 4)) layout.confidence.reset();
  if (layout.mode == LayoutMode::fixed_width) layout.confidence = 1.0;
  return layout;
}

RandomTable random_table(const Choose& choose) {
  RandomTable table;
  table.layout = layout_without_lines(choose);
  table.text = TableWriter(choose, table.layout).take();
  choose_lines(choose, num_lines_of(table.text), table.layout);
  if (!table.text.empty() && table.text[0] == 0xFEFF) table.text.erase(0, 1);
  table.bytes = (seldom(choose, 8) ? "\xEF\xBB\xBF" : "") + to_utf8_lossy(table.text);
  return table;
}

ReadSettings random_settings(const Choose& choose) {
  ReadSettings settings;
  parser::options& rules = settings.detect.options;
  settings.widen = !seldom(choose, 3);
  settings.decimals_as_text = seldom(choose, 4);
  settings.categories = seldom(choose, 3);
  if (!seldom(choose, 3)) return settings;
  using namespace parser;
  rules.missing_rule = static_cast<row_rule>(choose(3));
  rules.import_error_rule = static_cast<row_rule>(choose(3));
  rules.consecutive_delimiters_rule = static_cast<consecutive_delimiters_action>(choose(2));
  rules.leading_delimiters_rule = static_cast<leading_delimiters_action>(choose(2));
  rules.empty_line_rule = static_cast<empty_line_action>(choose(2));
  rules.extra_columns_rule = static_cast<extra_columns_action>(choose(3));
  rules.partial_field_rule = static_cast<partial_field_action>(choose(5));
  rules.text_type = static_cast<text_kind>(choose(2));
  rules.datetime_type = static_cast<datetime_kind>(choose(3));
  return settings;
}

std::string difference_from_reference(const RandomTable& table, std::size_t window) {
  ReadSettings settings;
  settings.all_text = true;
  settings.window = window;
  const Outcome outcome = outcome_of(table.bytes, &table.layout, settings);
  const reference::ReadTable plain = reference::read_table(table.text, table.layout);
  Differences found;
  found.expect_equal("error", outcome.error, std::string());
  std::string rows;
  for (const reference::TableRow& row : plain.rows) {
    rows += std::to_string(row.line);
    for (const std::u16string& cell : row.cells) rows += " " + shown(to_utf8_lossy(cell));
    rows += '\n';
  }
  std::string difference = first_lines_that_differ(rows_of(outcome.batches), rows);
  found.expect(difference.empty(), "row " + difference);
  std::string fates;
  for (const std::string& fate : plain.fates) fates += fate + '\n';
  difference = first_lines_that_differ(fates_of(outcome.account), fates);
  found.expect(difference.empty(), "fate of line " + difference);
  found.expect_equal("columns", outcome.names.size(), plain.num_columns);
  return found.first();
}

std::string difference_in_reading(std::string_view bytes, const Layout* layout,
                                  const ReadingChecks& checks) {
  std::optional<Layout> detected;
  if (layout == nullptr) {
    detected = TableReader::of_bytes(bytes, checks.settings).layout();
    layout = &*detected;
  }
  Differences found;
  const Outcome whole = outcome_of(bytes, layout, checks.settings);
  check_account(bytes, layout->encoding, whole, found);
  for (const std::size_t window : {std::size_t{256}, std::size_t{1000}}) {
    ReadSettings settings = checks.settings;
    settings.window = window;
    const Outcome pieces = outcome_of(bytes, layout, settings);
    const std::string what = "window " + std::to_string(window);
    check_account(bytes, layout->encoding, pieces, found);
    // A row may lack a value in a column that a later window adds, and be left out for that.
    const bool depends_on_columns =
        whole.account.count_of(Oddity::long_row) > 0 &&
        checks.settings.detect.options.missing_rule != parser::row_rule::fill;
    const bool depends_on_types = checks.settings.widen && !checks.settings.all_text;
    if (!depends_on_columns) compare(what, pieces, whole, !depends_on_types, found);
    settings.two_passes = true;
    const Outcome twice = outcome_of(bytes, layout, settings);
    ReadSettings whole_twice = settings;
    whole_twice.window = checks.settings.window;
    check_account(bytes, layout->encoding, twice, found);
    compare(what + ", two passes", twice, outcome_of(bytes, layout, whole_twice), true, found);
    if (!checks.with_threads) continue;
    settings.two_passes = false;
    settings.num_threads = 3;
    const Outcome threads = outcome_of(bytes, layout, settings);
    compare(what + ", three threads", threads, pieces, true, found);
    found.expect(threads.account == pieces.account, what + ", three threads: account");
  }
  if (detected && whole.error.empty()) {
    const Table table = read_table_of_bytes(bytes, checks.settings);
    Outcome all{table.batches, table.account, table.names, {}};
    check_account(bytes, layout->encoding, all, found);
    ReadSettings twice = checks.settings;
    twice.two_passes = true;
    const bool was_widened = whole.account.count_of(Oddity::widened) > 0;
    compare("read_table", all, was_widened ? outcome_of(bytes, layout, twice) : whole, true, found);
  }
  return found.first();
}

}  // namespace textio::differential
