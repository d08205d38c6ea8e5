// Detections and refused options with only the library and a minimal host, for a test that watches
// the system calls between two marks.
//   isolated_main FILE...
// Prints the results. Reading an environment variable ends the program.
#include <cstdio>
#include <cstdlib>
#include <limits>
#include <stdexcept>
#include <string>

#include <unistd.h>

#include <vltextstream/vltextstream.hpp>

// These replace the functions of the C library, for the library and for libstdc++ as well.
extern "C" {

[[noreturn]] static void environment_was_read(const char* name) {
  std::fprintf(stderr, "the environment was asked for %s\n", name);
  std::abort();
}

__attribute__((visibility("default"))) char* getenv(const char* name) noexcept {
  environment_was_read(name);
}
__attribute__((visibility("default"))) char* secure_getenv(const char* name) noexcept {
  environment_was_read(name);
}
}

class hxArray {};

namespace {

using namespace textio;

void append(std::string& answer, const Strategy& strategy) {
  answer += std::to_string(strategy.mode()) + ' ' + std::to_string(strategy.header_lines()) + ' ' +
            std::to_string(strategy.num_variables()) + ' ' +
            std::to_string(strategy.lines().size()) + '\n';
}

void detect(const std::string& path, std::string& answer) {
  const parser::options options;
  FileTextSource source;
  source.init_stream(std::u16string(path.begin(), path.end()), "ISO-8859-1");
  const TextStream stream(&source);
  const Field sample = get_fixed_stream(stream, options.line_endings);
  const auto all_lines = std::numeric_limits<unsigned long>::max();
  detection::SelectionTrace trace;
  append(answer, *detection::StrategySelector(options).pick_strategy(sample, all_lines, trace));
}

void detect_in_memory(std::string& answer) {
  const std::u16string text = u"ann lee   rome  1\nbob       oslo  2\ncy de vo  bern  3\n";
  MemoryTextSource source(text.data(), text.size());
  const TextStream stream(&source);
  const parser::options options;
  const Field sample = get_fixed_stream(stream, options.line_endings);
  append(answer, *detection::StrategySelector(options).pick_strategy(sample, 100));
}

void refuse_an_option(std::string& answer) {
  const hxArray array;
  const hxArray* pair[] = {&array, &array};
  parser::options record;
  try {
    options::set_parser_options(pair, 2, record);
  } catch (const options::UnknownParameter& error) {
    answer += error.identifier() + '\n';
  }
}

void miss_a_file(std::string& answer) {
  FileTextSource source;
  try {
    source.init_stream(u"/no/such/file", "ISO-8859-1");
  } catch (const std::runtime_error& error) {
    answer += error.what();
    answer += '\n';
  }
}

}  // namespace

int main(int argc, char** argv) {
  std::string answer;
  answer.reserve(4096);
  ::access("/mark/begin", F_OK);
  for (int i = 1; i < argc; ++i) detect(argv[i], answer);
  detect_in_memory(answer);
  refuse_an_option(answer);
  miss_a_file(answer);
  ::access("/mark/end", F_OK);
  std::fputs(answer.c_str(), stdout);
}
