// The verdict over a text: probabilities, places within the text, and the same for other line endings.
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <string>

#include <vltextstream/assessment/sentences.hpp>
#include <vltextstream/assessment/verdict.hpp>
#include "fuzz/check.hpp"
#include "fuzz/input.hpp"
#include "fuzz/verdict_checks.hpp"
#include "support/exact_text.hpp"

namespace textio::fuzz {
namespace {

using namespace assessment;
using testing_support::ExactText;

void check_sentences(const Verdict& verdict) {
  for (const Hypothesis& each : verdict.hypotheses) {
    require(!deciding_sentence(verdict, each).empty(), "something decides against a rival");
  }
  require(!names_reason(verdict.names, true).empty(), "names have a reason");
}

void check_verdict(const Verdict& verdict) {
  if (verdict.hypotheses.empty()) return;
  check_probabilities(verdict);
  for (const Cut& each : verdict.cuts) check_records(verdict, each.records);
  check_sentences(verdict);
  require(verdict.names.line < verdict.lines.size(), "the line of the names is in the sample");
}

void check_other_endings(const std::u16string& text, const Verdict& verdict,
                         std::size_t num_lines) {
  if (text.find(u'\r') != text.npos || verdict.hypotheses.empty()) return;
  std::u16string other;
  for (const char16_t unit : text) {
    if (unit == u'\n') other += u'\r';
    other += unit;
  }
  const ExactText exact(other);
  const Verdict again = judge(exact.view(), num_lines);
  require_equal("hypotheses", again.hypotheses.size(), verdict.hypotheses.size());
  require_equal("best", again.best, verdict.best);
  require(std::abs(again.confidence - verdict.confidence) < 1e-9, "line endings do not matter");
}

}  // namespace
}  // namespace textio::fuzz

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using namespace textio::fuzz;
  Input input(data, size);
  const std::size_t num_lines = input.below(64);
  const std::u16string text = input.rest_as_text();
  const textio::testing_support::ExactText exact(text);
  const auto verdict = textio::assessment::judge(exact.view(), num_lines);
  check_verdict(verdict);
  check_other_endings(text, verdict, num_lines);
  return 0;
}
