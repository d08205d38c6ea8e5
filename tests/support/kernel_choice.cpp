// Makes a test program search texts with the kernel that the environment variable SEARCH_KERNEL
// names. If the machine lacks it, the program ends with the status that ctest reports as skipped.
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
