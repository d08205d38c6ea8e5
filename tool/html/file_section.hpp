// What the page of --html says about one file.
//
//   const PageFile gauge = section_of("gauge.csv", 0, arguments);
//   gauge.section;   // HTML: the answer, the first lines, the columns, what did not fit, the programs
//
// The layout and the values of the columns are those of the sample. The account and the programs are of the whole file,
// which is read to its end for that.
//
// Errors  those of look_at_top; std::runtime_error if the file is no regular one.
// Cost    that of facts_of. The result is bounded, whatever the file has: see the constants.
#pragma once

#include <cstddef>
#include <string>

#include "tool/command_line.hpp"
#include "tool/html/page.hpp"

namespace textio::tool {

// What is shown of a file. The more files a page has, the less of each.
struct SectionLimits {
  std::size_t num_columns = 0;
  std::size_t num_programs = 0;   // the most usual first
  std::size_t program_bytes = 0;  // a longer one is not shown
  std::size_t num_places = 0;     // of what did not fit
};
SectionLimits limits_for(std::size_t num_files);

// `index` is the place of the file among those of the page.
PageFile section_of(const std::string& file, std::size_t index, const Arguments& arguments);

}  // namespace textio::tool
