// The options of the library on the command line: one table for the flags, --option and the help.
#pragma once

#include <string>
#include <vector>

#include <vltextstream/layout/detect_layout.hpp>
#include <vltextstream/standalone/services/array.hpp>

namespace textio::tool {

// What a value on the command line is turned into.
enum class ValueKind {
  text,       // a char array
  text_list,  // a char array, a cell of them when the flag is repeated
  count,      // a number; anything else is passed as text, for the library to refuse
  logical,    // true or false; anything else is passed as text
  widths,     // whole numbers separated by commas
  setting,    // the tool's own: a member of DetectSettings
};

struct OptionFlag {
  const char* name;  // of the option, such as "NumHeaderLines"
  ValueKind kind;
  const char* placeholder;  // for the value in the help
  std::string help;
  bool for_import = false;  // acts where the table is read; without effect on a detection

  // The only values that are understood; empty: any value is.
  std::vector<std::string> words = {};
};

// An option as it was typed.
struct GivenOption {
  std::string name;      // of the option
  std::string typed_as;  // the flag, or the name after --option
  std::vector<std::string> values;
  bool is_json = false;  // NAME:=JSON
};

// All options, in the order of the help.
const std::vector<OptionFlag>& option_flags();

// The flag of an option: "--num-header-lines" for "NumHeaderLines".
std::string flag_of(const std::string& name);

// The option with this name in any case; null when there is none.
const OptionFlag* find_option(const std::string& name);

// Sets the member of the settings for an option of the kind `setting`. Throws std::invalid_argument with what was
// expected.
void apply_setting(const std::string& name, const std::string& typed,
                   standalone::DetectSettings& settings);

// A delimiter as it was typed, or the one that the tool itself calls so: "tab" is "\t".
std::string delimiter_named(const std::string& typed);

// The host's array for what was typed. Throws std::invalid_argument for widths that are not.
standalone::Array to_array(ValueKind kind, const std::vector<std::string>& typed);

// The host's array for a JSON value: numbers, logicals, texts; a list of numbers is a row of them
// (of whole ones, for widths), any other list a cell, null and objects the empty array. Throws
// std::invalid_argument when it is no JSON, or lists are nested more than 100 deep.
standalone::Array json_to_array(ValueKind kind, const std::string& typed);

}  // namespace textio::tool
