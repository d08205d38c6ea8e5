// Writes the files that steps_bench reads into an existing folder: step_texts FOLDER.
#include <algorithm>
#include <exception>
#include <fstream>
#include <iostream>
#include <stdexcept>
#include <string>

#include <vltextstream/detection/fixed_stream.hpp>

#include "bench/encoded_texts.hpp"
#include "bench/shapes.hpp"
#include "bench/step_texts.hpp"

namespace textio::bench {
namespace {

constexpr std::size_t kFileUnits = kSampleUnits + 65'536;
constexpr std::size_t kSmallUnits = 10'000;

void write(const std::string& path, const std::string& bytes) {
  std::ofstream file(path, std::ios::binary);
  file << bytes;
  file.close();
  if (!file) throw std::runtime_error("cannot write " + path);
}

std::string bytes_of(const char* shape, std::size_t units) {
  return ascii_bytes(find_shape(shape)->make(units));
}

std::string encoded(const std::string& name) {
  const auto& texts = encoded_texts();
  const auto found = std::find_if(texts.begin(), texts.end(),
                                  [&](const EncodedText& text) { return text.name == name; });
  if (found == texts.end()) throw std::runtime_error("no text is called " + name);
  return found->make(kFileUnits);
}

void write_all(const std::string& folder) {
  write(folder + kRegularText, bytes_of("regular", kSampleUnits));
  write(folder + kQuotedText, bytes_of("quoted", kSampleUnits));
  write(folder + kAlignedText, bytes_of("aligned", kSampleUnits));
  write(folder + kAllCandidatesText, bytes_of("all_candidates", kSampleUnits));
  write(folder + kAsciiText, encoded("ascii"));
  write(folder + kTwoByteText, encoded("utf8_two_byte"));
  const std::string small = bytes_of("regular", kSmallUnits);
  write(folder + kSmallText, small);
  for (std::size_t i = 0; i < kManyTexts; ++i) write(folder + many_text(i), small);
}

}  // namespace
}  // namespace textio::bench

int main(int argc, char** argv) {
  if (argc != 2) {
    std::cerr << "usage: step_texts FOLDER\n";
    return 2;
  }
  try {
    textio::bench::write_all(std::string(argv[1]) + '/');
  } catch (const std::exception& error) {
    std::cerr << "step_texts: " << error.what() << '\n';
    return 1;
  }
}
