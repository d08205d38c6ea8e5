// Tasks in several threads, their answers in the order of the tasks.
//
//   work_in_order({files.size(), 8, {}},
//                 {.work = [&](std::size_t task) { return answer_for(files[task]); },
//                  .deliver = [&](std::size_t, const Answer& answer) { return print(answer); },
//                  .finished = [&](std::size_t count) { progress.show(count); }});
//
// An answer is delivered as soon as all answers before it are. The threads work ahead, but not far:
// see kMostAhead and kMostWaitingBytes.
//
// The answers are those of one thread: a task that runs out of memory beside others is worked on
// again when no other is under way, and that answer counts.
//
// Errors     what `work` throws is thrown again when its task's turn comes, except std::bad_alloc,
//            which is an answer that lacked memory; what `deliver` and `finished` throw is passed
//            on. The tasks under way are waited for, and no other is begun.
// Cost       memory for one task per thread and for the answers that wait, however many tasks there
//            are.
// Threads    `work` is called in several threads, `deliver` and `finished` in the calling one.
#pragma once

#include <cstddef>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include <vltextstream/layout/layout.hpp>

namespace textio::tool {

// The result for one file: a text or its layout, or the reason why there is none.
struct Answer {
  std::string text;
  std::optional<std::string> problem;

  // There was no memory, not even for the description of the problem.
  bool lacked_memory = false;

  // In place of a text that would be long: what it is written from when its turn comes.
  std::shared_ptr<const standalone::Layout> layout = nullptr;
  std::size_t layout_bytes = 0;

  // No table was found, or not with confidence.
  bool is_doubtful = false;

  // Besides a layout: what the file is if it holds no table.
  std::string file_kind = {};

  std::size_t held_bytes() const { return text.size() + layout_bytes; }
};

struct WorkPlan {
  std::size_t num_tasks = 0;

  // The most threads. With one, or when the system gives none, the calling thread works.
  std::size_t num_threads = 1;

  // Tasks, in ascending order, that share something or can be worked on only once. The calling
  // thread works on each when its turn comes and no other task is under way.
  std::vector<std::size_t> one_by_one;
};

// A task is begun only if it is among the next kMostAhead from the one whose turn it is, and only
// while the finished answers that wait hold less than kMostWaitingBytes in total.
inline constexpr std::size_t kMostAhead = 64;
inline constexpr std::size_t kMostWaitingBytes = 16'777'216;

struct WorkSteps {
  std::function<Answer(std::size_t task)> work;

  // In the order of the tasks. Returns whether to go on; otherwise no other task is begun.
  std::function<bool(std::size_t task, const Answer&)> deliver;

  // Called at irregular times; the number never falls.
  std::function<void(std::size_t num_finished)> finished;
};

void work_in_order(const WorkPlan& plan, const WorkSteps& steps);

// What the process may have.
struct ProcessLimits {
  std::size_t num_descriptors;
  std::size_t memory_bytes;  // address space; the largest number when there is no limit
};

// Address space for one thread: its detection, its answer, its stack and its heap.
inline constexpr std::size_t kMemoryOfAThread = 536'870'912;

// The number of threads for this number of files: one for each job and at least one, but no more
// than there are files, than half of the descriptors (each thread has one file open), and than the
// memory has room for.
std::size_t thread_count(std::size_t num_jobs, std::size_t num_files, const ProcessLimits& limits);

// How many processors this process may run on, at least 1.
std::size_t available_processors();

inline constexpr std::size_t kMostJobs = 256;

// The same within the limits of this process; without a number of jobs, one for each processor, at most kMostJobs.
std::size_t threads_for(std::optional<std::size_t> num_jobs, std::size_t num_files);

}  // namespace textio::tool
