// The help of the tool, made from the options that were declared and their descriptions.
#pragma once

#include <string>
#include <vector>

#include <CLI/App.hpp>
#include <CLI/Formatter.hpp>

namespace textio::tool {

// What the help says below the usage line.
extern const char* const kDescription;

// The groups of options; the heading of each but the first.
inline constexpr const char* kGeneralGroup = "Options";
inline constexpr const char* kKnownGroup = "What is known about the files";
inline constexpr const char* kImportGroup =
    "For the import that may follow; checked, and without effect on the answer";

// Lines of at most 79 characters.
class HelpFormatter : public CLI::Formatter {
 public:
  std::string make_help(const CLI::App* app, std::string name,
                        CLI::AppFormatMode mode) const override;
  std::string make_group(std::string group, bool is_positional,
                         std::vector<const CLI::Option*> options) const override;
  std::string make_option(const CLI::Option* option, bool is_positional) const override;
  std::string make_footer(const CLI::App* app) const override;
};

}  // namespace textio::tool
