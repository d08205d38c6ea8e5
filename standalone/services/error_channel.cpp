#include <vltextstream/host/error_channel.hpp>

namespace textio {

MessageIdentifiedError::~MessageIdentifiedError() = default;

// A stand-alone program has no better way to raise an error than the exception that the library
// throws when this returns.
void report_error(const MessageIdentifiedError& /*error*/) {}

}  // namespace textio
