#include <vltextstream/options/option_errors.hpp>
#include <vltextstream/options/parser_options.hpp>
#include <vltextstream/standalone/services/array.hpp>
#include "support/option_calls.hpp"
#include "support/rule_name.hpp"

#include <gtest/gtest.h>
#include <boost/exception/all.hpp>

#include <cstdint>
#include <exception>
#include <memory>
#include <ostream>
#include <string>
#include <thread>
#include <type_traits>
#include <vector>

namespace textio {
namespace {

using standalone::make_array;
using standalone::make_text_cell;
using testing_support::apply_pairs;
using testing_support::error_text;
using testing_support::OptionPair;
using testing_support::readable;

// Whether the exception can be caught as `Error` and as each of its two interfaces.
template <typename Error>
bool is_caught_as(void (*rethrow)(const void*), const void* pointer) {
  int caught = 0;
  try {
    rethrow(pointer);
  } catch (const Error&) {
    ++caught;
  } catch (...) {
  }
  try {
    rethrow(pointer);
  } catch (const std::exception&) {
    ++caught;
  } catch (...) {
  }
  try {
    rethrow(pointer);
  } catch (const MessageIdentifiedError&) {
    ++caught;
  } catch (...) {
  }
  return caught == 3;
}

void rethrow_boost(const void* pointer) {
  boost::rethrow_exception(*static_cast<const boost::exception_ptr*>(pointer));
}
void rethrow_standard(const void* pointer) {
  std::rethrow_exception(*static_cast<const std::exception_ptr*>(pointer));
}

struct ErrorCase {
  const char* rule;  // the name of the message
  std::vector<OptionPair> pairs;
  bool odd;
  const char* arguments;
  bool (*is_caught)(void (*)(const void*), const void*);
};
std::ostream& operator<<(std::ostream& out, const ErrorCase& row) { return out << row.rule; }

const ErrorCase kErrors[] = {
    {"OddNumberNVPairs", {}, true, "", is_caught_as<options::OddNumberNVPairs>},
    {"UnknownParameter",
     {{u"D\u00e9lim", make_array(1.0)}},
     false,
     "u\"D\\u00E9lim\"",
     is_caught_as<options::UnknownParameter>},
    {"ExpectedNonNegativeScalarInt",
     {{u"NumVariables", make_array(-1.0)}},
     false,
     "",
     is_caught_as<options::ExpectedNonNegativeScalarInt>},
    {"ExpectedPositiveScalarInt",
     {{u"DataLine", make_array(0.0)}},
     false,
     "",
     is_caught_as<options::ExpectedPositiveScalarInt>},
    {"ExpectedScalarLogical",
     {{u"IsFile", make_array(1.0)}},
     false,
     "",
     is_caught_as<options::ExpectedScalarLogical>},
    {"CommentStyleSize",
     {{u"CommentStyle", make_text_cell({u"a", u"b", u"c"})}},
     false,
     "",
     is_caught_as<options::CommentStyleSize>},
    {"DelimiterType",
     {{u"Delimiter", make_array(1.0)}},
     false,
     "",
     is_caught_as<options::DelimiterType>},
    {"BadTextFlag",
     {{u"TextType", make_array(u"zzz")}},
     false,
     "\"'char', 'string'\"",
     is_caught_as<options::BadTextFlag>},
    {"InvalidStringProperty",
     {{u"Encoding", make_array(1.0)}},
     false,
     "\"Encoding\"",
     is_caught_as<options::InvalidStringProperty>},
    {"InvalidStringOrCellStringProperty",
     {{u"LineEnding", make_array(1.0)}},
     false,
     "\"EndOfLine\"",
     is_caught_as<options::InvalidStringOrCellStringProperty>},
    {"InvalidEscapeSequence",
     {{u"TreatAsEmpty", make_array(u"\\z")}},
     false,
     "\"TreatAsMissing\"",
     is_caught_as<options::InvalidEscapeSequence>},
};

class RaisedOptionError : public testing::TestWithParam<ErrorCase> {
 protected:
  static void raise() {
    parser::options record;
    if (GetParam().odd) {
      options::set_parser_options(nullptr, 1, record);
    } else {
      apply_pairs(record, GetParam().pairs);
    }
  }
  static std::string expected() { return error_text(GetParam().rule, GetParam().arguments); }
};

TEST_P(RaisedOptionError, HasItsIdentifierAndArguments) {
  try {
    raise();
    FAIL() << "nothing was raised";
  } catch (const MessageIdentifiedError& error) {
    EXPECT_EQ(readable(error), expected());
  }
}

TEST_P(RaisedOptionError, IsAStandardExceptionThatSaysItsIdentifier) {
  try {
    raise();
    FAIL() << "nothing was raised";
  } catch (const std::exception& error) {
    EXPECT_EQ(std::string(error.what()), std::string("VELLUM:textio:textio:") + GetParam().rule);
    const auto* message = dynamic_cast<const MessageIdentifiedError*>(&error);
    ASSERT_NE(message, nullptr);
    EXPECT_EQ(readable(*message), expected());
  }
}

TEST_P(RaisedOptionError, IsKeptAsAStandardPointerAndRaisedAgainElsewhere) {
  std::exception_ptr kept;
  try {
    raise();
  } catch (...) {
    kept = std::current_exception();
  }
  ASSERT_TRUE(kept);
  std::string text;
  bool is_whole = false;
  std::thread([&] {
    is_whole = GetParam().is_caught(rethrow_standard, &kept);
    text = testing_support::error_of([&] { std::rethrow_exception(kept); });
  }).join();
  EXPECT_TRUE(is_whole);
  EXPECT_EQ(text, expected());
}

TEST_P(RaisedOptionError, IsCopiedByBoostAndRaisedAgainElsewhere) {
  boost::exception_ptr kept;
  try {
    raise();
  } catch (...) {
    kept = boost::current_exception();
  }
  ASSERT_TRUE(kept);
  std::string text;
  bool is_whole = false;
  std::thread([&] {
    is_whole = GetParam().is_caught(rethrow_boost, &kept);
    text = testing_support::error_of([&] { boost::rethrow_exception(kept); });
  }).join();
  EXPECT_TRUE(is_whole);
  EXPECT_EQ(text, expected());
}

TEST_P(RaisedOptionError, IsCopiedByBoostFromItsInterfaceToo) {
  boost::exception_ptr kept;
  try {
    raise();
  } catch (const MessageIdentifiedError&) {
    kept = boost::current_exception();
  }
  EXPECT_TRUE(GetParam().is_caught(rethrow_boost, &kept));
}

TEST_P(RaisedOptionError, TakesErrorInformationOfTheCaller) {
  using Place = boost::error_info<struct PlaceTag, std::string>;
  boost::exception_ptr kept;
  try {
    try {
      raise();
    } catch (boost::exception& error) {
      error << Place("second file");
      throw;
    }
  } catch (...) {
    kept = boost::current_exception();
  }
  ASSERT_TRUE(kept);
  try {
    boost::rethrow_exception(kept);
  } catch (const boost::exception& error) {
    const std::string* place = boost::get_error_info<Place>(error);
    ASSERT_NE(place, nullptr);
    EXPECT_EQ(*place, "second file");
  } catch (...) {
    FAIL() << "carries no information";
  }
  EXPECT_TRUE(GetParam().is_caught(rethrow_boost, &kept));
}

INSTANTIATE_TEST_SUITE_P(Table, RaisedOptionError, testing::ValuesIn(kErrors),
                         testing_support::ByRule());

// --- the classes ---------------------------------------------------------------------------------

template <typename Error>
class OptionErrorClass : public testing::Test {};

template <typename Error>
std::string name_of();
#define TEXTIO_TEST_NAME(Name)            \
  template <>                             \
  std::string name_of<options::Name>() {  \
    return "VELLUM:textio:textio:" #Name; \
  }                                       \
  static_assert(std::is_same_v<options::Name, options::OptionError<VELLUM::textio::textio::Name>>)
TEXTIO_TEST_NAME(OddNumberNVPairs);
TEXTIO_TEST_NAME(UnknownParameter);
TEXTIO_TEST_NAME(ExpectedNonNegativeScalarInt);
TEXTIO_TEST_NAME(ExpectedPositiveScalarInt);
TEXTIO_TEST_NAME(ExpectedScalarLogical);
TEXTIO_TEST_NAME(CommentStyleSize);
TEXTIO_TEST_NAME(DelimiterType);
TEXTIO_TEST_NAME(BadTextFlag);
TEXTIO_TEST_NAME(InvalidStringProperty);
TEXTIO_TEST_NAME(InvalidStringOrCellStringProperty);
TEXTIO_TEST_NAME(InvalidEscapeSequence);
#undef TEXTIO_TEST_NAME

using AllErrors =
    testing::Types<options::OddNumberNVPairs, options::UnknownParameter,
                   options::ExpectedNonNegativeScalarInt, options::ExpectedPositiveScalarInt,
                   options::ExpectedScalarLogical, options::CommentStyleSize,
                   options::DelimiterType, options::BadTextFlag, options::InvalidStringProperty,
                   options::InvalidStringOrCellStringProperty, options::InvalidEscapeSequence>;

struct ErrorName {
  template <typename Error>
  static std::string GetName(int) {
    const std::string name = name_of<Error>();
    return name.substr(name.rfind(':') + 1);
  }
};
TYPED_TEST_SUITE(OptionErrorClass, AllErrors, ErrorName);

TYPED_TEST(OptionErrorClass, DerivesFromBothInterfaces) {
  EXPECT_TRUE((std::is_base_of_v<std::exception, TypeParam>));
  EXPECT_TRUE((std::is_base_of_v<MessageIdentifiedError, TypeParam>));
  EXPECT_TRUE((std::is_convertible_v<TypeParam*, std::exception*>));
  EXPECT_TRUE((std::is_convertible_v<TypeParam*, MessageIdentifiedError*>));
  EXPECT_TRUE(std::is_copy_constructible_v<TypeParam>);
  EXPECT_TRUE(std::is_copy_assignable_v<TypeParam>);
  EXPECT_FALSE((std::is_convertible_v<std::vector<MessageArgument>, TypeParam>));
}

TYPED_TEST(OptionErrorClass, SaysItsIdentifier) {
  const TypeParam error;
  EXPECT_EQ(error.identifier(), name_of<TypeParam>());
  EXPECT_EQ(std::string(error.what()), name_of<TypeParam>());
  EXPECT_TRUE(error.arguments().empty());
}

TYPED_TEST(OptionErrorClass, CarriesArgumentsOfEveryKindInTheirOrder) {
  const TypeParam error({std::u16string(u"w"), std::string("n"), std::int64_t{-7}});
  EXPECT_EQ(readable(error), name_of<TypeParam>() + "(u\"w\", \"n\", -7)");
}

TYPED_TEST(OptionErrorClass, CopiesOutliveTheOriginal) {
  auto original = std::make_unique<TypeParam>(
      std::vector<MessageArgument>{std::string(100, 'x'), std::u16string(100, u'y')});
  const TypeParam copy(*original);
  TypeParam assigned;
  assigned = *original;
  const std::string expected = readable(*original);
  original.reset();
  EXPECT_EQ(readable(copy), expected);
  EXPECT_EQ(readable(assigned), expected);
  EXPECT_EQ(std::string(copy.what()), name_of<TypeParam>());
}

TYPED_TEST(OptionErrorClass, IsDestroyedThroughItsInterface) {
  const std::unique_ptr<MessageIdentifiedError> error =
      std::make_unique<TypeParam>(std::vector<MessageArgument>{std::string(100, 'x')});
  EXPECT_EQ(error->arguments().size(), 1U);
}

}  // namespace
}  // namespace textio
