#include <vltextstream/layout/file_error.hpp>

namespace textio::standalone {

FileError::~FileError() = default;

}  // namespace textio::standalone
