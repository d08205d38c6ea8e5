// Each function below is one rule, with its steps in their order. Texts are copied freely. A line
// is copied into its own string before its fields are scanned, so that no scan of a line can read
// the text after it. Floating-point operations are in their order, each rounded separately; build
// without contraction (-ffp-contract=off).
#include "reference/reference.hpp"

#include <algorithm>
#include <set>
#include <stdexcept>
#include <utility>

namespace reference {

namespace {

char16_t unit_at(const std::u16string& text, std::size_t i) {
  return i < text.size() ? text.at(i) : kEndMark;
}

bool contains(const std::u16string& set, char16_t c) {
  return std::find(set.begin(), set.end(), c) != set.end();
}

std::size_t saturating_add(std::size_t a, std::size_t b) {
  return a > SIZE_MAX - b ? SIZE_MAX : a + b;
}

bool is_digit(char16_t c) { return c >= u'0' && c <= u'9'; }

// The part of the text that a span covers. Nothing after the end of the text is included.
std::u16string read(const std::u16string& text, const Span& span) {
  if (span.length == 0 || span.begin >= text.size()) return std::u16string();
  return text.substr(span.begin, span.length);
}

std::u16string trim(const std::u16string& text, const std::u16string& whitespace) {
  std::size_t begin = 0;
  while (begin < text.size() && contains(whitespace, text.at(begin))) ++begin;
  std::size_t end = text.size();
  while (end > begin && contains(whitespace, text.at(end - 1))) --end;
  return text.substr(begin, end - begin);
}

// Removes every c from ws by moving the later code units forward, without shortening ws: the last
// code units keep their values.
std::u16string remove_in_place(std::u16string ws, char16_t c) {
  std::size_t to = 0;
  for (std::size_t from = 0; from < ws.size(); ++from) {
    if (ws.at(from) == c) continue;
    ws.at(to) = ws.at(from);
    ++to;
  }
  return ws;
}

const std::vector<std::u16string>& blank_delimiters() {
  static const std::vector<std::u16string> list{u" ", u"\t"};
  return list;
}

bool is_blank(char16_t c) { return c == u' ' || c == u'\t'; }

// The index after the next quote at or after `i`; the end of the text if there is none.
std::size_t after_next_quote(const std::u16string& text, std::size_t i) {
  for (std::size_t k = i + 1; k < text.size(); ++k) {
    if (text.at(k) == u'"') return k + 1;
  }
  return text.size();
}

Extent extent(std::size_t begin, std::size_t end, std::size_t next) {
  return Extent{begin, end - begin, next};
}

}  // namespace

// -- markers -----------------------------------------------------------------------------------

std::size_t match_markers(const std::vector<std::u16string>& markers, const std::u16string& text,
                          std::size_t i) {
  const char16_t c = unit_at(text, i);
  const bool is_single_char = markers.size() == 1 && markers.at(0).size() == 1;
  if (is_single_char) return c == markers.at(0).at(0) ? 1 : 0;
  bool is_first_char = false;
  for (const std::u16string& s : markers) {
    if ((s.empty() ? u'\0' : s.at(0)) == c) is_first_char = true;
  }
  if (!is_first_char) return 0;
  const std::size_t remaining = i < text.size() ? text.size() - i : 0;
  for (const std::u16string& s : markers) {
    if (s.size() > remaining) continue;
    if (s.empty()) return 0;
    bool equal = true;
    for (std::size_t k = 0; k < s.size(); ++k) {
      if (s.at(k) != text.at(i + k)) equal = false;
    }
    if (equal) return s.size();
  }
  return 0;
}

std::u16string make_stop_chars(const std::vector<std::u16string>& a,
                               const std::vector<std::u16string>& b) {
  std::set<char16_t> units;
  for (const std::u16string& s : b) units.insert(s.empty() ? u'\0' : s.at(0));
  for (const std::u16string& s : a) units.insert(s.empty() ? u'\0' : s.at(0));
  return std::u16string(units.begin(), units.end());
}

// -- lines and fields of the four strategies ---------------------------------------------------

namespace {

// Line reader: the scan up to the next line ending.
Extent scan_line(const std::u16string& text, const Options& options, std::size_t pos) {
  const std::size_t n = text.size();
  const std::u16string stop_chars = make_stop_chars(options.line_endings, {});
  if (pos >= n || unit_at(text, pos) == kEndMark) return Extent{pos, 0, pos};
  std::size_t i = pos;
  for (;;) {
    while (i < n && !contains(stop_chars, text.at(i))) ++i;
    if (i == n) return extent(pos, n, n);
    if (text.at(i) == kEndMark) return extent(pos, i, i);
    const std::size_t m = match_markers(options.line_endings, text, i);
    if (m > 0) return extent(pos, i, i + m);
    i += 1;
    if (i >= n || unit_at(text, i) == kEndMark) return extent(pos, i, i);
  }
}

// Delimited and space-aligned: the scan of one field.
Extent tokenize(const std::vector<std::u16string>& delimiters, const Options& options,
                const std::u16string& stop_chars, const std::u16string& text, std::size_t pos) {
  const std::size_t n = text.size();
  if (pos >= n) return Extent{pos, 0, pos};
  std::size_t j = pos;
  if (text.at(pos) == u'"') {
    std::size_t i = after_next_quote(text, pos);
    for (;;) {
      if (i >= n || unit_at(text, i) == kEndMark) return extent(pos, i, i);
      if (text.at(i) != u'"') break;
      i = after_next_quote(text, i);
    }
    j = i;
  }
  if (unit_at(text, j) == kEndMark) return extent(pos, j, j);
  for (;;) {
    while (j < n && !contains(stop_chars, text.at(j))) ++j;
    if (j == n) return extent(pos, n, n);
    if (text.at(j) == kEndMark) return extent(pos, j, j);
    if (match_markers(options.line_endings, text, j) > 0) return extent(pos, j, j);
    const std::size_t m = match_markers(delimiters, text, j);
    if (m > 0) return extent(pos, j, j + m);
    j += 1;
    if (j >= n || unit_at(text, j) == kEndMark) return extent(pos, j, j);
  }
}

Extent delimited_line(const std::vector<std::u16string>& delimiters, const Options& options,
                      const std::u16string& text, std::size_t start) {
  const std::size_t n = text.size();
  const std::u16string stop_chars = make_stop_chars(delimiters, options.line_endings);
  std::size_t pos = start;
  for (;;) {
    if (pos >= n || unit_at(text, pos) == kEndMark) return extent(start, pos, pos);
    const Extent field = tokenize(delimiters, options, stop_chars, text, pos);
    const std::size_t e = field.begin + field.length;
    const std::size_t k = field.next;
    if (k != e) {
      if (k >= n || unit_at(text, k) == kEndMark) return extent(start, k, k);
    } else {
      const std::size_t m = match_markers(options.line_endings, text, e);
      if (m > 0) return extent(start, e, e + m);
      if (k >= n || unit_at(text, k) == kEndMark) return extent(start, k, k);
    }
    if (k <= pos) throw std::logic_error("the scan of a line does not advance");
    pos = k;
  }
}

std::size_t skip_blanks(const std::u16string& text, std::size_t i) {
  while (i < text.size() && is_blank(text.at(i))) ++i;
  return i;
}

Extent space_aligned_line(const Options& options, const std::u16string& text, std::size_t pos) {
  const std::size_t n = text.size();
  const std::vector<std::u16string>& delimiters = blank_delimiters();
  const std::u16string stop_chars = make_stop_chars(delimiters, options.line_endings);
  const std::size_t s = skip_blanks(text, pos);
  std::size_t p = s;
  for (;;) {
    if (p >= n || unit_at(text, p) == kEndMark) return extent(s, p, p);
    const Extent field = tokenize(delimiters, options, stop_chars, text, p);
    const std::size_t e = field.begin + field.length;
    const std::size_t k = field.next;
    if (k >= n) {
      if (k != e) return extent(s, k, k);
      return extent(s, k, k + match_markers(options.line_endings, text, k));
    }
    const std::size_t q = skip_blanks(text, k);
    if (q != e) {
      if (q >= n || unit_at(text, q) == kEndMark) return extent(s, q, q);
    } else {
      const std::size_t m = match_markers(options.line_endings, text, e);
      if (m > 0) return extent(s, e, e + m);
      if (q >= n || unit_at(text, q) == kEndMark) return extent(s, q, q);
    }
    if (q <= p) throw std::logic_error("the scan of a line does not advance");
    p = q;
  }
}

// Every index is tested, and an end mark inside the text does not end the scan.
Extent fixed_width_line(const Options& options, const std::u16string& text, std::size_t pos) {
  const std::size_t n = text.size();
  for (std::size_t i = pos; i <= n; ++i) {
    const std::size_t m = match_markers(options.line_endings, text, i);
    if (m > 0) return extent(pos, i, i + m);
  }
  return extent(pos, n, n);
}

// The column index advances with every call, whatever is found.
Extent fixed_width_field(const std::vector<std::size_t>& widths, const std::u16string& line,
                         std::size_t pos, std::size_t& next_column) {
  const std::size_t k = next_column;
  next_column = (k + 1) % widths.size();
  if (line.size() < pos) return Extent{line.size(), 0, line.size()};
  const std::size_t w = widths.at(k);
  return Extent{pos, w, std::min(saturating_add(pos, w), line.size())};
}

}  // namespace

Extent get_line_extent(Mode mode, const std::vector<std::u16string>& delimiters,
                       const std::u16string& text, const Options& options, std::size_t pos) {
  switch (mode) {
    case Mode::delimited:
      return delimited_line(delimiters, options, text, pos);
    case Mode::space_aligned:
      return space_aligned_line(options, text, pos);
    case Mode::fixed_width:
      return fixed_width_line(options, text, pos);
    case Mode::line_reader:
      break;
  }
  return scan_line(text, options, pos);
}

Extent get_next_field(Mode mode, const std::vector<std::u16string>& delimiters,
                      const std::vector<std::size_t>& widths, const std::u16string& line,
                      const Options& options, std::size_t pos, std::size_t& next_column) {
  if (mode == Mode::delimited) {
    const std::u16string stop_chars = make_stop_chars(delimiters, options.line_endings);
    return tokenize(delimiters, options, stop_chars, line, pos);
  }
  if (mode == Mode::space_aligned) {
    const std::u16string stop_chars = make_stop_chars(blank_delimiters(), options.line_endings);
    Extent field = tokenize(blank_delimiters(), options, stop_chars, line, pos);
    while (field.next < line.size() && is_blank(line.at(field.next))) field.next += 1;
    return field;
  }
  if (mode == Mode::fixed_width) return fixed_width_field(widths, line, pos, next_column);
  return scan_line(line, options, pos);
}

std::u16string line_whitespace(Mode mode, const std::vector<std::u16string>& delimiters,
                               const Options& options) {
  std::u16string ws = options.whitespace;
  if (mode == Mode::delimited) {
    for (const std::u16string& delimiter : delimiters) {
      if (delimiter.size() == 1) ws = remove_in_place(ws, delimiter.at(0));
    }
  }
  if (mode == Mode::space_aligned) {
    ws = remove_in_place(ws, u'\t');
    ws = remove_in_place(ws, u' ');
  }
  return ws;
}

// -- classes of fields -------------------------------------------------------------------------

namespace {

// No literal.
constexpr std::size_t kNoLiteral = kNpos;

char16_t to_upper(char16_t c) {
  return c >= u'a' && c <= u'z' ? static_cast<char16_t>(c - u'a' + u'A') : c;
}

// The end of the real literal that starts at p, or kNoLiteral.
std::size_t scan_real(const std::u16string& text, std::size_t p) {
  std::size_t i = p;
  if (unit_at(text, i) == u'+' || unit_at(text, i) == u'-') ++i;
  const std::size_t after_sign = i;
  bool has_digit = false;
  while (is_digit(unit_at(text, i))) {
    has_digit = true;
    ++i;
  }
  if (unit_at(text, i) == u'.') {
    ++i;
    while (is_digit(unit_at(text, i))) {
      has_digit = true;
      ++i;
    }
  }
  if (has_digit) {
    const std::size_t before_exponent = i;
    if (!contains(u"eEdD", unit_at(text, i))) return before_exponent;
    ++i;
    if (unit_at(text, i) == u'+' || unit_at(text, i) == u'-') ++i;
    const std::size_t exponent_digits = i;
    while (is_digit(unit_at(text, i))) ++i;
    return i > exponent_digits ? i : before_exponent;
  }
  std::u16string word;
  for (std::size_t k = 0; k < 3; ++k) word.push_back(to_upper(unit_at(text, after_sign + k)));
  if (word == u"NAN" || word == u"INF") return after_sign + 3;
  return kNoLiteral;
}

// Where the imaginary part of a complex literal begins; the length if the text is not complex.
std::size_t split_complex(const std::u16string& text) {
  const std::size_t n = text.size();
  if (n == 0) return n;
  if (text.at(n - 1) != u'i' && text.at(n - 1) != u'j') return n;
  std::size_t e1 = scan_real(text, 0);
  if (e1 == kNoLiteral) e1 = 0;
  if (e1 == n - 1) return 0;
  if (scan_real(text, e1 + 1) == n - 1) return e1;
  return n;
}

bool safe_is_datetime(const IsDatetime& is_datetime, const std::u16string& text) {
  try {
    return is_datetime(text);
  } catch (...) {
    return false;
  }
}

}  // namespace

bool is_number(const std::u16string& text) {
  const std::size_t n = text.size();
  if (n == 0) return true;
  const std::size_t s = split_complex(text);
  if (s == n) return scan_real(text, 0) == n;
  if (s > 0) return scan_real(text, s + 1) == n - 1;
  return true;
}

bool is_duration(const std::u16string& text) {
  std::size_t i = 0;
  while (is_digit(unit_at(text, i))) ++i;
  if (unit_at(text, i) != u':') return false;
  ++i;
  while (is_digit(unit_at(text, i))) ++i;
  if (unit_at(text, i) != u':') return false;
  ++i;
  while (is_digit(unit_at(text, i))) ++i;
  if (unit_at(text, i) == u'.') {
    ++i;
    while (is_digit(unit_at(text, i))) ++i;
  }
  return i == text.size();
}

std::u16string unquote(const std::u16string& field, const std::u16string& whitespace) {
  std::size_t opening = 0;
  while (opening < field.size() && contains(whitespace, field.at(opening))) ++opening;
  if (opening == field.size() || field.at(opening) != u'"') return field;
  std::u16string result = field.substr(0, opening);
  std::size_t i = opening + 1;
  while (i < field.size()) {
    if (field.at(i) != u'"') {
      result.push_back(field.at(i));
      i += 1;
    } else if (i + 1 == field.size()) {
      return result;
    } else if (field.at(i + 1) == u'"') {
      result.push_back(u'"');
      i += 2;
    } else {
      result.append(field, i + 1, std::u16string::npos);
      return result;
    }
  }
  // No closing quote: the last code unit is removed instead.
  if (!result.empty()) result.pop_back();
  return result;
}

std::uint16_t classify(const std::u16string& raw, const std::u16string& whitespace,
                       const IsDatetime& is_datetime) {
  std::u16string text = trim(raw, whitespace);
  text = trim(unquote(text, whitespace), whitespace);
  if (text.empty()) return kEmpty;
  bool has_digit = false;
  for (const char16_t c : text) {
    if (is_digit(c)) has_digit = true;
  }
  if (!has_digit) return kText;
  if (is_number(text)) return kNumber;
  if (is_duration(text)) return kDuration;
  const bool hours_and_minutes = text.size() == 5 && is_digit(text.at(0)) && is_digit(text.at(1)) &&
                                 text.at(2) == u':' && is_digit(text.at(3)) && is_digit(text.at(4));
  if (hours_and_minutes) return kDuration;
  if (safe_is_datetime(is_datetime, text)) return contains(text, u':') ? kDatetime : kDate;
  std::size_t space = 0;
  while (space < text.size() && text.at(space) != u' ') ++space;
  const std::u16string head = text.substr(0, space);
  std::size_t tail_begin = space;
  while (tail_begin < text.size() && text.at(tail_begin) == u' ') ++tail_begin;
  const std::u16string tail = text.substr(tail_begin);
  if (is_duration(head) && safe_is_datetime(is_datetime, tail)) return kDatetime;
  if (!is_duration(tail)) return kText;
  if (!safe_is_datetime(is_datetime, head)) return kText;
  return kDatetime;
}

// -- statistics of the field counts per line ---------------------------------------------------

std::size_t get_modified_median(const std::vector<std::size_t>& line_counts, std::size_t first) {
  if (first >= line_counts.size()) return 1;
  std::vector<std::size_t> greater;
  std::size_t m = 0;
  for (std::size_t i = first; i < line_counts.size(); ++i) {
    if (line_counts.at(i) > 1) greater.push_back(line_counts.at(i));
    if (line_counts.at(i) != 0) m += 1;
  }
  if (greater.empty()) return 1;
  if (m >= 11 && m / 3 > greater.size()) return 1;
  if (m < 11 && greater.size() == 1) return greater.at(0);
  std::sort(greater.begin(), greater.end());
  return greater.at((greater.size() + 1) / 2 - 1);
}

std::vector<std::size_t> get_abs_diffs(const std::vector<std::size_t>& line_counts,
                                       std::int32_t modal_field_count) {
  const std::int64_t modal = modal_field_count;
  std::size_t end = 0;  // one past the last line with the modal count
  for (std::size_t i = 0; i < line_counts.size(); ++i) {
    if (static_cast<std::int64_t>(line_counts.at(i)) == modal) end = i + 1;
  }
  std::vector<std::size_t> diffs;
  for (std::size_t i = 0; i < end; ++i) {
    if (line_counts.at(i) == 0) continue;
    const std::int64_t diff = static_cast<std::int64_t>(line_counts.at(i)) - modal;
    diffs.push_back(static_cast<std::size_t>(diff < 0 ? -diff : diff));
  }
  return diffs;
}

double get_total_variation(const std::vector<std::size_t>& diffs) {
  if (diffs.empty()) return std::numeric_limits<double>::infinity();
  double sum = 0.0;
  for (std::size_t i = 0; i < diffs.size(); ++i) sum += static_cast<double>(diffs.at(i));
  return sum / static_cast<double>(diffs.size());
}

double get_data_variation(const std::vector<std::size_t>& diffs, std::size_t header_lines,
                          double total_variation) {
  if (header_lines == 0) return total_variation;
  if (header_lines == diffs.size()) return std::numeric_limits<double>::infinity();
  if (header_lines > diffs.size()) return -0.0;
  double sum = 0.0;
  for (std::size_t i = header_lines; i < diffs.size(); ++i) {
    sum += static_cast<double>(diffs.at(i));
  }
  return sum / static_cast<double>(diffs.size() - header_lines);
}

std::size_t get_number_of_variables(const std::vector<std::size_t>& line_counts,
                                    std::size_t header_lines) {
  if (header_lines >= line_counts.size()) return 1;
  std::int32_t largest = 1;
  for (std::size_t i = header_lines; i < line_counts.size(); ++i) {
    const std::int32_t count = static_cast<std::int32_t>(line_counts.at(i));
    if (count > largest) largest = count;
  }
  return static_cast<std::size_t>(largest);
}

std::size_t skip_to_data(std::size_t h, const std::vector<std::size_t>& empty_lines,
                         const std::vector<std::size_t>& line_counts) {
  for (const std::size_t e : empty_lines) {
    if (h >= e) h = saturating_add(h, 1);
  }
  while (h < line_counts.size() && line_counts.at(h) <= 1) h += 1;
  return h;
}

std::vector<double> three_point_filter(const std::vector<double>& x, double a, double b, double c) {
  const std::size_t n = x.size();
  if (n < 2) return x;
  std::vector<double> s(n, 0.0);
  s.at(0) = (b + a) * x.at(0) + c * x.at(1);
  s.at(n - 1) = (b + c) * x.at(n - 1) + c * x.at(n - 2);
  for (std::size_t i = 1; i + 1 < n; ++i) {
    s.at(i) = a * x.at(i - 1) + b * x.at(i) + c * x.at(i + 1);
  }
  return s;
}

std::size_t get_header_lines(const std::vector<std::size_t>& d, std::size_t first, bool cap) {
  const std::size_t n = d.size();
  if (n < 2) return first;
  if (n == 2) return d.at(0) != d.at(1) ? 1 : 0;

  std::size_t k = n - 1;
  if (k <= first) return first;
  while (d.at(k - 1) == 0) {
    k -= 1;
    if (k <= first) return first;
  }

  std::vector<double> c(n, 0.0);
  std::vector<std::size_t> zeros(n, 0);
  for (std::size_t i = 0; i < n; ++i) {
    const double deviation = static_cast<double>(d.at(i));
    const std::size_t is_zero = d.at(i) == 0 ? 1 : 0;
    if (i == 0) {
      c.at(0) = deviation;  // never capped
      zeros.at(0) = is_zero;
    } else {
      c.at(i) = c.at(i - 1) + (cap ? std::min(2.0, deviation) : deviation);
      zeros.at(i) = zeros.at(i - 1) + is_zero;
    }
  }

  if (zeros.at(k - 1) > k / 2) {
    k -= 1;
    while (k > first && zeros.at(k - 1) > k / 2) k -= 1;
  }
  if (k <= first) return first;

  for (std::size_t i = 0; i < n; ++i) {
    const double mean = c.at(i) / static_cast<double>(i + 1);
    c.at(i) = mean * c.at(i);
  }
  const std::vector<double> s = three_point_filter(c, -1.0, 2.0, -1.0);

  std::size_t peak = 0;
  for (std::size_t i = 1; i < k; ++i) {
    if (s.at(i) > s.at(peak)) peak = i;
  }
  k = peak + 1;
  if (k <= first) k = first;

  while (k > 0 && d.at(k - 1) == 0) k -= 1;
  if (k == 0) return 0;
  if (3 * k > 2 * n) return first;
  return k;
}

// -- one strategy at work ----------------------------------------------------------------------

namespace {

struct Strategy {
  Mode mode;
  Options options;
  std::vector<std::u16string> delimiters;
  std::vector<std::size_t> widths;
  std::u16string whitespace;
  bool space_separated = false;
  Valuation valuation;
  std::size_t header_lines;
  bool header_lines_auto;
  bool valuation_done = false;
  std::u16string text;
  std::vector<Span> lines;
  std::size_t next_column = 0;
  std::vector<std::uint16_t> column_codes;

  Strategy(Mode mode_in, const std::vector<std::u16string>& delimiters_in,
           const std::vector<std::size_t>& widths_in, const Options& options_in);

  void set_header_lines(std::size_t n);
  void populate_fields(const std::u16string& text_in, std::size_t num_lines);
  void get_fields_from_lines(std::vector<Span>& fields, std::vector<std::size_t>& counts);
  void value(const IsDatetime& is_datetime);

 private:
  void calculate_headerlines(const std::vector<std::size_t>& diffs, std::size_t first);
  void inspect_datatypes(const std::vector<Span>& fields, const std::vector<std::size_t>& counts,
                         const IsDatetime& is_datetime);
};

Strategy::Strategy(Mode mode_in, const std::vector<std::u16string>& delimiters_in,
                   const std::vector<std::size_t>& widths_in, const Options& options_in)
    : mode(mode_in),
      options(options_in),
      whitespace(line_whitespace(mode_in, delimiters_in, options_in)),
      header_lines(options_in.header_lines),
      header_lines_auto(options_in.detect_header_lines) {
  if (mode == Mode::delimited) {
    delimiters = delimiters_in;
    if (delimiters.size() == 1 && delimiters.at(0).size() == 1) {
      const char16_t c = delimiters.at(0).at(0);
      const std::u16string priorities = u",\t; ";
      const std::size_t index = priorities.find(c);
      valuation.priors_rank =
          index == std::u16string::npos ? 18446744073709551616.0 : static_cast<double>(index);
      space_separated = c == u' ';
    }
  }
  if (mode == Mode::space_aligned) {
    delimiters = blank_delimiters();
    space_separated = true;
    valuation.priors_rank = 3.5;
  }
  if (mode == Mode::fixed_width) {
    widths = widths_in;
    std::size_t total = 0;
    for (const std::size_t w : widths) total = saturating_add(total, w);
    if (total == 0) throw std::invalid_argument("no column has a width");
  }
}

void Strategy::set_header_lines(std::size_t n) {
  header_lines = n;
  header_lines_auto = n == kUnknown;
}

void Strategy::populate_fields(const std::u16string& text_in, std::size_t num_lines) {
  text = text_in;
  lines.clear();
  const std::size_t target =
      header_lines_auto ? num_lines : saturating_add(num_lines, header_lines);
  const std::u16string start =
      options.comment_style.empty() ? std::u16string() : options.comment_style.at(0);
  std::size_t pos = 0;
  std::size_t count = 0;
  while (pos < text.size() && unit_at(text, pos) != kEndMark && count < target) {
    const Extent line = get_line_extent(mode, delimiters, text, options, pos);
    if (line.next <= pos) throw std::logic_error("the sampling of lines does not advance");
    pos = line.next;
    const Span raw{line.begin, line.length};
    const std::u16string cleaned = trim(read(text, raw), whitespace);
    if (cleaned.empty()) {
      lines.push_back(Span{kNpos, 0});
      continue;
    }
    const bool is_comment = !start.empty() && cleaned.size() >= start.size() &&
                            cleaned.substr(0, start.size()) == start;
    if (is_comment) continue;
    lines.push_back(raw);
    count += 1;
  }
}

void Strategy::get_fields_from_lines(std::vector<Span>& fields, std::vector<std::size_t>& counts) {
  fields.clear();
  counts.clear();
  std::size_t n = 0;
  for (const Span& span : lines) {
    const std::u16string line = read(text, span);
    if (!line.empty() && unit_at(line, 0) != kEndMark) {
      std::size_t pos = 0;
      std::size_t calls_without_progress = 0;
      const auto take = [&] {
        const Extent field =
            get_next_field(mode, delimiters, widths, line, options, pos, next_column);
        fields.push_back(Span{span.begin + field.begin, field.length});
        n += 1;
        calls_without_progress = field.next > pos ? 0 : calls_without_progress + 1;
        pos = field.next;
        return saturating_add(field.begin, field.length);  // where the field ends in the line
      };
      for (;;) {
        const std::size_t field_end = take();
        if (pos >= line.size() || unit_at(line, pos) == kEndMark) {
          if (field_end != line.size()) take();
        }
        if (pos >= line.size() || unit_at(line, pos) == kEndMark) break;
        // Only columns of width 0 do not advance, and not all columns have width 0.
        if (calls_without_progress > widths.size()) {
          throw std::logic_error("the cutting of a line does not advance");
        }
      }
    }
    counts.push_back(n);
  }
}

void Strategy::calculate_headerlines(const std::vector<std::size_t>& diffs, std::size_t first) {
  if (header_lines < kUnknown) return;
  if (valuation.total_variation == 0.0) {
    header_lines = 0;
    return;
  }
  header_lines = get_header_lines(diffs, first, space_separated);
}

void Strategy::inspect_datatypes(const std::vector<Span>& fields,
                                 const std::vector<std::size_t>& counts,
                                 const IsDatetime& is_datetime) {
  column_codes.assign(valuation.num_variables, kEmpty);
  // The first line after the header lines is never inspected.
  std::size_t not_visited = counts.size();
  while (not_visited > 0 && not_visited - 1 > header_lines) {
    const std::size_t line = not_visited - 1;
    not_visited -= 1;
    const std::size_t begin = line == 0 ? 0 : counts.at(line - 1);
    const std::size_t end = counts.at(line);
    if (static_cast<std::int32_t>(end - begin) >= valuation.modal_field_count) {
      for (std::size_t c = 0; c < end - begin && c < column_codes.size(); ++c) {
        if (column_codes.at(c) != kEmpty) continue;
        const std::u16string field = read(text, fields.at(begin + c));
        column_codes.at(c) = classify(field, options.whitespace, is_datetime);
      }
    }
    bool any_empty = false;
    for (const std::uint16_t code : column_codes) {
      if (code == kEmpty) any_empty = true;
    }
    if (!any_empty) break;
  }
  for (const std::uint16_t code : column_codes) {
    if (code != kEmpty) valuation.typed_columns += 1;
    if (code == kDate || code == kDuration) valuation.date_columns += 1;
    if (code == kNumber) valuation.numeric_columns += 1;
    if (code == kDatetime) valuation.datetime_columns += 1;
  }
}

void Strategy::value(const IsDatetime& is_datetime) {
  if (valuation_done) return;
  valuation_done = true;

  const std::size_t n = lines.size();
  valuation.num_lines = n;
  std::vector<Span> fields;
  std::vector<std::size_t> counts;
  get_fields_from_lines(fields, counts);

  std::vector<std::size_t> line_counts;
  std::vector<std::size_t> empty_lines;
  for (std::size_t i = 0; i < n; ++i) {
    line_counts.push_back(i == 0 ? counts.at(0) : counts.at(i) - counts.at(i - 1));
    if (line_counts.at(i) == 0) empty_lines.push_back(i);
  }

  std::size_t first = 0;
  if (header_lines_auto) {
    while (first < n && line_counts.at(first) == 1) first += 1;
    if (first == n) {  // no line, or one field on every line
      header_lines = 0;
      return;
    }
  } else if (n == 0) {
    return;
  }

  valuation.modal_field_count = static_cast<std::int32_t>(get_modified_median(line_counts, first));
  if (valuation.modal_field_count < 2) {
    if (header_lines_auto) header_lines = first;
    inspect_datatypes(fields, counts, is_datetime);
    return;
  }

  const std::vector<std::size_t> diffs = get_abs_diffs(line_counts, valuation.modal_field_count);
  if (diffs.size() < 2) {
    header_lines = std::max(skip_to_data(0, empty_lines, line_counts), first);
    inspect_datatypes(fields, counts, is_datetime);
    return;
  }

  valuation.total_variation = get_total_variation(diffs);
  calculate_headerlines(diffs, first);
  valuation.data_variation = get_data_variation(diffs, header_lines, valuation.total_variation);

  if (header_lines_auto) {
    if (valuation.data_variation > 1.0 && first < header_lines) {
      header_lines = first;
      valuation.data_variation = get_data_variation(diffs, header_lines, valuation.total_variation);
    }
    header_lines = skip_to_data(header_lines, empty_lines, line_counts);
  }
  valuation.num_variables = get_number_of_variables(line_counts, header_lines);
  inspect_datatypes(fields, counts, is_datetime);
}

// The results of the strategy. Calls a copy, so that the column index of the strategy does not
// change. The cuts start at column 0: a fixed-width strategy is populated once, and its first cut
// starts there.
Sample report(Strategy strategy) {
  Sample sample;
  sample.mode = strategy.mode;
  sample.delimiters = strategy.delimiters;
  sample.widths = strategy.widths;
  sample.lines = strategy.lines;
  strategy.next_column = 0;
  strategy.get_fields_from_lines(sample.fields, sample.counts);
  strategy.get_fields_from_lines(sample.fields_again, sample.counts_again);
  sample.header_lines = strategy.header_lines;
  sample.header_lines_auto = strategy.header_lines_auto;
  sample.valued = strategy.valuation_done;
  sample.valuation = strategy.valuation;
  sample.column_codes = strategy.column_codes;
  return sample;
}

}  // namespace

Sample sample_strategy(Mode mode, const std::vector<std::u16string>& delimiters,
                       const std::vector<std::size_t>& widths, const std::u16string& text,
                       const Options& options, std::size_t num_lines,
                       std::optional<std::size_t> header_lines, bool value,
                       const IsDatetime& is_datetime) {
  Strategy strategy(mode, delimiters, widths, options);
  if (header_lines.has_value()) strategy.set_header_lines(header_lines.value());
  strategy.populate_fields(text, num_lines);
  if (value) strategy.value(is_datetime);
  return report(strategy);
}

// -- candidates --------------------------------------------------------------------------------

std::u16string candidate_chars(const std::u16string& text, const std::vector<Span>& lines) {
  std::vector<std::u16string> non_empty;
  for (const Span& line : lines) {
    if (line.length > 0) non_empty.push_back(read(text, line));
  }
  const std::size_t n = non_empty.size();
  std::size_t first = n == 1 ? 0 : 1;
  std::size_t last = n;
  if (n > 5) {
    first = (n + 2) / 3;
    last = n * 5 / 6;
  }
  std::u16string chars;
  for (std::size_t i = first; i < last; ++i) {
    for (const char16_t c : non_empty.at(i)) {
      if (c == kEndMark) break;
      const bool is_letter = (c >= u'a' && c <= u'z') || (c >= u'A' && c <= u'Z');
      const bool is_other = c == u'@' || c == u'-' || c == u'.' || c == u'"' || c == u'$' ||
                            c == u'\'' || c == u'+' || c == 13 || c == 10 || c == 0x1A;
      if (is_letter || is_digit(c) || is_other || c > 127) continue;
      if (!contains(chars, c)) chars.push_back(c);
    }
  }
  return chars;
}

namespace {

// Samples and values the candidate. Returns whether it shows a usable, regular table.
bool accept(Strategy& candidate, const std::u16string& text, const Options& options,
            std::size_t num_lines, const IsDatetime& is_datetime) {
  candidate.populate_fields(text, num_lines);
  candidate.value(is_datetime);
  if (!(candidate.valuation.data_variation < 1.0)) return false;
  if (candidate.valuation.modal_field_count <= 1) {
    return !options.detect_num_variables && candidate.valuation.num_lines > 1;
  }
  return true;
}

// Whether more than one line was sampled, there are data lines, and all of them are as long as the
// first line, which is not empty.
bool has_lines_of_one_length(const Strategy& s) {
  if (s.lines.size() <= 1) return false;
  if (s.header_lines >= s.lines.size()) return false;
  const std::size_t length = s.lines.at(0).length;
  if (length == 0) return false;
  for (std::size_t i = s.header_lines; i < s.lines.size(); ++i) {
    if (s.lines.at(i).length != length) return false;
  }
  return true;
}

// The fixed-width strategy that a space-aligned one becomes, or the latter itself.
Strategy convert_to_fixed_width(const Strategy& s, const std::u16string& text,
                                const Options& options) {
  if (s.valuation.data_variation == 0.0) return s;

  std::size_t h = s.header_lines;
  const std::size_t w = s.lines.at(h).length;
  if (options.detect_header_lines) {
    while (h > 0 && s.lines.at(h - 1).length == w) h -= 1;
  }

  std::vector<bool> blank(w, true);
  std::vector<std::size_t> counts;
  for (std::size_t k = h; k < s.lines.size(); ++k) {
    const std::u16string line = read(text, s.lines.at(k));
    for (std::size_t j = 0; j < w; ++j) {
      if (unit_at(line, j) != u' ') blank.at(j) = false;
    }
    std::size_t count = 1;
    for (std::size_t j = 1; j < w; ++j) {
      if (blank.at(j - 1) && !blank.at(j)) count += 1;
    }
    counts.push_back(count);
  }

  const std::size_t m = get_modified_median(counts, 0);
  double sum = 0.0;
  for (const std::size_t count : counts) {
    sum += static_cast<double>(count > m ? count - m : m - count);
  }
  const double d = sum / static_cast<double>(counts.size());
  if (d > s.valuation.data_variation) return s;
  if (counts.at(counts.size() - 1) > s.valuation.num_variables) return s;

  std::vector<std::size_t> widths;
  std::size_t begin = 0;
  for (std::size_t j = 1; j < w; ++j) {
    if (!blank.at(j - 1) && blank.at(j)) {
      widths.push_back(j - begin);
      begin = j;
    }
  }
  widths.push_back(w - begin);

  Strategy fixed(Mode::fixed_width, {}, widths, options);
  fixed.set_header_lines(h);
  fixed.populate_fields(text, s.lines.size());
  return fixed;
}

}  // namespace

std::vector<Sample> build_candidates(const std::u16string& text,
                                     const std::vector<Span>& reader_lines, const Options& options,
                                     std::size_t selector_header_lines, std::size_t num_lines,
                                     const IsDatetime& is_datetime) {
  std::vector<Sample> candidates;
  for (const char16_t c : candidate_chars(text, reader_lines)) {
    if (c == u' ') {
      Strategy s(Mode::space_aligned, {}, {}, options);
      if (!options.detect_header_lines) s.set_header_lines(selector_header_lines);
      s.populate_fields(text, num_lines);
      s.value(is_datetime);
      if (has_lines_of_one_length(s)) {
        Strategy converted = convert_to_fixed_width(s, text, options);
        converted.value(is_datetime);
        candidates.push_back(report(converted));
      } else if (accept(s, text, options, num_lines, is_datetime)) {
        candidates.push_back(report(s));
      }
    }
    Strategy delimited(Mode::delimited, {std::u16string(1, c)}, {}, options);
    if (accept(delimited, text, options, num_lines, is_datetime)) {
      candidates.push_back(report(delimited));
    }
  }
  return candidates;
}

// -- filters -----------------------------------------------------------------------------------

namespace {

std::int32_t as_signed(std::uint32_t count) { return static_cast<std::int32_t>(count); }

// A filter that would keep no candidate keeps all.
Survivors kept_or_all(const Survivors& kept, const Survivors& survivors) {
  return kept.empty() ? survivors : kept;
}

double class_value(const Valuation& v) {
  const std::int32_t datetimes = as_signed(v.datetime_columns);
  const std::int32_t dates = as_signed(v.date_columns);
  const std::int32_t numbers = as_signed(v.numeric_columns);
  const std::int32_t texts = as_signed(v.typed_columns) - numbers - dates - datetimes;
  return 25.0 * datetimes + 10.0 * dates + 3.0 * numbers + static_cast<double>(texts);
}

double typed_share(const Valuation& v) {
  return static_cast<double>(as_signed(v.typed_columns)) / static_cast<double>(v.num_variables);
}

}  // namespace

Survivors reduce_by_numvariables(const Survivors& survivors, const Valuations& valuations,
                                 std::size_t num_variables) {
  Survivors kept;
  for (const std::size_t i : survivors) {
    if (valuations.at(i).num_variables == num_variables) kept.push_back(i);
  }
  return kept_or_all(kept, survivors);
}

Survivors reduce_by_dates(const Survivors& survivors, const Valuations& valuations) {
  Survivors kept;
  for (const std::size_t i : survivors) {
    const Valuation& v = valuations.at(i);
    if (as_signed(v.date_columns) >= 1 || as_signed(v.datetime_columns) >= 1) kept.push_back(i);
  }
  return kept_or_all(kept, survivors);
}

Survivors reduce_by_variation(const Survivors& survivors, const Valuations& valuations) {
  if (survivors.empty()) return survivors;
  std::size_t best = survivors.at(0);
  for (const std::size_t i : survivors) {
    if (valuations.at(i).data_variation < valuations.at(best).data_variation) best = i;
  }
  const double min = valuations.at(best).data_variation;
  const double relative = 0.1 * min;
  const double absolute = 0.001 * static_cast<double>(valuations.at(best).num_lines);
  const double tolerance = relative > absolute ? relative : absolute;
  Survivors kept;
  for (const std::size_t i : survivors) {
    if (valuations.at(i).data_variation - min < tolerance) kept.push_back(i);
  }
  return kept_or_all(kept, survivors);
}

Survivors reduce_by_class_value(const Survivors& survivors, const Valuations& valuations) {
  if (survivors.empty()) return survivors;
  std::size_t best = survivors.at(0);
  for (const std::size_t i : survivors) {
    if (class_value(valuations.at(i)) > class_value(valuations.at(best))) best = i;
  }
  Survivors kept;
  for (const std::size_t i : survivors) {
    if (class_value(valuations.at(i)) == class_value(valuations.at(best))) kept.push_back(i);
  }
  return kept_or_all(kept, survivors);
}

Survivors reduce_by_header_lines(const Survivors& survivors, const Valuations& valuations,
                                 const std::vector<std::size_t>& header_lines,
                                 bool detect_header_lines) {
  if (!detect_header_lines || survivors.empty()) return survivors;
  if (!(valuations.at(survivors.at(0)).data_variation == 0.0)) return survivors;
  std::size_t m = header_lines.at(survivors.at(0));
  for (const std::size_t i : survivors) {
    if (header_lines.at(i) < m) m = header_lines.at(i);
  }
  Survivors kept;
  for (const std::size_t i : survivors) {
    if (header_lines.at(i) == m && valuations.at(i).data_variation == 0.0) kept.push_back(i);
  }
  return kept_or_all(kept, survivors);
}

Survivors reduce_by_non_empty(const Survivors& survivors, const Valuations& valuations) {
  if (survivors.empty()) return survivors;
  std::size_t best = survivors.at(0);
  for (const std::size_t i : survivors) {
    if (typed_share(valuations.at(i)) > typed_share(valuations.at(best))) best = i;
  }
  Survivors kept;
  for (const std::size_t i : survivors) {
    if (typed_share(valuations.at(i)) == typed_share(valuations.at(best))) kept.push_back(i);
  }
  return kept_or_all(kept, survivors);
}

Survivors reduce_by_priors_rank(const Survivors& survivors, const Valuations& valuations) {
  if (survivors.empty()) return survivors;
  std::size_t best = survivors.at(0);
  for (const std::size_t i : survivors) {
    if (valuations.at(i).priors_rank < valuations.at(best).priors_rank) best = i;
  }
  if (valuations.at(best).priors_rank < 4.0) return Survivors{best};
  return survivors;
}

// -- selection ---------------------------------------------------------------------------------

namespace {

Sample single_column_fallback(const std::u16string& text, const Options& options,
                              std::size_t num_lines) {
  Options changed = options;
  changed.delimiters = {u","};
  changed.detect_delimiters = false;
  changed.detect_header_lines = false;
  changed.header_lines = 0;
  changed.num_variables = 1;
  Strategy strategy(Mode::delimited, changed.delimiters, {}, changed);
  strategy.populate_fields(text, num_lines);
  return report(strategy);
}

}  // namespace

Detection detect(const std::u16string& text, const Options& options, std::size_t num_lines,
                 const IsDatetime& is_datetime) {
  Detection detection;

  Strategy reader(Mode::line_reader, {}, {}, options);
  reader.set_header_lines(0);
  reader.populate_fields(text, num_lines);
  reader.value(is_datetime);
  const std::int32_t reader_dates =
      as_signed(reader.valuation.date_columns) + as_signed(reader.valuation.datetime_columns);
  if (reader_dates >= 1) {
    detection.winner = single_column_fallback(text, options, num_lines);
    detection.single_column_fallback = true;
    return detection;
  }
  if (reader.lines.empty()) {
    detection.winner = report(reader);
    detection.line_reader = true;
    return detection;
  }

  detection.candidates =
      build_candidates(text, reader.lines, options, options.header_lines, num_lines, is_datetime);
  if (detection.candidates.empty()) {
    detection.winner = report(reader);
    detection.line_reader = true;
    return detection;
  }
  if (detection.candidates.size() == 1) {
    detection.winner = detection.candidates.at(0);
    return detection;
  }

  Valuations valuations;
  std::vector<std::size_t> header_lines;
  Survivors survivors;
  for (std::size_t i = 0; i < detection.candidates.size(); ++i) {
    valuations.push_back(detection.candidates.at(i).valuation);
    header_lines.push_back(detection.candidates.at(i).header_lines);
    survivors.push_back(i);
  }

  const auto ran = [&](const std::string& name, const Survivors& left) {
    survivors = left;
    detection.survivors_after_each_filter.push_back(left);
    detection.filters_run.push_back(name);
  };
  if (!options.detect_num_variables) {
    ran("numvariables", reduce_by_numvariables(survivors, valuations, options.num_variables));
  }
  for (int filter = 0; filter < 6 && survivors.size() > 1; ++filter) {
    if (filter == 0) ran("dates", reduce_by_dates(survivors, valuations));
    if (filter == 1) ran("variation", reduce_by_variation(survivors, valuations));
    if (filter == 2) ran("class_value", reduce_by_class_value(survivors, valuations));
    if (filter == 3) {
      ran("header_lines",
          reduce_by_header_lines(survivors, valuations, header_lines, options.detect_header_lines));
    }
    if (filter == 4) ran("non_empty", reduce_by_non_empty(survivors, valuations));
    if (filter == 5) ran("priors_rank", reduce_by_priors_rank(survivors, valuations));
  }

  if (survivors.size() == 1) {
    detection.winner = detection.candidates.at(survivors.at(0));
  } else if (survivors.empty()) {
    detection.winner = report(reader);
    detection.line_reader = true;
  } else {
    detection.winner = single_column_fallback(text, options, num_lines);
    detection.single_column_fallback = true;
  }
  return detection;
}

// -- the sample --------------------------------------------------------------------------------

std::size_t sample_length(const std::u16string& whole_text,
                          const std::vector<std::u16string>& line_endings, std::size_t limit) {
  const bool reaches_limit = unit_at(whole_text, limit) != kEndMark;
  if (!reaches_limit) {
    std::size_t length = 0;
    while (unit_at(whole_text, length) != kEndMark) ++length;
    return length;
  }
  const std::u16string cut = whole_text.substr(0, limit);
  for (std::size_t q = limit; q > 0; --q) {
    if (match_markers(line_endings, cut, q - 1) > 0) return q;
  }
  return 0;
}

}  // namespace reference
