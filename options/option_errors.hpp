// The errors of option parsing: one class per message.
//
//   try {
//     options::set_parser_options(args, count, record);
//   } catch (const options::UnknownParameter& error) {
//     error.arguments()[0];            // the name, as UTF-16 text
//   }
//
// Every class derives from std::exception and from the host's MessageIdentifiedError. What the
// library reports and throws is also a boost::exception with the throw location. It can be kept
// with boost::current_exception (or std::current_exception) and thrown again elsewhere.
#pragma once

#include <exception>
#include <string>
#include <utility>
#include <vector>

#include <vltextstream/host/error_channel.hpp>
#include <vltextstream/host/export.hpp>

// One empty type per message of the catalogue "VELLUM:textio:textio".
namespace VELLUM::textio::textio {

struct VLTEXTSTREAM_EXPORT OddNumberNVPairs {};
struct VLTEXTSTREAM_EXPORT UnknownParameter {};
struct VLTEXTSTREAM_EXPORT ExpectedNonNegativeScalarInt {};
struct VLTEXTSTREAM_EXPORT ExpectedPositiveScalarInt {};
struct VLTEXTSTREAM_EXPORT ExpectedScalarLogical {};
struct VLTEXTSTREAM_EXPORT CommentStyleSize {};
struct VLTEXTSTREAM_EXPORT DelimiterType {};
struct VLTEXTSTREAM_EXPORT BadTextFlag {};
struct VLTEXTSTREAM_EXPORT InvalidStringProperty {};
struct VLTEXTSTREAM_EXPORT InvalidStringOrCellStringProperty {};
struct VLTEXTSTREAM_EXPORT InvalidEscapeSequence {};

}  // namespace VELLUM::textio::textio

namespace textio::options {

// The error with the message that `Tag` names.
template <typename Tag>
class VLTEXTSTREAM_EXPORT OptionError : public std::exception, public MessageIdentifiedError {
 public:
  explicit OptionError(std::vector<MessageArgument> arguments = {})
      : arguments_(std::move(arguments)) {}
  OptionError(const OptionError&) = default;
  OptionError& operator=(const OptionError&) = default;
  ~OptionError() override = default;

  // "VELLUM:textio:textio:" followed by the name of the message.
  const std::string& identifier() const override;

  const std::vector<MessageArgument>& arguments() const override { return arguments_; }

  // The identifier, because the message texts belong to the host.
  const char* what() const noexcept override { return identifier().c_str(); }

 private:
  std::vector<MessageArgument> arguments_;
};

using OddNumberNVPairs = OptionError<VELLUM::textio::textio::OddNumberNVPairs>;
using UnknownParameter = OptionError<VELLUM::textio::textio::UnknownParameter>;
using ExpectedNonNegativeScalarInt =
    OptionError<VELLUM::textio::textio::ExpectedNonNegativeScalarInt>;
using ExpectedPositiveScalarInt = OptionError<VELLUM::textio::textio::ExpectedPositiveScalarInt>;
using ExpectedScalarLogical = OptionError<VELLUM::textio::textio::ExpectedScalarLogical>;
using CommentStyleSize = OptionError<VELLUM::textio::textio::CommentStyleSize>;
using DelimiterType = OptionError<VELLUM::textio::textio::DelimiterType>;
using BadTextFlag = OptionError<VELLUM::textio::textio::BadTextFlag>;
using InvalidStringProperty = OptionError<VELLUM::textio::textio::InvalidStringProperty>;
using InvalidStringOrCellStringProperty =
    OptionError<VELLUM::textio::textio::InvalidStringOrCellStringProperty>;
using InvalidEscapeSequence = OptionError<VELLUM::textio::textio::InvalidEscapeSequence>;

extern template class OptionError<VELLUM::textio::textio::OddNumberNVPairs>;
extern template class OptionError<VELLUM::textio::textio::UnknownParameter>;
extern template class OptionError<VELLUM::textio::textio::ExpectedNonNegativeScalarInt>;
extern template class OptionError<VELLUM::textio::textio::ExpectedPositiveScalarInt>;
extern template class OptionError<VELLUM::textio::textio::ExpectedScalarLogical>;
extern template class OptionError<VELLUM::textio::textio::CommentStyleSize>;
extern template class OptionError<VELLUM::textio::textio::DelimiterType>;
extern template class OptionError<VELLUM::textio::textio::BadTextFlag>;
extern template class OptionError<VELLUM::textio::textio::InvalidStringProperty>;
extern template class OptionError<VELLUM::textio::textio::InvalidStringOrCellStringProperty>;
extern template class OptionError<VELLUM::textio::textio::InvalidEscapeSequence>;

}  // namespace textio::options
