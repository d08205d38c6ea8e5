// Tables with what few tables have: escapes in names, units that are not known, words for a missing value next to
// units, given lines of an uncommon form.
#include <vltextstream/layout/judged_layout.hpp>

#include <ostream>
#include <string>
#include <string_view>
#include <vector>

#include <gtest/gtest.h>

#include <vltextstream/layout/detect_layout.hpp>

#include "support/exact_text.hpp"
#include "support/printing.hpp"
#include "support/rule_name.hpp"

namespace textio::standalone {
namespace {

using testing_support::ByRule;
using testing_support::ExactText;
using testing_support::readable;
using Texts = std::vector<std::u16string>;

std::string listed(const Texts& texts) {
  std::string text;
  for (const std::u16string& each : texts) text += '[' + readable(each) + ']';
  return text;
}

struct HeadCase {
  const char* rule;
  std::u16string text;
  void (*choose)(DetectSettings&);
  Texts names;
  Texts units;
};
std::ostream& operator<<(std::ostream& out, const HeadCase& row) { return out << row.rule; }

void choose_nothing(DetectSettings&) {}

void choose_quotes_and_names(DetectSettings& settings) {
  settings.options.delimiters = {u","};
  settings.options.detect_delimiters = false;
  settings.quote = u'"';
  settings.escape = u'\\';
  settings.names_line = 1;
}

template <std::size_t kFirst, std::size_t kSecond>
void choose_widths_and_names(DetectSettings& settings) {
  settings.options.parser_type = parser::parser_kind::fixedwidth;
  settings.options.variable_widths = {kFirst, kSecond};
  settings.names_line = 1;
}

const HeadCase kHeads[] = {
    {"EscapedAndDoubledQuotesInNames",
     u"\"a \\\"b\\\"\",\"c \"\"d\"\"\",size 5\"\n\"x\",\"y\",1\n\"z\",\"w\",2\n",
     choose_quotes_and_names,
     {u"a \"b\"", u"c \"d\"", u"size 5\""},
     {}},
    {"MissingValuesBelowUnits",
     u"x,y\nkm,s\nNA,1\n2,3\n4,5\n6,7\n",
     choose_nothing,
     {u"x", u"y"},
     {u"km", u"s"}},
    // Given widths cut every line, so a word may be in two columns, and two words in one.
    {"NamesByGivenWidths",
     u"id name\n12 ash \n34 elm \n56 oak \n",
     choose_widths_and_names<3, 4>,
     {u"id", u"name"},
     {}},
};

class UncommonHead : public testing::TestWithParam<HeadCase> {};
TEST_P(UncommonHead, IsThatOfTheRow) {
  DetectSettings settings;
  GetParam().choose(settings);
  const Layout layout = detect_layout(ExactText(GetParam().text).view(), settings);
  EXPECT_EQ(layout.names_line, 1U);
  EXPECT_EQ(listed(layout.names), listed(GetParam().names));
  EXPECT_EQ(listed(layout.units), listed(GetParam().units));
}
INSTANTIATE_TEST_SUITE_P(Table, UncommonHead, testing::ValuesIn(kHeads), ByRule());

// One unit of four is not enough for a row of units.
TEST(UnknownUnits, AreNone) {
  const Layout layout =
      detect_layout(u"a,b,c,d\nkm,foo,qux,baz\n1,2,3,4\n5,6,7,8\n9,10,11,12\n13,14,15,16\n");
  EXPECT_EQ(layout.units_line, std::nullopt);
}

TEST(GivenDelimiters, AreThoseOfTheLayoutThoughFewOccur) {
  DetectSettings settings;
  settings.options.delimiters = {u";", u"::"};
  settings.options.detect_delimiters = false;
  settings.names_line = 0;
  const Layout layout = detect_layout(u"1;2\n3;4\n", settings);
  EXPECT_EQ(layout.mode, LayoutMode::delimited);
  EXPECT_EQ(layout.delimiters, (Texts{u";", u"::"}));
  EXPECT_EQ(layout.num_variables, 2U);
}

}  // namespace
}  // namespace textio::standalone
