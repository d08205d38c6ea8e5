// The only way in which option errors leave the library.
#pragma once

#include <boost/assert/source_location.hpp>
#include <boost/throw_exception.hpp>

#include <vltextstream/host/error_channel.hpp>
#include <vltextstream/options/option_errors.hpp>

namespace textio::options {

// Reports the error to the host's error channel, and throws the reported object if the channel
// returns. The object is a boost::exception, too, with the function, file and line of the caller.
// A default argument has these from compiler functions: macros would name this header.
template <typename Error>
[[noreturn]] void raise_option_error(const Error& error,
                                     const boost::source_location& caller =
                                         boost::source_location(__builtin_FILE(), __builtin_LINE(),
                                                                __builtin_FUNCTION())) {
  const boost::wrapexcept<Error> raised(error, caller);
  report_error(raised);
  throw raised;  // NOLINT: a copy of the reported object
}

}  // namespace textio::options
