#include "tool/reading_line.hpp"

#include <algorithm>
#include <new>
#include <utility>

#include <fmt/format.h>

#include "tool/grouped.hpp"

namespace textio::tool {
namespace {

constexpr double kMegabyte = 1e6;

std::string blanks_over(const std::string& shown) {
  return '\r' + std::string(shown.size(), ' ') + '\r';
}

}  // namespace

ReadingLine::ReadingLine(std::uint64_t total, ProgressLine::Surroundings surroundings)
    : total_(total), surroundings_(std::move(surroundings)) {
  begin_ = surroundings_.now();
  due_ = begin_ + ProgressLine::kDelay;
}

ReadingLine::~ReadingLine() { clear(); }

// Blanks cover what is left of a longer line.
void ReadingLine::show(const reading::Account& account) noexcept try {
  if (!surroundings_.is_terminal) return;
  const Time now = surroundings_.now();
  if (now < due_) return;
  std::string line = line_of(account, now);
  const std::size_t rest = shown_.size() - std::min(shown_.size(), line.size());
  surroundings_.write('\r' + line + std::string(rest, ' '));
  shown_ = std::move(line);
  due_ = now + ProgressLine::kPause;
} catch (const std::bad_alloc&) {
  // The table matters more than the line.
}

void ReadingLine::clear() noexcept try {
  if (!shown_.empty()) surroundings_.write(blanks_over(shown_));
  shown_.clear();
} catch (const std::bad_alloc&) {
  shown_.clear();
}

std::string ReadingLine::line_of(const reading::Account& account, Time now) const {
  const double megabytes = static_cast<double>(account.num_bytes) / kMegabyte;
  const double seconds = std::chrono::duration<double>(now - begin_).count();
  const bool is_total_known = total_ >= account.num_bytes;
  const std::string of_total =
      is_total_known ? fmt::format(" of {:.1f}", static_cast<double>(total_) / kMegabyte) : "";
  return fmt::format("  {:.1f}{} MB, {} rows, {:.1f} MB/s", megabytes, of_total,
                     grouped(account.num_rows), megabytes / seconds);
}

}  // namespace textio::tool
