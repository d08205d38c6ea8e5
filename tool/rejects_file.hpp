// RejectsFile: what did not fit, as it was, in a csv of its own.
//
//   file,line,reason,text
//   gauge.csv,77,"misfit in column 2",n.v.
//
// Errors  WriteError; its message begins with the path.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include <vltextstream/reading/table_reader.hpp>

#include "tool/writing/byte_sink.hpp"
#include "tool/writing/output_file.hpp"

namespace textio::tool {

class RejectsFile : public reading::ReadSettings::Rejects {
 public:
  explicit RejectsFile(const std::string& path);

  // The file whose rejects follow.
  void begin(const std::string& file) { file_ = file; }

  void add(std::uint64_t line, std::u16string_view text, std::string_view reason) override;

  // Makes sure that what was added can be kept.
  void flush();

  void commit();

 private:
  OutputFile output_;
  ByteSink sink_;
  std::string file_;
};

}  // namespace textio::tool
