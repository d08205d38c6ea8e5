#include <vltextstream/layout/layout.hpp>

#include <vltextstream/text/utf8.hpp>

namespace textio::standalone {

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
