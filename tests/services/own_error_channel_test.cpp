// A program replaces the error channel of the host: it sees every option error first, and raises it
// in its own way or lets the library throw it.
#include <string>
#include <vector>

#include <gtest/gtest.h>
#include <boost/exception_ptr.hpp>

#include <vltextstream/vltextstream.hpp>

namespace {

std::vector<std::string> reported;
bool raises_by_itself = false;

struct RaisedByTheHost {};

}  // namespace

namespace textio {

void report_error(const MessageIdentifiedError& error) {
  reported.push_back(error.identifier());
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

// A program may make and throw the errors itself, and classes of its own from them.
struct StrictDelimiterType : options::DelimiterType {
  const char* what() const noexcept override { return "strict"; }
};

TEST(OptionErrors, MayBeThrownAndExtendedByAProgram) {
  EXPECT_THROW(throw StrictDelimiterType(), options::DelimiterType);
  const boost::exception_ptr copy = boost::copy_exception(options::DelimiterType());
  EXPECT_THROW(boost::rethrow_exception(copy), MessageIdentifiedError);
  EXPECT_EQ(StrictDelimiterType().identifier(), "VELLUM:textio:textio:DelimiterType");
}

TEST(OwnErrorChannel, HearsNothingWhenNothingIsWrong) {
  reported.clear();
  set_option(u"Delimiter", make_array(u";"));
  EXPECT_TRUE(reported.empty());
}

}  // namespace
}  // namespace textio
