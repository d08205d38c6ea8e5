// From the settings of a detection to what the judge is given.
//
//   if (may_assess(settings)) verdict = assessment::judge(text, settings.num_lines, given_of(settings));
//
#pragma once

#include <optional>
#include <string>
#include <string_view>

#include <vltextstream/assessment/given.hpp>
#include <vltextstream/layout/detect_layout.hpp>

namespace textio::standalone {

// A setting that cannot be obeyed, or contradicts another.
struct SettingProblem {
  std::string_view option;  // "VariableUnitsLine", "Quote"
  std::string_view member;  // of DetectSettings, or of its options: "units_line", "quote"
  std::string expected;     // "a character that is no letter, digit or white space"
};
std::optional<SettingProblem> problem_with(const DetectSettings& settings);

// Whether delimiters or widths are given, which leave nothing to choose.
bool has_given_separators(const DetectSettings& settings);

// Whether the judge chooses the layout: it is asked, nothing is given that only the cascade obeys, and if
// separators are given, there is something that only the judge obeys.
bool may_assess(const DetectSettings& settings);

assessment::Given given_of(const DetectSettings& settings);

// Whether lines end with "\r\n", "\n" or "\r", or some of these; and with which of them.
bool has_usual_line_endings(const DetectSettings& settings);
assessment::LineEndings line_endings_of(const DetectSettings& settings);

// Whether lines may be given not to belong to the table, so that none may be left.
bool may_leave_no_table(const assessment::Given& given);

// Whether a cell means a missing value.
bool is_missing(std::u16string_view cell, const DetectSettings& settings);

// Whether other letters mark exponents than usual; and a cell with "e" in the place of these, and with "x" in the
// place of the usual ones that are not among them.
bool has_other_exponents(const DetectSettings& settings);
std::u16string with_usual_exponent(std::u16string_view cell, const DetectSettings& settings);

}  // namespace textio::standalone
