// Readings, records and texts as short strings, so that tables of tests can be checked by eye.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

#include <vltextstream/assessment/reading.hpp>
#include <vltextstream/assessment/records.hpp>
#include <vltextstream/assessment/sampled_lines.hpp>

#include "support/exact_text.hpp"
#include "support/printing.hpp"

namespace textio::testing_support {

inline constexpr auto kAllLines = static_cast<std::size_t>(-1);

// "0[a][b] 1-2{c}[d]": the lines of each record and its cells, the quoted ones in braces.
inline std::string shown(const assessment::Records& records) {
  std::string out;
  for (std::size_t i = 0; i < records.size(); ++i) {
    const assessment::Record& record = records[i];
    if (i > 0) out += ' ';
    out += std::to_string(record.line);
    if (record.num_lines > 1) out += '-' + std::to_string(record.line + record.num_lines - 1);
    for (const assessment::Cell& cell : records.cells(i)) {
      const std::string text = readable(records.view(cell));
      out += cell.is_quoted ? '{' + text + '}' : '[' + text + ']';
    }
  }
  return out;
}

// "delimited ," and, with a quote and an escape, `delimited , "\`; "runs 2", and with a last column of text
// "runs 1, 3 cells"; "fields 0 4 9"; "one".
inline std::string shown(const assessment::Reading& reading) {
  using assessment::Form;
  std::string quotes;
  if (reading.quote != 0 || reading.escape != 0) quotes = " ";
  if (reading.quote != 0) quotes += readable({&reading.quote, 1});
  if (reading.escape != 0) quotes += readable({&reading.escape, 1});
  switch (reading.form) {
    case Form::delimited:
      return "delimited " + readable(reading.delimiter) + quotes;
    case Form::framed:
      return "framed " + readable(reading.delimiter) + quotes;
    case Form::runs:
      return "runs " + std::to_string(reading.least_blanks) +
             (reading.most_cells > 0 ? ", " + std::to_string(reading.most_cells) + " cells" : "");
    case Form::gaps:
      return "gaps " + std::to_string(reading.least_blanks) +
             (reading.by_names ? ", by names" : "");
    case Form::fields: {
      std::string out = "fields";
      for (const std::size_t border : reading.borders) out += ' ' + std::to_string(border);
      return out;
    }
    case Form::one:
      return "one" + quotes;
    case Form::none:
      return "none";
  }
  return "?";
}

// A text in a block of its size, and its lines.
class Sample {
 public:
  explicit Sample(std::u16string_view text, std::size_t num_lines = kAllLines)
      : text_(text), lines_(assessment::sample_lines(text_.view(), num_lines)) {}

  const assessment::SampledLines& lines() const { return lines_; }
  std::u16string_view text() const { return text_.view(); }

 private:
  ExactText text_;
  assessment::SampledLines lines_;
};

}  // namespace textio::testing_support
