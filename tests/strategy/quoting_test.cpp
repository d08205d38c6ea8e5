#include <vltextstream/strategy/quoting.hpp>

#include <cstddef>
#include <ostream>
#include <string>

#include <gtest/gtest.h>

#include "support/exact_text.hpp"
#include "support/rule_name.hpp"

namespace textio {
namespace {

using testing_support::ByRule;
using testing_support::ExactText;

struct QuoteCase {
  const char* rule;
  std::u16string text;
  std::size_t end;  // of the quoted parts at the start
  std::u16string unquoted;
};
std::ostream& operator<<(std::ostream& out, const QuoteCase& row) { return out << row.rule; }

const QuoteCase kQuoteCases[] = {
    {"NoQuote", u"ab", 0, u"ab"},
    {"OneQuotedPart", u"\"a\"b", 3, u"ab"},
    {"ADoubledQuoteGoesOn", u"\"a\"\"b\"c", 6, u"a\"bc"},
    {"AnEmptyQuotedPart", u"\"\"a", 2, u"a"},
    {"AQuoteInsideIsText", u"a\"b\"", 0, u"a\"b\""},
    {"AnUnterminatedQuoteRunsToTheEnd", u"\"a,b", 4, u"a,b"},
    {"ALoneQuote", u"\"", 1, u""},
    {"AnEmptyText", u"", 0, u""},
};

class Quoting : public testing::TestWithParam<QuoteCase> {};
TEST_P(Quoting, IsSkippedAndTakenOff) {
  const ExactText text(GetParam().text);
  const CodeUnitSet quote(u"\"");
  CodeUnitFinder quotes(text.field(), quote);
  EXPECT_EQ(skip_quoted(text.field(), 0, u'"', quotes), GetParam().end);
  std::u16string unquoted = u"what was there before";
  unquote_into(unquoted, view_of(text.field()), u'"');
  EXPECT_EQ(unquoted, GetParam().unquoted);
}
INSTANTIATE_TEST_SUITE_P(Table, Quoting, testing::ValuesIn(kQuoteCases), ByRule());

}  // namespace
}  // namespace textio
