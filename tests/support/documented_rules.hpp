// The tables of docs/reading.md: each shows a file, and the rows that are read of it with a rule.
#pragma once

#include <cstddef>
#include <fstream>
#include <ostream>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

namespace textio::testing_support {

struct DocumentedRow {
  std::string option;
  std::string value;
  std::string text;
  std::vector<std::string> rows;
  std::string error;  // or this is what happens
};
inline std::ostream& operator<<(std::ostream& out, const DocumentedRow& row) {
  return out << row.option << ' ' << row.value;
}

// The parts of a text in back quotes.
inline std::vector<std::string> quoted_parts(std::string_view text) {
  std::vector<std::string> parts;
  for (std::size_t open = text.find('`'); open != text.npos; open = text.find('`', open)) {
    const std::size_t close = text.find('`', open + 1);
    parts.emplace_back(text.substr(open + 1, close - open - 1));
    open = close + 1;
  }
  return parts;
}

class RulesPage {
 public:
  explicit RulesPage(const std::string& path) : in_(path) {
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

// "MissingRule_omitrow".
struct ByDocumentedRule {
  template <typename Info>
  std::string operator()(const Info& row) const {
    std::string name = row.param.option + '_' + row.param.value;
    for (char& c : name) {
      if (c == '.') c = '_';
    }
    return name;
  }
};

}  // namespace textio::testing_support
