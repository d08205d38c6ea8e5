// The scans of the four strategies over any text with any choices: every extent advances, stays in
// the text, and is the one that the reference finds.
#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include <vltextstream/strategy/delimited_strategy.hpp>
#include <vltextstream/strategy/field_text.hpp>
#include <vltextstream/strategy/fixed_width_strategy.hpp>
#include <vltextstream/strategy/line_reader_strategy.hpp>
#include <vltextstream/strategy/space_aligned_strategy.hpp>
#include "differential/comparison.hpp"
#include "fuzz/check.hpp"
#include "fuzz/choices.hpp"
#include "reference/reference.hpp"
#include "support/exact_text.hpp"

namespace textio::fuzz {
namespace {

using reference::Mode;
using testing_support::ExactText;

// One strategy, and its name in the reference.
struct Subject {
  std::unique_ptr<Strategy> strategy;
  Mode mode;
  Texts delimiters;
  std::vector<std::size_t> widths;
};

std::vector<std::size_t> widths_from(Input& input) {
  std::vector<std::size_t> widths(input.below(4));
  for (std::size_t& width : widths)
    width = input.count() % 256 < 240 ? input.below(6) : SIZE_MAX / 2;
  widths.push_back(1 + input.below(9));
  return widths;
}

Texts delimiters_from(Input& input) {
  static const std::vector<Texts> lists = {{u","}, {u" "},  {u";", u","}, {u"||", u"|"}, {u"\t"},
                                           {u""},  {u"\""}, {u"\n"},      {u",", u""},   {}};
  const std::uint8_t choice = input.byte();
  return choice < 128 ? lists[choice % lists.size()] : input.short_texts();
}

Subject subject_from(Input& input, const parser::options& options) {
  switch (input.below(4)) {
    case 0: {
      const Texts delimiters = delimiters_from(input);
      return {std::make_unique<DelimitedStrategy>(options, delimiters),
              Mode::delimited,
              delimiters,
              {}};
    }
    case 1:
      return {std::make_unique<SpaceAlignedStrategy>(options), Mode::space_aligned, {}, {}};
    case 2: {
      const std::vector<std::size_t> widths = widths_from(input);
      return {std::make_unique<FixedWidthStrategy>(options, widths), Mode::fixed_width, {}, widths};
    }
    default:
      return {std::make_unique<LineReaderStrategy>(options), Mode::line_reader, {}, {}};
  }
}

// `got` is a step from `pos` of `text`.
void check_step(const char* what, const FieldExtent& got, const reference::Extent& expected,
                const Field& text, std::size_t pos) {
  const auto begin = static_cast<std::size_t>(got.field.data - text.data);
  require_equal(what, begin, expected.begin);
  require_equal(what, got.field.length, expected.length);
  require_equal(what, got.next, expected.next);
  require(begin >= pos && begin <= text.length,
          "an extent begins in the text, not before the step");
  require(got.next >= pos, "a step does not go back");
}

void check_fields(const Subject& subject, const Field& line, const reference::Options& plain,
                  std::size_t& next_column) {
  const std::u16string text(line.data, line.length);
  std::size_t standing_still = 0;
  for (std::size_t pos = 0; !ends_at(line, pos);) {
    const FieldExtent field = subject.strategy->get_next_field(line, pos);
    check_step("field", field,
               reference::get_next_field(subject.mode, subject.delimiters, subject.widths, text,
                                         plain, pos, next_column),
               line, pos);
    const bool is_whole =
        subject.mode == Mode::fixed_width ||
        field.field.length <= line.length - static_cast<std::size_t>(field.field.data - line.data);
    require(is_whole, "a field ends in its line");
    require(field.next <= line.length, "the next field begins in the line");
    // Only columns of width 0 do not advance, and not all of them have this width.
    standing_still = field.next > pos ? 0 : standing_still + 1;
    require(standing_still < std::max<std::size_t>(subject.widths.size(), 1), "fields move on");
    pos = field.next;
  }
}

void check_scans(const Subject& subject, const ExactText& text, const reference::Options& plain) {
  const std::u16string whole(text.view());
  std::size_t next_column = 0;
  for (std::size_t pos = 0; !ends_at(text.field(), pos);) {
    const FieldExtent line = subject.strategy->get_line_extent(text.field(), pos);
    check_step("line", line,
               reference::get_line_extent(subject.mode, subject.delimiters, whole, plain, pos),
               text.field(), pos);
    require(line.next > pos, "lines move on");
    // A cut gets the line in a separate block: it must not read the text after it.
    const ExactText alone({line.field.data, line.field.length});
    check_fields(subject, alone.field(), plain, next_column);
    subject.strategy->reset_fields();
    pos = line.next;
  }
}

}  // namespace
}  // namespace textio::fuzz

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using namespace textio::fuzz;
  const TextInput input(data, size);
  Input more = input.more();
  const bool is_valued = more.below(4) == 3;
  const auto& choices = input.choices();
  if (is_valued) {
    require_no_difference(
        textio::differential::difference_in_strategies(input.text(), choices, widths_from(more)));
    return 0;
  }
  const textio::parser::options record = textio::differential::library_options(choices);
  const Subject subject = subject_from(more, record);
  check_scans(subject, ExactText(input.text()), textio::differential::reference_options(choices));
  return 0;
}
