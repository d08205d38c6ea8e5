// GivenMismatch: what the caller says about a text is not so.
#pragma once

#include <stdexcept>

#include <vltextstream/host/export.hpp>

namespace textio::standalone {

// what() begins with the name of the option: "VariableNamesLine: Expected a line from 1 to 7, got 9."
class VLTEXTSTREAM_EXPORT GivenMismatch : public std::invalid_argument {
 public:
  using std::invalid_argument::invalid_argument;
  ~GivenMismatch() override;
};

}  // namespace textio::standalone
