// LineReaderStrategy: the text has no columns; every line is one field.
#pragma once

#include <memory>
#include <string>

#include <vltextstream/host/delimiter_set.hpp>
#include <vltextstream/strategy/strategy.hpp>

namespace textio {

struct WholeLineRules;

class VLTEXTSTREAM_EXPORT LineReaderStrategy : public Strategy {
 public:
  explicit LineReaderStrategy(const parser::options& options);
  ~LineReaderStrategy() override;

  int mode() const override;
  FieldExtent get_line_extent(const Field& text, unsigned long start) const override;
  FieldExtent get_next_field(const Field& line, unsigned long start) override;

 private:
  std::shared_ptr<const DelimiterSet> line_endings_;
  std::shared_ptr<const DelimiterSet> delimiters_;
  std::u16string stop_chars_;
  std::shared_ptr<const WholeLineRules> rules_;
};

}  // namespace textio
