// open_file is a service with a fixed signature, so the limit reaches it through the thread.
#include <vltextstream/standalone/files/read_limit.hpp>

#include <algorithm>
#include <utility>

namespace textio::standalone {
namespace {

thread_local std::int64_t limit_of_thread = kNoReadLimit;

std::int64_t as_position(std::uint64_t bytes) {
  return static_cast<std::int64_t>(std::min<std::uint64_t>(bytes, kNoReadLimit));
}

}  // namespace

ReadLimitScope::ReadLimitScope(std::uint64_t most_bytes) noexcept
    : previous_(std::exchange(limit_of_thread, as_position(most_bytes))) {}

ReadLimitScope::~ReadLimitScope() { limit_of_thread = previous_; }

std::int64_t read_limit() noexcept { return limit_of_thread; }

}  // namespace textio::standalone
