#include "tool/emit/file_scan.hpp"

#include <ostream>
#include <string>

#include <gtest/gtest.h>

#include "support/rule_name.hpp"
#include "support/temp_folder.hpp"

namespace textio::tool {
namespace {

using testing_support::ByRule;
using testing_support::TempFolder;

struct ScanCase {
  const char* rule;
  std::string text;
  ExpectedRecords expected;
  std::string oddity;
  bool has_breaks = false;
};
std::ostream& operator<<(std::ostream& out, const ScanCase& row) { return out << row.rule; }

ExpectedRecords two_columns(std::size_t num_rows, std::size_t first_line = 1, char quote = '"') {
  ExpectedRecords expected;
  expected.quote = quote;
  expected.first_line = first_line;
  expected.num_columns = 2;
  expected.num_rows = num_rows;
  return expected;
}

ExpectedRecords with_comment(ExpectedRecords expected) {
  expected.comment = "//";
  return expected;
}

ExpectedRecords with_backslash(ExpectedRecords expected) {
  expected.has_backslash = true;
  return expected;
}

ExpectedRecords in_units(ExpectedRecords expected, std::size_t bytes, bool is_big_endian) {
  expected.unit_bytes = bytes;
  expected.is_big_endian = is_big_endian;
  return expected;
}

constexpr const char* kBlanks = "blanks around cells do not belong to them";
constexpr const char* kQuotes = "quotes are within cells, where they do not quote";
constexpr const char* kCounts = "not every record has as many cells as there are columns";
constexpr const char* kRows = "not every line after the first of the data is a record";

const ScanCase kScanCases[] = {
    {"RegularRecords", "1,2\n3,4\n", two_columns(2), ""},
    {"TheLastLineNeedsNoEnding", "1,2\n3,4", two_columns(2), ""},
    {"EmptyCells", ",\n,2\n", two_columns(2), ""},
    {"QuotedCells", "\"a,b\",\"c\"\"d\"\n\"\",2\n", two_columns(2), ""},
    {"LineBreaksInCells", "\"a\nb\",2\n", two_columns(1), "", true},
    {"BlankLinesAreNoRecords", "1,2\n\n3,4\n", two_columns(2), ""},
    {"LinesAboveTheData", "a title\n\na,b\n1,2\n", two_columns(1, 4), ""},
    {"QuotedNames", "\"a\",\"b\"\n1,2\n", two_columns(1, 2), ""},
    {"ATitleOverTwoLines", "\"a\nb\",c\n1,2\n", two_columns(1, 3),
     "a quoted text goes over several lines above the data"},
    {"AStrayQuoteInATitle", "5\" gauge\n1,2\n", two_columns(1, 2),
     "a quoted text goes over several lines above the data"},
    {"FewerCells", "1,2\n3\n", two_columns(1), kCounts},
    {"MoreCells", "1,2\n3,4,5\n", two_columns(1), kCounts},
    {"ALineThatIsNoRow", "1,2\n3,4\n", two_columns(1), kRows},
    {"ABlankBeforeACell", "1, 2\n", two_columns(1), kBlanks},
    {"ABlankAfterACell", "1 ,2\n", two_columns(1), kBlanks},
    {"ATabAtTheEnd", "1,2\t\n", two_columns(1), kBlanks},
    {"ABlankAfterQuotes", "\"1\" ,2\n", two_columns(1), kBlanks},
    {"BlanksWithinQuotesBelongToTheCell", "\" 1 \",2\n", two_columns(1), ""},
    {"AQuoteWithinACell", "5\" pipe,2\n", two_columns(1), kQuotes},
    {"TextAfterQuotes", "\"a\"b,2\n", two_columns(1), kQuotes},
    {"AQuoteWhereNothingQuotes", "\"a\",2\n", two_columns(1, 1, 0), kQuotes},
    {"AnOpenQuote", "\"a,2", two_columns(1), "a quote is not closed"},
    {"Comments", "1,2\n// three\n3,4\n", with_comment(two_columns(2)), ""},
    {"HalfASignIsNoComment", "1,2\n/,4\n", with_comment(two_columns(2)), ""},
    {"BackslashesInQuotes", "\"a\\\"b\",2\n", with_backslash(two_columns(1)), ""},
    {"BackslashesOutsideQuotes", "a\\,b,2\n", with_backslash(two_columns(1)),
     "backslashes are outside quotes"},
    {"CarriageReturns", "1,2\r\n3,4\r\n", two_columns(2), ""},
    {"LoneCarriageReturns", "1,2\r3,4\r", two_columns(2), ""},
    {"MixedEndings", "1,2\r\n3,4\n", two_columns(2), "lines end in different ways"},
    {"ControlCharacters", "1,2\x1A\n", two_columns(1), "it has control characters"},
    {"AMark", "\xEF\xBB\xBF\"1\",2\n", two_columns(1), ""},
    {"Utf16", std::string("\xFF\xFE\"\0a\0\"\0,\0\xE8\0\n\0", 14),
     in_units(two_columns(1), 2, false), ""},
    {"Utf16WithTheHighByteFirst", std::string("\0a\0,\x01,\0\n", 8),
     in_units(two_columns(1), 2, true), ""},
};

class FileScan : public testing::TestWithParam<ScanCase> {};
TEST_P(FileScan, TellsWhatIsOdd) {
  const ScanCase& row = GetParam();
  const TempFolder folder;
  const ScannedRecords scanned = scan_records(folder.file("t.csv", row.text), row.expected);
  EXPECT_EQ(scanned.oddity, row.oddity);
  EXPECT_EQ(scanned.has_breaks_in_cells, row.has_breaks);
}
INSTANTIATE_TEST_SUITE_P(Table, FileScan, testing::ValuesIn(kScanCases), ByRule());

}  // namespace
}  // namespace textio::tool
