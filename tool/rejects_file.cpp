#include "tool/rejects_file.hpp"

#include <vltextstream/text/utf8.hpp>

#include "tool/writing/delimited_writer.hpp"

namespace textio::tool {

RejectsFile::RejectsFile(const std::string& path) : output_(path), sink_(output_.fd(), path) {
  sink_.text() += "file,line,reason,text\n";
}

void RejectsFile::add(std::uint64_t line, std::u16string_view text, std::string_view reason) {
  std::string& out = sink_.text();
  append_quoted_if_needed(out, file_, ',');
  out += ',' + std::to_string(line) + ',';
  append_quoted_if_needed(out, reason, ',');
  out += ',';
  append_quoted_if_needed(out, to_utf8_lossy(text), ',');
  out += '\n';
  sink_.pass_on();
}

void RejectsFile::flush() { sink_.flush(); }

void RejectsFile::commit() {
  sink_.flush();
  output_.commit();
}

}  // namespace textio::tool
