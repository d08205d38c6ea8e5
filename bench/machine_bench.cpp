// What the machine itself can do, in the same units, as a reference for all other figures.
#include <sys/mman.h>

#include <cstdint>
#include <cstring>
#include <memory>
#include <new>
#include <numeric>
#include <string>
#include <vector>

#include <vltextstream/vltextstream.hpp>

#include "bench/measure.hpp"

namespace textio::bench {
namespace {

constexpr std::size_t kBytes = kSampleUnits * sizeof(char16_t);  // a full sample in memory
constexpr std::size_t kPage = 4096;

// As large as a stream's buffer that contains a full sample: it grows in blocks.
constexpr std::size_t kBufferBytes = kBytes + 2 * TextStream::kBufferUnits * sizeof(char16_t);

Step memory_copy() {
  const auto from = std::make_shared<std::vector<char>>(kBytes, 'x');
  const auto to = std::make_shared<std::vector<char>>(kBytes, 'y');
  return {[from, to] {
            std::memcpy(to->data(), from->data(), kBytes);
            keep(to->front());
          },
          kBytes};
}

Step memory_read() {
  const auto words =
      std::make_shared<std::vector<std::uint64_t>>(kBytes / sizeof(std::uint64_t), 7);
  return {[words] { keep(std::accumulate(words->begin(), words->end(), std::uint64_t{0})); },
          kBytes};
}

// Allocates new memory from the system, writes to each page of it and frees it.
void touch_fresh_memory(bool huge_pages) {
  constexpr int kFresh = MAP_PRIVATE | MAP_ANONYMOUS;
  void* const memory = ::mmap(nullptr, kBufferBytes, PROT_READ | PROT_WRITE, kFresh, -1, 0);
  if (memory == MAP_FAILED) throw std::bad_alloc();
  ::madvise(memory, kBufferBytes, huge_pages ? MADV_HUGEPAGE : MADV_NOHUGEPAGE);
  auto* const bytes = static_cast<volatile char*>(memory);
  for (std::size_t i = 0; i < kBufferBytes; i += kPage) bytes[i] = 1;
  ::munmap(memory, kBufferBytes);
}

void add_all() {
  add_step("machine/memory_copy", memory_copy);
  add_step("machine/memory_read", memory_read);
  add_step("machine/first_touch_small_pages", [] {
    return Step{[] { touch_fresh_memory(false); }, kBufferBytes};
  });
  add_step("machine/first_touch_huge_pages", [] {
    return Step{[] { touch_fresh_memory(true); }, kBufferBytes};
  });
}

}  // namespace
}  // namespace textio::bench

int main(int argc, char** argv) { return textio::bench::run(argc, argv, textio::bench::add_all); }
