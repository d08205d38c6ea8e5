#include <vltextstream/detect.hpp>

#include <algorithm>
#include <cstddef>
#include <ios>
#include <ostream>
#include <random>
#include <set>
#include <sstream>
#include <string>
#include <string_view>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <vltextstream/layout/detect_layout.hpp>
#include <vltextstream/standalone/decoding/utf_text.hpp>
#include "support/archives.hpp"
#include "support/layout_text.hpp"
#include "support/open_files.hpp"
#include "support/rule_name.hpp"
#include "support/temp_folder.hpp"

namespace textio {
namespace {

using standalone::detect_layout;
using standalone::DetectSettings;
using standalone::from_utf8;
using standalone::Layout;
using standalone::to_utf8;
using testing::HasSubstr;
using testing_support::ByRule;
using testing_support::describe;
using testing_support::gzip_of;
using testing_support::open_files;
using testing_support::TempFolder;
using testing_support::zstd_of;

// --- the example of the header -----------------------------------------------------------------

TEST(DetectExample, PrintsWhatTheHeaderSays) {
  std::ostringstream out;
  const char* const text = "time;level [m]\n1:02:00;3.5\n1:07:30;3.9\n";
  const textio::Detection found = textio::detect_text(text);
  out << found.dialect << '\n';
  for (const textio::Column& column : found.columns) {
    out << column.name << ": " << to_string(column.type) << '\n';
  }
  EXPECT_EQ(out.str(), "delimited by semicolon\ntime: duration\nlevel [m]: number\n");
}

TEST(DetectExample, TakesWhatIsKnown) {
  const TempFolder folder;
  const std::string path = folder.file("gauge.csv", "a,b;c\n1,2;3\n4,5;6\n7,8;9\n");
  textio::Known known;
  known.delimiters = {";"};
  known.header_lines = 1;
  const Detection found = textio::detect_file(path, known);
  EXPECT_EQ(found.dialect, (Dialect{LayoutMode::delimited, {";"}, {}}));
  EXPECT_EQ(found.header_lines, 1U);
  EXPECT_EQ(found.decided_by, "given");
}

// --- answers -----------------------------------------------------------------------------------

struct AnswerCase {
  const char* rule;
  std::string text;
  Dialect dialect;
  std::vector<Column> columns;
};
std::ostream& operator<<(std::ostream& out, const AnswerCase& row) { return out << row.rule; }

constexpr auto kNumber = DatatypeCode::number;
constexpr auto kText = DatatypeCode::text;

const AnswerCase kAnswers[] = {
    {"Delimited",
     "x,y\n1,a\n2,b\n",
     {LayoutMode::delimited, {","}, {}},
     {{"x", "", kNumber}, {"y", "", kText}}},
    {"NamesAndUnits",
     "speed;place\nkm/h;-\n1;a\n2;b\n",
     {LayoutMode::delimited, {";"}, {}},
     {{"speed", "km/h", kNumber}, {"place", "-", kText}}},
    {"WithoutNames",
     "1,2\n3,4\n",
     {LayoutMode::delimited, {","}, {}},
     {{"", "", kNumber}, {"", "", kNumber}}},
    {"NamesOutsideAscii",
     "caf\xC3\xA9,\xE2\x82\xAC\n1,2\n3,4\n",
     {LayoutMode::delimited, {","}, {}},
     {{"caf\xC3\xA9", "", kNumber}, {"\xE2\x82\xAC", "", kNumber}}},
    {"SpaceAligned",
     "x    y\n1   22\n333  4\n5 6\n",
     {LayoutMode::space_aligned, {" ", "\t"}, {}},
     {{"x", "", kNumber}, {"y", "", kNumber}}},
    {"LineReader", "abc\ndef\nghi\n", {}, {{"", "", kText}}},
    {"NoText", "", {}, {{"", "", DatatypeCode::empty}}},
};

std::vector<Column> without_kinds(std::vector<Column> columns) {
  for (Column& column : columns) column.kind = ColumnKind::empty;
  return columns;
}

class DetectText : public testing::TestWithParam<AnswerCase> {};
TEST_P(DetectText, SaysDialectAndColumns) {
  const Detection found = detect_text(GetParam().text);
  EXPECT_EQ(found.dialect, GetParam().dialect) << found.dialect;
  EXPECT_EQ(without_kinds(found.columns), GetParam().columns);
}
INSTANTIATE_TEST_SUITE_P(Table, DetectText, testing::ValuesIn(kAnswers), ByRule());

TEST(DetectTextKinds, AreFinerThanTypes) {
  const Detection found = detect_text("part;price;sold\nA-1;1,5;7\nB-2;2,25;9\n");
  ASSERT_EQ(found.columns.size(), 3U);
  EXPECT_EQ(found.columns[0].kind, ColumnKind::text);
  EXPECT_EQ(found.columns[1].kind, ColumnKind::decimal);
  EXPECT_EQ(found.columns[1].type, kNumber);
  EXPECT_EQ(found.columns[2].kind, ColumnKind::integer);
}

TEST(DetectTextKinds, FollowAGivenMark) {
  const std::string text = "part;price\nA-1;1,500\nB-2;2,250\n";
  const auto kind = [&](const char* decimal) {
    return detect_text(text, {.decimal = decimal}).columns.at(1).kind;
  };
  EXPECT_EQ(kind(","), ColumnKind::decimal);
  EXPECT_EQ(kind("."), ColumnKind::integer);
}

TEST(DetectTextFixedWidth, SaysTheWidths) {
  Known known;
  known.widths = {2, 5};
  const Detection found = detect_text("ab  123\ncd    4\n", known);
  EXPECT_EQ(found.dialect, (Dialect{LayoutMode::fixed_width, {}, {2, 5}}));
  ASSERT_EQ(found.columns.size(), 2U);
  EXPECT_EQ(found.columns[1].type, kNumber);
}

// Every member has a value of its own here.
TEST(DetectTextMembers, AreThoseOfTheText) {
  const Detection found =
      detect_text("A title\nanother\n\nx,y\r\n%,m\r\n1,2\r\n3,4\r\n5\r\n6,7\r\n8,9\r\n",
                  {.delimiters = {{","}}, .header_lines = 3});
  EXPECT_EQ(found.header_lines, 3U);
  EXPECT_EQ(found.names_line, 4U);
  EXPECT_EQ(found.units_line, 5U);
  EXPECT_EQ(found.names_source, NamesSource::line_after_header);
  EXPECT_EQ(found.names_reason, "texts above values");
  EXPECT_EQ(found.decided_by, "given");
  EXPECT_EQ(found.line_ending, "\n");
  EXPECT_EQ(found.ragged_lines, 1U);
  EXPECT_EQ(found.first_ragged_line, 8U);
  EXPECT_EQ(found.lines_sampled, 10U);
  EXPECT_EQ(found.characters_sampled, 50U);
  EXPECT_FALSE(found.has_more_text);
  ASSERT_FALSE(found.lines.empty());
  EXPECT_EQ(found.lines.back().role, LineRole::data);
  EXPECT_EQ(found.lines.back().first_line, 6U);
  EXPECT_EQ(found.lines.back().last_line, 10U);
}

TEST(DetectTextEncoding, IsUtf8AndGiven) {
  const Detection found = detect_text("1,2\n3,4\n");
  EXPECT_EQ(found.encoding, "UTF-8");
  EXPECT_EQ(found.encoding_found, EncodingFound::given);
  EXPECT_EQ(found.encoding_confidence, 1.0);
  EXPECT_EQ(detect_text("1,2\n3,4\n", {.encoding = "UTF-16"}).encoding, "UTF-8");
}

TEST(DetectTextEncoding, CountsWhatIsIllFormed) {
  const Detection found = detect_text("caf\xE9,n\n1,2\n3,4\xFF\n5,6\n");
  EXPECT_EQ(found.ill_formed_parts, 2U);
  EXPECT_EQ(found.columns[0].name, "caf\xEF\xBF\xBD");
}

TEST(DetectTextStart, DropsAByteOrderMark) {
  EXPECT_EQ(detect_text("\xEF\xBB\xBFx,y\n1,2\n3,4\n").columns[0].name, "x");
}

TEST(DetectTextStart, MayLookLikeAnArchive) {
  const Detection found = detect_text("PK\x03\x04,y\n1,2\n3,4\n5,6\n");
  EXPECT_EQ(found.columns.size(), 2U);
  EXPECT_EQ(found.lines_sampled, 4U);
}

TEST(DetectTextSample, EndsWithItsLargestSize) {
  std::string text;
  while (text.size() < 5'000'000) text += "12,34567\n";
  Known known;
  known.lines_to_sample = 4'194'304;
  const Detection found = detect_text(text, known);
  EXPECT_TRUE(found.has_more_text);
  EXPECT_LE(found.characters_sampled, 4'194'304U);
  EXPECT_GT(found.characters_sampled, 4'194'304U - 9U);
  EXPECT_TRUE(detect_text(text).has_more_text);
  EXPECT_EQ(detect_text(text).characters_sampled, 900U);
}

// --- bytes -------------------------------------------------------------------------------------

struct BytesCase {
  const char* rule;
  std::string bytes;
  std::string encoding;
  EncodingFound found;
  std::string name;  // of the first column
};
std::ostream& operator<<(std::ostream& out, const BytesCase& row) { return out << row.rule; }

std::string utf16_of(std::string_view ascii) {
  std::string bytes;
  for (const char c : ascii) bytes += {c, '\0'};
  return bytes;
}

const std::string kTable = "caf\xC3\xA9,n\n1,2\n3,4\n";

const BytesCase kBytes[] = {
    {"Utf8", kTable, "UTF-8", EncodingFound::valid_utf8, "caf\xC3\xA9"},
    {"Utf8WithAMark", "\xEF\xBB\xBF" + kTable, "UTF-8", EncodingFound::byte_order_mark,
     "caf\xC3\xA9"},
    {"Utf16WithAMark", "\xFF\xFE" + utf16_of("x,y\n1,2\n3,4\n"), "UTF-16LE",
     EncodingFound::byte_order_mark, "x"},
    {"Gzip", gzip_of(kTable), "UTF-8", EncodingFound::valid_utf8, "caf\xC3\xA9"},
    {"Zstd", zstd_of(kTable), "UTF-8", EncodingFound::valid_utf8, "caf\xC3\xA9"},
    {"Windows1252",
     "M\xFCller,Gr\xFC\xDF"
     "e\n1,2\n3,4\n",
     "windows-1252", EncodingFound::statistics, "M\xC3\xBCller"},
};

class DetectBytes : public testing::TestWithParam<BytesCase> {};
TEST_P(DetectBytes, FindsTheEncodingAsInFiles) {
  const BytesCase& row = GetParam();
  const Detection found = detect_bytes(row.bytes);
  EXPECT_EQ(found.encoding, row.encoding);
  EXPECT_EQ(found.encoding_found, row.found) << to_string(found.encoding_found);
  EXPECT_EQ(found.columns[0].name, row.name);
}
INSTANTIATE_TEST_SUITE_P(Table, DetectBytes, testing::ValuesIn(kBytes), ByRule());

TEST(DetectBytesEncoding, IsTheKnownOne) {
  const Detection found = detect_bytes("caf\xE9,n\n1,2\n3,4\n", {.encoding = "latin1"});
  EXPECT_EQ(found.encoding, "latin1");
  EXPECT_EQ(found.encoding_found, EncodingFound::given);
  EXPECT_EQ(found.columns[0].name, "caf\xC3\xA9");
}

TEST(DetectBytesSpan, IsReadLikeAView) {
  std::vector<std::byte> bytes;
  for (const char c : kTable) bytes.push_back(static_cast<std::byte>(c));
  EXPECT_EQ(detect_bytes(bytes).columns, detect_bytes(kTable).columns);
  EXPECT_EQ(detect_bytes(std::vector<std::byte>()).lines_sampled, 0U);
}

struct BytesProblemCase {
  const char* rule;
  std::string bytes;
  std::string message;
};
std::ostream& operator<<(std::ostream& out, const BytesProblemCase& row) { return out << row.rule; }

const BytesProblemCase kBytesProblems[] = {
    {"CutOff", gzip_of(kTable).substr(0, 30), "cannot read the bytes: "},
    {"Twice", gzip_of(gzip_of(kTable)), "cannot open the bytes: "},
    {"Zip", "PK\x03\x04 and so on", "cannot open the bytes: "},
};

class DetectBytesProblem : public testing::TestWithParam<BytesProblemCase> {};
TEST_P(DetectBytesProblem, IsAFileError) {
  try {
    detect_bytes(GetParam().bytes);
    FAIL() << "nothing thrown";
  } catch (const FileError& error) {
    EXPECT_THAT(error.what(), HasSubstr(GetParam().message));
  }
}
INSTANTIATE_TEST_SUITE_P(Table, DetectBytesProblem, testing::ValuesIn(kBytesProblems), ByRule());

TEST(DetectFileProblem, NamesTheFile) {
  const TempFolder folder;
  const std::string none = folder.path_of("none");
  try {
    detect_file(none);
    FAIL() << "nothing thrown";
  } catch (const FileError& error) {
    EXPECT_EQ(error.what(), "cannot open '" + none + "': No such file or directory");
  }
}

TEST(DetectProblem, LeavesNoFileOpen) {
  const std::size_t before = open_files();
  EXPECT_THROW(detect_bytes(gzip_of(kTable).substr(0, 30)), FileError);
  EXPECT_THROW(detect_file("/proc/self/mem"), FileError);
  EXPECT_EQ(open_files(), before);
}

TEST(DetectProblem, IsALineThatTheTextLacks) {
  try {
    detect_text("x,y\n1,2\n3,4\n", {.names_line = 4});
    FAIL() << "nothing thrown";
  } catch (const GivenMismatch& mismatch) {
    EXPECT_STREQ(mismatch.what(), "Known::names_line: expected a line from 1 to 3, got 4.");
  }
}

// --- what is known of the table ----------------------------------------------------------------

const std::string kApostrophes = "title\nm,s\na,b\n1,'x, y'\n2,'z, w'\n3,'q, r'\n";

TEST(DetectKnown, LinesAndQuote) {
  const Detection found =
      detect_text(kApostrophes, {.names_line = 3, .units_line = 2, .quote = "'"});
  EXPECT_EQ(found.names_line, 3U);
  EXPECT_EQ(found.units_line, 2U);
  EXPECT_EQ(found.quote, "'");
  EXPECT_EQ(found.escape, "");
  EXPECT_EQ(without_kinds(found.columns),
            (std::vector<Column>{{"a", "m", kNumber}, {"b", "s", kText}}));
}

TEST(DetectKnown, TheCascade) {
  const Detection found = detect_text("x,y\n1,2\n3,4\n", {.judge = Judge::cascade});
  EXPECT_EQ(found.confidence, std::nullopt);
  EXPECT_TRUE(found.rivals.empty());
  EXPECT_TRUE(found.evidence.empty());
}

TEST(DetectKnown, WhatIsMissing) {
  const Detection found = detect_text("n;v\n1;off\n2;off\n3;5\n", {.missing = {{"off"}}});
  EXPECT_EQ(without_kinds(found.columns),
            (std::vector<Column>{{"n", "", kNumber}, {"v", "", kNumber}}));
}

TEST(DetectOpinion, IsThatOfTheLayout) {
  const std::string text = "a;b,c\n1;2,3\n4;5,6\n";
  const Detection found = detect_text(text);
  const Layout layout = detect_layout(from_utf8(text));
  ASSERT_FALSE(found.rivals.empty());
  ASSERT_EQ(found.rivals.size(), layout.rivals.size());
  for (std::size_t i = 0; i < found.rivals.size(); ++i) {
    EXPECT_EQ(found.rivals[i].dialect.mode, layout.rivals[i].mode);
    EXPECT_EQ(found.rivals[i].num_columns, layout.rivals[i].num_variables);
    EXPECT_EQ(found.rivals[i].probability, layout.rivals[i].probability);
    EXPECT_EQ(found.rivals[i].reason, layout.rivals[i].reason);
    EXPECT_EQ(found.rivals[i].no_table, layout.rivals[i].no_table);
  }
  EXPECT_FALSE(found.evidence.empty());
  EXPECT_EQ(found.evidence, layout.evidence);
}

// --- several routes to one answer --------------------------------------------------------------

std::string described(const Detection& found) {
  std::ostringstream out;
  out << std::hexfloat << found.dialect;
  for (const Column& column : found.columns) {
    out << "\ncolumn '" << column.name << "' '" << column.unit << "' " << to_string(column.type);
  }
  out << "\nheader " << found.header_lines << " names " << describe(found.names_line) << " units "
      << describe(found.units_line) << ' ' << to_string(found.names_source) << ": "
      << found.names_reason << "\nill-formed " << found.ill_formed_parts << " line ending "
      << (found.line_ending ? marker_name(*found.line_ending) : "none") << "\nruns";
  for (const LineRun& run : found.lines) {
    out << " [" << to_string(run.role) << ' ' << run.first_line << '-' << run.last_line << ' '
        << run.count << ']';
  }
  out << "\nragged " << found.ragged_lines << " from " << describe(found.first_ragged_line)
      << "\nsampled " << found.lines_sampled << " lines " << found.characters_sampled
      << " characters" << (found.has_more_text ? " of more" : "") << "\nby " << found.decided_by;
  return out.str();
}

std::string encoding_of(const Detection& found) {
  std::ostringstream out;
  out << found.encoding << ' ' << to_string(found.encoding_found) << ' '
      << found.encoding_confidence;
  return out.str();
}

void expect_same(const Detection& found, const Layout& layout) {
  EXPECT_EQ(found.dialect, dialect_of(layout));
  ASSERT_EQ(found.columns.size(), layout.num_variables);
  for (std::size_t i = 0; i < found.columns.size(); ++i) {
    EXPECT_EQ(found.columns[i].type, layout.classes[i]);
    const auto name = layout.names_line ? to_utf8(layout.names[i]) : "";
    EXPECT_EQ(found.columns[i].name, name);
    const auto unit = layout.units.empty() ? "" : to_utf8(layout.units[i]);
    EXPECT_EQ(found.columns[i].unit, unit);
  }
  EXPECT_EQ(found.header_lines, layout.header_lines);
  EXPECT_EQ(found.names_line, layout.names_line);
  EXPECT_EQ(found.units_line, layout.units_line);
  EXPECT_EQ(found.names_source, layout.names_source);
  EXPECT_EQ(found.names_reason, layout.names_reason);
  EXPECT_EQ(found.line_ending.value_or("none"), to_utf8(layout.line_ending.value_or(u"none")));
  ASSERT_EQ(found.lines.size(), layout.lines.size());
  for (std::size_t i = 0; i < found.lines.size(); ++i) {
    EXPECT_EQ(found.lines[i].role, layout.lines[i].role);
    EXPECT_EQ(found.lines[i].first_line, layout.lines[i].first_line);
    EXPECT_EQ(found.lines[i].last_line, layout.lines[i].last_line);
    EXPECT_EQ(found.lines[i].count, layout.lines[i].count);
  }
  EXPECT_EQ(found.ragged_lines, layout.ragged_lines);
  EXPECT_EQ(found.first_ragged_line, layout.first_ragged_line);
  EXPECT_EQ(found.lines_sampled, layout.lines_sampled);
  EXPECT_EQ(found.characters_sampled, layout.characters_sampled);
  EXPECT_EQ(found.has_more_text, layout.has_more_text);
  const std::string_view end = to_string(layout.selection_end);
  EXPECT_EQ(found.decided_by, layout.decided_by.empty() ? end : layout.decided_by);
}

// Texts of the characters that decide a layout.
std::string random_text(std::mt19937& random) {
  constexpr std::string_view kPieces[] = {"1",  "2.5", "a", "bc", ",", ",",       ";",    "\t",
                                          " ",  "  ",  "%", ":",  "-", "\"",      "\r\n", "\n",
                                          "\n", "m/s", "/", "#",  "|", "\xC3\xA9"};
  std::string text;
  for (std::size_t left = random() % 120; left > 0; --left) {
    text += kPieces[random() % std::size(kPieces)];
  }
  return text;
}

TEST(DetectRoutes, GiveOneAnswer) {
  const TempFolder folder;
  std::mt19937 random(20261122);
  std::set<std::string> deciders;
  for (int i = 0; i < 300; ++i) {
    const std::string text = random_text(random);
    const std::string path = folder.file("t", text);
    SCOPED_TRACE(testing::PrintToString(text));
    const Detection of_text = detect_text(text);
    const Detection of_bytes = detect_bytes(text);
    const Detection of_file = detect_file(path);
    EXPECT_EQ(described(of_text), described(of_file));
    EXPECT_EQ(described(of_bytes), described(of_file));
    EXPECT_EQ(encoding_of(of_bytes), encoding_of(of_file));
    EXPECT_EQ(described(detect_bytes(gzip_of(text))), described(of_file));
    expect_same(of_file, detect_layout(path));
    expect_same(of_text, detect_layout(from_utf8(text)));
    deciders.insert(of_text.decided_by);
  }
  EXPECT_THAT(deciders, testing::Contains(testing::StartsWith("reduce_by_")));
  EXPECT_THAT(deciders, testing::IsSupersetOf({"only-candidate", "no-candidate", "empty-sample"}));
}

// --- whatever the bytes ------------------------------------------------------------------------

// ICU's strict conversion is the second route: what it gives back unchanged is well-formed.
bool is_well_formed(const std::string& utf8) {
  const std::u16string units = from_utf8(utf8);
  for (std::size_t i = 0; i < units.size(); ++i) {
    const bool is_lead = units[i] >= 0xD800 && units[i] <= 0xDBFF;
    if (is_lead && i + 1 < units.size()) {
      ++i;
    } else if (units[i] >= 0xD800 && units[i] <= 0xDFFF) {
      return false;
    }
  }
  return true;
}

TEST(DetectTexts, AreWellFormedWhateverTheBytes) {
  std::mt19937 random(7);
  for (int i = 0; i < 500; ++i) {
    std::string bytes = "a\xF0\x9F\x92\x80,b\n1,2\n";
    for (std::size_t left = random() % 100; left > 0; --left) {
      bytes.push_back(random() % 4 == 0 ? ",\n;\xED"[random() % 4] : static_cast<char>(random()));
    }
    for (const Detection& found : {detect_text(bytes), detect_bytes(bytes)}) {
      for (const std::string& delimiter : found.dialect.delimiters) {
        EXPECT_TRUE(is_well_formed(delimiter));
      }
      for (const Column& column : found.columns) {
        EXPECT_TRUE(is_well_formed(column.name)) << testing::PrintToString(bytes);
        EXPECT_TRUE(is_well_formed(column.unit)) << testing::PrintToString(bytes);
      }
      EXPECT_TRUE(is_well_formed(found.line_ending.value_or("")));
    }
  }
}

}  // namespace
}  // namespace textio
