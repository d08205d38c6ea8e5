#include "tool/catalog/catalog_command.hpp"

#include <cerrno>
#include <chrono>
#include <cstring>
#include <fstream>
#include <iostream>
#include <istream>
#include <iterator>
#include <new>
#include <stdexcept>

#include <fmt/format.h>
#include <CLI/CLI.hpp>

#include <sys/stat.h>
#include <unistd.h>

#include "tool/catalog/file_list.hpp"
#include "tool/catalog/group_report.hpp"
#include "tool/catalog/grouping.hpp"
#include "tool/command_parts.hpp"
#include "tool/help.hpp"
#include "tool/progress_line.hpp"
#include "tool/usage_errors.hpp"

namespace textio::tool {
namespace {

constexpr const char* kCatalogDescription =
    "Print a line of JSON for each text FILE: its size and time, how its table is laid out, its "
    "columns with their kinds and units, and fingerprints that files have in common which are laid "
    "out alike or have the same columns. FILE may be a folder, which means the files in it; a pipe "
    "or a device is not opened.";
constexpr const char* kCatalogExitStatus =
    "A file that cannot be read is a line with the reason. Exits with 0, or with 2 when an "
    "argument is wrong "
    "or the lines cannot be written.";
constexpr const char* kGroupsDescription =
    "Print which of many files are laid out alike and have the same columns, and name the odd ones "
    "with what is "
    "different in each. FILE may be a text file, a folder, which means the files in it, or what "
    "'vltext catalog' has printed; - is such a catalogue in standard input.";
constexpr const char* kGroupsExitStatus =
    "Files that cannot be read are named in the answer. Exits with 0, or with 2 when an argument "
    "is "
    "wrong, a catalogue cannot be read, or the answer cannot be written.";

struct TypedCatalog {
  TypedLook look;
  std::optional<std::string> jobs;
  std::optional<std::string> max_bytes;
};

void declare_catalog(CLI::App& app, CatalogArguments& arguments, TypedCatalog& typed) {
  app.add_flag("--recursive", arguments.is_recursive,
               "Of a folder, also look at the files in the folders below it");
  app.add_option("--jobs", typed.jobs,
                 "Look at up to N files at the same time, 1 to 256; if not given, as many as there "
                 "are processors. The output does not depend on it")
      ->type_name("N");
  app.add_option("--max-bytes", typed.max_bytes,
                 "Read at most N bytes of each file, before and after decompression, 67108864 if "
                 "not given; a sample that takes more is an error")
      ->type_name("N");
  app.add_flag("--no-progress", arguments.no_progress,
               "Do not count the files on standard error; they are counted only if it is a "
               "terminal and standard output is not");
}

void declare_groups(CLI::App& app, GroupsArguments& arguments) {
  app.add_flag("--json", arguments.json, "Print one JSON document instead of text");
  app.add_flag("--verbose", arguments.is_verbose,
               "Name all groups, files and columns, not the first of many");
}

CatalogArguments take_catalog(const CommandParts& parts, const TypedCatalog& typed,
                              CatalogArguments arguments) {
  arguments.paths = parts.files();
  arguments.settings = settings_of(parts.given());
  typed.look.apply_to(arguments.settings);
  if (typed.max_bytes) {
    arguments.settings.max_bytes = to_number("--max-bytes", *typed.max_bytes, 1, kAnyNumber);
  }
  if (typed.jobs) arguments.num_jobs = to_number("--jobs", *typed.jobs, 1, kMostJobs);
  standalone::check_settings(arguments.settings);
  return arguments;
}

bool is_terminal(std::FILE* stream) { return isatty(fileno(stream)) != 0; }

// ---------------------------------------------------------------------------------------------
// Files

Answer answer_with_row(const std::string& file, const standalone::DetectSettings& settings) {
  return {row_line(look_at(file, settings)), std::nullopt};
}

std::vector<std::string> files_of(const CatalogArguments& arguments,
                                  const std::vector<std::string>& paths, const Streams& streams) {
  std::vector<std::string> files;
  for (const std::string& path : paths) {
    std::vector<std::string> found = files_below({path}, {arguments.is_recursive});
    if (found.empty())
      complain(fmt::format("cannot open '{}': no file is in this folder", path), streams.err);
    files.insert(files.end(), std::make_move_iterator(found.begin()),
                 std::make_move_iterator(found.end()));
  }
  return files;
}

// ---------------------------------------------------------------------------------------------
// Catalogues

// Of a pipe, nothing is read to see what it is.
bool is_catalog(const std::string& path) {
  struct stat about = {};
  if (stat(path.c_str(), &about) != 0 || !S_ISREG(about.st_mode)) return false;
  std::ifstream file(path, std::ios::binary);
  std::string start(kRowOpening.size(), '\0');
  file.read(start.data(), static_cast<std::streamsize>(start.size()));
  return file.good() && start == kRowOpening;
}

void add_rows(std::istream& lines, const std::string& name, Grouper& grouper) {
  std::string line;
  for (std::size_t number = 1; std::getline(lines, line); ++number) {
    try {
      grouper.add(parse_row(line));
    } catch (const std::invalid_argument& error) {
      throw std::runtime_error(fmt::format("{}: line {} is {}", name, number, error.what()));
    }
  }
  if (lines.bad()) throw std::runtime_error(fmt::format("cannot read '{}'", name));
}

void add_catalog(const std::string& path, Grouper& grouper) {
  if (path == "-") return add_rows(std::cin, "standard input", grouper);
  std::ifstream file(path, std::ios::binary);
  if (!file)
    throw std::runtime_error(fmt::format("cannot open '{}': {}", path, std::strerror(errno)));
  add_rows(file, path, grouper);
}

// Files that follow one another are looked at together.
void add_all(const CatalogArguments& arguments, const Streams& streams, Grouper& grouper) {
  std::vector<std::string> paths;
  const auto add_files = [&] {
    const std::vector<std::string> files = files_of(arguments, paths, streams);
    const bool shows_progress = !arguments.no_progress && is_terminal(streams.err);
    for_each_row({files, arguments.settings, arguments.num_jobs, shows_progress}, streams,
                 [&](const std::string& line) {
                   grouper.add(parse_row(line));
                   return true;
                 });
    paths.clear();
  };
  for (const std::string& path : arguments.paths) {
    if (path != "-" && !is_catalog(path)) {
      paths.push_back(path);
      continue;
    }
    add_files();
    add_catalog(path, grouper);
  }
  add_files();
}

}  // namespace

CommandEntry catalog_command() {
  CLI::App app(kCatalogDescription, "vltext catalog");
  app.footer(kCatalogExitStatus);
  CatalogArguments arguments;
  TypedCatalog typed;
  CommandParts parts(app, 1, kImportGroup);
  declare_catalog(app, arguments, typed);
  parts.declare_look(typed.look);
  return entry_of(app, "catalog");
}

CommandEntry groups_command() {
  CLI::App app(kGroupsDescription, "vltext groups");
  app.footer(kGroupsExitStatus);
  GroupsArguments arguments;
  TypedCatalog typed;
  CommandParts parts(app, 1, kImportGroup);
  declare_groups(app, arguments);
  declare_catalog(app, arguments.catalog, typed);
  parts.declare_look(typed.look);
  return entry_of(app, "groups");
}

CatalogArguments parse_catalog_line(int argc, const char* const* argv) {
  CLI::App app(kCatalogDescription, "vltext catalog");
  app.footer(kCatalogExitStatus);
  CatalogArguments arguments;
  TypedCatalog typed;
  CommandParts parts(app, argc, kImportGroup);
  declare_catalog(app, arguments, typed);
  parts.declare_look(typed.look);
  parts.parse(argc, argv, 2);
  arguments = take_catalog(parts, typed, std::move(arguments));
  for (const std::string& path : arguments.paths) {
    if (path == "-") throw UsageError("catalog needs the paths of files or folders, not -");
  }
  return arguments;
}

GroupsArguments parse_groups_line(int argc, const char* const* argv) {
  CLI::App app(kGroupsDescription, "vltext groups");
  app.footer(kGroupsExitStatus);
  GroupsArguments arguments;
  TypedCatalog typed;
  CommandParts parts(app, argc, kImportGroup);
  declare_groups(app, arguments);
  declare_catalog(app, arguments.catalog, typed);
  parts.declare_look(typed.look);
  parts.parse(argc, argv, 2);
  arguments.catalog = take_catalog(parts, typed, std::move(arguments.catalog));
  return arguments;
}

void for_each_row(const RowWork& work, const Streams& streams,
                  const std::function<bool(const std::string& line)>& take) {
  const auto write_progress = [&](std::string_view line) {
    std::fwrite(line.data(), 1, line.size(), streams.err);
    std::fflush(streams.err);
  };
  ProgressLine progress(work.files.size(),
                        {work.shows_progress, std::chrono::steady_clock::now, write_progress});
  const auto deliver = [&](std::size_t i, const Answer& answer) {
    if (!answer.lacked_memory) return take(answer.text);
    return take(row_line(failed_row(work.files[i], std::strerror(ENOMEM))));
  };
  work_in_order({work.files.size(), threads_for(work.num_jobs, work.files.size()), {}},
                {[&](std::size_t i) { return answer_with_row(work.files[i], work.settings); },
                 deliver, [&](std::size_t done) { progress.show(done); }});
}

int print_catalog(const CatalogArguments& arguments, const Streams& streams) {
  const std::vector<std::string> files = files_of(arguments, arguments.paths, streams);
  const bool shows_progress =
      !arguments.no_progress && is_terminal(streams.err) && !is_terminal(streams.out);
  bool is_written = true;
  for_each_row({files, arguments.settings, arguments.num_jobs, shows_progress}, streams,
               [&](const std::string& line) { return is_written = write_out(line, "", streams); });
  return is_written ? kSucceeded : kFailed;
}

int print_groups(const GroupsArguments& arguments, const Streams& streams) {
  Grouper grouper;
  add_all(arguments.catalog, streams, grouper);
  const Grouping found = grouper.finish();
  const std::string text =
      arguments.json ? group_json(found) : group_text(found, {arguments.is_verbose, false});
  return write_out(text, "", streams) ? kSucceeded : kFailed;
}

}  // namespace textio::tool
