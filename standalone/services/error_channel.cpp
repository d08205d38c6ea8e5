#include <vltextstream/host/error_channel.hpp>

namespace textio {

MessageIdentifiedError::~MessageIdentifiedError() = default;

// A stand-alone program has no better error channel than the exception that the library throws
// after this returns.
void report_error(const MessageIdentifiedError& /*error*/) {}

}  // namespace textio
