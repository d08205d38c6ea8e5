// The help of the tool, made from the options that were declared and their descriptions.
#pragma once

#include <span>
#include <string>
#include <string_view>
#include <vector>

#include <CLI/App.hpp>
#include <CLI/Formatter.hpp>

namespace textio::tool {

// What the help of the layouts says below the usage line, and at its end. Each command has its own, as the
// description and the footer of its CLI::App.
extern const char* const kDescription;
extern const char* const kExitStatus;

// The groups of options; the heading of each but the first.
inline constexpr const char* kGeneralGroup = "Options";
inline constexpr const char* kKnownGroup = "What is known about the files";
inline constexpr const char* kImportGroup =
    "For 'convert' and 'head'; checked, and without effect on the layout";

// The heading of the same options where they act.
inline constexpr const char* kRulesGroup = "How the table is read";

// What the help of the tool and the manual page show.
struct HelpExample {
  std::string_view command;
  std::string_view what;
};
std::span<const HelpExample> help_examples();

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
