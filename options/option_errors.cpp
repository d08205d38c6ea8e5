#include <vltextstream/options/option_errors.hpp>

namespace textio::options {
namespace {

namespace tags = VELLUM::textio::textio;

// The identifier of the message that a tag names.
template <typename Tag>
const std::string kIdentifier;
template <>
const std::string kIdentifier<tags::OddNumberNVPairs> = "VELLUM:textio:textio:OddNumberNVPairs";
template <>
const std::string kIdentifier<tags::UnknownParameter> = "VELLUM:textio:textio:UnknownParameter";
template <>
const std::string kIdentifier<tags::ExpectedNonNegativeScalarInt> =
    "VELLUM:textio:textio:ExpectedNonNegativeScalarInt";
template <>
const std::string kIdentifier<tags::ExpectedPositiveScalarInt> =
    "VELLUM:textio:textio:ExpectedPositiveScalarInt";
template <>
const std::string kIdentifier<tags::ExpectedScalarLogical> =
    "VELLUM:textio:textio:ExpectedScalarLogical";
template <>
const std::string kIdentifier<tags::CommentStyleSize> = "VELLUM:textio:textio:CommentStyleSize";
template <>
const std::string kIdentifier<tags::DelimiterType> = "VELLUM:textio:textio:DelimiterType";
template <>
const std::string kIdentifier<tags::BadTextFlag> = "VELLUM:textio:textio:BadTextFlag";
template <>
const std::string kIdentifier<tags::InvalidStringProperty> =
    "VELLUM:textio:textio:InvalidStringProperty";
template <>
const std::string kIdentifier<tags::InvalidStringOrCellStringProperty> =
    "VELLUM:textio:textio:InvalidStringOrCellStringProperty";
template <>
const std::string kIdentifier<tags::InvalidEscapeSequence> =
    "VELLUM:textio:textio:InvalidEscapeSequence";

}  // namespace

template <typename Tag>
const std::string& OptionError<Tag>::identifier() const {
  return kIdentifier<Tag>;
}

template class OptionError<tags::OddNumberNVPairs>;
template class OptionError<tags::UnknownParameter>;
template class OptionError<tags::ExpectedNonNegativeScalarInt>;
template class OptionError<tags::ExpectedPositiveScalarInt>;
template class OptionError<tags::ExpectedScalarLogical>;
template class OptionError<tags::CommentStyleSize>;
template class OptionError<tags::DelimiterType>;
template class OptionError<tags::BadTextFlag>;
template class OptionError<tags::InvalidStringProperty>;
template class OptionError<tags::InvalidStringOrCellStringProperty>;
template class OptionError<tags::InvalidEscapeSequence>;

}  // namespace textio::options
