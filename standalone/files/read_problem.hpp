// read_problem: why an input cannot be read, in words; also for reasons without an errno of the
// operating system.
//
//   errno = kDataDamaged;
//   read_problem(errno);            // "the compressed data are damaged"
//   read_problem(ENOENT);           // "No such file or directory"
//
// Units      the numbers are values of errno above 4095, the largest that a system call can return.
//            Existing numbers would be ambiguous: a failing disk may return ENODATA or EBADMSG.
#pragma once

#include <string>

namespace textio::standalone {

enum ReadProblem : int {
  kDataDamaged = 5001,   // a wrong checksum, length or code in compressed data, or other bytes
  kDataEndTooEarly,      // the end of the file inside compressed data
  kDataNeedMoreMemory,   // a window larger than this host allows
  kDataNeedADictionary,  // compressed with a dictionary, which is not available
  kStandardInputIsGone,  // opened before, and cannot be read twice
  kFormatBzip2,          // compressed in formats that are not supported
  kFormatLz4,
  kFormatXz,
  kFormatZip,
  kCompressedTwice,  // an archive in an archive
  kTooManyBytes      // more bytes than the limit
};

// The text for `error`, an errno of the operating system or one of the above.
std::string read_problem(int error);

}  // namespace textio::standalone
