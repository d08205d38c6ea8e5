#include <vltextstream/layout/detect_layout.hpp>
#include <vltextstream/standalone/services/array.hpp>
#include "support/option_calls.hpp"
#include "support/rule_name.hpp"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cmath>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <limits>
#include <ostream>
#include <set>
#include <stdexcept>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace textio::standalone {
namespace {

using testing::HasSubstr;
using testing::Not;
using testing_support::contents_of;
using TextList = std::vector<std::u16string>;
using Shape = std::vector<std::size_t>;
using Numbers = std::vector<double>;
using Widths = std::vector<std::uint64_t>;

// --- classes and shapes --------------------------------------------------------------------------

struct ShapeCase {
  const char* rule;
  Array array;
  const char* of_class;  // "" for a class without a name
  std::size_t rows;
  std::size_t columns;
  std::size_t dimensions;
  bool scalar;
};
std::ostream& operator<<(std::ostream& out, const ShapeCase& row) { return out << row.rule; }

const ShapeCase kShapes[] = {
    {"Number", make_array(2.5), "double", 1, 1, 2, true},
    {"NumberFromAnInt", make_array(7), "double", 1, 1, 2, true},
    {"NumberFromASize", make_array(std::size_t{7}), "double", 1, 1, 2, true},
    {"Logical", make_array(true), "", 1, 1, 2, true},
    {"Text", make_array(u"abc"), "char", 1, 3, 2, false},
    {"TextOfOne", make_array(u"a"), "char", 1, 1, 2, true},
    {"TextOfNone", make_array(u""), "char", 0, 0, 2, false},
    {"RowOfNumbers", make_array(Numbers{1, 2, 3}), "double", 1, 3, 2, false},
    {"RowOfOneNumber", make_array(Numbers{1}), "double", 1, 1, 2, true},
    {"RowOfIntegers", make_array(Widths{1, 2}), "", 1, 2, 2, false},
    {"RowOfOneInteger", make_array(Widths{1}), "", 1, 1, 2, true},
    {"CharMatrix", make_char_array(u"abcdef", {2, 3}), "char", 2, 3, 2, false},
    {"CharColumn", make_char_array(u"abc", {3, 1}), "char", 3, 1, 2, false},
    {"CharOfOne", make_char_array(u"a", {1, 1}), "char", 1, 1, 2, true},
    {"CharOfNoRow", make_char_array(u"", {0, 3}), "char", 0, 3, 2, false},
    {"CharOfNoColumn", make_char_array(u"", {3, 0}), "char", 3, 0, 2, false},
    {"CharCube", make_char_array(u"abcdefghijkl", {2, 3, 2}), "char", 2, 6, 3, false},
    {"CharCubeOfNothing", make_char_array(u"", {0, 3, 2}), "char", 0, 6, 3, false},
    {"CharOfFourDimensions", make_char_array(u"abcd", {1, 2, 1, 2}), "char", 1, 4, 4, false},
    {"Cell", make_cell({make_array(1.0), make_array(u"a")}), "cell", 1, 2, 2, false},
    {"CellOfOne", make_cell({make_array(1.0)}), "cell", 1, 1, 2, true},
    {"CellOfNone", make_cell({}), "cell", 0, 0, 2, false},
    {"CellOfTexts", make_text_cell({u"a", u"", u"c"}), "cell", 1, 3, 2, false},
    {"CellOfNoTexts", make_text_cell({}), "cell", 0, 0, 2, false},
    {"EmptyArray", make_empty_array(), "double", 0, 0, 2, false},
};

class ArrayShape : public testing::TestWithParam<ShapeCase> {};
TEST_P(ArrayShape, IsAsMade) {
  const ShapeCase& row = GetParam();
  const hxArray* array = row.array.get();
  const std::string of_class = row.of_class;
  EXPECT_EQ(hxIsDouble(array), of_class == "double");
  EXPECT_EQ(hxIsChar(array), of_class == "char");
  EXPECT_EQ(hxIsCell(array), of_class == "cell");
  EXPECT_EQ(hxGetM(array), row.rows);
  EXPECT_EQ(hxGetN(array), row.columns);
  EXPECT_EQ(hxGetNumberOfDimensions(array), row.dimensions);
  EXPECT_EQ(hxIsScalar(array), row.scalar);
  EXPECT_EQ(get_number_of_elements(array), row.rows * row.columns);
}
INSTANTIATE_TEST_SUITE_P(Table, ArrayShape, testing::ValuesIn(kShapes), testing_support::ByRule());

TEST(ArrayCharShape, MustHoldItsUnits) {
  EXPECT_THROW(make_char_array(u"abc", {2, 2}), std::invalid_argument);
  EXPECT_THROW(make_char_array(u"abc", {1, 2}), std::invalid_argument);
  EXPECT_THROW(make_char_array(u"abc", {0, 0}), std::invalid_argument);
  EXPECT_THROW(make_char_array(u"", {1, 1}), std::invalid_argument);
}

TEST(ArrayCharShape, HasTwoDimensionsOrMore) {
  EXPECT_THROW(make_char_array(u"abc", {3}), std::invalid_argument);
  EXPECT_THROW(make_char_array(u"a", {}), std::invalid_argument);
  EXPECT_THROW(make_char_array(u"", {0}), std::invalid_argument);
}

TEST(ArrayCharShape, DoesNotWrapAround) {
  const std::size_t half = std::size_t{1} << 32;
  EXPECT_THROW(make_char_array(u"", {half, half}), std::invalid_argument);
  EXPECT_THROW(make_char_array(u"ab", {(std::size_t{1} << 63) + 1, 2}), std::invalid_argument);
}

// --- elements ------------------------------------------------------------------------------------

TEST(ArrayNumber, HasItsValue) {
  for (const double value : {0.0, 2.5, -1.0, 1e300, std::numeric_limits<double>::infinity()}) {
    EXPECT_EQ(hxGetScalar(make_array(value).get()), value);
  }
  EXPECT_EQ(hxGetScalar(make_array(3).get()), 3.0);
  EXPECT_EQ(hxGetScalar(make_array(-3L).get()), -3.0);
  EXPECT_EQ(hxGetScalar(make_array(3U).get()), 3.0);
  EXPECT_EQ(hxGetScalar(make_array(std::uint64_t{1} << 63).get()), 9223372036854775808.0);
}

TEST(ArrayNumber, LiesInMemoryAsItIs) {
  const Array array = make_array(Numbers{1.5, -0.0, 3});
  ASSERT_EQ(hxGetElementSize(array.get()), sizeof(double));
  double values[3];
  std::memcpy(values, hxGetData(array.get()), sizeof values);
  EXPECT_EQ(values[0], 1.5);
  EXPECT_TRUE(values[1] == 0 && std::signbit(values[1]));
  EXPECT_EQ(values[2], 3.0);
}

TEST(ArrayInteger, LiesInMemoryAsItIs) {
  const Array array = make_array(Widths{0, 7, UINT64_MAX});
  ASSERT_EQ(hxGetElementSize(array.get()), sizeof(std::uint64_t));
  std::uint64_t values[3];
  std::memcpy(values, hxGetData(array.get()), sizeof values);
  EXPECT_EQ(values[0], 0U);
  EXPECT_EQ(values[1], 7U);
  EXPECT_EQ(values[2], UINT64_MAX);
}

TEST(ArrayLogical, IsALogicalScalarOfOneByte) {
  for (const bool value : {false, true}) {
    const Array array = make_array(value);
    EXPECT_TRUE(hxIsLogicalScalar(array.get()));
    EXPECT_EQ(*hxGetLogicals(array.get()) != 0, value);
  }
}

TEST(ArrayLogical, IsNoOtherValue) {
  for (const Array& array : {make_array(1.0), make_array(1), make_array(u"1"), make_cell({}),
                             make_empty_array(), make_array(Widths{1})}) {
    EXPECT_FALSE(hxIsLogicalScalar(array.get()));
  }
}

TEST(ArrayChar, HasItsUnitsInTheirOrder) {
  for (const Shape& shape : {Shape{1, 6}, {6, 1}, {2, 3}, {1, 2, 3}}) {
    const Array array = make_char_array(u"a\u00e9\U0001F600\uffffz", shape);
    EXPECT_EQ(std::u16string(hxGetChars(array.get()), get_number_of_elements(array.get())),
              u"a\u00e9\U0001F600\uffffz");
    EXPECT_EQ(get_ustring(array.get()), u"a\u00e9\U0001F600\uffffz");
  }
}

TEST(ArrayChar, KeepsNul) {
  const std::u16string text(u"a\0b", 3);
  const Array array = make_array(std::u16string_view(text));
  EXPECT_EQ(get_ustring(array.get()), text);
  EXPECT_EQ(get_string(array.get()), std::string("a\0b", 3));
}

TEST(ArrayChar, OwnsItsUnits) {
  std::u16string text(100, u'x');
  const Array array = make_array(std::u16string_view(text));
  text.assign(100, u'y');
  EXPECT_EQ(get_ustring(array.get()), std::u16string(100, u'x'));
}

TEST(ArrayChar, AsNarrowTextIsAscii) {
  EXPECT_EQ(get_string(make_array(u"Delimiter").get()), "Delimiter");
  EXPECT_EQ(get_string(make_array(u"").get()), "");
  EXPECT_EQ(get_string(make_array(u" ~").get()), " ~");
}

// "\u0144" has the low byte of 'D'; the full-width D looks like one.
TEST(ArrayChar, AsNarrowTextIsNoNameWhenItIsNotAscii) {
  for (const char16_t* name : {u"\u0144elimiter", u"\uff24elimiter", u"Delim\u0131ter"}) {
    EXPECT_NE(get_string(make_array(name).get()), "Delimiter");
  }
}

TEST(ArrayText, OfACharArrayIsOne) {
  EXPECT_EQ(get_ustring_array(make_array(u"abc").get()), TextList{u"abc"});
  EXPECT_EQ(get_ustring_array(make_array(u"").get()), TextList{u""});
}

TEST(ArrayText, OfACellIsOneForEach) {
  EXPECT_EQ(get_ustring_array(make_text_cell({u"a", u"", u"bc"}).get()),
            (TextList{u"a", u"", u"bc"}));
  EXPECT_EQ(get_ustring_array(make_cell({}).get()), TextList{});
}

TEST(ArrayCell, HoldsItsElements) {
  const Array cell = make_cell({make_array(1.5), make_array(u"ab"), make_cell({make_array(2.5)})});
  EXPECT_EQ(hxGetScalar(hxGetCell(cell.get(), 0)), 1.5);
  EXPECT_EQ(get_ustring(hxGetCell(cell.get(), 1)), u"ab");
  const hxArray* inner = hxGetCell(cell.get(), 2);
  EXPECT_TRUE(hxIsCell(inner));
  EXPECT_EQ(hxGetScalar(hxGetCell(inner, 0)), 2.5);
}

TEST(ArrayCell, KeepsItsElementsAlive) {
  Array cell;
  {
    const Array element = make_array(u"a text that is long enough to be on the heap");
    cell = make_cell({element, element});
  }
  EXPECT_EQ(get_ustring(hxGetCell(cell.get(), 1)), u"a text that is long enough to be on the heap");
}

TEST(ArrayCell, HasNoElementsInMemory) {
  EXPECT_EQ(hxGetData(make_cell({make_array(1.0)}).get()), nullptr);
}

TEST(IsInteger, IsAWholeNumber) {
  for (const double whole : {0.0, -0.0, 1.0, -3.0, 9007199254740993.0, 1e300}) {
    EXPECT_TRUE(is_integer(whole)) << whole;
  }
  for (const double other :
       {0.5, -2.5, 5e-324, 4503599627370495.5, std::numeric_limits<double>::infinity(),
        -std::numeric_limits<double>::infinity(), std::numeric_limits<double>::quiet_NaN()}) {
    EXPECT_FALSE(is_integer(other)) << other;
  }
}

// --- messages ------------------------------------------------------------------------------------

class OwnError : public MessageIdentifiedError {
 public:
  OwnError(std::string identifier, std::vector<MessageArgument> arguments)
      : identifier_(std::move(identifier)), arguments_(std::move(arguments)) {}
  const std::string& identifier() const override { return identifier_; }
  const std::vector<MessageArgument>& arguments() const override { return arguments_; }

 private:
  std::string identifier_;
  std::vector<MessageArgument> arguments_;
};

struct MessageCase {
  const char* rule;  // the name of the message
  std::vector<MessageArgument> arguments;
  std::vector<const char*> repeated;  // what the sentence must contain
};
std::ostream& operator<<(std::ostream& out, const MessageCase& row) { return out << row.rule; }

const MessageCase kMessages[] = {
    {"OddNumberNVPairs", {}, {"pair"}},
    {"UnknownParameter", {std::u16string(u"D\u00e9lim")}, {"D\xc3\xa9lim"}},
    {"ExpectedNonNegativeScalarInt", {}, {"whole number"}},
    {"ExpectedPositiveScalarInt", {}, {"whole number"}},
    {"ExpectedScalarLogical", {}, {"true", "false"}},
    {"CommentStyleSize", {}, {"two"}},
    {"DelimiterType", {}, {"text"}},
    {"BadTextFlag", {std::string("'keep', 'ignore'")}, {"'keep', 'ignore'"}},
    {"InvalidStringProperty", {std::string("DateLocale")}, {"DateLocale", "text"}},
    {"InvalidStringOrCellStringProperty", {std::string("EndOfLine")}, {"EndOfLine", "text"}},
    {"InvalidEscapeSequence", {std::string("Whitespace")}, {"Whitespace"}},
};

std::string message_of_row(const MessageCase& row) {
  return message_of(OwnError(std::string("VELLUM:textio:textio:") + row.rule, row.arguments));
}

class MessageOf : public testing::TestWithParam<MessageCase> {};
TEST_P(MessageOf, IsASentenceThatRepeatsTheArguments) {
  const std::string message = message_of_row(GetParam());
  for (const char* part : GetParam().repeated) EXPECT_THAT(message, HasSubstr(part));
  EXPECT_THAT(message, Not(HasSubstr("VELLUM")));
  EXPECT_THAT(message, Not(HasSubstr("\n")));
  EXPECT_THAT(message, Not(HasSubstr("{}")));
  EXPECT_THAT(message, Not(HasSubstr("%")));
  EXPECT_THAT(message, HasSubstr(" "));
}
INSTANTIATE_TEST_SUITE_P(Table, MessageOf, testing::ValuesIn(kMessages), testing_support::ByRule());

TEST(MessageOfEach, IsDifferent) {
  std::set<std::string> messages;
  for (const MessageCase& row : kMessages) messages.insert(message_of_row(row));
  EXPECT_EQ(messages.size(), 11U);
}

TEST(MessageOfEach, ListsTheFiveEscapes) {
  const std::string message = message_of_row(kMessages[10]);
  for (const char* escape : {"\\\\", "\\b", "\\n", "\\r", "\\t"}) {
    EXPECT_THAT(message, HasSubstr(escape));
  }
}

TEST(MessageOfOther, IdentifiersNamesThem) {
  EXPECT_THAT(message_of(OwnError("own:catalogue:Strange", {})),
              HasSubstr("own:catalogue:Strange"));
}

TEST(MessageOfOther, ArgumentsMayBeMissing) {
  for (const MessageCase& row : kMessages) {
    EXPECT_FALSE(message_of(OwnError(std::string("VELLUM:textio:textio:") + row.rule, {})).empty());
  }
}

// --- apply_options -------------------------------------------------------------------------------

TEST(ApplyOptions, AppliesOneAfterTheOther) {
  parser::options record;
  apply_options(record, {{"Delimiter", make_array(u";")},
                         {"numheaderlines", make_array(2)},
                         {"NUMHEADERLINES", make_array(3)}});
  parser::options expected;
  expected.delimiters = {u";"};
  expected.detect_delimiters = false;
  expected.header_lines = 3;
  expected.detect_header_lines = false;
  EXPECT_EQ(contents_of(record), contents_of(expected));
}

TEST(ApplyOptions, OfNoneChangesNothing) {
  parser::options record = testing_support::unusual_record();
  apply_options(record, {});
  EXPECT_EQ(contents_of(record), contents_of(testing_support::unusual_record()));
}

struct ProblemCase {
  const char* rule;
  NameValue option;
  const char* name;  // of the message
  MessageArgument argument;
  const char* what;
};
std::ostream& operator<<(std::ostream& out, const ProblemCase& row) { return out << row.rule; }

const ProblemCase kProblems[] = {
    {"UnknownName",
     {"Delim", make_array(1)},
     "UnknownParameter",
     std::u16string(u"Delim"),
     "Delim: Expected the name of an option."},
    {"UnknownNameInUtf8",
     {"Gr\xc3\xb6\xc3\x9f"
      "e",
      make_array(1)},
     "UnknownParameter",
     std::u16string(u"Gr\u00f6\u00dfe"),
     "Gr\xc3\xb6\xc3\x9f"
     "e: Expected the name of an option."},
    {"EmptyName",
     {"", make_array(1)},
     "UnknownParameter",
     std::u16string(),
     "'': Expected the name of an option."},
    {"BadNumber",
     {"NumVariables", make_array(-1)},
     "ExpectedNonNegativeScalarInt",
     std::int64_t{0},
     "NumVariables: Expected one whole number, 0 or larger."},
    {"BadLine",
     {"dataline", make_array(0)},
     "ExpectedPositiveScalarInt",
     std::int64_t{0},
     "dataline: Expected one whole number, 1 or larger."},
    {"BadFlag",
     {"IsFile", make_array(1)},
     "ExpectedScalarLogical",
     std::int64_t{0},
     "IsFile: Expected true or false."},
    {"TooManyMarkers",
     {"CommentStyle", make_text_cell({u"a", u"b", u"c"})},
     "CommentStyleSize",
     std::int64_t{0},
     "CommentStyle: Expected at most two comment markers."},
    {"BadDelimiter",
     {"Delimiter", make_array(1)},
     "DelimiterType",
     std::int64_t{0},
     "Delimiter: Expected a text or a list of texts as delimiters."},
    {"BadWord",
     {"TextType", make_array(u"z")},
     "BadTextFlag",
     std::string("'char', 'string'"),
     "TextType: Expected one of 'char', 'string'."},
    {"BadText",
     {"encoding", make_array(1)},
     "InvalidStringProperty",
     std::string("Encoding"),
     "encoding: Expected a text."},
    {"BadList",
     {"LineEnding", make_array(1)},
     "InvalidStringOrCellStringProperty",
     std::string("EndOfLine"),
     "LineEnding: Expected a text or a list of texts."},
    {"BadEscape",
     {"TreatAsEmpty", make_array(u"\\z")},
     "InvalidEscapeSequence",
     std::string("TreatAsMissing"),
     "TreatAsEmpty: Expected only the escapes \\\\, \\b, \\n, \\r and \\t."},

    // Former bugs.
    {"NameThatStartsWithAZero",
     {std::string("\0a", 2), make_array(1)},
     "UnknownParameter",
     std::u16string(u"\0a", 2),
     "\xEF\xBF\xBD"
     "a: Expected the name of an option."},
};

class ApplyOptionsProblem : public testing::TestWithParam<ProblemCase> {};
TEST_P(ApplyOptionsProblem, NamesTheOptionAsGivenAndStartsWithIt) {
  const ProblemCase& row = GetParam();
  const std::string identifier = std::string("VELLUM:textio:textio:") + row.name;
  std::vector<MessageArgument> arguments;
  if (row.argument.which() != 0) arguments.push_back(row.argument);
  parser::options record;
  parser::options expected;
  expected.date_locale = u"before";
  try {
    apply_options(
        record,
        {{"DateLocale", make_array(u"before")}, row.option, {"DateLocale", make_array(u"after")}});
    FAIL() << "nothing was refused";
  } catch (const OptionProblem& problem) {
    EXPECT_EQ(problem.option(), row.option.first);
    EXPECT_EQ(problem.identifier(), identifier);
    EXPECT_EQ(message_of(problem), message_of(OwnError(identifier, arguments)));
    EXPECT_EQ(std::string(problem.what()), row.what);
  }
  EXPECT_EQ(contents_of(record), contents_of(expected));
}
INSTANTIATE_TEST_SUITE_P(Table, ApplyOptionsProblem, testing::ValuesIn(kProblems),
                         testing_support::ByRule());

TEST(ApplyOptionsWithoutAValue, NamesTheOption) {
  parser::options record;
  try {
    apply_options(record, {{"NumHeaderLines", nullptr}});
    FAIL() << "nothing was refused";
  } catch (const std::invalid_argument& refused) {
    EXPECT_EQ(std::string(refused.what()), "NumHeaderLines: Expected a value.");
  }
}

TEST(OptionProblem, OfAnotherCatalogueStartsWithTheOptionToo) {
  const OptionProblem problem("Encoding", OwnError("own:catalogue:Strange", {std::int64_t{7}}));
  EXPECT_EQ(std::string(problem.what()), "Encoding: own:catalogue:Strange 7");
}

TEST(OptionProblem, IsAnInvalidArgumentAndACopyableValue) {
  const OptionProblem problem("--delimiter", OwnError("VELLUM:textio:textio:DelimiterType", {}));
  const OptionProblem copy(problem);  // NOLINT: the copy is what is tested
  EXPECT_EQ(copy.option(), "--delimiter");
  EXPECT_EQ(copy.identifier(), "VELLUM:textio:textio:DelimiterType");
  EXPECT_EQ(std::string(copy.what()), problem.what());
  const std::invalid_argument& standard = copy;
  EXPECT_EQ(std::string(standard.what()), problem.what());
}

// --- settings_with -------------------------------------------------------------------------------

TEST(SettingsWith, NoneAreTheDefaults) {
  const DetectSettings settings = settings_with({});
  EXPECT_EQ(settings.num_lines, 100U);
  EXPECT_FALSE(settings.encoding.has_value());
  EXPECT_FALSE(settings.trace);
  EXPECT_EQ(contents_of(settings.options), contents_of(parser::options()));
}

TEST(SettingsWith, OptionsFillTheRecord) {
  const DetectSettings settings = settings_with(
      {{"Delimiter", make_text_cell({u";", u"\\t"})}, {"NumVariables", make_array(4)}});
  parser::options expected;
  expected.delimiters = {u";", u"\t"};
  expected.detect_delimiters = false;
  expected.num_variables = 4;
  expected.detect_num_variables = false;
  EXPECT_EQ(contents_of(settings.options), contents_of(expected));
  EXPECT_FALSE(settings.encoding.has_value());
}

TEST(SettingsWith, AnEncodingInAnySpellingIsTheSettings) {
  for (const char* name : {"Encoding", "encoding", "ENCODING"}) {
    const DetectSettings settings = settings_with({{name, make_array(u"Shift_JIS")}});
    EXPECT_EQ(settings.encoding, "Shift_JIS") << name;
    EXPECT_EQ(settings.options.encoding, u"Shift_JIS") << name;
  }
}

TEST(SettingsWith, UTF8ThatIsGivenIsGiven) {
  EXPECT_EQ(settings_with({{"Encoding", make_array(u"UTF-8")}}).encoding, "UTF-8");
}

TEST(SettingsWith, TheLastEncodingWins) {
  EXPECT_EQ(
      settings_with({{"Encoding", make_array(u"UTF-8")}, {"encoding", make_array(u"windows-1252")}})
          .encoding,
      "windows-1252");
}

TEST(SettingsWith, ARefusedOptionIsAProblem) {
  try {
    settings_with({{"NumVariables", make_array(1)}, {"Whitespace", make_array(u"\\q")}});
    FAIL() << "nothing was refused";
  } catch (const OptionProblem& problem) {
    EXPECT_EQ(problem.option(), "Whitespace");
    EXPECT_EQ(problem.identifier(), "VELLUM:textio:textio:InvalidEscapeSequence");
  }
}

}  // namespace
}  // namespace textio::standalone
