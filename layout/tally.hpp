// Tally: texts and how often each occurs.
//
//   Tally tally;
//   tally.add(u"\n");
//   tally.take();   // {{u"\n", 1}}
//
// Cost  a look-up for each text that is added.
#pragma once

#include <algorithm>
#include <cstddef>
#include <string>
#include <string_view>
#include <unordered_map>
#include <utility>
#include <vector>

namespace textio::standalone {

class Tally {
 public:
  void add(std::u16string_view text) {
    if (last_ < counts_.size() && counts_[last_].first == text) {
      ++counts_[last_].second;
      return;
    }
    const auto [place, is_new] = places_.emplace(text, counts_.size());
    last_ = place->second;
    if (is_new) counts_.emplace_back(text, 0);
    ++counts_[last_].second;
  }

  // The most frequent first; of equally frequent ones, that which came first. Leaves nothing.
  std::vector<std::pair<std::u16string, std::size_t>> take() {
    std::stable_sort(counts_.begin(), counts_.end(),
                     [](const auto& a, const auto& b) { return a.second > b.second; });
    places_.clear();
    return std::exchange(counts_, {});
  }

 private:
  std::vector<std::pair<std::u16string, std::size_t>> counts_;
  std::unordered_map<std::u16string, std::size_t> places_;
  std::size_t last_ = 0;  // the text that was added last
};

}  // namespace textio::standalone
