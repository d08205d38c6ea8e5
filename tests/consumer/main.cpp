#include <iostream>

#include <vltextstream/vltextstream.hpp>

int main(int, char** argv) {
  const auto layout = textio::standalone::detect_layout(argv[1]);
  std::cout << layout.num_variables << " variables";
  for (const auto& name : layout.names) std::cout << ' ' << textio::standalone::to_utf8(name);
  std::cout << '\n';
}
