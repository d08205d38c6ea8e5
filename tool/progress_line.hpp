// A line on a terminal that says how many files are done, rewritten in place.
//
//   ProgressLine line(2000, {is_terminal, steady_clock::now, write_to_standard_error});
//   line.show(123);     // "  123 of 2,000 files", once half a second has passed
//   line.clear();       // before anything else is written
//
// It shows nothing when the output is no terminal or there is one file, and it is cleared by its
// destructor. A blank overwrites it, so the terminal needs no command but the carriage return.
//
// Errors     none, but for std::bad_alloc from the constructor and from show().
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

  // What is short needs no line, and an eye no more than a few lines in a second.
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

  // Writes the line, if it is time for it and the number is another one.
  void show(std::size_t done);

  // Leaves an empty line with the cursor at its start, as it was before the line was shown.
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
