#include "differential/comparison.hpp"

#include <bit>
#include <cstdint>
#include <cstdio>
#include <memory>
#include <numeric>
#include <type_traits>

#include <vltextstream/detection/strategy_selector.hpp>
#include <vltextstream/host/datetime.hpp>
#include <vltextstream/strategy/delimited_strategy.hpp>
#include <vltextstream/strategy/fixed_width_strategy.hpp>
#include <vltextstream/strategy/line_reader_strategy.hpp>
#include <vltextstream/strategy/space_aligned_strategy.hpp>
#include "reference/reference.hpp"
#include "support/exact_text.hpp"
#include "support/printing.hpp"
#include "support/unit_strategy.hpp"

namespace textio::differential {
namespace {

using testing_support::ExactText;

bool is_datetime(const std::u16string& text) {
  return datetime::is_datetime(Field(text.data(), text.size()));
}

// Collects the differences, under the name of what is being compared.
class Differences {
 public:
  void enter(const std::string& name) { name_ = name; }

  template <typename T>
  void compare(const char* what, const T& library, const T& plain) {
    if (!(library == plain)) add(what, show(library), show(plain));
  }
  // Bit for bit, including infinities and negative zero.
  void compare(const char* what, double library, double plain) {
    if (std::bit_cast<std::uint64_t>(library) == std::bit_cast<std::uint64_t>(plain)) return;
    add(what, show(library), show(plain));
  }

  const std::string& str() const { return out_; }

 private:
  void add(const char* what, const std::string& library, const std::string& plain) {
    out_ += name_ + ' ' + what + ": library " + library + ", reference " + plain + '\n';
  }
  template <typename T>
  static std::string show(const std::vector<T>& list) {
    std::string out = "[";
    for (const T& item : list) out += show(item) + " ";
    return out + "]";
  }
  static std::string show(const std::u16string& text) { return testing_support::readable(text); }
  static std::string show(const std::string& text) { return text; }
  static std::string show(const reference::Span& span) {
    return show(span.begin) + "+" + show(span.length);
  }
  template <typename Number>
  static std::string show(Number number) requires std::is_arithmetic_v<Number> {
    return std::to_string(number);
  }
  // With enough digits that different numbers look different.
  static std::string show(double number) {
    char digits[32];
    std::snprintf(digits, sizeof digits, "%.17g", number);
    return digits;
  }

  std::string out_;
  std::string name_;
};

std::vector<reference::Span> spans_of(const std::vector<Field>& fields, const ExactText& text) {
  std::vector<reference::Span> spans;
  for (const Field& field : fields) {
    const bool is_in_text = field.data >= text.data() && field.data <= text.data() + text.size();
    const auto begin =
        is_in_text ? static_cast<std::size_t>(field.data - text.data()) : reference::kNpos;
    spans.push_back({begin, field.length});
  }
  return spans;
}

std::vector<std::size_t> widths_of(const Strategy& strategy) {
  const auto* fixed = dynamic_cast<const FixedWidthStrategy*>(&strategy);
  return fixed ? fixed->widths() : std::vector<std::size_t>();
}

std::vector<std::uint16_t> codes_of(const std::vector<DatatypeCode>& codes) {
  std::vector<std::uint16_t> numbers;
  for (const DatatypeCode code : codes) numbers.push_back(static_cast<std::uint16_t>(code));
  return numbers;
}

// The number of fields on each line, from running totals.
std::vector<std::size_t> counts_of(const std::vector<std::size_t>& totals) {
  std::vector<std::size_t> counts(totals.size());
  std::adjacent_difference(totals.begin(), totals.end(), counts.begin());
  return counts;
}

void compare_valuations(Differences& differences, const StrategyValuation& library,
                        const reference::Valuation& plain) {
  differences.compare("total_variation", library.total_variation, plain.total_variation);
  differences.compare("data_variation", library.data_variation, plain.data_variation);
  differences.compare("num_lines", library.num_lines, plain.num_lines);
  differences.compare("modal_field_count", library.modal_field_count, plain.modal_field_count);
  differences.compare("num_variables", library.num_variables, plain.num_variables);
  differences.compare("typed_columns", library.typed_columns, plain.typed_columns);
  differences.compare("date_columns", library.date_columns, plain.date_columns);
  differences.compare("numeric_columns", library.numeric_columns, plain.numeric_columns);
  differences.compare("datetime_columns", library.datetime_columns, plain.datetime_columns);
  differences.compare("priors_rank", library.priors_rank, plain.priors_rank);
}

// The inputs of a strategy of the reference.
struct PlainStrategy {
  reference::Mode mode;
  std::vector<std::u16string> delimiters;
  std::vector<std::size_t> widths;
};

// The text, and the choices that both sides get.
struct Task {
  const std::u16string& text;
  unsigned long num_lines;
  const reference::Options& plain_options;
  unsigned long plain_num_lines;
};

void compare_strategy(Differences& differences, const std::string& name, Strategy& strategy,
                      const PlainStrategy& plain_strategy, const Task& task) {
  const reference::Sample plain = reference::sample_strategy(
      plain_strategy.mode, plain_strategy.delimiters, plain_strategy.widths, task.text,
      task.plain_options, task.plain_num_lines, std::nullopt, true, is_datetime);
  const ExactText exact(task.text);
  strategy.populate_fields(exact.field(), task.num_lines);
  const StrategyValuation& valuation = strategy.valuation();
  const FieldArray again = strategy.get_fields_from_lines();

  differences.enter(name);
  differences.compare("lines", spans_of(strategy.lines(), exact), plain.lines);
  differences.compare("fields", spans_of(again.fields, exact), plain.fields_again);
  differences.compare("counts", again.counts, plain.counts_again);
  differences.compare("header_lines", std::size_t{strategy.header_lines()}, plain.header_lines);
  differences.compare("column codes", codes_of(strategy.column_classes()), plain.column_codes);
  compare_valuations(differences, valuation, plain.valuation);
}

std::u16string fields_between_blanks(const std::vector<std::size_t>& counts) {
  std::u16string text;
  for (const std::size_t count : counts) {
    for (std::size_t i = 0; i < count; ++i) text += i == 0 ? u"1" : u" 1";
    text += u'\n';
  }
  return text;
}

}  // namespace

parser::options library_options(const Choices& choices) {
  parser::options options;
  options.line_endings = choices.line_endings;
  options.comment_style = choices.comment_style;
  options.whitespace = choices.whitespace;
  options.detect_header_lines = !choices.header_lines;
  if (choices.header_lines) options.header_lines = *choices.header_lines;
  options.detect_num_variables = !choices.num_variables;
  options.num_variables = choices.num_variables.value_or(0);
  return options;
}

reference::Options reference_options(const Choices& choices) {
  const parser::options options = library_options(choices);
  reference::Options plain;
  plain.line_endings = options.line_endings;
  plain.comment_style = options.comment_style;
  plain.whitespace = options.whitespace;
  plain.header_lines = options.header_lines;
  plain.num_variables = options.num_variables;
  plain.detect_header_lines = options.detect_header_lines;
  plain.detect_num_variables = options.detect_num_variables;
  return plain;
}

std::string difference_in_strategies(const std::u16string& text, const Choices& choices,
                                     const std::vector<unsigned long>& widths) {
  return difference_in_strategies(text, choices, choices, widths);
}

std::string difference_in_strategies(const std::u16string& text, const Choices& choices,
                                     const Choices& plain_choices,
                                     const std::vector<unsigned long>& widths) {
  using reference::Mode;
  const parser::options options = library_options(choices);
  const reference::Options plain_options = reference_options(plain_choices);
  const Task task{text, choices.num_lines, plain_options, plain_choices.num_lines};
  Differences differences;
  LineReaderStrategy reader(options);
  compare_strategy(differences, "line reader", reader, {Mode::line_reader, {}, {}}, task);
  for (const std::vector<std::u16string>& delimiters :
       {std::vector<std::u16string>{u","}, {u" "}, {u",1", u","}, {}}) {
    DelimitedStrategy delimited(options, delimiters);
    std::string name = "delimited";
    for (const std::u16string& delimiter : delimiters) {
      name += " '" + testing_support::readable(delimiter) + '\'';
    }
    compare_strategy(differences, name, delimited, {Mode::delimited, delimiters, {}}, task);
  }
  SpaceAlignedStrategy aligned(options);
  compare_strategy(differences, "space-aligned", aligned, {Mode::space_aligned, {u" ", u"\t"}, {}},
                   task);
  FixedWidthStrategy fixed(options, widths);
  compare_strategy(differences, "fixed-width", fixed,
                   {Mode::fixed_width, {}, {widths.begin(), widths.end()}}, task);
  return differences.str();
}

std::string difference_in_scores(const std::vector<std::size_t>& counts, const Choices& choices) {
  return difference_in_scores(counts, choices, choices);
}

// With columns of width 1 the reference makes each code unit a field.
std::string difference_in_scores(const std::vector<std::size_t>& counts, const Choices& choices,
                                 const Choices& plain_choices) {
  using reference::Mode;
  const parser::options options = library_options(choices);
  const reference::Options plain_options = reference_options(plain_choices);
  const auto task_for = [&](const std::u16string& text) {
    return Task{text, choices.num_lines, plain_options, plain_choices.num_lines};
  };
  Differences differences;
  const std::u16string units = testing_support::text_of_counts(counts, u'1');
  testing_support::UnitStrategy strategy(options);
  compare_strategy(differences, "units", strategy, {Mode::fixed_width, {}, {1}}, task_for(units));
  const bool is_asked_for_header_lines = !choices.header_lines || *choices.header_lines == SIZE_MAX;
  if (is_asked_for_header_lines) {
    const std::u16string text = fields_between_blanks(counts);
    DelimitedStrategy blanks(options, std::vector<std::u16string>{u" "});
    compare_strategy(differences, "blanks", blanks, {Mode::delimited, {u" "}, {}}, task_for(text));
  }
  return differences.str();
}

std::string difference_in_valuations(const StrategyValuation& library,
                                     const reference::Valuation& plain) {
  Differences differences;
  differences.enter("valuation");
  compare_valuations(differences, library, plain);
  return differences.str();
}

std::string difference_in_detection(const std::u16string& text, const Choices& choices) {
  return difference_in_detection(text, choices, choices);
}

std::string difference_in_detection(const std::u16string& text, const Choices& choices,
                                    const Choices& plain_choices) {
  const reference::Detection plain = reference::detect(text, reference_options(plain_choices),
                                                       plain_choices.num_lines, is_datetime);
  const ExactText exact(text);
  const parser::options options = library_options(choices);
  detection::SelectionTrace trace;
  const auto winner =
      detection::StrategySelector(options).pick_strategy(exact.field(), choices.num_lines, trace);

  Differences differences;
  differences.enter("winner");
  differences.compare("mode", static_cast<std::size_t>(winner->mode()),
                      static_cast<std::size_t>(plain.winner.mode));
  differences.compare("header lines", std::size_t{winner->header_lines()},
                      plain.winner.header_lines);
  differences.compare("lines", spans_of(winner->lines(), exact), plain.winner.lines);
  differences.compare("widths", widths_of(*winner), plain.winner.widths);
  differences.compare("fallback", std::size_t{winner->num_variables() < 0},
                      std::size_t{plain.single_column_fallback});
  if (const auto* delimited = dynamic_cast<const DelimitedStrategy*>(winner.get())) {
    differences.compare("delimiters", delimited->delimiter()->strings, plain.winner.delimiters);
  }
  if (winner->num_variables() >= 0) {
    compare_valuations(differences, winner->valuation(), plain.winner.valuation);
    differences.compare("column codes", codes_of(winner->column_classes()),
                        plain.winner.column_codes);
    differences.compare("field counts", winner->field_counts(), counts_of(plain.winner.counts));
  }

  std::size_t kept = 0;
  for (const detection::CandidateTrace& candidate : trace.candidates) {
    if (candidate.fate != detection::CandidateFate::kept) continue;
    differences.enter("candidate " + std::to_string(kept));
    if (kept < plain.candidates.size()) {
      const reference::Sample& sample = plain.candidates[kept];
      differences.compare("mode", static_cast<std::size_t>(candidate.dialect.mode),
                          static_cast<std::size_t>(sample.mode));
      differences.compare("widths", candidate.dialect.widths, sample.widths);
      differences.compare("header lines", candidate.header_lines, sample.header_lines);
      compare_valuations(differences, candidate.valuation, sample.valuation);
    }
    ++kept;
  }
  differences.enter("selection");
  differences.compare("number of candidates", kept, plain.candidates.size());
  std::vector<std::string> filters;
  std::vector<std::vector<std::size_t>> survivors;
  for (const detection::FilterTrace& filter : trace.filters) {
    filters.push_back(filter.name);
    survivors.push_back(filter.survivors);
  }
  std::vector<std::string> plain_filters;
  for (const std::string& name : plain.filters_run) plain_filters.push_back("reduce_by_" + name);
  differences.compare("filters", filters, plain_filters);
  differences.compare("survivors", survivors, plain.survivors_after_each_filter);
  return differences.str();
}

}  // namespace textio::differential
