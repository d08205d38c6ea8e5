#include "tool/worker_thread.hpp"

#include <cstddef>
#include <cstdint>
#include <thread>

#include <gtest/gtest.h>

#include <pthread.h>
#include <sys/mman.h>
#include <unistd.h>

namespace textio::tool {
namespace {

struct StackOfAThread {
  std::uintptr_t begin = 0;
  std::size_t size = 0;
};

StackOfAThread stack_of_this_thread() {
  pthread_attr_t attributes;
  void* begin = nullptr;
  StackOfAThread stack;
  EXPECT_EQ(pthread_getattr_np(pthread_self(), &attributes), 0);
  EXPECT_EQ(pthread_attr_getstack(&attributes, &begin, &stack.size), 0);
  pthread_attr_destroy(&attributes);
  stack.begin = reinterpret_cast<std::uintptr_t>(begin);
  return stack;
}

bool is_mapped(std::uintptr_t page) {
  unsigned char in_memory = 0;
  const auto size = static_cast<std::size_t>(::sysconf(_SC_PAGESIZE));
  return ::mincore(reinterpret_cast<void*>(page), size, &in_memory) == 0;
}

TEST(WorkerThread, WorksInAThreadOfItsOwn) {
  std::thread::id worker;
  WorkerThread thread([&] { worker = std::this_thread::get_id(); });
  thread.join();
  EXPECT_NE(worker, std::thread::id());
  EXPECT_NE(worker, std::this_thread::get_id());
}

TEST(WorkerThread, HasAStackAsLargeAsThatOfAnyOther) {
  StackOfAThread usual;
  std::thread([&] { usual = stack_of_this_thread(); }).join();
  StackOfAThread own;
  WorkerThread thread([&] { own = stack_of_this_thread(); });
  thread.join();
  EXPECT_EQ(own.size, usual.size);
}

TEST(WorkerThread, LeavesNoStackBehind) {
  StackOfAThread stack;
  bool was_mapped = false;
  {
    WorkerThread thread([&] {
      stack = stack_of_this_thread();
      was_mapped = is_mapped(stack.begin);
    });
    thread.join();
  }
  EXPECT_TRUE(was_mapped);
  EXPECT_FALSE(is_mapped(stack.begin));
}

}  // namespace
}  // namespace textio::tool
