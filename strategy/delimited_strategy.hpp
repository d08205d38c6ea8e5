// DelimitedStrategy: fields are separated by one of a list of delimiters, and may be quoted.
//
//   DelimitedStrategy strategy(options, u';');
//
// Every delimiter closes a field, so two in a row enclose an empty field. White space next to a
// delimiter belongs to the field. A quoted field may contain delimiters and line endings, so one
// sampled line may span several lines of the file.
#pragma once

#include <memory>
#include <string>
#include <vector>

#include <vltextstream/host/delimiter_set.hpp>
#include <vltextstream/strategy/field_tokenizer.hpp>
#include <vltextstream/strategy/strategy.hpp>

namespace textio {

class VLTEXTSTREAM_EXPORT DelimitedStrategy : public Strategy {
 public:
  // If two delimiters match at one position, the earlier one in the list wins.
  DelimitedStrategy(const parser::options& options, const std::vector<std::u16string>& delimiters);

  // Uses the delimiters of the options.
  explicit DelimitedStrategy(const parser::options& options);

  DelimitedStrategy(const parser::options& options, char16_t delimiter);
  ~DelimitedStrategy() override;

  int mode() const override;
  FieldExtent get_line_extent(const Field& text, unsigned long start) const override;
  FieldExtent get_next_field(const Field& line, unsigned long start) override;

  // The delimiters. Owned by the strategy, never null.
  const DelimiterSet* delimiter() const { return tokenizer_.delimiters_.get(); }

  // The delimiters as strings, in the order in which they are tried.
  std::vector<std::u16string> delimiters() const;

 private:
  FieldTokenizer tokenizer_;
  std::shared_ptr<const DelimiterSet> line_endings_;
};

}  // namespace textio
