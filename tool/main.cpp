// vltext: prints how the tables in text files are laid out.
#include <charconv>
#include <cstdio>
#include <exception>
#include <string>
#include <string_view>
#include <vector>

#include <fmt/format.h>
#include <CLI/CLI.hpp>

#include <vltextstream/standalone/detect_layout.hpp>
#include <vltextstream/standalone/utf_text.hpp>
#include <vltextstream/version.hpp>

#include "tool/json_report.hpp"
#include "tool/report.hpp"

namespace {

using textio::standalone::detect_layout;
using textio::standalone::DetectSettings;
using textio::standalone::Layout;

constexpr int kFailed = 2;

struct Arguments {
  std::vector<std::string> files;
  DetectSettings settings;
  std::string lines = "100";
  std::string encoding = "auto";
  std::vector<std::string> comment_style;
  bool json = false;
};

void declare(CLI::App& app, Arguments& arguments) {
  app.add_option("FILE", arguments.files, "Text files to look at")->required();
  app.add_flag("--json", arguments.json, "Print one JSON document instead of text");
  app.add_flag("--explain", arguments.settings.trace,
               "Also print the candidates, their scores and what each filter left");
  app.add_option("--lines", arguments.lines,
                 "Number of data lines to sample from the start of each file")
      ->type_name("N")
      ->capture_default_str();
  app.add_option("--encoding", arguments.encoding,
                 "Encoding of the files, such as UTF-8, UTF-16, ISO-8859-1, windows-1252 or "
                 "Shift_JIS; auto finds it")
      ->type_name("NAME")
      ->capture_default_str();
  app.add_option("--comment-style", arguments.comment_style,
                 "Start marker of comment lines; given twice, the second ends a block")
      ->type_name("TEXT")
      ->expected(1)
      ->multi_option_policy(CLI::MultiOptionPolicy::TakeAll);
  app.set_version_flag("--version", std::string("vltext ") + libvltextstream_version);
  app.footer("Exits with 0, or with 2 when a file cannot be read or an argument is wrong.");
}

// The whole of `text` as a number of lines; the parser of the command line would take "-1" for one.
unsigned long to_count(const std::string& option, const std::string& text) {
  unsigned long count = 0;
  const char* const end = text.data() + text.size();
  const auto [stop, problem] = std::from_chars(text.data(), end, count);
  if (problem != std::errc() || stop != end) {
    throw CLI::ValidationError(
        option, fmt::format("expected a whole number from 0 to 2^64 - 1, got '{}'", text));
  }
  return count;
}

void settle(Arguments& arguments) {
  arguments.settings.num_lines = to_count("--lines", arguments.lines);
  if (arguments.encoding != "auto") arguments.settings.encoding = arguments.encoding;
  if (arguments.comment_style.size() > 2) {
    throw CLI::ValidationError(
        "--comment-style",
        "expected at most two markers, got " + std::to_string(arguments.comment_style.size()));
  }
  for (const std::string& marker : arguments.comment_style) {
    arguments.settings.options.comment_style.push_back(textio::standalone::from_utf8(marker));
  }
}

// Says on standard error what went wrong; what cannot be said there is lost.
void complain(std::string_view message) {
  std::fputs(fmt::format("vltext: {}\n", textio::tool::printable(message)).c_str(), stderr);
}

// Looks at every file; one that fails does not stop the others. Standard output is written
// only at the end, so that nothing stands there when no file could be read.
int run(const Arguments& arguments) {
  std::string text;
  nlohmann::ordered_json files = nlohmann::ordered_json::array();
  int status = 0;
  for (const std::string& file : arguments.files) {
    try {
      const Layout layout = detect_layout(file, arguments.settings);
      if (arguments.json) {
        files.push_back(textio::tool::json_report(file, layout));
      } else {
        text += textio::tool::report(file, layout);
      }
    } catch (const std::exception& error) {
      complain(error.what());
      status = kFailed;
    }
  }
  if (arguments.json && !files.empty()) {
    const nlohmann::ordered_json document = {{"schema", textio::tool::kJsonSchema},
                                             {"files", files}};
    text = document.dump(2, ' ', false, nlohmann::json::error_handler_t::replace) + "\n";
  }
  if (std::fwrite(text.data(), 1, text.size(), stdout) != text.size() || std::fflush(stdout) != 0) {
    std::perror("vltext: standard output");
    return kFailed;
  }
  return status;
}

}  // namespace

int main(int argc, char** argv) {
  CLI::App app("Prints how the table in each text file is laid out.", "vltext");
  Arguments arguments;
  declare(app, arguments);
  try {
    app.parse(argc, argv);
    settle(arguments);
  } catch (const CLI::ParseError& error) {
    return app.exit(error) == 0 ? 0 : kFailed;
  }
  return run(arguments);
}
