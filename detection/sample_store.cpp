#include <vltextstream/detection/sample_store.hpp>

#include <algorithm>
#include <utility>

#include <vltextstream/strategy/field_text.hpp>
#include <vltextstream/strategy/sampling/sample_cut.hpp>
#include <vltextstream/strategy/sampling/trial.hpp>

namespace textio::detection {
namespace {

// Skipping a shorter run is faster than looking it up.
constexpr std::size_t kManyBlanks = 8;

// The fields that a fixed-width strategy cuts depend on what it has cut before. Its counts would
// not match a sample that is drawn after the valuation.
bool can_be_drawn_again(const Candidate& candidate) {
  return candidate.strategy->mode() != Strategy::kFixedWidth &&
         candidate.counts.size() == candidate.sample.size();
}

}  // namespace

Candidate valued(std::shared_ptr<Strategy> strategy, DrawnSample sample) {
  Trial trial(*strategy, sample);
  trial.settle();
  LineCounts counts = trial.take_counts();
  return {std::move(strategy), std::move(sample), std::move(counts)};
}

DrawnSample SampleStore::draw(Strategy& strategy, unsigned long num_lines) {
  return draw_within({strategy.most_texts(num_lines)}, strategy);
}

DrawnSample SampleStore::draw_past_blanks(Strategy& strategy) {
  SampleLimits limits{strategy.most_texts(num_lines_)};
  limits.blank_runs = blank_runs_;
  return draw_within(limits, strategy);
}

DrawnSample SampleStore::draw_like(const DrawnSample& other, Strategy& strategy) {
  SampleLimits limits{strategy.most_texts(other.size())};
  limits.takes_last_comments = ends_at(text_, other.found.end);
  return draw_within(limits, strategy);
}

DrawnSample SampleStore::draw_within(SampleLimits limits, Strategy& strategy) {
  limits.likely_lines = likely_lines_;
  DrawnSample sample = strategy.draw(text_, limits);
  likely_lines_ = sample.texts.size();
  reached_end_ = reached_end_ || sample.found.reached_end;
  return sample;
}

void SampleStore::remember_blanks(const DrawnSample& sample) {
  const std::vector<SampleRun>& runs = sample.found.runs;
  for (std::size_t k = 0; k < runs.size(); ++k) {
    if (runs[k].kind != SampleLineKind::blank || runs[k].num_lines < kManyBlanks) continue;
    const std::size_t end = k + 1 < runs.size() ? runs[k + 1].begin : sample.found.end;
    blank_runs_.push_back({runs[k].begin, end, runs[k].num_lines});
    for (const char16_t unit : view_of(slice(text_, runs[k].begin, end))) {
      if (!contains(blank_units_, unit)) blank_units_.push_back(unit);
    }
  }
}

void SampleStore::keep_or_drop(Candidate& candidate) {
  const std::size_t entries = candidate.sample.texts.size() + candidate.sample.found.runs.size() +
                              candidate.counts.runs().size();
  if (entries <= room_ || !can_be_drawn_again(candidate)) {
    room_ -= std::min(entries, room_);
    return;
  }
  candidate.most_texts = candidate.sample.most_texts;
  candidate.sample = {};
  candidate.counts = {};
}

// The limit is the same, so the sample ends at the same place.
void SampleStore::restore(Candidate& candidate) {
  if (!candidate.most_texts) return;
  candidate.sample = draw_within({*candidate.most_texts}, *candidate.strategy);
  candidate.counts = SampleCut(*candidate.strategy, candidate.sample).take_counts();
  candidate.most_texts.reset();
}

}  // namespace textio::detection
