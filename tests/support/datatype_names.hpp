// Datatype codes by name, so that a failure says "date" instead of 7.
#pragma once

#include <string>
#include <vector>

#include <vltextstream/scoring/datatype_code.hpp>

namespace textio::testing_support {

inline std::string name_of(DatatypeCode code) {
  switch (code) {
    case DatatypeCode::number:
      return "number";
    case DatatypeCode::text:
      return "text";
    case DatatypeCode::datetime:
      return "datetime";
    case DatatypeCode::empty:
      return "empty";
    case DatatypeCode::date:
      return "date";
    case DatatypeCode::duration:
      return "duration";
  }
  return "no code: " + std::to_string(static_cast<unsigned>(code));
}

// The names, separated by blanks.
inline std::string names_of(const std::vector<DatatypeCode>& codes) {
  std::string names;
  for (const DatatypeCode code : codes) {
    if (!names.empty()) names += ' ';
    names += name_of(code);
  }
  return names;
}

}  // namespace textio::testing_support
