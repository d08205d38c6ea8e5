// The tables of docs/reading.md: each shows a file, and the rows that are read of it with a rule.
#include <vltextstream/reading/table_reader.hpp>

#include <cstddef>
#include <fstream>
#include <ostream>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

#include <gtest/gtest.h>

#include <vltextstream/layout/detect_layout.hpp>
#include <vltextstream/standalone/services/array.hpp>

#include "reading/shown.hpp"

namespace textio::reading {
namespace {

using standalone::make_array;
using standalone::NameValue;

struct DocumentedRow {
  std::string option;
  std::string value;
  std::string text;
  std::vector<std::string> rows;
  std::string error;  // or this is what happens
};
std::ostream& operator<<(std::ostream& out, const DocumentedRow& row) {
  return out << row.option << ' ' << row.value;
}

// The parts of a text in back quotes.
std::vector<std::string> quoted_parts(std::string_view text) {
  std::vector<std::string> parts;
  for (std::size_t open = text.find('`'); open != text.npos; open = text.find('`', open)) {
    const std::size_t close = text.find('`', open + 1);
    parts.emplace_back(text.substr(open + 1, close - open - 1));
    open = close + 1;
  }
  return parts;
}

class Document {
 public:
  explicit Document(const std::string& path) : in_(path) {
    if (!in_) throw std::runtime_error("cannot open " + path);
  }

  std::vector<DocumentedRow> rows() {
    for (std::string line; std::getline(in_, line);) {
      if (line == "```text") {
        read_text();
      } else if (line.starts_with("|-")) {
        continue;
      } else if (line.starts_with("| ")) {
        read_row(line);
      } else {
        option_.clear();
      }
    }
    return rows_;
  }

 private:
  void read_text() {
    text_.clear();
    for (std::string line; std::getline(in_, line) && line != "```";) text_ += line + '\n';
  }

  // "| MissingRule | rows |", or a row below it.
  void read_row(const std::string& line) {
    const std::size_t border = line.find(" | ");
    const std::string left = line.substr(2, border - 2);
    const std::string right = line.substr(border + 3, line.size() - border - 5);
    if (right == "rows") {
      option_ = left;
    } else if (!option_.empty()) {
      DocumentedRow row{option_, quoted_parts(left).at(0), text_, {}, {}};
      constexpr std::string_view kError = "error in line ";
      if (right.starts_with(kError)) {
        row.error = right.substr(kError.size());
      } else {
        row.rows = quoted_parts(right);
      }
      rows_.push_back(row);
    }
  }

  std::ifstream in_;
  std::string text_;
  std::string option_;
  std::vector<DocumentedRow> rows_;
};

const std::vector<DocumentedRow>& documented_rows() {
  static const std::vector<DocumentedRow> rows = Document(DOCS_DIR "/reading.md").rows();
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
                         [](const auto& row) {
                           std::string name = row.param.option + '_' + row.param.value;
                           for (char& c : name) {
                             if (c == '.') c = '_';
                           }
                           return name;
                         });

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
