// Seeks and reads of a C stream have fixed signatures, so the wish reaches them through the thread.
#include <vltextstream/standalone/files/end_look.hpp>

#include <utility>

namespace textio::standalone {
namespace {

thread_local bool thread_looks_at_end = false;

}  // namespace

EndLookScope::EndLookScope() noexcept : previous_(std::exchange(thread_looks_at_end, true)) {}

EndLookScope::~EndLookScope() { thread_looks_at_end = previous_; }

bool looks_at_end() noexcept { return thread_looks_at_end; }

}  // namespace textio::standalone
