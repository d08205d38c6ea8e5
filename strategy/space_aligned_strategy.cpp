#include <vltextstream/strategy/space_aligned_strategy.hpp>

#include <typeinfo>

#include <vltextstream/strategy/field_cursor.hpp>
#include <vltextstream/strategy/separated_fields.hpp>
#include <vltextstream/strategy/whitespace.hpp>

namespace textio {
namespace {

const std::vector<std::u16string>& blank_delimiters() {
  static const std::vector<std::u16string> list = {u" ", u"\t"};
  return list;
}

// The blanks between two fields are one separator.
struct SpaceAligned {
  static constexpr std::u16string_view kSkipped = u" \t";
  static constexpr std::u16string_view kOpeners = kAlignedLineOpeners;

  static Dialect dialect(const DelimiterSet& /*delimiters*/) {
    return {LayoutMode::space_aligned, {" ", "\t"}, {}};
  }
};

using SpaceAlignedSplitter = SeparatedSplitter<SpaceAligned>;

}  // namespace

SpaceAlignedStrategy::SpaceAlignedStrategy(const parser::options& options)
    : Strategy(options),
      tokenizer_(std::make_shared<SpaceAlignedSplitter>(blank_delimiters(), options.line_endings)),
      line_endings_(tokenizer_.line_endings_) {
  std::u16string whitespace = options.whitespace;
  remove_in_place(whitespace, u'\t');
  remove_in_place(whitespace, u' ');
  reset_whitespace(whitespace);
  space_separated_ = true;
  valuation_.priors_rank = 3.5;  // after every delimiter of the priority list, before all others
  split_by(std::static_pointer_cast<const SpaceAlignedSplitter>(tokenizer_.rules_),
           typeid(SpaceAlignedStrategy));
}

SpaceAlignedStrategy::~SpaceAlignedStrategy() = default;

int SpaceAlignedStrategy::mode() const { return kSpaceAligned; }

FieldExtent SpaceAlignedStrategy::get_line_extent(const Field& text, unsigned long start) const {
  return SeparatedLines<SpaceAligned>(*tokenizer_.rules_, text).line_at(start).extent;
}

FieldExtent SpaceAlignedStrategy::get_next_field(const Field& line, unsigned long start) {
  FieldCursor fields(*tokenizer_.rules_, line);
  return separated_field_at<SpaceAligned>(fields, start);
}

}  // namespace textio
