// Detects the layout of one file many times, and prints what a call takes, as JSON in microseconds.
//   detect_calls FILE TIMES
// `least` and `median` are of processor time, so that other programs matter less.
#include <algorithm>
#include <cstdlib>
#include <ctime>
#include <exception>
#include <iostream>
#include <string>
#include <vector>

#include <vltextstream/layout/detect_layout.hpp>

namespace {

double cpu_microseconds() {
  timespec now{};
  ::clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &now);
  return static_cast<double>(now.tv_sec) * 1e6 + static_cast<double>(now.tv_nsec) * 1e-3;
}

void measure(const std::string& path, std::size_t times) {
  std::vector<double> took(times);
  for (double& each : took) {
    const double began = cpu_microseconds();
    const auto layout = textio::standalone::detect_layout(path);
    each = cpu_microseconds() - began;
  }
  std::sort(took.begin(), took.end());
  std::cout << R"({"least": )" << took.front() << R"(, "median": )" << took[times / 2] << "}\n";
}

}  // namespace

int main(int argc, char** argv) {
  if (argc != 3) return 2;
  try {
    measure(argv[1], std::max(1UL, std::strtoul(argv[2], nullptr, 10)));
  } catch (const std::exception& error) {
    std::cerr << error.what() << '\n';
    return 1;
  }
  return 0;
}
