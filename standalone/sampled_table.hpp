// SampledTable: the lines that a strategy sampled, where they stand in the text, and their fields.
//
//   SampledTable table(strategy, sample, settings);
//   table.texts(0);                  // {u"date", u"level"}
//   table.line_number(0);            // 6
//
// Units      an index counts sampled lines from 0, comments left out; line numbers count the lines
//            of the text from 1.
// Ownership  refers to the strategy, the text and the settings; they must outlive it.
// Cost       made in one pass over the sampled lines; a line is cut when it is asked for.
#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include "scoring/datatype_code.hpp"
#include "standalone/detect_layout.hpp"
#include "strategy/field.hpp"
#include "strategy/strategy.hpp"

namespace textio::standalone {

class SampledTable {
 public:
  enum class Kind { text, blank, comment };

  // A sampled line or a comment between sampled lines.
  struct Line {
    Kind kind = Kind::text;
    std::size_t first_line = 0;
    std::size_t last_line = 0;
  };

  SampledTable(Strategy& strategy, const Field& sample, const DetectSettings& settings);

  // All lines that were looked at, comments included, in the order of the text.
  const std::vector<Line>& lines() const { return lines_; }

  std::size_t size() const { return strategy_.lines().size(); }
  std::size_t header_lines() const { return strategy_.header_lines(); }
  std::size_t num_variables() const { return classes_.size(); }
  const std::vector<DatatypeCode>& classes() const { return classes_; }

  // The number of the first line of the text that sampled line `index` stands in.
  std::size_t line_number(std::size_t index) const { return line_numbers_[index]; }

  std::size_t field_count(std::size_t index) const;

  // The values in the fields of a line, trimmed and without quotes, and their classes.
  std::vector<std::u16string> texts(std::size_t index) const;
  std::vector<DatatypeCode> classes_of_line(std::size_t index) const;

 private:
  bool is_single_column() const { return strategy_.num_variables() < 0; }
  std::vector<Field> fields(std::size_t index) const;
  std::vector<DatatypeCode> column_classes() const;
  void find_lines(const Field& sample, unsigned long num_lines);

  Strategy& strategy_;
  const parser::options& options_;
  std::vector<Line> lines_;
  std::vector<std::size_t> line_numbers_;
  std::vector<DatatypeCode> classes_;
};

}  // namespace textio::standalone
