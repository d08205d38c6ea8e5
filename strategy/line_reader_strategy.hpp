// LineReaderStrategy: the text has no columns, every line is one field.
#pragma once

#include <memory>
#include <string>

#include <vltextstream/host/delimiter_set.hpp>
#include <vltextstream/strategy/marker_matcher.hpp>
#include <vltextstream/strategy/strategy.hpp>

namespace textio {

class LineScan;
struct ScannedLine;
class UnitFinder;

class VLTEXTSTREAM_EXPORT LineReaderStrategy : public Strategy {
 public:
  explicit LineReaderStrategy(const parser::options& options);
  ~LineReaderStrategy() override;

  int mode() const override;
  FieldExtent get_line_extent(const Field& text, unsigned long start) const override;
  FieldExtent get_next_field(const Field& line, unsigned long start) override;

 private:
  friend class LineScan;
  friend class Strategy;  // reaches the matcher

  VLTEXTSTREAM_LOCAL ScannedLine scan_line(const Field& text, UnitFinder& stops,
                                           std::size_t start) const;

  std::shared_ptr<const DelimiterSet> line_endings_;
  std::shared_ptr<const DelimiterSet> delimiters_;
  std::u16string stop_chars_;
  MarkerMatcher ending_matcher_;
  std::shared_ptr<const UnitBits> stop_bits_;
};

}  // namespace textio
