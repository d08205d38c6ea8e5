#include "tool/html/picture_html.hpp"

#include <fmt/format.h>

#include "tool/grouped.hpp"
#include "tool/html/html_text.hpp"

namespace textio::tool {
namespace {

// The class of a part of a line in the style sheet; columns alternate between two colours.
std::string class_of(const Span& span) {
  const bool is_odd = span.column != kNoColumn && span.column % 2 == 1;
  switch (span.role) {
    case SpanRole::cell:
      return is_odd ? "cell odd" : "cell";
    case SpanRole::name:
      return is_odd ? "name odd" : "name";
    case SpanRole::unit:
      return is_odd ? "unit odd" : "unit";
    case SpanRole::quote:
      return "quote";
    case SpanRole::delimiter:
      return "delimiter";
    case SpanRole::border:
      return "border";
    case SpanRole::padding:
    case SpanRole::text:
      break;
  }
  return "";
}

// A blank that is the delimiter cannot be seen, and is shown as a dot.
std::string shown_delimiter(const std::string& text) {
  std::string out;
  for (const char c : text) {
    if (c == ' ') {
      out += "\xC2\xB7";
    } else {
      out += c;
    }
  }
  return out;
}

class PictureWriter {
 public:
  explicit PictureWriter(const Picture& picture) : picture_(picture) {}

  std::string write() {
    out_ =
        "<div class=\"scroll\" role=\"group\" aria-label=\"First lines of the file\" "
        "tabindex=\"0\">\n"
        "<table class=\"picture\">\n<thead><tr><th scope=\"col\">Line</th>"
        "<th scope=\"col\">What it is</th><th scope=\"col\">Text</th></tr></thead>\n<tbody>\n";
    for (const Row& row : picture_.rows) add(row);
    out_ += "</tbody>\n</table>\n</div>\n";
    if (has_more_cells_) {
      out_ += fmt::format("<p class=\"note\">Of the {} columns the first {} are shown.</p>\n",
                          grouped(picture_.num_columns), kMostShownCells);
    }
    return std::move(out_);
  }

 private:
  void add(const Row& row) {
    if (row.role == RowRole::hidden || row.role == RowRole::unseen) return add_gap(row);
    out_ += fmt::format(
        "<tr class=\"{}\"><th scope=\"row\">{}</th><td class=\"role\">{}</td><td class=\"line\">",
        to_string(row.role), row.line ? grouped(*row.line) : std::string("end"),
        to_string(row.role));
    for (const Span& span : row.spans) {
      if (span.column != kNoColumn && span.column >= kMostShownCells) {
        has_more_cells_ = true;
        out_ += "\xE2\x80\xA6";
        break;
      }
      add(span);
    }
    out_ += "</td></tr>\n";
  }

  void add(const Span& span) {
    const bool is_delimiter = span.role == SpanRole::delimiter;
    const std::size_t most = span.role == SpanRole::text ? kLongestShownLine : kLongestShownCell;
    const std::string text = html_cut(is_delimiter ? shown_delimiter(span.text) : span.text, most);
    const std::string classes = class_of(span);
    if (classes.empty() && span.role == SpanRole::padding) {
      out_ += text;
    } else if (classes.empty()) {
      out_ += fmt::format("<bdi>{}</bdi>", text);
    } else {
      out_ += fmt::format("<bdi class=\"{}\">{}</bdi>", classes, text);
    }
  }

  void add_gap(const Row& row) {
    std::string sentence = "more lines";
    if (row.num_lines) {
      sentence = fmt::format("{}{} more line{}", row.is_estimate ? "about " : "",
                             grouped(*row.num_lines), *row.num_lines == 1 ? "" : "s");
    }
    if (row.role == RowRole::unseen) sentence += ", not looked at";
    out_ += fmt::format("<tr class=\"gap\"><td></td><td></td><td>{}</td></tr>\n", sentence);
  }

  const Picture& picture_;
  std::string out_;
  bool has_more_cells_ = false;
};

}  // namespace

std::string picture_html(const Picture& picture) { return PictureWriter(picture).write(); }

}  // namespace textio::tool
