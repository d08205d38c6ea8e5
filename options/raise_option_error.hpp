// The one way in which option errors leave the library.
#pragma once

#include <boost/throw_exception.hpp>

#include <vltextstream/host/error_channel.hpp>
#include <vltextstream/options/option_errors.hpp>

namespace textio::options {

// Hands the error to the host's error channel and throws it when that returns.
template <typename Error>
[[noreturn]] void raise_option_error(const Error& error) {
  report_error(error);
  boost::throw_exception(error);
}

}  // namespace textio::options
