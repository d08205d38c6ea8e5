// Checks the status of ICU's functions, so that a lack of memory is not taken for an answer about
// the text.
//
//   converter = ucnv_open("Shift_JIS", &status);
//   throw_if_out_of_memory(status);
//
// Errors  std::bad_alloc when `status` says that memory ran out; any other failure passes.
#pragma once

#include <new>

#include <unicode/utypes.h>

namespace textio::standalone {

inline void throw_if_out_of_memory(UErrorCode status) {
  if (status == U_MEMORY_ALLOCATION_ERROR) throw std::bad_alloc();
}

}  // namespace textio::standalone
