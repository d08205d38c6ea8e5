// Message-identified errors: an identifier from a catalogue and the values that go into its text.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include <boost/variant.hpp>

#include <vltextstream/host/export.hpp>

namespace textio {

// One value of a message: a whole number, a narrow text or a UTF-16 text.
using MessageArgument = boost::variant<std::int64_t, std::string, std::u16string>;

// What the host reads from an error that is identified by its message.
class VLTEXTSTREAM_IMPORT MessageIdentifiedError {
 public:
  virtual ~MessageIdentifiedError();

  // The catalogue, a colon and the name of the message; lives as long as the error.
  virtual const std::string& identifier() const = 0;

  // The values of the message, in the order of its place-holders.
  virtual const std::vector<MessageArgument>& arguments() const = 0;
};

// Host service: receives an error before it is thrown. A host that has a better way to raise it
// throws from here; otherwise it returns, and the library throws the error itself.
VLTEXTSTREAM_IMPORT void report_error(const MessageIdentifiedError& error);

}  // namespace textio
