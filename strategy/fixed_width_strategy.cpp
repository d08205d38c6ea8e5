#include <vltextstream/strategy/fixed_width_strategy.hpp>

#include <algorithm>
#include <limits>
#include <numeric>
#include <stdexcept>
#include <typeinfo>
#include <utility>

#include <vltextstream/strategy/append_fields.hpp>
#include <vltextstream/strategy/search/code_unit_finder.hpp>
#include <vltextstream/strategy/search/marker_search.hpp>
#include <vltextstream/strategy/splitter.hpp>

namespace textio {

struct FixedWidthRules final : Splitter {
  FixedWidthRules(std::vector<std::size_t> column_widths,
                  std::shared_ptr<const DelimiterSet> line_ending_set)
      : widths(std::move(column_widths)), line_endings(std::move(line_ending_set)) {}

  Dialect dialect() const override { return {LayoutMode::fixed_width, {}, widths}; }
  bool counts_fields() const override { return false; }
  std::size_t num_columns() const override { return widths.size(); }
  // A field may be wider than the rest of its line, and what follows the line is then in it.
  std::size_t longest_marker() const override {
    return std::max(line_endings.longest(), *std::max_element(widths.begin(), widths.end()));
  }
  std::unique_ptr<LineCursor> lines_of(const Field& text) const override;
  std::unique_ptr<FieldCutter> field_cutter() const override;

  std::vector<std::size_t> widths;
  MarkerMatcher line_endings;
};

namespace {

std::size_t saturating_sum(const std::vector<unsigned long>& widths) {
  constexpr auto kMost = std::numeric_limits<std::size_t>::max();
  return std::accumulate(
      widths.begin(), widths.end(), std::size_t{0},
      [](std::size_t sum, std::size_t width) { return width > kMost - sum ? kMost : sum + width; });
}

FieldExtent field_at(const Field& line, std::size_t start, std::size_t width) {
  if (start > line.length) return {slice(line, line.length, line.length), line.length};
  const std::size_t rest = line.length - start;
  return {Field(line.data + start, width), start + std::min(width, rest)};
}

class FixedWidthLines final : public LineCursor {
 public:
  FixedWidthLines(const FixedWidthRules& rules, const Field& text)
      : text_(text),
        stops_(text, rules.line_endings.first_units()),
        line_endings_(rules.line_endings, text) {}

  // A line ending may be anywhere. A U+FFFF in the text does not end the line: a read past the end
  // of the text gives the same value, and a line ending may consist of it.
  SplitLine line_at(std::size_t start) override {
    for (std::size_t i = start; i <= text_.length; ++i) {
      i = stops_.next(i);
      if (const std::size_t ending = line_endings_.length_at(i)) {
        return {{slice(text_, start, i), i + ending}};
      }
    }
    return {{slice(text_, start, text_.length), text_.length}};
  }

  EmptyLines empty_lines_at(std::size_t start, std::size_t most) override {
    return empty_lines_from(start, most, text_, line_endings_, {});
  }

 private:
  const Field text_;
  CodeUnitFinder stops_;
  MarkerSearch line_endings_;
};

// Every field advances to the next column, even where no text is left, and a line does not start at
// the first column. The numbers of fields per line depend on this.
class FixedWidthCutter final : public FieldCutter {
 public:
  explicit FixedWidthCutter(const std::vector<std::size_t>& widths) : widths_(widths) {}

  std::size_t append_fields(const Field& line, std::size_t column,
                            std::vector<Field>& fields) override {
    append_fields_of(line, fields, [&](std::size_t pos) {
      const std::size_t width = widths_[column];
      column = (column + 1) % widths_.size();
      return field_at(line, pos, width);
    });
    return column;
  }

 private:
  const std::vector<std::size_t>& widths_;
};

}  // namespace

std::unique_ptr<LineCursor> FixedWidthRules::lines_of(const Field& text) const {
  return std::make_unique<FixedWidthLines>(*this, text);
}

std::unique_ptr<FieldCutter> FixedWidthRules::field_cutter() const {
  return std::make_unique<FixedWidthCutter>(widths);
}

FixedWidthStrategy::FixedWidthStrategy(const parser::options& options,
                                       const std::vector<unsigned long>& widths)
    : Strategy(options),
      line_endings_(get_or_create_delim(options.line_endings)),
      widths_(widths.begin(), widths.end()),
      total_width_(saturating_sum(widths)) {
  if (total_width_ == 0) {
    throw std::invalid_argument("the widths of a fixed-width table must add up to at least 1");
  }
  rules_ = std::make_shared<FixedWidthRules>(widths_, line_endings_);
  split_by(rules_, typeid(FixedWidthStrategy), &next_column_);
}

FixedWidthStrategy::~FixedWidthStrategy() = default;

int FixedWidthStrategy::mode() const { return kFixedWidth; }

FieldExtent FixedWidthStrategy::get_line_extent(const Field& text, unsigned long start) const {
  return FixedWidthLines(*rules_, text).line_at(start).extent;
}

FieldExtent FixedWidthStrategy::get_next_field(const Field& line, unsigned long start) {
  const std::size_t width = widths_[next_column_];
  next_column_ = (next_column_ + 1) % widths_.size();
  return field_at(line, start, width);
}

}  // namespace textio
