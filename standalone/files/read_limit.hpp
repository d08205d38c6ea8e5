// The most bytes that may be read of a file which this thread opens.
//
//   {
//     const ReadLimitScope limit(1'000'000);
//     file = open_file(path, "rb");           // the stream keeps the limit
//   }
//   open_file(path, "rb");                    // without a limit
//
// Errors   none.
// Threads  a scope counts on its own thread alone.
#pragma once

#include <cstdint>

namespace textio::standalone {

// Sets the limit of this thread until the end of the scope, which restores the previous one.
class ReadLimitScope {
 public:
  explicit ReadLimitScope(std::uint64_t most_bytes) noexcept;
  ~ReadLimitScope();
  ReadLimitScope(const ReadLimitScope&) = delete;
  ReadLimitScope& operator=(const ReadLimitScope&) = delete;

 private:
  std::int64_t previous_;
};

// A limit that no file reaches.
inline constexpr std::int64_t kNoReadLimit = INT64_MAX;

// The limit of the innermost scope of this thread, kNoReadLimit outside of all scopes.
std::int64_t read_limit() noexcept;

}  // namespace textio::standalone
