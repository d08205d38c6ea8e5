#include <iostream>
#include <vltextstream/vltextstream.hpp>

int main() {
  const auto layout = textio::standalone::detect_layout(u"time;level\n1:02:00;3.5\n1:07:30;3.9\n");
  std::cout << textio::standalone::to_utf8(layout.delimiters[0]) << " separates "
            << layout.num_variables << " variables, named in line " << *layout.names_line << '\n';
}
