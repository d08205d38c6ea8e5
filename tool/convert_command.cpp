#include "tool/convert_command.hpp"

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <cstring>
#include <exception>
#include <map>
#include <new>
#include <utility>

#include <fmt/format.h>

#include <sys/stat.h>
#include <unistd.h>

#include <vltextstream/text/utf8.hpp>

#include "tool/account_text.hpp"
#include "tool/conversion.hpp"
#include "tool/reading_line.hpp"
#include "tool/rejects_file.hpp"
#include "tool/safe_text.hpp"
#include "tool/writing/byte_sink.hpp"
#include "tool/writing/delimited_writer.hpp"
#include "tool/writing/json_lines_writer.hpp"
#include "tool/writing/output_file.hpp"
#include "tool/writing/sqlite_writer.hpp"

namespace textio::tool {
namespace {

using reading::Account;
using reading::LineFate;
using reading::Oddity;
using reading::ReadSettings;

constexpr double kLeastConfidence = 0.5;
constexpr const char* kStandardStream = "-";

// ---------------------------------------------------------------------------------------------
// Paths

struct FileState {
  bool exists = false;
  struct stat about = {};

  bool is_regular() const { return exists && S_ISREG(about.st_mode); }
  bool is_folder() const { return exists && S_ISDIR(about.st_mode); }
  bool is_same_file(const FileState& other) const {
    return exists && other.exists && about.st_dev == other.about.st_dev &&
           about.st_ino == other.about.st_ino;
  }
  bool is_unchanged(const FileState& other) const {
    return about.st_size == other.about.st_size &&
           about.st_mtim.tv_sec == other.about.st_mtim.tv_sec &&
           about.st_mtim.tv_nsec == other.about.st_mtim.tv_nsec;
  }
};

FileState state_of(const std::string& path) {
  FileState state;
  state.exists = (path == kStandardStream ? fstat(STDIN_FILENO, &state.about)
                                          : stat(path.c_str(), &state.about)) == 0;
  return state;
}

// The name of a file without its folder and extensions.
std::string stem_of(const std::string& file) {
  std::string name = file.substr(file.rfind('/') + 1);
  for (const std::string_view packed : {".gz", ".zst", ".GZ", ".ZST"}) {
    if (name.size() > packed.size() && name.ends_with(packed)) {
      name.resize(name.size() - packed.size());
      break;
    }
  }
  const std::size_t dot = name.rfind('.');
  if (dot != std::string::npos && dot > 0) name.resize(dot);
  return name == kStandardStream || name.empty() ? "data" : name;
}

// One for each input; an empty one is standard output.
std::vector<std::string> outputs_of(const ConvertArguments& arguments) {
  const bool to_standard_output = !arguments.out || *arguments.out == kStandardStream;
  if (to_standard_output && arguments.format == Format::sqlite) {
    throw UsageError("-o OUT is required with --to sqlite: a database is a file");
  }
  const bool is_folder = !to_standard_output && state_of(*arguments.out).is_folder();
  if (arguments.files.size() > 1 && !is_folder) {
    throw UsageError(
        "Several FILEs need -o DIR, an existing folder, where each has an output of its own");
  }
  if (to_standard_output) return {""};
  if (!is_folder) return {*arguments.out};
  std::vector<std::string> outputs;
  std::map<std::string, std::string> inputs;
  for (const std::string& file : arguments.files) {
    const std::string out = *arguments.out + (arguments.out->ends_with('/') ? "" : "/") +
                            stem_of(file) + '.' + std::string(to_string(arguments.format));
    const auto [other, is_new] = inputs.emplace(out, file);
    if (!is_new) {
      throw UsageError(fmt::format("'{}' and '{}' have the same output: '{}'",
                                   shortened(other->second), shortened(file), shortened(out)));
    }
    outputs.push_back(out);
  }
  return outputs;
}

void refuse_to_replace_inputs(const ConvertArguments& arguments,
                              const std::vector<std::string>& outputs) {
  std::vector<std::string> written = outputs;
  if (arguments.rejects) written.push_back(*arguments.rejects);
  for (const std::string& file : arguments.files) {
    const FileState input = state_of(file);
    for (const std::string& out : written) {
      if (!out.empty() && input.is_regular() && input.is_same_file(state_of(out))) {
        throw UsageError(fmt::format("'{}' would be replaced, and is an input", shortened(out)));
      }
    }
  }
  if (arguments.rejects) {
    for (const std::string& out : outputs) {
      const FileState state = state_of(out);
      const bool is_same = out == *arguments.rejects ||
                           (state.is_regular() && state.is_same_file(state_of(*arguments.rejects)));
      if (!out.empty() && is_same) {
        throw UsageError(fmt::format("'{}' cannot be both OUT and REJECTS", shortened(out)));
      }
    }
  }
}

// ---------------------------------------------------------------------------------------------
// The output of one file

// A database that others work on has files beside it that would be applied to the new one.
void refuse_to_lose_tables(const std::string& out, const std::string& table) {
  for (const char* const ending : {"-journal", "-wal"}) {
    if (state_of(out + ending).exists) {
      throw WriteError(
          fmt::format("{}: the database is in use: there is '{}{}'", out, out, ending));
    }
  }
  for (const std::string& other : tables_in(out)) {
    if (other == table) continue;
    throw WriteError(fmt::format("{}: the table '{}' in it would be lost; --force replaces it", out,
                                 shortened(printable(other))));
  }
}

// A file with its writer, or standard output with one.
class Output {
 public:
  Output(std::string out, const ConvertArguments& arguments, std::string table)
      : out_(std::move(out)), format_(arguments.format), table_(std::move(table)) {
    const bool is_sqlite = format_ == Format::sqlite;
    if (is_sqlite && !arguments.force) refuse_to_lose_tables(out_, table_);
    if (!out_.empty()) file_.emplace(out_);
    if (is_sqlite && !file_->is_replacing()) {
      throw WriteError(out_ + ": a database can only be a file");
    }
  }

  // Whether what was written can be taken back.
  bool can_restart() const { return file_ && file_->is_replacing(); }

  TableWriter& restart() {
    writer_.reset();
    sink_.reset();
    if (file_) file_->clear();
    if (format_ == Format::sqlite) {
      writer_ = std::make_unique<SqliteWriter>(file_->written_path(), table_, out_);
      return *writer_;
    }
    sink_.emplace(file_ ? file_->fd() : STDOUT_FILENO, out_.empty() ? "standard output" : out_);
    if (format_ == Format::jsonl) {
      writer_ = std::make_unique<JsonLinesWriter>(*sink_);
    } else {
      writer_ = std::make_unique<DelimitedWriter>(*sink_, format_ == Format::csv ? ',' : '\t');
    }
    return *writer_;
  }

  void commit() {
    writer_.reset();
    if (file_) file_->commit();
  }

 private:
  std::string out_;
  Format format_;
  std::string table_;
  std::optional<OutputFile> file_;
  std::optional<ByteSink> sink_;
  std::unique_ptr<TableWriter> writer_;
};

// ---------------------------------------------------------------------------------------------
// One file

// --strict refuses it.
class Refused : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

// What of the table is lost although no option asked for that, in words; empty if nothing is.
std::string dropped(const Account& account, const ConvertArguments& arguments,
                    const ReadSettings& settings) {
  const std::uint64_t misfits = account.count_of(Oddity::misfit);
  if (misfits > 0 && !arguments.is_given("ImportErrorRule")) return "cells did not fit";
  const bool ignores_cells =
      settings.detect.options.extra_columns_rule == parser::extra_columns_action::ignore;
  const bool is_rule_given = arguments.is_given("ExtraColumnsRule");
  if (account.count_of(Oddity::long_row) > 0 && ignores_cells && !is_rule_given) {
    return "cells beyond the last column were ignored";
  }
  if (account.count_of(Oddity::ill_formed) > 0) return "bytes are not characters of the encoding";
  return {};
}

bool is_doubtful(std::optional<double> confidence) {
  return confidence && *confidence < kLeastConfidence;
}

std::string doubt(std::optional<double> confidence) {
  return fmt::format("only {:.0f} % sure of the layout", confidence.value_or(0) * 100);
}

class FileConversion {
 public:
  FileConversion(const ConvertArguments& arguments, std::string file, std::string out,
                 RejectsFile* rejects, const Streams& streams)
      : arguments_(arguments),
        file_(std::move(file)),
        out_(std::move(out)),
        rejects_(rejects),
        streams_(streams),
        before_(state_of(file_)),
        can_repeat_(before_.is_regular()),
        settings_(settings()) {}

  // Returns the exit status.
  int run() {
    if (rejects_ != nullptr) rejects_->begin(file_);
    Output output(out_, arguments_, arguments_.table.value_or(table_named_after(file_)));
    ReadingLine progress(static_cast<std::uint64_t>(can_repeat_ ? before_.about.st_size : 0),
                         surroundings());
    ConversionSteps steps;
    steps.open = [&](const std::optional<LearnedTable>& learned) { return open(learned); };
    steps.restart = [&]() -> TableWriter& { return output.restart(); };
    steps.learns_first = can_repeat_ && !output.can_restart() && may_change();
    steps.check = [&](const TableSource& table) { check(table); };
    steps.progress = [&](const Account& account) { progress.show(account); };
    const Converted converted = convert_table(steps);
    progress.clear();
    const bool has_changed = can_repeat_ && !before_.is_unchanged(state_of(file_));
    if (has_changed && arguments_.strict) throw FileChanged();
    if (rejects_ != nullptr) rejects_->flush();
    // Nothing may fail after the output is replaced.
    const std::string last_word = last_word_on(converted, has_changed);
    const int status = status_of(converted, has_changed);
    output.commit();
    complain(last_word, streams_.err);
    return status;
  }

 private:
  // What is read once cannot be begun anew with other columns.
  ReadSettings settings() const {
    ReadSettings read = arguments_.settings;
    if (can_repeat_) return read;
    auto& rule = read.detect.options.extra_columns_rule;
    const bool adds_columns = rule == parser::extra_columns_action::addvars;
    if (arguments_.widens.value_or(false)) {
      throw std::runtime_error("--widen: it can be read only once, and then no column can change");
    }
    if (adds_columns && arguments_.is_given("ExtraColumnsRule")) {
      throw std::runtime_error(
          "--extra-columns-rule addvars: it can be read only once, and then no column can be "
          "added");
    }
    read.widen = false;
    if (adds_columns) rule = parser::extra_columns_action::ignore;
    return read;
  }

  // Whether a batch may have other columns than the one before. Where columns are omitted, the reader itself reads
  // the file twice.
  bool may_change() const {
    const auto& rules = settings_.detect.options;
    const bool omits = rules.missing_rule == parser::row_rule::omitvar ||
                       rules.import_error_rule == parser::row_rule::omitvar ||
                       rules.partial_field_rule == parser::partial_field_action::omitvar;
    return !omits;
  }

  std::unique_ptr<TableSource> open(const std::optional<LearnedTable>& learned) {
    ReadSettings settings = settings_;
    if (!learned) {
      settings.rejects = rejects_;
      std::unique_ptr<TableSource> table = open_table(file_, std::nullopt, settings);
      const std::string& what = table->layout().no_table;
      if (!what.empty()) throw std::runtime_error("no table was found in it: " + what);
      return table;
    }
    // What does not fit was kept when it was read first. Columns that were added are of text.
    for (const std::size_t position : learned->widened) {
      if (position >= learned->layout.num_variables) continue;
      settings.types.push_back({{}, position + 1, learned->heads[position].type});
    }
    return open_table(file_, learned->layout, settings);
  }

  void check(const TableSource& table) const {
    if (!arguments_.strict) return;
    const std::string lost = dropped(table.account(), arguments_, settings_);
    const std::optional<double> confidence = table.layout().confidence;
    if (lost.empty() && !is_doubtful(confidence)) return;
    const std::string account =
        account_text({table.account(), table.names(), confidence, 0, std::nullopt});
    throw Refused(fmt::format("not converted, because of --strict: {}; {}",
                              lost.empty() ? doubt(confidence) : lost, account));
  }

  std::string last_word_on(const Converted& converted, bool has_changed) const {
    std::string text = file_ + ": " + account_text(converted);
    if (is_doubtful(converted.confidence)) text += "; " + doubt(converted.confidence);
    if (has_changed) text += "; the file changed while it was read";
    return text;
  }

  int status_of(const Converted& converted, bool has_changed) const {
    const bool is_lossy = !dropped(converted.account, arguments_, settings_).empty();
    return is_lossy || is_doubtful(converted.confidence) || has_changed ? kDoubtful : kSucceeded;
  }

  ProgressLine::Surroundings surroundings() const {
    const bool is_err_terminal = isatty(fileno(streams_.err)) != 0;
    const bool is_table_shown = out_.empty() && isatty(STDOUT_FILENO) != 0;
    return {is_err_terminal && !is_table_shown && !arguments_.no_progress,
            std::chrono::steady_clock::now, [err = streams_.err](std::string_view line) {
              std::fwrite(line.data(), 1, line.size(), err);
              std::fflush(err);
            }};
  }

  const ConvertArguments& arguments_;
  std::string file_;
  std::string out_;
  RejectsFile* rejects_;
  const Streams& streams_;
  FileState before_;
  bool can_repeat_;
  ReadSettings settings_;
};

}  // namespace

std::string table_named_after(const std::string& file) {
  std::string name = stem_of(file);
  // SQLite keeps such names to itself.
  std::string start = name.substr(0, 7);
  std::transform(start.begin(), start.end(), start.begin(),
                 [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
  if (start == "sqlite_") name.insert(0, "table_");
  std::string utf8;
  for (std::string_view rest = name; !rest.empty();) {
    const Utf8Character c = first_character(rest);
    append_utf8(utf8, c.code);
    rest.remove_prefix(c.length);
  }
  return utf8;
}

namespace {

int convert_file(const ConvertArguments& arguments, const std::string& file, const std::string& out,
                 RejectsFile* rejects, const Streams& streams) {
  try {
    return FileConversion(arguments, file, out, rejects, streams).run();
  } catch (const standalone::FileError& error) {
    complain(error.what(), streams.err);
  } catch (const WriteError& error) {
    complain(error.what(), streams.err);
  } catch (const std::bad_alloc&) {
    complain_of_memory(file, streams.err);
  } catch (const std::exception& error) {
    complain(file + ": " + error.what(), streams.err);
  }
  return kFailed;
}

}  // namespace

int convert_files(const ConvertArguments& arguments, const Streams& streams) {
  const std::vector<std::string> outputs = outputs_of(arguments);
  refuse_to_replace_inputs(arguments, outputs);
  clean_up_on_signals();
  std::optional<RejectsFile> rejects;
  if (arguments.rejects) rejects.emplace(*arguments.rejects);
  int status = kSucceeded;
  for (std::size_t i = 0; i < arguments.files.size(); ++i) {
    status = std::max(status, convert_file(arguments, arguments.files[i], outputs[i],
                                           rejects ? &*rejects : nullptr, streams));
  }
  if (rejects) rejects->commit();
  return status;
}

}  // namespace textio::tool
