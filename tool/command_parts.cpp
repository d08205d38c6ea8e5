// CLI11 takes the command line apart. Options of the library keep their values as they were typed;
// the library checks them, in the order of the command line.
#include "tool/command_parts.hpp"

#include <algorithm>
#include <charconv>
#include <memory>
#include <string_view>
#include <utility>

#include <fmt/format.h>
#include <CLI/CLI.hpp>

#include <vltextstream/options/set_parser_options.hpp>
#include <vltextstream/standalone/decoding/utf_text.hpp>
#include <vltextstream/version.hpp>

#include "tool/help.hpp"
#include "tool/option_words.hpp"
#include "tool/safe_text.hpp"
#include "tool/usage_errors.hpp"

namespace textio::tool {
namespace {

using standalone::DetectSettings;

using Flags = std::map<const CLI::Option*, const OptionFlag*>;

constexpr const char* kAutoEncoding = "auto";
constexpr const char* kAllLines = "all";

// ---------------------------------------------------------------------------------------------
// Options and flags

CLI::Option* add_repeatable(CLI::App& app, const std::string& flag, const char* placeholder,
                            const std::string& help) {
  CLI::Option* const option = app.add_option(flag, CLI::callback_t(), help);
  option->type_name(placeholder)->expected(1);
  return option->multi_option_policy(CLI::MultiOptionPolicy::TakeAll);
}

Flags declare_library_options(CLI::App& app, const char* import_group) {
  Flags flags;
  for (const OptionFlag& flag : option_flags()) {
    CLI::Option* const option =
        add_repeatable(app, flag_of(flag.name), flag.placeholder, flag.help);
    option->group(flag.for_import ? import_group : kKnownGroup);
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

std::vector<std::string> names_of_options() {
  std::vector<std::string> names;
  for (const OptionFlag& flag : option_flags()) names.emplace_back(flag.name);
  return names;
}

// The word that was probably meant, of the option or of its value.
std::string what_was_meant(const GivenOption& option) {
  const OptionFlag* const flag = find_option(option.name);
  if (flag == nullptr) return meant(option.name, names_of_options());
  const std::vector<std::string> words = words_of(flag_of(flag->name));
  return option.is_json || option.values.empty() ? std::string()
                                                 : meant(option.values.front(), words);
}

[[noreturn]] void refuse(const GivenOption& option, const std::string& expected) {
  std::vector<std::string> typed = option.values;
  typed.push_back(option.name);
  throw BadArgument(shortened(option.typed_as),
                    with_short_echoes(expected, typed) + what_was_meant(option));
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

// ---------------------------------------------------------------------------------------------
// What CLI11 refuses

std::vector<std::string> flags_of(const CLI::App& app) {
  std::vector<std::string> flags;
  for (const CLI::Option* option : app.get_options()) {
    for (const std::string& name : option->get_lnames()) flags.push_back("--" + name);
    for (const std::string& name : option->get_snames()) flags.push_back("-" + name);
  }
  return flags;
}

// An option that does not exist is named, with the one that was probably meant.
[[noreturn]] void refuse_unknown(const CLI::App& app, const CLI::ParseError& error,
                                 const std::vector<std::string>& typed) {
  for (const std::string& argument : app.remaining()) {
    if (!argument.starts_with("-")) continue;
    const std::string flag = argument.substr(0, argument.find('='));
    const std::string near = nearest(flag, flags_of(app));
    throw UsageError(near.empty() ? fmt::format("{}: there is no such option", shortened(flag))
                                  : fmt::format("{}: do you mean {}?", shortened(flag), near));
  }
  throw UsageError(with_short_echoes(error.what(), typed));
}

// An option at the end of the line that needs a value.
[[noreturn]] void refuse_mismatch(const CLI::App& app, const CLI::ParseError& error,
                                  const std::vector<std::string>& typed) {
  const CLI::Option* const option = typed.empty() ? nullptr : app.get_option_no_throw(typed.back());
  if (option == nullptr || option->get_items_expected() == 0)
    throw UsageError(with_short_echoes(error.what(), typed));
  const std::vector<std::string> words = words_of(typed.back());
  throw UsageError(fmt::format("{} needs a value: {}", typed.back(),
                               words.empty() ? option->get_type_name() : either_of(words)));
}

}  // namespace

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

void TypedLook::apply_to(DetectSettings& settings) const {
  settings.num_lines = lines == kAllLines ? kAnyNumber : to_number("--lines", lines, 0, kAnyNumber);
  settings.look_at_end = !no_tail;
  if (judge && place_among_words("--judge", *judge) == 1)
    settings.judge = standalone::Judge::cascade;
}

// The help shows the groups in the order of their first options.
CommandParts::CommandParts(CLI::App& app, int argc, const char* import_group) : app_(app) {
  app.formatter(std::make_shared<HelpFormatter>());
  app.set_help_flag("-h,--help", "Print this help and exit");
  app.set_version_flag("-V,--version", std::string("vltext ") + libvltextstream_version,
                       "Print the version and exit");
  flags_ = declare_library_options(app, import_group);
  files_ = declare_files(app, argc);
}

void CommandParts::declare_look(TypedLook& look) {
  app_.add_option(
          "--judge", look.judge,
          "Who chooses the layout: assessment, the likeliest of all sensible readings, which "
          "is what happens if not given, or cascade, a series of filters")
      ->type_name("NAME");
  app_.add_option("--lines", look.lines,
                  "Sample N data lines from the start of each file, 100 if not given; all: as many "
                  "as the largest sample holds")
      ->type_name("N");
  app_.add_flag("--no-tail", look.no_tail,
                "Do not look for a footer at the end of a file that goes on after the sample");
}

void CommandParts::parse(int argc, const char* const* argv, int num_skipped) {
  const std::vector<std::string> typed(argv + std::min(argc, num_skipped), argv + argc);
  try {
    app_.parse(reversed_arguments(app_, typed));
  } catch (const CLI::CallForHelp&) {
    throw TextWanted(app_.help());
  } catch (const CLI::CallForVersion& version) {
    throw TextWanted(version.what() + std::string("\n"));
  } catch (const CLI::ExtrasError& error) {
    refuse_unknown(app_, error, typed);
  } catch (const CLI::ArgumentMismatch& error) {
    refuse_mismatch(app_, error, typed);
  } catch (const CLI::ParseError& error) {
    throw UsageError(with_short_echoes(error.what(), typed));
  }
  if (files_->results().empty()) throw UsageError("FILE is required");
}

std::vector<GivenOption> CommandParts::given() const {
  std::vector<GivenOption> given;
  std::map<const CLI::Option*, std::size_t> typed;
  for (const CLI::Option* option : app_.parse_order()) {
    const auto entry = flags_.find(option);
    if (entry == flags_.end()) continue;
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

}  // namespace textio::tool
