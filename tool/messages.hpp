// Where the tool writes to, what it exits with, and how it complains.
//
// Errors  none: what cannot be written to standard error is lost.
#pragma once

#include <cstdio>
#include <string_view>

namespace textio::tool {

struct Streams {
  std::FILE* out;
  std::FILE* err;
};

inline constexpr int kSucceeded = 0;
inline constexpr int kDoubtful = 1;
inline constexpr int kFailed = 2;

// Writes "vltext: " and the message, made printable.
void complain(std::string_view message, std::FILE* err) noexcept;

// No memory is needed to say that there is none.
void complain_of_memory(std::string_view file, std::FILE* err) noexcept;

// Writes two texts to standard output. Returns whether all of them was written, and complains if not.
bool write_out(std::string_view first, std::string_view second, const Streams& streams) noexcept;

}  // namespace textio::tool
