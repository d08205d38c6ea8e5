// The parts that the command lines of the tool have in common, for those who declare their options with CLI11.
//
//   CLI::App app("Print ...", "vltext");
//   CommandParts parts(app, argc, kImportGroup);
//   parts.parse(argc, argv);
//   parts.files();                        // at least one
//   settings_of(parts.given());
//
// Errors  those of parse_command_line.
#pragma once

#include <map>
#include <optional>
#include <string>
#include <vector>

#include <CLI/App.hpp>

#include <vltextstream/layout/detect_layout.hpp>

#include "tool/option_flags.hpp"

namespace textio::tool {

// The options that say how a file is looked at, as they were typed.
struct TypedLook {
  std::string lines = "100";
  std::optional<std::string> judge;
  bool no_tail = false;

  void apply_to(standalone::DetectSettings& settings) const;
};

class CommandParts {
 public:
  // Declares FILE and the options of the library; the heading of those that have to do with an import.
  CommandParts(CLI::App& app, int argc, const char* import_group);

  void declare_look(TypedLook& look);

  // Takes the arguments after the first `num_skipped`.
  void parse(int argc, const char* const* argv, int num_skipped = 1);

  std::vector<std::string> files() const { return files_->results(); }

  // The options in the order in which they were typed. A flag for a list that was repeated has the place of its
  // first occurrence, with all its values.
  std::vector<GivenOption> given() const;

 private:
  // Which option of the library each flag gives a value for; null for --option.
  using Flags = std::map<const CLI::Option*, const OptionFlag*>;

  CLI::App& app_;
  Flags flags_;
  const CLI::Option* files_ = nullptr;
};

// The settings with these options.
standalone::DetectSettings settings_of(const std::vector<GivenOption>& given);

inline constexpr unsigned long kAnyNumber = static_cast<unsigned long>(-1);

// The whole of `text` as a number; CLI11 would accept "-1" for an unsigned one.
unsigned long to_number(const char* flag, const std::string& text, unsigned long least,
                        unsigned long most);

}  // namespace textio::tool
