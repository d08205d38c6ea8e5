#include "tool/command_line.hpp"

#include <fmt/format.h>
#include <CLI/CLI.hpp>

#include "tool/command_parts.hpp"
#include "tool/emit/targets.hpp"
#include "tool/help.hpp"
#include "tool/option_words.hpp"
#include "tool/ordered_work.hpp"
#include "tool/safe_text.hpp"

namespace textio::tool {
namespace {

// What was typed for the options that take a number.
struct TypedNumbers {
  std::optional<std::string> strict;
  std::optional<std::string> jobs;
  std::optional<std::string> max_bytes;
};

// What a flag has as its value if none was typed.
constexpr const char* kFlagAlone = "true";

void declare_own_options(CLI::App& app, Arguments& arguments, TypedNumbers& numbers,
                         std::optional<std::string>& sample, std::string& explain) {
  app.add_flag("--json", arguments.json, "Print one JSON document instead of text");
  app.add_flag("--jsonl", arguments.jsonl,
               "Print a line of JSON for each file, also for one that cannot be read");
  app.add_flag("--recursive", arguments.is_recursive,
               "Of a folder, also look at the files in the folders below it");
  app.add_flag("--verbose", arguments.is_verbose,
               "Print each report, though there are more than 20 files; with --json, also the "
               "settings that nobody changed");
  app.add_flag("--explain", explain,
               "Also tell what was considered, what speaks for the answer and against it, and why "
               "the next best answer lost; --explain=cascade: also the candidates of the cascade, "
               "their scores and what each filter left");
  app.add_option("--emit", arguments.emit,
                 "Print a program that reads the whole of one FILE rightly with NAME: " +
                     target_names() + ". Nothing of it is executed")
      ->type_name("NAME");
  app.add_option("--html", arguments.html,
                 "Write a report on the FILEs to OUT, one page for a browser: the answer and its "
                 "rivals, the first lines, each column, what did not fit, and the programs of "
                 "--emit. The files are read to their ends. - is standard output")
      ->type_name("OUT");
  app.add_option("--strict", numbers.strict,
                 "Exit with 1 unless the answer is at least P percent sure, 50 if not given")
      ->type_name("P");
  app.add_option("--sample", sample,
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

void check_emit(const Arguments& arguments) {
  if (!arguments.emit) return;
  if (find_target(*arguments.emit) == nullptr) {
    throw BadArgument("--emit", fmt::format("Expected one of {}, got '{}'.{}", target_names(),
                                            shortened(*arguments.emit),
                                            meant(*arguments.emit, words_of("--emit"))));
  }
  if (arguments.json || arguments.jsonl || arguments.explain) {
    throw UsageError(
        "--emit prints a program, and no layout: --json, --jsonl and --explain are for those");
  }
  if (arguments.files.size() != 1) throw UsageError("--emit needs a single FILE");
  if (arguments.files.front() == "-") {
    throw UsageError("--emit needs the path of a FILE, which the program opens");
  }
}

void check_html(const Arguments& arguments) {
  if (!arguments.html) return;
  if (arguments.html->empty()) throw UsageError("--html needs a value: OUT");
  if (arguments.json || arguments.jsonl || arguments.emit) {
    throw UsageError("--html writes a page: --json, --jsonl and --emit print something else");
  }
}

// --explain, or --explain=cascade.
void note_explain(const std::string& typed, Arguments& arguments) {
  arguments.explain = !typed.empty();
  if (typed.empty() || typed == kFlagAlone) return;
  place_among_words("--explain", typed);
  arguments.explains_cascade = true;
}

// What is declared.
struct LayoutLine {
  explicit LayoutLine(int argc) : app(kDescription, "vltext"), parts(app, argc, kImportGroup) {
    app.footer(kExitStatus);
    declare_own_options(app, arguments, numbers, sample, explain);
    declare_picture(app, arguments.showing);
    parts.declare_look(look);
  }

  CLI::App app;
  CommandParts parts;
  Arguments arguments;
  TypedNumbers numbers;
  TypedLook look;
  std::optional<std::string> sample;
  std::string explain;
};

}  // namespace

CommandEntry layout_command() { return entry_of(LayoutLine(1).app, ""); }

Arguments parse_command_line(int argc, const char* const* argv) {
  LayoutLine line(argc);
  auto& [app, parts, arguments, numbers, look, sample, explain] = line;
  parts.parse(argc, argv);
  note_explain(explain, arguments);
  arguments.files = parts.files();
  arguments.given = parts.given();
  arguments.settings = settings_of(arguments.given);
  look.apply_to(arguments.settings);
  arguments.settings.trace = arguments.explain;
  if (numbers.max_bytes) {
    arguments.settings.max_bytes = to_number("--max-bytes", *numbers.max_bytes, 1, kAnyNumber);
  }
  if (sample && place_among_words("--sample", *sample) == 1)
    arguments.settings.sample = standalone::SampleFrom::spread;
  if (numbers.strict) arguments.least_percent = to_number("--strict", *numbers.strict, 0, 100);
  if (numbers.jobs) arguments.num_jobs = to_number("--jobs", *numbers.jobs, 1, kMostJobs);
  if (arguments.json && arguments.jsonl)
    throw UsageError("--json and --jsonl contradict one another");
  check_emit(arguments);
  check_html(arguments);
  return arguments;
}

}  // namespace textio::tool
