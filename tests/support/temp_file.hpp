// A temporary file, deleted with the object.
#pragma once

#include <string>
#include <string_view>

#include <vltextstream/standalone/decoding/utf_text.hpp>
#include "support/temp_folder.hpp"

namespace textio::testing_support {

class TempFile {
 public:
  explicit TempFile(std::string_view bytes) : path_(folder_.file("text", bytes)) {}

  std::u16string path() const { return standalone::from_utf8(path_); }

 private:
  TempFolder folder_;
  std::string path_;
};

}  // namespace textio::testing_support
