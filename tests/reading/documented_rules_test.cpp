#include <vltextstream/reading/table_reader.hpp>

#include <cstddef>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include <vltextstream/layout/detect_layout.hpp>
#include <vltextstream/standalone/services/array.hpp>

#include "reading/shown.hpp"
#include "support/documented_rules.hpp"

namespace textio::reading {
namespace {

using standalone::make_array;
using standalone::NameValue;
using testing_support::ByDocumentedRule;
using testing_support::DocumentedRow;
using testing_support::RulesPage;

const std::vector<DocumentedRow>& documented_rows() {
  static const std::vector<DocumentedRow> rows = RulesPage(DOCS_DIR "/reading.md").rows();
  return rows;
}

std::u16string wide(const std::string& text) { return {text.begin(), text.end()}; }

NameValue option_of(const DocumentedRow& row) {
  if (row.value == "true" || row.value == "false")
    return {row.option, make_array(row.value == "true")};
  if (row.value.find_first_not_of("0123456789") == std::string::npos) {
    return {row.option, make_array(std::stod(row.value))};
  }
  return {row.option, make_array(wide(row.value))};
}

ReadSettings settings_of(const DocumentedRow& row) {
  ReadSettings settings;
  settings.detect = standalone::settings_with({option_of(row)});
  settings.widen = row.option != "ImportErrorRule";
  return settings;
}

class DocumentedRule : public testing::TestWithParam<DocumentedRow> {};
INSTANTIATE_TEST_SUITE_P(Reading, DocumentedRule, testing::ValuesIn(documented_rows()),
                         ByDocumentedRule());

TEST_P(DocumentedRule, Holds) {
  const DocumentedRow& row = GetParam();
  const ReadSettings settings = settings_of(row);
  if (row.error.empty()) {
    EXPECT_EQ(shown(read_table_of_bytes(row.text, settings)), row.rows);
    return;
  }
  try {
    read_table_of_bytes(row.text, settings);
    FAIL() << "no error";
  } catch (const ReadError& error) {
    const std::string message = error.what();
    const std::size_t colon = row.error.find(": ");
    EXPECT_EQ(std::to_string(error.line()), row.error.substr(0, colon));
    EXPECT_TRUE(message.ends_with(row.error.substr(colon + 2))) << message;
  }
}

TEST(DocumentedRules, AreAllOfTheRecord) {
  std::vector<std::string> options;
  for (const DocumentedRow& row : documented_rows()) {
    if (options.empty() || options.back() != row.option) options.push_back(row.option);
  }
  const std::vector<std::string> expected = {"MissingRule",
                                             "ImportErrorRule",
                                             "ConsecutiveDelimitersRule",
                                             "LeadingDelimitersRule",
                                             "EmptyLineRule",
                                             "ExtraColumnsRule",
                                             "PartialFieldRule",
                                             "TextType",
                                             "DatetimeType",
                                             "TreatAsMissing",
                                             "VariableNamesLine",
                                             "VariableUnitsLine",
                                             "VariableDescriptionsLine",
                                             "RowNamesField",
                                             "ExpChars",
                                             "CollectOutput"};
  EXPECT_EQ(options, expected);
}

}  // namespace
}  // namespace textio::reading
