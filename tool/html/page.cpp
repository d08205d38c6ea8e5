#include "tool/html/page.hpp"

#include <fmt/format.h>

#include <vltextstream/version.hpp>

#include "tool/grouped.hpp"
#include "tool/html/html_text.hpp"
#include "tool/html/overview.hpp"
#include "tool/html/page_assets.hpp"

namespace textio::tool {
namespace {

// Characters.
constexpr std::size_t kLongestPath = 300;
constexpr std::size_t kLongestNames = 200;

std::string head(const std::string& title) {
  return fmt::format(
      "<!DOCTYPE html>\n<html lang=\"en\">\n<head>\n<meta charset=\"utf-8\">\n"
      "<meta http-equiv=\"Content-Security-Policy\" content=\"default-src 'none'; style-src '{}'; "
      "script-src '{}'; base-uri 'none'; form-action 'none'\">\n"
      "<meta name=\"viewport\" content=\"width=device-width, initial-scale=1\">\n"
      "<meta name=\"color-scheme\" content=\"light dark\">\n"
      "<title>{}</title>\n<style>{}</style>\n</head>\n",
      policy_source(kPageStyleDigest), policy_source(kPageScriptDigest), title, kPageStyle);
}

std::string problems(const std::vector<PageFile>& files) {
  std::string items;
  for (const PageFile& file : files) {
    if (file.problem.empty()) continue;
    items += fmt::format("<li><bdi>{}</bdi></li>\n", html_cut(file.problem, kLongestPath * 2));
  }
  if (items.empty()) return {};
  return "<section aria-labelledby=\"problems\">\n<h2 id=\"problems\">Files that could not be "
         "read</h2>\n<ul>\n" +
         items + "</ul>\n</section>\n";
}

std::string title_of(const std::vector<PageFile>& files) {
  if (files.size() == 1) {
    const std::string& path = files.front().path;
    return html_cut(path.substr(path.rfind('/') + 1), kLongestNames) + " - vltext report";
  }
  return fmt::format("{} files - vltext report", grouped(files.size()));
}

}  // namespace

std::string anchor_of(std::size_t index) { return fmt::format("file-{}", index + 1); }

std::string page_of(const std::vector<PageFile>& files, double least_confidence) {
  const bool has_several = files.size() > 1;
  std::string out = head(title_of(files));
  out += fmt::format(
      "<body class=\"vltext\">\n<a class=\"skip\" href=\"#main\">Skip to the report</a>\n"
      "<header>\n<p class=\"note\">vltext report</p>\n<h1>{}</h1>\n</header>\n",
      has_several ? fmt::format("How {} files are laid out", grouped(files.size()))
                  : std::string("How the table is laid out"));
  if (has_several) out += overview_html(files, least_confidence);
  out += "<main id=\"main\" tabindex=\"-1\">\n" + problems(files);
  for (std::size_t i = 0; i < files.size(); ++i) {
    if (!files[i].problem.empty()) continue;
    const std::string anchor = anchor_of(i);
    out += fmt::format(
        "<section class=\"file\" id=\"{0}\" aria-labelledby=\"{0}-name\">\n"
        "<h2 id=\"{0}-name\"><bdi>{1}</bdi></h2>\n",
        anchor, html_cut(files[i].path, kLongestPath));
    out += files[i].section;
    if (has_several) out += "<p class=\"up\"><a href=\"#overview\">Back to the files</a></p>\n";
    out += "</section>\n";
  }
  out += fmt::format(
      "</main>\n<footer><p>Made by vltext {}. The page holds parts of the files, and needs nothing "
      "from the "
      "network.</p></footer>\n<p id=\"said\" class=\"unseen-text\" role=\"status\" "
      "aria-live=\"polite\"></p>\n<script>{}</script>\n</body>\n</html>\n",
      html(libvltextstream_version), kPageScript);
  return out;
}

}  // namespace textio::tool
