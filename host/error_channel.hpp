// Message-identified errors: an identifier from a message catalogue, and the values for its text.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include <boost/variant.hpp>

#include <vltextstream/host/export.hpp>

namespace textio {

// One value in a message: a whole number, a narrow text or a UTF-16 text.
using MessageArgument = boost::variant<std::int64_t, std::string, std::u16string>;

// The host's view of an error that its message identifies.
class VLTEXTSTREAM_IMPORT MessageIdentifiedError {
 public:
  virtual ~MessageIdentifiedError();

  // The catalogue, a colon and the name of the message. Valid as long as the error.
  virtual const std::string& identifier() const = 0;

  // The values for the message, in the order of its placeholders.
  virtual const std::vector<MessageArgument>& arguments() const = 0;
};

// Host service: receives an error before it is thrown. A host with its own way of raising errors
// throws from here. If it returns, the library throws a copy of `error`. The object is also a
// std::exception and a boost::exception; the latter has the throw_function, throw_file and
// throw_line of the check that failed.
VLTEXTSTREAM_IMPORT void report_error(const MessageIdentifiedError& error);

}  // namespace textio
