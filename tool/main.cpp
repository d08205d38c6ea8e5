// vltext: prints how the tables in text files are laid out.
#include <algorithm>
#include <cerrno>
#include <charconv>
#include <chrono>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <exception>
#include <limits>
#include <map>
#include <mutex>
#include <new>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include <fmt/format.h>
#include <CLI/CLI.hpp>

#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

#include <vltextstream/layout/detect_layout.hpp>
#include <vltextstream/options/set_parser_options.hpp>
#include <vltextstream/standalone/decoding/utf_text.hpp>
#include <vltextstream/version.hpp>

#include "tool/help.hpp"
#include "tool/json_report.hpp"
#include "tool/option_flags.hpp"
#include "tool/ordered_work.hpp"
#include "tool/progress_line.hpp"
#include "tool/report.hpp"
#include "tool/worker_thread.hpp"

namespace {

using textio::standalone::detect_layout;
using textio::standalone::DetectSettings;
using textio::standalone::Layout;
using textio::tool::Answer;
using textio::tool::available_processors;
using textio::tool::GivenOption;
using textio::tool::OptionFlag;
using textio::tool::ProgressLine;
using textio::tool::ValueKind;

constexpr int kFailed = 2;
constexpr const char* kAutoEncoding = "auto";
constexpr unsigned long kMostJobs = 256;

struct Arguments {
  std::vector<std::string> files;
  std::vector<GivenOption> given;
  DetectSettings settings;
  std::string lines = "100";
  std::optional<std::string> jobs;
  std::optional<std::string> max_bytes;
  std::size_t num_threads = 1;
  bool json = false;
  bool explain = false;
  bool no_progress = false;
};

// An argument that is wrong: where it stands and what was expected.
class BadArgument : public std::runtime_error {
 public:
  BadArgument(const std::string& flag, const std::string& expected)
      : std::runtime_error(flag + ": " + expected) {}
};

// ---------------------------------------------------------------------------------------------
// The command line

// Which option of the library each flag stands for; null for --option.
using Flags = std::map<const CLI::Option*, const OptionFlag*>;

CLI::Option* add_repeatable(CLI::App& app, const std::string& flag) {
  CLI::Option* const option = app.add_option(flag);
  option->expected(1)->multi_option_policy(CLI::MultiOptionPolicy::TakeAll);
  return option;
}

// Whether one of the arguments is `flag`, or `flag` and a value behind "=".
bool is_typed(const std::string& flag, int argc, char** argv) {
  return std::any_of(argv + 1, argv + argc, [&flag](std::string_view argument) {
    return argument.substr(0, argument.find('=')) == flag;
  });
}

// The parser compares every flag that it is told of with all others, which took longer than a small
// file: it is told of the options that were typed alone.
Flags declare(CLI::App& app, Arguments& arguments, int argc, char** argv) {
  app.add_option("FILE", arguments.files)->required();
  app.add_flag("--json", arguments.json);
  app.add_flag("--explain", arguments.explain);
  app.add_option("--lines", arguments.lines);
  app.add_option("--jobs", arguments.jobs);
  app.add_option("--max-bytes", arguments.max_bytes);
  app.add_flag("--no-progress", arguments.no_progress);
  app.set_version_flag("--version", std::string("vltext ") + libvltextstream_version);

  Flags flags;
  for (const OptionFlag& flag : textio::tool::option_flags()) {
    const std::string name = textio::tool::flag_of(flag.name);
    if (is_typed(name, argc, argv)) flags[add_repeatable(app, name)] = &flag;
  }
  flags[add_repeatable(app, "--option")] = nullptr;
  return flags;
}

// Stands behind the name of a file that the parser would take apart; no argument has one.
constexpr char kEndOfName = '\0';

// The arguments, last one first, as the parser wants them. It would take what follows "--flag=" for
// the value, so the empty value is put there; and "[a,b]" for two files.
std::vector<std::string> reversed_arguments(const CLI::App& app, int argc, char** argv) {
  std::vector<std::string> arguments;
  bool is_value = false;
  bool only_files = false;
  for (int i = 1; i < argc; ++i) {
    std::string argument = argv[i];
    const bool ends_with_equals = !argument.empty() && argument.find('=') == argument.size() - 1;
    const std::string flag = ends_with_equals ? argument.substr(0, argument.size() - 1) : argument;
    const bool may_be_flag = !is_value && !only_files && flag.starts_with('-');
    const CLI::Option* const option = may_be_flag ? app.get_option_no_throw(flag) : nullptr;
    if (!is_value && argument.starts_with('[')) argument += kEndOfName;
    const bool takes_value = option != nullptr && option->get_items_expected() > 0;
    only_files = only_files || (!is_value && argument == "--");
    is_value = takes_value && !ends_with_equals;
    arguments.push_back(takes_value ? flag : argument);
    if (takes_value && ends_with_equals) arguments.emplace_back();
  }
  std::reverse(arguments.begin(), arguments.end());
  return arguments;
}

// The names of the files as they were typed.
void restore_names(std::vector<std::string>& files) {
  for (std::string& file : files) {
    if (file.ends_with(kEndOfName)) file.pop_back();
  }
}

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

// The options in the order in which they were typed; a flag for a list that was repeated stands
// where it was typed first, with all its values.
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
      given.push_back({flag->name, textio::tool::flag_of(flag->name), {values[occurrence]}});
    } else if (occurrence == 0) {
      given.push_back({flag->name, textio::tool::flag_of(flag->name), values});
    }
  }
  return given;
}

// The whole of `text` as a number; the parser of the command line would take "-1" for one.
unsigned long to_number(const char* flag, const std::string& text, unsigned long least,
                        unsigned long most) {
  unsigned long number = 0;
  const char* const end = text.data() + text.size();
  const auto [stop, problem] = std::from_chars(text.data(), end, number);
  const bool is_whole_number = problem == std::errc() && stop == end;
  if (is_whole_number && number >= least && number <= most) return number;
  const bool is_any = most == std::numeric_limits<unsigned long>::max();
  throw BadArgument(flag, fmt::format("Expected a whole number from {} to {}, got '{}'.", least,
                                      is_any ? "2^64 - 1" : std::to_string(most), text));
}

unsigned long to_line_count(const std::string& text) {
  return to_number("--lines", text, 0, std::numeric_limits<unsigned long>::max());
}

std::uint64_t to_byte_count(const std::string& text) {
  return to_number("--max-bytes", text, 1, std::numeric_limits<unsigned long>::max());
}

std::size_t thread_count(const Arguments& arguments) {
  const std::size_t jobs = arguments.jobs
                               ? to_number("--jobs", *arguments.jobs, 1, kMostJobs)
                               : std::min<std::size_t>(available_processors(), kMostJobs);
  rlimit descriptors = {};
  if (getrlimit(RLIMIT_NOFILE, &descriptors) != 0) return 1;
  return textio::tool::thread_count(jobs, arguments.files.size(), descriptors.rlim_cur);
}

textio::standalone::Array value_of(const GivenOption& option) {
  const OptionFlag* const flag = textio::tool::find_option(option.name);
  const ValueKind kind = flag != nullptr ? flag->kind : ValueKind::text;
  return option.is_json ? textio::tool::json_to_array(kind, option.values.front())
                        : textio::tool::to_array(kind, option.values);
}

// One option goes through the library's own option parsing; the tool checks nothing itself.
void apply(const GivenOption& option, textio::parser::options& record) {
  if (!option.values.empty()) {
    textio::standalone::apply_options(record, {{option.name, value_of(option)}});
    return;
  }
  const auto name = textio::standalone::make_array(textio::standalone::from_utf8(option.name));
  const hxArray* alone[] = {name.get()};
  textio::options::set_parser_options(alone, 1, record);
}

bool is_encoding(const GivenOption& option) {
  const OptionFlag* const flag = textio::tool::find_option(option.name);
  return flag != nullptr && flag->name == std::string_view("Encoding");
}

// The options one after the other. The word that asks for the encoding to be found is the tool's
// own; it takes back what was given before.
DetectSettings settings_of(const Arguments& arguments) {
  DetectSettings settings;
  for (const GivenOption& option : arguments.given) {
    if (option.typed_as == "--encoding" && option.values.back() == kAutoEncoding) {
      settings.encoding.reset();
      settings.options.encoding = textio::parser::options().encoding;
      continue;
    }
    try {
      apply(option, settings.options);
    } catch (const textio::MessageIdentifiedError& refused) {
      throw BadArgument(option.typed_as, textio::standalone::message_of(refused));
    } catch (const std::invalid_argument& refused) {
      throw BadArgument(option.typed_as, refused.what());
    }
    if (is_encoding(option)) {
      settings.encoding = textio::standalone::to_utf8(settings.options.encoding);
    }
  }
  settings.num_lines = to_line_count(arguments.lines);
  settings.trace = arguments.explain;
  if (arguments.max_bytes) settings.max_bytes = to_byte_count(*arguments.max_bytes);
  return settings;
}

// ---------------------------------------------------------------------------------------------
// The work

// Says on standard error what went wrong; what cannot be said there is lost.
void complain(std::string_view message) {
  std::fputs(fmt::format("vltext: {}\n", textio::tool::printable(message)).c_str(), stderr);
}

// The status with which the tool ends.
int print(std::string_view text, int status) {
  if (std::fwrite(text.data(), 1, text.size(), stdout) == text.size() && std::fflush(stdout) == 0) {
    return status;
  }
  std::perror("vltext: standard output");
  return kFailed;
}

// What is printed about a file. Called in several threads; only the JSON is written by one of them
// at a time.
Answer answer_for(const std::string& file, const Arguments& arguments, std::mutex& json_mutex) {
  try {
    const Layout layout = detect_layout(file, arguments.settings);
    if (!arguments.json) return {textio::tool::report(file, layout, arguments.given), std::nullopt};
    nlohmann::ordered_json members = {{"file", file}};
    members.update(textio::tool::json_of(layout));
    const std::lock_guard<std::mutex> lock(json_mutex);
    return {textio::tool::json_member(members), std::nullopt};
  } catch (const std::bad_alloc&) {
    return {{}, fmt::format("cannot read '{}': {}", file, std::strerror(ENOMEM)), true};
  } catch (const std::exception& error) {
    return {{}, error.what()};
  }
}

// Two paths may lead to the same pipe, or its like, and the first to read it uses it up. "-" is
// whatever standard input is.
bool may_be_used_up(const std::string& file) {
  struct stat about = {};
  return file == "-" || (stat(file.c_str(), &about) == 0 && !S_ISREG(about.st_mode));
}

textio::tool::WorkPlan plan_of(const Arguments& arguments) {
  textio::tool::WorkPlan plan = {arguments.files.size(), arguments.num_threads, {}};
  if (plan.num_threads == 1) return plan;
  for (std::size_t i = 0; i < plan.num_tasks; ++i) {
    if (may_be_used_up(arguments.files[i])) plan.one_by_one.push_back(i);
  }
  return plan;
}

void write_progress(std::string_view line) { std::fwrite(line.data(), 1, line.size(), stderr); }

// Looks at every file; one that fails does not stop the others. Standard output is written only at
// the end, so that nothing stands there when no file could be read.
int run(const Arguments& arguments) {
  const std::string_view separator = arguments.json ? textio::tool::kJsonSeparator : "";
  const bool is_terminal = !arguments.no_progress && isatty(STDERR_FILENO) != 0;
  ProgressLine progress(arguments.files.size(),
                        {is_terminal, std::chrono::steady_clock::now, write_progress});
  std::mutex json_mutex;
  std::string text;
  int status = 0;
  const auto deliver = [&](const Answer& answer) {
    if (answer.problem) {
      progress.clear();
      complain(*answer.problem);
      status = kFailed;
    } else {
      if (!text.empty()) text += separator;
      text += answer.text;
    }
  };
  textio::tool::work_in_order(
      plan_of(arguments),
      {[&](std::size_t i) { return answer_for(arguments.files[i], arguments, json_mutex); },
       deliver, [&](std::size_t done) { progress.show(done); }});
  progress.clear();
  if (arguments.json && !text.empty()) {
    text = textio::tool::json_text(arguments.settings, arguments.given, text);
  }
  return print(text, status);
}

}  // namespace

int main(int argc, char** argv) {
  CLI::App app("", "vltext");
  Arguments arguments;
  try {
    const Flags flags = declare(app, arguments, argc, argv);
    app.parse(reversed_arguments(app, argc, argv));
    restore_names(arguments.files);
    arguments.given = given_options(app, flags);
    arguments.settings = settings_of(arguments);
    arguments.num_threads = thread_count(arguments);
    textio::tool::share_heap_if_memory_is_limited();
    return run(arguments);
  } catch (const CLI::CallForHelp&) {
    return print(textio::tool::help_text(), 0);
  } catch (const CLI::CallForVersion& version) {
    return print(version.what() + std::string("\n"), 0);
  } catch (const CLI::ParseError& error) {
    complain(error.what());
    std::fputs("Try 'vltext --help' for more information.\n", stderr);
  } catch (const std::exception& error) {
    complain(error.what());
  }
  return kFailed;
}
