#include "tool/catalog/catalog_row.hpp"

#include <cstdlib>
#include <cstring>
#include <ctime>
#include <new>
#include <stdexcept>

#include <fmt/format.h>
#include <nlohmann/json.hpp>

#include <sys/stat.h>

#include <vltextstream/layout/file_error.hpp>
#include <vltextstream/layout/given_mismatch.hpp>
#include <vltextstream/text/utf8.hpp>

#include "tool/catalog/fingerprint.hpp"
#include "tool/file_kind.hpp"
#include "tool/json_writer.hpp"

namespace textio::tool {
namespace {

using nlohmann::json;
using standalone::Layout;

std::string utf8_of(std::u16string_view text) { return to_utf8_lossy(text); }

std::string utf8_of(const std::optional<char16_t>& unit) {
  return unit ? to_utf8_lossy(std::u16string_view(&*unit, 1)) : std::string();
}

std::string text_at(const std::vector<std::u16string>& texts, std::size_t index) {
  return index < texts.size() ? utf8_of(texts[index]) : std::string();
}

std::vector<CatalogColumn> columns_of(const Layout& layout) {
  std::vector<CatalogColumn> columns;
  columns.reserve(layout.columns.size());
  for (std::size_t i = 0; i < layout.columns.size(); ++i) {
    columns.push_back({text_at(layout.names, i), std::string(to_string(layout.columns[i].kind)),
                       text_at(layout.units, i)});
  }
  return columns;
}

// ---------------------------------------------------------------------------------------------
// What the file system knows

std::string time_text(const timespec& time) {
  std::tm parts = {};
  if (gmtime_r(&time.tv_sec, &parts) == nullptr) return {};
  return fmt::format("{:04}-{:02}-{:02}T{:02}:{:02}:{:02}.{:09}Z", parts.tm_year + 1900L,
                     parts.tm_mon + 1, parts.tm_mday, parts.tm_hour, parts.tm_min, parts.tm_sec,
                     time.tv_nsec);
}

std::string_view kind_of(mode_t mode) {
  if (S_ISDIR(mode)) return "a folder";
  if (S_ISFIFO(mode)) return "a pipe";
  if (S_ISSOCK(mode)) return "a socket";
  return "a device";
}

// The message without what it says of the path.
std::string_view reason_of(std::string_view message, std::string_view path) {
  const std::size_t at = message.find(path);
  const std::size_t colon = at == message.npos ? at : message.find(": ", at + path.size());
  return colon == message.npos ? message : message.substr(colon + 2);
}

CatalogRow row_of_regular_file(const std::string& path,
                               const standalone::DetectSettings& settings) {
  try {
    const Layout layout = standalone::detect_layout(path, settings);
    return row_of(path, layout);
  } catch (const std::bad_alloc&) {
    throw;
  } catch (const std::exception& error) {
    return failed_row(path, reason_of(error.what(), path));
  }
}

// ---------------------------------------------------------------------------------------------
// JSON

bool is_utf8(std::string_view text) {
  while (!text.empty()) {
    const Utf8Character c = first_character(text);
    if (!c.is_well_formed) return false;
    text.remove_prefix(c.length);
  }
  return true;
}

std::string hexadecimal(std::string_view bytes) {
  std::string text;
  for (const char byte : bytes) text += fmt::format("{:02x}", static_cast<unsigned char>(byte));
  return text;
}

std::string bytes_of(const std::string& digits) {
  std::string bytes;
  for (std::size_t i = 0; i + 1 < digits.size(); i += 2) {
    bytes += static_cast<char>(std::stoi(digits.substr(i, 2), nullptr, 16));
  }
  return bytes;
}

std::optional<std::string_view> or_null(const std::string& text) {
  return text.empty() ? std::nullopt : std::optional<std::string_view>(text);
}

RowStatus status_named(const std::string& name) {
  for (const RowStatus status : {RowStatus::table, RowStatus::no_table, RowStatus::error}) {
    if (name == to_string(status)) return status;
  }
  throw std::invalid_argument("unknown status");
}

// Null, and what is not there, is the empty value.
template <typename Value>
Value value_of(const json& object, const char* name) {
  const auto found = object.find(name);
  return found == object.end() || found->is_null() ? Value() : found->get<Value>();
}

template <typename Value>
std::optional<Value> optional_of(const json& object, const char* name) {
  const auto found = object.find(name);
  if (found == object.end() || found->is_null()) return std::nullopt;
  return found->get<Value>();
}

void read_table(const json& object, CatalogRow& row) {
  row.mode = value_of<std::string>(object, "mode");
  row.delimiters = value_of<std::vector<std::string>>(object, "delimiters");
  row.widths = value_of<std::vector<std::size_t>>(object, "widths");
  row.quote = value_of<std::string>(object, "quote");
  row.decimal = value_of<std::string>(object, "decimal");
  row.grouping = value_of<std::string>(object, "grouping");
  row.comment_prefix = value_of<std::string>(object, "comment_prefix");
  row.encoding = value_of<std::string>(object, "encoding");
  row.has_byte_order_mark = value_of<bool>(object, "byte_order_mark");
  row.line_ending = value_of<std::string>(object, "line_ending");
  row.header_lines = value_of<std::size_t>(object, "header_lines");
  row.names_line = optional_of<std::size_t>(object, "names_line");
  row.units_line = optional_of<std::size_t>(object, "units_line");
  row.confidence = optional_of<double>(object, "confidence");
  row.lines = optional_of<std::uint64_t>(object, "lines");
  for (const json& column : object.at("columns")) {
    row.columns.push_back({value_of<std::string>(column, "name"),
                           value_of<std::string>(column, "kind"),
                           value_of<std::string>(column, "unit")});
  }
  row.layout_fingerprint = object.at("layout_fingerprint").get<std::string>();
  row.schema_fingerprint = object.at("schema_fingerprint").get<std::string>();
}

CatalogRow row_of_object(const json& object) {
  if (object.at("catalog").get<int>() != kCatalogVersion)
    throw std::invalid_argument("a row of another version");
  CatalogRow row;
  row.path = object.at("path").get<std::string>();
  if (const auto bytes = optional_of<std::string>(object, "path_bytes"))
    row.path = bytes_of(*bytes);
  row.size = optional_of<std::uint64_t>(object, "size");
  row.modified = value_of<std::string>(object, "modified");
  row.status = status_named(object.at("status").get<std::string>());
  row.error = value_of<std::string>(object, "error");
  row.no_table = value_of<std::string>(object, "no_table");
  row.file_kind = value_of<std::string>(object, "file_kind");
  if (row.status == RowStatus::table) read_table(object, row);
  return row;
}

}  // namespace

std::string_view to_string(RowStatus status) noexcept {
  switch (status) {
    case RowStatus::table:
      return "table";
    case RowStatus::no_table:
      return "no table";
    case RowStatus::error:
      return "error";
  }
  return {};
}

void write_common_members(JsonWriter& json, const CatalogRow& row) {
  json.member("layout_fingerprint", row.layout_fingerprint);
  json.member("schema_fingerprint", row.schema_fingerprint);
  json.member("mode", row.mode);
  json.member("delimiters", row.delimiters);
  json.member("widths", row.widths);
  json.member("quote", or_null(row.quote));
  json.member("decimal", or_null(row.decimal));
  json.member("grouping", or_null(row.grouping));
  json.member("comment_prefix", or_null(row.comment_prefix));
  json.member("encoding", or_null(row.encoding));
  json.member("byte_order_mark", row.has_byte_order_mark);
  json.member("line_ending", or_null(row.line_ending));
  json.member("header_lines", row.header_lines);
  json.member("names_line", row.names_line);
  json.member("units_line", row.units_line);
  json.member("num_variables", row.columns.size());
  json.key("columns");
  json.array(row.columns, [&](const CatalogColumn& column) {
    json.begin_object();
    json.member("name", or_null(column.name));
    json.member("kind", column.kind);
    json.member("unit", or_null(column.unit));
    json.end_object();
  });
}

CatalogRow failed_row(const std::string& path, std::string_view error) {
  CatalogRow row;
  row.path = path;
  row.error = error;
  return row;
}

CatalogRow row_of(const std::string& path, const Layout& layout) {
  CatalogRow row;
  row.path = path;
  row.no_table = layout.no_table;
  row.status = layout.no_table.empty() ? RowStatus::table : RowStatus::no_table;
  if (row.status == RowStatus::no_table) {
    if (!layout.first_bytes.empty()) row.file_kind = file_kind(layout.first_bytes);
    return row;
  }
  row.mode = to_string(layout.mode);
  for (const std::u16string& each : layout.delimiters) row.delimiters.push_back(utf8_of(each));
  row.widths = layout.widths;
  row.quote = utf8_of(layout.dialect.quote);
  row.decimal = utf8_of(layout.dialect.decimal);
  row.grouping = utf8_of(layout.dialect.grouping);
  row.comment_prefix = utf8_of(layout.dialect.comment_prefix);
  row.encoding = layout.encoding;
  row.has_byte_order_mark = layout.dialect.has_byte_order_mark;
  if (layout.line_ending) row.line_ending = utf8_of(*layout.line_ending);
  row.header_lines = layout.header_lines;
  row.names_line = layout.names_line;
  row.units_line = layout.units_line;
  row.confidence = layout.confidence;
  row.lines = layout.lines_estimated;
  row.columns = columns_of(layout);
  row.layout_fingerprint = fingerprint_of(canonical_layout(row));
  row.schema_fingerprint = fingerprint_of(canonical_schema(row));
  return row;
}

CatalogRow look_at(const std::string& path, const standalone::DetectSettings& settings) {
  struct stat about = {};
  if (stat(path.c_str(), &about) != 0) return failed_row(path, std::strerror(errno));
  const bool is_regular = S_ISREG(about.st_mode);
  CatalogRow row =
      is_regular
          ? row_of_regular_file(path, settings)
          : failed_row(path, fmt::format("this is {}, not a regular file", kind_of(about.st_mode)));
  if (is_regular) row.size = static_cast<std::uint64_t>(about.st_size);
  row.modified = time_text(about.st_mtim);
  return row;
}

std::string row_line(const CatalogRow& row) {
  std::string line;
  JsonWriter json(line, 0, {}, JsonWriter::Shape::one_line);
  json.begin_object();
  json.member("catalog", kCatalogVersion);
  json.member("path", row.path);
  if (!is_utf8(row.path)) json.member("path_bytes", hexadecimal(row.path));
  json.member("size", row.size);
  json.member("modified", or_null(row.modified));
  json.member("status", to_string(row.status));
  if (row.status == RowStatus::error) json.member("error", row.error);
  if (row.status == RowStatus::no_table) {
    json.member("no_table", row.no_table);
    json.member("file_kind", or_null(row.file_kind));
  }
  if (row.status == RowStatus::table) {
    json.member("confidence", row.confidence);
    json.member("lines", row.lines);
    write_common_members(json, row);
  }
  json.end_object();
  return line += '\n';
}

CatalogRow parse_row(std::string_view line) {
  try {
    return row_of_object(json::parse(line));
  } catch (const std::bad_alloc&) {
    throw;
  } catch (const std::exception&) {
    throw std::invalid_argument("not a row of a catalogue of version " +
                                std::to_string(kCatalogVersion));
  }
}

}  // namespace textio::tool
