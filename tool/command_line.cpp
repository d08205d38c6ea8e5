// CLI11 takes the command line apart. Options of the library keep their values as they were typed;
// the library checks them, in the order of the command line.
#include "tool/command_line.hpp"

#include <algorithm>
#include <charconv>
#include <limits>
#include <map>
#include <memory>
#include <string_view>
#include <utility>

#include <fmt/format.h>
#include <CLI/CLI.hpp>

#include <vltextstream/options/set_parser_options.hpp>
#include <vltextstream/standalone/decoding/utf_text.hpp>
#include <vltextstream/version.hpp>

#include "tool/help.hpp"
#include "tool/safe_text.hpp"

namespace textio::tool {
namespace {

using standalone::DetectSettings;

constexpr const char* kAutoEncoding = "auto";
constexpr const char* kAllLines = "all";
constexpr unsigned long kMostJobs = 256;
constexpr unsigned long kAnyNumber = std::numeric_limits<unsigned long>::max();

// ---------------------------------------------------------------------------------------------
// Options and flags

// Which option of the library each flag gives a value for; null for --option.
using Flags = std::map<const CLI::Option*, const OptionFlag*>;

CLI::Option* add_repeatable(CLI::App& app, const std::string& flag, const char* placeholder,
                            const std::string& help) {
  CLI::Option* const option = app.add_option(flag, CLI::callback_t(), help);
  option->type_name(placeholder)->expected(1);
  return option->multi_option_policy(CLI::MultiOptionPolicy::TakeAll);
}

// What was typed for the options that take a number.
struct TypedNumbers {
  std::string lines = "100";
  std::optional<std::string> strict;
  std::optional<std::string> jobs;
  std::optional<std::string> max_bytes;
};

// What was typed for the options that take a word.
struct TypedWords {
  std::optional<std::string> judge;
  std::optional<std::string> sample;
};

void declare_own_options(CLI::App& app, Arguments& arguments, TypedNumbers& numbers,
                         TypedWords& words) {
  app.set_help_flag("-h,--help", "Print this help and exit");
  app.set_version_flag("--version", std::string("vltext ") + libvltextstream_version,
                       "Print the version and exit");
  app.add_flag("--json", arguments.json, "Print one JSON document instead of text");
  app.add_flag("--explain", arguments.explain,
               "Also print the evidence, and the candidates of the cascade, their scores and what "
               "each filter left");
  app.add_option(
         "--judge", words.judge,
         "Who chooses the layout: assessment, the likeliest of all sensible readings, which "
         "is what happens if not given, or cascade, a series of filters")
      ->type_name("NAME");
  app.add_option("--strict", numbers.strict,
                 "Exit with 1 unless the answer is at least P percent sure, 50 if not given")
      ->type_name("P");
  app.add_option("--lines", numbers.lines,
                 "Sample N data lines from the start of each file, 100 if not given; all: as many "
                 "as the largest sample holds")
      ->type_name("N");
  app.add_flag("--no-tail", arguments.no_tail,
               "Do not look for a footer at the end of a file that goes on after the sample");
  app.add_option("--sample", words.sample,
                 "start: look at the first lines and the end of each file, which is what happens "
                 "if not given; spread: also at several places between them, and say what "
                 "contradicts the answer there. Compressed files and pipes cannot be spread")
      ->type_name("NAME");
  app.add_option("--jobs", numbers.jobs,
                 "Look at up to N files at the same time, 1 to 256; if not given, as many as there "
                 "are processors. Each takes memory, so fewer where memory is limited")
      ->type_name("N");
  app.add_option("--max-bytes", numbers.max_bytes,
                 "Read at most N bytes of each file, before and after decompression, 67108864 if "
                 "not given; a sample that takes more is an error")
      ->type_name("N");
  app.add_flag(
      "--no-progress", arguments.no_progress,
      "Do not count the files on standard error; they are counted only if it is a terminal "
      "and standard output is not");
}

Flags declare_library_options(CLI::App& app) {
  Flags flags;
  for (const OptionFlag& flag : option_flags()) {
    CLI::Option* const option =
        add_repeatable(app, flag_of(flag.name), flag.placeholder, flag.help);
    option->group(flag.for_import ? kImportGroup : kKnownGroup);
    flags[option] = &flag;
  }
  CLI::Option* const by_name = add_repeatable(
      app, "--option", "NAME=VALUE",
      "Any option of this list or the next by its name, such as NumHeaderLines=2; NAME:=JSON gives "
      "a value of another type");
  flags[by_name->group(kKnownGroup)] = nullptr;
  return flags;
}

// A number of values that is open would let CLI11 take the file name "[a,b]" for a list of two.
CLI::Option* declare_files(CLI::App& app, int argc) {
  CLI::Option* const files = app.add_option("FILE", CLI::callback_t());
  return files->expected(std::max(argc, 1))->multi_option_policy(CLI::MultiOptionPolicy::TakeAll);
}

// The function of CLI11 that looks up one option is noexcept, and allocates.
bool is_flag_with_value(const CLI::App& app, const std::string& flag) {
  return !app.get_options([&](const CLI::Option* option) {
               return option->check_name(flag) && option->get_items_expected() > 0;
             })
              .empty();
}

// The arguments from the last to the first, as CLI11 wants them. It would take the argument after
// "--flag=" for the value, so an empty value becomes an argument of its own.
std::vector<std::string> reversed_arguments(const CLI::App& app,
                                            const std::vector<std::string>& typed) {
  std::vector<std::string> arguments;
  bool is_value = false;
  bool only_files = false;
  for (const std::string& argument : typed) {
    const std::string flag = argument.substr(0, argument.find('='));
    const bool may_be_flag = !is_value && !only_files && argument.starts_with("--");
    only_files = only_files || (may_be_flag && argument == "--");
    const bool takes_value = may_be_flag && is_flag_with_value(app, flag);
    const bool has_empty_value = takes_value && argument.size() == flag.size() + 1;
    is_value = takes_value && argument == flag;
    arguments.push_back(has_empty_value ? flag : argument);
    if (has_empty_value) arguments.emplace_back();
  }
  std::reverse(arguments.begin(), arguments.end());
  return arguments;
}

// ---------------------------------------------------------------------------------------------
// Options of the library

// NAME=VALUE or NAME:=JSON; a name alone comes without a value, for the library to refuse.
GivenOption option_by_name(const std::string& typed) {
  const std::size_t equals = typed.find('=');
  GivenOption option{typed.substr(0, equals), "--option", {}};
  if (equals == std::string::npos) return option;
  option.values = {typed.substr(equals + 1)};
  option.is_json = !option.name.empty() && option.name.back() == ':';
  if (option.is_json) option.name.pop_back();
  if (!option.name.empty()) option.typed_as = option.name;
  return option;
}

// The options in the order in which they were typed. A flag for a list that was repeated has the
// place of its first occurrence, with all its values.
std::vector<GivenOption> given_options(const CLI::App& app, const Flags& flags) {
  std::vector<GivenOption> given;
  std::map<const CLI::Option*, std::size_t> typed;
  for (const CLI::Option* option : app.parse_order()) {
    const auto entry = flags.find(option);
    if (entry == flags.end()) continue;
    const OptionFlag* const flag = entry->second;
    const std::vector<std::string>& values = option->results();
    const std::size_t occurrence = typed[option]++;
    if (flag == nullptr) {
      given.push_back(option_by_name(values[occurrence]));
    } else if (flag->kind != ValueKind::text_list) {
      given.push_back({flag->name, flag_of(flag->name), {values[occurrence]}});
    } else if (occurrence == 0) {
      given.push_back({flag->name, flag_of(flag->name), values});
    }
  }
  return given;
}

bool is_delimiter(const OptionFlag* flag) {
  return flag != nullptr && flag->name == std::string_view("Delimiter");
}

standalone::Array value_of(const GivenOption& option) {
  const OptionFlag* const flag = find_option(option.name);
  const ValueKind kind = flag != nullptr ? flag->kind : ValueKind::text;
  if (option.is_json) return json_to_array(kind, option.values.front());
  std::vector<std::string> values = option.values;
  if (is_delimiter(flag)) {
    std::transform(values.begin(), values.end(), values.begin(), delimiter_named);
  }
  return to_array(kind, values);
}

// The library parses and checks its options; the tool checks only its own settings.
void apply(const GivenOption& option, DetectSettings& settings) {
  const OptionFlag* const flag = find_option(option.name);
  const bool is_setting = flag != nullptr && flag->kind == ValueKind::setting;
  if (is_setting && !option.is_json && !option.values.empty()) {
    apply_setting(flag->name, option.values.front(), settings);
  } else if (!option.values.empty()) {
    standalone::apply_option(settings, {option.name, value_of(option)});
  } else {
    const auto name = standalone::make_array(standalone::from_utf8(option.name));
    const hxArray* alone[] = {name.get()};
    options::set_parser_options(alone, 1, settings.options);
  }
}

[[noreturn]] void refuse(const GivenOption& option, const std::string& expected) {
  std::vector<std::string> typed = option.values;
  typed.push_back(option.name);
  throw BadArgument(shortened(option.typed_as), with_short_echoes(expected, typed));
}

void apply_or_refuse(const GivenOption& option, DetectSettings& settings) {
  try {
    apply(option, settings);
  } catch (const MessageIdentifiedError& refused) {
    refuse(option, standalone::message_of(refused));
  } catch (const std::invalid_argument& refused) {
    refuse(option, refused.what());
  }
}

// Says which flag gives a setting that contradicts another.
void check(const DetectSettings& settings) {
  try {
    check_settings(settings);
  } catch (const std::invalid_argument& refused) {
    const std::string message = refused.what();
    const std::size_t colon = message.find(": ");
    throw BadArgument(flag_of(message.substr(0, colon)), message.substr(colon + 2));
  }
}

// The options one after the other. The word that asks for the encoding to be found is the tool's
// own; it cancels the encodings given before.
DetectSettings settings_of(const std::vector<GivenOption>& given) {
  DetectSettings settings;
  for (const GivenOption& option : given) {
    if (option.typed_as == "--encoding" && option.values.back() == kAutoEncoding) {
      settings.encoding.reset();
      settings.options.encoding = parser::options().encoding;
      continue;
    }
    apply_or_refuse(option, settings);
  }
  check(settings);
  return settings;
}

// ---------------------------------------------------------------------------------------------
// The whole

// The whole of `text` as a number; CLI11 would accept "-1" for an unsigned one.
unsigned long to_number(const char* flag, const std::string& text, unsigned long least,
                        unsigned long most) {
  unsigned long number = 0;
  const char* const end = text.data() + text.size();
  const auto [stop, problem] = std::from_chars(text.data(), end, number);
  const bool is_whole_number = problem == std::errc() && stop == end;
  if (is_whole_number && number >= least && number <= most) return number;
  const std::string largest = most == kAnyNumber ? "2^64 - 1" : std::to_string(most);
  throw BadArgument(flag, fmt::format("Expected a whole number from {} to {}, got '{}'.", least,
                                      largest, shortened(text)));
}

standalone::Judge judge_named(const std::string& name) {
  for (const auto judge : {standalone::Judge::assessment, standalone::Judge::cascade}) {
    if (name == to_string(judge)) return judge;
  }
  throw BadArgument("--judge",
                    fmt::format("Expected assessment or cascade, got '{}'.", shortened(name)));
}

standalone::SampleFrom sample_named(const std::string& name) {
  for (const auto sample : {standalone::SampleFrom::start, standalone::SampleFrom::spread}) {
    if (name == to_string(sample)) return sample;
  }
  throw BadArgument("--sample",
                    fmt::format("Expected start or spread, got '{}'.", shortened(name)));
}

void parse(CLI::App& app, const std::vector<std::string>& typed) {
  try {
    app.parse(reversed_arguments(app, typed));
  } catch (const CLI::CallForHelp&) {
    throw TextWanted(app.help());
  } catch (const CLI::CallForVersion& version) {
    throw TextWanted(version.what() + std::string("\n"));
  } catch (const CLI::ParseError& error) {
    throw UsageError(with_short_echoes(error.what(), typed));
  }
}

}  // namespace

Arguments parse_command_line(int argc, const char* const* argv) {
  CLI::App app(kDescription, "vltext");
  app.formatter(std::make_shared<HelpFormatter>());
  Arguments arguments;
  TypedNumbers numbers;
  TypedWords words;
  declare_own_options(app, arguments, numbers, words);
  const Flags flags = declare_library_options(app);
  const CLI::Option* const files = declare_files(app, argc);

  parse(app, {argv + std::min(argc, 1), argv + argc});
  arguments.files = files->results();
  if (arguments.files.empty()) throw UsageError("FILE is required");
  arguments.given = given_options(app, flags);
  arguments.settings = settings_of(arguments.given);
  arguments.settings.num_lines =
      numbers.lines == kAllLines ? kAnyNumber : to_number("--lines", numbers.lines, 0, kAnyNumber);
  arguments.settings.look_at_end = !arguments.no_tail;
  arguments.settings.trace = arguments.explain;
  if (numbers.max_bytes) {
    arguments.settings.max_bytes = to_number("--max-bytes", *numbers.max_bytes, 1, kAnyNumber);
  }
  if (words.judge) arguments.settings.judge = judge_named(*words.judge);
  if (words.sample) arguments.settings.sample = sample_named(*words.sample);
  if (numbers.strict) arguments.least_percent = to_number("--strict", *numbers.strict, 0, 100);
  if (numbers.jobs) arguments.num_jobs = to_number("--jobs", *numbers.jobs, 1, kMostJobs);
  return arguments;
}

}  // namespace textio::tool
