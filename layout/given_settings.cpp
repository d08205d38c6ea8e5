#include <vltextstream/layout/given_settings.hpp>

#include <algorithm>
#include <stdexcept>
#include <string>

#include <fmt/format.h>

namespace textio::standalone {
namespace {

using assessment::Given;

// If more widths than this are given, the strategy cuts the lines: with this many cells for each sampled
// line, the cost would not be linear in the text.
constexpr std::size_t kMostWidths = 4096;

const parser::options& defaults() {
  static const parser::options options;
  return options;
}

bool has_given_widths(const DetectSettings& settings) {
  const parser::options& options = settings.options;
  return options.parser_type == parser::parser_kind::fixedwidth && !options.variable_widths.empty();
}

// --- line endings and white space ------------------------------------------------------------------

bool are_usual_endings(const std::vector<std::u16string>& endings) {
  const auto& usual = parser::default_line_endings();
  return !endings.empty() &&
         std::all_of(endings.begin(), endings.end(), [&](const std::u16string& ending) {
           return std::find(usual.begin(), usual.end(), ending) != usual.end();
         });
}

// The endings are tried in their order: "\r" before "\r\n" leaves nothing for this.
assessment::LineEndings endings_of(const std::vector<std::u16string>& endings) {
  const auto place = [&](const std::u16string& ending) {
    return std::find(endings.begin(), endings.end(), ending);
  };
  const auto cr = place(parser::cr_string);
  return {place(parser::lf_string) != endings.end(), cr != endings.end(),
          place(parser::crlf_string) < cr};
}

// Whether the judge's white space is meant: blanks, and nothing that is not white space.
bool is_usual_whitespace(std::u16string_view whitespace) {
  constexpr std::u16string_view kWhite = u" \b\t\v\f\r\n\u00A0";
  return whitespace.find(u' ') != whitespace.npos &&
         whitespace.find_first_not_of(kWhite) == whitespace.npos;
}

// --- lines -----------------------------------------------------------------------------------------

// A line of the record is given unless it is 0.
std::optional<std::size_t> line_of(std::optional<std::size_t> setting, std::uint64_t in_record) {
  if (setting || in_record == 0) return setting;
  return static_cast<std::size_t>(in_record);
}

std::optional<std::size_t> names_line_of(const DetectSettings& settings) {
  return line_of(settings.names_line, settings.options.variable_names_line);
}

std::optional<std::size_t> units_line_of(const DetectSettings& settings) {
  return line_of(settings.units_line, settings.options.variable_units_line);
}

using Problem = std::optional<SettingProblem>;

Problem problem_with_lines(const DetectSettings& settings) {
  const std::size_t names = names_line_of(settings).value_or(0);
  const std::size_t units = units_line_of(settings).value_or(0);
  const std::size_t descriptions = settings.options.variable_descriptions_line;
  if (units > 0 && units == names) {
    return {{"VariableUnitsLine", "units_line",
             fmt::format("another line than that of the names, {}", names)}};
  }
  if (descriptions > 0 && (descriptions == names || descriptions == units)) {
    return {{"VariableDescriptionsLine", "variable_descriptions_line",
             fmt::format("another line than that of the names or the units, {}", descriptions)}};
  }
  return std::nullopt;
}

// --- characters ------------------------------------------------------------------------------------

bool is_letter_or_digit(char16_t unit) {
  return (unit >= u'0' && unit <= u'9') || (unit >= u'a' && unit <= u'z') ||
         (unit >= u'A' && unit <= u'Z');
}

bool is_white(char16_t unit) {
  return unit == u' ' || unit == u'\u00A0' || (unit >= u'\t' && unit <= u'\r');
}

bool is_no_character(char16_t unit) { return unit == 0xFFFF || (unit >= 0xD800 && unit <= 0xDFFF); }

Problem problem_with_quotes(const DetectSettings& settings) {
  const auto refused = [](const char* expected) { return Problem({"Quote", "quote", expected}); };
  const bool has_escape = settings.escape && *settings.escape != 0;
  if (has_escape && *settings.escape != u'\\') {
    return {{"Escape", "escape", "a backslash or nothing"}};
  }
  if (!settings.quote || *settings.quote == 0) return std::nullopt;
  const char16_t quote = *settings.quote;
  if (is_letter_or_digit(quote) || is_white(quote) || is_no_character(quote)) {
    return refused("a character that is no letter, digit or white space");
  }
  if (has_escape && quote == u'\\') return refused("another character than the escape");
  if (settings.options.detect_delimiters) return std::nullopt;
  for (const std::u16string& delimiter : settings.options.delimiters) {
    if (delimiter.find(quote) != delimiter.npos) {
      return refused("a character that is not part of a delimiter");
    }
  }
  return std::nullopt;
}

bool may_be_part_of_number(char16_t unit) {
  return is_letter_or_digit(unit) || unit == u'+' || unit == u'-' || is_no_character(unit);
}

Problem problem_with_marks(const DetectSettings& settings) {
  const auto refused = [](const char* expected) {
    return Problem({"Grouping", "grouping", expected});
  };
  const std::optional<char16_t> decimal = settings.decimal;
  const std::optional<char16_t> grouping = settings.grouping;
  if (decimal && (may_be_part_of_number(*decimal) || is_white(*decimal) || *decimal == 0)) {
    return {{"Decimal", "decimal", "a character that is no letter, digit, sign or white space"}};
  }
  if (!grouping) return std::nullopt;
  if (may_be_part_of_number(*grouping) || *grouping == 0) {
    return refused("a character that is no letter, digit or sign");
  }
  if (decimal == grouping) return refused("another character than the decimal mark");
  return std::nullopt;
}

// Whether something is given that has an effect only where the judge describes the table.
bool needs_judge(const DetectSettings& settings) {
  const parser::options& options = settings.options;
  return names_line_of(settings) || units_line_of(settings) || settings.quote || settings.escape ||
         !settings.missing.empty() || options.variable_descriptions_line > 0 ||
         options.row_names_field > 0 || has_other_exponents(settings);
}

}  // namespace

std::optional<SettingProblem> problem_with(const DetectSettings& settings) {
  for (const auto find_problem : {problem_with_lines, problem_with_quotes, problem_with_marks}) {
    if (Problem problem = find_problem(settings)) return problem;
  }
  return std::nullopt;
}

void check_settings(const DetectSettings& settings) {
  if (const Problem problem = problem_with(settings)) {
    throw std::invalid_argument(
        fmt::format("{}: Expected {}.", problem->option, problem->expected));
  }
}

bool has_given_separators(const DetectSettings& settings) {
  return has_given_widths(settings) || !settings.options.detect_delimiters;
}

bool may_assess(const DetectSettings& settings) {
  const parser::options& options = settings.options;
  if (settings.judge != Judge::assessment || settings.num_lines == 0) return false;
  if (!are_usual_endings(options.line_endings) || !is_usual_whitespace(options.whitespace)) {
    return false;
  }
  if (has_given_separators(settings)) {
    return needs_judge(settings) && options.variable_widths.size() <= kMostWidths;
  }
  return options.parser_type == defaults().parser_type;
}

bool has_usual_line_endings(const DetectSettings& settings) {
  return are_usual_endings(settings.options.line_endings);
}

assessment::LineEndings line_endings_of(const DetectSettings& settings) {
  return endings_of(settings.options.line_endings);
}

Given given_of(const DetectSettings& settings) {
  const parser::options& options = settings.options;
  Given given;
  if (!options.detect_header_lines) given.header_lines = options.header_lines;
  if (!options.comment_style.empty()) given.comment_prefix = options.comment_style[0];
  given.line_endings = endings_of(options.line_endings);
  if (!options.detect_num_variables && options.num_variables > 0) {
    given.columns = options.num_variables;
  }
  if (has_given_widths(settings)) {
    given.widths.assign(options.variable_widths.begin(), options.variable_widths.end());
  } else if (!options.detect_delimiters) {
    given.delimiters = options.delimiters;
  }
  given.quote = settings.quote;
  given.escape = settings.escape;
  given.names_line = names_line_of(settings);
  given.units_line = units_line_of(settings);
  given.descriptions_line = options.variable_descriptions_line;
  given.row_names_column = options.row_names_field;
  return given;
}

bool may_leave_no_table(const Given& given) {
  return given.header_lines || !given.comment_prefix.empty() || given.delimiters ||
         !given.widths.empty() || given.last_named_line() > 0;
}

bool is_missing(std::u16string_view cell, const DetectSettings& settings) {
  return std::find(settings.missing.begin(), settings.missing.end(), cell) !=
         settings.missing.end();
}

bool has_other_exponents(const DetectSettings& settings) {
  return settings.options.exp_chars != defaults().exp_chars;
}

// An exponent is between a digit or point and a digit that may have a sign.
std::u16string with_usual_exponent(std::u16string_view cell, const DetectSettings& settings) {
  std::u16string text(cell);
  const std::u16string& given = settings.options.exp_chars;
  const std::u16string& usual = defaults().exp_chars;
  const auto is_digit = [&](std::size_t i) {
    return i < text.size() && text[i] >= u'0' && text[i] <= u'9';
  };
  for (std::size_t i = 1; i + 1 < text.size(); ++i) {
    const bool has_sign = text[i + 1] == u'+' || text[i + 1] == u'-';
    const bool is_between =
        (is_digit(i - 1) || text[i - 1] == u'.') && is_digit(i + (has_sign ? 2 : 1));
    if (!is_between || is_digit(i)) continue;
    if (given.find(text[i]) != given.npos) {
      text[i] = u'e';
    } else if (usual.find(text[i]) != usual.npos) {
      text[i] = u'x';
    }
  }
  return text;
}

}  // namespace textio::standalone
