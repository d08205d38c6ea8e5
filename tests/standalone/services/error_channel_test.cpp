#include <vltextstream/host/error_channel.hpp>

#include <gtest/gtest.h>

#include <cstdint>
#include <limits>
#include <memory>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

namespace textio {
namespace {

// An error type of the program, which shares only the interface with the library.
class OwnError : public std::runtime_error, public MessageIdentifiedError {
 public:
  OwnError(std::string identifier, std::vector<MessageArgument> arguments)
      : std::runtime_error(identifier),
        identifier_(std::move(identifier)),
        arguments_(std::move(arguments)) {}

  const std::string& identifier() const override { return identifier_; }
  const std::vector<MessageArgument>& arguments() const override { return arguments_; }

 private:
  std::string identifier_;
  std::vector<MessageArgument> arguments_;
};

const std::int64_t kSmallest = std::numeric_limits<std::int64_t>::min();

TEST(ErrorChannel, ReturnsAndLeavesTheErrorAsItIs) {
  const OwnError error("own:catalogue:WrongValue",
                       {kSmallest, std::string("narrow"), std::u16string(u"w\u00efde")});
  EXPECT_NO_THROW(report_error(error));
  EXPECT_EQ(error.identifier(), "own:catalogue:WrongValue");
  ASSERT_EQ(error.arguments().size(), 3U);
  EXPECT_EQ(boost::get<std::int64_t>(error.arguments()[0]), kSmallest);
  EXPECT_EQ(boost::get<std::string>(error.arguments()[1]), "narrow");
  EXPECT_EQ(boost::get<std::u16string>(error.arguments()[2]), u"w\u00efde");
}

TEST(ErrorChannel, ReturnsForErrorsWithoutArgumentsOrName) {
  EXPECT_NO_THROW(report_error(OwnError("own:catalogue:NoValues", {})));
  EXPECT_NO_THROW(report_error(OwnError("", {})));
}

TEST(ErrorChannel, ReturnsEachTime) {
  const OwnError error("own:catalogue:Again", {std::int64_t{1}});
  for (int i = 0; i < 3; ++i) EXPECT_NO_THROW(report_error(error));
}

TEST(MessageIdentifiedError, IsCaughtByItsInterfaceAndByTheStandardOne) {
  const auto raise = [] { throw OwnError("own:catalogue:Raised", {std::u16string(u"x")}); };
  try {
    raise();
    ADD_FAILURE();
  } catch (const MessageIdentifiedError& error) {
    EXPECT_EQ(error.identifier(), "own:catalogue:Raised");
    EXPECT_EQ(error.arguments().size(), 1U);
  }
  EXPECT_THROW(raise(), std::runtime_error);
}

TEST(MessageIdentifiedError, IsDestroyedThroughItsInterface) {
  const std::unique_ptr<MessageIdentifiedError> error = std::make_unique<OwnError>(
      "own:catalogue:Owned", std::vector<MessageArgument>{std::string(100, 'x')});
  EXPECT_EQ(error->arguments().front().which(), 1);
}

TEST(MessageArgument, KindsAreNumberNarrowTextWideTextInThisOrder) {
  EXPECT_EQ(MessageArgument(std::int64_t{7}).which(), 0);
  EXPECT_EQ(MessageArgument(std::string("7")).which(), 1);
  EXPECT_EQ(MessageArgument(std::u16string(u"7")).which(), 2);
}

}  // namespace
}  // namespace textio
