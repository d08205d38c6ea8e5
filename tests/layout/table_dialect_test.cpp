// What a detection says about how a table is written. Each row has a whole text.
#include <vltextstream/layout/table_dialect.hpp>

#include <ostream>
#include <string>
#include <string_view>
#include <vector>

#include <gtest/gtest.h>

#include <vltextstream/layout/detect_layout.hpp>
#include <vltextstream/standalone/decoding/utf_text.hpp>

#include "support/exact_text.hpp"
#include "support/printing.hpp"
#include "support/rule_name.hpp"
#include "support/table_facts.hpp"
#include "support/temp_folder.hpp"

namespace textio::standalone {
namespace {

using testing_support::ByRule;
using testing_support::ExactText;
using testing_support::facts_of;
using testing_support::readable;
using testing_support::TempFolder;

struct DialectCase {
  const char* rule;
  std::u16string text;
  std::string dialect;
  std::string kinds;  // of the columns
};
std::ostream& operator<<(std::ostream& out, const DialectCase& row) { return out << row.rule; }

std::string kinds_of(const Layout& layout) {
  std::string kinds;
  for (const ColumnFacts& column : layout.columns) {
    if (!kinds.empty()) kinds += ' ';
    kinds += to_string(column.kind);
  }
  return kinds;
}

class TableDialectOf : public testing::TestWithParam<DialectCase> {};
TEST_P(TableDialectOf, IsThatOfTheRow) {
  const Layout layout = detect_layout(ExactText(GetParam().text).view());
  EXPECT_EQ(facts_of(layout), GetParam().dialect);
  EXPECT_EQ(kinds_of(layout), GetParam().kinds);
}

// --- decimal commas ----------------------------------------------------------------------------

const DialectCase kDecimalCommas[] = {
    {"SemicolonsAndTexts",
     u"Ort;Pegel;Abfluss\nAst;1,5;12,25\nBad;2,75;8,5\nCham;0,5;11,0\nDorf;3,25;9,75\nEib;2,5;10,"
     u"0\n",
     "; dec=,", "text decimal decimal"},
    {"SemicolonsAndIntegers", u"x;y\n1;0,25\n2;0,75\n3;1,5\n4;2,25\n5;3,5\n", "; dec=,",
     "integer decimal"},
    {"SemicolonsAndCommasInAllColumns", u"1,5;2,5;3,25\n2,5;3,5;4,75\n3,5;4,5;5,25\n4,5;5,5;6,75\n",
     "; dec=,", "decimal decimal decimal"},
    {"SemicolonsAndDates",
     u"Datum;Kurs\n30.01.2024;17,25\n31.01.2024;17,5\n01.02.2024;16,75\n02.02.2024;17,0\n",
     "; dec=,", "date decimal"},
    {"SemicolonsAndThreeDecimals", u"x;y\nAst;1,234\nBad;2,345\nCham;3,456\nDorf;4,567\n",
     "; dec=,", "text decimal"},

    {"TabsAndIntegers", u"t\tU\tI\n0\t1,25\t0,01\n1\t1,5\t0,02\n2\t1,75\t0,04\n3\t2,0\t0,08\n",
     "tab dec=,", "integer decimal decimal"},
    {"TabsAndTexts", u"Ort\tPegel\nAst\t1,5\nBad\t2,75\nCham\t0,5\nDorf\t3,25\n", "tab dec=,",
     "text decimal"},
    {"TabsAndNegativeNumbers", u"x\ty\n-1,5\t2,25\n-2,5\t-3,5\n3,75\t-0,5\n0,25\t1,5\n",
     "tab dec=,", "decimal decimal"},
    {"TabsAndExponents", u"f\tp\n10,5\t1,5E-3\n20,5\t2,5E-3\n30,5\t7,25E-4\n40,5\t1,0E-4\n",
     "tab dec=,", "decimal scientific"},

    {"AlignedAtTheRight",
     u"Tag   Regen   Temp\n"
     u"Mo      1,5   12,2\n"
     u"Di     10,0    9,8\n"
     u"Mi      0,2   11,4\n"
     u"Do      3,7    8,9\n"
     u"Fr     12,6   10,1\n",
     "aligned dec=,", "text decimal decimal"},
    {"AlignedAtTheLeft",
     u"Messung  Wert   Fehler\n"
     u"erste    1,25   0,5\n"
     u"zweite   12,5   0,25\n"
     u"dritte   0,75   1,5\n"
     u"vierte   102,5  0,125\n"
     u"letzte   3,5    0,5\n",
     "aligned dec=,", "text decimal decimal"},
    {"AlignedWithoutNames",
     u"  1,5   2,25    3\n"
     u" 12,5   4,75   11\n"
     u"  0,5  12,25    7\n"
     u"  3,5   0,75  104\n"
     u"  8,5   1,25   20\n",
     "aligned dec=,", "decimal decimal integer"},
    {"AlignedDates",
     u"Datum        Kurs    Menge\n"
     u"30.01.2024   17,25     120\n"
     u"31.01.2024    7,5       80\n"
     u"01.02.2024  116,75       5\n"
     u"02.02.2024   17,0     1500\n",
     "aligned dec=,", "date decimal integer"},
};
INSTANTIATE_TEST_SUITE_P(DecimalCommas, TableDialectOf, testing::ValuesIn(kDecimalCommas),
                         ByRule());

// --- grouping ----------------------------------------------------------------------------------

const DialectCase kPoints[] = {
    {"SemicolonsAndMoney", u"Ort;Summe\nAst;1.234,50\nBad;7,25\nCham;12.500,00\nDorf;980,75\n",
     "; dec=, grp=.", "text decimal"},
    {"TabsAndMillions", u"Ort\tSumme\nAst\t1.234.567\nBad\t12.345.678\nCham\t980\nDorf\t45.000\n",
     "tab grp=.", "text integer"},
    {"BarsAndOneDecimal", u"Ort|Summe\nAst|1.234,5\nBad|12.345,5\nCham|980,0\nDorf|45.000,5\n",
     "| dec=, grp=.", "text decimal"},
    {"Aligned",
     u"Ort        Summe    Anteil\n"
     u"Ast     1.234.567      12,5\n"
     u"Bad    12.345.678       7,5\n"
     u"Cham          980     100,0\n"
     u"Dorf       45.000       0,5\n",
     "aligned dec=, grp=.", "text integer decimal"},
};
INSTANTIATE_TEST_SUITE_P(GroupedByPoints, TableDialectOf, testing::ValuesIn(kPoints), ByRule());

const DialectCase kCommas[] = {
    {"Tabs", u"town\tsum\nAsh\t1,234.50\nBath\t7.25\nCove\t12,500.00\nDale\t980.75\n",
     "tab dec=. grp=,", "text decimal"},
    {"SemicolonsAndMillions", u"town;sum\nAsh;1,234,567\nBath;12,345,678\nCove;980\nDale;45,000\n",
     "; grp=,", "text integer"},
    {"CommasAndQuotes", u"town,sum\nAsh,\"1,234.50\"\nBath,7.25\nCove,\"12,500.00\"\nDale,980.75\n",
     ", quote=\" escape=doubled dec=. grp=,", "text decimal"},
    {"Bars",
     u"town|sum|rate\nAsh|1,234,567|1.5\nBath|12,345,678|2.25\nCove|980|3.5\nDale|45,000|0.75\n",
     "| dec=. grp=,", "text integer decimal"},
};
INSTANTIATE_TEST_SUITE_P(GroupedByCommas, TableDialectOf, testing::ValuesIn(kCommas), ByRule());

const DialectCase kBlanks[] = {
    {"Semicolons", u"Ort;Summe\nAst;1 234,50\nBad;7,25\nCham;12 500,00\nDorf;980,75\n",
     "; dec=, grp= ", "text decimal"},
    {"Tabs", u"town\tsum\nAsh\t1 234 567\nBath\t12 345 678\nCove\t980\nDale\t45 000\n",
     "tab grp= ", "text integer"},
    {"Commas", u"town,sum\nAsh,1 234.50\nBath,7.25\nCove,12 500.00\nDale,980.75\n",
     ", dec=. grp= ", "text decimal"},
    {"Bars", u"town|sum\nAsh|1 234\nBath|12 345\nCove|980\nDale|45 000\n",
     "| grp= ", "text integer"},
};
INSTANTIATE_TEST_SUITE_P(GroupedByBlanks, TableDialectOf, testing::ValuesIn(kBlanks), ByRule());

const DialectCase kNoBreakSpaces[] = {
    {"Semicolons", u"Ort;Summe\nAst;1\u00A0234,50\nBad;7,25\nCham;12\u00A0500,00\nDorf;980,75\n",
     "; dec=, grp=\\u00A0", "text decimal"},
    {"Tabs",
     u"town\tsum\nAsh\t1\u00A0234\u00A0567\nBath\t12\u00A0345\u00A0678\nCove\t980\nDale\t45\u00A000"
     u"0\n",
     "tab grp=\\u00A0", "text integer"},
    {"Commas", u"town,sum\nAsh,1\u00A0234.50\nBath,7.25\nCove,12\u00A0500.00\nDale,980.75\n",
     ", dec=. grp=\\u00A0", "text decimal"},
    {"Bars", u"town|sum\nAsh|1\u00A0234\nBath|12\u00A0345\nCove|980\nDale|45\u00A0000\n",
     "| grp=\\u00A0", "text integer"},
};
INSTANTIATE_TEST_SUITE_P(GroupedByNoBreakSpaces, TableDialectOf, testing::ValuesIn(kNoBreakSpaces),
                         ByRule());

const DialectCase kNarrowSpaces[] = {
    {"Semicolons", u"Ort;Summe\nAst;1\u202F234,50\nBad;7,25\nCham;12\u202F500,00\nDorf;980,75\n",
     "; dec=, grp=\\u202F", "text decimal"},
    {"Tabs",
     u"town\tsum\nAsh\t1\u202F234\u202F567\nBath\t12\u202F345\u202F678\nCove\t980\nDale\t45\u202F00"
     u"0\n",
     "tab grp=\\u202F", "text integer"},
    {"Commas", u"town,sum\nAsh,1\u202F234.50\nBath,7.25\nCove,12\u202F500.00\nDale,980.75\n",
     ", dec=. grp=\\u202F", "text decimal"},
    {"Bars", u"town|sum\nAsh|1\u202F234\nBath|12\u202F345\nCove|980\nDale|45\u202F000\n",
     "| grp=\\u202F", "text integer"},
};
INSTANTIATE_TEST_SUITE_P(GroupedByNarrowSpaces, TableDialectOf, testing::ValuesIn(kNarrowSpaces),
                         ByRule());

const DialectCase kApostrophes[] = {
    {"Semicolons", u"Ort;Summe\nAarau;1'234.50\nBern;7.25\nChur;12'500.00\nDavos;980.75\n",
     "; dec=. grp='", "text decimal"},
    {"Tabs", u"Ort\tSumme\nAarau\t1'234'567\nBern\t12'345'678\nChur\t980\nDavos\t45'000\n",
     "tab grp='", "text integer"},
    {"Commas", u"Ort,Summe\nAarau,1'234.50\nBern,7.25\nChur,12'500.00\nDavos,980.75\n",
     ", dec=. grp='", "text decimal"},
    {"Typographic", u"Ort|Summe\nAarau|1\u2019234\nBern|12\u2019345\nChur|980\nDavos|45\u2019000\n",
     "| grp=\\u2019", "text integer"},
};
INSTANTIATE_TEST_SUITE_P(GroupedByApostrophes, TableDialectOf, testing::ValuesIn(kApostrophes),
                         ByRule());

// The marks are those of most columns; a column that differs has its own.
TEST(TableDialectMarks, AreThoseOfMostColumns) {
  const Layout layout = detect_layout(
      std::u16string_view(u"a;b;c\n1,5;2,5;1.25\n2,5;3,5;2.25\n3,5;4,5;3.75\n4,5;5,5;4.25\n"));
  EXPECT_EQ(facts_of(layout), "; dec=,");
  ASSERT_EQ(layout.columns.size(), 3U);
  EXPECT_EQ(layout.columns[0].decimal, u',');
  EXPECT_EQ(layout.columns[1].decimal, u',');
  EXPECT_EQ(layout.columns[2].decimal, u'.');
}

// --- missing words -----------------------------------------------------------------------------

const DialectCase kMissing[] = {
    {"OneWordInOneColumn", u"x,y\n1,2.5\n2,NA\n3,4.5\n4,NA\n5,1.5\n", ", dec=. missing=NA*2",
     "integer decimal"},
    {"OneWordInTwoColumns", u"x;y\n1,5;-\n2,5;7\n-;8\n4,5;-\n5,5;9\n", "; dec=, missing=-*3",
     "decimal integer"},
    {"TheMostFrequentFirst", u"x\ty\n1\tnull\n2\t3\nn/a\t4\n4\tnull\n5\t6\n6\t7\n",
     "tab missing=null*2 missing=n/a*1", "integer integer"},
    {"Sentinels", u"x,y\n1,12.5\n2,-999\n3,14.5\n4,-999\n5,11.5\n6,13.0\n",
     ", dec=. missing=-999*2", "integer decimal"},
    {"NoneInColumnsOfTexts", u"x,y\n1,oak\n2,NA\n3,elm\n4,fir\n5,ash\n", ",", "integer text"},
};
INSTANTIATE_TEST_SUITE_P(Missing, TableDialectOf, testing::ValuesIn(kMissing), ByRule());

// --- comments ----------------------------------------------------------------------------------

const DialectCase kComments[] = {
    {"NumberSignsAbove", u"# gauge 7\n# levels in cm\nday,level\n1,143\n2,147\n3,162\n4,188\n",
     ", comment=#", "integer integer"},
    {"NumberSignsAmongTheData", u"day,level\n1,143\n2,147\n# calibrated\n3,162\n4,188\n5,181\n",
     ", comment=#", "integer integer"},
    {"PercentSigns", u"% run 12\n% operator: Kay\n0.5\t1.25\n1.0\t2.5\n1.5\t3.75\n2.0\t5.0\n",
     "tab comment=% dec=.", "decimal decimal"},
    {"TwoSlashes", u"// made by hand\nday;level\n1;143\n2;147\n3;162\n4;188\n", "; comment=//",
     "integer integer"},
    {"ExclamationMarks", u"! frequency sweep\n! start 10\n10 1.5\n20 2.5\n30 3.5\n40 4.5\n",
     "aligned comment=! dec=.", "integer decimal"},
    {"Semicolons", u"; exported in May\nday,level\n1,143\n2,147\n3,162\n4,188\n", ", comment=;",
     "integer integer"},
    {"NoComments", u"day,level\n1,143\n2,147\n3,162\n4,188\n", ",", "integer integer"},
    {"HexColoursInTheFirstColumn", u"colour,count\n#ff0000,3\n#00ff00,5\n#0000ff,8\n#ffffff,2\n",
     ",", "text integer"},
    {"HexColoursInTheLastColumn", u"count;colour\n3;#ff0000\n5;#00ff00\n8;#0000ff\n2;#ffffff\n",
     ";", "integer text"},
    {"AFewHexColoursInTheFirstColumn",
     u"paint,count\nred,3\n#00ff00,5\nblue,8\nwhite,2\nblack,7\ngrey,1\n", ",", "text integer"},
    {"TheNamesAfterASign", u"#day\tlevel\n1\t143\n2\t147\n3\t162\n4\t188\n", "tab",
     "integer integer"},
};
INSTANTIATE_TEST_SUITE_P(Comments, TableDialectOf, testing::ValuesIn(kComments), ByRule());

// --- quotes and escapes ------------------------------------------------------------------------

const DialectCase kQuotes[] = {
    {"None", u"id,town\n1,Ash\n2,Bath\n3,Cove\n4,Dale\n", ",", "integer text"},
    {"QuotedTexts", u"id,town\n1,\"Ash\"\n2,\"Bath, west\"\n3,\"Cove\"\n4,\"Dale\"\n",
     ", quote=\" escape=doubled", "integer text"},
    {"OneQuotedCell", u"id,town\n1,Ash\n2,\"Bath, west\"\n3,Cove\n4,Dale\n",
     ", quote=\" escape=doubled", "integer text"},
    {"QuotedNames", u"\"id\",\"town\"\n1,Ash\n2,Bath\n3,Cove\n4,Dale\n",
     ", quote=\" escape=doubled", "integer text"},
    {"DoubledQuotes",
     u"id,said\n1,\"she said \"\"no\"\"\"\n2,\"fine\"\n3,\"\"\"yes\"\", he said\"\n4,\"well\"\n",
     ", quote=\" escape=doubled seen", "integer text"},
    {"Apostrophes", u"id;town\n1;'Ash'\n2;'Bath; west'\n3;'Cove'\n4;'Dale'\n",
     "; quote=' escape=doubled", "integer text"},
    {"DoubledApostrophes",
     u"id,name\n1,'O''Neil, Ann'\n2,'Kay, Bo'\n3,'D''Arcy, Cy'\n4,'Lee, Di'\n",
     ", quote=' escape=doubled seen", "integer text"},
    {"ApostrophesWithinWords", u"id,name\n1,O'Neil\n2,Kay\n3,D'Arcy\n4,Lee\n", ",", "integer text"},
    {"BackslashesInQuotes",
     u"id,said\n1,\"she said \\\"no\\\"\"\n2,\"fine\"\n3,\"\\\"yes\\\", he said\"\n4,\"well\"\n",
     ", quote=\" escape=backslash seen", "integer text"},
    {"BackslashesInApostrophes",
     u"id;said\n1;'it\\'s so'\n2;'no; never'\n3;'that\\'s it'\n4;'well'\n",
     "; quote=' escape=backslash seen", "integer text"},
    {"BackslashesBeforeDelimiters",
     u"id,town,rank\n1,Ash\\, east,4\n2,Bath\\, west,2\n3,Cove,7\n4,Dale\\, north,1\n",
     ", escape=backslash seen", "integer text integer"},
    {"BackslashesInPathsEscapeNothing",
     u"id,path\n1,\"C:\\temp\\a\"\n2,\"C:\\temp\\b\"\n3,\"D:\\data\"\n4,\"D:\\x,y\"\n",
     ", quote=\" escape=doubled", "integer text"},
};
INSTANTIATE_TEST_SUITE_P(Quotes, TableDialectOf, testing::ValuesIn(kQuotes), ByRule());

const DialectCase kPadding[] = {
    {"BlankAfterEachComma",
     u"day, level, town\n1, 143, Ash\n2, 147, Bath\n3, 162, Cove\n4, 188, Dale\n", ", blanks",
     "integer integer text"},
    {"BlankAfterEachSemicolon", u"day; level\n1; 1,5\n2; 2,5\n3; 3,5\n4; 4,5\n", "; blanks dec=,",
     "integer decimal"},
    {"BlanksBeforeQuotes", u"day, town\n1, \"Ash\"\n2, \"Bath, west\"\n3, \"Cove\"\n4, \"Dale\"\n",
     ", quote=\" escape=doubled blanks", "integer text"},
    {"NumbersAlignedAfterCommas", u"day,  level\n1,    143\n2,     47\n3,   1162\n4,      8\n",
     ", blanks", "integer integer"},
    {"BlanksWithinCells", u"day,town\n1,Old Ash\n2,Bath west\n3,Cove at sea\n4,Dale\n", ",",
     "integer text"},
    {"BlanksAfterSomeCommas", u"day,town,level\n1, Ash,143\n2,Bath,147\n3,Cove, 162\n4,Dale,188\n",
     ",", "integer text integer"},
};
INSTANTIATE_TEST_SUITE_P(Padding, TableDialectOf, testing::ValuesIn(kPadding), ByRule());

// Right answers that are not given yet: a row that is right moves to its table above.
const DialectCase kWrongToday[] = {
    {"DecimalCommasBetweenPaddedCommas",
     u"1,5, 2,25, 3,5\n2,5, 3,25, 4,5\n3,5, 4,75, 5,5\n4,5, 5,25, 6,5\n", ",  dec=,",
     "decimal decimal decimal"},
};

class TableDialectWrongToday : public testing::TestWithParam<DialectCase> {};
TEST_P(TableDialectWrongToday, IsNotYetThatOfTheRow) {
  const Layout layout = detect_layout(ExactText(GetParam().text).view());
  EXPECT_NE(facts_of(layout), GetParam().dialect);
}
INSTANTIATE_TEST_SUITE_P(Table, TableDialectWrongToday, testing::ValuesIn(kWrongToday), ByRule());

// --- line endings ------------------------------------------------------------------------------

struct EndingsCase {
  const char* rule;
  std::u16string text;
  std::vector<LineEndingCount> endings;
};
std::ostream& operator<<(std::ostream& out, const EndingsCase& row) { return out << row.rule; }

const EndingsCase kEndings[] = {
    {"LineFeeds", u"x,y\n1,2\n3,4\n5,6\n", {{u"\n", 4}}},
    {"CarriageReturnsAndLineFeeds", u"x,y\r\n1,2\r\n3,4\r\n5,6\r\n", {{u"\r\n", 4}}},
    {"CarriageReturns", u"x,y\r1,2\r3,4\r5,6\r", {{u"\r", 4}}},
    {"NoneAfterTheLastLine", u"x,y\n1,2\n3,4\n5,6", {{u"\n", 3}}},
    {"TheMostFrequentFirst", u"x,y\n1,2\r\n3,4\r\n5,6\r\n7,8\n", {{u"\r\n", 3}, {u"\n", 2}}},
    {"OneOther", u"x,y\n1,2\n3,4\r\n5,6\n7,8\n", {{u"\n", 4}, {u"\r\n", 1}}},
    {"AllThree", u"x,y\r\n1,2\r\n3,4\r\n5,6\n7,8\n9,10\r", {{u"\r\n", 3}, {u"\n", 2}, {u"\r", 1}}},
    {"ThoseWithinQuotesArePartsOfCells",
     u"x,y\r\n1,\"a\nb\"\r\n2,\"c\"\r\n3,\"d\n\ne\"\r\n",
     {{u"\r\n", 4}}},
    {"BlankLinesCount", u"x,y\n\n1,2\n3,4\n5,6\n\n", {{u"\n", 6}}},
};

class TableDialectEndings : public testing::TestWithParam<EndingsCase> {};
TEST_P(TableDialectEndings, AreCounted) {
  const Layout layout = detect_layout(ExactText(GetParam().text).view());
  EXPECT_EQ(layout.dialect.line_endings, GetParam().endings);
}
INSTANTIATE_TEST_SUITE_P(Table, TableDialectEndings, testing::ValuesIn(kEndings), ByRule());

// --- byte-order marks --------------------------------------------------------------------------

struct MarkCase {
  const char* rule;
  std::string bytes;
  std::optional<std::string> encoding;  // as the caller gives it
  bool has_mark;
};
std::ostream& operator<<(std::ostream& out, const MarkCase& row) { return out << row.rule; }

// Each character of `text` as two bytes, the first one first.
std::string in_two_bytes(std::string_view text, bool is_zero_first) {
  std::string bytes;
  for (const char each : text) {
    bytes += is_zero_first ? '\0' : each;
    bytes += is_zero_first ? each : '\0';
  }
  return bytes;
}

constexpr std::string_view kTable = "x,y\n1,2\n3,4\n5,6\n";

const MarkCase kMarks[] = {
    {"Utf8", std::string("\xEF\xBB\xBF").append(kTable), std::nullopt, true},
    {"Utf16LittleEndian", "\xFF\xFE" + in_two_bytes(kTable, false), std::nullopt, true},
    {"Utf16BigEndian", "\xFE\xFF" + in_two_bytes(kTable, true), std::nullopt, true},
    {"NoneInUtf8", std::string(kTable), std::nullopt, false},
    {"NoneInUtf16", in_two_bytes(kTable, false), std::nullopt, false},
    {"NoneBesideAGivenEncoding", std::string(kTable), "UTF-8", false},
    {"Utf8BesideAGivenEncoding", std::string("\xEF\xBB\xBF").append(kTable), "utf8", true},
    {"Utf16BesideAGivenEncoding", "\xFE\xFF" + in_two_bytes(kTable, true), "UTF-16", true},
    {"NoneInGivenUtf16", in_two_bytes(kTable, false), "UTF-16LE", false},
};

class TableDialectMark : public testing::TestWithParam<MarkCase> {};
TEST_P(TableDialectMark, IsSeenInAFile) {
  const TempFolder folder;
  DetectSettings settings;
  settings.encoding = GetParam().encoding;
  const Layout layout = detect_layout(folder.file("t.csv", GetParam().bytes), settings);
  EXPECT_EQ(layout.dialect.has_byte_order_mark, GetParam().has_mark);
  EXPECT_EQ(layout.num_variables, 2U);
  EXPECT_EQ(layout.names, (std::vector<std::u16string>{u"x", u"y"}));
}
INSTANTIATE_TEST_SUITE_P(Table, TableDialectMark, testing::ValuesIn(kMarks), ByRule());

TEST(TableDialect, IsEmptyButForLineEndingsWithoutATable) {
  const Layout layout = detect_layout(std::u16string_view(
      u"The river rose in the night, and nobody slept.\nAt dawn the water stood at the mill;\n"
      u"the miller had gone to look for his boat.\nWhen he came back, it was noon.\n"));
  ASSERT_EQ(layout.no_table, "running text");
  EXPECT_EQ(facts_of(layout), "lines");
  EXPECT_EQ(layout.dialect.line_endings, (std::vector<LineEndingCount>{{u"\n", 4}}));
}

TEST(EscapeToString, NamesEveryValue) {
  EXPECT_EQ(to_string(Escape::none), "none");
  EXPECT_EQ(to_string(Escape::doubled), "doubled");
  EXPECT_EQ(to_string(Escape::backslash), "backslash");
  EXPECT_EQ(to_string(static_cast<Escape>(3)), "");
}

}  // namespace
}  // namespace textio::standalone
