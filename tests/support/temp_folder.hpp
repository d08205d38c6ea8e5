// A temporary folder, deleted with all its contents.
//
//   const TempFolder folder;
//   const std::string path = folder.file("t.csv", "x,y\n1,2\n");
//
// Paths are strings of bytes. A name may contain any bytes but "/" and NUL.
#pragma once

#include <filesystem>
#include <fstream>
#include <stdexcept>
#include <string>
#include <string_view>

#include <stdlib.h>

namespace textio::testing_support {

class TempFolder {
 public:
  TempFolder() : path_((std::filesystem::temp_directory_path() / "texts-XXXXXX").string()) {
    if (mkdtemp(path_.data()) == nullptr) throw std::runtime_error("cannot make " + path_);
  }
  TempFolder(const TempFolder&) = delete;
  TempFolder& operator=(const TempFolder&) = delete;
  ~TempFolder() {
    std::error_code ignored;
    std::filesystem::remove_all(path_, ignored);
  }

  const std::string& path() const { return path_; }

  // The path of `name` in the folder, whether it exists or not.
  std::string path_of(const std::string& name) const { return path_ + '/' + name; }

  // Writes a file and returns its path.
  std::string file(const std::string& name, std::string_view bytes) const {
    const std::string path = path_of(name);
    std::ofstream out(path, std::ios::binary);
    out.write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
    out.close();
    if (!out) throw std::runtime_error("cannot write " + path);
    return path;
  }

  // Makes a folder in it and returns its path.
  std::string folder(const std::string& name) const {
    const std::string path = path_of(name);
    std::filesystem::create_directory(path);
    return path;
  }

 private:
  std::string path_;
};

}  // namespace textio::testing_support
