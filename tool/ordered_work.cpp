// The threads take the next task from a counter. An answer goes into the slot of its task, in a
// ring of kMostAhead slots, and the calling thread empties the slots in order. It waits while the
// next one is empty; the threads wait while they are too far ahead.
//
// Two kinds of tasks are left to the calling thread: those that are to be worked on one by one, and
// those that ran out of memory, which another task may have held. When the turn of one of them
// comes, the threads go on until they may begin nothing more. Then the calling thread works alone.
#include "tool/ordered_work.hpp"

#include <algorithm>
#include <array>
#include <chrono>
#include <condition_variable>
#include <exception>
#include <limits>
#include <list>
#include <mutex>
#include <new>
#include <thread>
#include <utility>

#include <sched.h>
#include <sys/resource.h>

namespace textio::tool {
namespace {

// The calling thread is woken when this many tasks were finished, when a thread waits for it, and
// after this time: to wake a thread takes about as long as a small file.
constexpr std::size_t kTasksToWakeFor = 16;
constexpr std::chrono::milliseconds kPatience{20};

struct Outcome {
  Answer answer;
  std::exception_ptr error;
};

Outcome outcome_of(const WorkSteps& steps, std::size_t task) noexcept {
  try {
    return {steps.work(task), nullptr};
  } catch (const std::bad_alloc&) {
    return {{{}, std::nullopt, true, nullptr}, nullptr};
  } catch (...) {
    return {{}, std::current_exception()};
  }
}

// Returns whether to go on.
bool deliver(const WorkSteps& steps, std::size_t task, const Outcome& outcome) {
  if (outcome.error) std::rethrow_exception(outcome.error);
  return steps.deliver(task, outcome.answer);
}

void work_alone(const WorkPlan& plan, const WorkSteps& steps) {
  for (std::size_t task = 0; task < plan.num_tasks; ++task) {
    if (!deliver(steps, task, outcome_of(steps, task))) return;
    steps.finished(task + 1);
  }
}

class Crew {
 public:
  Crew(const WorkPlan& plan, const WorkSteps& steps) : plan_(plan), steps_(steps) {
    const std::size_t num_for_threads = plan.num_tasks - plan.one_by_one.size();
    const std::size_t num_threads = std::min(plan.num_threads, num_for_threads);
    next_ = first_for_threads(0);
    try {
      while (threads_.size() < num_threads) threads_.emplace_back([this] { work(); });
    } catch (const std::exception&) {
      // The system gives no more threads, or there is no memory for them: fewer do it, too.
    }
  }

  ~Crew() {
    stop();
    for (std::thread& thread : threads_) thread.join();
  }

  Crew(const Crew&) = delete;
  Crew& operator=(const Crew&) = delete;

  bool is_empty() const { return threads_.empty(); }

  void deliver_all() {
    for (std::size_t task = 0; task < plan_.num_tasks; ++task) {
      if (!deliver(steps_, task, outcome_at(task))) return;
      steps_.finished(end_turn());
    }
  }

 private:
  // --- in the threads ---

  void work() {
    while (const std::optional<std::size_t> task = next_task()) {
      settle(*task, outcome_of(steps_, *task));
    }
  }

  std::optional<std::size_t> next_task() {
    std::unique_lock<std::mutex> lock(mutex_);
    ++num_waiting_threads_;
    if (is_caller_needed()) settled_.notify_one();
    may_begin_.wait(lock, [this] { return may_begin() || next_ >= plan_.num_tasks; });
    --num_waiting_threads_;
    if (next_ >= plan_.num_tasks) return std::nullopt;
    ++num_under_way_;
    return std::exchange(next_, first_for_threads(next_ + 1));
  }

  void settle(std::size_t task, Outcome outcome) {
    const std::lock_guard<std::mutex> lock(mutex_);
    --num_under_way_;
    if (!outcome.answer.lacked_memory) ++num_finished_;
    waiting_bytes_ += outcome.answer.held_bytes();
    slot_of(task) = std::move(outcome);
    if (++num_unseen_ >= kTasksToWakeFor || is_idle()) settled_.notify_one();
  }

  // --- with the mutex locked ---

  std::optional<Outcome>& slot_of(std::size_t task) { return slots_[task % kMostAhead]; }

  bool may_begin() const {
    return next_ < plan_.num_tasks && next_ < turn_ + kMostAhead &&
           waiting_bytes_ < kMostWaitingBytes;
  }

  // Nothing changes until the calling thread does something.
  bool is_idle() const { return num_under_way_ == 0 && !may_begin(); }

  // A thread that is too far ahead waits for an answer that is there.
  bool is_caller_needed() {
    return !may_begin() && next_ < plan_.num_tasks && slot_of(turn_).has_value();
  }

  // --- in the calling thread ---

  Outcome outcome_at(std::size_t task) {
    if (is_one_by_one(task)) return outcome_alone(task);
    wait_until([&] { return slot_of(task).has_value(); });
    Outcome outcome = take(task);
    return outcome.answer.lacked_memory ? outcome_alone(task) : std::move(outcome);
  }

  Outcome take(std::size_t task) {
    const std::lock_guard<std::mutex> lock(mutex_);
    std::optional<Outcome>& slot = slot_of(task);
    Outcome outcome = std::move(*slot);
    slot.reset();
    waiting_bytes_ -= outcome.answer.held_bytes();
    return outcome;
  }

  // The threads stay idle until the turn ends.
  Outcome outcome_alone(std::size_t task) {
    wait_until([this] { return is_idle(); });
    Outcome outcome = outcome_of(steps_, task);
    const std::lock_guard<std::mutex> lock(mutex_);
    ++num_finished_;
    return outcome;
  }

  // Reports the progress while it waits.
  template <typename Condition>
  void wait_until(const Condition& is_so) {
    std::unique_lock<std::mutex> lock(mutex_);
    while (!is_so()) {
      settled_.wait_for(lock, kPatience);
      num_unseen_ = 0;
      const std::size_t finished = num_finished_;
      lock.unlock();
      steps_.finished(finished);
      lock.lock();
    }
  }

  // Returns how many are finished.
  std::size_t end_turn() {
    const std::lock_guard<std::mutex> lock(mutex_);
    ++turn_;
    if (num_waiting_threads_ > 0) may_begin_.notify_all();
    return num_finished_;
  }

  void stop() {
    const std::lock_guard<std::mutex> lock(mutex_);
    next_ = plan_.num_tasks;
    may_begin_.notify_all();
  }

  // --- anywhere ---

  bool is_one_by_one(std::size_t task) const {
    return std::binary_search(plan_.one_by_one.begin(), plan_.one_by_one.end(), task);
  }

  // The first task from `task` on that the threads work on; after the last one when there is none.
  std::size_t first_for_threads(std::size_t task) const {
    while (task < plan_.num_tasks && is_one_by_one(task)) ++task;
    return task;
  }

  const WorkPlan& plan_;
  const WorkSteps& steps_;
  std::mutex mutex_;  // of what follows, except the threads
  std::condition_variable settled_;
  std::condition_variable may_begin_;
  std::array<std::optional<Outcome>, kMostAhead> slots_;
  std::size_t turn_ = 0;  // the task that is delivered next
  std::size_t next_ = 0;  // the task that is begun next
  std::size_t num_under_way_ = 0;
  std::size_t num_waiting_threads_ = 0;
  std::size_t num_finished_ = 0;
  std::size_t num_unseen_ = 0;     // finished since the calling thread was last woken
  std::size_t waiting_bytes_ = 0;  // in the slots
  std::list<std::thread> threads_;
};

std::size_t limit_of(decltype(RLIMIT_AS) resource) {
  rlimit limit = {};
  const bool is_limited = getrlimit(resource, &limit) == 0 && limit.rlim_cur != RLIM_INFINITY;
  return is_limited ? limit.rlim_cur : std::numeric_limits<std::size_t>::max();
}

}  // namespace

void work_in_order(const WorkPlan& plan, const WorkSteps& steps) {
  if (std::min(plan.num_threads, plan.num_tasks) <= 1) return work_alone(plan, steps);
  Crew crew(plan, steps);
  if (crew.is_empty()) return work_alone(plan, steps);
  crew.deliver_all();
}

std::size_t thread_count(std::size_t num_jobs, std::size_t num_files, const ProcessLimits& limits) {
  const std::size_t least = std::min(
      {num_jobs, num_files, limits.num_descriptors / 2, limits.memory_bytes / kMemoryOfAThread});
  return std::max<std::size_t>(least, 1);
}

std::size_t threads_for(std::optional<std::size_t> num_jobs, std::size_t num_files) {
  const std::size_t jobs = num_jobs.value_or(std::min(available_processors(), kMostJobs));
  return thread_count(
      jobs, num_files,
      {limit_of(RLIMIT_NOFILE), std::min(limit_of(RLIMIT_AS), limit_of(RLIMIT_DATA))});
}

std::size_t available_processors() {
  cpu_set_t processors;
  if (sched_getaffinity(0, sizeof processors, &processors) != 0) return 1;
  return static_cast<std::size_t>(std::max(CPU_COUNT(&processors), 1));
}

}  // namespace textio::tool
