// A strategy whose fields are single code units, so that the length of a line is its number of
// fields. Any series of field counts can be given to the scoring as a text.
#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include <vltextstream/strategy/strategy.hpp>

namespace textio::testing_support {

class UnitStrategy : public Strategy {
 public:
  using Strategy::Strategy;

  using Strategy::header_lines_auto_;
  using Strategy::space_separated_;
  using Strategy::valuation_;
  using Strategy::valuation_done_;

  int mode() const override { return kDelimited; }

  FieldExtent get_line_extent(const Field& text, unsigned long start) const override {
    std::size_t end = start;
    while (end < text.length && text.data[end] != u'\n') ++end;
    return {Field(text.data + start, end - start), end < text.length ? end + 1 : end};
  }

  FieldExtent get_next_field(const Field& line, unsigned long start) override {
    return {Field(line.data + start, 1), start + 1};
  }
};

// One line per entry, with this many fields that each consist of `unit`.
inline std::u16string text_of_counts(const std::vector<std::size_t>& counts, char16_t unit) {
  std::u16string text;
  for (const std::size_t count : counts) text.append(count, unit).push_back(u'\n');
  return text;
}

}  // namespace textio::testing_support
