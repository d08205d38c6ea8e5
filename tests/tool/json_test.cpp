// The JSON of the tool against its published schema.
#include <fstream>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <nlohmann/json.hpp>
#include <valijson/adapters/nlohmann_json_adapter.hpp>
#include <valijson/schema.hpp>
#include <valijson/schema_parser.hpp>
#include <valijson/validator.hpp>

#include <vltextstream/version.hpp>

#include "support/command.hpp"
#include "support/example_cases.hpp"
#include "support/temp_folder.hpp"
#include "tool/json_report.hpp"

namespace textio {
namespace {

using nlohmann::json;
using testing::IsEmpty;
using testing::Not;
using testing_support::CommandResult;
using testing_support::example_cases;
using testing_support::ExampleCase;
using testing_support::run_command;
using testing_support::TempFolder;
using valijson::adapters::NlohmannJsonAdapter;

json published_schema() {
  std::ifstream file(DOCS_DIR "/vltext.schema.json");
  return json::parse(file);
}

// What is wrong with `document`, one line for each fault; empty when it fits the schema.
std::string faults(const json& document) {
  const json definition = published_schema();
  valijson::Schema schema;
  valijson::SchemaParser().populateSchema(NlohmannJsonAdapter(definition), schema);
  valijson::ValidationResults results;
  valijson::Validator().validate(schema, NlohmannJsonAdapter(document), &results);
  std::string all;
  for (const auto& fault : results) {
    for (const std::string& place : fault.context) all += place;
    all += ": " + fault.description + "\n";
  }
  return all;
}

json printed(const std::vector<std::string>& arguments) {
  const CommandResult result = run_command(VLTEXT_PROGRAM, arguments);
  EXPECT_LE(result.status, 1) << result.err;
  return json::parse(result.out);
}

std::vector<std::string> example_paths() {
  std::vector<std::string> paths;
  for (const ExampleCase& example : example_cases()) paths.push_back(example.path());
  return paths;
}

TEST(ToolJson, OfAllExamplesFitsTheSchema) {
  std::vector<std::string> arguments = example_paths();
  arguments.emplace_back("--json");
  EXPECT_THAT(faults(printed(arguments)), IsEmpty());
}

TEST(ToolJson, WithTheTraceFitsTheSchema) {
  std::vector<std::string> arguments = example_paths();
  arguments.insert(arguments.end(), {"--json", "--explain"});
  const json document = printed(arguments);
  EXPECT_THAT(faults(document), IsEmpty());
  EXPECT_FALSE(document["files"][0]["trace"]["candidates"].empty());
}

// Commas alone separate anything here: besides them there are a single column and no table.
TEST(ToolJson, WithTheTraceHasEveryReading) {
  const TempFolder folder;
  const std::string file = folder.file("t.csv", "x,y\n1,2\n3,4\n");
  const json all = printed({"--json", "--explain", file})["files"][0]["considered"];
  std::vector<std::string> kinds;
  double sum = 0;
  for (const json& each : all) {
    kinds.push_back(each["is_table"] == false     ? "none"
                    : each["delimiter"].is_null() ? each["mode"].get<std::string>()
                                                  : each["delimiter"].get<std::string>());
    sum += each["probability"].get<double>();
  }
  EXPECT_EQ(kinds.front(), ",");
  EXPECT_THAT(kinds, testing::UnorderedElementsAre(",", "line-reader", "none"));
  EXPECT_NEAR(sum, 1, 1e-9);
  EXPECT_FALSE(printed({"--json", file})["files"][0].contains("considered"));
}

TEST(ToolJson, WithOptionsFitsTheSchema) {
  const TempFolder folder;
  const std::string file = folder.file("t.csv", "% note\nx;y\n1;2\n\n3\n");
  const std::vector<std::vector<std::string>> option_lists = {
      {"--delimiter", ";", "--num-header-lines", "1", "--comment-style", "%"},
      {"--parser-type", "fixedwidth", "--variable-widths", "2,1"},
      {"--encoding", "latin1", "--date-locale", "de_DE", "--option", "Delimiter:=[\";\", \",\"]"},
      {"--num-header-lines", "18446744073709551615", "--lines", "0"},
      {"--missing-rule", "omitvar", "--text-type", "string", "--partial-field-rule", "wrap"},
  };
  for (std::vector<std::string> arguments : option_lists) {
    arguments.insert(arguments.end(), {"--json", file});
    EXPECT_THAT(faults(printed(arguments)), IsEmpty()) << arguments.front();
  }
}

TEST(ToolJson, ShowsTheSettingsThatTheDetectionHad) {
  const TempFolder folder;
  const json document = printed({"--json", "--delimiter", ";", "--num-header-lines", "1", "--lines",
                                 "7", folder.file("t", "x;y\n1;2\n")});
  EXPECT_EQ(document["version"], libvltextstream_version);
  EXPECT_EQ(document["settings"], (json{{"num_lines", 7},
                                        {"options",
                                         {{"delimiters", {";"}},
                                          {"detect_delimiters", false},
                                          {"header_lines", 1},
                                          {"detect_header_lines", false}}}}));
}

TEST(ToolJson, ShowsNoSettingThatNobodyChanged) {
  const TempFolder folder;
  const json document = printed({"--json", folder.file("t", "x;y\n1;2\n")});
  EXPECT_EQ(document["settings"], json::object());
}

TEST(ToolJson, ShowsAllSettingsOnRequest) {
  const TempFolder folder;
  const json document = printed({"--json", "--verbose", "--delimiter", ";", "--num-header-lines",
                                 "1", "--lines", "7", folder.file("t", "x;y\n1;2\n")});
  EXPECT_THAT(faults(document), IsEmpty());
  const json& settings = document["settings"];
  EXPECT_EQ(settings["num_lines"], 7);
  EXPECT_EQ(settings["encoding"], nullptr);
  EXPECT_EQ(settings["trace"], false);
  EXPECT_EQ(settings.size(), 16U);
  EXPECT_EQ(settings["options"].size(), 30U);
  EXPECT_EQ(settings["options"]["delimiters"], json::array({";"}));
  EXPECT_EQ(settings["options"]["detect_delimiters"], false);
  EXPECT_EQ(settings["options"]["header_lines"], 1);
  EXPECT_EQ(settings["options"]["detect_header_lines"], false);
  EXPECT_EQ(settings["options"]["line_endings"], json::array({"\r\n", "\n", "\r"}));
}

// The schema is strict; otherwise the tests above could not fail.
TEST(ToolJsonSchema, RefusesAMissingAndAnUnknownMember) {
  const TempFolder folder;
  const json document = printed({"--json", folder.file("t", "x;y\n1;2\n")});
  ASSERT_THAT(faults(document), IsEmpty());
  for (const auto& member : document["files"][0].items()) {
    json without = document;
    without["files"][0].erase(member.key());
    EXPECT_THAT(faults(without), Not(IsEmpty())) << member.key();
  }
  for (const auto& member : document.items()) {
    json without = document;
    without.erase(member.key());
    EXPECT_THAT(faults(without), Not(IsEmpty())) << member.key();
  }
  for (const char* const at : {"/settings", "/settings/options"}) {
    json more = printed({"--json", "--verbose", folder.file("u", "x;y\n1;2\n")});
    ASSERT_THAT(faults(more), IsEmpty());
    more.at(json::json_pointer(at))["colour"] = "blue";
    EXPECT_THAT(faults(more), Not(IsEmpty())) << at;
  }
  json more = document;
  more["files"][0]["colour"] = "blue";
  EXPECT_THAT(faults(more), Not(IsEmpty()));
  json other = document;
  other["files"][0]["mode"] = "diagonal";
  EXPECT_THAT(faults(other), Not(IsEmpty()));
}

TEST(ToolJsonSchema, RefusesAMissingAndAnUnknownMemberOfTheSpread) {
  const TempFolder folder;
  std::string text = "num,abc\n";
  for (int i = 0; i < 500; ++i) text += i == 300 ? "bad,abc\n" : i == 310 ? "1.5\n" : "1.5,abc\n";
  const json document = printed({"--json", "--sample", "spread", folder.file("t", text)});
  ASSERT_THAT(faults(document), IsEmpty());
  const auto expect_strict = [&](const json::json_pointer& at) {
    ASSERT_TRUE(document.at(at).is_object()) << at.to_string();
    for (const auto& member : document.at(at).items()) {
      json without = document;
      without.at(at).erase(member.key());
      EXPECT_THAT(faults(without), Not(IsEmpty())) << at.to_string() << " " << member.key();
    }
    json more = document;
    more.at(at)["colour"] = "blue";
    EXPECT_THAT(faults(more), Not(IsEmpty()));
  };
  for (const char* at :
       {"/files/0/spread", "/files/0/spread/contradictions/0", "/files/0/spread/first_ragged"}) {
    expect_strict(json::json_pointer(at));
  }
}

// A file with a column of money, one of booleans and one of dates.
json document_with_all_kinds(const TempFolder& folder) {
  return printed({"--json", folder.file("k.csv",
                                        "paid,due,price,note\n"
                                        "yes,2024-01-31,$5.00,red\n"
                                        "no,2024-02-29,$7.50,NA\n"
                                        "yes,2024-03-01,NA,blue\n")});
}

TEST(ToolJsonSchema, RefusesAMissingAndAnUnknownMemberOfTheDialect) {
  const TempFolder folder;
  const json document = document_with_all_kinds(folder);
  ASSERT_THAT(faults(document), IsEmpty());
  for (const auto& member : document["files"][0]["dialect"].items()) {
    json without = document;
    without["files"][0]["dialect"].erase(member.key());
    EXPECT_THAT(faults(without), Not(IsEmpty())) << member.key();
  }
  json more = document;
  more["files"][0]["dialect"]["colour"] = "blue";
  EXPECT_THAT(faults(more), Not(IsEmpty()));
}

TEST(ToolJsonSchema, RefusesAMissingMemberOfAColumn) {
  const TempFolder folder;
  const json document = document_with_all_kinds(folder);
  for (std::size_t i = 0; i < 4; ++i) {
    for (const auto& member : document["files"][0]["columns"][i].items()) {
      json without = document;
      without["files"][0]["columns"][i].erase(member.key());
      EXPECT_THAT(faults(without), Not(IsEmpty())) << i << ' ' << member.key();
    }
  }
}

TEST(ToolJsonSchema, RefusesAMemberOfAnotherKindOfColumn) {
  const TempFolder folder;
  const json document = document_with_all_kinds(folder);
  const json& columns = document["files"][0]["columns"];
  ASSERT_EQ(columns[0]["kind"], "boolean");
  ASSERT_EQ(columns[1]["kind"], "date");
  ASSERT_EQ(columns[2]["kind"], "money");
  ASSERT_EQ(columns[3]["kind"], "text");
  for (const char* const own : {"true", "false", "date", "currency", "currency_before"}) {
    for (std::size_t i = 0; i < 4; ++i) {
      if (columns[i].contains(own)) continue;
      json more = document;
      for (const json& column : columns) {
        if (column.contains(own)) more["files"][0]["columns"][i][own] = column[own];
      }
      EXPECT_THAT(faults(more), Not(IsEmpty())) << i << ' ' << own;
    }
  }
}

// The lines of --jsonl have the members of a file.
TEST(ToolJsonSchema, FitsALineOfAFile) {
  const TempFolder folder;
  json document = printed({"--json", folder.file("t", "x;y\n1;2\n")});
  document["files"][0] = printed({"--jsonl", folder.file("u", "a,b\n1,2\n")});
  EXPECT_THAT(faults(document), IsEmpty());
  EXPECT_EQ(document["files"][0]["names"], json::array({"a", "b"}));
}

TEST(ToolJsonSchema, HasTheNumberThatTheToolPrints) {
  EXPECT_EQ(published_schema()["properties"]["schema"]["enum"], json::array({tool::kJsonSchema}));
}

}  // namespace
}  // namespace textio
