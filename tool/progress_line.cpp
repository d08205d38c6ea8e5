// The number of files never falls, so the line never gets shorter and covers the one before.
#include "tool/progress_line.hpp"

#include <new>
#include <utility>

#include <fmt/format.h>

#include "tool/grouped.hpp"

namespace textio::tool {
namespace {

std::string line_of(std::size_t done, std::size_t total) {
  return fmt::format("  {} of {} files", grouped(done), grouped(total));
}

}  // namespace

ProgressLine::ProgressLine(std::size_t total, Surroundings surroundings)
    : total_(total),
      surroundings_(std::move(surroundings)),
      is_wanted_(surroundings_.is_terminal && total > 1) {
  if (!is_wanted_) return;
  due_ = surroundings_.now() + kDelay;
  blank_ = '\r' + std::string(line_of(total, total).size(), ' ') + '\r';
}

ProgressLine::~ProgressLine() { clear(); }

void ProgressLine::show(std::size_t done) noexcept try {
  if (!is_wanted_) return;
  const Time now = surroundings_.now();
  const bool is_shown_already = is_shown_ && done == shown_;
  if (now < due_ || is_shown_already) return;
  surroundings_.write('\r' + line_of(done, total_));
  is_shown_ = true;
  shown_ = done;
  due_ = now + kPause;
} catch (const std::bad_alloc&) {
  // The files matter more than the line.
}

void ProgressLine::clear() noexcept {
  if (is_shown_) surroundings_.write(blank_);
  is_shown_ = false;
}

}  // namespace textio::tool
