// The lines of the names and units of a judged table: several rows of names, rows of units, units in names,
// and a first line that names the delimiter.
#include <vltextstream/layout/judged_layout.hpp>

#include <optional>
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
using Names = std::vector<std::u16string>;

// "1-2 names, 3 units, 4-7 data".
std::string lines_of(const Layout& layout) {
  std::string text;
  for (const LineRun& run : layout.lines) {
    if (!text.empty()) text += ", ";
    text += std::to_string(run.first_line);
    if (run.last_line != run.first_line) text += "-" + std::to_string(run.last_line);
    text += " " + std::string(to_string(run.role));
  }
  return text;
}

// Between bars, for a test that names no column may hold one.
std::string listed(const Names& names) {
  std::string text;
  for (const std::u16string& name : names) text += (text.empty() ? "" : "|") + readable(name);
  return text;
}

struct HeadCase {
  const char* rule;
  std::u16string text;
  std::string lines;
  Names names;
  Names units;
};
std::ostream& operator<<(std::ostream& out, const HeadCase& row) { return out << row.rule; }

class TableHead : public testing::TestWithParam<HeadCase> {};
TEST_P(TableHead, IsThatOfTheRow) {
  const Layout layout = detect_layout(ExactText(GetParam().text).view());
  EXPECT_EQ(lines_of(layout), GetParam().lines);
  EXPECT_EQ(listed(layout.names), listed(GetParam().names));
  EXPECT_EQ(listed(layout.units), listed(GetParam().units));
}

// --- several rows of names ---------------------------------------------------------------------

const HeadCase kTwoRows[] = {
    {"GroupsAboveNames",
     u"Station,Temperature,,Wind,\n"
     u",min,max,speed,gust\n"
     u"Ash,1,5,3,7\nBath,2,6,4,9\nCove,0,4,8,12\nDale,3,9,2,5\nElm,1,7,3,6\n",
     "1-2 names, 3-7 data",
     {u"Station", u"Temperature.min", u"Temperature.max", u"Wind.speed", u"Wind.gust"},
     {}},
    {"RepeatedGroups",
     u"north;north;south;south\n"
     u"min;max;min;max\n"
     u"1;5;3;7\n2;6;4;9\n0;4;8;12\n3;9;2;5\n1;7;3;6\n",
     "1-2 names, 3-7 data",
     {u"north.min", u"north.max", u"south.min", u"south.max"},
     {}},
    {"GroupsBetweenTabs",
     u"\tbefore\t\tafter\t\n"
     u"patient\tweight\tpulse\tweight\tpulse\n"
     u"1\t71.5\t70\t70.5\t66\n2\t82.0\t88\t80.5\t81\n3\t65.5\t61\t65.0\t60\n"
     u"4\t90.5\t75\t88.0\t72\n5\t77.0\t69\t76.5\t70\n",
     "1-2 names, 3-7 data",
     {u"patient", u"before.weight", u"before.pulse", u"after.weight", u"after.pulse"},
     {}},
    {"YearsAsGroups",
     u"town,2022,,2023,\n"
     u",births,deaths,births,deaths\n"
     u"Ash,112,95,108,99\nBath,210,188,220,176\nCove,45,61,52,58\nDale,77,80,71,84\n"
     u"Elm,130,121,128,119\n",
     "1-2 names, 3-7 data",
     {u"town", u"2022.births", u"2022.deaths", u"2023.births", u"2023.deaths"},
     {}},
};
INSTANTIATE_TEST_SUITE_P(TwoRows, TableHead, testing::ValuesIn(kTwoRows), ByRule());

const HeadCase kThreeRows[] = {
    {"GroupsNamesAndUnits",
     u"Time,Temperature,,Wind,\n"
     u",min,max,speed,gust\n"
     u"s,\u00B0C,\u00B0C,m/s,m/s\n"
     u"1,1.5,5.5,3.5,7.5\n2,2.5,6.5,4.5,9.5\n3,0.5,4.5,8.5,12.5\n4,3.5,9.5,2.5,5.5\n"
     u"5,1.5,7.5,3.5,6.5\n",
     "1-2 names, 3 units, 4-8 data",
     {u"Time", u"Temperature.min", u"Temperature.max", u"Wind.speed", u"Wind.gust"},
     {u"s", u"\u00B0C", u"\u00B0C", u"m/s", u"m/s"}},
    {"RepeatedGroupsAndUnits",
     u"north;north;south;south\n"
     u"level;flow;level;flow\n"
     u"cm;m3/s;cm;m3/s\n"
     u"143;12,8;90;3,5\n147;13,3;92;3,75\n162;15,9;99;4,5\n188;21,4;104;5,25\n181;20,0;101;5,0\n",
     "1-2 names, 3 units, 4-8 data",
     {u"north.level", u"north.flow", u"south.level", u"south.flow"},
     {u"cm", u"m3/s", u"cm", u"m3/s"}},
};
const HeadCase kGroupsOfGroups[] = {
    {"ThreeRowsOfNames",
     u"day,house,,,,garden,\n"
     u",kitchen,,attic,,,\n"
     u",min,max,min,max,min,max\n"
     u"1,18,22,12,25,3,14\n2,19,23,13,26,4,15\n3,18,21,11,24,2,13\n4,20,24,14,28,6,18\n"
     u"5,19,22,13,25,5,16\n",
     "1-3 names, 4-8 data",
     {u"day", u"house.kitchen.min", u"house.kitchen.max", u"house.attic.min", u"house.attic.max",
      u"garden.min", u"garden.max"},
     {}},
    {"EachAboveItsFirstColumn",
     u"land,,,,sea,,,\n"
     u"north,,south,,north,,south,\n"
     u"low,high,low,high,low,high,low,high\n"
     u"1,5,3,7,2,6,4,8\n2,6,4,9,3,7,5,9\n0,4,8,12,1,5,3,7\n3,9,2,5,4,8,6,10\n1,7,3,6,2,6,4,8\n",
     "1-3 names, 4-8 data",
     {u"land.north.low", u"land.north.high", u"land.south.low", u"land.south.high",
      u"sea.north.low", u"sea.north.high", u"sea.south.low", u"sea.south.high"},
     {}},
    {"AndUnits",
     u"land;;;sea;\n"
     u"north;;south;west;\n"
     u"length;mass;length;length;mass\n"
     u"m;kg;m;m;kg\n"
     u"1,5;5,5;3,5;7,5;1,25\n2,5;6,5;4,5;9,5;2,25\n0,5;4,5;8,5;12,5;3,25\n3,5;9,5;2,5;5,5;4,25\n"
     u"1,5;7,5;3,5;6,5;5,25\n",
     "1-3 names, 4 units, 5-9 data",
     {u"land.north.length", u"land.north.mass", u"land.south.length", u"sea.west.length",
      u"sea.west.mass"},
     {u"m", u"kg", u"m", u"m", u"kg"}},
    {"AGroupEndsWhereTheOneAboveItDoes",
     u"land,,,,sea,,\n"
     u"north,,south,,,west,\n"
     u"low,high,low,high,depth,low,high\n"
     u"1,5,3,7,2,6,4\n2,6,4,9,3,7,5\n0,4,8,12,1,5,3\n3,9,2,5,4,8,6\n1,7,3,6,2,6,4\n",
     "1-3 names, 4-8 data",
     {u"land.north.low", u"land.north.high", u"land.south.low", u"land.south.high", u"sea.depth",
      u"sea.west.low", u"sea.west.high"},
     {}},
};
INSTANTIATE_TEST_SUITE_P(GroupsOfGroups, TableHead, testing::ValuesIn(kGroupsOfGroups), ByRule());

INSTANTIATE_TEST_SUITE_P(ThreeRows, TableHead, testing::ValuesIn(kThreeRows), ByRule());

TEST(TableHeadSeparator, IsThatOfTheSettings) {
  const std::u16string text =
      u"day,house,,garden,\n,min,max,min,max\n1,18,22,3,14\n2,19,23,4,15\n3,18,21,2,13\n4,20,24,6,"
      u"18\n"
      u"5,19,22,5,16\n";
  DetectSettings settings;
  settings.name_separator = u" / ";
  EXPECT_EQ(listed(detect_layout(std::u16string_view(text), settings).names),
            "day|house / min|house / max|garden / min|garden / max");
  settings.name_separator.clear();
  EXPECT_EQ(listed(detect_layout(std::u16string_view(text), settings).names),
            "day|housemin|housemax|gardenmin|gardenmax");
}

// --- units below the names ---------------------------------------------------------------------

const HeadCase kUnits[] = {
    {"KnownUnits",
     u"time,level,speed\ns,cm,km/h\n1,143,12.5\n2,147,13.5\n3,162,15.5\n4,188,21.5\n",
     "1 names, 2 units, 3-6 data",
     {u"time", u"level", u"speed"},
     {u"s", u"cm", u"km/h"}},
    {"AbsorbanceUnits",
     u"time,absorbance\ns,AU\n1,0.125\n2,0.25\n3,0.5\n4,0.75\n",
     "1 names, 2 units, 3-6 data",
     {u"time", u"absorbance"},
     {u"s", u"AU"}},
    {"AbsorbanceUnitsAmongThree",
     u"time,absorbance,temp\ns,AU,degC\n1,0.125,20.5\n2,0.25,21.0\n3,0.5,21.5\n4,0.75,22.0\n",
     "1 names, 2 units, 3-6 data",
     {u"time", u"absorbance", u"temp"},
     {u"s", u"AU", u"degC"}},
    {"Counts",
     u"energy;signal;gas\nkeV;counts;mbar\n1,5;120;2,5\n2,5;150;2,75\n3,5;90;2,5\n4,5;300;3,0\n",
     "1 names, 2 units, 3-6 data",
     {u"energy", u"signal", u"gas"},
     {u"keV", u"counts", u"mbar"}},
    {"Dimensionless",
     u"depth\tratio\tmass\nm\tdimensionless\tkg\n1\t0.5\t12\n2\t0.75\t15\n3\t0.25\t11\n4\t0."
     u"5\t19\n",
     "1 names, 2 units, 3-6 data",
     {u"depth", u"ratio", u"mass"},
     {u"m", u"dimensionless", u"kg"}},
    {"ArbitraryUnitsInBrackets",
     u"angle,intensity\n[deg],[arb. u.]\n10,250\n11,340\n12,1200\n13,610\n",
     "1 names, 2 units, 3-6 data",
     {u"angle", u"intensity"},
     {u"[deg]", u"[arb. u.]"}},
    {"TextsBelowNamesAreNoUnits",
     u"town,river,pier\nAsh,Aln,east\nBath,Avon,west\nCove,Cam,north\nDale,Dee,south\n",
     "1 names, 2-5 data",
     {u"town", u"river", u"pier"},
     {}},
    {"OneKnownUnitOfThree",
     u"time,gain,noise\ns,dBFS,LSB\n1,0.5,3\n2,0.75,4\n3,0.25,3\n4,0.5,5\n",
     "1 names, 2 units, 3-6 data",
     {u"time", u"gain", u"noise"},
     {u"s", u"dBFS", u"LSB"}},
};
INSTANTIATE_TEST_SUITE_P(Units, TableHead, testing::ValuesIn(kUnits), ByRule());

// --- units in names ----------------------------------------------------------------------------

const HeadCase kUnitsInNames[] = {
    {"SquareBrackets",
     u"day,level [cm],flow [m3/s]\n1,143,12.5\n2,147,13.5\n3,162,15.5\n4,188,21.5\n",
     "1 names, 2-5 data",
     {u"day", u"level [cm]", u"flow [m3/s]"},
     {u"", u"cm", u"m3/s"}},
    {"Slashes",
     u"Zeit / s;Strom / mA\n1;0,5\n2;0,75\n3;0,25\n4;0,5\n",
     "1 names, 2-5 data",
     {u"Zeit / s", u"Strom / mA"},
     {u"s", u"mA"}},
    {"RoundBrackets",
     u"run,speed (km/h)\n1,12.5\n2,13.5\n3,15.5\n4,21.5\n",
     "1 names, 2-5 data",
     {u"run", u"speed (km/h)"},
     {u"", u"km/h"}},
    {"In",
     u"run\tcurrent in mA\ttime in s\n1\t12.5\t4\n2\t13.5\t5\n3\t15.5\t6\n4\t21.5\t7\n",
     "1 names, 2-5 data",
     {u"run", u"current in mA", u"time in s"},
     {u"", u"mA", u"s"}},
    {"Percent",
     u"day,humidity %,wind\n1,43,12.5\n2,47,13.5\n3,62,15.5\n4,88,21.5\n",
     "1 names, 2-5 data",
     {u"day", u"humidity %", u"wind"},
     {u"", u"%", u""}},
    {"NoUnits",
     u"day,level (old)\n1,43\n2,47\n3,62\n4,88\n",
     "1 names, 2-5 data",
     {u"day", u"level (old)"},
     {}},
};
INSTANTIATE_TEST_SUITE_P(UnitsInNames, TableHead, testing::ValuesIn(kUnitsInNames), ByRule());

// --- a first line that names the delimiter -----------------------------------------------------

const HeadCase kDelimiterLines[] = {
    {"Semicolon",
     u"sep=;\nday;level\n1;143\n2;147\n3;162\n4;188\n",
     "1 header, 2 names, 3-6 data",
     {u"day", u"level"},
     {}},
    {"Comma",
     u"sep=,\nday,level,town\n1,143,Ash\n2,147,Bath\n3,162,Cove\n4,188,Dale\n",
     "1 header, 2 names, 3-6 data",
     {u"day", u"level", u"town"},
     {}},
    {"Tab",
     u"sep=\t\nday\tlevel\n1\t143\n2\t147\n3\t162\n4\t188\n",
     "1 header, 2 names, 3-6 data",
     {u"day", u"level"},
     {}},
    {"Bar",
     u"sep=|\nday|level\n1|143\n2|147\n3|162\n4|188\n",
     "1 header, 2 names, 3-6 data",
     {u"day", u"level"},
     {}},
    {"InQuotes",
     u"\"sep=;\"\nday;level\n1;143\n2;147\n3;162\n4;188\n",
     "1 header, 2 names, 3-6 data",
     {u"day", u"level"},
     {}},
    {"DelimiterLineWithoutNames",
     u"sep=;\n1;143\n2;147\n3;162\n4;188\n",
     "1 header, 2-5 data",
     {},
     {}},
};
INSTANTIATE_TEST_SUITE_P(DelimiterLines, TableHead, testing::ValuesIn(kDelimiterLines), ByRule());

// --- right answers that are not given yet --------------------------------------------------------

// A row that is right moves to its table above.
const HeadCase kWrongToday[] = {
    {"ThreeRowsOfRepeatedNames",
     u"plot;wheat;wheat;wheat;wheat\n"
     u";2022;2022;2023;2023\n"
     u";yield;loss;yield;loss\n"
     u"1;7,5;0,25;7,75;0,5\n2;6,5;0,5;6,25;0,75\n3;8,0;0,25;8,25;0,25\n4;7,0;1,0;7,5;0,5\n"
     u"5;6,75;0,5;7,0;0,25\n",
     "1-3 names, 4-8 data",
     {u"plot", u"wheat.2022.yield", u"wheat.2022.loss", u"wheat.2023.yield", u"wheat.2023.loss"},
     {}},
};

class TableHeadWrongToday : public testing::TestWithParam<HeadCase> {};
TEST_P(TableHeadWrongToday, IsNotYetThatOfTheRow) {
  const Layout layout = detect_layout(ExactText(GetParam().text).view());
  EXPECT_NE(lines_of(layout) + listed(layout.names) + listed(layout.units),
            GetParam().lines + listed(GetParam().names) + listed(GetParam().units));
}
INSTANTIATE_TEST_SUITE_P(Table, TableHeadWrongToday, testing::ValuesIn(kWrongToday), ByRule());

TEST(TableHeadDelimiterLine, DecidesBetweenCommaAndSemicolon) {
  const Layout layout =
      detect_layout(std::u16string_view(u"sep=;\n1,5;2,5\n2,5;3,5\n3,5;4,5\n4,5;5,5\n"));
  EXPECT_EQ(listed(layout.delimiters), listed({u";"}));
}

}  // namespace
}  // namespace textio::standalone
