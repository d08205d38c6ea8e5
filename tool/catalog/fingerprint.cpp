#include "tool/catalog/fingerprint.hpp"

#include <algorithm>
#include <array>
#include <string>

#include <boost/uuid/name_generator_sha1.hpp>
#include <boost/uuid/string_generator.hpp>
#include <boost/uuid/uuid_io.hpp>

#include "tool/catalog/catalog_row.hpp"

namespace textio::tool {
namespace {

struct Family {
  std::string_view kind;
  std::string_view family;
};

// Whether all numbers of a file happen to be whole, or its texts to repeat, is an accident.
constexpr Family kFamilies[] = {
    {"integer", "number"},
    {"decimal", "number"},
    {"scientific", "number"},
    {"epoch-seconds", "number"},
    {"epoch-milliseconds", "number"},
    {"category", "text"},
    {"identifier", "text"},
    {"uuid", "text"},
    {"url", "text"},
    {"email", "text"},
    {"ip", "text"},
};

std::string joined(const std::vector<std::size_t>& numbers) {
  std::string text;
  for (const std::size_t number : numbers) {
    if (!text.empty()) text += ',';
    text += std::to_string(number);
  }
  return text;
}

std::string_view yes_or_no(bool truth) { return truth ? "yes" : "no"; }

}  // namespace

std::string_view family_of(std::string_view kind) noexcept {
  for (const Family& each : kFamilies) {
    if (each.kind == kind) return each.family;
  }
  return kind;
}

void append_part(std::string& canonical, std::string_view text) {
  canonical += std::to_string(text.size());
  canonical += ':';
  canonical += text;
  canonical += ',';
}

// A file in which nothing happens to be quoted is read by the usual quote as well, and one without decimals by the
// point.
std::string canonical_layout(const CatalogRow& row) {
  std::string text;
  append_part(text, row.mode);
  append_part(text, std::to_string(row.delimiters.size()));
  for (const std::string& delimiter : row.delimiters) append_part(text, delimiter);
  append_part(text, joined(row.widths));
  append_part(text, row.quote.empty() ? "\"" : row.quote);
  append_part(text, row.decimal.empty() ? "." : row.decimal);
  append_part(text, row.encoding);
  append_part(text, yes_or_no(row.has_byte_order_mark));
  append_part(text, row.line_ending);
  append_part(text, std::to_string(row.header_lines));
  append_part(text, yes_or_no(row.names_line.has_value()));
  append_part(text, yes_or_no(row.units_line.has_value()));
  return text;
}

std::string canonical_schema(const CatalogRow& row) {
  std::string text;
  for (const CatalogColumn& column : row.columns) {
    append_part(text, column.name);
    append_part(text, family_of(column.kind));
    append_part(text, column.unit);
  }
  return text;
}

std::string fingerprint_of(std::string_view canonical) {
  const boost::uuids::uuid space =
      boost::uuids::string_generator()(kFingerprintSpace.begin(), kFingerprintSpace.end());
  const boost::uuids::uuid made =
      boost::uuids::name_generator_sha1(space)(canonical.data(), canonical.size());
  return boost::uuids::to_string(made);
}

}  // namespace textio::tool
