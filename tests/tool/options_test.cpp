// Every option on the command line, through the built program: what it changes, what it refuses.
#include <algorithm>
#include <cctype>
#include <cstddef>
#include <ostream>
#include <sstream>
#include <string>
#include <tuple>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include "support/command.hpp"
#include "support/rule_name.hpp"
#include "support/temp_folder.hpp"

namespace textio {
namespace {

using nlohmann::json;
using testing::AllOf;
using testing::AnyOf;
using testing::EndsWith;
using testing::HasSubstr;
using testing::Not;
using testing::StartsWith;
using testing_support::ByRule;
using testing_support::CommandResult;
using testing_support::run_command;
using testing_support::TempFolder;

using Words = std::vector<std::string>;

// --- helpers -----------------------------------------------------------------------------------

CommandResult vltext(const Words& arguments) { return run_command(VLTEXT_PROGRAM, arguments); }

Words joined(Words first, const Words& second) {
  first.insert(first.end(), second.begin(), second.end());
  return first;
}

// The one layout that is printed for a file with these bytes; null when there is none.
json layout_of(const std::string& bytes, const Words& options) {
  const TempFolder folder;
  const CommandResult result = vltext(joined(options, {"--json", folder.file("t", bytes)}));
  EXPECT_EQ(result.status, 0) << result.err;
  EXPECT_EQ(result.err, "");
  const json document = json::parse(result.out, nullptr, false);
  if (document.is_discarded()) return nullptr;
  json layout = document.at("files").at(0);
  layout.erase("file");
  std::size_t data = 0;
  for (const json& run : layout.at("lines")) {
    if (run.at("role") == "data") data += run.at("count").get<std::size_t>();
  }
  layout["lines_of_data"] = data;
  layout["given"] = document.at("given");
  return layout;
}

json without_given(json layout) {
  if (layout.is_object()) layout.erase("given");
  return layout;
}

json given(const std::string& name, const Words& values) {
  return {{"name", name}, {"values", values}};
}

std::string in_lower_case(std::string text) {
  std::transform(text.begin(), text.end(), text.begin(),
                 [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
  return text;
}

std::string in_upper_case(std::string text) {
  std::transform(text.begin(), text.end(), text.begin(),
                 [](unsigned char c) { return static_cast<char>(std::toupper(c)); });
  return text;
}

// A refusal: one line on standard error, nothing on standard output.
void expect_refused(const Words& options, const std::string& where,
                    const std::vector<std::string>& said) {
  const TempFolder folder;
  const CommandResult result = vltext(joined(options, {"--json", folder.file("t", "1,2\n3,4\n")}));
  EXPECT_EQ(result.status, 2);
  EXPECT_EQ(result.out, "");
  EXPECT_THAT(result.err, AllOf(StartsWith("vltext: " + where + ": Expected "),
                                AnyOf(EndsWith(".\n"), EndsWith("?\n"))));
  EXPECT_EQ(std::count(result.err.begin(), result.err.end(), '\n'), 1);
  for (const std::string& part : said) EXPECT_THAT(result.err, HasSubstr(part));
}

// --- every option ------------------------------------------------------------------------------

// Commas make three columns, semicolons two; two numbers and a text weigh more than one and one.
const std::string kBoth = "1;2,3,4\n5;6,7,8\n9;1,2,3\n";

const std::string kNamed = "x,y\n1,2\n3,4\n5,6\n";

struct OptionCase {
  const char* rule;  // the name of the option
  const char* flag;
  std::string value;
  std::string bytes;
  Words also;          // other options that are given
  const char* member;  // of the layout, that changes; empty when nothing does
  json before;
  json after;
};
std::ostream& operator<<(std::ostream& out, const OptionCase& row) { return out << row.rule; }

const std::string kSwitched = "n,v\n1,off\n2,off\n3,off\n";
const std::string kDollars = "n,v\n1,$a, b$\n2,$c, d$\n3,$e, f$\n";
const std::string kBackslashes = "n;v\nx;\"a \\\" ; b\"\ny;\"c\"\nz;\"d\"\n";

const Words kOfFixedWidth = {"--parser-type", "fixedwidth"};
const Words kTwoAndThree = {"--variable-widths", "2,3"};
const std::string kPlaces = "ab123\ncd456\nef789\n";

const std::vector<OptionCase> kOptions = {
    {"Delimiter", "--delimiter", ";", kBoth, {}, "delimiters", {","}, {";"}},
    {"LineEnding", "--line-ending", "|", "1,2|3,4|5,6", {}, "lines_sampled", 1, 3},
    {"EndOfLine", "--end-of-line", "|", "1,2|3,4|5,6", {}, "line_ending", nullptr, "|"},
    {"CommentStyle", "--comment-style", "$", "1,2\n$c\n3,4\n", {}, "lines_sampled", 3, 2},
    {"Whitespace",
     "--whitespace",
     "x",
     "x1x,x2x\nx3x,x4x\nx5x,x6x\n",
     {},
     "classes",
     {"text", "text"},
     {"number", "number"}},
    {"Encoding",
     "--encoding",
     "windows-1252",
     "caf\xC3\xA9,n\n1,2\n3,4\n",
     {},
     "names",
     {"caf\xC3\xA9", "n"},
     {"caf\xC3\x83\xC2\xA9", "n"}},
    {"DateLocale",
     "--date-locale",
     "de_DE",
     "1. M\xC3\xA4rz 2024;1\n2. Mai 2024;2\n",
     {"--delimiter", ";"},
     "classes",
     {"text", "number"},
     {"date", "number"}},
    {"ExpChars",
     "--exp-chars",
     "xX",
     "a,b\n1x2,y\n2X3,z\n",
     {},
     "classes",
     {"text", "text"},
     {"number", "text"}},
    {"VariableWidths",
     "--variable-widths",
     "2,3",
     kPlaces,
     kOfFixedWidth,
     "widths",
     json::array(),
     {2, 3}},
    {"NumHeaderLines", "--num-header-lines", "1", kNamed, {}, "header_lines", 0, 1},
    {"DataLine", "--data-line", "3", kNamed, {}, "header_lines", 0, 2},
    {"NumVariables", "--num-variables", "2", kBoth, {}, "num_variables", 3, 2},
    {"VariableNamesLine",
     "--variable-names-line",
     "2",
     kNamed,
     {},
     "names",
     {"x", "y"},
     {"1", "2"}},
    {"VariableUnitsLine", "--variable-units-line", "2", kNamed, {}, "units_line", nullptr, 2},
    {"VariableDescriptionsLine",
     "--variable-descriptions-line",
     "2",
     kNamed,
     {},
     "lines_of_data",
     3,
     2},
    {"RowNamesField",
     "--row-names-field",
     "2",
     "x,z\n1,2,3\n4,5,6\n7,8,9\n",
     {},
     "names",
     {"", "x", "z"},
     {"x", "", "z"}},
    {"CollectOutput", "--collect-output", "true", kNamed, {}, "", {}, {}},
    {"IsFile", "--is-file", "false", kNamed, {}, "", {}, {}},
    {"MultipleDelimsAsOne",
     "--multiple-delims-as-one",
     "true",
     "1,2,3\n4,,5\n6,,7\n",
     {},
     "",
     {},
     {}},
    {"ParserType", "--parser-type", "fixedwidth", kPlaces, kTwoAndThree, "mode", "line-reader",
     "fixed-width"},
    {"MissingRule", "--missing-rule", "omitrow", "1,\n3,4\n5,6\n", {}, "", {}, {}},
    {"ImportErrorRule", "--import-error-rule", "error", kNamed, {}, "", {}, {}},
    {"ConsecutiveDelimitersRule",
     "--consecutive-delimiters-rule",
     "join",
     "1,2,3\n4,,5\n6,,7\n",
     {},
     "",
     {},
     {}},
    {"EmptyLineRule", "--empty-line-rule", "read", "1,2\n\n3,4\n", {}, "", {}, {}},
    {"ExtraColumnsRule", "--extra-columns-rule", "wrap", "1,2\n3,4,5\n6,7\n", {}, "", {}, {}},
    {"LeadingDelimitersRule",
     "--leading-delimiters-rule",
     "ignore",
     ",1,2\n,3,4\n",
     {},
     "",
     {},
     {}},
    {"TextType", "--text-type", "string", kNamed, {}, "", {}, {}},
    {"DatetimeType",
     "--datetime-type",
     "exceldate",
     "2024-03-01,1\n2024-03-02,2\n",
     {},
     "",
     {},
     {}},
    {"PartialFieldRule", "--partial-field-rule", "wrap", kNamed, {}, "", {}, {}},
    {"TreatAsMissing",
     "--treat-as-missing",
     "off",
     kSwitched,
     {},
     "classes",
     {"number", "text"},
     {"number", "empty"}},
    {"TreatAsEmpty",
     "--treat-as-empty",
     "off",
     kSwitched,
     {},
     "classes",
     {"number", "text"},
     {"number", "empty"}},
    {"Quote", "--quote", "$", kDollars, {}, "num_variables", 3, 2},
    {"Escape", "--escape", "doubled", kBackslashes, {}, "escape", "\\", nullptr},
    {"NamesLine", "--names-line", "0", kNamed, {}, "names_line", 1, nullptr},
    {"Decimal",
     "--decimal",
     ".",
     "a;b\n1,500;x\n2,250;y\n",
     {},
     "classes",
     json::array({"number", "text"}),
     json::array({"number", "text"})},
    {"Grouping",
     "--grouping",
     " ",
     kNamed,
     {},
     "classes",
     json::array({"number", "number"}),
     json::array({"number", "number"})},
    {"ReturnOnError", "--return-on-error", "whatever", kNamed, {}, "", {}, {}},
    {"EmptyValue", "--empty-value", "\\q", kNamed, {}, "", {}, {}},
};

TEST(ToolOptions, AreThirtyEight) { EXPECT_EQ(kOptions.size(), 38U); }

class ToolOption : public testing::TestWithParam<OptionCase> {};

TEST_P(ToolOption, IsObeyedAndRepeated) {
  const OptionCase& row = GetParam();
  const json before = layout_of(row.bytes, row.also);
  const json after = layout_of(row.bytes, joined({row.flag, row.value}, row.also));
  ASSERT_TRUE(before.is_object() && after.is_object());
  if (*row.member == '\0') {
    EXPECT_EQ(without_given(after), without_given(before));
  } else {
    EXPECT_EQ(before.at(row.member), row.before);
    EXPECT_EQ(after.at(row.member), row.after);
  }
  EXPECT_EQ(after.at("given").at(0), given(row.rule, {row.value}));
  EXPECT_EQ(after.at("given").size(), row.also.empty() ? 1U : 2U);
}

TEST_P(ToolOption, MayBeJoinedToItsValue) {
  const OptionCase& row = GetParam();
  EXPECT_EQ(layout_of(row.bytes, joined({row.flag + ("=" + row.value)}, row.also)),
            layout_of(row.bytes, joined({row.flag, row.value}, row.also)));
}

TEST_P(ToolOption, HasItsNameInAnyCase) {
  const OptionCase& row = GetParam();
  const json by_flag = layout_of(row.bytes, joined({row.flag, row.value}, row.also));
  const std::string name = row.rule;
  for (const std::string& spelling : {name, in_lower_case(name), in_upper_case(name)}) {
    SCOPED_TRACE(spelling);
    const json by_name =
        layout_of(row.bytes, joined({"--option", spelling + "=" + row.value}, row.also));
    EXPECT_EQ(without_given(by_name), without_given(by_flag));
    ASSERT_TRUE(by_name.is_object());
    EXPECT_EQ(by_name.at("given").at(0), given(spelling, {row.value}));
  }
}

TEST_P(ToolOption, IsNotAbbreviated) {
  const OptionCase& row = GetParam();
  const std::string flag = row.flag;
  const std::string name = row.rule;
  for (const std::string& other : {flag.substr(0, flag.size() - 1), flag + "s", "--" + name}) {
    const CommandResult result = vltext({other, row.value, "none"});
    EXPECT_EQ(result.status, 2);
    EXPECT_EQ(result.out, "");
    EXPECT_THAT(result.err, HasSubstr(other));
  }
  for (const std::string& other : {name.substr(0, name.size() - 1), name + "s", name + " "}) {
    expect_refused({"--option", other + "=" + row.value}, other, {"'" + other + "'"});
  }
}

TEST_P(ToolOption, NeedsAValue) {
  const TempFolder folder;
  const CommandResult result = vltext({folder.file("t", "1,2\n"), GetParam().flag});
  EXPECT_EQ(result.status, 2);
  EXPECT_EQ(result.out, "");
  EXPECT_THAT(result.err, HasSubstr(GetParam().flag));
}

TEST_P(ToolOption, StandsInTheHelp) {
  static const CommandResult help = vltext({"--help"});
  EXPECT_EQ(help.status, 0);
  EXPECT_EQ(help.err, "");
  EXPECT_THAT(help.out, HasSubstr(std::string("\n  ") + GetParam().flag + " "));
}

INSTANTIATE_TEST_SUITE_P(Table, ToolOption, testing::ValuesIn(kOptions), ByRule());

TEST(ToolHelp, NamesTheOptionForAllOfThem) {
  EXPECT_THAT(vltext({"--help"}).out, HasSubstr("\n  --option "));
}

// --- values that are accepted ------------------------------------------------------------------

struct AcceptedCase {
  const char* rule;
  std::string bytes;
  Words options;
  const char* member;
  json value;
};
std::ostream& operator<<(std::ostream& out, const AcceptedCase& row) { return out << row.rule; }

const std::string kApostrophes = "a,b\n1,'x y'\n2,'z w'\n3,'q r'\n";

const std::string kLongDelimiter(100'000, 'x');

const AcceptedCase kAccepted[] = {
    // Numbers of lines: whole ones, however they are written.
    {"NoHeaderLine", kNamed, {"--num-header-lines", "0"}, "header_lines", 0},
    {"WholeWithAPoint", kNamed, {"--num-header-lines", "2.0"}, "header_lines", 2},
    {"WholeWithAnExponent", kNamed, {"--num-header-lines", "1e0"}, "header_lines", 1},
    {"TheFirstDataLine", kNamed, {"--data-line", "1"}, "header_lines", 0},
    {"MoreHeaderLinesThanLines", kNamed, {"--num-header-lines", "9"}, "header_lines", 9},
    {"ManyHeaderLines",
     kNamed,
     {"--num-header-lines", "1e18"},
     "header_lines",
     1'000'000'000'000'000'000},
    {"HalfOfAllNumbers",
     kNamed,
     {"--num-header-lines", "9223372036854775808"},
     "header_lines",
     9'223'372'036'854'775'808U},
    {"ManyVariables", kNamed, {"--num-variables", "1e18"}, "num_variables", 2},
    {"MostVariables", kNamed, {"--num-variables", "18446744073709551615"}, "num_variables", 2},

    // The later of two options that set the same.
    {"DataLineBehindHeaderLines",
     kNamed,
     {"--num-header-lines", "1", "--data-line", "3"},
     "header_lines",
     2},
    {"HeaderLinesBehindDataLine",
     kNamed,
     {"--data-line", "3", "--num-header-lines", "1"},
     "header_lines",
     1},
    {"HeaderLinesTwice",
     kNamed,
     {"--num-header-lines", "2", "--num-header-lines", "1"},
     "header_lines",
     1},
    {"NameBehindFlag",
     kNamed,
     {"--data-line", "3", "--option", "numheaderlines=1"},
     "header_lines",
     1},
    {"FlagBehindName",
     kNamed,
     {"--option", "numheaderlines=1", "--data-line", "3"},
     "header_lines",
     2},
    {"FlagBetweenNames",
     kNamed,
     {"--option", "DataLine=1", "--num-header-lines", "2", "--option", "DataLine=2"},
     "header_lines",
     1},
    {"EndOfLineBehindLineEnding",
     "1,2|3,4;5,6",
     {"--line-ending", "|", "--end-of-line", ";"},
     "line_ending",
     ";"},
    {"NamesAreNoList",
     kBoth,
     {"--option", "Delimiter=,", "--option", "Delimiter=;"},
     "delimiters",
     {";"}},

    // Lists: the flag is repeated.
    {"SeveralDelimiters", kBoth, {"--delimiter", ",", "--delimiter", ";"}, "num_variables", 4},
    {"SeveralDelimitersInOrder",
     kBoth,
     {"--delimiter", ";", "--json", "--delimiter", ","},
     "delimiters",
     {";", ","}},
    {"SeveralLineEndings",
     "1,2|3,4;5,6",
     {"--line-ending", "|", "--line-ending", ";"},
     "lines_sampled",
     3},
    {"TwoCommentMarkers",
     "1,2\n/*a\nb*/\n3,4\n",
     {"--comment-style", "/*", "--comment-style", "*/"},
     "lines_sampled",
     3},

    // Escapes.
    {"Tab", "1\t2\n3\t4\n", {"--delimiter", "\\t"}, "delimiters", {"\t"}},

    // The tool's own words.
    {"WordTab", "1\t2\n3\t4\n", {"--delimiter", "tab"}, "delimiters", {"\t"}},
    {"WordComma", kBoth, {"--delimiter", "comma"}, "delimiters", {","}},
    {"WordSemicolon", kBoth, {"--delimiter", "semicolon"}, "delimiters", {";"}},
    {"WordSpace", "1 2\n3 4\n", {"--delimiter", "space"}, "delimiters", {" "}},
    {"WordBar", "1|2\n3|4\n", {"--delimiter", "bar"}, "delimiters", {"|"}},
    {"WordColon", "1:2\n3:4\n", {"--delimiter", "colon"}, "delimiters", {":"}},
    {"WordByName", kBoth, {"--option", "delimiter=semicolon"}, "delimiters", {";"}},
    {"TwoWords",
     kBoth,
     {"--delimiter", "semicolon", "--delimiter", "comma"},
     "delimiters",
     {";", ","}},
    {"WordInJsonIsAText", kBoth, {"--option", "Delimiter:=\"tab\""}, "delimiters", {"tab"}},
    {"QuoteSingle", kApostrophes, {"--quote", "single"}, "quote", "'"},
    {"QuoteDouble", kApostrophes, {"--quote", "double"}, "quote", "\""},
    {"QuoteNone", kApostrophes, {"--quote", "none"}, "quote", nullptr},
    {"QuoteAsItIs", kApostrophes, {"--quote", "'"}, "quote", "'"},
    {"EscapeByBackslash", kBackslashes, {"--escape", "backslash"}, "escape", "\\"},
    {"QuoteOfAGivenDelimiter",
     kApostrophes,
     {"--delimiter", "comma", "--quote", "single"},
     "num_variables",
     2},
    {"LineOfNames", kNamed, {"--names-line", "2"}, "header_lines", 1},
    {"LineOfNamesOfAGivenDelimiter",
     kNamed,
     {"--delimiter", "comma", "--names-line", "2"},
     "names",
     {"1", "2"}},
    {"NoLineOfNamesAfterOne",
     kNamed,
     {"--variable-names-line", "2", "--names-line", "0"},
     "names_line",
     nullptr},
    {"TypedTab", "1\t2\n3\t4\n", {"--delimiter", "\t"}, "delimiters", {"\t"}},
    {"Backspace", "1\b2\n3\b4\n", {"--delimiter", "\\b"}, "delimiters", {"\b"}},
    {"Backslash", "1\\2\n3\\4\n", {"--delimiter", "\\\\"}, "delimiters", {"\\"}},
    {"BackslashAtTheEnd", "1\\2\n3\\4\n", {"--delimiter", "\\"}, "delimiters", {"\\"}},
    {"BackslashBehindABackslash", "1\\2\n", {"--delimiter", "\\\\\\"}, "delimiters", {"\\\\"}},
    {"EscapedBackslashThenLetter", "1\\n2\n", {"--delimiter", "\\\\n"}, "delimiters", {"\\n"}},
    {"EscapesInTheMiddle", "1,2\n", {"--delimiter", "a\\tb"}, "delimiters", {"a\tb"}},
    {"CarriageReturnThenLineFeed",
     "1,2\n3,4\n5,6\n",
     {"--line-ending", "\\r\\n"},
     "lines_sampled",
     3},
    {"LineFeedAlone", "1,2\r3\n4,5\n6,7\n", {"--line-ending", "\\n"}, "lines_sampled", 3},
    {"NoEscapesInOtherTexts",
     kNamed,
     {"--exp-chars", "\\q", "--empty-value", "\\q"},
     "header_lines",
     0},

    // Words: shortened, in any case, the earlier of two that fit.
    {"ShortWord",
     kPlaces,
     {"--parser-type", "f", "--variable-widths", "2,3"},
     "mode",
     "fixed-width"},
    {"LoudWord",
     kPlaces,
     {"--parser-type", "FIXED", "--variable-widths", "2,3"},
     "mode",
     "fixed-width"},
    {"AmbiguousWord", kNamed, {"--partial-field-rule", "omit"}, "header_lines", 0},

    // Widths.
    {"OneWidth", kPlaces, {"--parser-type", "fixedwidth", "--variable-widths", "5"}, "widths", {5}},
    {"HugeWidth",
     kPlaces,
     {"--parser-type", "fixedwidth", "--variable-widths", "2,9223372036854775808"},
     "widths",
     {2, 9'223'372'036'854'775'808U}},
    {"LargestWidth",
     kPlaces,
     {"--parser-type", "fixedwidth", "--variable-widths", "18446744073709551615"},
     "widths",
     {18'446'744'073'709'551'615U}},
    {"WidthsGoBeforeADelimiter",
     kBoth,
     {"--delimiter", ";", "--parser-type", "fixedwidth", "--variable-widths", "2,5"},
     "mode",
     "fixed-width"},
    {"WidthsOfNoFixedWidthParser", kPlaces, {"--variable-widths", "2,3"}, "mode", "line-reader"},

    // Odd values.
    {"EqualsSign", "1=2\n3=4\n", {"--option", "Delimiter=="}, "delimiters", {"="}},
    {"EqualsSignInside", "1a=b2\n3a=b4\n", {"--option", "Delimiter=a=b"}, "delimiters", {"a=b"}},
    {"EqualsSignBehindAFlag", "1=2\n3=4\n", {"--delimiter", "="}, "delimiters", {"="}},
    {"EqualsSignJoinedToAFlag", "1=2\n3=4\n", {"--delimiter=="}, "delimiters", {"="}},
    {"JoinedOption", "1=2\n3=4\n", {"--option=Delimiter=="}, "delimiters", {"="}},
    {"Dash", "1-2\n3-4\n", {"--delimiter", "-"}, "delimiters", {"-"}},
    {"DashJoinedToAFlag", "1-2\n3-4\n", {"--delimiter=-"}, "delimiters", {"-"}},
    {"TwoDashesJoinedToAFlag", "1--2\n3--4\n", {"--delimiter=--"}, "delimiters", {"--"}},
    {"EmptyDelimiter", "1\n2\n3\n", {"--delimiter", ""}, "num_variables", 1},
    {"EmptyDelimiterByName", "1\n2\n3\n", {"--option", "Delimiter="}, "num_variables", 1},
    {"EmptyDelimiterJoinedToItsFlag", "1\n2\n3\n", {"--delimiter="}, "num_variables", 1},
    {"EmptyWhitespace", "1,2\n3,4\n", {"--whitespace", ""}, "num_variables", 2},
    {"BlankDelimiter", "1 2\n3 4\n", {"--delimiter", " "}, "mode", "delimited"},
    {"DelimiterNotInAscii",
     "1\xC2\xB7"
     "2\n3\xC2\xB7"
     "4\n",
     {"--delimiter", "\xC2\xB7"},
     "delimiters",
     {"\xC2\xB7"}},
    {"DelimiterThatIsNowhere",
     "1,2\n3,4\n5,6\n",
     {"--delimiter", kLongDelimiter},
     "num_variables",
     1},
    {"DelimiterOfHundredThousandCharacters",
     "1" + kLongDelimiter + "2\n3" + kLongDelimiter + "4\n5" + kLongDelimiter + "6\n",
     {"--delimiter", kLongDelimiter},
     "classes",
     {"number", "number"}},
    {"Ended", kBoth, {"--delimiter", ";"}, "end", "given"},
    {"EncodingIsGiven", kBoth, {"--option", "encoding=UTF-8"}, "encoding_found", "given"},
    {"EncodingIsFound", kBoth, {"--encoding", "auto"}, "encoding_found", "valid UTF-8"},
    {"EncodingIsFoundOnceItIsNoLongerGiven",
     kBoth,
     {"--encoding", "windows-1252", "--encoding", "auto"},
     "encoding_found",
     "valid UTF-8"},
    {"EncodingIsGivenInTheEnd",
     kBoth,
     {"--encoding", "auto", "--encoding", "windows-1252"},
     "encoding",
     "windows-1252"},
};

class ToolAccepts : public testing::TestWithParam<AcceptedCase> {};

TEST_P(ToolAccepts, AndObeys) {
  const AcceptedCase& row = GetParam();
  const json layout = layout_of(row.bytes, row.options);
  ASSERT_TRUE(layout.is_object());
  EXPECT_EQ(layout.at(row.member), row.value);
}

INSTANTIATE_TEST_SUITE_P(Table, ToolAccepts, testing::ValuesIn(kAccepted), ByRule());

// A double cannot represent all numbers up to 2^64 - 1. The largest ones are rounded, and the tool
// still answers.
TEST(ToolAcceptsNumbers, AtTheEndOfTheRange) {
  for (const char* number : {"18446744073709551615", "18446744073709551616", "1e300"}) {
    SCOPED_TRACE(number);
    for (const char* flag : {"--num-header-lines", "--data-line", "--num-variables"}) {
      const json layout = layout_of(kNamed, {flag, number});
      ASSERT_TRUE(layout.is_object());
      EXPECT_EQ(layout.at("classes").size(), layout.at("num_variables"));
    }
  }
}

TEST(ToolAcceptsLists, OfTwoThousandDelimiters) {
  Words options;
  Words values;
  for (int i = 0; i < 2000; ++i) {
    values.push_back("<" + std::to_string(i) + ">");
    options.push_back("--delimiter");
    options.push_back(values.back());
  }
  const json layout = layout_of("1<7>2<1999>3\n4<0>5<1>6\n7<42>8<1000>9\n", options);
  ASSERT_TRUE(layout.is_object());
  EXPECT_EQ(layout.at("num_variables"), 3);
  EXPECT_EQ(layout.at("delimiters"), values);
  EXPECT_EQ(layout.at("given"), json::array({given("Delimiter", values)}));
}

TEST(ToolAcceptsLists, OfTwoHundredOptionsByName) {
  Words options;
  for (int i = 0; i < 200; ++i) {
    options.push_back("--option");
    options.push_back("NumHeaderLines=" + std::to_string(i % 3));
  }
  const json layout = layout_of(kNamed, options);  // the last is number 199, and 199 % 3 is 1
  ASSERT_TRUE(layout.is_object());
  EXPECT_EQ(layout.at("header_lines"), 1);
  EXPECT_EQ(layout.at("given").size(), 200U);
}

// --- what is repeated as "given" ---------------------------------------------------------------

TEST(ToolGiven, StandsInTheOrderOfTheCommandLine) {
  const json layout =
      layout_of(kNamed, {"--data-line", "3", "--delimiter", ",", "--option", "TEXTTYPE=s",
                         "--delimiter", ";", "--num-header-lines", "1", "--data-line", "2"});
  ASSERT_TRUE(layout.is_object());
  EXPECT_EQ(layout.at("given"),
            json::array({given("DataLine", {"3"}), given("Delimiter", {",", ";"}),
                         given("TEXTTYPE", {"s"}), given("NumHeaderLines", {"1"}),
                         given("DataLine", {"2"})}));
}

TEST(ToolGiven, IsAsItWasTyped) {
  const json layout = layout_of(kNamed, {"--delimiter", "\\t", "--num-header-lines", "1e0",
                                         "--is-file", "true", "--text-type", "STR"});
  ASSERT_TRUE(layout.is_object());
  EXPECT_EQ(layout.at("given"),
            json::array({given("Delimiter", {"\\t"}), given("NumHeaderLines", {"1e0"}),
                         given("IsFile", {"true"}), given("TextType", {"STR"})}));
}

TEST(ToolGiven, HoldsForEveryFile) {
  const TempFolder folder;
  const CommandResult result = vltext(
      {"--json", folder.file("a", kBoth), "--delimiter", ";", folder.file("b", "1;2\n3;4\n")});
  ASSERT_EQ(result.status, 0);
  const json document = json::parse(result.out);
  EXPECT_EQ(document.at("given"), json::array({given("Delimiter", {";"})}));
  EXPECT_EQ(document.at("settings").at("options").at("delimiters"), json::array({";"}));
  ASSERT_EQ(document.at("files").size(), 2U);
  for (const json& layout : document.at("files")) {
    EXPECT_EQ(layout.at("delimiters"), json::array({";"}));
  }
}

TEST(ToolGiven, CommandsNoTerminal) {
  const TempFolder folder;
  const std::string path = folder.file("t", "1,2\n3,4\n");
  for (const Words& mode : {Words{}, Words{"--json"}}) {
    const CommandResult result = vltext(joined(mode, {"--delimiter", "\x1B[31m", path}));
    EXPECT_EQ(result.status, 0);
    EXPECT_THAT(result.out, Not(HasSubstr("\x1B")));
  }
  const CommandResult refused = vltext({"--option", "\x1B[31m=1", path});
  EXPECT_EQ(refused.status, 2);
  EXPECT_THAT(refused.err, Not(HasSubstr("\x1B")));
}

TEST(ToolGiven, MayHoldBytesThatAreNoUtf8) {
  const TempFolder folder;
  const std::string path = folder.file("t", "1,2\n3,4\n");
  for (const Words& option : {Words{"--delimiter", "\xE9"}, Words{"--option", "Delimiter=\xE9"}}) {
    const CommandResult result = vltext(joined(option, {"--json", path}));
    EXPECT_LE(result.status, 2);
    if (result.status == 0) {
      EXPECT_TRUE(json::accept(result.out)) << result.out;
    }
  }
}

// --- lines that a file does not have ------------------------------------------------------------

struct MismatchCase {
  const char* rule;
  Words options;
  std::string said;
};
std::ostream& operator<<(std::ostream& out, const MismatchCase& row) { return out << row.rule; }

const MismatchCase kMismatches[] = {
    {"NamesBelowTheText",
     {"--names-line", "5"},
     "VariableNamesLine: Expected a line from 1 to 4, got 5."},
    {"UnitsBelowTheText",
     {"--variable-units-line", "9"},
     "VariableUnitsLine: Expected a line from 1 to 4, got 9."},
    {"DescriptionsBelowTheText",
     {"--variable-descriptions-line", "1000000000000"},
     "VariableDescriptionsLine: Expected a line from 1 to 4, got 1000000000000."},
    {"NamesFarBelowNoHeaderLine",
     {"--names-line", "4", "--num-header-lines", "0"},
     "VariableNamesLine: Expected a line from 1 to 3, as 0 header lines are given, got 4."},
    {"NoSuchColumn",
     {"--row-names-field", "3"},
     "RowNamesField: Expected a column from 1 to 2, got 3."},
};

class ToolMismatch : public testing::TestWithParam<MismatchCase> {};

TEST_P(ToolMismatch, NamesTheFileAndTheOption) {
  const TempFolder folder;
  const std::string path = folder.file("t", kNamed);
  const CommandResult result = vltext(joined(GetParam().options, {path}));
  EXPECT_EQ(result.status, 2);
  EXPECT_EQ(result.out, "");
  EXPECT_EQ(result.err, "vltext: " + path + ": " + GetParam().said + "\n");
}

INSTANTIATE_TEST_SUITE_P(Table, ToolMismatch, testing::ValuesIn(kMismatches), ByRule());

// --- values that are refused -------------------------------------------------------------------

struct CountFlag {
  const char* rule;
  const char* flag;
  const char* expected;
};
std::ostream& operator<<(std::ostream& out, const CountFlag& row) { return out << row.rule; }

const CountFlag kCountFlags[] = {
    {"NumHeaderLines", "--num-header-lines", "0 or larger"},
    {"DataLine", "--data-line", "1 or larger"},
    {"NumVariables", "--num-variables", "0 or larger"},
    {"VariableNamesLine", "--variable-names-line", "0 or larger"},
    {"VariableUnitsLine", "--variable-units-line", "0 or larger"},
    {"VariableDescriptionsLine", "--variable-descriptions-line", "0 or larger"},
    {"RowNamesField", "--row-names-field", "0 or larger"},
};

struct Word {
  const char* rule;
  const char* text;
};
std::ostream& operator<<(std::ostream& out, const Word& row) { return out << row.rule; }

const Word kNoCounts[] = {
    {"Negative", "-1"},
    {"NegativePart", "-0.5"},
    {"Broken", "2.5"},
    {"Empty", ""},
    {"Blank", " "},
    {"Hexadecimal", "0x10"},
    {"NotANumber", "nan"},
    {"Infinity", "inf"},
    {"NegativeInfinity", "-inf"},
    {"TooLarge", "1e400"},
    {"Letters", "ten"},
    {"TwoNumbers", "1 2"},
    {"Trailing", "1x"},
    {"Comma", "1,000"},
    {"Logical", "true"},
    {"HugeNegative", "-1e18"},
};

// Each row of one table with each row of another.
struct ByBothRules {
  template <typename Rows>
  std::string operator()(const testing::TestParamInfo<Rows>& info) const {
    return std::string(std::get<0>(info.param).rule) + "_" + std::get<1>(info.param).rule;
  }
};

class ToolRefusesCount : public testing::TestWithParam<std::tuple<CountFlag, Word>> {};

TEST_P(ToolRefusesCount, ThatIsNoWholeNumber) {
  const auto& [flag, word] = GetParam();
  expect_refused({flag.flag, word.text}, flag.flag, {"whole number", flag.expected});
}

INSTANTIATE_TEST_SUITE_P(Table, ToolRefusesCount,
                         testing::Combine(testing::ValuesIn(kCountFlags),
                                          testing::ValuesIn(kNoCounts)),
                         ByBothRules());

struct RefusedCase {
  const char* rule;
  Words options;
  std::string where;
  Words said;
};
std::ostream& operator<<(std::ostream& out, const RefusedCase& row) { return out << row.rule; }

const Words kAllRows = {"'fill', 'omitrow', 'omitvar', 'error'."};

const RefusedCase kRefused[] = {
    {"DataLineZero", {"--data-line", "0"}, "--data-line", {"whole number", "1 or larger"}},

    // The tool's own settings, and settings that contradict one another.
    {"TwoCharactersAsQuote", {"--quote", "ab"}, "--quote", {"one character", "'ab'"}},
    {"NothingAsQuote", {"--quote", ""}, "--quote", {"one character"}},
    {"LetterAsQuote", {"--quote", "x"}, "--quote", {"no letter"}},
    {"BlankAsQuote", {"--quote", " "}, "--quote", {"white space"}},
    {"QuoteInADelimiter", {"--quote", ",", "--delimiter", "comma"}, "--quote", {"delimiter"}},
    {"BackslashAsQuoteAndEscape",
     {"--quote", "\\", "--escape", "backslash"},
     "--quote",
     {"the escape"}},
    {"EscapeByAnotherWord", {"--escape", "\\"}, "--escape", {"backslash or doubled"}},
    {"WordAsNamesLine", {"--names-line", "first"}, "--names-line", {"whole number", "'first'"}},
    {"NegativeNamesLine", {"--names-line", "-1"}, "--names-line", {"0 or larger"}},
    {"NamesLineByName", {"--option", "namesline=x"}, "namesline", {"whole number"}},
    {"UnitsInTheLineOfTheNames",
     {"--names-line", "2", "--variable-units-line", "2"},
     "--variable-units-line",
     {"another line", "names, 2"}},
    {"DescriptionsInTheLineOfTheUnits",
     {"--variable-descriptions-line", "2", "--variable-units-line", "2"},
     "--variable-descriptions-line",
     {"another line"}},
    {"DigitAsDecimalMark", {"--decimal", "1"}, "--decimal", {"no letter, digit"}},
    {"TwoDecimalMarks", {"--decimal", ".,"}, "--decimal", {"one character"}},
    {"SignAsGroupingMark", {"--grouping", "-"}, "--grouping", {"digit or sign"}},
    {"OneMarkForBoth", {"--grouping", ",", "--decimal", ","}, "--grouping", {"decimal mark"}},

    // Logical values.
    {"OneAsLogical", {"--is-file", "1"}, "--is-file", {"true or false"}},
    {"ZeroAsLogical", {"--collect-output", "0"}, "--collect-output", {"true or false"}},
    {"EmptyLogical",
     {"--multiple-delims-as-one", ""},
     "--multiple-delims-as-one",
     {"true or false"}},
    {"YesAsLogical", {"--is-file", "yes"}, "--is-file", {"true or false"}},
    {"LogicalByName", {"--option", "isfile=maybe"}, "isfile", {"true or false"}},

    // Words: the message lists the valid ones.
    {"ParserType",
     {"--parser-type", "x"},
     "--parser-type",
     {"'delimited', 'fixedwidth', 'tabular'."}},
    {"EmptyParserType",
     {"--parser-type", ""},
     "--parser-type",
     {"'delimited', 'fixedwidth', 'tabular'."}},
    {"LongerThanTheWord",
     {"--parser-type", "delimitedx"},
     "--parser-type",
     {"'delimited', 'fixedwidth', 'tabular'."}},
    {"WordWithABlank", {"--parser-type", "fixed "}, "--parser-type", {"'fixedwidth'"}},
    {"WordNotInAscii", {"--parser-type", "d\xC3\xA9"}, "--parser-type", {"'delimited'"}},
    {"NumberAsWord", {"--parser-type", "1"}, "--parser-type", {"'delimited'"}},
    {"MissingRule", {"--missing-rule", "keep"}, "--missing-rule", kAllRows},
    {"ImportErrorRule", {"--import-error-rule", "keep"}, "--import-error-rule", kAllRows},
    {"ConsecutiveDelimitersRule",
     {"--consecutive-delimiters-rule", "x"},
     "--consecutive-delimiters-rule",
     {"'split', 'join', 'error'."}},
    {"EmptyLineRule",
     {"--empty-line-rule", "x"},
     "--empty-line-rule",
     {"'skip', 'read', 'error'."}},
    {"ExtraColumnsRule",
     {"--extra-columns-rule", "x"},
     "--extra-columns-rule",
     {"'addvars', 'ignore', 'wrap', 'error'."}},
    {"LeadingDelimitersRule",
     {"--leading-delimiters-rule", "x"},
     "--leading-delimiters-rule",
     {"'keep', 'ignore', 'error'."}},
    {"TextType", {"--text-type", "x"}, "--text-type", {"'char', 'string'."}},
    {"DatetimeType",
     {"--datetime-type", "x"},
     "--datetime-type",
     {"'datetime', 'char', 'exceldate'."}},
    {"PartialFieldRule",
     {"--partial-field-rule", "x"},
     "--partial-field-rule",
     {"'keep', 'omitrow', 'omitvar', 'fill', 'wrap', 'error'."}},

    // Escapes; two names are synonyms of another one.
    {"EscapeInDelimiter", {"--delimiter", "\\q"}, "--delimiter", {"in Delimiter."}},
    {"EscapeInASecondDelimiter",
     {"--delimiter", ";", "--delimiter", "\\x"},
     "--delimiter",
     {"in Delimiter."}},
    {"EscapeInLineEnding", {"--line-ending", "\\f"}, "--line-ending", {"in EndOfLine."}},
    {"EscapeInEndOfLine", {"--end-of-line", "\\0"}, "--end-of-line", {"in EndOfLine."}},
    {"EscapeInCommentStyle", {"--comment-style", "\\a"}, "--comment-style", {"in CommentStyle."}},
    {"EscapeInWhitespace", {"--whitespace", " \\v"}, "--whitespace", {"in Whitespace."}},
    {"EscapeInTreatAsMissing",
     {"--treat-as-missing", "\\N"},
     "--treat-as-missing",
     {"in TreatAsMissing."}},
    {"EscapeInTreatAsEmpty",
     {"--treat-as-empty", "\\z"},
     "--treat-as-empty",
     {"in TreatAsMissing."}},
    {"EscapeByName", {"--option", "TREATASEMPTY=\\z"}, "TREATASEMPTY", {"in TreatAsMissing."}},

    // Comment markers are counted before they are checked.
    {"ThreeCommentMarkers",
     {"--comment-style", "\\q", "--comment-style", "b", "--comment-style", "c"},
     "--comment-style",
     {"at most two comment markers"}},

    // Widths.
    {"WidthZero", {"--variable-widths", "0"}, "--variable-widths", {"1 or larger"}},
    {"WidthZeroAmongOthers", {"--variable-widths", "3,0,4"}, "--variable-widths", {"1 or larger"}},
    {"BlankAmongWidths", {"--variable-widths", "1, 2"}, "--variable-widths", {"commas"}},
    {"CommaBehindWidths", {"--variable-widths", "1,2,"}, "--variable-widths", {"commas"}},
    {"CommaBeforeWidths", {"--variable-widths", ",1"}, "--variable-widths", {"commas"}},
    {"TwoCommas", {"--variable-widths", "1,,2"}, "--variable-widths", {"commas"}},
    {"NoWidth", {"--variable-widths", ""}, "--variable-widths", {"commas"}},
    {"NegativeWidth", {"--variable-widths", "-1"}, "--variable-widths", {"whole numbers"}},
    {"SignedWidth", {"--variable-widths", "+1"}, "--variable-widths", {"whole numbers"}},
    {"BrokenWidth", {"--variable-widths", "2.5"}, "--variable-widths", {"whole numbers"}},
    {"HexadecimalWidth", {"--variable-widths", "0x10"}, "--variable-widths", {"whole numbers"}},
    {"WidthBeyondAllNumbers",
     {"--variable-widths", "18446744073709551616"},
     "--variable-widths",
     {"whole numbers"}},
    {"WidthsByName", {"--option", "variablewidths=1;2"}, "variablewidths", {"whole numbers"}},

    // Names.
    {"UnknownName", {"--option", "Frobnicate=1"}, "Frobnicate", {"'Frobnicate'"}},
    {"NameOfAFlag", {"--option", "--delimiter=;"}, "--delimiter", {"'--delimiter'"}},
    {"NameWithADash",
     {"--option", "num-header-lines=1"},
     "num-header-lines",
     {"'num-header-lines'"}},
    {"NameNotInAscii",
     {"--option", "D\xC3\xA9limiter=;"},
     "D\xC3\xA9limiter",
     {"'D\xC3\xA9limiter'"}},
    {"NameWithoutValue", {"--option", "Delimiter"}, "--option", {"names and values in pairs"}},
    {"NothingAtAll", {"--option", ""}, "--option", {"names and values in pairs"}},

    // Values of types that only JSON can give.
    {"NumberAsDelimiter", {"--option", "Delimiter:=1"}, "Delimiter", {"a list of texts"}},
    {"NumbersAsDelimiters", {"--option", "Delimiter:=[1,2]"}, "Delimiter", {"a list of texts"}},
    {"ListInAListOfDelimiters", {"--option", "Delimiter:=[[\"a\"]]"}, "Delimiter", {"a list"}},
    {"LogicalAsEncoding", {"--option", "Encoding:=true"}, "Encoding", {"a text", "Encoding"}},
    {"ListAsEncoding", {"--option", "Encoding:=[\"UTF-8\"]"}, "Encoding", {"a text"}},
    {"NumberAsLineEnding",
     {"--option", "LineEnding:=10"},
     "LineEnding",
     {"a text or a list of texts", "EndOfLine"}},
    {"NothingAsCommentStyle", {"--option", "CommentStyle:=null"}, "CommentStyle", {"a list"}},
    {"TwoNumbersAsOne", {"--option", "NumVariables:=[1,2]"}, "NumVariables", {"whole number"}},
    {"TextAsNumber", {"--option", "NumVariables:=\"3\""}, "NumVariables", {"whole number"}},
    {"JsonNestedTooDeep",
     {"--option", "Delimiter:=" + std::string(60'000, '[') + std::string(60'000, ']')},
     "Delimiter",
     {"JSON"}},
    {"NoJson", {"--option", "NumVariables:=three"}, "NumVariables", {"JSON", "'three'"}},
    {"ValueWithoutAName", {"--option", "=1"}, "--option", {"''"}},

    // The first that is wrong is reported.
    {"FirstOfTwo",
     {"--num-header-lines", "-1", "--parser-type", "x"},
     "--num-header-lines",
     {"whole number"}},
    {"FirstOfTwoTheOtherWay",
     {"--parser-type", "x", "--num-header-lines", "-1"},
     "--parser-type",
     {"'delimited'"}},
    {"AmongGoodOnes",
     {"--delimiter", ";", "--is-file", "7", "--text-type", "char"},
     "--is-file",
     {"true or false"}},
    {"OverriddenLater",
     {"--num-header-lines", "-1", "--num-header-lines", "1"},
     "--num-header-lines",
     {"whole number"}},
};

class ToolRefusesOption : public testing::TestWithParam<RefusedCase> {};

TEST_P(ToolRefusesOption, WithOneSentence) {
  expect_refused(GetParam().options, GetParam().where, GetParam().said);
}

INSTANTIATE_TEST_SUITE_P(Table, ToolRefusesOption, testing::ValuesIn(kRefused), ByRule());

TEST(ToolRefusesOptions, BeforeItLooksAtAnyFile) {
  const CommandResult result = vltext({"--num-header-lines", "-1", "no/such/file"});
  EXPECT_EQ(result.status, 2);
  EXPECT_THAT(result.err, Not(HasSubstr("no/such/file")));
}

TEST(ToolRefusesOptions, WhoseLocaleIsNone) {
  expect_refused({"--date-locale", "xx"}, "DateLocale", {"such as de_DE", "got 'xx'"});
}

TEST(ToolRefusesOptions, ByNoName) {
  const CommandResult result = vltext({"--option", "=1", "none"});
  EXPECT_EQ(result.status, 2);
  EXPECT_EQ(result.out, "");
  EXPECT_THAT(result.err, AllOf(StartsWith("vltext: "), HasSubstr("got ''")));
}

TEST(ToolRefusesOptions, ByNameWithoutAnyValue) {
  const TempFolder folder;
  const CommandResult result = vltext({folder.file("t", "1,2\n"), "--option"});
  EXPECT_EQ(result.status, 2);
  EXPECT_EQ(result.out, "");
  EXPECT_THAT(result.err, HasSubstr("--option"));
}

// --- file names that look like options ---------------------------------------------------------

TEST(ToolFileNames, StandBehindTwoDashes) {
  const TempFolder folder;
  folder.file("-x", "1;2\n3;4\n");
  folder.file("--json", "1;2\n3;4\n");
  const CommandResult result =
      run_command("/bin/sh", {"-c", "cd \"$1\" && \"$0\" --json --delimiter ';' -- -x --json",
                              VLTEXT_PROGRAM, folder.path()});
  EXPECT_EQ(result.status, 0) << result.err;
  const json document = json::parse(result.out, nullptr, false);
  ASSERT_TRUE(document.is_object());
  ASSERT_EQ(document.at("files").size(), 2U);
  EXPECT_EQ(document.at("files").at(0).at("file"), "-x");
  EXPECT_EQ(document.at("files").at(1).at("file"), "--json");
  EXPECT_EQ(document.at("files").at(0).at("delimiters"), json::array({";"}));
}

// After "--" it is a file, although it looks like a flag with an empty value; after a flag it is a
// value.
TEST(ToolFileNames, MayEndWithAnEqualsSign) {
  const TempFolder folder;
  folder.file("--delimiter=", "1;2\n3;4\n");
  const CommandResult file = run_command(
      "/bin/sh",
      {"-c", "cd \"$1\" && \"$0\" --json -- --delimiter=", VLTEXT_PROGRAM, folder.path()});
  EXPECT_EQ(file.status, 0) << file.err;
  const CommandResult value =
      vltext({"--json", "--whitespace", "--json=", folder.file("t", "1,2\n3,4\n")});
  EXPECT_EQ(value.status, 0) << value.err;
}

TEST(ToolAcceptsJson, ForWidthsAndLists) {
  const TempFolder folder;
  const std::string file = folder.file("t", "ab1\ncd2\n");
  const CommandResult widths =
      vltext({"--json", "--parser-type", "fixedwidth", "--option", "VariableWidths:=[2,1]", file});
  ASSERT_EQ(widths.status, 0) << widths.err;
  EXPECT_EQ(json::parse(widths.out).at("files")[0].at("widths"), json({2, 1}));
  const CommandResult none = vltext({"--json", "--option", "Delimiter:=[]", file});
  ASSERT_EQ(none.status, 0) << none.err;
  const json document = json::parse(none.out);
  EXPECT_EQ(document.at("files")[0].at("delimiters"), json::array());
  EXPECT_EQ(document.at("given"),
            json::parse(R"([{"name": "Delimiter", "values": ["[]"], "json": true}])"));
}

TEST(ToolHelp, FitsATerminal) {
  const std::string help = vltext({"--help"}).out;
  EXPECT_THAT(help, StartsWith("Usage: vltext "));
  std::istringstream lines(help);
  for (std::string line; std::getline(lines, line);) EXPECT_LE(line.size(), 79U) << line;
}

TEST(ToolFileNames, MayFollowAListOfValues) {
  const TempFolder folder;
  const CommandResult result = vltext({"--delimiter", ";", "--delimiter", ",", "--json", "--",
                                       folder.file("a", kBoth), folder.file("b", kBoth)});
  ASSERT_EQ(result.status, 0) << result.err;
  EXPECT_EQ(json::parse(result.out).at("files").size(), 2U);
}

TEST(ToolFileNames, AreNoValuesOfAFlagBeforeThem) {
  const TempFolder folder;
  const std::string a = folder.file("a", kBoth);
  const CommandResult result = vltext({"--json", "--delimiter", ";", a, a});
  ASSERT_EQ(result.status, 0) << result.err;
  EXPECT_EQ(json::parse(result.out).at("files").size(), 2U);
}

}  // namespace
}  // namespace textio
