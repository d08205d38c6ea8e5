// The environment of a call (other threads, the locale of the process) does not change its result.
#include <vltextstream/options/set_parser_options.hpp>
#include <vltextstream/standalone/services/array.hpp>
#include "support/option_calls.hpp"

#include <gtest/gtest.h>

#include <clocale>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <locale>
#include <stdexcept>
#include <string>
#include <string_view>
#include <thread>
#include <vector>

namespace textio {
namespace {

using standalone::make_array;
using standalone::make_cell;
using standalone::make_text_cell;
using testing_support::apply_pairs;
using testing_support::contents_of;
using testing_support::error_of_pairs;
using testing_support::error_text;
using testing_support::OptionPair;

// --- threads -------------------------------------------------------------------------------------

// Pairs with every kind of value; `seed` makes the records of the threads different.
std::vector<OptionPair> pairs_of(std::size_t seed) {
  const auto number = static_cast<double>(seed);
  const std::u16string text(seed + 1, u'x');
  return {
      {u"Delimiter", make_text_cell({text, u"\\t"})},
      {u"lineending", make_array(u"\\r\\n")},
      {u"COMMENTSTYLE", make_array(std::u16string_view(text))},
      {u"Whitespace", make_array(u" \\t")},
      {u"Encoding", make_array(std::u16string_view(text))},
      {u"VariableWidths", make_array(std::vector<std::uint64_t>{seed, seed + 1})},
      {u"NumHeaderLines", make_array(number)},
      {u"NumVariables", make_array(number + 100)},
      {u"MultipleDelimsAsOne", make_array(seed % 2 == 0)},
      {u"ParserType", make_array(seed % 2 == 0 ? u"fixed" : u"tab")},
      {u"PartialFieldRule", make_array(u"omitv")},
      {u"TreatAsMissing", make_cell({})},
  };
}

parser::options record_of(std::size_t seed) {
  const std::u16string text(seed + 1, u'x');
  const bool even = seed % 2 == 0;
  parser::options record;
  record.delimiters = {text, u"\t"};
  record.detect_delimiters = false;
  record.comment_style = {text};
  record.whitespace = u" \t";
  record.encoding = text;
  record.variable_widths = {seed, seed + 1};
  record.header_lines = seed;
  record.detect_header_lines = false;
  record.num_variables = seed + 100;
  record.detect_num_variables = false;
  if (even) {
    record.consecutive_delimiters_rule = parser::consecutive_delimiters_action::join;
    record.leading_delimiters_rule = parser::leading_delimiters_action::ignore;
  }
  record.parser_type = even ? parser::parser_kind::fixedwidth : parser::parser_kind::tabular;
  record.partial_field_rule = parser::partial_field_action::omitvar;
  return record;
}

struct Refused {
  OptionPair pair;
  std::string error;
};

std::vector<Refused> refused() {
  return {
      {{u"NoSuchName", make_array(1.0)}, error_text("UnknownParameter", "u\"NoSuchName\"")},
      {{u"TextType", make_array(u"z")}, error_text("BadTextFlag", "\"'char', 'string'\"")},
      {{u"Delimiter", make_array(u"\\q")}, error_text("InvalidEscapeSequence", "\"Delimiter\"")},
      {{u"DataLine", make_array(0.0)}, error_text("ExpectedPositiveScalarInt")},
  };
}

const std::size_t kThreads = 8;

// Runs `work(0)` to `work(7)` in parallel. Returns the results in this order.
std::vector<std::string> side_by_side(const std::function<std::string(std::size_t)>& work) {
  std::vector<std::string> answers(kThreads);
  std::vector<std::thread> threads;
  for (std::size_t i = 0; i < kThreads; ++i) {
    threads.emplace_back([&, i] { answers[i] = work(i); });
  }
  for (std::thread& thread : threads) thread.join();
  return answers;
}

TEST(SetParserOptionsThreads, FillDifferentRecordsSideBySide) {
  const std::vector<std::string> answers = side_by_side([](std::size_t seed) {
    std::string last;
    for (int round = 0; round < 50; ++round) {
      parser::options record;
      apply_pairs(record, pairs_of(seed));
      const std::string contents = contents_of(record);
      if (round > 0 && contents != last) return "different: " + contents;
      last = contents;
    }
    return last;
  });
  for (std::size_t seed = 0; seed < kThreads; ++seed) {
    EXPECT_EQ(answers[seed], contents_of(record_of(seed))) << "thread " << seed;
  }
}

TEST(SetParserOptionsThreads, ShareTheArraysTheyReadFrom) {
  const std::vector<OptionPair> pairs = pairs_of(3);
  const std::vector<std::string> answers = side_by_side([&](std::size_t) {
    parser::options record;
    for (int round = 0; round < 50; ++round) apply_pairs(record, pairs);
    return contents_of(record);
  });
  for (const std::string& answer : answers) EXPECT_EQ(answer, contents_of(record_of(3)));
}

TEST(SetParserOptionsThreads, RaiseTheirOwnErrors) {
  const std::vector<Refused> cases = refused();
  const std::vector<std::string> answers = side_by_side([&](std::size_t seed) {
    const Refused& row = cases[seed % cases.size()];
    for (int round = 0; round < 50; ++round) {
      parser::options record;
      const std::string error = error_of_pairs(record, {row.pair});
      if (error != row.error) return error;
    }
    return std::string();
  });
  for (const std::string& answer : answers) EXPECT_EQ(answer, "");
}

// --- locales -------------------------------------------------------------------------------------

// Restores both locales of the process, of C and of C++, at the end of a test.
class SetParserOptionsLocale : public testing::Test {
 protected:
  SetParserOptionsLocale() : c_locale_(std::setlocale(LC_ALL, nullptr)) {}
  ~SetParserOptionsLocale() override {
    std::locale::global(locale_);
    std::setlocale(LC_ALL, c_locale_.c_str());
  }

  static void expect_usual_answers(const std::string& where) {
    for (const std::size_t seed : {std::size_t{2}, std::size_t{12345}}) {
      parser::options record;
      EXPECT_EQ(error_of_pairs(record, pairs_of(seed)), "") << where;
      EXPECT_EQ(contents_of(record), contents_of(record_of(seed))) << where;
    }
    for (const Refused& row : refused()) {
      parser::options record;
      EXPECT_EQ(error_of_pairs(record, {row.pair}), row.error) << where;
    }
  }

 private:
  std::locale locale_;
  std::string c_locale_;
};

TEST_F(SetParserOptionsLocale, OfTheCLibraryChangesNothing) {
  std::size_t found = 0;
  for (const char* name : {"C", "POSIX", "C.UTF-8", "en_US.UTF-8", "de_DE.UTF-8", "tr_TR.UTF-8"}) {
    if (std::setlocale(LC_ALL, name) == nullptr) continue;  // not on this machine
    ++found;
    expect_usual_answers(name);
  }
  EXPECT_GE(found, 2U);  // the first two always exist
}

TEST_F(SetParserOptionsLocale, OfTheCxxLibraryChangesNothing) {
  for (const char* name : {"C", "C.UTF-8", "en_US.UTF-8", "de_DE.UTF-8"}) {
    try {
      std::locale::global(std::locale(name));
    } catch (const std::runtime_error&) {
      continue;  // not on this machine
    }
    expect_usual_answers(name);
  }
}

// A locale with "1.234,5" and other words for true and false.
struct OtherNumbers : std::numpunct<char> {
  char do_decimal_point() const override { return ','; }
  char do_thousands_sep() const override { return '.'; }
  std::string do_grouping() const override { return "\3"; }
  std::string do_truename() const override { return "ja"; }
  std::string do_falsename() const override { return "nein"; }
};

TEST_F(SetParserOptionsLocale, WithOtherNumbersChangesNothing) {
  std::locale::global(std::locale(std::locale::classic(), new OtherNumbers));
  expect_usual_answers("other numbers");
}

// A locale in which the upper case of '#' is 'D'.
struct OtherLetters : std::ctype<char> {
  char do_toupper(char letter) const override {
    return letter == '#' ? 'D' : std::ctype<char>::do_toupper(letter);
  }
  const char* do_toupper(char* begin, const char* end) const override {
    for (; begin != end; ++begin) *begin = do_toupper(*begin);
    return end;
  }
};

// Only names depend on the global locale: they are compared in its upper case.
TEST_F(SetParserOptionsLocale, FoldsTheNames) {
  const std::vector<OptionPair> pairs = {{u"#elimiter", make_array(u";")}};
  parser::options record;
  EXPECT_EQ(error_of_pairs(record, pairs), error_text("UnknownParameter", "u\"#elimiter\""));
  std::locale::global(std::locale(std::locale::classic(), new OtherLetters));
  EXPECT_EQ(error_of_pairs(record, pairs), "");
  EXPECT_EQ(record.delimiters, std::vector<std::u16string>{u";"});
  expect_usual_answers("other letters");
}

TEST_F(SetParserOptionsLocale, DoesNotFoldTheKeywords) {
  std::locale::global(std::locale(std::locale::classic(), new OtherLetters));
  parser::options record;
  EXPECT_EQ(error_of_pairs(record, {{u"ParserType", make_array(u"#elimited")}}),
            error_text("BadTextFlag", "\"'delimited', 'fixedwidth', 'tabular'\""));
}

// As in a Turkish locale, the dotted i has no upper case of one byte.
struct DottedLetters : std::ctype<char> {
  char do_toupper(char letter) const override {
    return letter == 'i' ? 'i' : std::ctype<char>::do_toupper(letter);
  }
  const char* do_toupper(char* begin, const char* end) const override {
    for (; begin != end; ++begin) *begin = do_toupper(*begin);
    return end;
  }
};

TEST_F(SetParserOptionsLocale, WithADottedLetterFindsNamesInTheirOwnSpelling) {
  std::locale::global(std::locale(std::locale::classic(), new DottedLetters));
  for (const char16_t* name :
       {u"Delimiter", u"LineEnding", u"EndOfLine", u"CommentStyle", u"Whitespace", u"Encoding",
        u"TreatAsMissing", u"TreatAsEmpty", u"ReturnOnError", u"EmptyValue"}) {
    parser::options record;
    EXPECT_EQ(error_of_pairs(record, {{name, make_array(u"x")}}), "");
  }
  for (const char16_t* name :
       {u"NumHeaderLines", u"DataLine", u"NumVariables", u"VariableNamesLine", u"VariableUnitsLine",
        u"VariableDescriptionsLine", u"RowNamesField", u"VariableWidths"}) {
    parser::options record;
    EXPECT_EQ(error_of_pairs(record, {{name, make_array(1.0)}}), "");
  }
  for (const char16_t* name :
       {u"MissingRule", u"ImportErrorRule", u"ConsecutiveDelimitersRule", u"EmptyLineRule",
        u"ExtraColumnsRule", u"LeadingDelimitersRule", u"DatetimeType", u"PartialFieldRule"}) {
    parser::options record;
    EXPECT_EQ(error_of_pairs(record, {{name, make_array(u"e")}}), "");
  }
}

}  // namespace
}  // namespace textio
