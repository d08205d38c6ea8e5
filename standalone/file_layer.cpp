#include "host/file_layer.hpp"

#include <cerrno>

#include <sys/stat.h>

#include "standalone/utf_text.hpp"

namespace textio {

// A directory opens for reading like a file, and would look like an empty text.
std::FILE* open_file(const std::u16string& path, const char* mode) {
  if (path.find(u'\0') != path.npos) {
    errno = ENOENT;
    return nullptr;
  }
  std::FILE* const file = std::fopen(standalone::to_utf8(path).c_str(), mode);
  struct stat about {};
  if (file != nullptr && ::fstat(::fileno(file), &about) == 0 && S_ISDIR(about.st_mode)) {
    std::fclose(file);
    errno = EISDIR;
    return nullptr;
  }
  return file;
}

}  // namespace textio
