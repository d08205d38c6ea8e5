// Opening files, a service of the host.
#pragma once

#include <cstdio>
#include <string>

#include <vltextstream/host/export.hpp>

namespace textio {

// Opens the file at the UTF-16 `path` as a C stream for reading; `mode` is that of std::fopen.
//
// The host of this package hands out the text of what is compressed with gzip or zstd, told by its
// first bytes. "-" is standard input, which stays open. Every stream goes back to its start, also
// that of a pipe, as long as no more than 16 MiB have been read; later that fails with ESPIPE.
//
// Ownership  the caller closes the stream with std::fclose.
// Errors     a null pointer, with the reason in errno, when the file cannot be opened for reading
//            text (a directory included; EINVAL for a mode that writes). Numbers above 4095 are no
//            errors of the operating system but say what is wrong with the data; so does the errno
//            of a read that fails. What it throws reaches the caller of init_stream.
// Cost       seeking back in compressed data means decoding them again from the start.
VLTEXTSTREAM_IMPORT std::FILE* open_file(const std::u16string& path, const char* mode);

}  // namespace textio
