#include <vltextstream/scoring/datatype_code.hpp>

namespace textio {

std::string_view to_string(DatatypeCode code) {
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
  return "";
}

}  // namespace textio
