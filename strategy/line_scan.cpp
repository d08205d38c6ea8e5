#include <vltextstream/strategy/line_scan.hpp>

#include <vltextstream/strategy/delimited_strategy.hpp>
#include <vltextstream/strategy/field_scan.hpp>
#include <vltextstream/strategy/fixed_width_strategy.hpp>
#include <vltextstream/strategy/line_reader_strategy.hpp>
#include <vltextstream/strategy/space_aligned_strategy.hpp>
#include <vltextstream/strategy/unit_finder.hpp>

namespace textio {
// Field by field.
template <typename Own>
class LineScan::Fieldwise final : public LineScan {
 public:
  Fieldwise(const Own& strategy, const FieldTokenizer& tokenizer, const Field& text,
            std::u16string_view openers)
      : LineScan(text, &strategy.ending_matcher_, openers),
        strategy_(strategy),
        fields_(tokenizer, text) {}

  bool counts_fields() const override { return true; }
  ScannedLine line_at(std::size_t start) override { return strategy_.scan_line(fields_, start); }

 private:
  const Own& strategy_;
  FieldScan fields_;
};

// By the units with which a line ending may begin.
template <typename Own>
class LineScan::Unitwise final : public LineScan {
 public:
  Unitwise(const Own& strategy, const Field& text, std::u16string_view units)
      : LineScan(text, &strategy.ending_matcher_, {}), strategy_(strategy), units_(text, units) {}

  bool counts_fields() const override { return as_own<LineReaderStrategy>(strategy_) != nullptr; }
  ScannedLine line_at(std::size_t start) override {
    return strategy_.scan_line(text_, units_, start);
  }

 private:
  const Own& strategy_;
  UnitFinder units_;
};

class LineScan::Virtual final : public LineScan {
 public:
  Virtual(const Strategy& strategy, const Field& text)
      : LineScan(text, nullptr, {}), strategy_(strategy) {}

  bool counts_fields() const override { return false; }
  ScannedLine line_at(std::size_t start) override {
    return {strategy_.get_line_extent(text_, start)};
  }

 private:
  const Strategy& strategy_;
};

std::unique_ptr<LineScan> LineScan::of(const Strategy& strategy, const Field& text) {
  if (const auto* own = as_own<DelimitedStrategy>(strategy)) {
    return std::make_unique<Fieldwise<DelimitedStrategy>>(*own, own->tokenizer_, text,
                                                          kLineOpeners);
  }
  if (const auto* own = as_own<SpaceAlignedStrategy>(strategy)) {
    return std::make_unique<Fieldwise<SpaceAlignedStrategy>>(*own, own->tokenizer_, text,
                                                             kAlignedLineOpeners);
  }
  if (const auto* own = as_own<FixedWidthStrategy>(strategy)) {
    return std::make_unique<Unitwise<FixedWidthStrategy>>(*own, text, own->stop_chars());
  }
  if (const auto* own = as_own<LineReaderStrategy>(strategy)) {
    return std::make_unique<Unitwise<LineReaderStrategy>>(*own, text, own->stop_chars_);
  }
  return std::make_unique<Virtual>(strategy, text);
}

EmptyLines LineScan::empty_lines_at(std::size_t start, std::size_t most) const {
  EmptyLines lines{0, start};
  while (endings_ && lines.count < most && !ends_at(text_, lines.next)) {
    if (contains(openers_, text_.data[lines.next])) break;
    const std::size_t ending = endings_->length_at(text_, lines.next);
    if (ending == 0) break;
    lines.next += ending;
    ++lines.count;
  }
  return lines;
}

bool is_of_the_library(const Strategy& strategy) {
  return as_own<DelimitedStrategy>(strategy) || as_own<SpaceAlignedStrategy>(strategy) ||
         as_own<FixedWidthStrategy>(strategy) || as_own<LineReaderStrategy>(strategy);
}

}  // namespace textio
