// Whole detections.
//
//   pick_strategy/<shape>/<sample>       the selection alone, over a text in memory
//   detect_layout/<shape>/<sample>       a file in the page cache: open, decode, select, describe
//   detect_encoded/<text>/<sample>       the same by encoding, which is given
//   find_encoding/<text>/100_lines       and here found
//   detect_small_file                    10 KB, nothing given
//   detect_large_file                    100 MB of the same table
//   assess_small_file, assess_large_file 10 KB and 4 MB of it, chosen by the assessment; all of the
//                                        others are chosen by the cascade
//
// A selection reads no more than the lines that it samples. Of a file as much is read as the lines
// need, at least 131,072 characters of a longer one. `candidates` are the strategies that were built.
#include <algorithm>
#include <functional>
#include <limits>
#include <memory>
#include <string>

#include <vltextstream/vltextstream.hpp>

#include "bench/encoded_texts.hpp"
#include "bench/measure.hpp"
#include "bench/shapes.hpp"
#include "support/temp_file.hpp"

namespace textio::bench {
namespace {

using standalone::DetectSettings;
using testing_support::TempFile;

constexpr unsigned long kAllLines = std::numeric_limits<unsigned long>::max();

struct Sample {
  const char* name;
  unsigned long lines;
};
constexpr Sample kSamples[] = {{"100_lines", 100}, {"1000_lines", 1000}, {"all_lines", kAllLines}};

// The bytes from the start of `text` to the end of the last line that `strategy` has sampled.
std::size_t sampled_bytes(const Strategy& strategy, const Field& text) {
  std::size_t end = 0;
  for (const Field& line : strategy.lines()) {
    if (line.length == 0) continue;
    end = std::max(end, static_cast<std::size_t>(line.data + line.length - text.data));
  }
  return end * sizeof(char16_t);
}

Step pick_strategy(const Shape& shape, unsigned long num_lines) {
  const auto units = std::make_shared<std::u16string>(shape.make(kSampleUnits));
  const auto options = std::make_shared<parser::options>();
  const auto pick = [=](detection::SelectionTrace* trace) {
    const detection::StrategySelector selector(*options);
    const Field text(units->data(), units->size());
    return trace ? selector.pick_strategy(text, num_lines, *trace)
                 : selector.pick_strategy(text, num_lines);
  };
  detection::SelectionTrace trace;
  const auto winner = pick(&trace);
  return {[pick] { keep(pick(nullptr)); },
          sampled_bytes(*winner, Field(units->data(), units->size())),
          {{"candidates", static_cast<double>(trace.candidates.size())},
           {"lines", static_cast<double>(winner->lines().size())}}};
}

// The settings are made anew for each call, as a program does that looks at one file.
Step detect_file(const std::string& bytes, const std::function<DetectSettings()>& make_settings) {
  const auto file = std::make_shared<TempFile>(bytes);
  const std::string path = standalone::to_utf8(file->path());
  DetectSettings traced = make_settings();
  traced.trace = true;
  const standalone::Layout layout = standalone::detect_layout(path, traced);
  return {[file, path, make_settings] { keep(standalone::detect_layout(path, make_settings())); },
          bytes.size(),
          {{"candidates", static_cast<double>(layout.trace->candidates.size())},
           {"lines", static_cast<double>(layout.lines_sampled)}}};
}

std::function<DetectSettings()> settings_for(const char* encoding, unsigned long num_lines) {
  return [=] {
    DetectSettings settings;
    settings.judge = standalone::Judge::cascade;
    settings.describe_columns = false;
    settings.num_lines = num_lines;
    settings.encoding = encoding;
    return settings;
  };
}

DetectSettings default_settings() { return {}; }

DetectSettings cascade_settings() {
  DetectSettings settings;
  settings.judge = standalone::Judge::cascade;
  settings.describe_columns = false;
  return settings;
}

// A table of 20 columns.
Step detect_file_of(std::size_t bytes, const std::function<DetectSettings()>& make_settings) {
  return detect_file(ascii_bytes(find_shape("regular")->make(bytes)), make_settings);
}

void add_all() {
  for (const Sample& sample : kSamples) {
    for (const Shape& shape : data_shapes()) {
      const std::string name = std::string("/") + shape.name + "/" + sample.name;
      add_step("pick_strategy" + name, [&] { return pick_strategy(shape, sample.lines); });
      add_step("detect_layout" + name, [&] {
        return detect_file(ascii_bytes(shape.make(kSampleUnits)),
                           settings_for("UTF-8", sample.lines));
      });
    }
    for (const EncodedText& text : encoded_texts()) {
      add_step(std::string("detect_encoded/") + text.name + "/" + sample.name, [&] {
        return detect_file(text.make(kSampleUnits), settings_for(text.encoding, sample.lines));
      });
    }
  }
  for (const EncodedText& text : encoded_texts()) {
    add_step(std::string("find_encoding/") + text.name + "/100_lines",
             [&] { return detect_file(text.make(kSampleUnits), cascade_settings); });
  }
  add_step("detect_small_file", [] { return detect_file_of(10'000, cascade_settings); });
  add_step("detect_large_file", [] { return detect_file_of(100'000'000, cascade_settings); });
  add_step("assess_small_file", [] { return detect_file_of(10'000, default_settings); });
  add_step("assess_large_file", [] { return detect_file_of(4'000'000, default_settings); });
}

}  // namespace
}  // namespace textio::bench

int main(int argc, char** argv) { return textio::bench::run(argc, argv, textio::bench::add_all); }
