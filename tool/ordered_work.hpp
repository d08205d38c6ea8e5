// Tasks in several threads, their answers in the order of the tasks.
//
//   work_in_order({files.size(), 8, {}},
//                 {.work = [&](std::size_t task) { return answer_for(files[task]); },
//                  .deliver = [&](const Answer& answer) { print(answer); },
//                  .finished = [&](std::size_t count) { progress.show(count); }});
//
// The answers are those of one thread: a task that runs out of memory beside others is worked on
// again when no other is under way, and what it gives then counts.
//
// Errors     what `work` throws is thrown again when the turn of its task comes; the tasks that are
//            under way are waited for then, and no other is begun.
// Cost       as many tasks are under way as there are threads, each with memory of its own. An
//            answer waits for those before it, so it should hold no more than what is printed.
// Threads    `work` is called in several threads, `deliver` and `finished` in the calling one.
#pragma once

#include <cstddef>
#include <functional>
#include <optional>
#include <string>
#include <vector>

namespace textio::tool {

// What is printed about one file: a text, or the reason why there is none.
struct Answer {
  std::string text;
  std::optional<std::string> problem;

  // The reason is that there was no memory. To throw std::bad_alloc says the same.
  bool lacked_memory = false;
};

struct WorkPlan {
  std::size_t num_tasks = 0;

  // At most so many threads. With one, or when the system gives none, the calling thread works.
  std::size_t num_threads = 1;

  // Tasks, in ascending order, that share something or can be worked on only once: the calling
  // thread does so, one after the other, when the others are finished.
  std::vector<std::size_t> one_by_one;
};

struct WorkSteps {
  std::function<Answer(std::size_t task)> work;
  std::function<void(const Answer&)> deliver;              // in the order of the tasks
  std::function<void(std::size_t num_finished)> finished;  // now and then; never fewer than before
};

void work_in_order(const WorkPlan& plan, const WorkSteps& steps);

// How many threads look at so many files: one for each job, but no more than there are files. Each
// has one file open, and half of the descriptors that the process may have are left to others.
std::size_t thread_count(std::size_t num_jobs, std::size_t num_files, std::size_t num_descriptors);

// How many processors this process may run on, at least 1.
std::size_t available_processors();

}  // namespace textio::tool
