// Names of encodings: which are known, and the error message for those that are not.
//
//   canonical_encoding("latin1");   // "ISO-8859-1", ICU's own name
//   canonical_encoding("utf-9");    // throws: unknown encoding 'utf-9' (did you mean 'UTF-8'?)
//
// Threads  safe.
#pragma once

#include <string>

namespace textio::standalone {

// ICU's own name of an encoding. Every name and alias in ICU's table is known; case, punctuation
// and blanks do not matter. ICU's options after a comma are known only where the table has them.
// Throws std::invalid_argument otherwise, with a sentence that repeats the name (shortened if it is
// long, with control characters escaped) and suggests the nearest one.
std::string canonical_encoding(const std::string& name);

// The best known spelling of the name nearest to `name`; empty if none is near.
std::string nearest_encoding(const std::string& name);

}  // namespace textio::standalone
