// Metadata for tabular data on the web. It could have formats for numbers, but the reader that was tried does not obey
// them.
#include <fmt/format.h>

#include "tool/emit/abilities.hpp"
#include "tool/emit/program_parts.hpp"
#include "tool/emit/targets.hpp"
#include "tool/json_writer.hpp"

namespace textio::tool {
namespace {

using reading::ColumnType;

constexpr Abilities kAbilities = {.codecs = Codecs::web,
                                  .takes_other_quotes = true,
                                  .takes_words = true,
                                  .takes_boolean_words = true};

// Percent-encoded, as a reference relative to the document.
std::string url_of(const std::string& path) {
  constexpr std::string_view kPlain =
      "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789-._~/";
  std::string url;
  for (const char c : path) {
    if (kPlain.find(c) != std::string_view::npos) {
      url += c;
    } else {
      url += fmt::format("%{:02X}", static_cast<unsigned char>(c));
    }
  }
  return url;
}

const char* base_of(const ColumnFact& column) {
  switch (column.type) {
    case ColumnType::integer:
      return "integer";
    case ColumnType::real:
      return "double";
    case ColumnType::boolean:
      return "boolean";
    case ColumnType::date:
      return "date";
    case ColumnType::time:
      return "time";
    case ColumnType::date_time:
      return column.is_utc ? "dateTimeStamp" : "dateTime";
    case ColumnType::duration:
      return "duration";
    default:
      return "string";
  }
}

void write_datatype(JsonWriter& json, const ColumnFact& column) {
  if (column.type != ColumnType::boolean) return json.value(base_of(column));
  json.begin_object();
  json.member("base", base_of(column));
  json.member("format", column.true_word + '|' + column.false_word);
  json.end_object();
}

void write_table(JsonWriter& json, const Facts& facts, const std::string& url,
                 const std::string& note) {
  json.begin_object();
  json.member("@context", "http://www.w3.org/ns/csvw");
  if (!note.empty()) json.member("dc:description", note);
  json.member("url", url);
  json.key("dialect");
  json.begin_object();
  json.member("encoding", encoding_for(facts, Codecs::web));
  json.member("delimiter", facts.delimiters[0]);
  json.member("quoteChar", facts.quote.empty() ? std::nullopt : std::optional(facts.quote));
  json.member("doubleQuote", true);
  json.member("commentPrefix", nullptr);
  json.member("header", false);
  json.member("skipRows", facts.lines_to_skip());
  json.member("skipBlankRows", false);
  json.member("trim", false);
  json.end_object();
  json.key("tableSchema");
  json.begin_object();
  json.key("columns");
  std::size_t number = 0;
  json.array(facts.columns, [&](const ColumnFact& column) {
    json.begin_object();
    json.member("name", fmt::format("column_{}", ++number));
    json.member("titles", column.name);
    json.key("datatype");
    write_datatype(json, column);
    if (!column.is_text()) json.member("null", missing_of(column));
    if (column.is_text()) json.member("default", "");
    json.end_object();
  });
  json.end_object();
  json.end_object();
}

}  // namespace

std::string csvw_document(const Facts& facts) {
  const std::string obstacle = find_obstacle(facts, kAbilities);
  std::string text;
  JsonWriter json(text);
  if (obstacle.empty()) {
    write_table(json, facts, url_of(facts.path), "");
  } else {
    const std::string note = fmt::format(
        "A reader of CSV on the web cannot read this file rightly by itself: {}. First: {} > "
        "converted.csv",
        comment_text(obstacle), comment_text(convert_command(facts)));
    write_table(json, converted(facts), "converted.csv", note);
  }
  return text += '\n';
}

}  // namespace textio::tool
