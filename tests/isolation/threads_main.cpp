// Eight threads that share everything that may be shared, and that make the first calls.
//   threads_main DETECTIONS        this many in each thread; fails on a wrong result
//
// Objects that the first call makes are made here by eight simultaneous first calls. Nothing may
// run before that and make the first call, so this is not a GoogleTest program. These are all
// function-local statics of the library and its host:
//
//   default_line_endings()    options/parser_options.cpp
//   empty_field()             strategy/field.cpp
//   blank_delimiters()        strategy/space_aligned_strategy.cpp
//   hxArray::as(), by kind    standalone/services/array.cpp
//   LocaleCache               standalone/dates/date_locale.cpp
#include <array>
#include <atomic>
#include <cmath>
#include <cstdlib>
#include <iostream>
#include <iterator>
#include <limits>
#include <optional>
#include <string>
#include <thread>
#include <vector>

#include <vltextstream/detection/strategy_selector.hpp>
#include <vltextstream/host/array.hpp>
#include <vltextstream/layout/detect_layout.hpp>
#include <vltextstream/standalone/services/array.hpp>
#include <vltextstream/strategy/field_tokenizer.hpp>
#include <vltextstream/strategy/space_aligned_strategy.hpp>

namespace {

using namespace textio;
using standalone::DetectSettings;
using standalone::Layout;
using standalone::LayoutMode;

constexpr std::size_t kThreads = 8;

std::atomic<int> wrong_answers = 0;

void expect(bool holds, const char* what) {
  if (holds) return;
  if (wrong_answers++ == 0) std::cerr << what << '\n';
}

struct Input {
  std::u16string text;
  LayoutMode mode;
  std::size_t num_variables;
};

// One text for each layout.
const Input kInputs[] = {
    {u"% note\nday,level\n2024-03-01,4\n2024-03-02,5\n2024-03-03,6\n", LayoutMode::delimited, 2},
    {u"x    y\n1   22\n333  4\n5 6\n", LayoutMode::space_aligned, 2},
    {u"ann lee   rome  1\nbob       oslo  2\ncy de vo  bern  3\ndora      york  4\n",
     LayoutMode::fixed_width, 3},
    {u"abc\ndef\nghi\n", LayoutMode::line_reader, 1},
};

// What all threads read and none may change. Made after the first calls.
struct Shared {
  Shared() {
    settings.options.comment_style = {u"%"};
    settings.options.date_locale = u"de_DE";
  }

  DetectSettings settings;
  const FieldTokenizer tokenizer{{u",", u"::"}, {u"\r\n", u"\n"}};
  const std::u16string fields = u"a,b::\"c,d\",e\n";
};
std::optional<Shared> shared;

// --- first calls -------------------------------------------------------------------------------

const standalone::Array kNumber = standalone::make_array(7.0);
const standalone::Array kText = standalone::make_array(u"text");

const void* first_line_endings() { return parser::default_line_endings().data(); }
const void* first_empty_field() { return &empty_field(); }

// For the elements of another class, an array returns none; for each kind.
const void* first_empty_kinds() {
  expect(hxGetLogicals(kNumber.get()) == nullptr, "logicals of a number");
  expect(get_ustring(kNumber.get()).empty(), "text of a number");
  expect(get_ustring_array(kNumber.get()).empty(), "cells of a number");
  expect(std::isnan(hxGetScalar(kText.get())), "value of a text");
  return nullptr;
}

const void* first_blank_delimiters() {
  const SpaceAlignedStrategy strategy(shared->settings.options);
  const std::u16string& text = kInputs[1].text;
  expect(strategy.get_line_extent({text.data(), text.size()}, 0).field.length == 6, "blanks");
  return nullptr;
}

// A locale that has not been used before.
const void* first_locale() {
  DetectSettings settings = shared->settings;
  settings.options.date_locale = u"fr_FR";
  const Layout layout = standalone::detect_layout(u"a;b\n1 mars 2024;4\n2 mars 2024;5\n", settings);
  expect(layout.num_variables == 2, "a French date");
  return nullptr;
}

using FirstCall = const void* (*)();

// --- threads -----------------------------------------------------------------------------------

// Runs `work(0)` to `work(7)` in parallel. None begins before all threads exist. They wait for one
// another without synchronising, so that the sanitizer sees only the synchronisation of the
// library.
template <typename Work>
void side_by_side(Work work) {
  std::atomic<std::size_t> waiting = kThreads;
  std::vector<std::thread> threads;
  for (std::size_t i = 0; i < kThreads; ++i) {
    threads.emplace_back([i, &waiting, &work] {
      waiting.fetch_sub(1, std::memory_order_relaxed);
      while (waiting.load(std::memory_order_relaxed) > 0) std::this_thread::yield();
      work(i);
    });
  }
  for (std::thread& thread : threads) thread.join();
}

// All threads get the same object.
void call_first(FirstCall first_call) {
  std::array<const void*, kThreads> found{};
  side_by_side([&](std::size_t thread) { found[thread] = first_call(); });
  for (const void* place : found) expect(place == found[0], "an object was made twice");
}

// --- detections --------------------------------------------------------------------------------

void detect(const Input& input) {
  const parser::options& options = shared->settings.options;
  const Field text(input.text.data(), input.text.size());
  const auto all_lines = std::numeric_limits<unsigned long>::max();
  const auto winner = detection::StrategySelector(options).pick_strategy(text, all_lines);
  expect(winner->mode() == static_cast<int>(input.mode), "mode of a strategy");
}

void detect_whole(const Input& input) {
  const Layout layout = standalone::detect_layout(input.text, shared->settings);
  expect(layout.mode == input.mode, "mode of a layout");
  expect(layout.num_variables == input.num_variables, "number of variables");
}

// With one tokenizer, and so one set of delimiters and one of line endings, for all threads.
void tokenize() {
  const Field text(shared->fields.data(), shared->fields.size());
  const std::size_t ends[] = {1, 3, 10, 12};
  std::size_t pos = 0;
  for (const std::size_t end : ends) {
    const FieldExtent field = shared->tokenizer.tokenize(text, pos);
    expect(pos + field.field.length == end, "end of a field");
    pos = field.next;
  }
}

void run(std::size_t thread, std::size_t detections) {
  for (std::size_t i = 0; i < detections; ++i) {
    const Input& input = kInputs[(thread + i) % std::size(kInputs)];
    i % 2 == 0 ? detect(input) : detect_whole(input);
    tokenize();
  }
}

}  // namespace

int main(int argc, char** argv) {
  const int detections = argc == 2 ? std::atoi(argv[1]) : 0;
  if (detections < 1) {
    std::cerr << "usage: threads_main DETECTIONS\n";
    return 2;
  }
  call_first(first_line_endings);
  call_first(first_empty_field);
  shared.emplace();
  call_first(first_empty_kinds);
  call_first(first_blank_delimiters);
  call_first(first_locale);
  side_by_side([&](std::size_t thread) { run(thread, static_cast<std::size_t>(detections)); });
  return wrong_answers == 0 ? 0 : 1;
}
