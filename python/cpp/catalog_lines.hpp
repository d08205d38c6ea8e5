// Lines of a catalogue for Python, made as `vltext catalog` makes them.
//
// The caller has the lock of the interpreter; the files are looked at without it.
#pragma once

#include <cstddef>
#include <string>
#include <utility>
#include <vector>

#include <vltextstream/layout/detect_layout.hpp>

namespace textio::python {

// The files that paths mean: those in folders, and on request those in the folders below.
std::vector<std::string> files_of(const std::vector<std::string>& paths, bool is_recursive);

// A line for each path, in their order, by up to `num_jobs` threads; 0: one for each processor.
std::vector<std::string> catalog_lines(const std::vector<std::string>& paths,
                                       const standalone::DetectSettings& settings,
                                       std::size_t num_jobs);

// The line of the file `path` under another name, and how many characters its answer is based on.
std::pair<std::string, std::size_t> catalog_line_named(const std::string& path,
                                                       const std::string& name,
                                                       const standalone::DetectSettings& settings);

}  // namespace textio::python
