// Any series of numbers of fields per line: statistics, header lines and valuation, against the
// reference.
#include <algorithm>
#include <bit>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <optional>
#include <string>
#include <vector>

#include <vltextstream/host/datetime.hpp>
#include <vltextstream/scoring/header_lines.hpp>
#include <vltextstream/scoring/line_statistics.hpp>
#include "differential/comparison.hpp"
#include "fuzz/check.hpp"
#include "fuzz/input.hpp"
#include "reference/reference.hpp"
#include "support/exact_text.hpp"
#include "support/unit_strategy.hpp"

namespace textio::fuzz {
namespace {

using Counts = std::vector<std::size_t>;

void require_same_numbers(const char* what, const Counts& got, const Counts& expected) {
  require_equal(what, got.size(), expected.size());
  for (std::size_t i = 0; i < got.size(); ++i) require_equal(what, got[i], expected[i]);
}

// Bit for bit, including infinities and negative zero.
void require_same_double(const char* what, double got, double expected) {
  if (std::bit_cast<std::uint64_t>(got) == std::bit_cast<std::uint64_t>(expected)) return;
  fail(std::string(what) + ": " + std::to_string(got) + ", expected " + std::to_string(expected));
}

// Mostly small numbers; a fuzzer repeats bytes more easily than it invents large ones.
std::size_t count_of(std::uint8_t byte) {
  if (byte < 0xE0) return byte % 16U;
  return byte < 0xF0 ? byte : std::size_t{1} << (byte % 16U * 2);
}

struct Case {
  explicit Case(Input& input)
      : header_lines(input.count()),
        first(input.below(8)),
        modal(static_cast<std::int32_t>(input.below(16))),
        cap(input.flag()),
        is_given(input.flag()),
        is_valued(input.below(4) == 0) {
    for (const char byte : input.rest())
      counts.push_back(count_of(static_cast<std::uint8_t>(byte)));
  }

  std::size_t header_lines;
  std::size_t first;
  std::int32_t modal;
  bool cap;
  bool is_given;
  bool is_valued;  // one in four, because it takes many times as long as the rest
  Counts counts;
};

void check_statistics(const Case& drawn) {
  const Counts& counts = drawn.counts;
  require_equal("modified median", get_modified_median(counts, drawn.first),
                reference::get_modified_median(counts, drawn.first));
  const Counts diffs = get_abs_diffs(counts, drawn.modal);
  require_same_numbers("deviations", diffs, reference::get_abs_diffs(counts, drawn.modal));
  const double total = get_total_variation(diffs);
  require_same_double("total variation", total, reference::get_total_variation(diffs));
  require_same_double("data variation", get_data_variation(diffs, drawn.header_lines, total),
                      reference::get_data_variation(diffs, drawn.header_lines, total));
  require_equal("number of variables", get_number_of_variables(counts, drawn.header_lines),
                reference::get_number_of_variables(counts, drawn.header_lines));
}

void check_header_lines(const Case& drawn) {
  const Counts& counts = drawn.counts;
  require_equal("header lines", detection::get_header_lines(counts, drawn.first, drawn.cap),
                reference::get_header_lines(counts, drawn.first, drawn.cap));
  Counts empty_lines;
  std::vector<double> series;
  for (std::size_t i = 0; i < counts.size(); ++i) {
    if (counts[i] == 0) empty_lines.push_back(i);
    series.push_back(static_cast<double>(counts[i]) / 3.0);
  }
  require_equal("first data line", skip_to_data(drawn.header_lines, empty_lines, counts),
                reference::skip_to_data(drawn.header_lines, empty_lines, counts));
  const std::vector<double> got = three_point_filter(series, -1.0, 2.0, -0.5);
  const std::vector<double> expected = reference::three_point_filter(series, -1.0, 2.0, -0.5);
  require_equal("filtered numbers", got.size(), expected.size());
  for (std::size_t i = 0; i < got.size(); ++i) {
    require_same_double("filtered number", got[i], expected[i]);
  }
}

// ---------------------------------------------------------------------------------------------
// The counts as a text: one code unit for each field, or fields between commas.

std::u16string with_commas(const Counts& counts) {
  std::u16string text;
  for (const std::size_t count : counts) {
    for (std::size_t i = 0; i < count; ++i) text += i == 0 ? u"1" : u",1";
    text += u'\n';
  }
  return text;
}

Counts small(Counts counts) {
  if (counts.size() > 24) counts.resize(24);
  for (std::size_t& count : counts) count = std::min<std::size_t>(count, 9);
  return counts;
}

void check_valuation(const Case& drawn) {
  const Counts counts = small(drawn.counts);
  differential::Choices choices;
  if (drawn.is_given) choices.header_lines = drawn.header_lines;
  const parser::options record = differential::library_options(choices);
  const testing_support::ExactText units(testing_support::text_of_counts(counts, u'1'));
  testing_support::UnitStrategy strategy(record);
  strategy.populate_fields(units.field(), choices.num_lines);
  const StrategyValuation& got = strategy.valuation();
  const reference::Sample plain =
      reference::sample_strategy(reference::Mode::delimited, {u","}, {}, with_commas(counts),
                                 differential::reference_options(choices), choices.num_lines,
                                 std::nullopt, true, [](const std::u16string& text) {
                                   return datetime::is_datetime({text.data(), text.size()});
                                 });
  const reference::Valuation& expected = plain.valuation;
  require_equal<std::size_t>("header lines of a strategy", strategy.header_lines(),
                             plain.header_lines);
  require_same_double("total variation", got.total_variation, expected.total_variation);
  require_same_double("data variation", got.data_variation, expected.data_variation);
  require_equal<std::size_t>("lines", got.num_lines, expected.num_lines);
  require_equal("modal field count", got.modal_field_count, expected.modal_field_count);
  require_equal<std::size_t>("variables", got.num_variables, expected.num_variables);
  require_equal("typed columns", got.typed_columns, expected.typed_columns);
  require_equal("numeric columns", got.numeric_columns, expected.numeric_columns);
  require_equal("date columns", got.date_columns, expected.date_columns);
}

}  // namespace
}  // namespace textio::fuzz

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  textio::fuzz::Input input(data, size);
  const textio::fuzz::Case drawn(input);
  check_statistics(drawn);
  check_header_lines(drawn);
  if (drawn.is_valued) check_valuation(drawn);
  return 0;
}
