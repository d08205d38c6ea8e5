// A whole detection, bit for bit against the reference, with and without a trace.
#include <cstddef>
#include <cstdint>
#include <string>

#include <vltextstream/detection/strategy_selector.hpp>
#include "differential/comparison.hpp"
#include "fuzz/check.hpp"
#include "fuzz/choices.hpp"
#include "support/exact_text.hpp"
#include "support/selection.hpp"

namespace textio::fuzz {
namespace {

using testing_support::describe;
using testing_support::ExactText;

std::string describe_winner(Strategy& winner) {
  std::string out = describe(winner);
  if (winner.num_variables() >= 0) out += ' ' + describe(winner.valuation());
  return out;
}

void check_tracing(const std::u16string& text, const differential::Choices& choices) {
  const ExactText exact(text);
  const parser::options record = differential::library_options(choices);
  const detection::StrategySelector selector(record);
  detection::SelectionTrace trace;
  const auto traced = selector.pick_strategy(exact.field(), choices.num_lines, trace);
  const auto untraced = selector.pick_strategy(exact.field(), choices.num_lines);
  require_same_lines("winner without a trace", describe_winner(*untraced),
                     describe_winner(*traced));
}

}  // namespace
}  // namespace textio::fuzz

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using namespace textio::fuzz;
  const TextInput input(data, size);
  const std::u16string text = input.text();
  require_no_difference(textio::differential::difference_in_detection(text, input.choices()));
  const bool is_also_traced = text.size() % 4 == 0;  // one in four: it doubles the time
  if (is_also_traced) check_tracing(text, input.choices());
  return 0;
}
