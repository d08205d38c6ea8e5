#include "support/example_cases.hpp"

#include <algorithm>
#include <fstream>

#include <vltextstream/standalone/decoding/utf_text.hpp>

namespace textio::testing_support {

std::string ExampleCase::path() const { return std::string(EXAMPLES_DIR "/") + file; }

std::ostream& operator<<(std::ostream& out, const ExampleCase& example) {
  return out << example.file;
}

namespace {

using Names = std::vector<std::string>;

// The assessment gives the layout of the cascade but for what the case says. Members that are left
// open are not compared: more than one answer is right.
void assess(const nlohmann::json& entry, ExampleCase& example) {
  example.assessed = example.expect;
  if (!entry.contains("assessed")) return;
  const nlohmann::json& assessed = entry["assessed"];
  for (const auto& [name, value] : assessed.at("expect").items()) example.assessed[name] = value;
  const Names doubtful = assessed.value("doubtful", Names());
  const Names open = assessed.value("open", Names());
  for (const Names& names : {doubtful, open}) {
    for (const std::string& name : names) example.assessed.erase(name);
  }
  example.is_doubtful = !doubtful.empty();
  example.is_status_open =
      example.is_doubtful || std::find(open.begin(), open.end(), "no_table") != open.end();
  example.status = assessed.value("status", 0);
}

// What is answered instead, as long as it is wrong.
void replace_by_wrong_answer(const nlohmann::json& entry, ExampleCase& example) {
  if (!entry.contains("known_wrong")) return;
  const nlohmann::json& wrong = entry["known_wrong"];
  example.known_wrong = wrong.at("expect");
  example.is_doubtful = false;
  example.is_status_open = false;
  example.status = wrong.value("status", 0);
}

}  // namespace

std::vector<ExampleCase> example_cases() {
  std::ifstream file(EXAMPLES_DIR "/expected.json");
  std::vector<ExampleCase> cases;
  for (const auto& entry : nlohmann::json::parse(file)) {
    ExampleCase example;
    example.file = entry.at("file");
    example.expect = entry.at("expect");
    const auto options = entry.value("options", nlohmann::json::object());
    if (options.contains("encoding")) {
      example.settings.encoding = options["encoding"].get<std::string>();
      example.arguments.insert(example.arguments.end(), {"--encoding", options["encoding"]});
    }
    if (options.contains("lines")) {
      example.settings.num_lines = options["lines"];
      example.arguments.insert(example.arguments.end(), {"--lines", options["lines"].dump()});
    }
    for (const std::string marker : options.value("comment_style", nlohmann::json::array())) {
      example.settings.options.comment_style.push_back(standalone::from_utf8(marker));
      example.arguments.insert(example.arguments.end(), {"--comment-style", marker});
    }
    assess(entry, example);
    replace_by_wrong_answer(entry, example);
    cases.push_back(example);
  }
  return cases;
}

}  // namespace textio::testing_support
