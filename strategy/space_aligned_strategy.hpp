// SpaceAlignedStrategy: fields are separated by runs of spaces and tabs, and may be quoted.
//
// Blanks at the start of a line are not part of it. Blanks at its end are, and one more field,
// which is empty, follows them.
#pragma once

#include <memory>

#include <vltextstream/host/delimiter_set.hpp>
#include <vltextstream/strategy/field_tokenizer.hpp>
#include <vltextstream/strategy/strategy.hpp>

namespace textio {

class VLTEXTSTREAM_EXPORT SpaceAlignedStrategy : public Strategy {
 public:
  explicit SpaceAlignedStrategy(const parser::options& options);
  ~SpaceAlignedStrategy() override;

  int mode() const override;
  FieldExtent get_line_extent(const Field& text, unsigned long start) const override;
  FieldExtent get_next_field(const Field& line, unsigned long start) override;

 private:
  FieldTokenizer tokenizer_;
  std::shared_ptr<const DelimiterSet> line_endings_;
};

}  // namespace textio
