// The files that steps_bench reads. step_texts_main.cpp writes them with today's shapes, so that
// all commits are measured with the same bytes.
#pragma once

#include <cstddef>
#include <string>

namespace textio::bench {

// Tables in ASCII, a full sample each; the others are slightly longer, so that there is something
// to cut off.
constexpr const char* kRegularText = "regular.csv";
constexpr const char* kQuotedText = "quoted.csv";
constexpr const char* kAlignedText = "aligned.txt";
constexpr const char* kAllCandidatesText = "all_candidates.csv";
constexpr const char* kAsciiText = "ascii.csv";
constexpr const char* kTwoByteText = "two_byte.csv";

// 10 KB, and kManyTexts files of this size.
constexpr const char* kSmallText = "small.csv";
constexpr std::size_t kManyTexts = 2000;

inline std::string many_text(std::size_t number) { return std::to_string(number) + ".csv"; }

}  // namespace textio::bench
