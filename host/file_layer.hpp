// Opening files, a service of the host.
#pragma once

#include <cstdio>
#include <string>

#include <vltextstream/host/export.hpp>

namespace textio {

// Opens the file at the UTF-16 `path` as a C stream for reading; `mode` is that of std::fopen.
//
// The host of this package decompresses gzip and zstd, which it recognises by the first bytes. "-"
// is standard input, which stays open. Every stream, a pipe included, can seek back to its start
// until more than 16 MiB have been read; after that the seek fails with ESPIPE.
//
// Ownership  the caller closes the stream with std::fclose.
// Errors     a null pointer, with the reason in errno, if the file cannot be opened for reading
//            text (a directory included; EINVAL for a mode that writes). Numbers above 4095 are not
//            errors of the operating system: they say what is wrong with the data. So does the
//            errno of a failed read. Exceptions reach the caller of init_stream.
// Cost       seeking back in compressed data decodes them again from the start.
VLTEXTSTREAM_IMPORT std::FILE* open_file(const std::u16string& path, const char* mode);

}  // namespace textio
