// What is wrong with a command line, or what it asks for instead of work.
#pragma once

#include <stdexcept>
#include <string>

namespace textio::tool {

// The command line asks for a text, what(), and nothing else.
class TextWanted : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

// The command line cannot be understood.
class UsageError : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

// The value of an option is wrong.
class BadArgument : public std::runtime_error {
 public:
  BadArgument(const std::string& flag, const std::string& expected)
      : std::runtime_error(flag + ": " + expected) {}
};

}  // namespace textio::tool
