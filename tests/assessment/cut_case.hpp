// A text and the records into which one way to cut it cuts it, for tables of tests.
#pragma once

#include <ostream>
#include <string>

namespace textio::testing_support {

struct CutCase {
  const char* rule;
  std::u16string text;
  std::string records;
};
inline std::ostream& operator<<(std::ostream& out, const CutCase& row) { return out << row.rule; }

}  // namespace textio::testing_support
