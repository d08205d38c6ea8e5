#include "tool/ordered_work.hpp"

#include <algorithm>
#include <atomic>
#include <chrono>
#include <condition_variable>
#include <functional>
#include <limits>
#include <mutex>
#include <new>
#include <optional>
#include <ostream>
#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

#include <gtest/gtest.h>

#include <sched.h>

#include "support/rule_name.hpp"

namespace textio::tool {
namespace {

using Numbers = std::vector<std::size_t>;

// Threads wait at the gate until it is opened.
class Gate {
 public:
  void open() {
    const std::lock_guard<std::mutex> lock(mutex_);
    is_open_ = true;
    opened_.notify_all();
  }

  void wait() {
    std::unique_lock<std::mutex> lock(mutex_);
    opened_.wait(lock, [this] { return is_open_; });
  }

 private:
  std::mutex mutex_;
  std::condition_variable opened_;
  bool is_open_ = false;
};

std::vector<std::string> texts_up_to(std::size_t count) {
  std::vector<std::string> texts;
  for (std::size_t i = 0; i < count; ++i) texts.push_back(std::to_string(i));
  return texts;
}

struct Delivery {
  std::vector<std::string> texts;
  Numbers finished;
};

Delivery delivery_of(const WorkPlan& plan, const std::function<void(std::size_t)>& work) {
  Delivery delivery;
  work_in_order(plan, {[&](std::size_t task) {
                         work(task);
                         return Answer{std::to_string(task), std::nullopt};
                       },
                       [&](std::size_t, const Answer& answer) {
                         delivery.texts.push_back(answer.text);
                         return true;
                       },
                       [&](std::size_t count) { delivery.finished.push_back(count); }});
  return delivery;
}

void do_nothing(std::size_t) {}

TEST(WorkInOrder, OfNoTaskDoesNothing) {
  const Delivery delivery = delivery_of({0, 8, {}}, do_nothing);
  EXPECT_TRUE(delivery.texts.empty());
  EXPECT_TRUE(delivery.finished.empty());
}

TEST(WorkInOrder, DeliversEachAnswerOnceInTheOrderOfTheTasks) {
  for (const std::size_t threads : {0U, 1U, 2U, 8U, 64U}) {
    EXPECT_EQ(delivery_of({500, threads, {}}, do_nothing).texts, texts_up_to(500)) << threads;
    EXPECT_EQ(delivery_of({500, threads, {0, 7, 8, 499}}, do_nothing).texts, texts_up_to(500));
    EXPECT_EQ(delivery_of({3, threads, {0, 1, 2}}, do_nothing).texts, texts_up_to(3));
  }
}

TEST(WorkInOrder, CountsUpToTheNumberOfTasks) {
  for (const std::size_t threads : {1U, 4U}) {
    const Numbers finished = delivery_of({100, threads, {}}, do_nothing).finished;
    EXPECT_TRUE(std::is_sorted(finished.begin(), finished.end()));
    ASSERT_FALSE(finished.empty());
    EXPECT_EQ(finished.back(), 100U);
  }
}

// The first is finished last.
TEST(WorkInOrder, KeepsAnswersUntilTheOnesBeforeAreThere) {
  Gate others_done;
  std::atomic<int> others = 0;
  const auto work = [&](std::size_t task) {
    if (task == 0) return others_done.wait();
    if (++others == 9) others_done.open();
  };
  EXPECT_EQ(delivery_of({10, 2, {}}, work).texts, texts_up_to(10));
}

TEST(WorkInOrder, WorksOnAsManyTasksAtATimeAsThereAreThreads) {
  std::mutex mutex;
  std::size_t under_way = 0;
  std::size_t most = 0;
  const auto work = [&](std::size_t) {
    {
      const std::lock_guard<std::mutex> lock(mutex);
      most = std::max(most, ++under_way);
    }
    std::this_thread::yield();
    const std::lock_guard<std::mutex> lock(mutex);
    --under_way;
  };
  delivery_of({1000, 3, {}}, work);
  EXPECT_LE(most, 3U);
}

// Each of the four waits for the other three.
TEST(WorkInOrder, RunsThreadsSideBySide) {
  Gate all_here;
  std::atomic<int> here = 0;
  const auto work = [&](std::size_t) {
    if (++here == 4) all_here.open();
    all_here.wait();
  };
  EXPECT_EQ(delivery_of({4, 4, {}}, work).texts, texts_up_to(4));
}

TEST(WorkInOrder, WithOneThreadWorksInTheCallingOne) {
  const auto caller = std::this_thread::get_id();
  delivery_of({5, 1, {}}, [&](std::size_t) { EXPECT_EQ(std::this_thread::get_id(), caller); });
  delivery_of({1, 8, {}}, [&](std::size_t) { EXPECT_EQ(std::this_thread::get_id(), caller); });
}

TEST(WorkInOrder, DeliversInTheCallingThread) {
  const auto caller = std::this_thread::get_id();
  const auto expect_caller = [&] { EXPECT_EQ(std::this_thread::get_id(), caller); };
  work_in_order({20, 4, {}}, {[](std::size_t) { return Answer{}; },
                              [&](std::size_t, const Answer&) {
                                expect_caller();
                                return true;
                              },
                              [&](std::size_t) { expect_caller(); }});
}

TEST(WorkInOrder, WorksOneByOneInOrderOnTasksThatShare) {
  const Numbers shared = {1, 2, 30, 31, 99};
  for (const std::size_t threads : {1U, 2U, 8U}) {
    std::mutex mutex;
    Numbers done;
    std::atomic<int> under_way = 0;
    const auto work = [&](std::size_t task) {
      if (!std::binary_search(shared.begin(), shared.end(), task)) return;
      EXPECT_EQ(++under_way, 1);
      std::this_thread::yield();
      const std::lock_guard<std::mutex> lock(mutex);
      done.push_back(task);
      --under_way;
    };
    EXPECT_EQ(delivery_of({100, threads, shared}, work).texts, texts_up_to(100));
    EXPECT_EQ(done, shared);
  }
}

// A task that shares something waits for a gate that a task of the threads opens.
TEST(WorkInOrder, DoesNotLetTasksThatShareKeepTheOthersWaiting) {
  Gate gate;
  const auto work = [&](std::size_t task) {
    if (task == 0) gate.wait();
    if (task == 4) gate.open();
  };
  EXPECT_EQ(delivery_of({5, 2, {0, 1, 2, 3}}, work).texts, texts_up_to(5));
}

TEST(WorkInOrder, ThrowsWhatATaskThrewOnceItsTurnHasCome) {
  for (const std::size_t threads : {1U, 2U, 8U}) {
    std::vector<std::string> texts;
    const WorkSteps steps = {[](std::size_t task) {
                               if (task == 5) throw std::domain_error("task 5");
                               if (task == 6) throw std::range_error("task 6");
                               return Answer{std::to_string(task), std::nullopt};
                             },
                             [&](std::size_t, const Answer& answer) {
                               texts.push_back(answer.text);
                               return true;
                             },
                             do_nothing};
    EXPECT_THROW(work_in_order({50, threads, {3, 5, 20}}, steps), std::domain_error) << threads;
    EXPECT_EQ(texts, texts_up_to(5)) << threads;
  }
}

TEST(WorkInOrder, EndsWhenAnAnswerCannotBeDelivered) {
  const WorkSteps steps = {
      [](std::size_t) { return Answer{}; },
      [](std::size_t, const Answer&) -> bool { throw std::domain_error("lost"); }, do_nothing};
  EXPECT_THROW(work_in_order({1000, 4, {}}, steps), std::domain_error);
}

// Each answer is delivered before the task that comes kMostAhead after it is begun.
TEST(WorkInOrder, WorksNoFurtherAheadThanItMay) {
  std::atomic<std::size_t> delivered = 0;
  for (const std::size_t threads : {1U, 2U, 8U}) {
    delivered = 0;
    const auto work = [&](std::size_t task) {
      EXPECT_LT(task, delivered + kMostAhead);
      return Answer{std::to_string(task), std::nullopt};
    };
    const auto deliver = [&](std::size_t task, const Answer& answer) {
      EXPECT_EQ(answer.text, std::to_string(task));
      EXPECT_EQ(task, delivered++);
      return true;
    };
    work_in_order({500, threads, {7, 100, 101}}, {work, deliver, do_nothing});
    EXPECT_EQ(delivered, 500U);
  }
}

// The first is finished only when no thread may begin anything else.
TEST(WorkInOrder, HoldsNoMoreTextThanItMay) {
  constexpr std::size_t kSize = kMostWaitingBytes / 4;
  std::mutex mutex;
  std::size_t waiting = 0;
  std::size_t most = 0;
  const auto work = [&](std::size_t task) {
    if (task == 0) std::this_thread::sleep_for(std::chrono::milliseconds(50));
    const std::lock_guard<std::mutex> lock(mutex);
    most = std::max(most, waiting += kSize);
    return Answer{std::string(kSize, 'x'), std::nullopt};
  };
  const auto deliver = [&](std::size_t, const Answer& answer) {
    const std::lock_guard<std::mutex> lock(mutex);
    waiting -= answer.text.size();
    return true;
  };
  work_in_order({60, 3, {}}, {work, deliver, do_nothing});
  EXPECT_EQ(waiting, 0U);
  EXPECT_GE(most, kMostWaitingBytes);
  EXPECT_LE(most, kMostWaitingBytes + 3 * kSize);
}

// Task 9 waits until task 0 has been delivered.
TEST(WorkInOrder, DeliversWhileOthersAreUnderWay) {
  for (const std::size_t threads : {1U, 2U, 8U}) {
    Gate first_delivered;
    std::vector<std::string> texts;
    const auto work = [&](std::size_t task) {
      if (task == 9) first_delivered.wait();
      return Answer{std::to_string(task), std::nullopt};
    };
    const auto deliver = [&](std::size_t task, const Answer& answer) {
      if (task == 0) first_delivered.open();
      texts.push_back(answer.text);
      return true;
    };
    work_in_order({10, threads, {}}, {work, deliver, do_nothing});
    EXPECT_EQ(texts, texts_up_to(10));
  }
}

TEST(WorkInOrder, BeginsNothingMoreWhenTold) {
  for (const std::size_t threads : {1U, 2U, 8U}) {
    std::atomic<std::size_t> begun = 0;
    std::size_t delivered = 0;
    const auto work = [&](std::size_t) {
      ++begun;
      return Answer{};
    };
    work_in_order({1000, threads, {}},
                  {work, [&](std::size_t, const Answer&) { return ++delivered < 3; }, do_nothing});
    EXPECT_EQ(delivered, 3U);
    EXPECT_LE(begun, 3 + kMostAhead);
  }
}

TEST(WorkInOrder, PassesTextAndProblemOn) {
  std::vector<std::string> problems;
  work_in_order({2, 2, {}}, {[](std::size_t task) {
                               return Answer{"", "problem " + std::to_string(task)};
                             },
                             [&](std::size_t, const Answer& answer) {
                               problems.push_back(answer.problem.value_or("none"));
                               return true;
                             },
                             do_nothing});
  EXPECT_EQ(problems, (std::vector<std::string>{"problem 0", "problem 1"}));
}

// --- memory that runs out ------------------------------------------------------------------------

enum class Told { by_answer, by_exception };

struct LackCase {
  const char* rule;
  Told told;
};
std::ostream& operator<<(std::ostream& out, const LackCase& row) { return out << row.rule; }

const LackCase kLackCases[] = {
    {"Answer", Told::by_answer},
    {"Exception", Told::by_exception},
};

// Some tasks lack memory at their first tries. The first four wait for each other, so none of them
// is alone.
class WorkThatLacksMemory : public testing::TestWithParam<LackCase> {
 protected:
  // How often each task lacks memory, and how often it was worked on.
  void lack_memory(const Numbers& times) { lacks_ = times; }
  const Numbers& tries() const { return tries_; }

  std::vector<std::string> answers_of(const WorkPlan& plan) {
    tries_.assign(plan.num_tasks, 0);
    lacks_.resize(plan.num_tasks);
    answers_.clear();
    finished_.clear();
    work_in_order(plan, {[&](std::size_t task) { return work(task, plan.num_threads); },
                         [&](std::size_t delivered, const Answer& answer) {
                           answers_.push_back(answer.lacked_memory
                                                  ? "no memory for " + std::to_string(delivered)
                                                  : answer.text);
                           return true;
                         },
                         [&](std::size_t count) { finished_.push_back(count); }});
    EXPECT_TRUE(std::is_sorted(finished_.begin(), finished_.end()));
    EXPECT_EQ(finished_.back(), plan.num_tasks);
    return answers_;
  }

  const std::vector<std::string>& answers() const { return answers_; }

 private:
  Answer work(std::size_t task, std::size_t num_threads) {
    if (num_threads == 4 && task < 4 && tries_[task] == 0) {
      if (++here_ == 4) all_here_.open();
      all_here_.wait();
    }
    const bool is_caller = std::this_thread::get_id() == caller_;
    EXPECT_TRUE(is_caller || tries_[task] == 0);
    if (++tries_[task] > lacks_[task]) return {std::to_string(task), std::nullopt};
    if (GetParam().told == Told::by_exception) throw std::bad_alloc();
    return {"", std::nullopt, true};
  }

  const std::thread::id caller_ = std::this_thread::get_id();
  Gate all_here_;
  std::atomic<int> here_ = 0;
  Numbers lacks_;
  Numbers tries_;
  std::vector<std::string> answers_;
  Numbers finished_;
};

TEST_P(WorkThatLacksMemory, IsDoneAgainAlone) {
  lack_memory({1, 0, 1, 1, 0, 0, 0, 0, 0, 0, 0, 1});
  EXPECT_EQ(answers_of({12, 4, {}}), texts_up_to(12));
  EXPECT_EQ(tries(), (Numbers{2, 1, 2, 2, 1, 1, 1, 1, 1, 1, 1, 2}));
}

TEST_P(WorkThatLacksMemory, IsGivenUpWhenItLacksMemoryAlone) {
  lack_memory({2, 0, 2, 0});
  EXPECT_EQ(answers_of({4, 4, {}}),
            (std::vector<std::string>{"no memory for 0", "1", "no memory for 2", "3"}));
  EXPECT_EQ(tries(), (Numbers{2, 1, 2, 1}));
}

TEST_P(WorkThatLacksMemory, IsDoneOnceByOneThread) {
  lack_memory({0, 0, 1});
  EXPECT_EQ(answers_of({5, 1, {}}),
            (std::vector<std::string>{"0", "1", "no memory for 2", "3", "4"}));
  EXPECT_EQ(tries()[2], 1U);
}
INSTANTIATE_TEST_SUITE_P(Table, WorkThatLacksMemory, testing::ValuesIn(kLackCases),
                         testing_support::ByRule());

// A pipe cannot be read a second time, so it is read while no other task takes memory.
TEST(WorkInOrder, WorksOnceAndAloneOnTasksThatShare) {
  std::atomic<int> under_way = 0;
  std::atomic<int> tries = 0;
  std::vector<std::string> problems;
  const auto work = [&](std::size_t task) {
    const bool is_shared = task == 1 || task == 2;
    const bool is_alone = ++under_way == 1;
    if (is_shared) {
      ++tries;
      EXPECT_TRUE(is_alone);
    }
    std::this_thread::yield();
    --under_way;
    return Answer{"", std::nullopt, is_shared};
  };
  work_in_order({40, 4, {1, 2}}, {work,
                                  [&](std::size_t, const Answer& answer) {
                                    problems.push_back(answer.lacked_memory ? "no memory" : "none");
                                    return true;
                                  },
                                  do_nothing});
  EXPECT_EQ(tries, 2);
  std::vector<std::string> expected(40, "none");
  expected[1] = expected[2] = "no memory";
  EXPECT_EQ(problems, expected);
}

// --- threads -------------------------------------------------------------------------------------

struct ThreadCase {
  const char* rule;
  std::size_t num_jobs;
  std::size_t num_files;
  ProcessLimits limits;
  std::size_t num_threads;
};
std::ostream& operator<<(std::ostream& out, const ThreadCase& row) { return out << row.rule; }

constexpr std::size_t kAnyMemory = std::numeric_limits<std::size_t>::max();
constexpr std::size_t kMegabyte = 1'048'576;

const ThreadCase kThreadCases[] = {
    {"OneForEachJob", 8, 300, {1024, kAnyMemory}, 8},
    {"NoMoreThanFiles", 8, 3, {1024, kAnyMemory}, 3},
    {"NoMoreThanHalfOfTheDescriptors", 256, 300, {40, kAnyMemory}, 20},
    {"HalfIsRoundedDown", 256, 300, {41, kAnyMemory}, 20},
    {"OneForEachHalfGigabyte", 8, 300, {1024, 1536 * kMegabyte}, 3},
    {"HalfGigabytesAreRoundedDown", 8, 300, {1024, 1536 * kMegabyte - 1}, 2},
    {"OneAtLeastWithoutMemory", 8, 300, {1024, 0}, 1},
    {"OneAtLeastWithoutDescriptors", 8, 300, {1, kAnyMemory}, 1},
    {"OneAtLeastWithoutFiles", 8, 0, {1024, kAnyMemory}, 1},
};

class ThreadCount : public testing::TestWithParam<ThreadCase> {};
TEST_P(ThreadCount, IsTheLeastOfTheLimits) {
  const ThreadCase& row = GetParam();
  EXPECT_EQ(thread_count(row.num_jobs, row.num_files, row.limits), row.num_threads);
}
INSTANTIATE_TEST_SUITE_P(Table, ThreadCount, testing::ValuesIn(kThreadCases),
                         testing_support::ByRule());

TEST(AvailableProcessors, AreThoseThatTheProcessMayUse) {
  cpu_set_t all;
  ASSERT_EQ(sched_getaffinity(0, sizeof all, &all), 0);
  EXPECT_EQ(available_processors(), static_cast<std::size_t>(CPU_COUNT(&all)));
  int first = 0;
  while (!CPU_ISSET(first, &all)) ++first;
  cpu_set_t one;
  CPU_ZERO(&one);
  CPU_SET(first, &one);
  ASSERT_EQ(sched_setaffinity(0, sizeof one, &one), 0);
  EXPECT_EQ(available_processors(), 1U);
  ASSERT_EQ(sched_setaffinity(0, sizeof all, &all), 0);
}

}  // namespace
}  // namespace textio::tool
