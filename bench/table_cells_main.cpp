// Writes the layout of a table and all of its cells as text, as JSON: table_cells FILE [ENCODING].
#include <exception>
#include <iostream>
#include <optional>
#include <string>
#include <string_view>

#include <vltextstream/layout/detect_layout.hpp>
#include <vltextstream/reading/table_reader.hpp>
#include <vltextstream/text/utf8.hpp>

namespace {

using textio::reading::Batch;
using textio::reading::Column;
using textio::standalone::Layout;

void write_text(std::string_view text) {
  constexpr std::string_view kDigits = "0123456789abcdef";
  std::cout << '"';
  for (const char c : text) {
    const auto byte = static_cast<unsigned char>(c);
    if (byte < 0x20) {
      std::cout << "\\u00" << kDigits[byte >> 4U] << kDigits[byte & 0xFU];
    } else {
      if (c == '"' || c == '\\') std::cout << '\\';
      std::cout << c;
    }
  }
  std::cout << '"';
}

void write_member(const char* name, const std::optional<char16_t>& unit) {
  std::cout << ", \"" << name << "\": ";
  write_text(unit && *unit != 0 ? textio::to_utf8_lossy(std::u16string(1, *unit)) : std::string());
}

void write_batch(const Batch& batch, bool is_first) {
  for (std::size_t row = 0; row < batch.num_rows; ++row) {
    if (!is_first || row > 0) std::cout << ",\n";
    std::cout << '[' << batch.lines[row];
    for (const Column& column : batch.columns) {
      std::cout << ", ";
      if (column.is_missing(row)) {
        std::cout << "null";
      } else {
        write_text(column.text_at(row));
      }
    }
    std::cout << ']';
  }
}

// Words for missing values stay as they are.
Layout layout_of(const std::string& path, const textio::standalone::DetectSettings& settings) {
  Layout layout = textio::standalone::detect_layout(path, settings);
  layout.dialect.missing.clear();
  for (auto& column : layout.columns) column.missing.clear();
  return layout;
}

void write_cells(const std::string& path, const textio::reading::ReadSettings& settings) {
  textio::reading::TableReader reader(path, layout_of(path, settings.detect), settings);
  const Layout& layout = reader.layout();
  std::cout << "{\"mode\": \"" << to_string(layout.mode)
            << "\", \"framed\": " << (layout.is_framed ? "true" : "false") << ", \"encoding\": ";
  write_text(layout.encoding);
  std::cout << ", \"delimiter\": ";
  write_text(layout.delimiters.empty() ? std::string()
                                       : textio::to_utf8_lossy(layout.delimiters[0]));
  write_member("quote", layout.quote);
  write_member("escape", layout.escape);
  std::cout << ", \"comment\": ";
  write_text(textio::to_utf8_lossy(layout.dialect.comment_prefix));
  std::cout << ", \"blanks_after_delimiters\": "
            << (layout.dialect.blanks_after_delimiters ? "true" : "false")
            << ", \"columns\": " << layout.num_variables << ",\n\"rows\": [";
  bool is_first = true;
  while (const std::optional<Batch> batch = reader.next()) {
    write_batch(*batch, is_first);
    is_first = false;
  }
  std::cout << "],\n\"fates\": [";
  is_first = true;
  for (const textio::reading::FateRun& run : reader.account().runs) {
    std::cout << (is_first ? "" : ", ") << "[\"" << to_string(run.fate) << "\", " << run.first_line
              << ", " << run.num_lines << ']';
    is_first = false;
  }
  std::cout << "]}\n";
}

}  // namespace

int main(int argc, char** argv) {
  if (argc != 2 && argc != 3) {
    std::cerr << "usage: table_cells FILE [ENCODING]\n";
    return 2;
  }
  try {
    textio::reading::ReadSettings settings;
    settings.all_text = true;
    if (argc == 3) settings.detect.encoding = argv[2];
    write_cells(argv[1], settings);
  } catch (const std::exception& error) {
    std::cerr << "table_cells: " << error.what() << '\n';
    return 1;
  }
}
