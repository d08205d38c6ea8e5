// Concurrent detections: eight threads share one settings object, which none of them may change.
#include <array>
#include <string>
#include <thread>
#include <vector>

#include <gtest/gtest.h>

#include <vltextstream/layout/detect_layout.hpp>
#include <vltextstream/standalone/decoding/utf_text.hpp>
#include "support/temp_folder.hpp"

namespace textio::standalone {
namespace {

using testing_support::TempFolder;

constexpr std::size_t kThreads = 8;
constexpr int kRounds = 25;

struct Input {
  std::string path;
  std::u16string text;
  LayoutMode mode;
  std::size_t num_variables;
};

// One text for each layout, and one with many candidates.
std::vector<Input> inputs(const TempFolder& folder) {
  struct Case {
    const char* text;
    LayoutMode mode;
    std::size_t num_variables;
  };
  const Case cases[] = {
      {"% note\nday,level\n2024-03-01,4\n2024-03-02,5\n2024-03-03,6\n", LayoutMode::delimited, 2},
      {"x    y\n1   22\n333  4\n5 6\n", LayoutMode::space_aligned, 2},
      {"ann lee   rome  1\nbob       oslo  2\ncy de vo  bern  3\ndora      york  4\n",
       LayoutMode::fixed_width, 3},
      {"abc\ndef\nghi\n", LayoutMode::line_reader, 1},
      {"a;b,c|d\n1;2,3|4\n5;6,7|8\n", LayoutMode::delimited, 2},
  };
  std::vector<Input> list;
  for (const Case& one : cases) {
    const std::string name = "t" + std::to_string(list.size());
    list.push_back({folder.file(name, one.text), from_utf8(one.text), one.mode, one.num_variables});
  }
  return list;
}

TEST(ConcurrentDetections, WithTheSameSettingsFindWhatEachFindsAlone) {
  const TempFolder folder;
  const std::vector<Input> list = inputs(folder);
  DetectSettings settings;
  settings.options.comment_style = {u"%"};
  settings.options.date_locale = u"de_DE";
  settings.trace = true;
  const DetectSettings& shared = settings;

  std::array<std::size_t, kThreads> wrong{};
  std::vector<std::thread> threads;
  for (std::size_t t = 0; t < kThreads; ++t) {
    threads.emplace_back([&, t] {
      for (int round = 0; round < kRounds; ++round) {
        for (std::size_t i = 0; i < list.size(); ++i) {
          const Input& input = list[(i + t) % list.size()];
          const Layout of_text = detect_layout(input.text, shared);
          const Layout of_file = detect_layout(input.path, shared);
          for (const Layout* layout : {&of_text, &of_file}) {
            if (layout->mode != input.mode) ++wrong[t];
            if (layout->num_variables != input.num_variables) ++wrong[t];
          }
        }
      }
    });
  }
  for (std::thread& thread : threads) thread.join();
  for (std::size_t t = 0; t < kThreads; ++t) EXPECT_EQ(wrong[t], 0U) << "thread " << t;
}

}  // namespace
}  // namespace textio::standalone
