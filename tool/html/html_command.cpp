// Each section is made in some thread and waits in its place, since the overview comes before all of them.
#include "tool/html/html_command.hpp"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <exception>
#include <filesystem>
#include <new>
#include <string>
#include <string_view>
#include <system_error>
#include <vector>

#include <fmt/format.h>

#include <vltextstream/layout/given_mismatch.hpp>

#include "tool/answers.hpp"
#include "tool/html/file_section.hpp"
#include "tool/html/page.hpp"
#include "tool/ordered_work.hpp"
#include "tool/safe_text.hpp"
#include "tool/usage_errors.hpp"
#include "tool/writing/byte_sink.hpp"
#include "tool/writing/output_file.hpp"

namespace textio::tool {
namespace {

constexpr std::string_view kStandardStream = "-";

void check_files(const Arguments& arguments) {
  if (arguments.files.size() > kMostFilesOfPage)
    throw UsageError(fmt::format("--html takes at most {} FILEs", kMostFilesOfPage));
  for (const std::string& file : arguments.files) {
    if (file == kStandardStream)
      throw UsageError("--html needs the paths of FILEs, which are read repeatedly");
    std::error_code ignored;
    if (std::filesystem::is_regular_file(file, ignored) &&
        std::filesystem::equivalent(file, *arguments.html, ignored)) {
      throw UsageError(fmt::format("'{}' would be replaced, and is an input", shortened(file)));
    }
  }
}

// What the file could not be read for begins with its path.
Answer answer_of(std::size_t index, const Arguments& arguments, PageFile& page) {
  const std::string& file = arguments.files[index];
  page.path = file;
  Answer answer;
  try {
    page = section_of(file, index, arguments);
    answer.is_doubtful = page.is_doubtful || page.row.status == RowStatus::no_table;
    return answer;
  } catch (const std::bad_alloc&) {
    answer.lacked_memory = true;
  } catch (const standalone::GivenMismatch& mismatch) {
    page.problem = file + ": " + mismatch.what();
  } catch (const std::exception& error) {
    page.problem = error.what();
  }
  if (!answer.lacked_memory) answer.problem = page.problem;
  return answer;
}

void write_to_file(const std::string& path, const std::string& text) {
  clean_up_on_signals();
  OutputFile out(path);
  ByteSink sink(out.fd(), out.path());
  sink.text() = text;
  sink.flush();
  out.commit();
}

}  // namespace

int write_page(const Arguments& arguments, const Streams& streams) {
  check_files(arguments);
  std::vector<PageFile> pages(arguments.files.size());
  int status = kSucceeded;
  const auto work = [&](std::size_t i) { return answer_of(i, arguments, pages[i]); };
  const auto deliver = [&](std::size_t i, const Answer& answer) {
    if (answer.lacked_memory) {
      complain_of_memory(arguments.files[i], streams.err);
      pages[i].problem = arguments.files[i] + ": " + std::strerror(ENOMEM);
    }
    if (answer.problem) complain(*answer.problem, streams.err);
    if (answer.lacked_memory || answer.problem) status = kFailed;
    if (answer.is_doubtful) status = std::max(status, kDoubtful);
    return true;
  };
  work_in_order(plan_of(arguments), {work, deliver, [](std::size_t) {}});
  const bool is_all_lost = std::all_of(pages.begin(), pages.end(),
                                       [](const PageFile& page) { return !page.problem.empty(); });
  if (is_all_lost) return kFailed;
  const std::string page = page_of(pages, static_cast<double>(arguments.least_percent) / 100.0);
  if (*arguments.html == kStandardStream) return write_out(page, "", streams) ? status : kFailed;
  try {
    write_to_file(*arguments.html, page);
  } catch (const std::bad_alloc&) {
    throw;
  } catch (const std::exception& error) {
    complain(error.what(), streams.err);
    return kFailed;
  }
  return status;
}

}  // namespace textio::tool
