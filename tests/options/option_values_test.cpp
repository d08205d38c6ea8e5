#include <vltextstream/options/option_values.hpp>
#include <vltextstream/standalone/services/array.hpp>
#include "support/option_calls.hpp"
#include "support/printing.hpp"
#include "support/rule_name.hpp"

#include <gtest/gtest.h>
#include <rapidcheck.h>

#include <cstddef>
#include <cstdint>
#include <optional>
#include <ostream>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace textio {
namespace {

using standalone::Array;
using standalone::make_array;
using standalone::make_cell;
using standalone::make_char_array;
using standalone::make_empty_array;
using standalone::make_text_cell;
using testing_support::error_of;
using testing_support::error_text;
using TextList = std::vector<std::u16string>;
using Widths = std::vector<std::uint64_t>;

std::u16string wide(std::string_view text) { return {text.begin(), text.end()}; }

// --- escapes -------------------------------------------------------------------------------------

struct EscapeCase {
  const char* rule;
  std::u16string text;
  std::optional<std::u16string> plain;  // nothing: refused
};
std::ostream& operator<<(std::ostream& out, const EscapeCase& row) { return out << row.rule; }

const EscapeCase kEscapes[] = {
    {"TheEmptyTextStays", u"", u""},
    {"PlainTextStays", u"a, b", u"a, b"},
    {"ControlCharactersStay", u"\t\r\n\b", u"\t\r\n\b"},
    {"Backslash", u"\\\\", u"\\"},
    {"Backspace", u"\\b", u"\b"},
    {"LineFeed", u"\\n", u"\n"},
    {"CarriageReturn", u"\\r", u"\r"},
    {"Tab", u"\\t", u"\t"},
    {"InTheMiddle", u"a\\tb", u"a\tb"},
    {"SideBySide", u"\\r\\n\\t\\b", u"\r\n\t\b"},
    {"LoneBackslashStays", u"\\", u"\\"},
    {"TrailingBackslashStays", u"a\\", u"a\\"},
    {"TrailingBackslashAfterAnEscape", u"\\t\\", u"\t\\"},
    {"ThreeBackslashesAreTwo", u"\\\\\\", u"\\\\"},
    {"FourBackslashesAreTwo", u"\\\\\\\\", u"\\\\"},
    {"EscapedBackslashDoesNotEscape", u"\\\\n", u"\\n"},
    {"EscapedBackslashThenEscape", u"\\\\\\n", u"\\\n"},
    {"EscapedBackslashThenBadLetter", u"\\\\q", u"\\q"},
    {"NulStays", std::u16string(u"a\0b", 3), std::u16string(u"a\0b", 3)},
    {"EveryUnitStays", u"\u00e9\u2028\U0001F600\uffff", u"\u00e9\u2028\U0001F600\uffff"},
    {"EscapeAfterNul", std::u16string(u"\0\\t", 3), std::u16string(u"\0\t", 2)},
    {"UnknownLetter", u"\\q", std::nullopt},
    {"LetterA", u"\\a", std::nullopt},
    {"LetterF", u"\\f", std::nullopt},
    {"LetterV", u"\\v", std::nullopt},
    {"LetterX", u"\\x41", std::nullopt},
    {"UpperCaseIsUnknown", u"\\N", std::nullopt},
    {"DigitIsUnknown", u"\\0", std::nullopt},
    {"NulIsUnknown", std::u16string(u"\\\0", 2), std::nullopt},
    {"LowByteIsNotEnough", u"\\\u0174", std::nullopt},
    {"UnknownAfterGood", u"\\t\\q", std::nullopt},
    {"UnknownBeforeGood", u"\\q\\t", std::nullopt},
    {"DeletedEscapeDoesNotJoinWhatFollows", u"\\q\\", std::nullopt},
    {"DeletedEscapeDoesNotJoinItsNeighbours", u"\\\\\\qn", std::nullopt},
    {"SeveralUnknown", u"\\q\\q\\q", std::nullopt},
};

class UnescapeOptionString : public testing::TestWithParam<EscapeCase> {};
TEST_P(UnescapeOptionString, KnowsFiveEscapes) {
  std::u16string plain;
  const std::string error =
      error_of([&] { plain = options::unescape_option_string(GetParam().text, "Any"); });
  if (GetParam().plain) {
    EXPECT_EQ(error, "");
    EXPECT_EQ(plain, *GetParam().plain);
  } else {
    EXPECT_EQ(error, error_text("InvalidEscapeSequence", "\"Any\""));
  }
}
INSTANTIATE_TEST_SUITE_P(Table, UnescapeOptionString, testing::ValuesIn(kEscapes),
                         testing_support::ByRule());

TEST(UnescapeOptionStrings, TreatsEachByItself) {
  EXPECT_EQ(options::unescape_option_strings({u"\\t", u"a\\", u"n", u""}, "Any"),
            (TextList{u"\t", u"a\\", u"n", u""}));
}

TEST(UnescapeOptionStrings, OfNoneAreNone) {
  EXPECT_EQ(options::unescape_option_strings({}, "Any"), TextList{});
}

TEST(UnescapeOptionStrings, AreRefusedForOneBadOneWhereverItStands) {
  for (std::size_t bad = 0; bad < 3; ++bad) {
    TextList list = {u"\\t", u"b", u"\\\\"};
    list[bad] += u"\\q";
    EXPECT_EQ(error_of([&] { options::unescape_option_strings(list, "Which"); }),
              error_text("InvalidEscapeSequence", "\"Which\""));
  }
}

// The replacement in its simplest form: edits the text in place after each search.
std::optional<std::u16string> unescaped_plainly(std::u16string text) {
  bool valid = true;
  std::size_t from = 0;
  for (;;) {
    const std::size_t backslash = text.find(u'\\', from);
    if (backslash == std::u16string::npos || backslash == text.size() - 1) break;
    const std::size_t known = std::u16string_view(u"\\bnrt").find(text[backslash + 1]);
    if (known == std::u16string_view::npos) {
      text.erase(backslash, 2);
      from = backslash;
      valid = false;
    } else {
      text.replace(backslash, 2, 1, u"\\\b\n\r\t"[known]);
      from = backslash + 1;
    }
  }
  return valid ? std::optional(text) : std::nullopt;
}

TEST(UnescapeOptionStringProperty, IsThePlainReplacementForAnyText) {
  EXPECT_TRUE(rc::check([] {
    // Mostly backslashes and letters of escapes.
    const auto text = wide(*rc::gen::container<std::string>(
        rc::gen::elementOf(std::string("\\\\\\\\bnrt\\\\bnrtqN0 "))));
    const std::optional<std::u16string> expected = unescaped_plainly(text);
    std::optional<std::u16string> actual;
    const std::string error =
        error_of([&] { actual = options::unescape_option_string(text, "Any"); });
    RC_ASSERT(error.empty() == expected.has_value());
    RC_ASSERT(actual == expected);
  }));
}

TEST(UnescapeOptionStringProperty, IsThePlainReplacementWithoutUnknownEscapes) {
  EXPECT_TRUE(rc::check([] {
    const auto pieces = *rc::gen::container<std::vector<std::string>>(
        rc::gen::element<std::string>("\\\\", "\\b", "\\n", "\\r", "\\t", "n", "q", " "));
    std::string joined;
    for (const std::string& piece : pieces) joined += piece;
    const std::u16string text = wide(joined);
    RC_ASSERT(options::unescape_option_string(text, "Any") == unescaped_plainly(text));
  }));
}

TEST(UnescapeOptionStringProperty, UndoesEscapingOfAnyText) {
  EXPECT_TRUE(rc::check([](const std::vector<std::uint16_t>& units) {
    std::u16string text;
    std::u16string escaped;
    for (const std::uint16_t unit : units) {
      // A quarter of the code units become characters that have an escape.
      const auto character =
          unit % 4 == 0 ? u"\\\b\n\r\t"[unit / 4 % 5] : static_cast<char16_t>(unit);
      text.push_back(character);
      const std::size_t known = std::u16string_view(u"\\\b\n\r\t").find(character);
      if (known != std::u16string_view::npos) {
        escaped.push_back(u'\\');
        escaped.push_back(u"\\bnrt"[known]);
      } else {
        escaped.push_back(character);
      }
    }
    RC_ASSERT(options::unescape_option_string(escaped, "Any") == text);
  }));
}

// --- keywords ------------------------------------------------------------------------------------

using Words = std::vector<const char*>;

// Keywords with the values kFirstValue, kFirstValue + 1, ...
constexpr std::size_t kFirstValue = 7;

std::vector<parser::Keyword> keywords_of(const Words& words) {
  std::vector<parser::Keyword> keywords;
  for (const char* word : words) keywords.emplace_back(kFirstValue + keywords.size(), word);
  return keywords;
}

std::string formatted(const Words& words) { return options::format_choices(keywords_of(words)); }

TEST(FormatChoices, QuotesAndJoins) {
  EXPECT_EQ(formatted({"keep", "ignore", "error"}), "'keep', 'ignore', 'error'");
  EXPECT_EQ(formatted({"alone"}), "'alone'");
  EXPECT_EQ(formatted({}), "");
  EXPECT_EQ(formatted({"it's", ""}), "'it's', ''");
}

struct ChoiceCase {
  const char* rule;
  Array value;
  Words choices;
  std::optional<std::size_t> code;  // the place of the choice
};
std::ostream& operator<<(std::ostream& out, const ChoiceCase& row) { return out << row.rule; }

const ChoiceCase kChoices[] = {
    {"WholeWord", make_array(u"two"), {"one", "two"}, 1},
    {"Beginning", make_array(u"tw"), {"one", "two"}, 1},
    {"CaseOfTheValueDoesNotMatter", make_array(u"TwO"), {"one", "two"}, 1},
    {"CaseOfTheChoiceDoesNotMatter", make_array(u"two"), {"One", "TWO"}, 1},
    {"FirstOfSeveralWins", make_array(u"o"), {"two", "one", "only"}, 1},
    {"FirstWinsOverAWholeWord", make_array(u"on"), {"one", "on"}, 0},
    {"LongerThanTheFirstReachesTheNext", make_array(u"one"), {"on", "one"}, 1},
    {"LongerThanAll", make_array(u"ones"), {"on", "one"}, std::nullopt},
    {"EmptyMatchesNothing", make_array(u""), {"one"}, std::nullopt},
    {"EmptyDoesNotMatchAnEmptyChoice", make_array(u""), {""}, std::nullopt},
    {"NoChoices", make_array(u"one"), {}, std::nullopt},
    {"MiddleOfAWord", make_array(u"ne"), {"one"}, std::nullopt},
    {"FoldingIsOfLettersAlone", make_array(u"["), {"{"}, std::nullopt},
    {"AtSignIsNotABacktick", make_array(u"@"), {"`"}, std::nullopt},
    {"FoldsTheFirstAndTheLastLetter", make_array(u"AZ"), {"az"}, 0},
    {"UnitsFrom128AreRefused", make_array(u"\u0080"), {"\x80"}, std::nullopt},
    {"UnitsOf127AreNot", make_array(u"\u007f"), {"\x7f"}, 0},
    {"LowByteIsNotEnough", make_array(u"\u016fne"), {"one"}, std::nullopt},
    {"NulIsNotTheEndOfTheChoice",
     make_array(std::u16string_view(u"one\0", 4)),
     {"one"},
     std::nullopt},
    {"ColumnsAreReadDown", make_char_array(u"one", {3, 1}), {"one"}, 0},
    {"NoNumber", make_array(111.0), {"o"}, std::nullopt},
    {"NoLogical", make_array(true), {"true"}, std::nullopt},
    {"NoCell", make_text_cell({u"one"}), {"one"}, std::nullopt},
    {"NoEmptyCell", make_cell({}), {"one"}, std::nullopt},
    {"NoEmptyArray", make_empty_array(), {"one"}, std::nullopt},
};

class MatchChoice : public testing::TestWithParam<ChoiceCase> {};
TEST_P(MatchChoice, FindsTheFirstThatTheValueBegins) {
  const ChoiceCase& row = GetParam();
  std::size_t code = 99;
  const std::string error =
      error_of([&] { code = options::match_choice(row.value.get(), keywords_of(row.choices)); });
  if (row.code) {
    EXPECT_EQ(error, "");
    EXPECT_EQ(code, kFirstValue + *row.code);
  } else {
    EXPECT_EQ(error, error_text("BadTextFlag", '"' + formatted(row.choices) + '"'));
  }
}
INSTANTIATE_TEST_SUITE_P(Table, MatchChoice, testing::ValuesIn(kChoices),
                         testing_support::ByRule());

// The matching in its simplest form: tries all beginnings of each choice in lower case.
std::optional<std::size_t> matched_plainly(std::string value, const Words& choices) {
  const auto lower = [](std::string text) {
    for (char& letter : text) {
      const std::size_t place = std::string_view("ABCDEFGHIJKLMNOPQRSTUVWXYZ").find(letter);
      if (place != std::string_view::npos) letter = "abcdefghijklmnopqrstuvwxyz"[place];
    }
    return text;
  };
  value = lower(std::move(value));
  for (std::size_t code = 0; code < choices.size(); ++code) {
    const std::string choice = lower(choices[code]);
    for (std::size_t length = 1; length <= choice.size(); ++length) {
      if (value == choice.substr(0, length)) return code;
    }
  }
  return std::nullopt;
}

void expect_plain_match(const std::string& value, const Words& choices) {
  std::optional<std::size_t> actual;
  const Array array = make_array(std::u16string_view(wide(value)));
  const std::string error = error_of(
      [&] { actual = options::match_choice(array.get(), keywords_of(choices)) - kFirstValue; });
  const std::optional<std::size_t> expected = matched_plainly(value, choices);
  RC_ASSERT(error.empty() == expected.has_value());
  RC_ASSERT(actual == expected);
}

TEST(MatchChoiceProperty, IsThePlainMatchForAnyWords) {
  EXPECT_TRUE(rc::check([] {
    const auto word =
        rc::gen::container<std::string>(rc::gen::elementOf(std::string("aAbBzZ[{@`")));
    const auto words = *rc::gen::container<std::vector<std::string>>(word);
    Words choices;
    for (const std::string& each : words) choices.push_back(each.c_str());
    expect_plain_match(*word, choices);
  }));
}

TEST(MatchChoiceProperty, IsThePlainMatchForBeginningsOfTheOptionsKeywords) {
  EXPECT_TRUE(rc::check([] {
    const Words all = {"keep", "omitrow", "omitvar", "fill", "wrap", "error"};
    Words choices;
    for (const char* choice : all) {
      if (*rc::gen::arbitrary<bool>()) choices.push_back(choice);
    }
    std::string value = *rc::gen::elementOf(std::vector<std::string>(all.begin(), all.end()));
    value.resize(*rc::gen::inRange<std::size_t>(0, value.size() + 1));
    for (char& letter : value) {
      if (*rc::gen::arbitrary<bool>()) letter = static_cast<char>(letter - 'a' + 'A');
    }
    if (*rc::gen::inRange(0, 8) == 0) value += *rc::gen::elementOf(std::string("xrow "));
    expect_plain_match(value, choices);
  }));
}

// --- the checks ----------------------------------------------------------------------------------

TEST(ToNonNegativeInteger, TakesWholeNumbersFromZero) {
  EXPECT_EQ(options::to_non_negative_integer(make_array(0.0).get()), 0U);
  EXPECT_EQ(options::to_non_negative_integer(make_array(-0.0).get()), 0U);
  EXPECT_EQ(options::to_non_negative_integer(make_array(42.0).get()), 42U);
  EXPECT_EQ(options::to_non_negative_integer(make_array(9223372036854775808.0).get()),
            std::uint64_t{1} << 63);
  EXPECT_EQ(error_of([] { options::to_non_negative_integer(make_array(-1.0).get()); }),
            error_text("ExpectedNonNegativeScalarInt"));
}

TEST(ToPositiveInteger, TakesWholeNumbersFromOne) {
  EXPECT_EQ(options::to_positive_integer(make_array(1.0).get()), 1U);
  EXPECT_EQ(options::to_positive_integer(make_array(9223372036854777856.0).get()),
            (std::uint64_t{1} << 63) + 2048);
  EXPECT_EQ(error_of([] { options::to_positive_integer(make_array(0.0).get()); }),
            error_text("ExpectedPositiveScalarInt"));
  EXPECT_EQ(error_of([] { options::to_positive_integer(make_array(-0.0).get()); }),
            error_text("ExpectedPositiveScalarInt"));
}

TEST(ToLogical, TakesLogicalScalarsAlone) {
  EXPECT_TRUE(options::to_logical(make_array(true).get()));
  EXPECT_FALSE(options::to_logical(make_array(false).get()));
  EXPECT_EQ(error_of([] { options::to_logical(make_array(1.0).get()); }),
            error_text("ExpectedScalarLogical"));
}

TEST(ToText, TakesATextAsItIs) {
  EXPECT_EQ(options::to_text(make_array(u"a\\q").get(), "Any"), u"a\\q");
  EXPECT_EQ(options::to_text(make_array(u"").get(), "Any"), u"");
  EXPECT_EQ(options::to_text(make_char_array(u"", {1, 0}).get(), "Any"), u"");
  EXPECT_EQ(error_of([] {
              options::to_text(make_char_array(u"", {0, 1}).get(), "Any");
            }),
            error_text("InvalidStringProperty", "\"Any\""));
}

TEST(ToTextList, TakesATextOrACellOfTexts) {
  EXPECT_EQ(options::to_text_list(make_array(u"\\q").get(), "Any"), TextList{u"\\q"});
  EXPECT_EQ(options::to_text_list(make_array(u"").get(), "Any"), TextList{u""});
  EXPECT_EQ(options::to_text_list(make_cell({}).get(), "Any"), TextList{});
  EXPECT_EQ(options::to_text_list(make_text_cell({u"a", u"", u"b"}).get(), "Any"),
            (TextList{u"a", u"", u"b"}));
  EXPECT_EQ(error_of([] { options::to_text_list(make_empty_array().get(), "Any"); }),
            error_text("InvalidStringOrCellStringProperty", "\"Any\""));
}

TEST(ToDelimiters, HasAnErrorOfItsOwn) {
  EXPECT_EQ(options::to_delimiters(make_text_cell({u"a", u"b"}).get()), (TextList{u"a", u"b"}));
  EXPECT_EQ(options::to_delimiters(make_cell({}).get()), TextList{});
  EXPECT_EQ(error_of([] { options::to_delimiters(make_empty_array().get()); }),
            error_text("DelimiterType"));
}

TEST(ToWidths, CopiesTheElementsBitForBit) {
  EXPECT_EQ(options::to_widths(make_array(Widths{3, UINT64_MAX}).get()), (Widths{3, UINT64_MAX}));
  EXPECT_EQ(options::to_widths(make_array(std::vector<double>{1.0, -0.0}).get()),
            (Widths{0x3FF0000000000000U, 0x8000000000000000U}));
  EXPECT_EQ(options::to_widths(make_empty_array().get()), Widths{});
}

// Each element of less than 64 bits is one width, with zeros above its own bits.
TEST(ToWidths, ReadsNothingPastSmallElements) {
  EXPECT_EQ(options::to_widths(make_array(u"AB\uffff").get()), (Widths{65, 66, 0xFFFF}));
  EXPECT_EQ(options::to_widths(make_char_array(u"ABCD", {2, 2}).get()), (Widths{65, 66, 67, 68}));
  EXPECT_EQ(options::to_widths(make_array(u"").get()), Widths{});
  EXPECT_EQ(options::to_widths(make_array(true).get()), Widths{1});
  EXPECT_EQ(options::to_widths(make_array(false).get()), Widths{0});
}

// A cell has no elements in its own memory, only arrays elsewhere.
TEST(ToWidths, OfACellAreNone) {
  EXPECT_EQ(options::to_widths(make_cell({}).get()), Widths{});
  EXPECT_EQ(options::to_widths(make_cell({make_array(1.0), make_array(u"a")}).get()), Widths{});
}

}  // namespace
}  // namespace textio
