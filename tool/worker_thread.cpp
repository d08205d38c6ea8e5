// The stack is memory of our own, which goes back to the system. Its lowest page can be neither
// read nor written, as that of any stack.
#include "tool/worker_thread.hpp"

#include <new>
#include <system_error>
#include <utility>

#include <malloc.h>
#include <sys/mman.h>
#include <sys/resource.h>
#include <unistd.h>

namespace textio::tool {
namespace {

constexpr int kLargeBlock = 131'072;  // bytes

// The size of a stack that nobody asked another one for.
std::size_t usual_stack_size() {
  pthread_attr_t attributes;
  if (const int error = pthread_getattr_default_np(&attributes)) {
    throw std::system_error(error, std::generic_category());
  }
  std::size_t size = 0;
  pthread_attr_getstacksize(&attributes, &size);
  pthread_attr_destroy(&attributes);
  return size;
}

bool is_limited(decltype(RLIMIT_AS) resource) {
  rlimit limit = {};
  return getrlimit(resource, &limit) == 0 && limit.rlim_cur != RLIM_INFINITY;
}

}  // namespace

WorkerThread::Stack::Stack()
    : size_(usual_stack_size()),
      memory_(::mmap(nullptr, size_, PROT_READ | PROT_WRITE,
                     MAP_PRIVATE | MAP_ANONYMOUS | MAP_NORESERVE | MAP_STACK, -1, 0)) {
  if (memory_ == MAP_FAILED) throw std::bad_alloc();
  ::mprotect(memory_, static_cast<std::size_t>(::sysconf(_SC_PAGESIZE)), PROT_NONE);
}

WorkerThread::Stack::~Stack() { ::munmap(memory_, size_); }

WorkerThread::WorkerThread(std::function<void()> work) : work_(std::move(work)) {
  pthread_attr_t attributes;
  pthread_attr_init(&attributes);
  pthread_attr_setstack(&attributes, stack_.memory(), stack_.size());
  const auto run = [](void* own_work) -> void* {
    (*static_cast<std::function<void()>*>(own_work))();
    return nullptr;
  };
  const int error = pthread_create(&thread_, &attributes, run, &work_);
  pthread_attr_destroy(&attributes);
  if (error != 0) throw std::system_error(error, std::generic_category());
}

void WorkerThread::join() { pthread_join(thread_, nullptr); }

void share_heap_if_memory_is_limited() {
  if (!is_limited(RLIMIT_AS) && !is_limited(RLIMIT_DATA)) return;
  mallopt(M_ARENA_MAX, 1);
  mallopt(M_MMAP_THRESHOLD, kLargeBlock);
}

}  // namespace textio::tool
