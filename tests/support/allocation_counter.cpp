#include "support/allocation_counter.hpp"

#include <cstdlib>
#include <new>
#include <string_view>

// The thread sanitizer has its own operators, which must not be replaced.
#if defined(__SANITIZE_THREAD__)
#define VLT_THREAD_SANITIZER 1
#elif defined(__has_feature)
#if __has_feature(thread_sanitizer)
#define VLT_THREAD_SANITIZER 1
#endif
#endif
#ifndef VLT_THREAD_SANITIZER
#define VLT_THREAD_SANITIZER 0
#endif

namespace {

thread_local std::size_t allocations = 0;
thread_local std::size_t allocated_bytes = 0;

[[maybe_unused]] void* allocate(std::size_t size) noexcept {
  ++allocations;
  allocated_bytes += size;
  return std::malloc(size == 0 ? 1 : size);
}

[[maybe_unused]] void* allocate_or_throw(std::size_t size) {
  void* const block = allocate(size);
  if (block == nullptr) throw std::bad_alloc();
  return block;
}

}  // namespace

namespace textio::testing_support {

std::size_t allocations_of_this_thread() noexcept { return allocations; }

std::size_t allocated_bytes_of_this_thread() noexcept { return allocated_bytes; }

bool allocations_are_counted() noexcept {
#if VLT_THREAD_SANITIZER
  return false;
#endif
  const char* const preloaded = std::getenv("LD_PRELOAD");
  return preloaded == nullptr ||
         std::string_view(preloaded).find("vgpreload") == std::string_view::npos;
}

}  // namespace textio::testing_support

#if !VLT_THREAD_SANITIZER

// All of them are replaced, so that each block is freed by the matching operator.
void* operator new(std::size_t size) { return allocate_or_throw(size); }
void* operator new[](std::size_t size) { return allocate_or_throw(size); }
void* operator new(std::size_t size, const std::nothrow_t&) noexcept { return allocate(size); }
void* operator new[](std::size_t size, const std::nothrow_t&) noexcept { return allocate(size); }
void operator delete(void* block) noexcept { std::free(block); }
void operator delete[](void* block) noexcept { std::free(block); }
void operator delete(void* block, std::size_t) noexcept { std::free(block); }
void operator delete[](void* block, std::size_t) noexcept { std::free(block); }
void operator delete(void* block, const std::nothrow_t&) noexcept { std::free(block); }
void operator delete[](void* block, const std::nothrow_t&) noexcept { std::free(block); }

#endif
