// Whether a picture is shown, how wide and in which colours: from the options, the environment and the terminal.
//
//   PictureOptions typed;
//   declare_picture(app, typed);
//   // ... parse ...
//   const std::optional<TerminalStyle> style = chosen_style(typed, surroundings_of(stdout), num_files);
//
// Without options a picture is shown on a terminal alone, and only for a single file. Colours are for terminals that
// have them, unless NO_COLOR has a value; --color always shows the picture in colours anywhere.
//
// Errors  UsageError and BadArgument.
#pragma once

#include <cstddef>
#include <cstdio>
#include <optional>
#include <string>

#include <CLI/App.hpp>

#include "tool/showing/terminal_picture.hpp"

namespace textio::tool {

enum class Color { automatic, always, never };

struct PictureOptions {
  std::optional<std::string> color = std::nullopt;
  std::optional<std::string> width = std::nullopt;
  bool picture = false;
  bool no_picture = false;
};

// What the options meet.
struct Surroundings {
  bool is_terminal = false;
  std::size_t terminal_width = 0;  // 0: not known
  std::string term;                // $TERM
  std::string no_color;            // $NO_COLOR
  std::string columns;             // $COLUMNS
};

void declare_picture(CLI::App& app, PictureOptions& typed);

Surroundings surroundings_of(std::FILE* out);

// None: no picture.
std::optional<TerminalStyle> chosen_style(const PictureOptions& typed, const Surroundings& around,
                                          std::size_t num_files);

}  // namespace textio::tool
