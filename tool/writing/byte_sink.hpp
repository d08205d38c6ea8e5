// ByteSink: bytes on their way to an open file, in blocks.
//
//   ByteSink sink(fd, "gauge.csv");
//   sink.text() += "level\n";
//   sink.pass_on();
//   sink.flush();
//
// Errors  WriteError with the name and the reason: "gauge.csv: No space left on device".
#pragma once

#include <cstddef>
#include <string>
#include <utility>

namespace textio::tool {

class ByteSink {
 public:
  static constexpr std::size_t kBlock = 65'536;

  // The file stays open. Its name is for messages.
  ByteSink(int fd, std::string name) : fd_(fd), name_(std::move(name)) {}
  ByteSink(const ByteSink&) = delete;
  ByteSink& operator=(const ByteSink&) = delete;

  // What waits to be written: append to it.
  std::string& text() { return text_; }

  // Writes the text once it is a block.
  void pass_on() {
    if (text_.size() >= kBlock) flush();
  }

  // Writes the text.
  void flush();

 private:
  int fd_;
  std::string name_;
  std::string text_;
};

}  // namespace textio::tool
