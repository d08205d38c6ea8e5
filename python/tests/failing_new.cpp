// Loaded before a Python process: memory that runs out when a test asks for it. An allocation fails only in code that
// runs without the lock of the interpreter, as that of the libraries does: the code around it is nanobind's, which ends
// the process. test_memory.py compiles this.
#include <atomic>
#include <cstddef>
#include <cstdlib>
#include <new>

#include <dlfcn.h>

namespace {

std::atomic<long> left = 0;  // allocations up to the one that fails; 0 if none does
std::atomic<bool> fails_later = false;
std::atomic<bool> was_met = false;
std::atomic<long> live = 0;

bool has_lock() {
  using Check = int (*)();
  static const auto check = reinterpret_cast<Check>(::dlsym(RTLD_DEFAULT, "PyGILState_Check"));
  return check == nullptr || check() != 0;
}

bool fails_now() {
  if (left == 0 || has_lock()) return false;
  if (left > 1) {
    --left;
    return false;
  }
  was_met = true;
  if (!fails_later) left = 0;
  return true;
}

void* allocate(std::size_t size) noexcept {
  if (fails_now()) return nullptr;
  void* const block = std::malloc(size == 0 ? 1 : size);
  if (block != nullptr) ++live;
  return block;
}

void* allocate_or_throw(std::size_t size) {
  void* const block = allocate(size);
  if (block == nullptr) throw std::bad_alloc();
  return block;
}

void release(void* block) noexcept {
  if (block != nullptr) --live;
  std::free(block);
}

}  // namespace

extern "C" {

// The allocation number `nth` fails, and those after it if `all_later`.
void fail_at(long nth, int all_later) {
  was_met = false;
  fails_later = all_later != 0;
  left = nth;
}

// No allocation fails any more. Whether one did.
int stop_failing() {
  left = 0;
  return was_met ? 1 : 0;
}

long live_blocks() { return live; }
}

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
