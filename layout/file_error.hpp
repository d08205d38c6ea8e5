// FileError: an input that cannot be read.
#pragma once

#include <stdexcept>

#include <vltextstream/host/export.hpp>

namespace textio::standalone {

// what() names the file and the reason: that of the operating system, what is wrong with compressed
// data, or the limit of bytes.
class VLTEXTSTREAM_EXPORT FileError : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
  ~FileError() override;
};

}  // namespace textio::standalone
