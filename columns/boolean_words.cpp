// A word may belong to several pairs, as "no" and "falso" do. It counts for all of them, and the
// pair with the largest count that has both words wins.
#include <vltextstream/columns/boolean_words.hpp>

#include <algorithm>
#include <iterator>

#include <vltextstream/columns/characters.hpp>

namespace textio::columns {
namespace {

using View = std::u16string_view;

struct KnownPair {
  View yes;
  View no;
};

// Folded. No pair of single letters that often mean something else: n and s are north and south.
constexpr KnownPair kKnownPairs[] = {
    {u"true", u"false"},  // the first two pairs are enough with one of their words
    {u"yes", u"no"},
    {u"t", u"f"},
    {u"y", u"n"},
    {u"on", u"off"},
    {u".true.", u".false."},
    {u"wahr", u"falsch"},
    {u"ja", u"nein"},
    {u"j", u"n"},
    {u"vrai", u"faux"},
    {u"oui", u"non"},
    {u"verdadero", u"falso"},
    {u"s\u00ED", u"no"},
    {u"si", u"no"},
    {u"vero", u"falso"},
    {u"s\u00EC", u"no"},
    {u"verdadeiro", u"falso"},
    {u"sim", u"n\u00E3o"},
    {u"waar", u"onwaar"},
    {u"ja", u"nee"},
    {u"ja", u"nej"},
    {u"ja", u"nei"},
    {u"tak", u"nie"},
    {u"prawda", u"fa\u0142sz"},
    {u"ano", u"ne"},
    {u"evet", u"hay\u0131r"},
    {u"\u0434\u0430", u"\u043D\u0435\u0442"},
};
constexpr std::size_t kPairsOfOneWord = 2;
constexpr std::size_t kLongestWord = 10;  // "verdadeiro"

}  // namespace

bool is_boolean_word(View text) {
  if (text.empty() || text.size() > kLongestWord) return false;
  return std::any_of(std::begin(kKnownPairs), std::end(kKnownPairs), [text](const KnownPair& pair) {
    return is_word(text, pair.yes) || is_word(text, pair.no);
  });
}

View other_boolean_word(View text) {
  for (std::size_t i = 0; i < kPairsOfOneWord; ++i) {
    if (is_word(text, kKnownPairs[i].yes)) return kKnownPairs[i].no;
    if (is_word(text, kKnownPairs[i].no)) return kKnownPairs[i].yes;
  }
  return {};
}

void BooleanVotes::add(View text) {
  static_assert(std::size(kKnownPairs) == kPairs);
  if (text.size() > kLongestWord) return;
  const auto count = [text](Side& side) {
    if (side.count++ == 0) side.first = text;
  };
  for (std::size_t i = 0; i < kPairs; ++i) {
    if (is_word(text, kKnownPairs[i].yes)) count(pairs_[i].yes);
    if (is_word(text, kKnownPairs[i].no)) count(pairs_[i].no);
  }
}

std::optional<BooleanWords> BooleanVotes::words() const {
  const Pair* best = nullptr;
  std::size_t most = 0;
  for (std::size_t i = 0; i < kPairs; ++i) {
    const Pair& pair = pairs_[i];
    const bool has_both = pair.yes.count > 0 && pair.no.count > 0;
    const std::size_t count = pair.yes.count + pair.no.count;
    if ((has_both || i < kPairsOfOneWord) && count > most) {
      best = &pair;
      most = count;
    }
  }
  if (best == nullptr) return std::nullopt;
  return BooleanWords{best->yes.first, best->no.first};
}

}  // namespace textio::columns
