#include <vltextstream/strategy/delimited_strategy.hpp>

#include <typeinfo>

#include <vltextstream/strategy/delimiter_priority.hpp>
#include <vltextstream/strategy/field_cursor.hpp>
#include <vltextstream/strategy/separated_fields.hpp>
#include <vltextstream/strategy/whitespace.hpp>
#include <vltextstream/text/utf8.hpp>

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

struct Delimited {
  static constexpr std::u16string_view kSkipped = u"";
  static constexpr std::u16string_view kOpeners = kLineOpeners;

  static Dialect dialect(const DelimiterSet& delimiters) {
    if (delimiters.is_single_char) {
      return {LayoutMode::delimited, {to_utf8_lossy({delimiters.single_char, 1})}, {}};
    }
    Dialect dialect{LayoutMode::delimited, {}, {}};
    for (const std::u16string& delimiter : delimiters.strings) {
      dialect.delimiters.push_back(to_utf8_lossy(delimiter));
    }
    return dialect;
  }
};

using DelimitedSplitter = SeparatedSplitter<Delimited>;

}  // namespace

DelimitedStrategy::DelimitedStrategy(const parser::options& options,
                                     const std::vector<std::u16string>& delimiters)
    : Strategy(options),
      tokenizer_(std::make_shared<DelimitedSplitter>(delimiters, options.line_endings)),
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
  split_by(std::static_pointer_cast<const DelimitedSplitter>(tokenizer_.rules_),
           typeid(DelimitedStrategy));
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
  return SeparatedLines<Delimited>(*tokenizer_.rules_, text).line_at(start).extent;
}

FieldExtent DelimitedStrategy::get_next_field(const Field& line, unsigned long start) {
  FieldCursor fields(*tokenizer_.rules_, line);
  return separated_field_at<Delimited>(fields, start);
}

}  // namespace textio
