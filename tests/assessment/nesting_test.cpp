#include <vltextstream/assessment/nesting.hpp>

#include <ostream>
#include <string>

#include <gtest/gtest.h>

#include "support/rule_name.hpp"

namespace textio::assessment {
namespace {

using testing_support::ByRule;

struct NestingCase {
  const char* rule;
  std::u16string text;
  bool is_nested;
};
std::ostream& operator<<(std::ostream& out, const NestingCase& row) { return out << row.rule; }

const NestingCase kJson[] = {
    {"Object", u"{\"a\": 1, \"b\": [true, false, null]}", true},
    {"Array", u"[1, -2.5, 1e9, \"x\"]", true},
    {"EmptyOnes", u"{\"a\":{},\"b\":[]}", true},
    {"BlanksAndLineBreaks", u"\uFEFF \r\n\t[\r\n1\r\n,\t2]\r\n", true},
    {"JsonLines", u"{\"a\":1}\n{\"a\":2}\n", true},
    {"ArraysInLines", u"[1,2]\r\n[3,4]\r\n", true},
    {"BracketsInStrings", u"[\"}]\",\"a\\\"]\",1]", true},
    {"OutsideTheBmpInStrings", u"[\"\x1A\",1]", true},
    // A sample may end anywhere.
    {"CutInAString", u"{\"a\":1,\"b", true},
    {"CutInAKey", u"[1,{\"a\"", true},
    {"CutAfterAComma", u"[1,", true},
    {"CutInAWord", u"[1,tr", true},
    {"CutAfterABackslash", u"[1,\"a\\", true},
    {"NothingComplete", u"[", false},
    {"OnlyAKey", u"{\"a\":", false},
    {"ValueAlone", u"1", false},
    {"StringAlone", u"\"a\"", false},
    {"ValueAfterOne", u"[1] 2", false},
    {"TextAfterOne", u"{\"a\":1} one", false},
    {"OtherClosing", u"[1}", false},
    {"OneClosingTooMany", u"[1]]", false},
    {"WithoutComma", u"[1 2]", false},
    {"CommaBeforeClosing", u"[1,]", false},
    {"TwoCommas", u"[1,,2]", false},
    {"KeyWithoutQuotes", u"{a:1}", false},
    {"KeyWithoutColon", u"{\"a\" 1}", false},
    {"LineBreakInAString", u"[\"a\nb\"]", false},
    {"OtherWord", u"[truth]", false},
    {"Heading", u"[section]\nkey=1\n", false},
    {"TimeInBrackets", u"[10:15] started\n", false},
    {"SetBraces", u"{1,2}", false},
    {"Nothing", u"", false},
    {"Blanks", u" \n", false},
    {"Table", u"a,b\n1,2\n", false},
};

const NestingCase kTags[] = {
    {"OneElement", u"<r>1</r>", true},
    {"Declaration", u"<?xml version=\"1.0\"?>\n<!DOCTYPE r>\n<r><a>1</a></r>\n", true},
    {"ElementWithoutContent", u"<r><a/>", true},
    {"Attributes", u"<r a=\"1 > 2\" b='<'>x</r>", true},
    {"Comment", u"<r><!-- </x> --><a>1</a>", true},
    {"CData", u"<r><![CDATA[</x>]]><a>1</a>", true},
    {"PrefixesAndHyphens", u"<x:r-1.a><x:b/></x:r-1.a>", true},
    {"NotAllClosed", u"<p>one<br>two<p>three</p>", true},
    {"ClosedWithThoseInside", u"<ul><li>one<li>two</ul>", true},
    {"Script", u"<html><script>if (a<b) c();</script>", true},
    {"LessThan", u"<p>a < b</p>", true},
    {"TwoElements", u"<a>1</a>\n<a>2</a>\n", true},
    {"CutInATag", u"<r><a>1</a><b c=\"d", true},
    {"CutInAClosingTag", u"<r><a>1</a></", true},
    {"NothingClosed", u"<r><a>", false},
    {"TextAfterIt", u"<a>1</a>,2\n<a>3</a>,4\n", false},
    {"OtherClosing", u"<a>1</b>", false},
    {"TagInATag", u"<a <b>1</b>", false},
    {"MissingValues", u"<NA>,1\n<NA>,2\n", false},
    {"Limit", u"<0.1,5\n<0.2,6\n", false},
};

class Nesting : public testing::TestWithParam<NestingCase> {};
TEST_P(Nesting, IsOrIsNot) { EXPECT_EQ(is_nested(GetParam().text), GetParam().is_nested); }
INSTANTIATE_TEST_SUITE_P(Json, Nesting, testing::ValuesIn(kJson), ByRule());
INSTANTIATE_TEST_SUITE_P(Tags, Nesting, testing::ValuesIn(kTags), ByRule());

// What begins as a document does stays one wherever it is cut, once something in it is complete.
TEST(NestingOfParts, OfADocumentAllAreNested) {
  const std::u16string documents[] = {u"[1,{\"a\":[true,\"b\\n\"],\"c\":{}},-2.5e+3,null]",
                                      u"<r><a b='c'>1</a><!-- d --><e/>f</r>"};
  const std::size_t first_complete[] = {2, 17};  // "[1" and "<r><a b='c'>1</a>"
  for (std::size_t i = 0; i < 2; ++i) {
    for (std::size_t size = 0; size <= documents[i].size(); ++size) {
      EXPECT_EQ(is_nested(documents[i].substr(0, size)), size >= first_complete[i])
          << i << " " << size;
    }
  }
}

}  // namespace
}  // namespace textio::assessment
