// What is written for a lack of memory needs none: the words are constant, and the name of the file
// is written character by character.
#include "tool/answers.hpp"

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <cstring>
#include <exception>
#include <memory>
#include <new>
#include <utility>

#include <fmt/format.h>

#include <sys/stat.h>
#include <unistd.h>

#include <vltextstream/layout/detect_layout.hpp>
#include <vltextstream/reading/first_lines.hpp>

#include "tool/catalog/catalog_command.hpp"
#include "tool/catalog/file_list.hpp"
#include "tool/catalog/group_report.hpp"
#include "tool/conventions/completions.hpp"
#include "tool/conventions/manual_page.hpp"
#include "tool/convert_command.hpp"
#include "tool/emit/emit_words.hpp"
#include "tool/emit_command.hpp"
#include "tool/file_kind.hpp"
#include "tool/head_command.hpp"
#include "tool/html/html_command.hpp"
#include "tool/json_report.hpp"
#include "tool/option_words.hpp"
#include "tool/progress_line.hpp"
#include "tool/report.hpp"
#include "tool/safe_text.hpp"
#include "tool/showing/line_breaks.hpp"
#include "tool/showing/picture.hpp"

namespace textio::tool {
namespace {

using standalone::Layout;

constexpr std::size_t kLargeLayout = 262'144;  // bytes
constexpr std::size_t kLongestPath = 4096;     // bytes; the system opens no longer one

// ---------------------------------------------------------------------------------------------
// Messages

int print(std::string_view text, const Streams& streams) noexcept {
  return write_out(text, "", streams) ? kSucceeded : kFailed;
}

// A path that can be opened is repeated as a whole, so that it can be found.
std::string problem_with(const std::string& file, const Arguments& arguments, const char* message) {
  std::vector<std::string> typed;
  if (file.size() > kLongestPath) typed.push_back(file);
  if (arguments.settings.encoding) typed.push_back(*arguments.settings.encoding);
  return with_short_echoes(message, typed);
}

// ---------------------------------------------------------------------------------------------
// Writing the answers

// More reports than fit on a screen, one below the other, are a summary.
bool wants_summary(const Arguments& arguments) {
  constexpr std::size_t kMostReports = 20;
  const bool wants_each =
      arguments.json || arguments.jsonl || arguments.explain || arguments.is_verbose;
  return !wants_each && arguments.files.size() > kMostReports;
}

JsonWriter::Shape json_shape(const Arguments& arguments) {
  return arguments.jsonl ? JsonWriter::Shape::one_line : JsonWriter::Shape::indented;
}

class AnswerWriter {
 public:
  AnswerWriter(const Arguments& arguments, const Streams& streams, ProgressLine& progress)
      : arguments_(arguments),
        streams_(streams),
        progress_(progress),
        grouper_(static_cast<double>(arguments.least_percent) / 100.0) {}

  // Returns whether to go on: not when standard output is lost.
  bool write(std::size_t index, const Answer& answer) {
    const std::string& file = arguments_.files[index];
    if (answer.lacked_memory) return report_lack_of_memory(file);
    try {
      if (answer.problem) return write_problem(file, *answer.problem);
      if (answer.is_doubtful) status_ = std::max(status_, static_cast<int>(kDoubtful));
      if (wants_summary(arguments_)) return add_to_summary(answer.text);
      return answer.layout ? write_layout(file, answer) : write_text(answer.text);
    } catch (const std::bad_alloc&) {
      return report_lack_of_memory(file);
    }
  }

  // The end of the document, if it was begun, or the summary. Returns the exit status.
  int finish() {
    progress_.clear();
    if (num_summarised_ > 0) {
      keep(write_out(group_text(grouper_.finish(), {false, true}), "", streams_));
      return status_;
    }
    const bool is_complete = !arguments_.json || !has_text_ || is_output_lost_;  // or needs no end
    if (!is_complete) keep(write_out(kJsonClosing, "", streams_));
    return status_;
  }

 private:
  bool report_problem(std::string_view problem) {
    progress_.clear();
    complain(problem, streams_.err);
    status_ = kFailed;
    return true;
  }

  bool write_problem(const std::string& file, std::string_view problem) {
    if (wants_summary(arguments_)) grouper_.add(failed_row(file, problem));
    if (!arguments_.jsonl) return report_problem(problem);
    status_ = kFailed;
    return write_text(json_failure(file, problem) + '\n');
  }

  bool add_to_summary(std::string_view row) {
    grouper_.add(parse_row(row));
    ++num_summarised_;
    return true;
  }

  bool report_lack_of_memory(std::string_view file) {
    progress_.clear();
    complain_of_memory(file, streams_.err);
    status_ = kFailed;
    return true;
  }

  // A part that is not written is lost, and so are those after it.
  bool write_layout(const std::string& file, const Answer& answer) {
    bool is_begun = false;
    bool is_written = true;
    const auto write_part = [&](std::string& part) {
      if (is_written)
        is_written = is_begun ? keep(write_out(part, "", streams_)) : write_text(part);
      is_begun = true;
      part.clear();
    };
    write_json_member(file, *answer.layout, write_part, answer.file_kind, json_shape(arguments_));
    if (is_written && arguments_.jsonl) is_written = keep(write_out("\n", "", streams_));
    return is_written;
  }

  // The opening of the document is written with its first file.
  bool write_text(std::string_view text) {
    const std::string opening =
        arguments_.json && !has_text_
            ? json_opening(arguments_.settings, arguments_.given, arguments_.is_verbose)
            : std::string();
    const bool is_separated = arguments_.json && has_text_;
    has_text_ = true;
    return keep(
        write_out(is_separated ? kJsonSeparator : std::string_view(opening), text, streams_));
  }

  // Takes note of whether it was written.
  bool keep(bool is_written) {
    if (!is_written) {
      is_output_lost_ = true;
      status_ = kFailed;
    }
    return is_written;
  }

  const Arguments& arguments_;
  const Streams& streams_;
  ProgressLine& progress_;
  int status_ = kSucceeded;
  Grouper grouper_;
  std::size_t num_summarised_ = 0;
  bool has_text_ = false;
  bool is_output_lost_ = false;
};

// ---------------------------------------------------------------------------------------------
// The plan of the work

// Two paths may lead to the same pipe or the like, and the first to read it uses it up. "-" is
// whatever standard input is.
bool may_be_used_up(const std::string& file) {
  struct stat about = {};
  return file == "-" || (stat(file.c_str(), &about) == 0 && !S_ISREG(about.st_mode));
}

}  // namespace

// One thread needs no list.
WorkPlan plan_of(const Arguments& arguments) {
  const std::size_t num_files = arguments.files.size();
  WorkPlan plan = {num_files, threads_for(arguments.num_jobs, num_files), {}};
  if (plan.num_threads == 1) return plan;
  try {
    for (std::size_t i = 0; i < num_files; ++i) {
      if (may_be_used_up(arguments.files[i])) plan.one_by_one.push_back(i);
    }
  } catch (const std::bad_alloc&) {
    return {num_files, 1, {}};
  }
  return plan;
}

namespace {

bool is_terminal(std::FILE* stream) { return isatty(fileno(stream)) != 0; }

// On a terminal that shows the answers, they show how far the work is.
bool wants_progress(const Arguments& arguments, const Streams& streams) {
  return !arguments.no_progress && is_terminal(streams.err) && !is_terminal(streams.out);
}

// The memory of what grows with the file.
std::size_t size_of(const Layout& layout) {
  return layout.lines.size() * sizeof(standalone::LineRun) +
         layout.classes.size() * sizeof(DatatypeCode) +
         (layout.names.size() + layout.units.size()) * sizeof(std::u16string);
}

}  // namespace

bool is_doubtful(const Layout& layout, const Arguments& arguments) {
  if (arguments.settings.judge != standalone::Judge::assessment) return false;
  if (!layout.no_table.empty()) return true;
  return layout.confidence &&
         *layout.confidence * 100 < static_cast<double>(arguments.least_percent);
}

namespace {

// As text, or as the layout if that takes less memory: each line of the JSON takes some dozen bytes.
Answer json_answer(const std::string& file, Layout layout, std::string kind,
                   JsonWriter::Shape shape) {
  const std::size_t size = size_of(layout);
  if (size < kLargeLayout) {
    std::string text = json_member(file, layout, kind, shape);
    if (shape == JsonWriter::Shape::one_line) text += '\n';
    return {std::move(text), std::nullopt};
  }
  Answer answer = {
      {}, std::nullopt, false, std::make_shared<const Layout>(std::move(layout)), size};
  answer.file_kind = std::move(kind);
  return answer;
}

}  // namespace

std::string kind_without_table(const Layout& layout) {
  return layout.first_bytes.empty() ? std::string() : file_kind(layout.first_bytes);
}

namespace {

// The layout, and the first lines if they are shown.
reading::FileTop top_of(const std::string& file, const Arguments& arguments) {
  if (arguments.picture) return reading::look_at_top(file, arguments.settings, kPictureRows);
  return {standalone::detect_layout(file, arguments.settings), {}};
}

// What a user may want after the picture: the reasons, or the table itself.
std::string what_next(const std::string& file, const Layout& layout, const Arguments& arguments) {
  const bool is_asked_already = arguments.explain || !arguments.given.empty();
  if (is_asked_already || !layout.no_table.empty() || file == "-") return {};
  const std::string path = file.starts_with("-") ? "./" + file : file;
  const bool is_plain = path.find_first_not_of(
                            "abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ"
                            "0123456789._/-") == std::string::npos;
  // What is not shown as it is could not be copied as it is.
  const std::string quoted = printable(path) == path ? shell_text(path) : "FILE";
  const std::string& name = is_plain ? path : quoted;
  return fmt::format("\nWhy: vltext --explain {0}\nTo read it: vltext {0} --emit pandas\n", name);
}

std::string text_answer(const std::string& file, const reading::FileTop& top,
                        const Arguments& arguments, std::string_view kind) {
  if (!arguments.picture)
    return report(file, top.layout, arguments.given, kind, arguments.explains_cascade);
  constexpr std::size_t kMostColumns = 20;  // the beginning of the answer is to be on the screen
  std::string text = broken_to(
      report(file, top.layout, arguments.given, kind, arguments.explains_cascade, kMostColumns),
      arguments.picture->width);
  const std::optional<Picture> picture = picture_of(top);
  if (picture) text += '\n' + terminal_text(*picture, *arguments.picture);
  return text + what_next(file, top.layout, arguments);
}

// What is wrong with a file, in the words of an error.
std::string reason_for(const std::string& file, const std::exception& error) {
  if (!is_folder(file)) return error.what();
  return fmt::format("cannot open '{}': no file is in this folder", file);
}

Answer try_to_answer(const std::string& file, const Arguments& arguments) {
  try {
    reading::FileTop top = top_of(file, arguments);
    Layout& layout = top.layout;
    const bool doubtful = is_doubtful(layout, arguments);
    if (wants_summary(arguments)) {
      Answer answer = {row_line(row_of(file, layout)), std::nullopt};
      answer.is_doubtful = doubtful;
      return answer;
    }
    std::string kind = kind_without_table(layout);
    Answer answer =
        arguments.json || arguments.jsonl
            ? json_answer(file, std::move(layout), std::move(kind), json_shape(arguments))
            : Answer{text_answer(file, top, arguments, kind), std::nullopt};
    answer.is_doubtful = doubtful;
    return answer;
  } catch (const std::bad_alloc&) {
    throw;
  } catch (const standalone::GivenMismatch& mismatch) {
    return {{}, problem_with(file, arguments, (file + ": " + mismatch.what()).c_str())};
  } catch (const std::exception& error) {
    return {{}, problem_with(file, arguments, reason_for(file, error).c_str())};
  }
}

}  // namespace

Answer answer_for(const std::string& file, const Arguments& arguments) {
  try {
    return try_to_answer(file, arguments);
  } catch (const std::bad_alloc&) {
    return {{}, std::nullopt, true, nullptr};
  }
}

int answer_files(const Arguments& arguments, const Streams& streams) {
  const auto write_progress = [&](std::string_view line) {
    std::fwrite(line.data(), 1, line.size(), streams.err);
    std::fflush(streams.err);
  };
  ProgressLine progress(arguments.files.size(), {wants_progress(arguments, streams),
                                                 std::chrono::steady_clock::now, write_progress});
  AnswerWriter writer(arguments, streams, progress);
  const auto answer = [&](std::size_t i) { return answer_for(arguments.files[i], arguments); };
  const auto write = [&](std::size_t i, const Answer& text) { return writer.write(i, text); };
  work_in_order(plan_of(arguments),
                {answer, write, [&](std::size_t done) { progress.show(done); }});
  return writer.finish();
}

namespace {

// Of a command, or of the tool.
std::string help_text(int argc, const char* const* argv) {
  const std::string wanted = argc > 2 ? argv[2] : "";
  for (const CommandEntry& command : command_table()) {
    if (command.name == wanted) return command.help;
  }
  throw UsageError(fmt::format("help: Expected {}, got '{}'.{}", either_of(command_names()),
                               shortened(wanted), meant(wanted, command_names())));
}

std::string completions_text(int argc, const char* const* argv) {
  if (argc < 3) throw UsageError(fmt::format("completions needs a value: {}", either_of(shells())));
  return completions(argv[2], command_table());
}

// A word before other arguments that is no file, and nearly a command.
void refuse_nearly_command(int argc, const char* const* argv) {
  if (argc < 3 || access(argv[1], F_OK) == 0) return;
  const std::string near = nearest(argv[1], command_names());
  if (near.empty()) return;
  throw UsageError(
      fmt::format("{}: no such file or command: do you mean vltext {}?", argv[1], near));
}

// The first argument names the command; without one, the layouts are wanted.
int run_command(int argc, const char* const* argv, const Streams& streams) {
  const std::string_view command = argc > 1 ? argv[1] : "";
  if (command == "convert") return convert_files(parse_convert_line(argc, argv), streams);
  if (command == "head") return print_heads(parse_head_line(argc, argv), streams);
  if (command == "catalog") return print_catalog(parse_catalog_line(argc, argv), streams);
  if (command == "groups") return print_groups(parse_groups_line(argc, argv), streams);
  if (command == "help") return print(help_text(argc, argv), streams);
  if (command == "man") return print(manual_page(command_table()), streams);
  if (command == "completions") return print(completions_text(argc, argv), streams);
  refuse_nearly_command(argc, argv);
  Arguments arguments = parse_command_line(argc, argv);
  if (!arguments.emit) {
    arguments.files = files_below(arguments.files, {arguments.is_recursive, true});
  }
  if (!arguments.json && !arguments.jsonl && !arguments.emit && !arguments.html) {
    arguments.picture =
        chosen_style(arguments.showing, surroundings_of(streams.out), arguments.files.size());
  }
  if (arguments.html) return write_page(arguments, streams);
  return arguments.emit ? emit_program(arguments, streams) : answer_files(arguments, streams);
}

}  // namespace

int run_tool(int argc, const char* const* argv, const Streams& streams) {
  try {
    return run_command(argc, argv, streams);
  } catch (const TextWanted& text) {
    return print(text.what(), streams);
  } catch (const UsageError& error) {
    complain(error.what(), streams.err);
    std::fputs("Try 'vltext --help' for more information.\n", streams.err);
  } catch (const std::bad_alloc&) {
    complain(std::strerror(ENOMEM), streams.err);
  } catch (const std::exception& error) {
    complain(error.what(), streams.err);
  }
  return kFailed;
}

}  // namespace textio::tool
