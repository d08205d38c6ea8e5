#include <vltextstream/layout/layout.hpp>

#include <vltextstream/text/utf8.hpp>

namespace textio::standalone {

std::string_view to_string(Escape escape) {
  switch (escape) {
    case Escape::none:
      return "none";
    case Escape::doubled:
      return "doubled";
    case Escape::backslash:
      return "backslash";
  }
  return "";
}

std::string_view to_string(Judge judge) {
  switch (judge) {
    case Judge::assessment:
      return "assessment";
    case Judge::cascade:
      return "cascade";
  }
  return {};
}

Dialect dialect_of(const Layout& layout) {
  Dialect dialect;
  dialect.mode = layout.mode;
  for (const std::u16string& delimiter : layout.delimiters) {
    dialect.delimiters.push_back(to_utf8_lossy(delimiter));
  }
  dialect.widths = layout.widths;
  return dialect;
}

}  // namespace textio::standalone
