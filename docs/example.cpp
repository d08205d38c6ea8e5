#include <iostream>
#include <vltextstream/detect.hpp>

int main() {
  const auto found = textio::detect_text("time;level\n1:02:00;3.5\n1:07:30;3.9\n");
  std::cout << found.dialect << ", named in line " << *found.names_line << '\n';
  for (const auto& column : found.columns) {
    std::cout << column.name << ": " << to_string(column.type) << '\n';
  }
}
