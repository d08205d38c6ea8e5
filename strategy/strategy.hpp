// Strategy: one hypothesis about how the lines of a text are split into fields.
//
//   DelimitedStrategy commas(options, u',');
//   commas.populate_fields(Field(text.data(), text.size()), 100);
//   const StrategyValuation& score = commas.valuation();
//
// A strategy is made from options. It samples the first lines of one text, cuts them into fields
// and scores the result once. It keeps no text: its lines and fields are views of the text it was
// given.
//
// Units      positions and lengths count UTF-16 code units; lines are sampled lines, numbered from
//            0.
// Ownership  made with new and shared through shared_ptr<Strategy>. The options record must outlive
//            the strategy. The text must outlive every use of its lines.
// Errors     none of its own. std::bad_alloc and what the host throws are passed on; the strategy
//            is then in the state before the call.
// Cost       sampling, cutting and scoring are linear in the sampled text and the markers together,
//            and so is each single step.
// Threads    one thread at a time, also for const operations.
#pragma once

#include <cstddef>
#include <limits>
#include <memory>
#include <optional>
#include <string>
#include <typeinfo>
#include <utility>
#include <vector>

#include <vltextstream/host/export.hpp>
#include <vltextstream/options/parser_options.hpp>
#include <vltextstream/scoring/datatype_code.hpp>
#include <vltextstream/scoring/strategy_valuation.hpp>
#include <vltextstream/strategy/dialect.hpp>
#include <vltextstream/strategy/field.hpp>
#include <vltextstream/strategy/field_array.hpp>
#include <vltextstream/strategy/line_cursor.hpp>
#include <vltextstream/strategy/sampling/sample.hpp>

namespace textio {

class LineCounts;
class Splitter;
struct CountScore;
struct DrawnSample;
struct InspectionScope;
struct SampleLimits;

// What is removed from the ends of a piece of text before it is treated as a value.
struct VLTEXTSTREAM_EXPORT ValueFormat {
  // Characters trimmed at the ends; nothing is trimmed if it has no value.
  std::optional<std::u16string> whitespace = u" \b\t";

  // The quote character; an enclosing pair of it is removed.
  std::optional<char16_t> quote;

  // Prefixes (first list) and suffixes (second list) to remove.
  std::optional<std::pair<std::vector<std::u16string>, std::vector<std::u16string>>> affixes;
};

// How a whole line is cleaned before the tests for empty lines and comments.
struct VLTEXTSTREAM_EXPORT FieldFormat : ValueFormat {
  enum class Trim { both = 0, none = 1, leading = 2, trailing = 3 };

  // Whether affixes are compared exactly. Otherwise 'a' to 'z' equal 'A' to 'Z'.
  bool case_sensitive = false;

  // Receives unquoted text. The cleaned text may point into it.
  std::u16string unquoted;

  // Replaces the text of an empty line. Empty means no replacement.
  std::u16string empty_text;

  Trim trim = Trim::both;
};

// How a number is written.
struct VLTEXTSTREAM_EXPORT NumberFormat : ValueFormat {
  std::u16string exp_chars = u"eEdD";
  bool exp_chars_default = true;
  char16_t decimal_separator = u'.';
  char16_t thousands_separator = 0xFFFF;  // none
  std::string narrow_text;
};

// The order of the virtual operations and of the members is part of the interface.
class VLTEXTSTREAM_EXPORT Strategy {
 public:
  // The values that mode() returns.
  enum Mode { kDelimited = 0, kSpaceAligned = 1, kFixedWidth = 2, kLineReader = 3 };

  // Means that the header lines are to be detected.
  static constexpr std::size_t kUnknownHeaderLines = std::numeric_limits<std::size_t>::max();

  explicit Strategy(const parser::options& options);
  Strategy(const Strategy&) = delete;
  Strategy& operator=(const Strategy&) = delete;
  virtual ~Strategy();

  virtual int mode() const = 0;

  // The line of `text` that starts at `start`, without its line ending, and the start of the next
  // line.
  virtual FieldExtent get_line_extent(const Field& text, unsigned long start) const = 0;

  // The field of `line` that starts at `start`, and the start of the next field.
  virtual FieldExtent get_next_field(const Field& line, unsigned long start) = 0;

  // Called after the last field of each line.
  virtual void reset_fields();

  // Samples the lines of `text` until `num_lines` of them are neither empty nor comments, not
  // counting the header lines if their number is given. Keeps these lines and the empty ones, the
  // latter as empty_field(), and returns a copy of what it keeps.
  std::vector<Field> populate_fields(const Field& text, unsigned long num_lines);

  // Cuts every sampled line into fields.
  FieldArray get_fields_from_lines();

  // The lines of a text, one after the other. The strategy must outlive the cursor.
  std::unique_ptr<LineCursor> lines_of(const Field& text) const;

  // Appends the fields of one line to `fields`, all or none. A fixed-width strategy continues with
  // the column after that of the last field it cut. Throws std::invalid_argument if a field of a
  // delimited or space-aligned line would end at a line ending inside the line.
  void cut_line(const Field& line, std::vector<Field>& fields);

  // The fields of a single line. A fixed-width strategy starts at its first column, and its current
  // column does not change. A strategy from outside the library does the same as in cut_line.
  std::vector<Field> fields_of(const Field& line);

  // The scores of the cut. The first call computes them; it also settles the header lines if they
  // are to be detected.
  const StrategyValuation& valuation();

  // Classifies the columns of `fields` and adds their numbers to the scores.
  void inspect_datatypes(const FieldArray& fields);

  // The class of each column of `fields`, for the current header lines, modal field count and
  // number of variables of the strategy; see scoring/datatype_inspection.hpp.
  std::vector<DatatypeCode> classify_columns(const FieldArray& fields) const;

  // The classes that the last inspection found. Empty before the first one, and for a sample in
  // which each line has one field while the header lines are to be detected.
  const std::vector<DatatypeCode>& column_classes() const { return column_classes_; }

  // The number of fields on each sampled line, as the valuation found it; empty before.
  const std::vector<std::size_t>& field_counts() const { return field_counts_; }

  // Statistics over the numbers of fields per line; see scoring/line_statistics.hpp. They use the
  // modal field count and the header lines of the strategy.
  double get_total_variation(const std::vector<std::size_t>& diffs) const;
  double get_data_variation(const std::vector<std::size_t>& diffs) const;
  std::size_t get_number_of_variables(const std::vector<std::size_t>& line_counts) const;
  std::vector<std::size_t> get_abs_diffs(const std::vector<std::size_t>& line_counts) const;
  std::size_t get_modified_median(const std::vector<std::size_t>& line_counts,
                                  std::size_t first) const;

  // Settles the header lines from the deviations if they are not known yet.
  void calculate_headerlines(const std::vector<std::size_t>& diffs, std::size_t first);

  // The number of header lines. kUnknownHeaderLines means "not known" as an argument and as a
  // result.
  void header_lines(unsigned long n);
  unsigned long header_lines() const { return header_lines_; }

  // -1 before the valuation.
  long num_variables() const;

  // Sets the white space of the three formats.
  void reset_whitespace(const std::u16string& whitespace);

  // The lines of the last populate_fields(); valid until the next call.
  const std::vector<Field>& lines() const { return lines_; }

  // What the last populate_fields() found out about its text.
  const Sample& sample() const { return sample_; }

  // Moves the runs out of the sample, which may have millions of them.
  std::vector<SampleRun> take_sample_runs() { return std::exchange(sample_.runs, {}); }

  // How the fields are separated. For a strategy from outside the library, only the mode.
  Dialect dialect() const;

  // --- for the library itself; not exported ------------------------------------------------------

  // How this strategy splits text. For a class from outside the library the virtual operations are
  // called, whatever it derives from, because it may override them.
  VLTEXTSTREAM_LOCAL std::shared_ptr<const Splitter> splitter();

  // The column of the next field; 0 if columns do not matter.
  VLTEXTSTREAM_LOCAL std::size_t next_column() const { return column_ ? *column_ : 0; }

  // The largest number of text lines in a sample of `num_lines` data lines: header lines are added
  // if their number is given.
  VLTEXTSTREAM_LOCAL std::size_t most_texts(unsigned long num_lines) const;

  VLTEXTSTREAM_LOCAL DrawnSample draw(const Field& text, const SampleLimits& limits);

  // Stores a sample and, if it has been valued, the number of fields on each line.
  VLTEXTSTREAM_LOCAL void keep(DrawnSample&& sample, const LineCounts& counts);

  // The steps of a valuation; see strategy/sampling/trial.hpp.
  VLTEXTSTREAM_LOCAL CountScore score(const LineCounts& counts) const;
  VLTEXTSTREAM_LOCAL InspectionScope scope(const CountScore& score, const Field& text) const;
  VLTEXTSTREAM_LOCAL void settle(const CountScore& score, std::vector<DatatypeCode> classes,
                                 std::size_t column) noexcept;

 protected:
  // Called by the constructors of the library's strategies. `column` is the member that has the
  // column of the next field; null if there is none.
  VLTEXTSTREAM_LOCAL void split_by(std::shared_ptr<const Splitter> splitter,
                                   const std::type_info& own_class, std::size_t* column = nullptr);

  const parser::options* options_;
  StrategyValuation valuation_;
  FieldFormat text_format_;
  FieldFormat quoted_format_;
  NumberFormat number_format_;
  std::vector<Field> lines_;
  std::size_t header_lines_;
  bool valuation_done_ = false;
  bool space_separated_ = false;
  bool header_lines_auto_;

  // The text of the last populate_fields(). A field may report more code units than its line has,
  // but nothing past the end of this text is read.
  Field text_;

 private:
  VLTEXTSTREAM_LOCAL const Splitter* own_splitter() const;
  template <typename Cut>
  VLTEXTSTREAM_LOCAL void cut_or_restore(Cut cut);

  std::vector<DatatypeCode> column_classes_;
  std::vector<std::size_t> field_counts_;
  Sample sample_;

  // Set by the constructors of the library's own classes.
  std::shared_ptr<const Splitter> own_splitter_;
  const std::type_info* own_class_ = nullptr;
  std::size_t* column_ = nullptr;
};

}  // namespace textio
