#include <vltextstream/strategy/space_aligned_strategy.hpp>

#include <vltextstream/strategy/field_scan.hpp>
#include <vltextstream/strategy/line_scan.hpp>

namespace textio {
namespace {

constexpr std::u16string_view kBlankChars = u" \t";

const std::vector<std::u16string>& blank_delimiters() {
  static const std::vector<std::u16string> list = {u" ", u"\t"};
  return list;
}

}  // namespace

SpaceAlignedStrategy::SpaceAlignedStrategy(const parser::options& options)
    : Strategy(options),
      tokenizer_(blank_delimiters(), options.line_endings),
      line_endings_(tokenizer_.line_endings_),
      ending_matcher_(line_endings_) {
  std::u16string whitespace = options.whitespace;
  remove_in_place(whitespace, u'\t');
  remove_in_place(whitespace, u' ');
  reset_whitespace(whitespace);
  space_separated_ = true;
  valuation_.priors_rank = 3.5;  // behind every delimiter of the priority list, before all others
}

SpaceAlignedStrategy::~SpaceAlignedStrategy() = default;

int SpaceAlignedStrategy::mode() const { return kSpaceAligned; }

FieldExtent SpaceAlignedStrategy::get_line_extent(const Field& text, unsigned long start) const {
  FieldScan fields(tokenizer_, text);
  return scan_line(fields, start).extent;
}

// As for delimited text, with the blanks after a field as one separator. A field that nothing
// follows, no blank and no line ending, stopped at the end of the text.
ScannedLine SpaceAlignedStrategy::scan_line(FieldScan& fields, std::size_t start) const {
  const Field& text = fields.text();
  const std::size_t line_start = find_first_not_of(text, start, kBlankChars);
  std::size_t num_fields = 0;
  bool ends_with_blanks = false;
  std::size_t pos = line_start;
  while (!ends_at(text, pos)) {
    const auto [end, next] = fields.end_of_field(pos);
    pos = find_first_not_of(text, next, kBlankChars);
    ++num_fields;
    ends_with_blanks = pos != end;
    if (ends_with_blanks) continue;
    if (const std::size_t ending = ending_matcher_.length_at(text, end)) {
      return {{slice(text, line_start, end), end + ending}, num_fields};
    }
  }
  return {{slice(text, line_start, pos), pos}, num_fields + (ends_with_blanks ? 1 : 0)};
}

FieldExtent SpaceAlignedStrategy::get_next_field(const Field& line, unsigned long start) {
  FieldScan fields(tokenizer_, line);
  return next_field(fields, start);
}

FieldExtent SpaceAlignedStrategy::next_field(FieldScan& fields, std::size_t start) const {
  const auto [end, next] = fields.end_of_field(start);
  const Field& line = fields.text();
  return {slice(line, start, end), find_first_not_of(line, next, kBlankChars)};
}

}  // namespace textio
