// The plain reference of the detection engine: all steps from a text and the caller's options to
// the detected layout, written out one by one and with every index checked. The library is compared
// with it. It shares no code with the library and needs only the standard library. It is made to be
// easy to check, not to be fast.
//
//   reference::Options options;
//   auto found = reference::detect(u"a,b\n1,2\n3,4\n", options, 100, is_datetime);
//   // found.winner.mode == Mode::delimited, found.winner.delimiters == {u","}
//
// Units   positions and lengths count UTF-16 code units from the start of the text.
// Errors  std::invalid_argument for a width list that is empty or sums to 0; std::out_of_range or
//         std::logic_error would mean that the reference itself is wrong.
#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <limits>
#include <optional>
#include <string>
#include <vector>

namespace reference {

// Marks the end of the valid text. A read past the end also gives this value.
inline constexpr char16_t kEndMark = 0xFFFF;
inline constexpr std::size_t kNpos = static_cast<std::size_t>(-1);
// The number of header lines that means "not known".
inline constexpr std::size_t kUnknown = static_cast<std::size_t>(-1);

// The classes of a column.
inline constexpr std::uint16_t kNumber = 1;
inline constexpr std::uint16_t kText = 2;
inline constexpr std::uint16_t kDatetime = 3;
inline constexpr std::uint16_t kEmpty = 5;
inline constexpr std::uint16_t kDate = 7;
inline constexpr std::uint16_t kDuration = 8;

// The caller's options that a detection reads, with the defaults of the record.
struct Options {
  std::vector<std::u16string> delimiters;
  std::vector<std::u16string> line_endings{u"\r\n", u"\n", u"\r"};
  std::vector<std::u16string> comment_style;
  std::u16string whitespace = u" \b\t";
  std::size_t header_lines = SIZE_MAX;
  std::size_t num_variables = 0;
  bool detect_delimiters = true;
  bool detect_header_lines = true;
  bool detect_num_variables = true;
};

// A piece of the text. An empty line of a sample is {kNpos, 0}. A field of a fixed-width strategy
// has the whole column width as its length, even if that passes the end of the line or of the text.
struct Span {
  std::size_t begin = 0;
  std::size_t length = 0;
  friend bool operator==(const Span&, const Span&) = default;
};

// A piece that starts at `begin`, and the index at which the next scan starts.
struct Extent {
  std::size_t begin = 0;
  std::size_t length = 0;
  std::size_t next = 0;
  friend bool operator==(const Extent&, const Extent&) = default;
};

struct Valuation {
  double total_variation = std::numeric_limits<double>::infinity();
  double data_variation = std::numeric_limits<double>::infinity();
  std::size_t num_lines = 0;
  std::int32_t modal_field_count = 1;
  std::size_t num_variables = 1;
  std::uint32_t typed_columns = 0;
  std::uint32_t date_columns = 0;
  std::uint32_t numeric_columns = 0;
  std::uint32_t datetime_columns = 0;
  double priors_rank = std::numeric_limits<double>::infinity();
};

enum class Mode { delimited = 0, space_aligned = 1, fixed_width = 2, line_reader = 3 };

// Whether a field's text is a date, with or without a time. An exception counts as "no".
using IsDatetime = std::function<bool(const std::u16string&)>;

// Everything one strategy found in a text.
struct Sample {
  Mode mode = Mode::line_reader;
  std::vector<std::u16string> delimiters;  // space-aligned: " " and "\t"
  std::vector<std::size_t> widths;         // fixed-width only
  std::vector<Span> lines;                 // of the last populate_fields
  // The first cut of `lines`; `counts` are running totals. For a fixed-width strategy this is the
  // cut that its valuation is made of.
  std::vector<Span> fields;
  std::vector<std::size_t> counts;
  std::size_t header_lines = kUnknown;
  bool header_lines_auto = true;
  bool valued = false;
  Valuation valuation;
  // One class per variable; empty when no inspection was made (not valued, or valued early: no
  // line at all, or one field on each line while header lines are detected).
  std::vector<std::uint16_t> column_codes;
  // A second cut directly after the first. It differs from the first only for a fixed-width
  // strategy, whose column index continues.
  std::vector<Span> fields_again;
  std::vector<std::size_t> counts_again;
};

// -- one strategy ------------------------------------------------------------------------------

// One strategy of the given kind, populated with num_lines, then (if `value`) valued.
// `header_lines`: if empty, that of the options; otherwise header_lines(n) is called first.
// Delimiters are used only for `delimited`, widths only for `fixed_width`.
Sample sample_strategy(Mode mode, const std::vector<std::u16string>& delimiters,
                       const std::vector<std::size_t>& widths, const std::u16string& text,
                       const Options& options, std::size_t num_lines,
                       std::optional<std::size_t> header_lines, bool value,
                       const IsDatetime& is_datetime);

// The line that starts at `pos` of the text.
Extent get_line_extent(Mode mode, const std::vector<std::u16string>& delimiters,
                       const std::u16string& text, const Options& options, std::size_t pos);

// The field that starts at `pos` of the line. `next_column` is the column index of the fixed-width
// strategy, which is advanced; the others do not change it.
Extent get_next_field(Mode mode, const std::vector<std::u16string>& delimiters,
                      const std::vector<std::size_t>& widths, const std::u16string& line,
                      const Options& options, std::size_t pos, std::size_t& next_column);

// The white space with which a strategy of the given kind cleans its lines.
std::u16string line_whitespace(Mode mode, const std::vector<std::u16string>& delimiters,
                               const Options& options);

// The length of the match of a list of markers at index i of a text; 0 if there is none.
std::size_t match_markers(const std::vector<std::u16string>& markers, const std::u16string& text,
                          std::size_t i);

// The distinct first code units of all strings of both lists, ascending. An empty string gives
// U+0000.
std::u16string make_stop_chars(const std::vector<std::u16string>& a,
                               const std::vector<std::u16string>& b);

// -- classes of fields -------------------------------------------------------------------------

bool is_number(const std::u16string& text);
bool is_duration(const std::u16string& text);
std::u16string unquote(const std::u16string& field, const std::u16string& whitespace);
std::uint16_t classify(const std::u16string& raw, const std::u16string& whitespace,
                       const IsDatetime& is_datetime);

// -- statistics of the field counts per line ---------------------------------------------------

std::size_t get_modified_median(const std::vector<std::size_t>& line_counts, std::size_t first);
std::vector<std::size_t> get_abs_diffs(const std::vector<std::size_t>& line_counts,
                                       std::int32_t modal_field_count);
double get_total_variation(const std::vector<std::size_t>& diffs);
double get_data_variation(const std::vector<std::size_t>& diffs, std::size_t header_lines,
                          double total_variation);
std::size_t get_number_of_variables(const std::vector<std::size_t>& line_counts,
                                    std::size_t header_lines);
std::size_t skip_to_data(std::size_t h, const std::vector<std::size_t>& empty_lines,
                         const std::vector<std::size_t>& line_counts);
std::vector<double> three_point_filter(const std::vector<double>& x, double a, double b, double c);
std::size_t get_header_lines(const std::vector<std::size_t>& d, std::size_t first, bool cap);

// -- detection ---------------------------------------------------------------------------------

// The characters that could separate fields, in order of first appearance.
std::u16string candidate_chars(const std::u16string& text, const std::vector<Span>& lines);

// All candidates, in the order in which they are built, each of them valued.
std::vector<Sample> build_candidates(const std::u16string& text,
                                     const std::vector<Span>& reader_lines, const Options& options,
                                     std::size_t selector_header_lines, std::size_t num_lines,
                                     const IsDatetime& is_datetime);

using Survivors = std::vector<std::size_t>;
using Valuations = std::vector<Valuation>;
Survivors reduce_by_numvariables(const Survivors& survivors, const Valuations& valuations,
                                 std::size_t num_variables);
Survivors reduce_by_dates(const Survivors& survivors, const Valuations& valuations);
Survivors reduce_by_variation(const Survivors& survivors, const Valuations& valuations);
Survivors reduce_by_class_value(const Survivors& survivors, const Valuations& valuations);
// `header_lines`: the header lines of each candidate.
Survivors reduce_by_header_lines(const Survivors& survivors, const Valuations& valuations,
                                 const std::vector<std::size_t>& header_lines,
                                 bool detect_header_lines);
Survivors reduce_by_non_empty(const Survivors& survivors, const Valuations& valuations);
Survivors reduce_by_priors_rank(const Survivors& survivors, const Valuations& valuations);

struct Detection {
  Sample winner;
  std::vector<Sample> candidates;
  // One entry per filter that ran, in that order, and the names of these filters.
  std::vector<std::vector<std::size_t>> survivors_after_each_filter;
  bool single_column_fallback = false;
  bool line_reader = false;
  std::vector<std::string> filters_run;
};
Detection detect(const std::u16string& text, const Options& options, std::size_t num_lines,
                 const IsDatetime& is_datetime);

// The length of the sample of a whole text.
std::size_t sample_length(const std::u16string& whole_text,
                          const std::vector<std::u16string>& line_endings,
                          std::size_t limit = 4194304);

}  // namespace reference
