// Detections through the front header that run out of memory: from a text, and from packed bytes.
#include <memory>
#include <sstream>
#include <stdexcept>
#include <string>

#include <gtest/gtest.h>

#include <vltextstream/detect.hpp>
#include "faults/failing_memory.hpp"
#include "support/archives.hpp"

namespace textio {
namespace {

using testing_support::Attempt;
using testing_support::expect_to_survive_failing_memory;
using testing_support::gzip_of;

constexpr const char* kTable =
    "a title that is longer than a short string\n"
    "a column whose name is longer than a short string;flow\n"
    "m;metres in each second\n1;2\n3;4\n5;6\n";

Known known_of_table() {
  Known known;
  known.delimiters = {";"};
  known.comment_marker = "a comment that is longer than a short string";
  known.line_endings = {"\n", "<the end of a line, longer than a short string>"};
  return known;
}

class FrontDetection : public Attempt {
 public:
  explicit FrontDetection(bool is_packed) : is_packed_(is_packed) {}

  void call() override {
    found_ = is_packed_ ? detect_bytes(packed_, known_) : detect_text(kTable, known_);
  }
  std::string answer() override {
    std::ostringstream out;
    out << found_.dialect << ' ' << found_.encoding << ' ' << found_.names_reason;
    for (const Column& column : found_.columns) out << '|' << column.name << ' ' << column.unit;
    return out.str();
  }

 private:
  bool is_packed_;
  std::string packed_ = gzip_of(kTable);
  Known known_ = known_of_table();
  Detection found_;
};

TEST(DetectMemory, RunsOutInATextDetection) {
  expect_to_survive_failing_memory([] { return std::make_unique<FrontDetection>(false); });
}

TEST(DetectMemory, RunsOutInPackedBytes) {
  expect_to_survive_failing_memory([] { return std::make_unique<FrontDetection>(true); });
}

// The message of a refusal is allocated, too.
class RefusedKnown : public Attempt {
 public:
  void call() override {
    try {
      detect_text("1,2\n", {.widths = {{0}}});
    } catch (const std::invalid_argument& error) {
      message_ = error.what();
    }
  }
  std::string answer() override { return message_; }

 private:
  std::string message_;
};

TEST(DetectMemory, RunsOutInARefusal) {
  RefusedKnown undisturbed;
  undisturbed.call();
  EXPECT_EQ(undisturbed.answer(), "Known::widths: expected 1 to 4194304, got 0");
  expect_to_survive_failing_memory([] { return std::make_unique<RefusedKnown>(); });
}

}  // namespace
}  // namespace textio
