#include "python/cpp/catalog_lines.hpp"

#include <cstdio>
#include <exception>
#include <new>
#include <optional>

#include <nanobind/nanobind.h>

#include "tool/catalog/catalog_command.hpp"
#include "tool/catalog/catalog_row.hpp"
#include "tool/catalog/file_list.hpp"

namespace textio::python {

std::vector<std::string> files_of(const std::vector<std::string>& paths, bool is_recursive) {
  const nanobind::gil_scoped_release without_lock;
  return tool::files_below(paths, {is_recursive, false});
}

std::vector<std::string> catalog_lines(const std::vector<std::string>& paths,
                                       const standalone::DetectSettings& settings,
                                       std::size_t num_jobs) {
  const nanobind::gil_scoped_release without_lock;
  std::vector<std::string> lines;
  lines.reserve(paths.size());
  const auto jobs = num_jobs == 0 ? std::nullopt : std::optional(num_jobs);
  tool::for_each_row({paths, settings, jobs, false}, {stdout, stderr},
                     [&](const std::string& line) {
                       lines.push_back(line);
                       return true;
                     });
  return lines;
}

std::pair<std::string, std::size_t> catalog_line_named(const std::string& path,
                                                       const std::string& name,
                                                       const standalone::DetectSettings& settings) {
  const nanobind::gil_scoped_release without_lock;
  try {
    const standalone::Layout layout = standalone::detect_layout(path, settings);
    return {tool::row_line(tool::row_of(name, layout)), layout.characters_sampled};
  } catch (const std::bad_alloc&) {
    throw;
  } catch (const std::exception& error) {
    return {tool::row_line(tool::failed_row(name, error.what())), 0};
  }
}

}  // namespace textio::python
