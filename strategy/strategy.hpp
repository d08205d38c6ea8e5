// Strategy: one hypothesis about how the lines of a text are cut into fields.
//
//   DelimitedStrategy commas(options, u',');
//   commas.populate_fields(Field(text.data(), text.size()), 100);
//   const StrategyValuation& score = commas.valuation();
//
// A strategy is made from options, samples the first lines of one text, cuts them into fields and
// values the cut once. It keeps no text: its lines and fields are views of the text it was given.
//
// Units      positions and lengths count UTF-16 code units, line numbers sampled lines from 0.
// Ownership  made with new and shared through shared_ptr<Strategy>. The options record must outlive
//            the strategy; the text must outlive every use of its lines.
// Errors     none of its own; std::bad_alloc passes, and what the host throws; the strategy is then
//            what it was before the call.
// Cost       sampling, cutting and valuing are linear in the sampled text and the markers together.
//            A scan from one place compares the markers one by one, because the text may be another
//            at the next call; see StableText.
// Threads    one thread at a time, the const operations included.
#pragma once

#include <cstddef>
#include <functional>
#include <limits>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include <vltextstream/host/export.hpp>
#include <vltextstream/options/parser_options.hpp>
#include <vltextstream/scoring/datatype_code.hpp>
#include <vltextstream/scoring/strategy_valuation.hpp>
#include <vltextstream/strategy/field.hpp>
#include <vltextstream/strategy/field_array.hpp>

namespace textio {

class LineFields;
class SampleCut;
namespace detection {
class SampleKeeper;
}

// What is taken off the ends of a piece of text before it is treated as a value.
struct VLTEXTSTREAM_EXPORT ValueFormat {
  // Characters trimmed at the ends; not engaged means no trimming.
  std::optional<std::u16string> whitespace = u" \b\t";

  // Quote character whose enclosing pair is removed.
  std::optional<char16_t> quote;

  // Prefixes (first list) and suffixes (second list) to strip.
  std::optional<std::pair<std::vector<std::u16string>, std::vector<std::u16string>>> affixes;
};

// How a whole line is cleaned before it is tested for being empty or a comment.
struct VLTEXTSTREAM_EXPORT FieldFormat : ValueFormat {
  enum class Trim { both = 0, none = 1, leading = 2, trailing = 3 };

  // Affixes are compared exactly; otherwise 'a' to 'z' equal 'A' to 'Z'.
  bool case_sensitive = false;

  // Receives unquoted text; the cleaned text may point into it.
  std::u16string unquoted;

  // Stands in for the text of an empty line; empty means that nothing does.
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

class MarkerIndex;
class MarkerMatcher;

// The order of the virtual operations and of the members is part of the interface.
class VLTEXTSTREAM_EXPORT Strategy {
 public:
  // The codes that mode() returns.
  enum Mode { kDelimited = 0, kSpaceAligned = 1, kFixedWidth = 2, kLineReader = 3 };

  // Header lines that are to be detected.
  static constexpr std::size_t kUnknownHeaderLines = std::numeric_limits<std::size_t>::max();

  explicit Strategy(const parser::options& options);
  Strategy(const Strategy&) = delete;
  Strategy& operator=(const Strategy&) = delete;
  virtual ~Strategy();

  virtual int mode() const = 0;

  // The caller's promise that a text does not change while this object lives:
  //
  //   const Strategy::StableText stable(strategy, text);
  //   const std::size_t next = strategy.get_line_extent(text, pos).next;   // and so on
  //
  // Ownership  refers to the strategy and the text, which must outlive it. Of several for one
  //            strategy the one made last must go first.
  // Errors     std::bad_alloc; the scans may then throw it too.
  // Cost       with it, all scans of the text together are linear in the text and the markers,
  //            whatever the markers are. Ordinary markers cost nothing; of many or long ones that
  //            nearly match almost everywhere it keeps 4 bytes for each unit of the text and 16 for
  //            each unit of the markers, or three times that.
  class StableText;

  // The line of `text` that starts at `start`, without its line ending, and where the next starts.
  virtual FieldExtent get_line_extent(const Field& text, unsigned long start) const = 0;

  // The field of `line` that starts at `start`, and where the next starts.
  virtual FieldExtent get_next_field(const Field& line, unsigned long start) = 0;

  // Called after the last field of each line.
  virtual void reset_fields();

  // Samples the lines of `text` until `num_lines` of them, beyond the header lines if their number
  // is given, are neither empty nor comments. Keeps these and the empty ones, the latter as
  // empty_field(), and returns a copy of what it keeps.
  std::vector<Field> populate_fields(const Field& text, unsigned long num_lines);

  // Cuts every sampled line into fields.
  FieldArray get_fields_from_lines();

  // Appends the fields of one line to `fields`, all or none. A strategy with a memory across lines
  // goes on where its last line ended.
  void cut_line(const Field& line, std::vector<Field>& fields);

  // The scores of the cut; computed by the first call, which also settles the header lines if
  // they are to be detected.
  const StrategyValuation& valuation();

  // Classifies the columns of `fields` and adds their numbers to the scores.
  void inspect_datatypes(const FieldArray& fields);

  // The class of each column of `fields`, by the header lines, the modal field count and the number
  // of variables that the strategy has now; see scoring/datatype_inspection.hpp.
  std::vector<DatatypeCode> classify_columns(const FieldArray& fields) const;

  // The classes that the last inspection found; none before, and none for a sample in which each
  // line has one field while the header lines are to be detected.
  const std::vector<DatatypeCode>& column_classes() const { return column_classes_; }

  // The number of fields on each sampled line, as the valuation found them; none before it.
  const std::vector<std::size_t>& field_counts() const { return field_counts_; }

  // Statistics over the numbers of fields per line; see scoring/line_statistics.hpp. They read the
  // modal field count and the header lines of the strategy.
  double get_total_variation(const std::vector<std::size_t>& diffs) const;
  double get_data_variation(const std::vector<std::size_t>& diffs) const;
  std::size_t get_number_of_variables(const std::vector<std::size_t>& line_counts) const;
  std::vector<std::size_t> get_abs_diffs(const std::vector<std::size_t>& line_counts) const;
  std::size_t get_modified_median(const std::vector<std::size_t>& line_counts,
                                  std::size_t first) const;

  // Settles the header lines from the deviations when they are not known yet.
  void calculate_headerlines(const std::vector<std::size_t>& diffs, std::size_t first);

  // The number of header lines; kUnknownHeaderLines in both directions.
  void header_lines(unsigned long n);
  unsigned long header_lines() const { return header_lines_; }

  // -1 until the strategy has been valued.
  long num_variables() const;

  // Sets the white space of the three formats.
  void reset_whitespace(const std::u16string& whitespace);

  // The lines of the last populate_fields; valid until the next one.
  const std::vector<Field>& lines() const { return lines_; }

 protected:
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

  // The text of the last populate_fields. A field may report more units than its line has, but
  // nobody reads past the end of this.
  Field text_;

 private:
  friend class SampleCut;
  friend class detection::SampleKeeper;
  class VLTEXTSTREAM_LOCAL CutRollback;

  VLTEXTSTREAM_LOCAL std::vector<Field> sampled_lines(const Field& text, unsigned long num_lines,
                                                      std::size_t most_lines,
                                                      std::size_t likely_lines,
                                                      std::vector<std::size_t>* num_fields);
  VLTEXTSTREAM_LOCAL bool is_surely_text(const Field& line) const;
  VLTEXTSTREAM_LOCAL void append_fields(const Field& line, std::vector<Field>& fields);
  VLTEXTSTREAM_LOCAL void value(const std::function<bool(const StrategyValuation&)>& wants_classes);
  VLTEXTSTREAM_LOCAL bool measure(const std::vector<std::size_t>& line_counts);
  VLTEXTSTREAM_LOCAL std::vector<DatatypeCode> classes_of(LineFields& lines) const;
  VLTEXTSTREAM_LOCAL void take_classes(std::vector<DatatypeCode> codes);
  VLTEXTSTREAM_LOCAL void settle_header_lines(const std::vector<std::size_t>& line_counts,
                                              const std::vector<std::size_t>& diffs,
                                              std::size_t first);

  std::vector<DatatypeCode> column_classes_;
  std::vector<std::size_t> field_counts_;

  // The number of fields on each line, where sampling has counted them.
  std::vector<std::size_t> counted_fields_;
};

class VLTEXTSTREAM_EXPORT Strategy::StableText {
 public:
  StableText(const Strategy& strategy, const Field& text);
  StableText(const StableText&) = delete;
  StableText& operator=(const StableText&) = delete;
  ~StableText();

  // The promise holds for `text` from now on, and no longer for the text before.
  void move_to(const Field& text) {
    if (!indexes_.empty()) bind(text);
  }

 private:
  VLTEXTSTREAM_LOCAL void add(const MarkerMatcher& matcher);
  void bind(const Field& text);

  std::vector<std::unique_ptr<MarkerIndex>> indexes_;
};

}  // namespace textio
