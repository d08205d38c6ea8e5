#include "tool/html/file_section.hpp"

#include <algorithm>
#include <exception>
#include <filesystem>
#include <new>
#include <optional>
#include <stdexcept>
#include <string_view>
#include <system_error>
#include <vector>

#include <fmt/format.h>

#include <vltextstream/reading/first_lines.hpp>
#include <vltextstream/reading/table_reader.hpp>
#include <vltextstream/text/utf8.hpp>

#include "tool/answers.hpp"
#include "tool/catalog/catalog_row.hpp"
#include "tool/emit/targets.hpp"
#include "tool/grouped.hpp"
#include "tool/html/column_values.hpp"
#include "tool/html/html_text.hpp"
#include "tool/html/layout_html.hpp"
#include "tool/html/picture_html.hpp"
#include "tool/report.hpp"
#include "tool/safe_text.hpp"
#include "tool/showing/picture.hpp"

namespace textio::tool {
namespace {

using reading::Account;
using reading::LineFate;
using reading::Oddity;
using standalone::Layout;

constexpr std::size_t kFewFiles = 20;
constexpr std::size_t kMostRivals = 3;
constexpr std::size_t kMostEvidence = 8;

std::string_view plural(std::uint64_t count) { return count == 1 ? "" : "s"; }

// ---------------------------------------------------------------------------------------------
// The answer

std::string confidence(const LayoutWords& words, bool is_doubtful) {
  if (words.confidence.empty()) return {};
  std::string out =
      fmt::format("<p{}>The tool is <strong>{}</strong> sure of this{}.",
                  is_doubtful ? " class=\"doubt\"" : "", html(words.confidence),
                  is_doubtful ? ": look at the first lines, and at the other answers" : "");
  if (words.rivals.empty()) return out + " No other answer is worth mentioning.</p>\n";
  out += "</p>\n<ul>\n";
  for (std::size_t i = 0; i < std::min(words.rivals.size(), kMostRivals); ++i) {
    const RivalWords& rival = words.rivals[i];
    out += fmt::format("<li>{}: {}, {}; {}.</li>\n", i == 0 ? "Next best answer" : "After it",
                       html_cut(rival.what, kLongestDetail), html(rival.percent),
                       html_cut(rival.why_lost, kLongestDetail));
  }
  return out + "</ul>\n";
}

std::string sentences(std::string_view heading, const std::vector<std::string>& texts) {
  if (texts.empty()) return {};
  std::string out = fmt::format("<p>{}</p>\n<ul>\n", heading);
  for (std::size_t i = 0; i < std::min(texts.size(), kMostEvidence); ++i)
    out += fmt::format("<li>{}</li>\n", html_cut(texts[i], kLongestDetail));
  return out + "</ul>\n";
}

std::string reasons(const LayoutWords& words) {
  const std::string body = sentences("For the answer:", words.evidence_for) +
                           sentences("Against it:", words.evidence_against);
  if (body.empty()) return {};
  return "<details>\n<summary>Why this answer</summary>\n" + body + "</details>\n";
}

std::string fact(std::string_view name, const std::string& text) {
  if (text.empty()) return {};
  return fmt::format("<div><dt>{}</dt><dd><bdi>{}</bdi></dd></div>\n", name,
                     html_cut(text, kLongestDetail * 2));
}

std::string facts_list(const LayoutWords& words) {
  return "<dl>\n" + fact("Names", words.names) + fact("Encoding", words.encoding) +
         fact("Line ending", words.line_ending) + fact("Written", words.written) +
         fact("Looked at", words.looked_at) + fact("Lines looked at", words.lines) + "</dl>\n";
}

// ---------------------------------------------------------------------------------------------
// The columns

// The rows of the sample, typed as the layout says: a cell that does not fit its column is a missing one.
std::vector<ColumnValues> sampled_values(const std::string& file, const Layout& layout,
                                         const Arguments& arguments, std::size_t most_columns) {
  std::vector<ColumnValues> values;
  if (!layout.no_table.empty() || layout.lines.empty()) return values;
  reading::ReadSettings settings;
  settings.detect = arguments.settings;
  settings.widen = false;
  settings.detect.options.import_error_rule = {};
  reading::TableReader reader(file, layout, settings);
  const std::optional<reading::Batch> batch = reader.next();
  if (!batch) return values;
  const std::uint64_t last_line = layout.lines.back().last_line;
  const auto end = std::upper_bound(batch->lines.begin(), batch->lines.end(), last_line);
  const auto num_rows = static_cast<std::size_t>(end - batch->lines.begin());
  for (std::size_t i = 0; i < std::min(batch->columns.size(), most_columns); ++i)
    values.push_back(values_of(batch->columns[i], num_rows));
  return values;
}

// The rows that the values are of.
std::string which_rows(const Layout& layout, std::size_t num_rows) {
  if (!layout.has_more_text)
    return fmt::format("The values are those of all {} row{}.", grouped(num_rows),
                       plural(num_rows));
  return fmt::format("The values are those of the {} sampled row{}, not of the whole file.",
                     grouped(num_rows), plural(num_rows));
}

// ---------------------------------------------------------------------------------------------
// The whole file

std::string_view words_for(Oddity oddity) {
  switch (oddity) {
    case Oddity::misfit:
      return "a cell that does not fit its column";
    case Oddity::short_row:
      return "a row with fewer cells than there are columns";
    case Oddity::long_row:
      return "a row with more cells than there are columns";
    case Oddity::ill_formed:
      return "bytes that are not valid in the encoding";
    case Oddity::widened:
      return "a cell that does not fit what the sample suggests for its column";
  }
  return "";
}

std::string_view words_for(LineFate fate) {
  switch (fate) {
    case LineFate::preamble:
      return "above the table";
    case LineFate::names:
      return "names";
    case LineFate::units:
      return "units";
    case LineFate::descriptions:
      return "descriptions";
    case LineFate::data:
      return "data";
    case LineFate::blank:
      return "blank";
    case LineFate::comment:
      return "comments";
    case LineFate::rule:
      return "drawn rules";
    case LineFate::footer:
      return "footer";
    case LineFate::omitted:
      return "left out by a rule";
    case LineFate::failed:
      return "failed";
  }
  return "";
}

std::string place_of(const reading::OddPlace& place, const Facts& facts) {
  std::string out = "Line " + grouped(place.line);
  const bool is_cell = place.oddity == Oddity::misfit || place.oddity == Oddity::widened;
  if (is_cell && place.column > 0) {
    out += fmt::format(", column {}", place.column);
    if (place.column <= facts.columns.size())
      out += fmt::format(" (<bdi>{}</bdi>)",
                         html_cut(facts.columns[place.column - 1].name, kLongestShownName));
  }
  return fmt::format("<li>{}: {}: <q><bdi>{}</bdi></q></li>\n", out, words_for(place.oddity),
                     html_cut(place.text, kLongestShownName));
}

std::string misfits(const Facts& facts, std::size_t most) {
  std::uint64_t total = 0;
  for (const std::uint64_t count : facts.account.oddities) total += count;
  if (total == 0)
    return "<h3>What did not fit</h3>\n<p>Every line and every cell of the file fits.</p>\n";
  std::vector<reading::OddPlace> places = facts.account.places;
  std::stable_sort(places.begin(), places.end(),
                   [](const auto& a, const auto& b) { return a.line < b.line; });
  const std::size_t shown = std::min(places.size(), most);
  std::string out = "<h3>What did not fit</h3>\n<ul>\n";
  for (std::size_t i = 0; i < shown; ++i) out += place_of(places[i], facts);
  out += "</ul>\n";
  if (total > shown)
    out += fmt::format("<p class=\"note\">And {} more.</p>\n", grouped(total - shown));
  return out;
}

std::string account_table(const Account& account) {
  std::string out = fmt::format(
      "<h3>Where every line went</h3>\n<p>The whole file was read: {} line{}, {} row{}.</p>\n"
      "<table class=\"account\">\n<thead><tr><th scope=\"col\">Lines</th><th scope=\"col\" "
      "class=\"number\">Number"
      "</th><th scope=\"col\" class=\"number\">Bytes</th></tr></thead>\n<tbody>\n",
      grouped(account.num_lines), plural(account.num_lines), grouped(account.num_rows),
      plural(account.num_rows));
  for (std::size_t i = 0; i < reading::kLineFates; ++i) {
    const auto fate = static_cast<LineFate>(i);
    if (account.lines_of(fate) == 0) continue;
    out += fmt::format(
        "<tr><th scope=\"row\">{}</th><td class=\"number\">{}</td><td "
        "class=\"number\">{}</td></tr>\n",
        words_for(fate), grouped(account.lines_of(fate)), grouped(account.bytes_of(fate)));
  }
  return out + fmt::format(
                   "</tbody>\n<tfoot><tr><th scope=\"row\">all</th><td class=\"number\">{}</td>"
                   "<td class=\"number\">{}</td></tr></tfoot>\n</table>\n",
                   grouped(account.num_lines), grouped(account.num_bytes));
}

// ---------------------------------------------------------------------------------------------
// The programs

// What is not shown as it is could not be copied as it is.
bool can_be_shown(std::string_view program) {
  while (!program.empty()) {
    const Utf8Character character = first_character(program);
    const bool is_break = character.code == U'\n' || character.code == U'\t';
    if (!character.is_well_formed || (is_unprintable(character.code) && !is_break)) return false;
    program.remove_prefix(character.length);
  }
  return true;
}

std::string program_html(const Target& target, const Facts& facts, const std::string& id,
                         const SectionLimits& limits) {
  std::string body;
  try {
    const std::string program = target.program(facts);
    if (program.size() > limits.program_bytes) {
      body =
          fmt::format("<p>It is long: <code>vltext --emit {}</code> prints it.</p>\n", target.name);
    } else if (!can_be_shown(program)) {
      body = fmt::format(
          "<p>It has characters that cannot be shown: <code>vltext --emit {}</code> prints "
          "it.</p>\n",
          target.name);
    } else {
      body = fmt::format(
          "<button type=\"button\" class=\"copy\" data-copies=\"{0}\" hidden>Copy<span "
          "class=\"unseen-text\"> the program for {1}</span></button>\n"
          "<pre tabindex=\"0\" role=\"group\" aria-label=\"Program for {1}\"><code "
          "id=\"{0}\">{2}</code></pre>\n",
          id, target.name, html_lines(program));
    }
  } catch (const std::bad_alloc&) {
    throw;
  } catch (const std::exception& error) {
    body = fmt::format("<p>There is none: {}.</p>\n", html_cut(error.what(), kLongestDetail));
  }
  return fmt::format("<details>\n<summary>{}: {}</summary>\n{}</details>\n", target.name,
                     html(target.what), body);
}

std::string programs(const Facts& facts, const std::string& anchor, const SectionLimits& limits) {
  constexpr std::string_view kMostUsual[] = {"pandas", "duckdb", "readr"};
  std::string out = "<h3>Programs that read the whole file</h3>\n";
  std::size_t shown = 0;
  for (const Target& target : targets()) {
    const bool is_usual = std::find(std::begin(kMostUsual), std::end(kMostUsual), target.name) !=
                          std::end(kMostUsual);
    if (limits.num_programs <= std::size(kMostUsual) && !is_usual) continue;
    out += program_html(target, facts, fmt::format("{}-{}", anchor, target.name), limits);
    ++shown;
  }
  if (shown < targets().size())
    out += fmt::format(
        "<p class=\"note\">For others: <code>vltext FILE --emit NAME</code>, with {}.</p>\n",
        target_names());
  return out;
}

std::string whole_file(const std::string& file, const std::string& anchor,
                       const Arguments& arguments, const SectionLimits& limits) {
  try {
    const Facts facts = facts_of(file, arguments.settings, arguments.given);
    return misfits(facts, limits.num_places) + programs(facts, anchor, limits) +
           account_table(facts.account);
  } catch (const std::bad_alloc&) {
    throw;
  } catch (const std::exception& error) {
    return fmt::format(
        "<h3>The whole file</h3>\n<p class=\"doubt\">It could not be read: {}.</p>\n",
        html_cut(error.what(), kLongestDetail));
  }
}

// With the names as the page has them.
CatalogRow row_for(const std::string& file, const Layout& layout, const LayoutWords& words) {
  CatalogRow row = row_of(file, layout);
  const std::size_t num_shown = std::min(row.columns.size(), words.columns.size());
  for (std::size_t i = 0; i < num_shown; ++i) row.columns[i].name = words.columns[i].name;
  return row;
}

}  // namespace

SectionLimits limits_for(std::size_t num_files) {
  if (num_files == 1) return {200, targets().size(), 65'536, 50};
  if (num_files <= kFewFiles) return {60, targets().size(), 16'384, 20};
  return {20, 3, 8'192, 5};
}

PageFile section_of(const std::string& file, std::size_t index, const Arguments& arguments) {
  std::error_code ignored;
  if (std::filesystem::exists(file, ignored) && !std::filesystem::is_regular_file(file, ignored))
    throw std::runtime_error(file + ": not a regular file, and --html reads a file repeatedly");
  const SectionLimits limits = limits_for(arguments.files.size());
  const reading::FileTop top = reading::look_at_top(file, arguments.settings, kPictureRows);
  const Layout& layout = top.layout;
  LayoutWords words = words_of(layout, limits.num_columns, kind_without_table(layout));
  const bool is_table = layout.no_table.empty();
  const std::optional<Picture> picture = picture_of(top);
  if (picture) complete_names(*picture, words);

  PageFile page;
  page.path = file;
  page.confidence = words.confidence;
  page.is_doubtful = is_table && is_doubtful(layout, arguments);
  page.row = row_for(file, layout, words);
  page.section = verdict_html(layout, words) + confidence(words, page.is_doubtful) + reasons(words);
  if (picture) page.section += "<h3>First lines</h3>\n" + picture_html(*picture);
  if (is_table) {
    const auto values = sampled_values(file, layout, arguments, limits.num_columns);
    page.section += fmt::format("<h3>Columns</h3>\n<p class=\"note\">{}</p>\n",
                                which_rows(layout, values.empty() ? 0 : values.front().num_rows)) +
                    columns_html(layout, words, values);
  }
  page.section += "<h3>How it is written</h3>\n" + facts_list(words);
  if (is_table) page.section += whole_file(file, anchor_of(index), arguments, limits);
  return page;
}

}  // namespace textio::tool
