#include "tool/conventions/completions.hpp"

#include <algorithm>
#include <map>
#include <string_view>

#include <fmt/format.h>

#include "tool/option_words.hpp"
#include "tool/safe_text.hpp"
#include "tool/usage_errors.hpp"

namespace textio::tool {
namespace {

using Commands = std::vector<CommandEntry>;

std::string joined(const std::vector<std::string>& words) {
  return fmt::format("{}", fmt::join(words, " "));
}

// The first clause of a help text, for a line beside an option.
std::string clause(std::string_view help) {
  constexpr std::size_t kMostLetters = 60;
  std::size_t end = help.size();
  for (const std::string_view stop : {". ", "; ", ": "}) end = std::min(end, help.find(stop));
  std::string text(help.substr(0, end));
  if (text.size() <= kMostLetters) return text;
  return text.substr(0, text.rfind(' ', kMostLetters)) + " ...";
}

std::vector<std::string> names_with_words(const OptionEntry& option) {
  std::vector<std::string> names = option.names;
  if (option.has_optional_value) {
    for (const std::string& word : option.words) names.push_back(option.names.back() + "=" + word);
  }
  return names;
}

// The words after a command that takes no files.
std::vector<std::string> words_after(const std::string& command) {
  if (command == "completions") return shells();
  return command == "help" ? command_names() : std::vector<std::string>();
}

// -------------------------------------------------------------------------------------------------
// bash

// Each option that takes a value once, whatever commands have it.
std::string bash_values(const Commands& commands) {
  std::map<std::string, const OptionEntry*> by_name;
  for (const CommandEntry& command : commands) {
    for (const OptionEntry& option : command.options) {
      for (const std::string& name : option.names) {
        if (!option.value.empty()) by_name.try_emplace(name, &option);
      }
    }
  }
  std::string out;
  std::vector<std::string> any;
  for (const auto& [name, option] : by_name) {
    if (!option->words.empty()) {
      out += fmt::format("    {}) words=\"{}\" ;;\n", name, joined(option->words));
    } else {
      any.push_back(name);
    }
  }
  return out + fmt::format("    {}) return ;;\n", fmt::join(any, " | "));
}

std::string bash_options(const Commands& commands) {
  std::string out;
  for (const CommandEntry& command : commands) {
    if (command.name.empty()) continue;
    std::vector<std::string> names;
    for (const OptionEntry& option : command.options) {
      for (const std::string& name : names_with_words(option)) names.push_back(name);
    }
    out += fmt::format("    {}) options=\"{}\" ;;\n", command.name, joined(names));
  }
  std::vector<std::string> names;
  for (const OptionEntry& option : commands.front().options) {
    for (const std::string& name : names_with_words(option)) names.push_back(name);
  }
  return out + fmt::format("    *) options=\"{}\" ;;\n", joined(names));
}

std::string bash_script(const Commands& commands) {
  return fmt::format(
      R"(# Completions of vltext for bash, printed by "vltext completions bash".
_vltext() {{
  local current=${{COMP_WORDS[COMP_CWORD]}} previous=${{COMP_WORDS[COMP_CWORD-1]}}
  local options words=
  COMPREPLY=()
  # "=" is a word of its own.
  if [[ $current == "=" ]]; then
    current=
  elif [[ $previous == "=" ]]; then
    previous=${{COMP_WORDS[COMP_CWORD-2]}}
  fi
  case $previous in
{}  esac
  if [[ $COMP_CWORD -eq 2 ]]; then
    case ${{COMP_WORDS[1]}} in
      help) words="{}" ;;
      completions) words="{}" ;;
    esac
  fi
  if [[ -n $words ]]; then
    mapfile -t COMPREPLY < <(compgen -W "$words" -- "$current")
    return
  fi
  case ${{COMP_WORDS[1]}} in
{}  esac
  if [[ $current == -* ]]; then
    mapfile -t COMPREPLY < <(compgen -W "$options" -- "$current")
  elif [[ $COMP_CWORD -eq 1 ]]; then
    compopt -o filenames 2>/dev/null
    mapfile -t COMPREPLY < <(compgen -W "{}" -- "$current"; compgen -f -- "$current")
  fi
}}
complete -o bashdefault -o default -F _vltext vltext
)",
      bash_values(commands), joined(command_names()), joined(shells()), bash_options(commands),
      joined(command_names()));
}

// -------------------------------------------------------------------------------------------------
// zsh

std::string replaced(std::string text, std::string_view what, std::string_view by) {
  for (std::size_t at = text.find(what); at != text.npos; at = text.find(what, at + by.size()))
    text.replace(at, what.size(), by);
  return text;
}

// Within single quotes, and within the brackets around the description of an option.
std::string in_zsh(std::string text) {
  text = replaced(std::move(text), "\\", "\\\\");
  for (const char* const special : {"[", "]", ":"})
    text = replaced(std::move(text), special, std::string("\\") + special);
  return replaced(std::move(text), "'", "'\\''");
}

std::string zsh_option(const std::string& name, const OptionEntry& option) {
  const std::string text = in_zsh(clause(option.help));
  if (option.value.empty()) {
    const std::string rest = option.has_optional_value
                                 ? fmt::format("::WORD:({})", joined(option.words))
                                 : std::string();
    return fmt::format("      '*{}{}[{}]{}'\n", name, rest.empty() ? "" : "=-", text, rest);
  }
  std::string action = " ";
  if (!option.words.empty()) action = "(" + joined(option.words) + ")";
  if (option.takes_file()) action = "_files";
  const char* const separator = name.starts_with("--") ? "=" : "+";
  return fmt::format("      '*{}{}[{}]:{}:{}'\n", name, separator, text, in_zsh(option.value),
                     action);
}

std::string zsh_options(const CommandEntry& command) {
  std::string out;
  for (const OptionEntry& option : command.options) {
    for (const std::string& name : option.names) out += zsh_option(name, option);
  }
  return out;
}

std::string zsh_script(const Commands& commands) {
  std::string named;
  std::string descriptions;
  for (const CommandEntry& command : commands) {
    if (command.name.empty()) continue;
    descriptions += fmt::format("      '{}:{}'\n", command.name, in_zsh(clause(command.summary)));
    const std::vector<std::string> words = words_after(command.name);
    if (!words.empty()) {
      named += fmt::format("    {}) _values word {} ; return ;;\n", command.name, joined(words));
    } else if (!command.options.empty()) {
      named += fmt::format("    {}) options=(\n{}      ) ;;\n", command.name, zsh_options(command));
    }
  }
  return fmt::format(
      R"(#compdef vltext
# Completions of vltext for zsh, printed by "vltext completions zsh".
_vltext() {{
  local -a options commands
  case $words[2] in
{}    *) options=(
{}      ) ;;
  esac
  if (( CURRENT == 2 )) && [[ $words[2] != -* ]]; then
    commands=(
{}    )
    _describe command commands
    _files
    return
  fi
  _arguments -s $options '*:FILE:_files'
}}
_vltext "$@"
)",
      named, zsh_options(commands.front()), descriptions);
}

// -------------------------------------------------------------------------------------------------
// fish

std::string in_fish(std::string text) {
  text = replaced(std::move(text), "\\", "\\\\");
  return replaced(std::move(text), "'", "\\'");
}

std::string fish_option(const OptionEntry& option, const std::string& condition) {
  std::string names;
  for (const std::string& name : option.names) {
    names += name.starts_with("--") ? " -l " + name.substr(2) : " -s " + name.substr(1);
  }
  std::string values;
  if (!option.value.empty()) values = option.takes_file() ? " -r" : " -x";
  if (!option.value.empty() && !option.words.empty())
    values += " -a '" + joined(option.words) + "'";
  const std::string what = in_fish(clause(option.help));
  std::string out =
      fmt::format("complete -c vltext -n '{}'{}{} -d '{}'\n", condition, names, values, what);
  if (!option.has_optional_value) return out;
  for (const std::string& word : option.words) {
    out += fmt::format("complete -c vltext -n '{}' -a '{}={}' -d '{}'\n", condition,
                       option.names.back(), word, what);
  }
  return out;
}

std::string fish_script(const Commands& commands) {
  std::string out = "# Completions of vltext for fish, printed by \"vltext completions fish\".\n";
  const std::string all = joined(command_names());
  for (const CommandEntry& command : commands) {
    const bool has_name = !command.name.empty();
    const std::string condition = has_name ? "__fish_seen_subcommand_from " + command.name
                                           : "not __fish_seen_subcommand_from " + all;
    if (has_name) {
      out += fmt::format("complete -c vltext -n '__fish_use_subcommand' -a {} -d '{}'\n",
                         command.name, in_fish(clause(command.summary)));
    }
    for (const OptionEntry& option : command.options) out += fish_option(option, condition);
    for (const std::string& word : words_after(command.name))
      out += fmt::format("complete -c vltext -n '{}' -x -a {}\n", condition, word);
  }
  return out;
}

}  // namespace

const std::vector<std::string>& shells() {
  static const std::vector<std::string> names = {"bash", "zsh", "fish"};
  return names;
}

std::string completions(const std::string& shell, const Commands& commands) {
  if (shell == "bash") return bash_script(commands);
  if (shell == "zsh") return zsh_script(commands);
  if (shell == "fish") return fish_script(commands);
  throw BadArgument("completions", fmt::format("Expected {}, got '{}'.{}", either_of(shells()),
                                               shortened(shell), meant(shell, shells())));
}

}  // namespace textio::tool
