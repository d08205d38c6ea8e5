#include <vltextstream/layout/given_mismatch.hpp>

namespace textio::standalone {

GivenMismatch::~GivenMismatch() = default;

}  // namespace textio::standalone
