#include <vltextstream/reading/opened_source.hpp>

#include <cerrno>
#include <new>

#include <fmt/format.h>

#include <sys/stat.h>
#include <unistd.h>

#include <vltextstream/host/file_layer.hpp>
#include <vltextstream/layout/detect_input.hpp>
#include <vltextstream/layout/file_error.hpp>
#include <vltextstream/layout/input_text.hpp>
#include <vltextstream/standalone/decoding/utf_text.hpp>
#include <vltextstream/standalone/files/memory_bytes.hpp>
#include <vltextstream/standalone/files/read_problem.hpp>

namespace textio::reading {

using standalone::DetectSettings;
using standalone::FileError;

std::string Source::name() const { return bytes ? "the bytes" : fmt::format("'{}'", path); }

File Source::open() const {
  errno = 0;
  File file(bytes ? standalone::open_bytes(*bytes) : open_file(standalone::from_utf8(path), "rb"));
  if (file) return file;
  if (errno == ENOMEM) throw std::bad_alloc();
  throw FileError(fmt::format("cannot open {}: {}", name(), standalone::read_problem(errno)));
}

bool Source::is_repeatable() const {
  if (bytes) return true;
  struct stat about {};
  const int failed = path == "-" ? ::fstat(STDIN_FILENO, &about) : ::stat(path.c_str(), &about);
  return failed == 0 && S_ISREG(about.st_mode);
}

Opened detected(Source source, const DetectSettings& settings) {
  Opened opened(std::move(source));
  if (opened.source.bytes) {
    standalone::InputText input(standalone::FileContent{*opened.source.bytes}, settings);
    opened.layout = detect_input(input, settings);
  } else if (opened.source.is_repeatable()) {
    opened.layout = standalone::detect_layout(opened.source.path, settings);
  } else {
    standalone::InputText input(opened.source.open().release(), opened.source.name(), settings);
    opened.layout = detect_input(input, settings);
    opened.file.reset(input.release());
    if (!opened.file || ::fseeko64(opened.file.get(), 0, SEEK_SET) != 0) {
      throw FileError(fmt::format("cannot read {} from its start again", opened.source.name()));
    }
  }
  return opened;
}

}  // namespace textio::reading
