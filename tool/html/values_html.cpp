#include "tool/html/values_html.hpp"

#include <algorithm>

#include <fmt/format.h>

#include "tool/grouped.hpp"
#include "tool/html/html_text.hpp"

namespace textio::tool {
namespace {

constexpr std::size_t kBarWidth = 9;
constexpr std::size_t kBarStep = 10;
constexpr std::size_t kHeight = 36;

std::string value_html(const std::string& text) {
  if (text.empty()) return "<em>empty text</em>";
  return fmt::format("<bdi>{}</bdi>", html_cut(text, kLongestShownValue));
}

// A bar that counts anything can be seen.
std::string bars_html(const std::vector<std::size_t>& bars) {
  const std::size_t most = std::max<std::size_t>(1, *std::max_element(bars.begin(), bars.end()));
  const std::size_t width = bars.size() * kBarStep;
  std::string out = fmt::format(
      "<svg class=\"histogram\" role=\"img\" width=\"{0}\" height=\"{1}\" viewBox=\"0 0 {0} {1}\" "
      "aria-label=\"Histogram; values in each of {2} bars: {3}\">",
      width, kHeight + 1, bars.size(), fmt::join(bars, ", "));
  for (std::size_t i = 0; i < bars.size(); ++i) {
    const std::size_t height =
        bars[i] == 0 ? 0 : std::max<std::size_t>(2, bars[i] * kHeight / most);
    if (height == 0) continue;
    out += fmt::format("<rect x=\"{}\" y=\"{}\" width=\"{}\" height=\"{}\"/>", i * kBarStep,
                       kHeight - height, kBarWidth, height);
  }
  return out + fmt::format("<path d=\"M0 {}H{}\"/></svg>", kHeight, width);
}

std::string frequent_html(const ColumnValues& values) {
  const std::size_t num_values = values.num_rows - values.num_missing;
  const bool are_all_different = values.num_different == num_values && num_values > 1;
  std::string out = are_all_different ? "<p>all different, first</p>" : "";
  out += "<ul>";
  for (const FrequentValue& each : values.frequent) {
    out += fmt::format("<li>{}", value_html(each.text));
    if (!are_all_different)
      out += fmt::format(" <span class=\"count\">{} time{}</span>", grouped(each.count),
                         each.count == 1 ? "" : "s");
    out += "</li>";
  }
  out += "</ul>";
  const std::size_t others = values.num_different - values.frequent.size();
  if (others > 0 && !are_all_different)
    out += fmt::format("<p>and {} other{}</p>", grouped(others), others == 1 ? "" : "s");
  return out;
}

}  // namespace

std::string values_html(const ColumnValues& values) {
  std::string out;
  if (!values.bars.empty()) {
    out = bars_html(values.bars);
    out += fmt::format("<p>{} to {}, middle {}</p>", html_cut(values.least, kLongestShownValue),
                       html_cut(values.most, kLongestShownValue),
                       html_cut(values.middle, kLongestShownValue));
  } else if (!values.frequent.empty()) {
    out = frequent_html(values);
  } else if (values.num_missing == 0) {
    out = "<p>no values</p>";
  }
  if (values.num_missing > 0)
    out += fmt::format("<p>{} missing or not of this kind</p>", grouped(values.num_missing));
  return out;
}

}  // namespace textio::tool
