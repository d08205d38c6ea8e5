// Reads a table and says what it took, as JSON.
//   read_table FILE THREADS            all columns, typed, into memory
//   read_table FILE THREADS --forget   batch after batch; each is forgotten before the next
// `seconds` has passed and `cpu` was used from before the detection until all values are in memory; `peak` is
// the most memory of the process, in bytes; `sum` that of the first column, if it holds integers.
#include <chrono>
#include <cstdint>
#include <cstdlib>
#include <exception>
#include <fstream>
#include <iostream>
#include <optional>
#include <string>
#include <string_view>

#include <sys/resource.h>

#include <vltextstream/reading/table_reader.hpp>

namespace {

using textio::reading::Batch;
using textio::reading::Column;
using textio::reading::ColumnType;
using textio::reading::ReadSettings;

struct Totals {
  std::size_t rows = 0;
  std::size_t columns = 0;
  std::int64_t sum = 0;

  void add(const Batch& batch) {
    rows += batch.num_rows;
    columns = batch.columns.size();
    if (batch.columns.empty() || batch.columns[0].type != ColumnType::integer) return;
    for (const std::int64_t value : batch.columns[0].integers) sum += value;
  }
};

}  // namespace

// The instructions in here are counted.
__attribute__((noinline)) std::optional<textio::reading::Table> read_once(
    const std::string& path, const ReadSettings& settings, bool forgets, Totals& totals) {
  if (!forgets) return textio::reading::read_table(path, settings);
  textio::reading::TableReader reader(path, settings);
  while (const std::optional<Batch> batch = reader.next()) totals.add(*batch);
  return std::nullopt;
}

namespace {

double cpu_seconds() {
  rusage used{};
  ::getrusage(RUSAGE_SELF, &used);
  const auto seconds = [](const timeval& time) {
    return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_usec) * 1e-6;
  };
  return seconds(used.ru_utime) + seconds(used.ru_stime);
}

// The most memory of this program, in bytes. getrusage counts also what the process had before it became this program.
std::size_t peak_bytes() {
  constexpr std::size_t kKilobyte = 1024;
  std::ifstream status("/proc/self/status");
  std::string line;
  while (std::getline(status, line)) {
    if (line.starts_with("VmHWM:")) return std::stoul(line.substr(6)) * kKilobyte;
  }
  return 0;
}

double wall_seconds() {
  return std::chrono::duration<double>(std::chrono::steady_clock::now().time_since_epoch()).count();
}

void run(const std::string& path, unsigned threads, bool forgets) {
  ReadSettings settings;
  settings.num_threads = threads;
  Totals totals;
  const double wall_before = wall_seconds();
  const double cpu_before = cpu_seconds();
  const std::optional<textio::reading::Table> table = read_once(path, settings, forgets, totals);
  const double cpu = cpu_seconds() - cpu_before;
  const double wall = wall_seconds() - wall_before;
  if (table) {
    for (const Batch& batch : table->batches) totals.add(batch);
  }
  std::cout << R"({"seconds": )" << wall << R"(, "cpu": )" << cpu << R"(, "peak": )" << peak_bytes()
            << R"(, "rows": )" << totals.rows << R"(, "columns": )" << totals.columns
            << R"(, "sum": )" << totals.sum << "}\n";
}

}  // namespace

int main(int argc, char** argv) {
  const bool forgets = argc == 4 && std::string_view(argv[3]) == "--forget";
  const unsigned long threads = argc >= 3 ? std::strtoul(argv[2], nullptr, 10) : 0;
  if (threads == 0 || (argc != 3 && !forgets)) {
    std::cerr << "usage: read_table FILE THREADS [--forget]\n";
    return 2;
  }
  try {
    run(argv[1], static_cast<unsigned>(threads), forgets);
  } catch (const std::exception& error) {
    std::cerr << "read_table: " << error.what() << '\n';
    return 1;
  }
}
