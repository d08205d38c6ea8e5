// The threads take the next task from a counter. An answer goes into the slot of its task, and the
// calling thread empties the slots from the first to the last, waiting where one is still empty.
//
// The tasks that share something belong to the thread that meets the first of them: it works
// through all, and the others skip them.
#include "tool/ordered_work.hpp"

#include <algorithm>
#include <chrono>
#include <condition_variable>
#include <exception>
#include <mutex>
#include <optional>
#include <thread>
#include <utility>

#include <sched.h>

namespace textio::tool {
namespace {

constexpr std::chrono::milliseconds kPatience{100};

struct Outcome {
  Answer answer;
  std::exception_ptr error;
};

void work_alone(const WorkPlan& plan, const WorkSteps& steps) {
  for (std::size_t task = 0; task < plan.num_tasks; ++task) {
    steps.deliver(steps.work(task));
    steps.finished(task + 1);
  }
}

class Crew {
 public:
  Crew(const WorkPlan& plan, const WorkSteps& steps)
      : plan_(plan), steps_(steps), slots_(plan.num_tasks) {
    threads_.reserve(plan.num_threads);
    try {
      while (threads_.size() < plan.num_threads) threads_.emplace_back(&Crew::work, this);
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

  void deliver() {
    std::size_t num_shown = 0;
    for (std::size_t task = 0; task < plan_.num_tasks;) {
      const std::optional<Outcome> outcome = wait_for(task, num_shown);
      if (outcome) {
        if (outcome->error) std::rethrow_exception(outcome->error);
        steps_.deliver(outcome->answer);
        ++task;
      }
      steps_.finished(num_shown);
    }
  }

 private:
  void work() {
    while (const std::optional<std::size_t> task = next_task()) {
      if (!is_one_by_one(*task)) {
        finish(*task);
        continue;
      }
      for (const std::size_t shared : plan_.one_by_one) {
        if (!is_stopped()) finish(shared);
      }
    }
  }

  bool is_one_by_one(std::size_t task) const {
    return std::binary_search(plan_.one_by_one.begin(), plan_.one_by_one.end(), task);
  }

  std::optional<std::size_t> next_task() {
    const std::lock_guard<std::mutex> lock(mutex_);
    while (next_ < plan_.num_tasks && one_by_one_taken_ && is_one_by_one(next_)) ++next_;
    if (next_ >= plan_.num_tasks) return std::nullopt;
    one_by_one_taken_ = one_by_one_taken_ || is_one_by_one(next_);
    return next_++;
  }

  void finish(std::size_t task) {
    Outcome outcome;
    try {
      outcome.answer = steps_.work(task);
    } catch (...) {
      outcome.error = std::current_exception();
    }
    {
      const std::lock_guard<std::mutex> lock(mutex_);
      slots_[task] = std::move(outcome);
      ++num_finished_;
    }
    changed_.notify_one();
  }

  // What became of `task`, or nothing when it is not yet finished. Not to be waited for too long:
  // somebody may look at the number of those that are.
  std::optional<Outcome> wait_for(std::size_t task, std::size_t& num_shown) {
    std::unique_lock<std::mutex> lock(mutex_);
    changed_.wait_for(lock, kPatience,
                      [&] { return slots_[task].has_value() || num_finished_ != num_shown; });
    num_shown = num_finished_;
    return std::exchange(slots_[task], std::nullopt);
  }

  void stop() {
    const std::lock_guard<std::mutex> lock(mutex_);
    next_ = plan_.num_tasks;
    stopped_ = true;
  }

  bool is_stopped() {
    const std::lock_guard<std::mutex> lock(mutex_);
    return stopped_;
  }

  const WorkPlan& plan_;
  const WorkSteps& steps_;
  std::mutex mutex_;  // of what follows, but for the threads
  std::condition_variable changed_;
  std::vector<std::optional<Outcome>> slots_;  // by task; emptied when it was delivered
  std::size_t next_ = 0;                       // task
  std::size_t num_finished_ = 0;
  bool one_by_one_taken_ = false;
  bool stopped_ = false;
  std::vector<std::thread> threads_;
};

}  // namespace

void work_in_order(const WorkPlan& plan, const WorkSteps& steps) {
  if (std::min(plan.num_threads, plan.num_tasks) <= 1) return work_alone(plan, steps);
  const WorkPlan crowded = {plan.num_tasks, std::min(plan.num_threads, plan.num_tasks),
                            plan.one_by_one};
  Crew crew(crowded, steps);
  if (crew.is_empty()) return work_alone(plan, steps);
  crew.deliver();
}

std::size_t thread_count(std::size_t num_jobs, std::size_t num_files, std::size_t num_descriptors) {
  return std::max<std::size_t>(std::min({num_jobs, num_files, num_descriptors / 2}), 1);
}

std::size_t available_processors() {
  cpu_set_t processors;
  if (sched_getaffinity(0, sizeof processors, &processors) != 0) return 1;
  return static_cast<std::size_t>(std::max(CPU_COUNT(&processors), 1));
}

}  // namespace textio::tool
