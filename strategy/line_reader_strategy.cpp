#include <vltextstream/strategy/line_reader_strategy.hpp>

#include <typeinfo>
#include <utility>

#include <vltextstream/strategy/append_fields.hpp>
#include <vltextstream/strategy/field_rules.hpp>
#include <vltextstream/strategy/search/code_unit_finder.hpp>
#include <vltextstream/strategy/search/marker_search.hpp>
#include <vltextstream/strategy/splitter.hpp>

namespace textio {

struct WholeLineRules final : Splitter {
  explicit WholeLineRules(std::shared_ptr<const DelimiterSet> line_ending_set)
      : line_endings(std::move(line_ending_set)) {}

  Dialect dialect() const override { return {LayoutMode::line_reader, {}, {}}; }
  bool counts_fields() const override { return true; }
  std::size_t longest_marker() const override { return line_endings.longest(); }
  std::unique_ptr<LineCursor> lines_of(const Field& text) const override;
  std::unique_ptr<FieldCutter> field_cutter() const override;

  MarkerMatcher line_endings;
};

namespace {

class WholeLines final : public LineCursor {
 public:
  WholeLines(const WholeLineRules& rules, const Field& text)
      : text_(text),
        stops_(text, rules.line_endings.first_units()),
        line_endings_(rules.line_endings, text) {}

  SplitLine line_at(std::size_t start) override {
    if (ends_at(text_, start)) return {{slice(text_, start, start), start}, 0};
    std::size_t i = start;
    do {
      i = stops_.next(i);
      if (ends_at(text_, i)) break;
      if (const std::size_t ending = line_endings_.length_at(i)) {
        return {{slice(text_, start, i), i + ending}, 1};
      }
      ++i;
    } while (!ends_at(text_, i));
    return {{slice(text_, start, i), i}, 1};
  }

  EmptyLines empty_lines_at(std::size_t start, std::size_t most) override {
    return empty_lines_from(start, most, text_, line_endings_, {});
  }

  void move_to(const Field& text) {
    text_ = text;
    stops_.move_to(text);
    line_endings_.move_to(text);
  }

 private:
  Field text_;
  CodeUnitFinder stops_;
  MarkerSearch line_endings_;
};

class WholeLineCutter final : public FieldCutter {
 public:
  explicit WholeLineCutter(const WholeLineRules& rules) : lines_(rules, Field()) {}

  std::size_t append_fields(const Field& line, std::size_t column,
                            std::vector<Field>& fields) override {
    lines_.move_to(line);
    append_fields_of(line, fields, [&](std::size_t pos) { return lines_.line_at(pos).extent; });
    return column;
  }

 private:
  WholeLines lines_;
};

}  // namespace

std::unique_ptr<LineCursor> WholeLineRules::lines_of(const Field& text) const {
  return std::make_unique<WholeLines>(*this, text);
}

std::unique_ptr<FieldCutter> WholeLineRules::field_cutter() const {
  return std::make_unique<WholeLineCutter>(*this);
}

LineReaderStrategy::LineReaderStrategy(const parser::options& options)
    : Strategy(options),
      line_endings_(get_or_create_delim(options.line_endings)),
      delimiters_(get_or_create_delim({})),
      stop_chars_(make_stop_chars(options.line_endings, {})),
      rules_(std::make_shared<WholeLineRules>(line_endings_)) {
  split_by(rules_, typeid(LineReaderStrategy));
}

LineReaderStrategy::~LineReaderStrategy() = default;

int LineReaderStrategy::mode() const { return kLineReader; }

FieldExtent LineReaderStrategy::get_line_extent(const Field& text, unsigned long start) const {
  return WholeLines(*rules_, text).line_at(start).extent;
}

FieldExtent LineReaderStrategy::get_next_field(const Field& line, unsigned long start) {
  return get_line_extent(line, start);
}

}  // namespace textio
