// The program's own malloc replaces the C library's, for all libraries as well. A block may have
// been allocated before the count that sees it freed, so the balance can be negative.
#include "bench/memory_count.hpp"

#include <atomic>
#include <cerrno>
#include <cstdlib>
#include <new>

#include <malloc.h>

extern "C" {
void* __libc_malloc(std::size_t size);
void* __libc_calloc(std::size_t count, std::size_t size);
void* __libc_realloc(void* block, std::size_t size);
void* __libc_memalign(std::size_t alignment, std::size_t size);
void __libc_free(void* block);
}

namespace {

std::atomic<bool> is_counting = false;
std::atomic<std::size_t> allocations = 0;
std::atomic<std::ptrdiff_t> live = 0;
std::atomic<std::ptrdiff_t> peak = 0;

std::ptrdiff_t size_of(void* block) {
  return static_cast<std::ptrdiff_t>(malloc_usable_size(block));
}

void add(void* block) {
  ++allocations;
  const std::ptrdiff_t now = live += size_of(block);
  if (now > peak) peak = now;
}

void* counted(void* block) {
  if (is_counting.load(std::memory_order_relaxed) && block != nullptr) add(block);
  return block;
}

}  // namespace

#define VLT_IN_FRONT extern "C" __attribute__((visibility("default")))

VLT_IN_FRONT void* malloc(std::size_t size) { return counted(__libc_malloc(size)); }
VLT_IN_FRONT void* calloc(std::size_t number, std::size_t size) {
  return counted(__libc_calloc(number, size));
}
VLT_IN_FRONT void* memalign(std::size_t alignment, std::size_t size) {
  return counted(__libc_memalign(alignment, size));
}
VLT_IN_FRONT void* aligned_alloc(std::size_t alignment, std::size_t size) {
  return memalign(alignment, size);
}
VLT_IN_FRONT int posix_memalign(void** block, std::size_t alignment, std::size_t size) {
  *block = memalign(alignment, size);
  return *block == nullptr ? ENOMEM : 0;
}
VLT_IN_FRONT void free(void* block) {
  if (is_counting.load(std::memory_order_relaxed)) live -= size_of(block);
  __libc_free(block);
}
// Both blocks exist while the contents are moved, unless the block grows in place.
VLT_IN_FRONT void* realloc(void* block, std::size_t size) {
  if (!is_counting.load(std::memory_order_relaxed)) return __libc_realloc(block, size);
  const std::ptrdiff_t before = size_of(block);
  void* const moved = __libc_realloc(block, size);
  if (moved == nullptr && size > 0) return nullptr;
  if (moved != nullptr) add(moved);
  live -= before;
  return moved;
}

namespace textio::bench {

MemoryCount count_memory(const std::function<void()>& call) {
  allocations = 0;
  live = 0;
  peak = 0;
  is_counting = true;
  call();
  is_counting = false;
  return {allocations, static_cast<std::size_t>(peak)};
}

}  // namespace textio::bench
