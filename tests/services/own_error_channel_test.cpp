// A program replaces the error channel of the host: it sees every option error first, and either
// raises it in its own way or lets the library throw it.
#include <ostream>
#include <string>
#include <typeinfo>
#include <vector>

#include <gtest/gtest.h>
#include <boost/exception/get_error_info.hpp>
#include <boost/exception/info.hpp>
#include <boost/exception_ptr.hpp>

#include <vltextstream/vltextstream.hpp>

#include "support/rule_name.hpp"

namespace {

// An error as the channel or a handler receives it.
struct Received {
  std::string identifier;
  std::string type;
  std::string function;  // "" without a throw location
  std::string file;
  int line = 0;
};

std::vector<std::string> reported;
std::vector<Received> received;
bool raises_by_itself = false;

template <typename Info, typename Value>
Value info_of(const boost::exception& error, Value none) {
  const auto* const value = boost::get_error_info<Info>(error);
  return value == nullptr ? none : Value(*value);
}

Received received_as(const textio::MessageIdentifiedError& error) {
  Received result{error.identifier(), typeid(error).name(), "", "", 0};
  if (const auto* const carrier = dynamic_cast<const boost::exception*>(&error)) {
    result.function = info_of<boost::throw_function>(*carrier, std::string());
    result.file = info_of<boost::throw_file>(*carrier, std::string());
    result.line = info_of<boost::throw_line>(*carrier, 0);
  }
  return result;
}

struct RaisedByTheHost {};

}  // namespace

namespace textio {

void report_error(const MessageIdentifiedError& error) {
  reported.push_back(error.identifier());
  received.push_back(received_as(error));
  if (raises_by_itself) throw RaisedByTheHost();
}

namespace {

using standalone::Array;
using standalone::make_array;

void set_option(const char16_t* name, const Array& value) {
  const Array option = make_array(name);
  const hxArray* pair[] = {option.get(), value.get()};
  parser::options record;
  options::set_parser_options(pair, 2, record);
}

TEST(OwnErrorChannel, SeesAnErrorBeforeItIsThrown) {
  reported.clear();
  raises_by_itself = false;
  EXPECT_THROW(set_option(u"IsFile", make_array(1)), options::ExpectedScalarLogical);
  EXPECT_EQ(reported, std::vector<std::string>{"VELLUM:textio:textio:ExpectedScalarLogical"});
}

TEST(OwnErrorChannel, MayRaiseTheErrorItself) {
  reported.clear();
  raises_by_itself = true;
  EXPECT_THROW(set_option(u"Delim", make_array(u";")), RaisedByTheHost);
  EXPECT_EQ(reported, std::vector<std::string>{"VELLUM:textio:textio:UnknownParameter"});
}

// --- the throw location --------------------------------------------------------------------------

struct LocationCase {
  const char* rule;
  const char16_t* option;
  Array (*value)();
  const char* function;  // that found the error
  const char* file;
};
std::ostream& operator<<(std::ostream& out, const LocationCase& row) { return out << row.rule; }

const LocationCase kLocationCases[] = {
    {"OfAValue", u"IsFile", [] { return make_array(1); }, "to_logical",
     "options/option_values.cpp"},
    {"OfAKeyword", u"TextType", [] { return make_array(u"zzz"); }, "match_choice",
     "options/option_values.cpp"},
    {"OfANumberOfTexts", u"CommentStyle",
     [] {
       return standalone::make_cell({u"a", u"b", u"c"});
     },
     "set_comment_style", "options/set_parser_options.cpp"},
    {"OfAName", u"Delim", [] { return make_array(u";"); }, "set_option",
     "options/set_parser_options.cpp"},
};

class ErrorLocation : public testing::TestWithParam<LocationCase> {};

TEST_P(ErrorLocation, IsThatOfTheCheckInTheReportedAndTheThrownError) {
  received.clear();
  raises_by_itself = false;
  try {
    set_option(GetParam().option, GetParam().value());
    FAIL() << "nothing was thrown";
  } catch (const MessageIdentifiedError& error) {
    received.push_back(received_as(error));
  }
  ASSERT_EQ(received.size(), 2U);
  for (const Received& error : received) {
    EXPECT_NE(error.function.find(GetParam().function), std::string::npos) << error.function;
    EXPECT_TRUE(error.file.ends_with(GetParam().file)) << error.file;
    EXPECT_GT(error.line, 0);
  }
  EXPECT_EQ(received[0].identifier, received[1].identifier);
  EXPECT_EQ(received[0].type, received[1].type);
  EXPECT_EQ(received[0].line, received[1].line);
}

INSTANTIATE_TEST_SUITE_P(Table, ErrorLocation, testing::ValuesIn(kLocationCases),
                         testing_support::ByRule());

// A program may create and throw these errors itself, and derive classes from them.
struct StrictDelimiterType : options::DelimiterType {
  const char* what() const noexcept override { return "strict"; }
};

TEST(OptionErrors, MayBeThrownAndExtendedByAProgram) {
  EXPECT_THROW(throw StrictDelimiterType(), options::DelimiterType);
  const boost::exception_ptr copy = boost::copy_exception(options::DelimiterType());
  EXPECT_THROW(boost::rethrow_exception(copy), MessageIdentifiedError);
  EXPECT_EQ(StrictDelimiterType().identifier(), "VELLUM:textio:textio:DelimiterType");
}

TEST(OwnErrorChannel, ReceivesNothingWithoutAnError) {
  reported.clear();
  set_option(u"Delimiter", make_array(u";"));
  EXPECT_TRUE(reported.empty());
}

}  // namespace
}  // namespace textio
