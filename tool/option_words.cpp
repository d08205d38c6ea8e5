#include "tool/option_words.hpp"

#include <algorithm>
#include <array>
#include <cctype>
#include <utility>

#include <fmt/format.h>

#include "tool/emit/targets.hpp"
#include "tool/option_flags.hpp"
#include "tool/safe_text.hpp"
#include "tool/usage_errors.hpp"

namespace textio::tool {
namespace {

constexpr std::size_t kLongestKnown = 64;

char lower(char c) { return static_cast<char>(std::tolower(static_cast<unsigned char>(c))); }

// How many letters must be put in, taken out, replaced, or exchanged with the next one, to get from one word to the
// other.
std::size_t distance(std::string_view a, std::string_view b) {
  using Row = std::array<std::size_t, kLongestKnown + 2>;
  Row before_last{};
  Row last{};
  Row row{};
  for (std::size_t j = 0; j <= b.size(); ++j) last[j] = j;
  for (std::size_t i = 1; i <= a.size(); ++i) {
    row[0] = i;
    for (std::size_t j = 1; j <= b.size(); ++j) {
      const bool is_same = lower(a[i - 1]) == lower(b[j - 1]);
      row[j] = std::min({last[j] + 1, row[j - 1] + 1, last[j - 1] + (is_same ? 0 : 1)});
      const bool is_exchanged = i > 1 && j > 1 && lower(a[i - 1]) == lower(b[j - 2]) &&
                                lower(a[i - 2]) == lower(b[j - 1]);
      if (is_exchanged) row[j] = std::min(row[j], before_last[j - 2] + 1);
    }
    before_last = last;
    last = row;
  }
  return last[b.size()];
}

char first_letter(std::string_view word) {
  return lower(word[std::min(word.find_first_not_of('-'), word.size() - 1)]);
}

// Twice the distance; or, if that is less, one more than twice that from what the word begins with. One more if the
// first letters differ, which few mistake.
std::size_t distance_of_start(std::string_view typed, std::string_view word) {
  std::size_t least = 2 * distance(typed, word);
  for (const std::size_t length : {typed.size() - 1, typed.size(), typed.size() + 1}) {
    if (length < word.size())
      least = std::min(least, 2 * distance(typed, word.substr(0, length)) + 1);
  }
  return least + (first_letter(typed) == first_letter(word) ? 0 : 1);
}

std::size_t letters_in(std::string_view word) {
  return word.size() - std::min(word.find_first_not_of('-'), word.size());
}

// A third of the letters, one to three.
std::size_t most_distance(std::string_view typed) {
  return std::clamp<std::size_t>(letters_in(typed) / 3, 1, 3);
}

std::vector<std::string> names_of_targets() {
  std::vector<std::string> names;
  for (const Target& target : targets()) names.emplace_back(target.name);
  return names;
}

}  // namespace

std::vector<std::string> words_of(const std::string& flag) {
  static const std::vector<std::pair<std::string, std::vector<std::string>>> kOwn = {
      {"--color", {"auto", "always", "never"}},    {"--judge", {"assessment", "cascade"}},
      {"--sample", {"start", "spread"}},           {"--explain", {"cascade"}},
      {"--to", {"csv", "tsv", "jsonl", "sqlite"}}, {"--emit", names_of_targets()},
      {"--quote", {"double", "single", "none"}},   {"--escape", {"backslash", "doubled"}},
  };
  for (const auto& [name, words] : kOwn) {
    if (name == flag) return words;
  }
  for (const OptionFlag& option : option_flags()) {
    if (flag_of(option.name) == flag) return option.words;
  }
  return {};
}

std::size_t place_among_words(const std::string& flag, const std::string& typed) {
  const std::vector<std::string> words = words_of(flag);
  const auto word = std::find(words.begin(), words.end(), typed);
  if (word != words.end()) return static_cast<std::size_t>(word - words.begin());
  throw BadArgument(flag, fmt::format("Expected {}, got '{}'.{}", either_of(words),
                                      shortened(typed), meant(typed, words)));
}

std::string nearest(std::string_view typed, const std::vector<std::string>& known) {
  if (typed.size() > kLongestKnown || letters_in(typed) < 2) return {};
  std::size_t least = 2 * most_distance(typed) + 2;
  std::string found;
  for (const std::string& word : known) {
    if (word.size() > kLongestKnown || letters_in(word) < 2) continue;
    const std::size_t far = distance_of_start(typed, word);
    if (far >= least) continue;
    least = far;
    found = word;
  }
  return found;
}

std::string meant(std::string_view typed, const std::vector<std::string>& known) {
  const std::string word = nearest(typed, known);
  return word.empty() ? word : fmt::format(" Do you mean {}?", word);
}

std::string either_of(const std::vector<std::string>& words) {
  std::string text;
  for (const std::string& word : words) {
    if (!text.empty()) text += &word == &words.back() ? " or " : ", ";
    text += word;
  }
  return text;
}

}  // namespace textio::tool
