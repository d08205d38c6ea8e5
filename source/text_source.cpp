#include "source/text_source.hpp"

namespace textio {

BufferManager::~BufferManager() = default;
TextSource::~TextSource() = default;

}  // namespace textio
