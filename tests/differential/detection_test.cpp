// The library against the plain reference, over every small text and over random larger ones.
#include <cstdint>
#include <random>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "differential/comparison.hpp"
#include "support/printing.hpp"

namespace textio::differential {
namespace {

// The first difference that `compare` finds for a text of up to `longest` code units over
// `alphabet`, with that text; empty if there is none.
template <typename Compare>
std::string first_difference(const std::u16string& alphabet, std::size_t longest, Compare compare) {
  std::u16string text;
  const auto extend = [&](const auto& self) -> std::string {
    const std::string difference = compare(text);
    if (!difference.empty()) return testing_support::readable(text) + ": " + difference;
    if (text.size() == longest) return {};
    for (const char16_t unit : alphabet) {
      text.push_back(unit);
      const std::string deeper = self(self);
      if (!deeper.empty()) return deeper;
      text.pop_back();
    }
    return {};
  };
  return extend(extend);
}

constexpr char16_t kAlphabet[] = u"a1, \"\n\r\uFFFF";

TEST(SmallWorld, HoldsEveryText) {
  int texts = 0;
  first_difference(kAlphabet, 4, [&](const std::u16string&) {
    ++texts;
    return std::string();
  });
  EXPECT_EQ(texts, 1 + 8 + 64 + 512 + 4096);
}

TEST(SmallWorld, EveryStrategyAgreesWithTheReference) {
  EXPECT_EQ(first_difference(kAlphabet, 4,
                             [](const std::u16string& text) {
                               return difference_in_strategies(text, {}, {1, 0, 2});
                             }),
            "");
}

TEST(SmallWorld, DetectionAgreesWithTheReference) {
  EXPECT_EQ(first_difference(
                kAlphabet, 5,
                [](const std::u16string& text) { return difference_in_detection(text, {}); }),
            "");
}

TEST(SmallWorld, DetectionWithGivenHeaderLinesAgreesWithTheReference) {
  Choices choices;
  for (const std::size_t header_lines :
       {std::size_t{0}, std::size_t{1}, std::size_t{2}, SIZE_MAX}) {
    choices.header_lines = header_lines;
    EXPECT_EQ(first_difference(u"1, \n", 6,
                               [&](const std::u16string& text) {
                                 return difference_in_detection(text, choices);
                               }),
              "")
        << header_lines << " header lines";
  }
}

// ---------------------------------------------------------------------------------------------
// Random tables: lines of fields with one separator, some of them disturbed.

class RandomTables {
 public:
  explicit RandomTables(std::uint32_t seed) : random_(seed) {}

  std::size_t below(std::size_t bound) { return random_() % bound; }
  bool one_in(std::size_t n) { return below(n) == 0; }

  template <typename T>
  const T& one_of(const std::vector<T>& list) {
    return list[below(list.size())];
  }

  std::u16string text() {
    static const std::vector<std::u16string> kSeparators = {u",", u";", u"\t", u" ",  u"|",
                                                            u":", u"/", u"  ", u", ", u"#"};
    static const std::vector<std::u16string> kEndings = {u"\n", u"\n", u"\r\n", u"\r", u"\n\n"};
    const std::u16string separator = one_of(kSeparators);
    const std::u16string ending = one_of(kEndings);
    const std::size_t columns = 1 + below(5);
    std::u16string out;
    for (std::size_t i = below(4); i > 0; --i) out += prose() + ending;
    const bool same_width = one_in(3);
    for (std::size_t line = below(25); line > 0; --line) {
      std::size_t count = one_in(12) ? 1 + below(6) : columns;
      if (one_in(15)) out += u"%";
      for (; count > 0; --count) {
        out += same_width ? padded(field()) : field();
        if (count > 1) out += separator;
      }
      if (one_in(30)) out += separator;
      out += one_in(40) ? u"\n" : ending;
    }
    if (one_in(3) && !out.empty()) out.pop_back();
    return out;
  }

  // `text` with runs of blank lines, long enough to be looked up by other candidates.
  std::u16string with_blank_lines(const std::u16string& text) {
    std::u16string out;
    for (const char16_t unit : text) {
      out += unit;
      if (unit == u'\n' && one_in(6)) out += blank_lines();
    }
    return one_in(3) ? blank_lines() + out : out;
  }

  Choices choices() {
    Choices choices;
    if (one_in(4)) choices.header_lines = below(5);
    if (one_in(5)) choices.num_variables = below(5);
    if (one_in(3)) choices.comment_style = {u"%"};
    if (one_in(8)) choices.comment_style = {u"a", u"b"};
    if (one_in(6)) choices.whitespace = one_of<std::u16string>({u"", u" \t", u"\t", u"a "});
    if (one_in(10)) {
      choices.line_endings =
          one_of<std::vector<std::u16string>>({{}, {u""}, {u";"}, {u" "}, {u"\t\n", u"\n"}});
    }
    if (one_in(3)) choices.num_lines = below(12);
    return choices;
  }

  std::vector<unsigned long> widths() {
    std::vector<unsigned long> widths;
    for (std::size_t i = 1 + below(4); i > 0; --i) widths.push_back(below(6));
    widths.push_back(1 + below(9));
    if (one_in(20)) widths.push_back(SIZE_MAX / 2 + 1);
    return widths;
  }

 private:
  std::u16string blank_lines() {
    const auto chars = one_of<std::u16string>({u"", u" ", u"\t", u" \t", u" \b\t"});
    std::u16string lines;
    for (std::size_t count = 6 + below(12); count > 0; --count) {
      for (std::size_t n = chars.empty() ? 0 : below(4); n > 0; --n) {
        lines += chars[below(chars.size())];
      }
      lines += one_in(20) ? u"\r\n" : u"\n";
    }
    return lines;
  }

  std::u16string prose() {
    return one_of<std::u16string>({u"Measured in winter", u"# a, b; c", u"", u"x",
                                   u"station 12: north", u"2024-03-01", u"\"quoted\" words"});
  }

  std::u16string field() {
    return one_of<std::u16string>({u"1",
                                   u"-2.5",
                                   u"abc",
                                   u"",
                                   u" ",
                                   u"2024-03-01",
                                   u"12:30",
                                   u"1:02:03.5",
                                   u"\"q\"",
                                   u"\"a,b\"",
                                   u"\"x\ny\"",
                                   u"\"he said \"\"no\"\"\"",
                                   u"1+2i",
                                   u"NaN",
                                   u"01.03.2024",
                                   u"2024-03-01 10:00:00",
                                   u"\u00e9t\u00e9",
                                   u"\x1A",
                                   u"a b",
                                   u"\""});
  }

  static std::u16string padded(std::u16string text) {
    text.resize(8, u' ');
    return text;
  }

  std::mt19937 random_;
};

TEST(RandomWorld, DetectionAgreesWithTheReference) {
  for (std::uint32_t seed = 0; seed < 4000; ++seed) {
    RandomTables tables(seed);
    const std::u16string text = tables.text();
    ASSERT_EQ(difference_in_detection(text, tables.choices()), "")
        << "seed " << seed << ": " << testing_support::readable(text);
  }
}

TEST(RandomWorld, DetectionAgreesWithTheReferenceOverManyBlankLines) {
  for (std::uint32_t seed = 0; seed < 4000; ++seed) {
    RandomTables tables(seed);
    const std::u16string text = tables.with_blank_lines(tables.text());
    ASSERT_EQ(difference_in_detection(text, tables.choices()), "")
        << "seed " << seed << ": " << testing_support::readable(text);
  }
}

TEST(RandomWorld, EveryStrategyAgreesWithTheReference) {
  for (std::uint32_t seed = 0; seed < 2000; ++seed) {
    RandomTables tables(seed);
    const std::u16string text = tables.text();
    const Choices choices = tables.choices();
    ASSERT_EQ(difference_in_strategies(text, choices, tables.widths()), "")
        << "seed " << seed << ": " << testing_support::readable(text);
  }
}

}  // namespace
}  // namespace textio::differential
