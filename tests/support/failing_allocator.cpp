#include "support/failing_allocator.hpp"

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

using textio::testing_support::FaultKind;

struct Fault {
  std::size_t left = 0;  // allocations up to the one that fails; 0 if none does
  FaultKind kind = FaultKind::single;
  bool met = false;
};

thread_local Fault fault;
thread_local long blocks = 0;

bool fails_now() noexcept {
  if (fault.left == 0) return false;
  if (fault.left > 1) {
    --fault.left;
    return false;
  }
  fault.met = true;
  if (fault.kind == FaultKind::single) fault.left = 0;
  return true;
}

[[maybe_unused]] void* allocate(std::size_t size) noexcept {
  if (fails_now()) return nullptr;
  void* const block = std::malloc(size == 0 ? 1 : size);
  if (block != nullptr) ++blocks;
  return block;
}

[[maybe_unused]] void* allocate_or_throw(std::size_t size) {
  void* const block = allocate(size);
  if (block == nullptr) throw std::bad_alloc();
  return block;
}

[[maybe_unused]] void release(void* block) noexcept {
  if (block != nullptr) --blocks;
  std::free(block);
}

}  // namespace

namespace textio::testing_support {

AllocationFault::AllocationFault(std::size_t nth, FaultKind kind) noexcept {
  fault = {nth, kind, false};
}

AllocationFault::~AllocationFault() { fault = {}; }

bool AllocationFault::was_met() const noexcept { return fault.met; }

long live_blocks() noexcept { return blocks; }

bool allocations_can_fail() noexcept {
#if VLT_THREAD_SANITIZER
  return false;
#endif
  const char* const preloaded = std::getenv("LD_PRELOAD");
  return preloaded == nullptr ||
         std::string_view(preloaded).find("vgpreload") == std::string_view::npos;
}

}  // namespace textio::testing_support

#if !VLT_THREAD_SANITIZER

// All of them are replaced, so that no block passes from one pair of operators to another.
void* operator new(std::size_t size) { return allocate_or_throw(size); }
void* operator new[](std::size_t size) { return allocate_or_throw(size); }
void* operator new(std::size_t size, const std::nothrow_t&) noexcept { return allocate(size); }
void* operator new[](std::size_t size, const std::nothrow_t&) noexcept { return allocate(size); }
void operator delete(void* block) noexcept { release(block); }
void operator delete[](void* block) noexcept { release(block); }
void operator delete(void* block, std::size_t) noexcept { release(block); }
void operator delete[](void* block, std::size_t) noexcept { release(block); }
void operator delete(void* block, const std::nothrow_t&) noexcept { release(block); }
void operator delete[](void* block, const std::nothrow_t&) noexcept { release(block); }

#endif
