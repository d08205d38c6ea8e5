#include <vltextstream/strategy/delimited_strategy.hpp>

#include <typeinfo>

#include <vltextstream/strategy/delimiter_priority.hpp>
#include <vltextstream/strategy/field_cursor.hpp>
#include <vltextstream/strategy/separated_fields.hpp>
#include <vltextstream/strategy/utf8.hpp>
#include <vltextstream/strategy/whitespace.hpp>

namespace textio {
namespace {

// A character that is not in the list gets the result of a failed search, 2^64. This rank is after
// all others, but it still counts as measured.
double priors_rank_of(char16_t delimiter) {
  return static_cast<double>(kDelimiterPriority.find(delimiter));
}

// A set of a single character consists of that character; its list of texts is not used.
std::vector<std::u16string> delimiters_of(const DelimiterSet& set) {
  if (set.is_single_char) return {std::u16string(1, *set.single_char)};
  return set.strings;
}

FieldExtent field_at(FieldCursor& fields, std::size_t start) {
  const auto [end, next] = fields.end_of_field(start);
  return {slice(fields.text(), start, end), next};
}

class DelimitedLines final : public LineCursor {
 public:
  DelimitedLines(const FieldRules& rules, const Field& text) : fields_(rules, text) {}

  // A line consists of whole fields, so a line ending inside quotes does not end it. A field that
  // consumed nothing stopped at a line ending or at the end of the text, so every pass advances. A
  // delimiter at the end of the text has one more field after it, which is empty.
  SplitLine line_at(std::size_t start) override {
    const Field& text = fields_.text();
    std::size_t num_fields = 0;
    bool ends_with_delimiter = false;
    std::size_t pos = start;
    while (!ends_at(text, pos)) {
      const auto [end, next] = fields_.end_of_field(pos);
      pos = next;
      ++num_fields;
      ends_with_delimiter = pos != end;
      if (ends_with_delimiter) continue;
      if (const std::size_t ending = fields_.line_ending_at(end)) {
        return {{slice(text, start, end), end + ending}, num_fields};
      }
    }
    return {{slice(text, start, pos), pos}, num_fields + (ends_with_delimiter ? 1 : 0)};
  }

  EmptyLines empty_lines_at(std::size_t start, std::size_t most) override {
    return empty_lines_from(start, most, fields_.text(), fields_.line_endings(), kLineOpeners);
  }

 private:
  FieldCursor fields_;
};

class DelimitedSplitter final : public SeparatedSplitter<DelimitedLines, field_at> {
 public:
  using SeparatedSplitter::SeparatedSplitter;

  Dialect dialect() const override {
    Dialect dialect{LayoutMode::delimited, {}, {}};
    for (const std::u16string& delimiter : delimiters_of(rules().delimiters.set())) {
      dialect.delimiters.push_back(to_utf8_lossy(delimiter));
    }
    return dialect;
  }
};

}  // namespace

DelimitedStrategy::DelimitedStrategy(const parser::options& options,
                                     const std::vector<std::u16string>& delimiters)
    : Strategy(options),
      tokenizer_(delimiters, options.line_endings),
      line_endings_(tokenizer_.line_endings_) {
  std::u16string whitespace = options.whitespace;
  for (const std::u16string& delimiter : delimiters) {
    if (delimiter.size() == 1) remove_in_place(whitespace, delimiter[0]);
  }
  reset_whitespace(whitespace);
  if (delimiters.size() == 1 && delimiters[0].size() == 1) {
    valuation_.priors_rank = priors_rank_of(delimiters[0][0]);
    space_separated_ = delimiters[0][0] == u' ';
  }
  split_by(std::make_shared<DelimitedSplitter>(tokenizer_.rules_), typeid(DelimitedStrategy));
}

DelimitedStrategy::DelimitedStrategy(const parser::options& options)
    : DelimitedStrategy(options, options.delimiters) {}

DelimitedStrategy::DelimitedStrategy(const parser::options& options, char16_t delimiter)
    : DelimitedStrategy(options, {std::u16string(1, delimiter)}) {}

DelimitedStrategy::~DelimitedStrategy() = default;

std::vector<std::u16string> DelimitedStrategy::delimiters() const {
  return delimiters_of(*delimiter());
}

int DelimitedStrategy::mode() const { return kDelimited; }

FieldExtent DelimitedStrategy::get_line_extent(const Field& text, unsigned long start) const {
  return DelimitedLines(*tokenizer_.rules_, text).line_at(start).extent;
}

FieldExtent DelimitedStrategy::get_next_field(const Field& line, unsigned long start) {
  FieldCursor fields(*tokenizer_.rules_, line);
  return field_at(fields, start);
}

}  // namespace textio
