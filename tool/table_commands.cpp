#include "tool/table_commands.hpp"

#include <algorithm>
#include <array>
#include <cctype>
#include <iterator>

#include <fmt/format.h>
#include <CLI/CLI.hpp>

#include "tool/command_parts.hpp"
#include "tool/help.hpp"
#include "tool/option_words.hpp"
#include "tool/ordered_work.hpp"
#include "tool/safe_text.hpp"

namespace textio::tool {
namespace {

constexpr unsigned long kMostThreads = 64;

constexpr unsigned long kMostRows = 100'000;

// With these, ordinary tables take less than 64 MB.
constexpr std::size_t kUsualThreads = 2;
constexpr std::size_t kConvertWindow = 262'144;

// A few rows need a few windows; each is a few pages of text.
constexpr std::size_t kHeadWindow = 65'536;

constexpr const char* kConvertDescription =
    "Read the whole table in each text FILE and write it as a clean one: UTF-8, numbers with a "
    "decimal point, dates in ISO 8601, or as a SQLite database. FILE may be - for standard input, "
    "or a pipe. It may be compressed with gzip or zstd, whatever its name. What became of every "
    "line is said on standard error.";
constexpr const char* kConvertExitStatus =
    "A file is read a second time if a cell further down gives its column a wider type, or a "
    "longer record adds a column. A pipe is read once: there, cells that do not fit become missing "
    "values, and extra cells are ignored. Both are counted, and --rejects keeps them.\n"
    "Exits with 0; with 1 when something was dropped that no option asked for, or the layout is "
    "less than 50 % sure; with 2 when a file cannot be read, is no table, or the output cannot be "
    "written.";
constexpr const char* kHeadDescription =
    "Print the first rows of the table in each text FILE: the names of its columns, their types, "
    "and the values. No more of FILE is read than this needs. Missing values are blank, empty "
    "texts are \"\".";
constexpr const char* kHeadExitStatus =
    "Exits with 0, or with 2 when a file cannot be read or is no table.";

struct Extension {
  std::string_view text;
  Format format;
};
constexpr Extension kExtensions[] = {
    {".csv", Format::csv},       {".tsv", Format::tsv},        {".tab", Format::tsv},
    {".jsonl", Format::jsonl},   {".ndjson", Format::jsonl},   {".db", Format::sqlite},
    {".sqlite", Format::sqlite}, {".sqlite3", Format::sqlite},
};

std::optional<Format> format_of_path(std::string path) {
  std::transform(path.begin(), path.end(), path.begin(),
                 [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
  for (const Extension& extension : kExtensions) {
    if (path.ends_with(extension.text)) return extension.format;
  }
  return std::nullopt;
}

Format format_named(const std::string& name) {
  constexpr std::array kFormats = {Format::csv, Format::tsv, Format::jsonl, Format::sqlite};
  return kFormats.at(place_among_words("--to", name));
}

Format format_of(const std::optional<std::string>& to, const std::optional<std::string>& out) {
  if (to) return format_named(*to);
  const std::optional<Format> format = out ? format_of_path(*out) : std::nullopt;
  if (!format) {
    throw UsageError("--to is required: csv, tsv, jsonl or sqlite; the extension of -o may say it");
  }
  return *format;
}

struct TypedReading {
  bool as_text = false;
  bool exact_decimals = false;

  void declare(CLI::App& app) {
    app.add_flag("--as-text", as_text, "All columns are text, each cell as the file has it");
    app.add_flag("--exact-decimals", exact_decimals,
                 "Keep decimal numbers digit by digit: 12.50 stays 12.50, in SQLite as text");
  }
  void apply_to(reading::ReadSettings& settings) const {
    settings.all_text = as_text;
    settings.decimals_as_text = exact_decimals;
  }
};

struct TypedConvert {
  std::optional<std::string> to;
  std::optional<std::string> threads;
  bool widen = false;
  bool no_widen = false;
};

void declare_convert(CLI::App& app, ConvertArguments& arguments, TypedConvert& typed) {
  app.add_option("--to", typed.to,
                 "csv, tsv, jsonl (one JSON object for each row) or sqlite; if not given, the "
                 "extension of OUT says it: .csv, .tsv, .tab, .jsonl, .ndjson, .db, .sqlite or "
                 ".sqlite3")
      ->type_name("FORMAT");
  app.add_option("-o,--output", arguments.out,
                 "Write to OUT, which is replaced when all is read, and only then; an existing "
                 "folder gets a file for each FILE. Standard output if not given")
      ->type_name("OUT");
  app.add_option("--rejects", arguments.rejects,
                 "Keep what did not fit in the file REJECTS, as it was, with its line and the "
                 "reason, as csv")
      ->type_name("REJECTS");
  app.add_flag("--strict", arguments.strict, "What exits with 1 is an error: OUT stays as it was");
  app.add_flag("--widen", typed.widen,
               "A cell that does not fit gives its column a wider type: the default, unless "
               "--import-error-rule is given, or the input can be read only once");
  app.add_flag(
      "--no-widen", typed.no_widen,
      "A cell that does not fit becomes a missing value, or what --import-error-rule says");
  app.add_option("--table", arguments.table,
                 "The name of the table in the SQLite database; that of FILE if not given")
      ->type_name("NAME");
  app.add_flag("--force", arguments.force,
               "Replace a SQLite database even if it has other tables, which are lost");
  app.add_option("--threads", typed.threads,
                 "Read with N threads, 1 to 64; if not given, one for each processor, but at most "
                 "2, as each takes memory. The output does not depend on it")
      ->type_name("N");
  app.add_flag("--no-progress", arguments.no_progress,
               "Do not show the bytes, rows and rate on standard error; they are shown only if it "
               "is a terminal and the table is not printed there");
}

void check_convert(const ConvertArguments& arguments, const TypedConvert& typed) {
  if (typed.widen && typed.no_widen) {
    throw UsageError("--widen and --no-widen contradict one another");
  }
  if (arguments.table && arguments.format != Format::sqlite)
    throw UsageError("--table is for --to sqlite only");
}

struct ConvertLine {
  explicit ConvertLine(int argc)
      : app(kConvertDescription, "vltext convert"), parts(app, argc, kRulesGroup) {
    app.footer(kConvertExitStatus);
    declare_convert(app, arguments, typed);
    reading.declare(app);
    parts.declare_look(look);
  }

  CLI::App app;
  CommandParts parts;
  ConvertArguments arguments;
  TypedConvert typed;
  TypedReading reading;
  TypedLook look;
};

struct HeadLine {
  explicit HeadLine(int argc)
      : app(kHeadDescription, "vltext head"), parts(app, argc, kRulesGroup) {
    app.footer(kHeadExitStatus);
    num_rows = std::to_string(arguments.num_rows);
    app.add_option("-n,--rows", num_rows, "Print N rows, 10 if not given, at most 100000")
        ->type_name("N");
    reading.declare(app);
    parts.declare_look(look);
  }

  CLI::App app;
  CommandParts parts;
  HeadArguments arguments;
  std::string num_rows;
  TypedReading reading;
  TypedLook look;
};

}  // namespace

CommandEntry convert_command() { return entry_of(ConvertLine(1).app, "convert"); }
CommandEntry head_command() { return entry_of(HeadLine(1).app, "head"); }

std::string_view to_string(Format format) {
  switch (format) {
    case Format::csv:
      return "csv";
    case Format::tsv:
      return "tsv";
    case Format::jsonl:
      return "jsonl";
    case Format::sqlite:
      return "sqlite";
  }
  return {};
}

bool ConvertArguments::is_given(std::string_view option) const {
  return std::any_of(given.begin(), given.end(), [option](const GivenOption& one) {
    const OptionFlag* const flag = find_option(one.name);
    return flag != nullptr && flag->name == option;
  });
}

ConvertArguments parse_convert_line(int argc, const char* const* argv) {
  ConvertLine line(argc);
  auto& [app, parts, arguments, typed, reading, look] = line;
  parts.parse(argc, argv, 2);
  arguments.files = parts.files();
  arguments.given = parts.given();
  arguments.settings.detect = settings_of(arguments.given);
  look.apply_to(arguments.settings.detect);
  reading.apply_to(arguments.settings);
  if (typed.widen || typed.no_widen) arguments.widens = typed.widen;
  arguments.settings.widen = arguments.widens.value_or(!arguments.is_given("ImportErrorRule"));
  arguments.settings.num_threads =
      static_cast<unsigned>(typed.threads ? to_number("--threads", *typed.threads, 1, kMostThreads)
                                          : std::min(available_processors(), kUsualThreads));
  arguments.settings.window = kConvertWindow;
  arguments.format = format_of(typed.to, arguments.out);
  check_convert(arguments, typed);
  return arguments;
}

HeadArguments parse_head_line(int argc, const char* const* argv) {
  HeadLine line(argc);
  auto& [app, parts, arguments, num_rows, reading, look] = line;
  parts.parse(argc, argv, 2);
  arguments.files = parts.files();
  arguments.settings.detect = settings_of(parts.given());
  look.apply_to(arguments.settings.detect);
  arguments.settings.detect.look_at_end = false;
  reading.apply_to(arguments.settings);
  arguments.settings.window = kHeadWindow;
  arguments.num_rows = to_number("--rows", num_rows, 0, kMostRows);
  return arguments;
}

}  // namespace textio::tool
