// How the scoring handles the results of the host's date check, its exceptions, and the forced
// unwinding of a thread inside it. The check is defined here, so this is a separate program.
#include <pthread.h>

#include <cstddef>
#include <exception>
#include <functional>
#include <new>
#include <ostream>
#include <set>
#include <stdexcept>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include <vltextstream/host/datetime.hpp>
#include <vltextstream/options/parser_options.hpp>
#include <vltextstream/scoring/datatype_inspection.hpp>
#include <vltextstream/scoring/datatype_recognizers.hpp>
#include <vltextstream/strategy/field.hpp>
#include "support/datatype_names.hpp"
#include "support/exact_text.hpp"
#include "support/printing.hpp"
#include "support/rule_name.hpp"
#include "support/unit_strategy.hpp"

namespace {

using DateCheck = std::function<bool(const std::u16string& text)>;

// What the date check does. Each test sets it, and only while no other thread runs.
DateCheck date_check;
std::size_t date_checks = 0;

}  // namespace

namespace textio::datetime {

bool is_datetime(const Field& field) {
  ++date_checks;
  return date_check(std::u16string(field.data, field.length));
}

}  // namespace textio::datetime

namespace textio {
namespace {

using testing_support::ExactText;
using testing_support::name_of;
using testing_support::names_of;
using testing_support::readable;
using testing_support::text_of;
using testing_support::text_of_counts;
using testing_support::UnitStrategy;

const std::u16string kBlanks = u" \b\t";

// --- exceptions ----------------------------------------------------------------------------------

struct NoStandardException {};

struct ThrowCase {
  const char* rule;
  DateCheck check;
};
std::ostream& operator<<(std::ostream& out, const ThrowCase& row) { return out << row.rule; }

const ThrowCase kThrowCases[] = {
    {"RuntimeError", [](const std::u16string&) -> bool { throw std::runtime_error("no locale"); }},
    {"BadAlloc", [](const std::u16string&) -> bool { throw std::bad_alloc(); }},
    {"Integer", [](const std::u16string&) -> bool { throw 7; }},
    {"Text", [](const std::u16string&) -> bool { throw "no locale"; }},
    {"NullPointer", [](const std::u16string&) -> bool { throw nullptr; }},
    {"OtherClass", [](const std::u16string&) -> bool { throw NoStandardException(); }},
};

class ThrowingDateCheck : public testing::TestWithParam<ThrowCase> {
 protected:
  void SetUp() override { date_check = GetParam().check; }
};

TEST_P(ThrowingDateCheck, MeansNoDate) {
  const ExactText text(u"2024-03-01");
  EXPECT_FALSE(safe_is_datetime(text.field()));
}

TEST_P(ThrowingDateCheck, LeavesTheFieldAText) {
  for (const char16_t* units : {u"2024-03-01", u"12:00:00 2024-03-01", u"2024-03-01 12:00:00"}) {
    const ExactText text(units);
    EXPECT_EQ(name_of(classify_field(text.field(), kBlanks)), "text") << readable(units);
  }
}

TEST_P(ThrowingDateCheck, DoesNotAffectOtherClasses) {
  const ExactText number(u"42");
  const ExactText clock(u"1:02:03");
  const ExactText minutes(u"12:34");
  EXPECT_EQ(name_of(classify_field(number.field(), kBlanks)), "number");
  EXPECT_EQ(name_of(classify_field(clock.field(), kBlanks)), "duration");
  EXPECT_EQ(name_of(classify_field(minutes.field(), kBlanks)), "duration");
}

INSTANTIATE_TEST_SUITE_P(Table, ThrowingDateCheck, testing::ValuesIn(kThrowCases),
                         testing_support::ByRule());

// A strategy with one field per line, the line itself.
class WholeLines : public UnitStrategy {
 public:
  using UnitStrategy::UnitStrategy;
  FieldExtent get_next_field(const Field& line, unsigned long start) override {
    return {Field(line.data + start, line.length - start), line.length};
  }
};

TEST(ThrowingDateCheckInAValuation, TheScoreIsThatOfText) {
  date_check = [](const std::u16string&) -> bool { throw std::runtime_error("no locale"); };
  const ExactText text(u"when\n2024-03-01\n2024-03-02\n");
  parser::options options;
  WholeLines strategy(options);
  strategy.header_lines(0);
  strategy.populate_fields(text.field(), 10);
  const StrategyValuation& score = strategy.valuation();
  EXPECT_EQ(score.typed_columns, 1u);
  EXPECT_EQ(score.date_columns, 0u);
  EXPECT_EQ(strategy.num_variables(), 1);
}

// --- the order of the tests ----------------------------------------------------------------------

struct LadderCase {
  const char* rule;
  std::u16string whitespace;
  std::u16string text;
  std::set<std::u16string> dates;  // the texts that the check accepts
  DatatypeCode code;
};
std::ostream& operator<<(std::ostream& out, const LadderCase& row) { return out << row.rule; }

const LadderCase kLadderCases[] = {
    {"NoDigitIsNoDate", kBlanks, u"today", {u"today"}, DatatypeCode::text},
    {"NumberComesFirst", kBlanks, u"2024", {u"2024"}, DatatypeCode::number},
    {"ClockValueComesFirst", kBlanks, u"1:2:3", {u"1:2:3"}, DatatypeCode::duration},
    {"HoursAndMinutesComeFirst", kBlanks, u"12:34", {u"12:34"}, DatatypeCode::duration},
    {"Date", kBlanks, u"d1", {u"d1"}, DatatypeCode::date},
    {"NanAndADigitIsAsked", kBlanks, u"nan5", {u"nan5"}, DatatypeCode::date},
    {"ColonMakesItADateWithTime", kBlanks, u"d1:", {u"d1:"}, DatatypeCode::datetime},
    {"OneDigitOfMinutesIsAsked", kBlanks, u"12:3", {u"12:3"}, DatatypeCode::datetime},
    {"BlankAloneDoesNot", kBlanks, u"d 1", {u"d 1"}, DatatypeCode::date},
    {"TrimmedTextIsAsked", kBlanks, u"\t d1 ", {u"d1"}, DatatypeCode::date},
    {"UnquotedTextIsAsked", kBlanks, u" \" d1 \" ", {u"d1"}, DatatypeCode::date},
    {"TextWithKeptQuotesIsAsked", kBlanks, u"\"d\"\"1\"", {u"d\"1"}, DatatypeCode::date},
    {"UntrimmedTextIsAskedWithoutWhiteSpace", u"", u" 42", {u" 42"}, DatatypeCode::date},
    {"NotTheTextBeforeTrimming", kBlanks, u" d1 ", {u" d1 "}, DatatypeCode::text},
    // split at the first blank
    {"TimeAndDate", kBlanks, u"1:2:3 d1", {u"d1"}, DatatypeCode::datetime},
    {"DateAndTime", kBlanks, u"d1 1:2:3", {u"d1"}, DatatypeCode::datetime},
    {"DateAndTimeWithFraction", kBlanks, u"d1 1:2:3.5", {u"d1"}, DatatypeCode::datetime},
    {"DateAndColons", kBlanks, u"d1 ::", {u"d1"}, DatatypeCode::datetime},
    {"ColonsAndDate", kBlanks, u":: d1", {u"d1"}, DatatypeCode::datetime},
    {"SeveralBlanksBeforeTheTime", kBlanks, u"d1    1:2:3", {u"d1"}, DatatypeCode::datetime},
    {"SeveralBlanksBeforeTheDate", kBlanks, u"1:2:3    d1", {u"d1"}, DatatypeCode::datetime},
    {"DateOfTwoWordsAfterTheTime", kBlanks, u"1:2:3 d 1", {u"d 1"}, DatatypeCode::datetime},
    {"DateOfTwoWordsBeforeTheTime", kBlanks, u"d 1 1:2:3", {u"d 1"}, DatatypeCode::text},
    {"OnlyTheWholeTailCounts", kBlanks, u"1:2:3 d1 x", {u"d1"}, DatatypeCode::text},
    {"TimeWithAWordAfter", kBlanks, u"d1 1:2:3 PM", {u"d1"}, DatatypeCode::text},
    {"MinutesAfterTheDate", kBlanks, u"d1 12:34", {u"d1"}, DatatypeCode::text},
    {"MinutesBeforeTheDate", kBlanks, u"12:34 d1", {u"d1"}, DatatypeCode::text},
    {"TwoDates", kBlanks, u"d1 d2", {u"d1", u"d2"}, DatatypeCode::text},
    {"TwoClockValues", kBlanks, u"1:2:3 4:5:6", {}, DatatypeCode::text},
    {"TwoClockValuesTheFirstADate", kBlanks, u"1:2:3 4:5:6", {u"1:2:3"}, DatatypeCode::datetime},
    {"TwoClockValuesTheSecondADate", kBlanks, u"1:2:3 4:5:6", {u"4:5:6"}, DatatypeCode::datetime},
    {"TabDoesNotSplit", kBlanks, u"d1\t1:2:3", {u"d1"}, DatatypeCode::text},
    {"TabIsPartOfTheTail", kBlanks, u"d1 \t1:2:3", {u"d1"}, DatatypeCode::text},
    {"OtherWhiteSpaceDoesNotSplit", u"_", u"d1_1:2:3", {u"d1"}, DatatypeCode::text},
    {"BlankSplitsWhateverTheWhiteSpace", u"_", u"_d1 1:2:3_", {u"d1"}, DatatypeCode::datetime},
    {"WideBlankDoesNotSplit", kBlanks, u"d1\u00A01:2:3", {u"d1"}, DatatypeCode::text},
    {"NothingBeforeTheBlank", u"", u" d1", {u"d1"}, DatatypeCode::text},
    {"NothingBeforeTheBlankAndATime", u"", u" 1:2:3", {u"1:2:3"}, DatatypeCode::text},
    {"NothingAfterTheBlank", u"", u"d1 ", {u"d1"}, DatatypeCode::text},
    {"NothingAfterTheBlankOfATime", u"", u"1:2:3  ", {u"1:2:3"}, DatatypeCode::text},
};

class DateLadder : public testing::TestWithParam<LadderCase> {};
TEST_P(DateLadder, AsksInOrder) {
  date_check = [](const std::u16string& text) { return GetParam().dates.count(text) > 0; };
  const ExactText text(GetParam().text);
  EXPECT_EQ(name_of(classify_field(text.field(), GetParam().whitespace)), name_of(GetParam().code));
}
INSTANTIATE_TEST_SUITE_P(Table, DateLadder, testing::ValuesIn(kLadderCases),
                         testing_support::ByRule());

TEST(DateLadderExceptions, AThrowForTheWholeTextLeavesItsParts) {
  date_check = [](const std::u16string& text) {
    if (text.find(u' ') != std::u16string::npos) throw std::runtime_error("too long");
    return text == u"d1";
  };
  const ExactText date_first(u"d1 1:2:3");
  const ExactText time_first(u"1:2:3 d1");
  EXPECT_EQ(name_of(classify_field(date_first.field(), kBlanks)), "datetime");
  EXPECT_EQ(name_of(classify_field(time_first.field(), kBlanks)), "datetime");
}

// --- cost ----------------------------------------------------------------------------------------

std::size_t checks_for_lines_of_dates(std::size_t lines) {
  date_check = [](const std::u16string&) { return true; };
  std::u16string units = u"when\n";
  for (std::size_t i = 0; i < lines; ++i) units += u"d1\n";
  const ExactText text(units);
  parser::options options;
  WholeLines strategy(options);
  strategy.header_lines(0);
  strategy.populate_fields(text.field(), lines + 1);
  date_checks = 0;
  EXPECT_EQ(strategy.valuation().date_columns, 1u);
  return date_checks;
}

TEST(InspectionCost, AColumnWithAClassIsNotInspectedAgain) {
  EXPECT_EQ(checks_for_lines_of_dates(1000), checks_for_lines_of_dates(2));
}

// --- a thread that ends inside the date check ----------------------------------------------------

// What a thread does, and what happened to it.
struct Errand {
  std::function<void()> work;
  bool came_back = false;  // `work` returned
  bool unwound = false;    // the frame around `work` was left
};

struct LeavingMark {
  bool& left;
  ~LeavingMark() { left = true; }
};

void* run_errand(void* argument) {
  auto* errand = static_cast<Errand*>(argument);
  const LeavingMark mark{errand->unwound};
  errand->work();
  errand->came_back = true;
  return nullptr;
}

// Runs the errand on a new thread and returns the exit value of the thread.
void* result_of(Errand& errand) {
  pthread_t thread{};
  EXPECT_EQ(pthread_create(&thread, nullptr, run_errand, &errand), 0);
  void* result = nullptr;
  EXPECT_EQ(pthread_join(thread, &result), 0);
  return result;
}

int exit_value = 0;

struct UnwindCase {
  const char* rule;
  DateCheck check;
  void* result;
};
std::ostream& operator<<(std::ostream& out, const UnwindCase& row) { return out << row.rule; }

const UnwindCase kUnwindCases[] = {
    {"ThreadExit", [](const std::u16string&) -> bool { pthread_exit(&exit_value); }, &exit_value},
    {"ThreadCancellation",
     [](const std::u16string&) {
       pthread_cancel(pthread_self());
       pthread_testcancel();
       return true;
     },
     PTHREAD_CANCELED},
};

class ForcedUnwind : public testing::TestWithParam<UnwindCase> {
 protected:
  void SetUp() override { date_check = GetParam().check; }

  void expect_to_pass(std::function<void()> work) {
    Errand errand;
    errand.work = std::move(work);
    EXPECT_EQ(result_of(errand), GetParam().result);
    EXPECT_FALSE(errand.came_back);
    EXPECT_TRUE(errand.unwound);
  }
};

TEST_P(ForcedUnwind, PassesTheDateCheck) {
  const ExactText text(u"2024-03-01");
  expect_to_pass([&] { safe_is_datetime(text.field()); });
}

TEST_P(ForcedUnwind, PassesTheClassificationOfAField) {
  const ExactText text(u" \"2024-03-01 \"\" and a text too long for the inside of the field\"");
  expect_to_pass([&] { classify_field(text.field(), kBlanks); });
}

TEST_P(ForcedUnwind, PassesAValuation) {
  const ExactText text(u"when\n2024-03-01\n2024-03-02\n");
  parser::options options;
  WholeLines strategy(options);
  strategy.header_lines(0);
  strategy.populate_fields(text.field(), 10);
  expect_to_pass([&] { strategy.valuation(); });
  EXPECT_EQ(strategy.valuation_.typed_columns, 0u);
}

INSTANTIATE_TEST_SUITE_P(Table, ForcedUnwind, testing::ValuesIn(kUnwindCases),
                         testing_support::ByRule());

}  // namespace
}  // namespace textio

int main(int argc, char** argv) {
  testing::InitGoogleTest(&argc, argv);
  return RUN_ALL_TESTS();
}
