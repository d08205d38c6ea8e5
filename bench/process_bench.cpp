// The tool as a separate process, next to the start of a trivial program. Times are measured until
// the process has ended.
//
// `peak_bytes_of_process` is the most memory that the process had in use. It includes what a child
// inherits from this program before it becomes another one, so this program stays small: texts are
// written piece by piece. `jobs_refused` is 1 if the tool does not know --jobs.
#include <fstream>
#include <memory>
#include <stdexcept>
#include <string>

#include "bench/measure.hpp"
#include "bench/run_program.hpp"
#include "bench/shapes.hpp"
#include "support/temp_folder.hpp"

namespace textio::bench {
namespace {

using testing_support::TempFolder;

constexpr std::size_t kSmallFiles = 2000;
constexpr std::size_t kSmallFileBytes = 10'000;
constexpr std::size_t kLargeFileBytes = 100'000'000;
constexpr std::size_t kPieceUnits = 65'536;

// A program that is run repeatedly, and the folder with its files, if there is one.
Step program_step(const Arguments& arguments, std::size_t bytes,
                  const std::shared_ptr<TempFolder>& folder = nullptr) {
  const auto peak = static_cast<double>(run_program(arguments).peak_bytes);
  return {
      [arguments, folder] { run_or_throw(arguments); }, bytes, {{"peak_bytes_of_process", peak}}};
}

Step trivial() { return program_step({TRIVIAL_PROGRAM}, 0); }

std::string regular_table(std::size_t bytes) {
  return ascii_bytes(find_shape("regular")->make(bytes));
}

Step one_small_file() {
  const auto folder = std::make_shared<TempFolder>();
  const std::string bytes = regular_table(kSmallFileBytes);
  return program_step({VLTEXT_PROGRAM, folder->file("small.csv", bytes)}, bytes.size(), folder);
}

Step one_large_file(const Arguments& flags) {
  const auto folder = std::make_shared<TempFolder>();
  const std::string path = folder->path_of("large.csv");
  const std::string piece = regular_table(kPieceUnits);
  std::size_t written = 0;
  std::ofstream file(path, std::ios::binary);
  for (; written < kLargeFileBytes; written += piece.size()) file << piece;
  file.close();
  if (!file) throw std::runtime_error("cannot write " + path);
  Arguments arguments = {VLTEXT_PROGRAM, path};
  arguments.insert(arguments.end(), flags.begin(), flags.end());
  return program_step(arguments, written, folder);
}

Step many_files(const Arguments& flags) {
  const auto folder = std::make_shared<TempFolder>();
  const std::string bytes = regular_table(kSmallFileBytes);
  Arguments arguments = {VLTEXT_PROGRAM};
  arguments.insert(arguments.end(), flags.begin(), flags.end());
  Arguments first = arguments;
  for (std::size_t i = 0; i < kSmallFiles; ++i) {
    arguments.push_back(folder->file(std::to_string(i) + ".csv", bytes));
  }
  first.push_back(arguments.back());
  if (run_program(first).status != 0) {
    return {[folder] {}, 0, {{"jobs_refused", 1}}};
  }
  Step step = program_step(arguments, kSmallFiles * bytes.size(), folder);
  step.notes.emplace_back("files", static_cast<double>(kSmallFiles));
  return step;
}

void add_all() {
  const auto add = [](const std::string& name, std::function<Step()> prepare) {
    add_step("process/" + name, std::move(prepare), Clock::real);
  };
  add("trivial", trivial);
  add("small_file", one_small_file);
  add("large_file", [] { return one_large_file({}); });
  add("large_file_all_lines", [] { return one_large_file({"--lines", "18446744073709551615"}); });
  add("many_files", [] { return many_files({}); });
  add("many_files_jobs_1", [] { return many_files({"--jobs", "1"}); });
  add("many_files_jobs_2", [] { return many_files({"--jobs", "2"}); });
}

}  // namespace
}  // namespace textio::bench

int main(int argc, char** argv) { return textio::bench::run(argc, argv, textio::bench::add_all); }
