// Real files for tests: written in the folder for temporary files, removed with the object.
#pragma once

#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <stdexcept>
#include <string>
#include <string_view>

namespace textio::testing_support {

class TempFile {
 public:
  explicit TempFile(std::string_view bytes) : path_(new_file()) {
    std::ofstream out(path_, std::ios::binary);
    out.write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
    out.close();
    if (!out) throw std::runtime_error("cannot write " + path_.string());
  }
  TempFile(const TempFile&) = delete;
  TempFile& operator=(const TempFile&) = delete;
  ~TempFile() {
    std::error_code ignored;
    std::filesystem::remove(path_, ignored);
  }

  std::u16string path() const { return path_.u16string(); }

 private:
  static std::filesystem::path new_file() {
    std::string name = (std::filesystem::temp_directory_path() / "text-XXXXXX").string();
    const int descriptor = mkstemp(name.data());
    if (descriptor < 0) throw std::runtime_error("cannot make " + name);
    close(descriptor);
    return name;
  }

  std::filesystem::path path_;
};

}  // namespace textio::testing_support
