// The cases of examples/expected.json.
#pragma once

#include <ostream>
#include <string>
#include <vector>

#include <nlohmann/json.hpp>

#include <vltextstream/layout/detect_layout.hpp>

namespace textio::testing_support {

struct ExampleCase {
  std::string file;  // path in the folder of the examples
  standalone::DetectSettings settings;
  std::vector<std::string> arguments;  // the same for the tool
  nlohmann::json expect;               // members that the layout of the cascade must have
  nlohmann::json assessed;             // those that the layout of the assessment should have
  nlohmann::json known_wrong;          // those that it has instead; null if it is right
  bool is_doubtful = false;            // whether its confidence must be below 90 %
  int status = 0;                      // of the tool
  bool is_status_open = false;         // whether it may be 0 or 1

  std::string path() const;
};
std::ostream& operator<<(std::ostream& out, const ExampleCase& example);

// All cases, in the order of the file. Throws if it cannot be read.
std::vector<ExampleCase> example_cases();

}  // namespace textio::testing_support
