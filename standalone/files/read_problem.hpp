// Why an input cannot be read, in words; also where the operating system has no number for it.
//
//   errno = kDataDamaged;
//   read_problem(errno);            // "the compressed data are damaged"
//   read_problem(ENOENT);           // "No such file or directory"
//
// Units      the numbers are values of errno, above 4095, the largest that a system call can give:
//            a disk that fails may well answer ENODATA or EBADMSG, and is not a damaged archive.
#pragma once

#include <string>

namespace textio::standalone {

enum ReadProblem : int {
  kDataDamaged = 5001,   // a wrong checksum, length or code in compressed data, or foreign bytes
  kDataEndTooEarly,      // the end of the file inside compressed data
  kDataNeedMoreMemory,   // a window larger than this host allows
  kDataNeedADictionary,  // compressed with the help of a file that is not at hand
  kStandardInputIsGone,  // handed out before, and cannot be read twice
  kFormatBzip2,          // compressed in ways that are not read here
  kFormatLz4,
  kFormatXz,
  kFormatZip,
  kCompressedTwice,  // an archive in an archive
  kTooManyBytes      // more than the limit that was set
};

// What `error` says, a number of the operating system or one of the above.
std::string read_problem(int error);

}  // namespace textio::standalone
