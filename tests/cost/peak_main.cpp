// The most memory that a whole detection holds at a time.
//   peak_main SHAPE UNITS LINES MOST_BYTES     LINES 0: all lines; fails beyond MOST_BYTES
// The text is read from a file. What counts are the blocks that the C library hands out while the
// detection runs, at the size it rounds them to; `new`, file buffers and other libraries go there
// as well. The options are there before.
#include <algorithm>
#include <atomic>
#include <cerrno>
#include <cstddef>
#include <cstdlib>
#include <iostream>
#include <limits>
#include <new>
#include <string>

#include <malloc.h>
#include <sys/resource.h>

#include <vltextstream/vltextstream.hpp>

#include "bench/shapes.hpp"
#include "support/temp_folder.hpp"

// --- the functions that all memory comes from --------------------------------------------------

extern "C" {
void* __libc_malloc(std::size_t size);
void* __libc_calloc(std::size_t count, std::size_t size);
void* __libc_realloc(void* block, std::size_t size);
void* __libc_memalign(std::size_t alignment, std::size_t size);
void __libc_free(void* block);
}

namespace {

std::atomic<std::size_t> live = 0;
std::atomic<std::size_t> peak = 0;

void* count(void* block) {
  const std::size_t now = live += malloc_usable_size(block);
  if (now > peak) peak = now;
  return block;
}

void forget(void* block) { live -= malloc_usable_size(block); }

}  // namespace

extern "C" {

void* malloc(std::size_t size) { return count(__libc_malloc(size)); }
void* calloc(std::size_t number, std::size_t size) { return count(__libc_calloc(number, size)); }
void* memalign(std::size_t alignment, std::size_t size) {
  return count(__libc_memalign(alignment, size));
}
void* aligned_alloc(std::size_t alignment, std::size_t size) { return memalign(alignment, size); }
int posix_memalign(void** block, std::size_t alignment, std::size_t size) {
  *block = memalign(alignment, size);
  return *block == nullptr ? ENOMEM : 0;
}
void free(void* block) {
  forget(block);
  __libc_free(block);
}
// Both blocks are there while the contents move, unless the block grows in its place.
void* realloc(void* block, std::size_t size) {
  const std::size_t before = malloc_usable_size(block);
  void* const moved = __libc_realloc(block, size);
  if (moved == nullptr && size > 0) return nullptr;
  count(moved);
  live -= before;
  return moved;
}
}

// --- the measurement ---------------------------------------------------------------------------

namespace {

constexpr std::size_t kForTheProgram = 500'000'000;  // libraries, the text, the options

// One byte for each unit where that is possible.
std::string bytes_of(const std::u16string& text) {
  const bool is_ascii =
      std::all_of(text.begin(), text.end(), [](char16_t unit) { return unit < 0x80; });
  return is_ascii ? textio::bench::ascii_bytes(text) : textio::bench::utf16_bytes(text);
}

// Whoever wants far more than it may have is refused it, and does not take the machine's memory.
void limit_memory(std::size_t bytes) {
  const rlimit limit = {bytes, bytes};
  if (::setrlimit(RLIMIT_AS, &limit) != 0) std::abort();
}

}  // namespace

int main(int argc, char** argv) {
  using textio::bench::Shape;
  const Shape* const shape = argc == 5 ? textio::bench::find_shape(argv[1]) : nullptr;
  if (shape == nullptr) {
    std::cerr << "usage: peak_main SHAPE UNITS LINES MOST_BYTES\n";
    return 2;
  }
  const std::size_t units = std::strtoul(argv[2], nullptr, 10);
  const unsigned long lines = std::strtoul(argv[3], nullptr, 10);
  const std::size_t most_bytes = std::strtoul(argv[4], nullptr, 10);

  const textio::testing_support::TempFolder folder;
  const std::string path = folder.file("text", bytes_of(shape->make(units)));
  textio::standalone::DetectSettings settings;
  settings.num_lines = lines > 0 ? lines : std::numeric_limits<unsigned long>::max();
  if (shape->set != nullptr) shape->set(settings, units);

  const std::size_t before = live;
  peak = before;
  limit_memory(3 * most_bytes + kForTheProgram);
  bool refused = false;
  try {
    textio::standalone::detect_layout(path, settings);
  } catch (const std::bad_alloc&) {
    refused = true;
  }
  const std::size_t bytes = peak - before;
  std::cout << shape->name << ' ' << (lines > 0 ? std::to_string(lines) : "all")
            << " lines: " << bytes / 1000 << (refused ? " KB, then refused\n" : " KB\n");
  if (refused || bytes > most_bytes) {
    std::cerr << shape->name << ": more than " << most_bytes / 1000 << " KB\n";
    return 1;
  }
  return 0;
}
