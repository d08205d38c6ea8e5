#include <vltextstream/layout/table_lines.hpp>

namespace textio::standalone {

std::string_view to_string(NamesSource source) {
  switch (source) {
    case NamesSource::last_header_line:
      return "last-header-line";
    case NamesSource::line_after_header:
      return "line-after-header";
    case NamesSource::none:
      return "none";
    case NamesSource::undecided:
      return "undecided";
  }
  return "";
}

std::string_view to_string(LineRole role) {
  switch (role) {
    case LineRole::header:
      return "header";
    case LineRole::names:
      return "names";
    case LineRole::units:
      return "units";
    case LineRole::blank:
      return "blank";
    case LineRole::comment:
      return "comment";
    case LineRole::data:
      return "data";
    case LineRole::footer:
      return "footer";
  }
  return "";
}

}  // namespace textio::standalone
