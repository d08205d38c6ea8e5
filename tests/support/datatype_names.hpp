// Datatype codes by name, so that a failure says "date" instead of 7.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include <vltextstream/scoring/datatype_code.hpp>

namespace textio::testing_support {

inline std::string name_of(DatatypeCode code) {
  const std::string_view name = to_string(code);
  if (!name.empty()) return std::string(name);
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
