// Opening files, a service of the host.
#pragma once

#include <cstdio>
#include <string>

#include <vltextstream/host/export.hpp>

namespace textio {

// Opens the file at the UTF-16 `path` as a C stream; `mode` is that of std::fopen.
//
// Ownership  the caller closes the stream with std::fclose.
// Errors     a null pointer, with the reason in errno, when the file cannot be opened for reading
//            text (a directory included). What it throws reaches the caller of init_stream.
VLTEXTSTREAM_IMPORT std::FILE* open_file(const std::u16string& path, const char* mode);

}  // namespace textio
