// `vltext catalog` and `vltext groups`: what is in many files, and which of them differ.
//
//   return print_catalog(parse_catalog_line(argc, argv), {stdout, stderr});
//
// A file that fails is a row, and changes no exit status.
//
// Errors  the parsers: those of parse_command_line. What runs the commands throws nothing but std::bad_alloc, and
//         std::runtime_error for a catalogue that cannot be read; lost output is reported, and kFailed.
// Memory  the paths; the rows are written as they come.
#pragma once

#include <cstddef>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include <vltextstream/layout/detect_layout.hpp>

#include "tool/catalog/catalog_row.hpp"
#include "tool/conventions/command_table.hpp"
#include "tool/messages.hpp"
#include "tool/ordered_work.hpp"

namespace textio::tool {

// What both commands have.
struct CatalogArguments {
  std::vector<std::string> paths;  // as they were typed; at least one
  standalone::DetectSettings settings;
  std::optional<std::size_t> num_jobs;
  bool is_recursive = false;
  bool no_progress = false;
};

struct GroupsArguments {
  CatalogArguments catalog;
  bool json = false;
  bool is_verbose = false;
};

// For the help, the manual page and the completions.
CommandEntry catalog_command();
CommandEntry groups_command();

CatalogArguments parse_catalog_line(int argc, const char* const* argv);
GroupsArguments parse_groups_line(int argc, const char* const* argv);

// A row for each file, in their order. Returns the exit status.
int print_catalog(const CatalogArguments& arguments, const Streams& streams);

// The groups of the rows in catalogues, and of files that have no row yet. Returns the exit status.
int print_groups(const GroupsArguments& arguments, const Streams& streams);

// Calls `take` with the line of each file in their order, until it says that this is enough.
struct RowWork {
  const std::vector<std::string>& files;
  const standalone::DetectSettings& settings;
  std::optional<std::size_t> num_jobs;
  bool shows_progress = false;
};
void for_each_row(const RowWork& work, const Streams& streams,
                  const std::function<bool(const std::string& line)>& take);

}  // namespace textio::tool
