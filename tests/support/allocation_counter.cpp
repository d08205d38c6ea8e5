#include "support/allocation_counter.hpp"

#include <cstdlib>
#include <new>
#include <string_view>

namespace {

thread_local std::size_t allocations = 0;

void* allocate(std::size_t size) noexcept {
  ++allocations;
  return std::malloc(size == 0 ? 1 : size);
}

void* allocate_or_throw(std::size_t size) {
  void* const block = allocate(size);
  if (block == nullptr) throw std::bad_alloc();
  return block;
}

}  // namespace

namespace textio::testing_support {

std::size_t allocations_of_this_thread() noexcept { return allocations; }

bool allocations_are_counted() noexcept {
  const char* const preloaded = std::getenv("LD_PRELOAD");
  return preloaded == nullptr ||
         std::string_view(preloaded).find("vgpreload") == std::string_view::npos;
}

}  // namespace textio::testing_support

// All of them are replaced, so that no block goes from one pair of operators to another.
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
