// Detections with settings that the assessment obeys. The choices come first, then the text.
//
// Settings that contradict one another, or that the text cannot fulfil, are refused. Otherwise the
// probabilities sum to 1, every reading agrees with what is given, no hidden line is a record, and the layout
// says what was given.
#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

#include <vltextstream/assessment/verdict.hpp>
#include <vltextstream/layout/detect_layout.hpp>
#include <vltextstream/layout/given_settings.hpp>
#include "fuzz/check.hpp"
#include "fuzz/input.hpp"
#include "fuzz/verdict_checks.hpp"
#include "support/exact_text.hpp"

namespace textio::fuzz {
namespace {

using assessment::Form;
using assessment::Given;
using assessment::Hypothesis;
using assessment::Reading;
using assessment::Verdict;
using standalone::DetectSettings;
using standalone::Layout;
using standalone::LayoutMode;
using testing_support::ExactText;
using Texts = std::vector<std::u16string>;

constexpr std::u16string_view kDelimiters[] = {u",", u";", u"\t", u"::", u"|", u" ", u"'", u""};
constexpr std::u16string_view kComments[] = {u"#", u"%", u"//", u"\""};
constexpr char16_t kQuotes[] = {u'\0', u'"', u'\'', u'|', u',', u'\\', u'x'};
constexpr char16_t kMarks[] = {u'.', u',', u' ', u'\'', u'5'};

// One of four choices leaves a setting out; so does a byte that is 0.
bool is_given(Input& input) { return input.below(4) == 1; }

void draw_separators(Input& input, parser::options& options) {
  const std::size_t kind = input.below(8);
  if (kind == 1 || kind == 2) {
    options.detect_delimiters = false;
    options.delimiters.assign(kind, std::u16string(input.one_of(kDelimiters)));
    if (kind == 2) options.delimiters[1] = input.one_of(kDelimiters);
  } else if (kind == 3) {
    options.parser_type = parser::parser_kind::fixedwidth;
    for (std::size_t i = 1 + input.below(3); i > 0; --i) {
      options.variable_widths.push_back(input.below(9));
    }
  }
}

DetectSettings draw_settings(Input& input) {
  DetectSettings settings;
  parser::options& options = settings.options;
  settings.num_lines = 1 + input.below(40);
  draw_separators(input, options);
  if (is_given(input)) {
    options.detect_header_lines = false;
    options.header_lines = input.below(7);
  }
  if (is_given(input)) {
    options.detect_num_variables = false;
    options.num_variables = 1 + input.below(5);
  }
  if (is_given(input)) options.comment_style = {std::u16string(input.one_of(kComments))};
  if (is_given(input)) options.line_endings = {input.flag() ? u"\r" : u"\n"};
  if (is_given(input)) settings.quote = input.one_of(kQuotes);
  if (is_given(input)) settings.escape = input.flag() ? u'\\' : u'\0';
  if (is_given(input)) settings.names_line = input.below(7);
  if (is_given(input)) settings.units_line = input.below(7);
  if (is_given(input)) options.variable_descriptions_line = input.below(7);
  if (is_given(input)) options.row_names_field = input.below(5);
  if (is_given(input)) settings.decimal = input.one_of(kMarks);
  if (is_given(input)) settings.grouping = input.one_of(kMarks);
  if (is_given(input)) settings.missing = {u"x", u"-1"};
  return settings;
}

// --- the verdict -----------------------------------------------------------------------------------

void check_reading(const Reading& reading, const Given& given) {
  if (!given.widths.empty()) {
    require(reading.form == Form::gaps && reading.widths == given.widths, "given widths cut cells");
    return;
  }
  const bool may_be_quoted = reading.form == Form::delimited || reading.form == Form::one;
  if (may_be_quoted && given.quote) require(reading.quote == *given.quote, "the quote is given");
  if (may_be_quoted && given.escape) require(reading.escape == *given.escape, "so is the escape");
  if (!given.delimiters) return;
  Texts delimiters;
  for (const std::u16string& each : *given.delimiters) {
    if (!each.empty()) delimiters.push_back(each);
  }
  if (delimiters.empty()) {
    require(reading.form == Form::one, "without a delimiter, a line is a cell");
    return;
  }
  Texts own = {reading.delimiter};
  own.insert(own.end(), reading.other_delimiters.begin(), reading.other_delimiters.end());
  require(reading.form == Form::delimited && own == delimiters, "given delimiters separate cells");
}

void check_hidden_lines(const Verdict& verdict, const Given& given) {
  const std::size_t header_lines = given.header_lines.value_or(0);
  for (const assessment::Cut& cut : verdict.cuts) {
    for (std::size_t i = 0; i < cut.records.size(); ++i) {
      const std::size_t line = cut.records[i].line;
      require(!verdict.lines.is_hidden(line), "a hidden line is no record");
      require(line >= header_lines, "a header line is no record");
      const bool is_names_line = given.names_line == line + 1;
      require(
          is_names_line || !assessment::has_prefix(verdict.lines.whole(line), given.comment_prefix),
          "a comment is no record");
    }
  }
}

void check_columns(const Verdict& verdict, const Given& given) {
  if (!given.columns || verdict.lines.has_more()) return;
  const auto has_them = [&](const Hypothesis& each) {
    return each.table.columns == *given.columns;
  };
  if (std::none_of(verdict.hypotheses.begin(), verdict.hypotheses.end(), has_them)) return;
  require(has_them(verdict.winner()), "a given number of columns is preferred");
}

void check_names(const Verdict& verdict, const Given& given) {
  if (!given.names_line || problem_with_lines(given, verdict.lines)) return;
  const assessment::NamesVerdict& names = verdict.names;
  require(names.is_given, "it is known where the names are");
  require(names.probability == (*given.names_line > 0 ? 1.0 : 0.0), "and that is sure");
  if (*given.names_line > 0) require_equal("line of names", names.line + 1, *given.names_line);
}

void check_verdict(std::u16string_view text, const DetectSettings& settings) {
  const Given given = standalone::given_of(settings);
  const Verdict verdict = assessment::judge(text, settings.num_lines, given);
  for (const assessment::Cut& cut : verdict.cuts) {
    check_reading(cut.reading, assessment::with_first_line(given, text));
    check_records(verdict, cut.records);
  }
  check_hidden_lines(verdict, given);
  if (verdict.hypotheses.empty()) return;
  check_probabilities(verdict);
  check_columns(verdict, given);
  check_names(verdict, given);
}

// --- the layout ------------------------------------------------------------------------------------

void check_separators(const Layout& layout, const DetectSettings& settings) {
  const parser::options& options = settings.options;
  const bool is_fixed = !options.variable_widths.empty();
  if (is_fixed) {
    require(layout.mode == LayoutMode::fixed_width, "given widths are of a fixed-width layout");
    require(std::equal(layout.widths.begin(), layout.widths.end(), options.variable_widths.begin(),
                       options.variable_widths.end()),
            "widths are the given ones");
  } else if (!options.detect_delimiters) {
    require(layout.mode == LayoutMode::delimited, "given delimiters are of a delimited layout");
    require(layout.delimiters == options.delimiters, "delimiters are the given ones");
  }
}

void check_given_line(const char* what, const std::optional<std::size_t>& line,
                      const std::optional<std::size_t>& given) {
  if (given) require_equal(what, line.value_or(0), *given);
}

void check_layout(const Layout& layout, const DetectSettings& settings) {
  check_separators(layout, settings);
  if (!layout.confidence || layout.no_table == "empty") return;
  require(*layout.confidence >= 0 && *layout.confidence <= 1 + 1e-9, "confidence is from 0 to 1");
  for (const standalone::Rival& rival : layout.rivals) {
    require(rival.probability <= *layout.confidence + 1e-9, "no rival is likelier");
  }
  const bool is_table = layout.no_table.empty();  // otherwise nothing has names
  if (is_table) {
    check_given_line("names line", layout.names_line, settings.names_line);
    check_given_line("units line", layout.units_line, settings.units_line);
  }
  if (layout.quote && settings.quote) require(layout.quote == settings.quote, "the given quote");
  if (layout.escape && settings.escape) {
    require(layout.escape == settings.escape, "the given escape");
  }
  for (const standalone::ColumnFacts& column : layout.columns) {
    require(!settings.decimal || !column.decimal || column.decimal == settings.decimal,
            "the given decimal mark");
  }
}

// Whether a refusal may be right: what is given contradicts itself or the text.
bool may_be_refused(const DetectSettings& settings) {
  const auto& widths = settings.options.variable_widths;
  return standalone::problem_with(settings) || settings.names_line || settings.units_line ||
         settings.options.variable_descriptions_line > 0 || settings.options.row_names_field > 0 ||
         std::find(widths.begin(), widths.end(), 0U) != widths.end();
}

}  // namespace
}  // namespace textio::fuzz

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using namespace textio;
  using namespace textio::fuzz;
  Input input(data, size);
  const standalone::DetectSettings settings = draw_settings(input);
  const testing_support::ExactText exact(input.rest_as_text());
  try {
    const standalone::Layout layout = standalone::detect_layout(exact.view(), settings);
    require(!standalone::problem_with(settings),
            "settings that contradict one another are refused");
    check_layout(layout, settings);
    if (standalone::may_assess(settings)) check_verdict(exact.view(), settings);
  } catch (const std::invalid_argument&) {
    require(may_be_refused(settings), "good settings are refused");
  }
  return 0;
}
