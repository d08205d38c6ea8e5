// The threads take the next task from a counter. An answer goes into the slot of its task, and the
// calling thread empties the slots from the first to the last, waiting where one is still empty.
//
// Two kinds of tasks are left to the calling thread: those that are to be worked on one by one, and
// those that ran out of memory, which another task may have held. When the turn of the first of
// them comes, the threads do all the rest and end, for each of them holds memory, too. If it still
// lacks memory, the answers that wait behind it are forgotten, and made anew when their turn comes:
// then nothing is held that one thread would not hold.
#include "tool/ordered_work.hpp"

#include <algorithm>
#include <chrono>
#include <condition_variable>
#include <exception>
#include <functional>
#include <list>
#include <mutex>
#include <new>
#include <optional>
#include <utility>

#include <sched.h>

#include "tool/worker_thread.hpp"

namespace textio::tool {
namespace {

// The calling thread is woken when so many tasks were finished, when the last one was, and after
// so long: a small file takes hardly longer than to wake a thread.
constexpr std::size_t kTasksToWakeFor = 16;
constexpr std::chrono::milliseconds kPatience{20};

struct Outcome {
  Answer answer;
  std::exception_ptr error;
  bool lacked_memory = false;
  bool is_counted = false;  // among the finished
};

Outcome outcome_of(const WorkSteps& steps, std::size_t task) {
  try {
    Answer answer = steps.work(task);
    const bool lacked_memory = answer.lacked_memory;
    return {std::move(answer), nullptr, lacked_memory};
  } catch (const std::bad_alloc&) {
    return {{}, std::current_exception(), true};
  } catch (...) {
    return {{}, std::current_exception(), false};
  }
}

void work_alone(const WorkPlan& plan, const WorkSteps& steps) {
  for (std::size_t task = 0; task < plan.num_tasks; ++task) {
    steps.deliver(steps.work(task));
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
      slots_.resize(plan.num_tasks);
      while (threads_.size() < num_threads) threads_.emplace_back([this] { work(); });
    } catch (const std::exception&) {
      // The system gives no more threads, or there is no memory for them: fewer do it, too.
    }
  }

  ~Crew() {
    stop();
    join();
  }

  Crew(const Crew&) = delete;
  Crew& operator=(const Crew&) = delete;

  bool is_empty() const { return threads_.empty(); }

  void deliver() {
    for (std::size_t task = 0; task < plan_.num_tasks; ++task) {
      const Outcome outcome = outcome_at(task);
      if (outcome.error) std::rethrow_exception(outcome.error);
      steps_.deliver(outcome.answer);
      steps_.finished(num_finished_now());
    }
  }

 private:
  void work() {
    while (const std::optional<std::size_t> task = next_task()) {
      settle(*task, outcome_of(steps_, *task));
    }
  }

  bool is_one_by_one(std::size_t task) const {
    return std::binary_search(plan_.one_by_one.begin(), plan_.one_by_one.end(), task);
  }

  // The first task from `task` on that the threads work on; behind the last one when there is none.
  std::size_t first_for_threads(std::size_t task) const {
    while (task < plan_.num_tasks && is_one_by_one(task)) ++task;
    return task;
  }

  std::optional<std::size_t> next_task() {
    const std::lock_guard<std::mutex> lock(mutex_);
    if (next_ >= plan_.num_tasks) return std::nullopt;
    ++num_under_way_;
    return std::exchange(next_, first_for_threads(next_ + 1));
  }

  void settle(std::size_t task, Outcome outcome) {
    bool is_worth_waking = false;
    {
      const std::lock_guard<std::mutex> lock(mutex_);
      --num_under_way_;
      outcome.is_counted = !outcome.lacked_memory;
      if (outcome.is_counted) ++num_finished_;
      slots_[task] = std::move(outcome);
      is_worth_waking = ++num_unseen_ >= kTasksToWakeFor || are_threads_done();
    }
    if (is_worth_waking) changed_.notify_one();
  }

  Outcome outcome_at(std::size_t task) {
    if (is_one_by_one(task)) return outcome_alone(task, false);
    wait_until([&] { return slots_[task].has_value(); });
    Outcome outcome = take(task);
    return outcome.lacked_memory ? outcome_alone(task, outcome.is_counted) : std::move(outcome);
  }

  Outcome take(std::size_t task) {
    const std::lock_guard<std::mutex> lock(mutex_);
    return *std::exchange(slots_[task], std::nullopt);
  }

  // The outcome of a task that was left to the calling thread.
  Outcome outcome_alone(std::size_t task, bool is_counted) {
    wait_until([&] { return are_threads_done(); });
    join();
    Outcome outcome = outcome_of(steps_, task);
    const bool may_try_again = outcome.lacked_memory && !is_one_by_one(task);
    if (may_try_again && forget_answers()) outcome = outcome_of(steps_, task);
    if (!is_counted) ++num_finished_;
    return outcome;
  }

  // Leaves what was finished and not yet delivered to the calling thread. Returns whether there was
  // any. The threads have ended.
  bool forget_answers() {
    bool had_any = false;
    for (std::optional<Outcome>& slot : slots_) {
      if (!slot || slot->lacked_memory) continue;
      slot.emplace(Outcome{{}, nullptr, true, true});
      had_any = true;
    }
    return had_any;
  }

  // Tells now and then how many are finished meanwhile.
  void wait_until(const std::function<bool()>& is_so) {
    std::unique_lock<std::mutex> lock(mutex_);
    while (!is_so()) {
      changed_.wait_for(lock, kPatience);
      num_unseen_ = 0;
      const std::size_t finished = num_finished_;
      lock.unlock();
      steps_.finished(finished);
      lock.lock();
    }
  }

  // With the mutex locked.
  bool are_threads_done() const { return next_ >= plan_.num_tasks && num_under_way_ == 0; }

  std::size_t num_finished_now() {
    const std::lock_guard<std::mutex> lock(mutex_);
    return num_finished_;
  }

  void stop() {
    const std::lock_guard<std::mutex> lock(mutex_);
    next_ = plan_.num_tasks;
  }

  void join() {
    for (WorkerThread& thread : threads_) thread.join();
    threads_.clear();
  }

  const WorkPlan& plan_;
  const WorkSteps& steps_;
  std::mutex mutex_;  // of what follows, but for the threads
  std::condition_variable changed_;
  std::vector<std::optional<Outcome>> slots_;  // by task; emptied when its turn has come
  std::size_t next_ = 0;                       // task
  std::size_t num_under_way_ = 0;
  std::size_t num_finished_ = 0;
  std::size_t num_unseen_ = 0;  // finished since the calling thread was last woken
  std::list<WorkerThread> threads_;
};

}  // namespace

void work_in_order(const WorkPlan& plan, const WorkSteps& steps) {
  if (std::min(plan.num_threads, plan.num_tasks) <= 1) return work_alone(plan, steps);
  Crew crew(plan, steps);
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
