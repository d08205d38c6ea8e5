// Lets a test program search texts by the kernel that the environment variable SEARCH_KERNEL names. A
// machine without it ends the program with the status that ctest takes for a test left out.
#include <cstdlib>
#include <iostream>
#include <string_view>

#include <vltextstream/strategy/search/code_unit_finder.hpp>

namespace textio {
namespace {

constexpr int kLeftOut = 77;

[[maybe_unused]] const bool kIsChosen = [] {
  const char* const name = std::getenv("SEARCH_KERNEL");
  if (name == nullptr) return false;
  for (const SearchKernel& kernel : search_kernels()) {
    if (std::string_view(kernel.name) != name) continue;
    use_search_kernel(kernel);
    return true;
  }
  std::cout << "this machine has no kernel \"" << name << "\"\n";
  std::exit(kLeftOut);
}();

}  // namespace
}  // namespace textio
