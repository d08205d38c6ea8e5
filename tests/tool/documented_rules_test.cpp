// The tables of docs/reading.md, as `vltext convert` obeys them.
#include <cstddef>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "support/command.hpp"
#include "support/documented_rules.hpp"

namespace textio::tool {
namespace {

using testing::HasSubstr;
using testing_support::ByDocumentedRule;
using testing_support::CommandResult;
using testing_support::DocumentedRow;
using testing_support::RulesPage;
using testing_support::run_command;

const std::vector<DocumentedRow>& documented_rows() {
  static const std::vector<DocumentedRow> rows = RulesPage(DOCS_DIR "/reading.md").rows();
  return rows;
}

class DocumentedRule : public testing::TestWithParam<DocumentedRow> {};
INSTANTIATE_TEST_SUITE_P(Convert, DocumentedRule, testing::ValuesIn(documented_rows()),
                         ByDocumentedRule());

// The rows that were written, below the line of the names.
std::vector<std::string> rows_of(const std::string& csv) {
  std::vector<std::string> rows;
  for (std::size_t begin = csv.find('\n') + 1; begin < csv.size();) {
    const std::size_t end = csv.find('\n', begin);
    rows.push_back(csv.substr(begin, end - begin));
    begin = end + 1;
  }
  return rows;
}

TEST_P(DocumentedRule, Holds) {
  const DocumentedRow& row = GetParam();
  std::vector<std::string> arguments = {"convert", "-",        "--to",
                                        "csv",     "--option", row.option + "=" + row.value};
  if (row.option == "ImportErrorRule") arguments.push_back("--no-widen");
  const CommandResult result = run_command(VLTEXT_PROGRAM, arguments, row.text);
  if (row.error.empty()) {
    EXPECT_EQ(rows_of(result.out), row.rows) << result.err;
    EXPECT_LE(result.status, 1) << result.err;
    return;
  }
  EXPECT_EQ(result.status, 2);
  const std::size_t colon = row.error.find(": ");
  EXPECT_THAT(result.err, HasSubstr("line " + row.error.substr(0, colon)));
  EXPECT_THAT(result.err, HasSubstr(row.error.substr(colon + 2)));
}

}  // namespace
}  // namespace textio::tool
