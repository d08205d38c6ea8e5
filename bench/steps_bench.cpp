// What `scripts/bench-steps` measures of the commits that made something faster: a few figures that
// each of them can give. The script compiles this file with the headers and libraries of each
// commit, so it uses only what was public in all of them.
//
//   steps_bench TEXTS TOOL [--benchmark_...]
//
// TEXTS is the folder that step_texts wrote, TOOL the program `vltext`.
#include <fstream>
#include <iostream>
#include <iterator>
#include <limits>
#include <memory>
#include <stdexcept>
#include <string>

#include <vltextstream/vltextstream.hpp>

#include "bench/measure.hpp"
#include "bench/run_program.hpp"
#include "bench/step_texts.hpp"

namespace textio::bench {
namespace {

using standalone::DetectSettings;

constexpr unsigned long kAllLines = std::numeric_limits<unsigned long>::max();
constexpr std::size_t kTrapUnits = 16'384;

// The paths of the texts and the tool; main sets them before anything is measured.
struct Places {
  std::string texts;
  std::string tool;
};
Places& places() {
  static Places given;
  return given;
}

std::string path_of(const char* text) { return places().texts + text; }

std::string content_of(const std::string& path) {
  std::ifstream file(path, std::ios::binary);
  if (!file) throw std::runtime_error("cannot open " + path);
  return {std::istreambuf_iterator<char>(file), {}};
}

// For ASCII, one code unit per byte.
std::u16string units_of(const std::string& bytes) { return {bytes.begin(), bytes.end()}; }

Step open_decode_cut(const std::string& path) {
  return {[path = units_of(path)] {
    FileTextSource source;
    source.init_stream(path, "UTF-8");
    const TextStream stream(&source);
    keep(get_fixed_stream(stream, parser::default_line_endings()));
  }};
}

Step pick_strategy(const std::string& path, unsigned long num_lines) {
  const auto text = std::make_shared<std::u16string>(units_of(content_of(path)));
  return {[text, num_lines] {
    const parser::options options;
    const detection::StrategySelector selector(options);
    keep(selector.pick_strategy(Field(text->data(), text->size()), num_lines));
  }};
}

Step detect_file(const std::string& path, const DetectSettings& settings) {
  return {[path, settings] { keep(standalone::detect_layout(path, settings)); }};
}

// A delimiter half as long as the text, which matches almost everywhere up to its last code unit.
Step detect_with_long_delimiter() {
  const auto text = std::make_shared<std::u16string>(kTrapUnits, u'a');
  DetectSettings settings;
  settings.options.delimiters = {std::u16string(kTrapUnits / 2, u'a') + u'b'};
  settings.options.detect_delimiters = false;
  return {[text, settings] { keep(standalone::detect_layout(*text, settings)); }};
}

Step run_tool() {
  Arguments arguments = {places().tool};
  for (std::size_t i = 0; i < kManyTexts; ++i) arguments.push_back(places().texts + many_text(i));
  return {[arguments] { run_or_throw(arguments); }};
}

DetectSettings utf8_settings(unsigned long num_lines) {
  DetectSettings settings;
  settings.encoding = "UTF-8";
  settings.num_lines = num_lines;
  return settings;
}

void add_all() {
  add_step("open_ascii", [] { return open_decode_cut(path_of(kAsciiText)); });
  add_step("open_two_byte", [] { return open_decode_cut(path_of(kTwoByteText)); });
  add_step("pick_100", [] { return pick_strategy(path_of(kRegularText), 100); });
  add_step("pick_all", [] { return pick_strategy(path_of(kRegularText), kAllLines); });
  add_step("pick_quoted", [] { return pick_strategy(path_of(kQuotedText), kAllLines); });
  add_step("pick_56", [] { return pick_strategy(path_of(kAllCandidatesText), kAllLines); });
  add_step("long_delimiter", detect_with_long_delimiter);
  add_step("detect_100", [] { return detect_file(path_of(kRegularText), utf8_settings(100)); });
  add_step("detect_aligned",
           [] { return detect_file(path_of(kAlignedText), utf8_settings(kAllLines)); });
  add_step("detect_small", [] { return detect_file(path_of(kSmallText), {}); });
  add_step("many_files", run_tool, Clock::real);
}

}  // namespace
}  // namespace textio::bench

int main(int argc, char** argv) {
  constexpr int kPlaces = 2;
  if (argc <= kPlaces) {
    std::cerr << "usage: steps_bench TEXTS TOOL [--benchmark_...]\n";
    return 2;
  }
  textio::bench::places() = {std::string(argv[1]) + '/', argv[2]};
  argv[kPlaces] = argv[0];
  return textio::bench::run(argc - kPlaces, argv + kPlaces, textio::bench::add_all);
}
