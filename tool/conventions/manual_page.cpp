#include "tool/conventions/manual_page.hpp"

#include <algorithm>

#include <vltextstream/version.hpp>

#include "tool/help.hpp"

namespace textio::tool {
namespace {

class Page {
 public:
  void title() {
    out_ += std::string(".TH VLTEXT 1 \"\" \"vltext ") + libvltextstream_version +
            "\" \"User Commands\"\n";
  }
  void section(std::string_view name) { out_ += ".SH " + std::string(name) + "\n"; }
  void subsection(std::string_view name) { out_ += ".SS \"" + in_roff(name) + "\"\n"; }

  // Each line of the text is a paragraph.
  void paragraphs(std::string_view text) {
    while (!text.empty()) {
      const std::size_t end = std::min(text.find('\n'), text.size());
      out_ += ".PP\n" + in_roff(text.substr(0, end)) + "\n";
      text.remove_prefix(std::min(end + 1, text.size()));
    }
  }

  void entry(const std::string& tag, std::string_view text) {
    out_ += ".TP\n" + tag + "\n" + in_roff(text) + "\n";
  }

  void example(std::string_view command, std::string_view what) {
    out_ += ".TP\n\\fB" + in_roff(command) + "\\fR\n" + in_roff(what) + "\n";
  }

  void line(const std::string& text) { out_ += text + "\n"; }

  std::string take() { return std::move(out_); }

 private:
  std::string out_;
};

// \fB-o\fR, \fB--output\fR \fIOUT\fR
std::string tag_of(const OptionEntry& option) {
  std::string tag;
  for (const std::string& name : option.names) {
    if (!tag.empty()) tag += ", ";
    tag += "\\fB" + in_roff(name) + "\\fR";
  }
  if (option.has_optional_value) tag += "[=\\fI" + in_roff(option.words.front()) + "\\fR]";
  if (!option.value.empty()) tag += " \\fI" + in_roff(option.value) + "\\fR";
  return tag;
}

// Group after group, as in the help.
void add_options(Page& page, const CommandEntry& command) {
  std::vector<std::string> groups;
  for (const OptionEntry& option : command.options) {
    if (std::find(groups.begin(), groups.end(), option.group) == groups.end())
      groups.push_back(option.group);
  }
  for (const std::string& group : groups) {
    if (group != kGeneralGroup) page.subsection(group);
    for (const OptionEntry& option : command.options) {
      if (option.group == group) page.entry(tag_of(option), option.help);
    }
  }
}

bool has_option(const CommandEntry& command, const OptionEntry& option) {
  return std::any_of(command.options.begin(), command.options.end(),
                     [&](const OptionEntry& each) { return each.names == option.names; });
}

// Those that the layouts do not have.
void add_own_options(Page& page, const CommandEntry& command, const CommandEntry& layouts) {
  for (const OptionEntry& option : command.options) {
    if (!has_option(layouts, option)) page.entry(tag_of(option), option.help);
  }
}

}  // namespace

std::string in_roff(std::string_view text) {
  std::string out;
  bool begins_line = true;
  for (const char c : text) {
    if (begins_line && (c == '.' || c == '\'')) out += "\\&";
    begins_line = c == '\n';
    if (c == '\\') {
      out += "\\e";
    } else if (c == '-') {
      out += "\\-";
    } else if (c == '\'') {
      out += "\\(aq";
    } else if (c == '"') {
      out += "\\(dq";
    } else if (c == '^') {
      out += "\\(ha";
    } else if (c == '~') {
      out += "\\(ti";
    } else {
      out += c;
    }
  }
  return out;
}

std::string manual_page(const std::vector<CommandEntry>& commands) {
  const CommandEntry& layouts = commands.front();
  Page page;
  page.title();
  page.section("NAME");
  page.line("vltext \\- work out how the table in a text file is laid out, and read it");
  page.section("SYNOPSIS");
  for (const CommandEntry& command : commands) {
    const bool has_options = !command.options.empty();
    page.line(".B vltext" + (command.name.empty() ? "" : " " + command.name));
    page.line(std::string(has_options ? "[\\fIOPTION\\fR]... " : "") + "\\fI" +
              in_roff(command.arguments) + "\\fR");
    page.line(".br");
  }
  page.section("DESCRIPTION");
  page.paragraphs(layouts.description);
  for (const CommandEntry& command : commands) {
    if (command.name.empty() || command.options.empty()) continue;
    page.subsection("vltext " + command.name);
    page.paragraphs(command.description);
  }
  page.section("OPTIONS");
  add_options(page, layouts);
  for (const CommandEntry& command : commands) {
    if (command.name.empty() || command.options.empty()) continue;
    page.section("\"OPTIONS OF VLTEXT " + std::string(command.name == "head" ? "HEAD" : "CONVERT") +
                 "\"");
    page.paragraphs("Besides most of the above:");
    add_own_options(page, command, layouts);
  }
  page.section("\"EXIT STATUS\"");
  for (const CommandEntry& command : commands) {
    if (command.footer.empty()) continue;
    if (!command.name.empty()) page.subsection("vltext " + command.name);
    page.paragraphs(command.footer);
  }
  page.section("ENVIRONMENT");
  page.entry("\\fBNO_COLOR\\fR", "If it has a value, nothing is coloured without --color always.");
  page.entry("\\fBTERM\\fR", "If it is dumb or has no value, nothing is coloured either.");
  page.entry("\\fBCOLUMNS\\fR", "How many places wide the first lines are shown.");
  page.section("EXAMPLES");
  for (const HelpExample& example : help_examples()) page.example(example.command, example.what);
  return page.take();
}

}  // namespace textio::tool
