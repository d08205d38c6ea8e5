// A reader with as little mercy as the strictest one. It knows cells alone by what is at their borders, so that it needs
// no decoding: all that separates is ASCII.
#include "tool/emit/file_scan.hpp"

#include <fstream>
#include <stdexcept>
#include <vector>

namespace textio::tool {
namespace {

bool is_blank(char c) { return c == ' ' || c == '\t'; }

constexpr const char* kBlanks = "blanks around cells do not belong to them";
constexpr const char* kQuotes = "quotes are within cells, where they do not quote";
constexpr const char* kOpenQuote = "a quote is not closed";
constexpr const char* kCounts = "not every record has as many cells as there are columns";
constexpr const char* kRows = "not every line after the first of the data is a record";
constexpr const char* kPreamble = "a quoted text goes over several lines above the data";
constexpr const char* kControls = "it has control characters";
constexpr const char* kEndings = "lines end in different ways";

class Scan {
 public:
  explicit Scan(const ExpectedRecords& expected) : expected_(expected) {}

  // Of a code unit that is not ASCII, '\x80'.
  void take(char c) {
    note_ending(c);
    if (c == '\n' && is_after_cr_) {
      is_after_cr_ = false;
      return;
    }
    is_after_cr_ = c == '\r';
    if (is_after_cr_) c = '\n';
    if (c == 0 || c == '\x1A' || c == '\f' || c == '\v') fail(kControls);
    if (is_within_quotes_) {
      take_quoted(c);
    } else {
      take_plain(c);
    }
    if (c == '\n') ++line_;
  }

  ScannedRecords finish() {
    if (is_within_quotes_ && !after_quote_) fail(kOpenQuote);
    if (has_units_) end_record();
    if (num_rows_ != expected_.num_rows) fail(kRows);
    if ((has_lf_ ? 1 : 0) + (has_cr_ ? 1 : 0) + (has_crlf_ ? 1 : 0) > 1) fail(kEndings);
    return result_;
  }

 private:
  void note_ending(char c) {
    if (c == '\n') (is_after_cr_ ? has_crlf_ : has_lf_) = true;
    if (is_after_cr_ && c != '\n') has_cr_ = true;
  }

  void fail(const char* oddity) {
    if (result_.oddity.empty()) result_.oddity = oddity;
  }

  bool is_above_data() const { return record_line_ < expected_.first_line; }

  void begin_cell() {
    is_cell_begun_ = false;
    last_ = 0;
    was_quoted_ = false;
  }

  void end_cell() {
    if (!is_above_data() && !was_quoted_ && is_blank(last_) && last_ != expected_.delimiter) {
      fail(kBlanks);
    }
    ++num_cells_;
    begin_cell();
  }

  void end_record() {
    end_cell();
    if (is_above_data()) {
      if (line_ != record_line_) fail(kPreamble);
    } else if (is_comment_) {
    } else if (num_cells_ != expected_.num_columns) {
      fail(kCounts);
    } else {
      ++num_rows_;
    }
    has_units_ = false;
    num_cells_ = 0;
    is_comment_ = false;
  }

  void take_quoted(char c) {
    if (is_escaped_) {
      is_escaped_ = false;
      return;
    }
    if (after_quote_) {
      after_quote_ = false;
      if (c == expected_.quote && !expected_.has_backslash) return;
      is_within_quotes_ = false;
      if (c != expected_.delimiter && c != '\n') {
        fail(is_blank(c) ? kBlanks : kQuotes);
      }
      last_ = 0;
      take_plain(c);
      return;
    }
    if (c == '\n' && !is_above_data()) result_.has_breaks_in_cells = true;
    if (c == '\\' && expected_.has_backslash) {
      is_escaped_ = true;
    } else if (c == expected_.quote) {
      after_quote_ = true;
    }
  }

  void take_plain(char c) {
    if (c == '\n') {
      if (has_units_) end_record();
      return;
    }
    if (!has_units_) {
      has_units_ = true;
      record_line_ = line_;
      begin_cell();
      match_ = 0;
    }
    note_comment(c);
    if (is_comment_) return;
    if (c == expected_.delimiter) return end_cell();
    const bool is_quote = expected_.quote != 0 && c == expected_.quote;
    if (is_quote && !is_cell_begun_) {
      is_within_quotes_ = was_quoted_ = is_cell_begun_ = true;
      return;
    }
    if (!is_above_data()) {
      if (is_quote) fail(kQuotes);
      if (expected_.quote == 0 && c == '"') fail(kQuotes);
      if (expected_.has_backslash && c == '\\') fail("backslashes are outside quotes");
      if (!is_cell_begun_ && is_blank(c)) fail(kBlanks);
    } else if (is_quote) {
      fail(kPreamble);
    }
    is_cell_begun_ = true;
    last_ = c;
  }

  // Comments begin lines.
  void note_comment(char c) {
    if (expected_.comment.empty() || match_ == std::string::npos) return;
    match_ = c == expected_.comment[match_] ? match_ + 1 : std::string::npos;
    if (match_ == expected_.comment.size()) {
      is_comment_ = true;
      match_ = std::string::npos;
    }
  }

  const ExpectedRecords& expected_;
  ScannedRecords result_;
  std::size_t line_ = 1;
  std::size_t record_line_ = 1;
  std::size_t num_cells_ = 0;
  std::size_t num_rows_ = 0;
  std::size_t match_ = 0;
  char last_ = 0;
  bool has_units_ = false;
  bool is_cell_begun_ = false;
  bool was_quoted_ = false;
  bool is_within_quotes_ = false;
  bool after_quote_ = false;
  bool is_escaped_ = false;
  bool is_comment_ = false;
  bool is_after_cr_ = false;
  bool has_lf_ = false;
  bool has_cr_ = false;
  bool has_crlf_ = false;
};

// The code unit as Scan wants it; '\0' for the zero bytes of a wide one is none.
char unit_of(const char* bytes, const ExpectedRecords& expected) {
  const std::size_t size = expected.unit_bytes;
  const std::size_t low = expected.is_big_endian ? size - 1 : 0;
  for (std::size_t i = 0; i < size; ++i) {
    if (i != low && bytes[i] != 0) return '\x80';
  }
  return static_cast<unsigned char>(bytes[low]) < 0x80 ? bytes[low] : '\x80';
}

std::size_t mark_bytes(const std::vector<char>& bytes, std::size_t count,
                       const ExpectedRecords& expected) {
  const std::string head(bytes.data(), count < 4 ? count : 4);
  if (expected.unit_bytes == 1) return head.starts_with("\xEF\xBB\xBF") ? 3 : 0;
  const bool has_mark = expected.unit_bytes == 2
                            ? head.starts_with("\xFF\xFE") || head.starts_with("\xFE\xFF")
                            : head.starts_with("\xFF\xFE") || head.ends_with("\xFE\xFF");
  return has_mark ? expected.unit_bytes : 0;
}

}  // namespace

ScannedRecords scan_records(const std::string& path, const ExpectedRecords& expected) {
  std::ifstream file(path, std::ios::binary);
  if (!file) throw std::runtime_error("cannot open '" + path + "' a second time");
  Scan scan(expected);
  std::vector<char> bytes(65'536);
  bool is_first = true;
  while (file) {
    file.read(bytes.data(), static_cast<std::streamsize>(bytes.size()));
    const auto count = static_cast<std::size_t>(file.gcount());
    std::size_t i = is_first ? mark_bytes(bytes, count, expected) : 0;
    is_first = false;
    for (; i + expected.unit_bytes <= count; i += expected.unit_bytes) {
      scan.take(unit_of(bytes.data() + i, expected));
    }
  }
  return scan.finish();
}

}  // namespace textio::tool
