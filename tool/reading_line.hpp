// A line on a terminal that shows how far a file is read, rewritten in place.
//
//   ReadingLine line(100'000'000, {is_terminal, steady_clock::now, write_to_standard_error});
//   line.show(account);      // "  12.0 of 100.0 MB, 345,678 rows, 48.0 MB/s"
//   line.clear();            // call it before anything else is written
//
// As ProgressLine: nothing is shown in the first half second, or where the output is no terminal.
#pragma once

#include <cstdint>
#include <string>

#include <vltextstream/reading/account.hpp>

#include "tool/progress_line.hpp"

namespace textio::tool {

class ReadingLine {
 public:
  using Time = ProgressLine::Time;

  // The bytes of the whole file; 0 if not known, as those of a pipe or of compressed data.
  ReadingLine(std::uint64_t total, ProgressLine::Surroundings surroundings);
  ReadingLine(const ReadingLine&) = delete;
  ReadingLine& operator=(const ReadingLine&) = delete;
  ~ReadingLine();

  void show(const reading::Account& account) noexcept;
  void clear() noexcept;

 private:
  std::string line_of(const reading::Account& account, Time now) const;

  std::uint64_t total_;
  ProgressLine::Surroundings surroundings_;
  Time begin_;
  Time due_;
  std::string shown_;  // empty while nothing is shown
};

}  // namespace textio::tool
