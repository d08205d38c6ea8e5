#include "tool/showing/picture_choice.hpp"

#include <algorithm>
#include <charconv>
#include <cstdlib>

#include <sys/ioctl.h>
#include <unistd.h>

#include "tool/command_parts.hpp"
#include "tool/option_words.hpp"
#include "tool/usage_errors.hpp"

namespace textio::tool {
namespace {

constexpr std::size_t kUsualWidth = 80;

Color color_named(const std::optional<std::string>& typed) {
  if (!typed) return Color::automatic;
  switch (place_among_words("--color", *typed)) {
    case 1:
      return Color::always;
    case 2:
      return Color::never;
    default:
      return Color::automatic;
  }
}

std::string value_of(const char* variable) {
  const char* const value = std::getenv(variable);
  return value == nullptr ? std::string() : value;
}

// A width that makes sense; 0: it does not.
std::size_t sensible(std::size_t width) {
  return width >= kLeastWidth && width <= kMostWidth ? width : 0;
}

std::size_t width_in(const std::string& columns) {
  std::size_t width = 0;
  const char* const end = columns.data() + columns.size();
  const auto [stop, problem] = std::from_chars(columns.data(), end, width);
  return problem == std::errc() && stop == end ? sensible(width) : 0;
}

std::size_t chosen_width(const PictureOptions& typed, const Surroundings& around) {
  if (typed.width) return to_number("--width", *typed.width, kLeastWidth, kMostWidth);
  if (const std::size_t width = width_in(around.columns); width > 0) return width;
  if (around.terminal_width == 0) return kUsualWidth;
  return std::clamp(around.terminal_width, kLeastWidth, kMostWidth);
}

}  // namespace

void declare_picture(CLI::App& app, PictureOptions& typed) {
  app.add_flag("--picture", typed.picture,
               "Also show the first lines of each file, and what each of them and of its parts is; "
               "on a terminal this is what happens for a single FILE");
  app.add_flag("--no-picture", typed.no_picture, "Do not show them on a terminal either");
  app.add_option("--color", typed.color,
                 "When the lines are shown in colours: auto, on a terminal that has them unless "
                 "NO_COLOR is set, which is what happens if not given; always, and show them; or "
                 "never")
      ->type_name("WHEN");
  app.add_option("--width", typed.width,
                 "Show them N places wide; if not given, as wide as COLUMNS or the terminal says, "
                 "otherwise 80")
      ->type_name("N");
}

Surroundings surroundings_of(std::FILE* out) {
  Surroundings around;
  const int number = fileno(out);
  around.is_terminal = isatty(number) != 0;
  winsize size = {};
  if (around.is_terminal && ioctl(number, TIOCGWINSZ, &size) == 0)
    around.terminal_width = size.ws_col;
  around.term = value_of("TERM");
  around.no_color = value_of("NO_COLOR");
  around.columns = value_of("COLUMNS");
  return around;
}

std::optional<TerminalStyle> chosen_style(const PictureOptions& typed, const Surroundings& around,
                                          std::size_t num_files) {
  if (typed.picture && typed.no_picture)
    throw UsageError("--picture and --no-picture contradict one another");
  const Color color = color_named(typed.color);
  const std::size_t width = chosen_width(typed, around);
  const bool is_asked_for = typed.picture || color == Color::always;
  const bool is_usual = around.is_terminal && num_files == 1;
  if (typed.no_picture || !(is_asked_for || is_usual)) return std::nullopt;
  const bool has_terminal_colors = around.is_terminal && around.no_color.empty() &&
                                   !around.term.empty() && around.term != "dumb";
  const bool has_color =
      color == Color::always || (color == Color::automatic && has_terminal_colors);
  return TerminalStyle{width, has_color};
}

}  // namespace textio::tool
