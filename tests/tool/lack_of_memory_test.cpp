// Memory that runs out in the tool, at each of its allocations.
#include "tool/answers.hpp"

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <functional>
#include <iterator>
#include <optional>
#include <ostream>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include "support/command.hpp"
#include "support/failing_allocator.hpp"
#include "support/rule_name.hpp"
#include "support/temp_folder.hpp"
#include "tool/json_report.hpp"
#include "tool/progress_line.hpp"

namespace textio::tool {
namespace {

using testing::HasSubstr;
using testing::StartsWith;
using testing_support::AllocationFault;
using testing_support::allocations_can_fail;
using testing_support::ByRule;
using testing_support::CommandResult;
using testing_support::FaultKind;
using testing_support::live_blocks;
using testing_support::TempFolder;

using Words = std::vector<std::string>;

// A stream into memory of the C library, which no fault concerns.
class MemoryStream {
 public:
  MemoryStream() : file_(open_memstream(&bytes_, &size_)) {}
  MemoryStream(const MemoryStream&) = delete;
  MemoryStream& operator=(const MemoryStream&) = delete;
  ~MemoryStream() {
    std::fclose(file_);
    std::free(bytes_);
  }

  std::FILE* file() { return file_; }
  std::string text() {
    std::fflush(file_);
    return {bytes_, size_};
  }

 private:
  char* bytes_ = nullptr;
  std::size_t size_ = 0;
  std::FILE* file_;
};

std::string content_of(const std::string& path) {
  std::ifstream file(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(file), {}};
}

std::size_t num_files_in(const std::string& folder) {
  using Entries = std::filesystem::directory_iterator;
  return static_cast<std::size_t>(std::distance(Entries(folder), Entries()));
}

// The tool in this process, with an allocation that fails; with none when `nth` is 0.
CommandResult run_with_fault(const Words& words, std::size_t nth, FaultKind kind, bool& was_met) {
  std::vector<const char*> argv = {"vltext"};
  for (const std::string& word : words) argv.push_back(word.c_str());
  MemoryStream out;
  MemoryStream err;
  const long before = live_blocks();
  int status = -1;
  {
    const AllocationFault fault(nth, kind);
    status = run_tool(static_cast<int>(argv.size()), argv.data(), {out.file(), err.file()});
    was_met = fault.was_met();
  }
  const bool is_alone = words[1] == "1";  // what one thread allocates, another one may free
  if (nth > 0 && is_alone) {
    EXPECT_EQ(live_blocks(), before);
  }
  return {status, out.text(), err.text()};
}

CommandResult undisturbed(const Words& words) {
  bool was_met = false;
  return run_with_fault(words, 0, FaultKind::single, was_met);
}

// Each allocation fails in a run of its own; with clang's address sanitizer, which is slow here, every third one.
#if defined(__has_feature)
#if __has_feature(address_sanitizer)
constexpr std::size_t kStep = 3;
#else
constexpr std::size_t kStep = 1;
#endif
#else
constexpr std::size_t kStep = 1;
#endif

// Calls `check` with the result for each of these allocations that fails, until there is none left to fail.
void for_each_fault(const Words& words, FaultKind kind,
                    const std::function<void(const CommandResult&)>& check) {
  if (!allocations_can_fail()) return;
  undisturbed(words);  // what is set up once and kept
  bool was_met = true;
  for (std::size_t nth = 1; was_met && !testing::Test::HasFailure(); nth += kStep) {
    SCOPED_TRACE(nth);
    const CommandResult result = run_with_fault(words, nth, kind, was_met);
    if (was_met) check(result);
  }
}

struct FormCase {
  const char* rule;
  bool is_json;
  Words options;
};
std::ostream& operator<<(std::ostream& out, const FormCase& row) { return out << row.rule; }

const FormCase kForms[] = {
    {"Words", false, {"--jobs", "1", "--delimiter", ","}},
    {"ExplainedWords", false, {"--jobs", "1", "--explain"}},
    {"Pictures", false, {"--jobs", "1", "--picture", "--color", "never"}},
    {"PicturesInColours", false, {"--jobs", "1", "--color", "always", "--width", "24"}},
    {"Json", true, {"--jobs", "1", "--json", "--option", "Delimiter:=[\",\",\";\"]"}},
    {"JsonOfTwoThreads", true, {"--jobs", "2", "--json"}},
    {"ExplainedJson", true, {"--jobs", "1", "--json", "--explain"}},
};

class ToolWithoutMemory : public testing::TestWithParam<FormCase> {
 protected:
  Words words() const {
    Words all = GetParam().options;
    all.insert(all.end(), {first_, second_});
    return all;
  }
  bool is_complete(const std::string& out) const {
    return !GetParam().is_json || nlohmann::json::accept(out);
  }

  const TempFolder folder_;
  const std::string first_ = folder_.file("first", "level,place\n1,a\n2,b\n");
  const std::string second_ = folder_.file("second", "x,y,z\n1,2,3\n4,5,6\n");
};

// A file that lacked memory is named; the other one has its answer.
TEST_P(ToolWithoutMemory, OnceFailsForOneFileAtMost) {
  const CommandResult whole = undisturbed(words());
  ASSERT_EQ(whole.status, 0) << whole.err;
  for_each_fault(words(), FaultKind::single, [&](const CommandResult& result) {
    if (result.status == 0) {
      EXPECT_EQ(result.out, whole.out);
      return;
    }
    EXPECT_EQ(result.status, 2);
    if (result.err == "vltext: Cannot allocate memory\n") {  // in the command line
      EXPECT_EQ(result.out, "");
      return;
    }
    const bool first_failed = result.err.find(first_) != std::string::npos;
    EXPECT_EQ(result.err, "vltext: cannot read '" + (first_failed ? first_ : second_) +
                              "': Cannot allocate memory\n");
    EXPECT_THAT(result.out, HasSubstr(first_failed ? second_ : first_));
    EXPECT_TRUE(is_complete(result.out)) << result.out;
  });
}

TEST_P(ToolWithoutMemory, ForGoodSaysSo) {
  for_each_fault(words(), FaultKind::from_then_on, [&](const CommandResult& result) {
    if (result.status != 0) {
      EXPECT_EQ(result.status, 2);
      EXPECT_THAT(result.err, StartsWith("vltext: "));
      EXPECT_THAT(result.err, HasSubstr(": Cannot allocate memory\n"));
    }
    EXPECT_TRUE(result.out.empty() || is_complete(result.out)) << result.out;
  });
}
INSTANTIATE_TEST_SUITE_P(Table, ToolWithoutMemory, testing::ValuesIn(kForms), ByRule());

class ConvertWithoutMemory : public testing::TestWithParam<const char*> {};

// SQLite and the formats of files have libraries of their own, whose allocations do not fail here.
TEST_P(ConvertWithoutMemory, LeavesTheOutputAndSaysSo) {
  const TempFolder folder;
  const std::string table = folder.file("table", "day,level\n2024-01-01,1.5\n2024-01-02,x\n");
  const std::string out = folder.path_of("out");
  const std::string rejects = folder.path_of("rejects");
  const Words words = {"convert", table, "--to", GetParam(), "-o", out, "--rejects", rejects};
  const CommandResult whole = undisturbed(words);
  ASSERT_EQ(whole.status, 0) << whole.err;
  const std::string complete = content_of(out);
  const std::string rejected = content_of(rejects);
  for (const FaultKind kind : {FaultKind::single, FaultKind::from_then_on}) {
    std::string before = complete;
    for_each_fault(words, kind, [&](const CommandResult& result) {
      if (result.status == 2) {
        EXPECT_EQ(content_of(out), before);
        EXPECT_THAT(result.err, HasSubstr("Cannot allocate memory\n"));
      } else {
        // What lacked memory was not needed, such as the line that shows the progress.
        EXPECT_EQ(result.status, whole.status);
        EXPECT_EQ(content_of(out), complete);
        EXPECT_EQ(content_of(rejects), rejected);
      }
      EXPECT_LE(num_files_in(folder.path()), 3U);
      folder.file("out", before = "");
    });
  }
}
INSTANTIATE_TEST_SUITE_P(Table, ConvertWithoutMemory, testing::Values("csv", "jsonl", "sqlite"),
                         [](const auto& each) { return std::string(each.param); });

class PageWithoutMemory : public testing::TestWithParam<FaultKind> {
 protected:
  const TempFolder folder_;
  const std::string table_ = folder_.file("table", "day,level\n2024-01-01,1.5\n2024-01-02,x\n");
  const std::string out_ = folder_.path_of("page.html");
};

// Pages are long: a failure does not print them.
TEST_P(PageWithoutMemory, LeavesTheOldOneAndSaysSo) {
  const Words words = {"--jobs", "1", table_, "--html", out_};
  ASSERT_EQ(undisturbed(words).status, 0);
  const std::string complete = content_of(out_);
  std::string before = complete;
  for_each_fault(words, GetParam(), [&](const CommandResult& result) {
    if (result.status == 2) {
      EXPECT_TRUE(content_of(out_) == before);
      EXPECT_THAT(result.err, StartsWith("vltext: "));
      EXPECT_THAT(result.err, HasSubstr("Cannot allocate memory\n"));
    } else {
      EXPECT_EQ(result.status, 0);
      EXPECT_TRUE(content_of(out_) == complete);
      EXPECT_EQ(result.err, "");
    }
    EXPECT_EQ(result.out, "");
    EXPECT_EQ(num_files_in(folder_.path()), 2U);
    folder_.file("page.html", before = "old");
  });
}

// A page of several files is complete: one that lacked memory is named on it.
TEST_P(PageWithoutMemory, NamesTheFileThatLackedIt) {
  const std::string note =
      folder_.file("note", "Dear Lena,\nthanks for your letter, dear.\n\nBye\n");
  const std::string second = folder_.file("second", "x = 1;\ny = 2;\nreturn x + y;\n");
  const Words words = {"--jobs", "1", note, second, "--html", "-"};
  const CommandResult whole = undisturbed(words);
  ASSERT_EQ(whole.status, 1);
  for_each_fault(words, GetParam(), [&](const CommandResult& result) {
    if (result.status == 1) {
      EXPECT_TRUE(result.out == whole.out);
      return;
    }
    EXPECT_EQ(result.status, 2);
    EXPECT_THAT(result.err, HasSubstr("Cannot allocate memory\n"));
    const bool names_it =
        result.out.find(": Cannot allocate memory</bdi></li>") != std::string::npos;
    EXPECT_TRUE(result.out.empty() || (names_it && result.out.ends_with("</html>\n")));
  });
}
INSTANTIATE_TEST_SUITE_P(Kinds, PageWithoutMemory,
                         testing::Values(FaultKind::single, FaultKind::from_then_on),
                         [](const auto& each) {
                           return each.param == FaultKind::single ? "Once" : "ForGood";
                         });

TEST(AnswerFor, SaysThatItLackedMemoryUntilItsEnd) {
  if (!allocations_can_fail()) return;
  const TempFolder folder;
  Arguments arguments;
  arguments.settings.trace = true;
  const std::string table = folder.file("table", "x,y\n1,2\n");
  for (const std::string& file : {table, folder.path_of("missing")}) {
    for (const bool json : {false, true}) {
      arguments.json = json;
      const Answer whole = answer_for(file, arguments);
      bool was_met = true;
      for (std::size_t nth = 1; was_met; ++nth) {
        Answer answer;
        {
          const AllocationFault fault(nth, FaultKind::from_then_on);
          answer = answer_for(file, arguments);
          was_met = fault.was_met();
        }
        if (answer.lacked_memory) continue;
        ASSERT_EQ(answer.text, whole.text) << nth;
        ASSERT_EQ(answer.problem, whole.problem) << nth;
      }
    }
  }
}

// Otherwise half a member could be printed.
TEST(WriteJsonMember, AllocatesNothingOnceItHasBegun) {
  if (!allocations_can_fail()) return;
  standalone::Layout layout;
  layout.names.assign(20'000, u"level \x1B \xD83D\xDC80");
  layout.lines.assign(20'000, {standalone::LineRole::data, 1, 2, 2});
  layout.trace.emplace().candidates.resize(3);
  layout.encoding_confidence = 1.0 / 3;
  std::size_t num_parts = 0;
  std::optional<AllocationFault> fault;
  write_json_member("a name of more characters than fit into a string", layout,
                    [&](std::string& part) {
                      if (++num_parts == 1) fault.emplace(1, FaultKind::from_then_on);
                      part.clear();
                    });
  EXPECT_FALSE(fault->was_met());
  EXPECT_GT(num_parts, 10U);
}

TEST(ProgressLineWithoutMemory, IsNotShown) {
  if (!allocations_can_fail()) return;
  ProgressLine::Time now;
  std::string written;
  written.reserve(1000);
  ProgressLine line(100,
                    {true, [&] { return now; }, [&](std::string_view text) { written += text; }});
  now += ProgressLine::kDelay;
  {
    const AllocationFault fault(1, FaultKind::single);
    line.show(1);
    EXPECT_TRUE(fault.was_met());
  }
  EXPECT_EQ(written, "");
  line.show(1);
  EXPECT_EQ(written, "\r  1 of 100 files");
}

}  // namespace
}  // namespace textio::tool
