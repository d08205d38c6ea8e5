// A verdict over a text: every sensible reading with its probability, and the names line.
//
//   const Verdict verdict = judge(u"a;b\n1,5;2\n2,5;3\n", 100);
//   verdict.winner().reading.delimiter;   // u";"
//   verdict.confidence;                   // 0.99
//
// Ownership  the verdict has views of the text, which must outlive it.
// Cost       linear in the sampled text for each reading.
#pragma once

#include <cstddef>
#include <optional>
#include <string_view>
#include <vector>

#include <vltextstream/assessment/evidence.hpp>
#include <vltextstream/assessment/given.hpp>
#include <vltextstream/assessment/names_evidence.hpp>
#include <vltextstream/assessment/reading.hpp>
#include <vltextstream/assessment/records.hpp>
#include <vltextstream/assessment/sampled_lines.hpp>

namespace textio::assessment {

// One reading, with one number of columns.
struct Hypothesis {
  std::size_t cut = 0;  // of Verdict::cuts
  TableFrame table;
  CellKinds
      kinds;  // of the first data, at most kRecordsLookedInto; none if it was not looked into closely
  EvidenceAmounts amounts = {};
  double score = 0;
  double probability = 0;
};

struct Cut {
  Reading reading;
  Records records;
};

struct NamesVerdict {
  NamesAmounts amounts = {};
  double probability = 0;

  // The line that holds the names if there are any: the first record of the table, or a line or comment
  // above it that is cut otherwise.
  std::size_t line = 0;
  bool is_above_table = false;

  // Whether this is not found but given; the probability is then 0 or 1.
  bool is_given = false;

  // The cells of that line, trimmed.
  std::vector<std::u16string_view> texts;
};

struct Verdict {
  SampledLines lines;
  std::vector<Cut> cuts;
  std::vector<Hypothesis> hypotheses;
  std::size_t best = 0;  // the most probable one

  // Of the best and all others that give the same answer.
  double confidence = 0;
  NamesVerdict names;

  // There is one unless the text has no line that is not blank.
  const Hypothesis& winner() const { return hypotheses[best]; }
  const Cut& cut_of(const Hypothesis& hypothesis) const { return cuts[hypothesis.cut]; }
};

// Every hypothesis is first weighed by the cells of a few records. All records are examined only if the
// score is then within `margin` of the best: by default, if the odds exceed one in five hundred.
inline constexpr double kMargin = 6.2;

// The most that is judged. The rest of the sample is only cut, by the winning reading.
inline constexpr std::size_t kMostJudgedLines = 1000;
inline constexpr std::size_t kMostJudgedUnits = 262'144;

Verdict judge(std::u16string_view text, std::size_t num_lines, double margin = kMargin);

// Among the readings that agree with what is given. There may be none: without a line below the header.
Verdict judge(std::u16string_view text, std::size_t num_lines, const Given& given,
              double margin = kMargin);

// The answers that compete with the winner, the most probable first: of each the most probable hypothesis,
// with the probabilities of all that give the same answer.
struct Rival {
  std::size_t hypothesis = 0;
  double probability = 0;
};
std::vector<Rival> rivals_of(const Verdict& verdict, std::size_t most);

// Whether two hypotheses have the same separator and as many columns.
bool is_same_answer(const Verdict& verdict, const Hypothesis& a, const Hypothesis& b);

// `kinds` are those of the first data of the table.
NamesVerdict find_names(const SampledLines& lines, const Cut& cut, const TableFrame& table,
                        const CellKinds& kinds, const Given& given = {});

// The cells of any line, trimmed, one for each column of the table: cut as the table is, or by blanks if only
// that gives so many.
std::vector<std::u16string_view> cells_of_line(const SampledLines& lines, std::size_t line,
                                               const Cut& cut, std::size_t columns);

// Whether the cells of a line are units or say that there is none, and one is a unit.
bool holds_units(const SampledLines& lines, std::size_t line, const Cut& cut, std::size_t columns);

}  // namespace textio::assessment
