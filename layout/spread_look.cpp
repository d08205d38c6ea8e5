#include <vltextstream/layout/spread_look.hpp>

namespace textio::standalone {

std::string_view to_string(SampleFrom sample) {
  switch (sample) {
    case SampleFrom::start:
      return "start";
    case SampleFrom::spread:
      return "spread";
  }
  return "";
}

}  // namespace textio::standalone
