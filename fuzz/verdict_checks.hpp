// What holds for each verdict, whatever the text is and whatever is given.
#pragma once

#include <cmath>
#include <cstddef>

#include <vltextstream/assessment/verdict.hpp>
#include "fuzz/check.hpp"

namespace textio::fuzz {

inline void check_probabilities(const assessment::Verdict& verdict) {
  double sum = 0;
  double same = 0;
  for (const assessment::Hypothesis& each : verdict.hypotheses) {
    require(each.probability >= 0 && each.probability <= 1, "a probability is from 0 to 1");
    sum += each.probability;
    if (is_same_answer(verdict, each, verdict.winner())) same += each.probability;
  }
  require(std::abs(sum - 1) < 1e-9, "the probabilities sum to 1");
  require(std::abs(same - verdict.confidence) < 1e-9, "the confidence is that of the same answers");
  double rivals = 0;
  for (const assessment::Rival& rival : rivals_of(verdict, verdict.hypotheses.size())) {
    rivals += rival.probability;
    require(rival.probability <= verdict.confidence + 1e-9, "no rival is likelier than the answer");
  }
  require(std::abs(verdict.confidence + rivals - 1) < 1e-9, "winner and rivals share all");
}

inline void check_records(const assessment::Verdict& verdict, const assessment::Records& records) {
  std::size_t next_line = 0;
  for (std::size_t i = 0; i < records.size(); ++i) {
    require(records[i].line >= next_line, "records ascend");
    next_line = records[i].line + records[i].num_lines;
    require(next_line <= verdict.lines.size(), "records end within the sample");
    for (const assessment::Cell& cell : records.cells(i)) {
      require(cell.begin <= cell.end && cell.end <= records.text().size(), "cells are in the text");
    }
  }
}

}  // namespace textio::fuzz
