// kind_of() knows the usual words; the list here adds those that look like something else to it.
#include <vltextstream/columns/missing_words.hpp>

#include <algorithm>
#include <iterator>
#include <utility>

#include <vltextstream/columns/characters.hpp>

namespace textio::columns {
namespace {

using View = std::u16string_view;

// Folded. The words of spreadsheets for a calculation that failed, and of languages and databases.
constexpr View kOtherWords[] = {u"nan",    u"+nan",   u"-nan",   u"nat",     u"#div/0!", u"#value!",
                                u"#ref!",  u"#name?", u"#num!",  u"#null!",  u"#na",     u"missing",
                                u"(null)", u"<null>", u"<none>", u"(blank)", u"k.a.",    u"k. a.",
                                u"n.d.",   u"n. d.",  u"n/d",    u"s/d",     u"n.v.",    u"\u2026"};
constexpr std::size_t kLongestWord = 7;
constexpr std::size_t kMostWords = 32;

}  // namespace

bool is_missing_word(View text, assessment::CellKind kind) {
  if (kind == assessment::CellKind::missing) return true;
  if (text.size() > kLongestWord || is_digit(text.empty() ? u'0' : text.front())) return false;
  return std::any_of(std::begin(kOtherWords), std::end(kOtherWords),
                     [text](View word) { return is_word(text, word); });
}

void MissingTally::add(View word) {
  const auto found = std::find_if(words_.begin(), words_.end(),
                                  [word](const MissingWord& each) { return each.word == word; });
  if (found != words_.end()) {
    ++found->count;
  } else if (words_.size() < kMostWords) {
    words_.push_back({std::u16string(word), 1});
  }
}

}  // namespace textio::columns
