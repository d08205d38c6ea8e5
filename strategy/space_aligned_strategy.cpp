#include <vltextstream/strategy/space_aligned_strategy.hpp>

#include <typeinfo>

#include <vltextstream/strategy/field_cursor.hpp>
#include <vltextstream/strategy/separated_fields.hpp>
#include <vltextstream/strategy/whitespace.hpp>

namespace textio {
namespace {

constexpr std::u16string_view kBlankChars = u" \t";

const std::vector<std::u16string>& blank_delimiters() {
  static const std::vector<std::u16string> list = {u" ", u"\t"};
  return list;
}

FieldExtent field_at(FieldCursor& fields, std::size_t start) {
  const auto [end, next] = fields.end_of_field(start);
  const Field& line = fields.text();
  return {slice(line, start, end), find_first_not_of(line, next, kBlankChars)};
}

class SpaceAlignedLines final : public LineCursor {
 public:
  SpaceAlignedLines(const FieldRules& rules, const Field& text) : fields_(rules, text) {}

  // As for delimited text, with the blanks after a field as one separator. A field that neither a
  // blank nor a line ending follows stopped at the end of the text.
  SplitLine line_at(std::size_t start) override {
    const Field& text = fields_.text();
    const std::size_t line_start = find_first_not_of(text, start, kBlankChars);
    std::size_t num_fields = 0;
    bool ends_with_blanks = false;
    std::size_t pos = line_start;
    while (!ends_at(text, pos)) {
      const auto [end, next] = fields_.end_of_field(pos);
      pos = find_first_not_of(text, next, kBlankChars);
      ++num_fields;
      ends_with_blanks = pos != end;
      if (ends_with_blanks) continue;
      if (const std::size_t ending = fields_.line_ending_at(end)) {
        return {{slice(text, line_start, end), end + ending}, num_fields};
      }
    }
    return {{slice(text, line_start, pos), pos}, num_fields + (ends_with_blanks ? 1 : 0)};
  }

  EmptyLines empty_lines_at(std::size_t start, std::size_t most) override {
    return empty_lines_from(start, most, fields_.text(), fields_.line_endings(),
                            kAlignedLineOpeners);
  }

 private:
  FieldCursor fields_;
};

class SpaceAlignedSplitter final : public SeparatedSplitter<SpaceAlignedLines, field_at> {
 public:
  using SeparatedSplitter::SeparatedSplitter;

  Dialect dialect() const override { return {LayoutMode::space_aligned, {" ", "\t"}, {}}; }
};

}  // namespace

SpaceAlignedStrategy::SpaceAlignedStrategy(const parser::options& options)
    : Strategy(options),
      tokenizer_(blank_delimiters(), options.line_endings),
      line_endings_(tokenizer_.line_endings_) {
  std::u16string whitespace = options.whitespace;
  remove_in_place(whitespace, u'\t');
  remove_in_place(whitespace, u' ');
  reset_whitespace(whitespace);
  space_separated_ = true;
  valuation_.priors_rank = 3.5;  // after every delimiter of the priority list, before all others
  split_by(std::make_shared<SpaceAlignedSplitter>(tokenizer_.rules_), typeid(SpaceAlignedStrategy));
}

SpaceAlignedStrategy::~SpaceAlignedStrategy() = default;

int SpaceAlignedStrategy::mode() const { return kSpaceAligned; }

FieldExtent SpaceAlignedStrategy::get_line_extent(const Field& text, unsigned long start) const {
  return SpaceAlignedLines(*tokenizer_.rules_, text).line_at(start).extent;
}

FieldExtent SpaceAlignedStrategy::get_next_field(const Field& line, unsigned long start) {
  FieldCursor fields(*tokenizer_.rules_, line);
  return field_at(fields, start);
}

}  // namespace textio
