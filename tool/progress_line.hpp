// A line on a terminal that shows how many files are done, rewritten in place.
//
//   ProgressLine line(2000, {is_terminal, steady_clock::now, write_to_standard_error});
//   line.show(123);     // "  123 of 2,000 files", once half a second has passed
//   line.clear();       // call it before anything else is written
//
// It shows nothing when the output is no terminal or there is only one file. The destructor clears
// it. Blanks overwrite it, so the terminal needs no command but the carriage return.
//
// Errors     std::bad_alloc from the constructor; where memory is short, nothing is shown.
#pragma once

#include <chrono>
#include <cstddef>
#include <functional>
#include <string>
#include <string_view>

namespace textio::tool {

class ProgressLine {
 public:
  using Time = std::chrono::steady_clock::time_point;

  // Short work needs no line, and ten lines a second are as fast as anyone can read.
  static constexpr std::chrono::milliseconds kDelay{500};
  static constexpr std::chrono::milliseconds kPause{100};

  struct Surroundings {
    bool is_terminal;
    std::function<Time()> now;
    std::function<void(std::string_view)> write;  // must not throw
  };

  // The delay begins now.
  ProgressLine(std::size_t total, Surroundings surroundings);
  ProgressLine(const ProgressLine&) = delete;
  ProgressLine& operator=(const ProgressLine&) = delete;
  ~ProgressLine();

  // Writes the line, if enough time has passed and the number has changed.
  void show(std::size_t done) noexcept;

  // Leaves an empty line with the cursor at its start, as before the line was shown.
  void clear() noexcept;

 private:
  std::size_t total_;
  Surroundings surroundings_;
  bool is_wanted_;
  bool is_shown_ = false;
  std::size_t shown_ = 0;  // the number in the line, while it is shown
  Time due_;
  std::string blank_;  // as wide as the line can become
};

}  // namespace textio::tool
