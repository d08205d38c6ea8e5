// SampledTable: the lines that a strategy sampled, their line numbers in the text, and their fields.
//
//   TextLines lines(text, settings.options);
//   SampledTable table(strategy, settings, lines);
//   table.texts(table.fields(0));    // {u"date", u"level"}
//   table.line_number(0);            // 6
//
// Units      an index counts sampled lines from 0, comments left out; line numbers count the lines
//            of the text from 1.
// Ownership  refers to the strategy, its text and the settings; they must outlive it.
// Cost       made in one pass over the sampled text. A line is cut when its fields are asked for.
//            Holds one run for all lines of one kind that follow one another.
#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include <vltextstream/layout/detect_layout.hpp>
#include <vltextstream/layout/text_lines.hpp>
#include <vltextstream/scoring/datatype_code.hpp>
#include <vltextstream/strategy/field.hpp>
#include <vltextstream/strategy/strategy.hpp>

namespace textio::standalone {

class SampledTable {
 public:
  enum class Kind { text, blank, comment };

  // Sampled lines, or comments between them, of one kind. Either each is one line of the text, and
  // these follow one another, or there is only one, which may have several.
  struct Run {
    Kind kind = Kind::text;
    std::size_t first_line = 0;
    std::size_t last_line = 0;

    // The sampled lines, or the number of those before the comments, and how many these are.
    std::size_t first_index = 0;
    std::size_t count = 0;
  };

  // `text_lines` are the lines of the sampled text, at the first one.
  SampledTable(Strategy& strategy, const DetectSettings& settings, TextLines& text_lines);

  // All lines that were looked at, comments included, in the order of the text.
  const std::vector<Run>& runs() const { return runs_; }

  std::size_t size() const { return strategy_.lines().size(); }
  std::size_t header_lines() const { return strategy_.header_lines(); }
  std::size_t num_variables() const { return classes_.size(); }
  const std::vector<DatatypeCode>& classes() const { return classes_; }

  // The number of the first line of the text that belongs to sampled line `index`.
  std::size_t line_number(std::size_t index) const;

  // The number of fields on a line, as the strategy counted them in its sample.
  std::size_t field_count(std::size_t index) const {
    const std::vector<std::size_t>& counts = strategy_.field_counts();
    if (index < counts.size()) return counts[index];
    return strategy_.lines()[index].length > 0 ? 1 : 0;
  }

  // The fields of a line.
  std::vector<Field> fields(std::size_t index) const;

  // The values in fields, trimmed and without quotes, and the class of one.
  std::vector<std::u16string> texts(const std::vector<Field>& fields) const;
  DatatypeCode class_of(const Field& field) const;

 private:
  bool is_single_column() const { return strategy_.num_variables() < 0; }
  std::vector<DatatypeCode> column_classes() const;
  DatatypeCode class_of_lines() const;
  void find_lines(TextLines& text_lines);
  void add_lines(const Run& lines);

  Strategy& strategy_;
  const parser::options& options_;
  std::vector<Run> runs_;
  std::vector<DatatypeCode> classes_;
};

}  // namespace textio::standalone
