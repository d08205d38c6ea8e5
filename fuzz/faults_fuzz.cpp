// A whole detection from a stream in which an allocation or a read fails. The result is
// std::bad_alloc or FileError, nothing is leaked, no stream stays open, and the next detection
// gives the undisturbed result.
//
// The program defines operators new that count and can fail, and opens the streams itself.
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <new>
#include <optional>
#include <string>
#include <string_view>
#include <utility>

#include <vltextstream/host/file_layer.hpp>
#include <vltextstream/layout/detect_layout.hpp>
#include <vltextstream/standalone/files/memory_bytes.hpp>
#include "differential/comparison.hpp"
#include "fuzz/check.hpp"
#include "fuzz/choices.hpp"
#include "fuzz/layout_text.hpp"
#include "fuzz/memory_file.hpp"

namespace textio::fuzz {
namespace {

// For this thread only: the fuzzer has others.
struct Allocations {
  std::size_t asked = 0;
  long alive = 0;
  std::size_t failing = 0;  // the number of the one that fails, 0 for none
  bool all_after_it = false;
};
thread_local Allocations allocations;

void* allocate(std::size_t size) noexcept {
  Allocations& own = allocations;
  ++own.asked;
  const bool is_later = own.all_after_it && own.asked > own.failing;
  if (own.failing != 0 && (own.asked == own.failing || is_later)) return nullptr;
  void* const block = std::malloc(size == 0 ? 1 : size);
  if (block != nullptr) ++own.alive;
  return block;
}

void* allocate_or_throw(std::size_t size) {
  void* const block = allocate(size);
  if (block == nullptr) throw std::bad_alloc();
  return block;
}

void release(void* block) noexcept {
  if (block != nullptr) --allocations.alive;
  std::free(block);
}

const char* const kEncodings[] = {"UTF-8", "UTF-16", "Shift_JIS", "GB18030"};

// The streams that open_file returns.
MemoryFile* served_file = nullptr;

}  // namespace
}  // namespace textio::fuzz

// All of them are replaced, so that no block passes from one pair of operators to another.
void* operator new(std::size_t size) { return textio::fuzz::allocate_or_throw(size); }
void* operator new[](std::size_t size) { return textio::fuzz::allocate_or_throw(size); }
void* operator new(std::size_t size, const std::nothrow_t& /*tag*/) noexcept {
  return textio::fuzz::allocate(size);
}
void* operator new[](std::size_t size, const std::nothrow_t& /*tag*/) noexcept {
  return textio::fuzz::allocate(size);
}
void operator delete(void* block) noexcept { textio::fuzz::release(block); }
void operator delete[](void* block) noexcept { textio::fuzz::release(block); }
void operator delete(void* block, std::size_t /*size*/) noexcept { textio::fuzz::release(block); }
void operator delete[](void* block, std::size_t /*size*/) noexcept { textio::fuzz::release(block); }
void operator delete(void* block, const std::nothrow_t& /*tag*/) noexcept {
  textio::fuzz::release(block);
}
void operator delete[](void* block, const std::nothrow_t& /*tag*/) noexcept {
  textio::fuzz::release(block);
}

std::FILE* textio::open_file(const std::u16string& /*path*/, const char* /*mode*/) {
  return textio::fuzz::served_file->open();
}

// The file layer also opens bytes in memory; here, all inputs come by path.
std::FILE* textio::standalone::open_bytes(std::string_view /*bytes*/) { std::abort(); }

namespace textio::fuzz {
namespace {

struct Outcome {
  enum Kind { answer, no_memory, no_file } kind;
  std::string text;  // of the result
  std::size_t allocations;
  std::size_t reads;
};

// A detection, after which the numbers of living allocations and of open streams must be as before.
// Any exception other than the two documented ones passes, and ends the fuzzer.
Outcome detect(MemoryFile& file, const standalone::DetectSettings& settings) {
  static const std::string path = "a file in memory";
  served_file = &file;
  const std::size_t asked = allocations.asked;
  const std::size_t reads = file.reads();
  const long alive = allocations.alive;
  Outcome outcome{Outcome::no_memory, {}, 0, 0};
  std::optional<standalone::Layout> layout;
  try {
    layout = standalone::detect_layout(path, settings);
    outcome.kind = Outcome::answer;
  } catch (const std::bad_alloc&) {
  } catch (const standalone::FileError&) {
    outcome.kind = Outcome::no_file;
  }
  outcome.allocations = allocations.asked - asked;
  outcome.reads = file.reads() - reads;
  allocations.failing = 0;
  require_equal("open streams", file.open_streams(), 0);
  if (layout) outcome.text = describe(*layout);
  layout.reset();
  const long of_outcome = outcome.text.empty() ? 0 : 1;
  require_equal("living allocations", allocations.alive - of_outcome, alive);
  return outcome;
}

void check_same_answer(const char* what, const Outcome& got, const Outcome& expected) {
  require(got.kind == Outcome::answer, what);
  require_same_lines(what, got.text, expected.text);
}

void fail_allocation(std::size_t nth, bool all_after_it) {
  allocations.failing = allocations.asked + nth;
  allocations.all_after_it = all_after_it;
}

// The host keeps what it initialised once, which is no leak. What the first detection keeps exists
// before any is counted.
void warm_up() {
  standalone::DetectSettings settings;
  MemoryFile file("a,2024-03-01 10:00,\"x\",1 Mar 2024\nb,2024-03-02 11:00,\xE9,2 Mar 2024\n", 0);
  served_file = &file;
  standalone::detect_layout(std::string("warm"), settings);
  describe(standalone::Layout());
}

}  // namespace
}  // namespace textio::fuzz

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using namespace textio;
  using namespace textio::fuzz;
  static const bool is_warm = (warm_up(), true);
  static_cast<void>(is_warm);
  const TextInput input(data, size);
  Input more = input.more();
  const std::size_t piece = more.byte();
  const bool is_read_fault = more.below(4) == 3;
  const bool all_after_it = more.flag();
  const std::size_t place = more.byte() * 256U + more.byte();

  standalone::DetectSettings settings;
  settings.options = differential::library_options(input.choices());
  settings.num_lines = input.choices().num_lines;
  settings.trace = more.flag();
  if (more.flag()) settings.encoding = more.one_of(kEncodings);

  MemoryFile file(input.bytes(), piece);
  const Outcome undisturbed = detect(file, settings);
  require(undisturbed.kind == Outcome::answer, "without a fault there is an answer");
  if (is_read_fault) {
    const std::size_t nth = 1 + place % undisturbed.reads;
    file.fail_read(nth, all_after_it);
    const Outcome disturbed = detect(file, settings);
    require(disturbed.kind != Outcome::no_memory, "a failed read is no lack of memory");
    require(!all_after_it || disturbed.kind == Outcome::no_file, "a file that fails is reported");
    file.fail_read(0, false);
  } else {
    const std::size_t nth = 1 + place % undisturbed.allocations;
    fail_allocation(nth, all_after_it);
    const Outcome disturbed = detect(file, settings);
    require(disturbed.kind != Outcome::no_file, "lack of memory is no failed read");
    require(!all_after_it || disturbed.kind == Outcome::no_memory, "lack of memory is reported");
    if (disturbed.kind == Outcome::answer) {
      check_same_answer("answer in spite of a failed allocation", disturbed, undisturbed);
    }
  }
  check_same_answer("answer of another try", detect(file, settings), undisturbed);
  return 0;
}
