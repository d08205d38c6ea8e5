// Replaces the fuzzer where there is none: runs a target over every file of the given folders. A
// file that fails is named first.
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <exception>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <set>
#include <string>
#include <vector>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

// Mutators call this; nothing is mutated here.
extern "C" std::size_t LLVMFuzzerMutate(std::uint8_t* data, std::size_t size, std::size_t most);
std::size_t LLVMFuzzerMutate(std::uint8_t* /*data*/, std::size_t size, std::size_t /*most*/) {
  return size;
}

namespace {

namespace fs = std::filesystem;

// In a fixed order. A folder that does not exist has no files.
std::set<fs::path> files_of(const fs::path& folder) {
  std::set<fs::path> files;
  if (!fs::exists(folder)) return files;
  for (const auto& entry : fs::directory_iterator(folder)) {
    if (entry.is_regular_file()) files.insert(entry.path());
  }
  return files;
}

// Passes a block of exactly the file's size.
void run(const fs::path& path) {
  std::ifstream in(path, std::ios::binary);
  const std::vector<char> bytes{std::istreambuf_iterator<char>(in), {}};
  const std::vector<std::uint8_t> exact(bytes.begin(), bytes.end());
  LLVMFuzzerTestOneInput(exact.data(), exact.size());
}

}  // namespace

int main(int count, char** arguments) {
  std::size_t inputs = 0;
  std::string current;
  try {
    for (int i = 1; i < count; ++i) {
      for (const fs::path& file : files_of(arguments[i])) {
        current = file.string();
        std::printf("%s\n", current.c_str());
        std::fflush(stdout);
        run(file);
        ++inputs;
      }
    }
  } catch (const std::exception& error) {
    std::fprintf(stderr, "%s threw: %s\n", current.c_str(), error.what());
    return 1;
  }
  std::printf("%zu inputs\n", inputs);
  return inputs > 0 ? 0 : 1;
}
