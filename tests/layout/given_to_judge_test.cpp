// What is given to the judge: the answer obeys it, and is assessed among what is left.
#include <vltextstream/layout/detect_layout.hpp>

#include <ostream>
#include <sstream>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <vltextstream/standalone/decoding/utf_text.hpp>
#include "support/datatype_names.hpp"
#include "support/exact_text.hpp"
#include "support/layout_text.hpp"
#include "support/printing.hpp"
#include "support/rule_name.hpp"
#include "support/temp_folder.hpp"

namespace textio::standalone {
namespace {

using detection::SelectionEnd;
using testing::HasSubstr;
using testing_support::ByRule;
using testing_support::every_member_of;
using testing_support::ExactText;
using testing_support::names_of;
using testing_support::readable;
using testing_support::TempFolder;

using Given = std::vector<NameValue>;
using Texts = std::vector<std::u16string>;

std::string listed(const Texts& texts) {
  std::string out;
  for (const std::u16string& text : texts) out += '[' + readable(text) + ']';
  return out;
}

// "1-2 header 3 names 4-6 data"
std::string roles_of(const Layout& layout) {
  std::ostringstream out;
  for (const LineRun& run : layout.lines) {
    if (&run != &layout.lines.front()) out << ' ';
    out << run.first_line;
    if (run.last_line != run.first_line) out << '-' << run.last_line;
    out << ' ' << to_string(run.role);
  }
  return out.str();
}

NameValue header_lines(int count) { return {"NumHeaderLines", make_array(count)}; }
NameValue names_line(int line) { return {"VariableNamesLine", make_array(line)}; }
NameValue units_line(int line) { return {"VariableUnitsLine", make_array(line)}; }
NameValue descriptions_line(int line) { return {"VariableDescriptionsLine", make_array(line)}; }
NameValue row_names(int field) { return {"RowNamesField", make_array(field)}; }
NameValue comments(std::u16string_view sign) { return {"CommentStyle", make_array(sign)}; }
NameValue missing(const Texts& texts) { return {"TreatAsMissing", make_text_cell(texts)}; }
NameValue exponents(std::u16string_view letters) { return {"ExpChars", make_array(letters)}; }
NameValue delimiter(std::u16string_view text) { return {"Delimiter", make_array(text)}; }
NameValue line_endings(const Texts& texts) { return {"LineEnding", make_text_cell(texts)}; }

struct LinesCase {
  const char* rule;
  std::u16string text;
  Given given;
  std::size_t header_lines;
  std::string names;
  std::string units;
  std::string classes;
  std::string roles;
};
std::ostream& operator<<(std::ostream& out, const LinesCase& row) { return out << row.rule; }

const std::u16string kLog =
    u"Log, of today\nby: Ann\nx,y,z\nm,s,kg\n1,2,3\n4,5,6\n7,8,9\n10,11,12\n";
const std::u16string kNotes = u"#,a\nx,y\n#,1\n1,2\n3,4\n5,6\n";

const std::vector<LinesCase> kLines = {
    {"NothingGiven",
     kLog,
     {},
     2,
     "[x][y][z]",
     "[m][s][kg]",
     "number number number",
     "1-2 header 3 names 4 units 5-8 data"},

    // Header lines.
    {"HeaderLinesAboveTheNames",
     kLog,
     {header_lines(2)},
     2,
     "[x][y][z]",
     "[m][s][kg]",
     "number number number",
     "1-2 header 3 names 4 units 5-8 data"},
    {"HeaderLinesWithTheNames",
     u"Log\nx,y,z\n1,2,3\n4,5,6\n7,8,9\n",
     {header_lines(2)},
     2,
     "[x][y][z]",
     "",
     "number number number",
     "1 header 2 names 3-5 data"},
    {"HeaderLinesIntoTheData",
     kLog,
     {header_lines(5)},
     5,
     "",
     "",
     "number number number",
     "1-5 header 6-8 data"},
    {"HeaderLinesWithNamesAndUnits",
     kLog,
     {header_lines(4)},
     4,
     "[x][y][z]",
     "[m][s][kg]",
     "number number number",
     "1-2 header 3 names 4 units 5-8 data"},
    {"NoHeaderLines",
     u"a\nb,c\n1,2\n3,4\n5,6\n",
     {header_lines(0)},
     0,
     "[b][c]",
     "",
     "number number",
     "1 data 2 names 3-5 data"},
    {"BlankLinesAreHeaderLines",
     u"Log\n\nx,y,z\n1,2,3\n4,5,6\n7,8,9\n",
     {header_lines(3)},
     3,
     "[x][y][z]",
     "",
     "number number number",
     "1 header 2 blank 3 names 4-6 data"},

    // Comments.
    {"ASignThatIsNoComment",
     u"#x,y\n1,2\n3,4\n5,6\n",
     {comments(u"%")},
     0,
     "[#x][y]",
     "",
     "number number",
     "1 names 2-4 data"},
    {"NoNamesInAComment",
     u"#x,y\n1,2\n3,4\n5,6\n",
     {comments(u"#")},
     0,
     "",
     "",
     "number number",
     "1 comment 2-4 data"},
    {"CommentsAreGiven",
     kNotes,
     {comments(u"#")},
     0,
     "[x][y]",
     "",
     "number number",
     "1 comment 2 names 3 comment 4-6 data"},
    {"CommentsAreNoHeaderLines",
     kNotes,
     {comments(u"#"), header_lines(2)},
     2,
     "",
     "",
     "number number",
     "1 comment 2 header 3 comment 4 header 5-6 data"},

    // Names, units, descriptions.
    {"NamesBelowTheirPlace",
     kLog,
     {names_line(4)},
     3,
     "[m][s][kg]",
     "",
     "number number number",
     "1-3 header 4 names 5-8 data"},
    {"NamesAboveTheirPlace",
     kLog,
     {names_line(1), header_lines(4)},
     4,
     "[Log][of today][]",
     "",
     "number number number",
     "1 names 2-4 header 5-8 data"},
    {"NoNames", kLog, {names_line(0)}, 2, "", "", "number number number", "1-2 header 3-8 data"},
    {"NamesAreValues",
     u"1,2\n3,4\n5,6\n7,8\n",
     {names_line(1)},
     0,
     "[1][2]",
     "",
     "number number",
     "1 names 2-4 data"},
    {"Units",
     kLog,
     {units_line(4)},
     2,
     "[x][y][z]",
     "[m][s][kg]",
     "number number number",
     "1-2 header 3 names 4 units 5-8 data"},
    {"UnitsThatNobodyKnows",
     u"x,y\nfoo,bar\n1,2\n3,4\n5,6\n",
     {units_line(2)},
     0,
     "[x][y]",
     "[foo][bar]",
     "number number",
     "1 names 2 units 3-5 data"},
    {"UnitsAboveTheNames",
     u"m,s\nx,y\n1,2\n3,4\n5,6\n",
     {units_line(1), names_line(2)},
     1,
     "[x][y]",
     "[m][s]",
     "number number",
     "1 units 2 names 3-5 data"},
    {"NoUnits",
     kLog,
     {units_line(0), names_line(3)},
     2,
     "[x][y][z]",
     "",
     "number number number",
     "1-2 header 3 names 4-8 data"},
    {"Descriptions",
     u"x,y\nthe first one,the second one\n1,2\n3,4\n5,6\n",
     {descriptions_line(2)},
     0,
     "[x][y]",
     "",
     "number number",
     "1 names 2 header 3-5 data"},
    {"AllThree",
     u"x,y\nfirst,second\nm,s\n1,2\n3,4\n5,6\n",
     {names_line(1), descriptions_line(2), units_line(3)},
     0,
     "[x][y]",
     "[m][s]",
     "number number",
     "1 names 2 header 3 units 4-6 data"},

    // Row names.
    {"RowNamesWithoutAName",
     u"x,z\n1,2,3\n4,5,6\n7,8,9\n",
     {row_names(2)},
     0,
     "[x][][z]",
     "",
     "number number number",
     "1 names 2-4 data"},

    // A comment sign before the names.
    {"NamesBehindACommentSign",
     u"# x,y\n1,2\n3,4\n5,6\n",
     {names_line(1)},
     0,
     "[x][y]",
     "",
     "number number",
     "1 names 2-4 data"},
    {"ACommentSignThatIsAName",
     u"#,y\n1,2\n3,4\n5,6\n",
     {names_line(1)},
     0,
     "[#][y]",
     "",
     "number number",
     "1 names 2-4 data"},

    // With separators that are given.
    {"NamesOfAGivenDelimiter",
     kLog,
     {delimiter(u","), names_line(4)},
     3,
     "[m][s][kg]",
     "",
     "number number number",
     "1-3 header 4 names 5-8 data"},

    // Line endings.
    {"LineFeedsAlone",
     u"x,y\n1,a\rb\n2,c\n3,d\n",
     {line_endings({u"\n"})},
     0,
     "[x][y]",
     "",
     "number text",
     "1 names 2-4 data"},
};

class JudgedLines : public testing::TestWithParam<LinesCase> {};

TEST_P(JudgedLines, ObeyWhatIsGiven) {
  const LinesCase& row = GetParam();
  const ExactText text(row.text);
  const Layout layout = detect_layout(text.view(), settings_with(row.given));
  EXPECT_TRUE(layout.confidence.has_value());
  EXPECT_EQ(listed(layout.delimiters), "[,]");
  EXPECT_EQ(layout.header_lines, row.header_lines);
  EXPECT_EQ(listed(layout.names), row.names);
  EXPECT_EQ(listed(layout.units), row.units);
  EXPECT_EQ(names_of(layout.classes), row.classes);
  EXPECT_EQ(roles_of(layout), row.roles);
}

TEST_P(JudgedLines, AreTheSameInAFile) {
  const TempFolder folder;
  Layout of_file =
      detect_layout(folder.file("t", to_utf8(GetParam().text)), settings_with(GetParam().given));
  const Layout of_text = detect_layout(GetParam().text, settings_with(GetParam().given));
  of_file.encoding.clear();
  of_file.encoding_found = of_text.encoding_found;
  of_file.encoding_confidence = of_text.encoding_confidence;
  EXPECT_EQ(every_member_of(of_file), every_member_of(of_text));
}

INSTANTIATE_TEST_SUITE_P(Table, JudgedLines, testing::ValuesIn(kLines), ByRule());

// --- classes -------------------------------------------------------------------------------------

struct ClassesCase {
  const char* rule;
  std::u16string text;
  Given given;
  std::string before;
  std::string after;
};
std::ostream& operator<<(std::ostream& out, const ClassesCase& row) { return out << row.rule; }

const ClassesCase kClasses[] = {
    {"AMissingWord",
     u"n;v\n1;off\n2;off\n3;5\n",
     {missing({u"off"})},
     "number text",
     "number number"},
    {"SeveralMissingWords",
     u"n;v\n1;off\n2;broken\n3;5\n4;off\n",
     {missing({u"off", u"broken"})},
     "number text",
     "number number"},
    {"AMissingNumber",
     u"n;v\n1;-999\n2;-999\n3;a\n4;b\n5;-999\n",
     {missing({u"-999"})},
     "number number",
     "number text"},
    {"NothingButMissing",
     u"n;v\n1;off\n2;off\n3;off\n",
     {missing({u"off"})},
     "number text",
     "number empty"},
    {"AnotherExponent",
     u"n;v\n1;1x5\n2;2x6\n3;3x7\n",
     {exponents(u"x")},
     "number text",
     "number number"},
    {"NoUsualExponent",
     u"n;v\n1;1d5\n2;2d6\n3;3d7\n",
     {exponents(u"e")},
     "number number",
     "number text"},
    {"OfAGivenDelimiter",
     u"n;v\n1;off\n2;off\n3;5\n",
     {delimiter(u";"), missing({u"off"})},
     "number text",
     "number number"},
};

class JudgedClasses : public testing::TestWithParam<ClassesCase> {};

TEST_P(JudgedClasses, ObeyWhatIsGiven) {
  const ClassesCase& row = GetParam();
  const ExactText text(row.text);
  EXPECT_EQ(names_of(detect_layout(text.view()).classes), row.before);
  EXPECT_EQ(names_of(detect_layout(text.view(), settings_with(row.given)).classes), row.after);
}

INSTANTIATE_TEST_SUITE_P(Table, JudgedClasses, testing::ValuesIn(kClasses), ByRule());

// --- quotes --------------------------------------------------------------------------------------

TEST(JudgedQuote, IsTheGivenOne) {
  const std::u16string text = u"n,v\n1,$a, b$\n2,$c, d$\n3,$e, f$\n";
  DetectSettings settings;
  EXPECT_EQ(detect_layout(text, settings).num_variables, 3U);
  settings.quote = u'$';
  const Layout layout = detect_layout(text, settings);
  EXPECT_EQ(layout.num_variables, 2U);
  EXPECT_EQ(layout.quote, u'$');
  EXPECT_EQ(layout.ragged_lines, 0U);
}

TEST(JudgedQuote, OfAGivenDelimiter) {
  const std::u16string text = u"n,v\n1,$a, b$\n2,$c, d$\n3,$e, f$\n";
  DetectSettings settings = settings_with({delimiter(u",")});
  settings.quote = u'$';
  const Layout layout = detect_layout(text, settings);
  EXPECT_EQ(layout.mode, LayoutMode::delimited);
  EXPECT_EQ(layout.num_variables, 2U);
  EXPECT_EQ(layout.selection_end, SelectionEnd::given);
  EXPECT_FALSE(layout.cascade.has_value());
}

TEST(JudgedQuote, MayBeNone) {
  const std::u16string text = u"n;v;w\n1;\"a;b\"\n2;\"c;d\"\n3;\"e;f\"\n";
  DetectSettings settings;
  settings.quote = u'"';
  EXPECT_EQ(detect_layout(text, settings).num_variables, 2U);
  settings.quote = u'\0';
  const Layout layout = detect_layout(text, settings);
  EXPECT_EQ(layout.num_variables, 3U);
  EXPECT_EQ(layout.quote, std::nullopt);
}

TEST(JudgedEscape, IsTheGivenOne) {
  const std::u16string text = u"n;v\nx;\"a \\\" ; b\"\ny;\"c\"\nz;\"d\"\n";
  DetectSettings settings;
  settings.escape = u'\\';
  EXPECT_EQ(detect_layout(text, settings).ragged_lines, 0U);
  settings.escape = u'\0';
  const Layout layout = detect_layout(text, settings);
  EXPECT_EQ(layout.escape, std::nullopt);
  EXPECT_EQ(layout.ragged_lines, 1U);  // the second quote closes the cell, and `b"` is a third one
}

// --- the rest ------------------------------------------------------------------------------------

TEST(JudgedDescriptions, AreReported) {
  const Layout layout =
      detect_layout(u"x,y\nthe first,the second\n1,2\n3,4\n5,6\n", {descriptions_line(2)});
  EXPECT_EQ(layout.descriptions_line, 2U);
  EXPECT_EQ(listed(layout.descriptions), "[the first][the second]");
}

TEST(JudgedNames, SayThatTheyWereGiven) {
  const Layout layout = detect_layout(kLog, {names_line(4)});
  EXPECT_EQ(layout.names_line, 4U);
  EXPECT_EQ(layout.names_reason, "line 4 was given");
  EXPECT_EQ(layout.names_source, NamesSource::line_after_header);
  EXPECT_EQ(layout.names_probability, 1.0);
}

TEST(JudgedNames, SayThatThereAreNone) {
  const Layout layout = detect_layout(kLog, {names_line(0)});
  EXPECT_EQ(layout.names_line, std::nullopt);
  EXPECT_EQ(layout.names_candidate, std::nullopt);
  EXPECT_EQ(layout.names_source, NamesSource::none);
  EXPECT_EQ(layout.names_reason, "it was given that no line holds them");
}

TEST(JudgedNames, OfTheLastHeaderLine) {
  EXPECT_EQ(detect_layout(u"x,y\n1,2\n3,4\n5,6\n", {header_lines(1)}).names_source,
            NamesSource::last_header_line);
}

TEST(JudgedWidths, AreTheGivenOnes) {
  const Given given = {{"ParserType", make_array(u"fixedwidth")},
                       {"VariableWidths", make_array(std::vector<std::uint64_t>{5, 1})},
                       names_line(2)};
  const Layout layout = detect_layout(u"list\nname n\nann  1\nbob  2\n", settings_with(given));
  EXPECT_EQ(layout.mode, LayoutMode::fixed_width);
  EXPECT_EQ(layout.widths, (std::vector<std::size_t>{5, 1}));
  EXPECT_EQ(listed(layout.names), "[name][n]");
  EXPECT_EQ(names_of(layout.classes), "text number");
  EXPECT_EQ(layout.header_lines, 1U);
}

TEST(JudgedDelimiters, MayBeSeveral) {
  const Given given = {{"Delimiter", make_text_cell({u";", u","})}, names_line(1)};
  const Layout layout = detect_layout(u"a;b,c\n1;2,3\n4;5,6\n", settings_with(given));
  EXPECT_EQ(listed(layout.delimiters), "[;][,]");
  EXPECT_EQ(listed(layout.names), "[a][b][c]");
  EXPECT_EQ(layout.num_variables, 3U);
}

TEST(JudgedDelimiters, MaySeparateNothing) {
  const Layout layout = detect_layout(u"a;b\n1;2\n3;4\n", {delimiter(u"|"), names_line(1)});
  EXPECT_EQ(layout.mode, LayoutMode::delimited);
  EXPECT_EQ(listed(layout.delimiters), "[|]");
  EXPECT_EQ(listed(layout.names), "[a;b]");
  EXPECT_EQ(layout.num_variables, 1U);
}

TEST(JudgedHeader, OfAllLinesLeavesNothingToJudge) {
  const Layout layout = detect_layout(u"x,y\n1,2\n3,4\n", {header_lines(7)});
  EXPECT_EQ(layout.header_lines, 7U);
  EXPECT_FALSE(layout.confidence.has_value());
}

// A detection over the first part of a text must see that the line may come later.
TEST(JudgedLinesFarBelow, AreFound) {
  std::u16string text;
  for (int i = 0; i < 9000; ++i) text += u"note of the day\n";
  text += u"x;y\n1;2\n3;4\n5;6\n";
  for (const Given& given : {Given{names_line(9001)}, Given{header_lines(9000)}}) {
    const Layout layout = detect_layout(text, settings_with(given));
    EXPECT_EQ(layout.header_lines, 9000U);
    EXPECT_EQ(layout.names_line, 9001U);
    EXPECT_EQ(listed(layout.delimiters), "[;]");
    EXPECT_EQ(listed(layout.names), "[x][y]");
  }
}

TEST(JudgedMismatch, NamesTheOption) {
  try {
    detect_layout(kLog, {names_line(9)});
    FAIL() << "nothing thrown";
  } catch (const GivenMismatch& mismatch) {
    EXPECT_STREQ(mismatch.what(), "VariableNamesLine: Expected a line from 1 to 8, got 9.");
  }
  EXPECT_THROW(detect_layout(kLog, {row_names(4), delimiter(u",")}), GivenMismatch);
}

TEST(JudgedOptions, HaveNoEffectOnTheCascade) {
  DetectSettings settings = settings_with({names_line(4), missing({u"1"}), exponents(u"x")});
  settings.judge = Judge::cascade;
  settings.quote = u'$';
  DetectSettings nothing;
  nothing.judge = Judge::cascade;
  settings.describe_columns = nothing.describe_columns = false;
  EXPECT_EQ(every_member_of(detect_layout(kLog, settings)),
            every_member_of(detect_layout(kLog, nothing)));
}

TEST(ApplyOption, SetsTheMembersOfTheSettings) {
  DetectSettings settings;
  apply_option(settings, names_line(0));
  apply_option(settings, {"variableunitsline", make_array(3)});
  apply_option(settings, {"TREATASEMPTY", make_text_cell({u"\\t", u"-"})});
  apply_option(settings, {"Encoding", make_array(u"UTF-16")});
  EXPECT_EQ(settings.names_line, 0U);
  EXPECT_EQ(settings.units_line, 3U);
  EXPECT_EQ(listed(settings.missing), "[\\u0009][-]");
  EXPECT_EQ(settings.encoding, "UTF-16");
  EXPECT_THROW(apply_option(settings, missing({u"\\q"})), OptionProblem);
}

}  // namespace
}  // namespace textio::standalone
