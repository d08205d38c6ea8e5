#include <vltextstream/assessment/unit_symbols.hpp>

#include <ostream>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "support/exact_text.hpp"
#include "support/printing.hpp"
#include "support/rule_name.hpp"

namespace textio::assessment {
namespace {

using testing_support::ByRule;
using testing_support::ExactText;
using testing_support::readable;

// Texts with the same answer for the same reason.
struct SymbolsCase {
  const char* rule;
  std::vector<std::u16string> texts;
};
std::ostream& operator<<(std::ostream& out, const SymbolsCase& row) { return out << row.rule; }

template <typename Predicate>
void expect_all(Predicate predicate, const SymbolsCase& row, bool expected) {
  for (const std::u16string& text : row.texts) {
    EXPECT_EQ(predicate(ExactText(text).view()), expected) << "'" << readable(text) << "'";
  }
}

// --- units -------------------------------------------------------------------------------------

const SymbolsCase kUnits[] = {
    {"LengthsAndAreas",
     {u"m", u"mm", u"cm", u"km", u"nm", u"in", u"ft", u"mi", u"km2", u"m^2", u"m\u00B2", u"ha"}},
    {"TimesAndRates",
     {u"s", u"ms", u"min", u"mins", u"h", u"hrs", u"d", u"sec", u"msec", u"Hz", u"rpm", u"bpm",
      u"1/s", u"s-1", u"s^-1", u"s\u207B\u00B9"}},
    {"Masses", {u"g", u"kg", u"mg", u"t", u"lb", u"lbs", u"oz"}},
    {"Speeds", {u"km/h", u"m/s", u"m s-1", u"m.s-1", u"mph", u"kn", u"m/s^2", u"m/s2"}},
    {"BothMicroSignsAndTheLetterU",
     {u"\u00B5m", u"\u03BCm", u"um", u"\u00B5g/m\u00B3", u"\u03BCmol m-2 s-1"}},
    {"DensitiesAndFluxes",
     {u"kg/m^3", u"kg m\u207B\u00B3", u"kg m-3", u"kg\u00B7m\u22123", u"W m-2", u"W/m2",
      u"W\u22C5m\u207B\u00B2"}},
    {"TemperaturesAndAngles",
     {u"degC", u"\u00B0C", u"\u00B0 C", u"\u00BAC", u"deg C", u"\u2103", u"\u00B0F", u"K", u"C",
      u"F", u"deg", u"\u00B0", u"rad"}},
    {"PressuresAndForces", {u"hPa", u"kPa", u"mbar", u"atm", u"psi", u"mmHg", u"N", u"N m"}},
    {"ElectricityAndEnergy",
     {u"V", u"mA", u"kWh", u"MWh", u"kVA", u"\u03A9", u"k\u2126", u"MJ", u"kcal", u"mS/cm",
      u"J/(kg K)", u"kWh/m2"}},
    {"PartsOfAWhole", {u"%", u"\u2030", u"ppm", u"ppb"}},
    {"Chemistry", {u"mol/L", u"mmol l-1", u"pH", u"mg/dl", u"NTU"}},
    {"Sound", {u"dB", u"dBA", u"dB(A)"}},
    {"Data", {u"B", u"kB", u"KB", u"MB", u"MiB", u"KiB", u"Mbit/s", u"Mbps"}},
    {"CapitalKInAPlaceOfASmallOne", {u"Kg", u"Km", u"Km/h", u"KHz", u"KW", u"KWh"}},
    {"Money", {u"EUR", u"USD", u"JPY", u"$", u"\u20AC", u"\u00A3", u"\u20AC/kg", u"EUR/MWh"}},
    {"WordsInAnyCaseAndNumber",
     {u"hours", u"Seconds", u"MINUTES", u"metre", u"inches", u"feet", u"Degrees", u"percent",
      u"Kelvin", u"miles per hour"}},
    {"ABracketOfAnyKind", {u"[hPa]", u"(mm)", u"{kg}", u"<s>", u"( cm )", u"[kg/m^3]"}},
    {"AnyWordsInABracket", {u"[count rate]", u"(a.u.)", u"[number of birds]", u"(\u043C)"}},
    // A single letter may be the name of a variable as well; it is read as the unit.
    {"SingleLettersThatAreUnits", {u"A", u"B", u"b", u"C", u"F", u"H", u"J", u"K", u"L", u"N", u"S",
                                   u"T", u"V", u"W", u"d", u"g", u"h", u"l", u"m", u"s", u"t"}},
    {"ThirtyTwoUnitsOfText", {u"[" + std::u16string(30, u'a') + u"]"}},
};

const SymbolsCase kNotUnits[] = {
    {"Nothing", {u"", u" "}},
    {"SignsThatThereIsNone", {u"-", u"--", u"n/a", u"N/A", u"none", u"[-]", u"unitless"}},
    {"BracketsAlone", {u"[]", u"()", u"[ ]", u"(", u"[", u"{}"}},
    {"NumbersInBrackets", {u"[1]", u"(2024)", u"[0.5]"}},
    {"PlainWords", {u"Berlin", u"open", u"red", u"yes", u"value", u"station", u"flow rate"}},
    {"Names", {u"Anna", u"Rosa Diaz", u"Li Wei", u"Bo"}},
    {"Numbers", {u"0", u"1", u"12", u"-5", u"3.5", u"1e5", u"1/2", u"50%1", u"\u00B2"}},
    {"DatesAndTimes", {u"2024-01-01", u"1/3/2024", u"12:30", u"Mar 1", u"hh:mm:ss"}},
    {"Sentences", {u"see card 7", u"out of paper", u"As was found."}},
    {"UnknownLetters", {u"x", u"y", u"z", u"n", u"i", u"k", u"q", u"r", u"e"}},
    {"PrefixesWithoutAUnit", {u"k", u"da", u"M", u"\u00B5"}},
    {"NoFactor", {u"/", u"1/", u"*", u".", u"^2", u"per"}},
    {"AnOperatorThatIsNone", {u"m+s", u"km:h", u"m,s", u"m=s"}},
    {"ThirtyThreeUnitsOfText", {u"[" + std::u16string(31, u'a') + u"]"}},
    // An exponent has one digit, and one without a sign or "^" is 2, 3 or 4.
    {"LabelsOfALetterAndDigits",
     {u"A12", u"A1", u"W1", u"T10", u"K9", u"m12", u"A-12", u"S-100", u"mm-2024"}},
};

// Values and names of columns, of at most five letters.
const SymbolsCase kCommonWords[] = {
    {"Animals", {u"cat", u"dog", u"cow", u"hen", u"bat", u"ant", u"emu", u"pig", u"fish"}},
    {"Things",
     {u"mat", u"gas", u"ham", u"hat", u"cup", u"fan", u"map", u"pen", u"pad", u"car", u"bus",
      u"nut", u"path", u"lamp", u"cab", u"tin"}},
    {"Adjectives", {u"damp", u"mad", u"fat", u"hot", u"low", u"high", u"new", u"old", u"dry"}},
    {"Persons", {u"dad", u"mum", u"Tom", u"Ann", u"Mr", u"Pat", u"pat"}},
    {"Answers", {u"yes", u"no", u"ok", u"on", u"off", u"true", u"TRUE", u"null", u"NaN"}},
    {"DatesInWords", {u"May", u"Jan", u"Mon", u"Sun", u"AM", u"PM"}},
    {"Directions", {u"up", u"left", u"NE", u"SW", u"north"}},
    {"Headings",
     {u"mass", u"add", u"temp", u"depth", u"age", u"max", u"mean", u"sum", u"lat", u"lon", u"id",
      u"code", u"date", u"time", u"size", u"rank", u"data", u"CO2"}},
};

// Texts that are rarely meant as units, but are spelled like them. They do little harm: a line
// holds units only if every field above a number, date or duration is one.
const SymbolsCase kKnownExceptions[] = {
    {"WordsThatAreSymbols", {u"in", u"bar", u"bit", u"cal", u"var", u"mol", u"gal", u"min"}},
    {"WordsThatAreUnitsInFull", {u"count", u"day", u"foot", u"second", u"pound", u"year"}},
    {"PrefixAndSymbol", {u"am", u"pm", u"as", u"at", u"us", u"Tm", u"Ms", u"TV", u"PC", u"das"}},
    {"CodesOfStates", {u"MA", u"PA", u"MT", u"GA"}},
    {"CodesOfCurrencies", {u"ALL", u"TOP", u"TRY", u"PEN", u"CUP", u"MAD"}},
    {"LettersWithDotsAndSlashes", {u"S.A.", u"A/C", u"T/F"}},
    {"LettersWithASmallPower", {u"A2", u"B3", u"T-1"}},
};

class IsUnitAccepted : public testing::TestWithParam<SymbolsCase> {};
TEST_P(IsUnitAccepted, TakesWhatPeopleWrite) { expect_all(is_unit, GetParam(), true); }
INSTANTIATE_TEST_SUITE_P(Units, IsUnitAccepted, testing::ValuesIn(kUnits), ByRule());
INSTANTIATE_TEST_SUITE_P(Exceptions, IsUnitAccepted, testing::ValuesIn(kKnownExceptions), ByRule());

class IsUnitRefused : public testing::TestWithParam<SymbolsCase> {};
TEST_P(IsUnitRefused, LeavesOtherTexts) { expect_all(is_unit, GetParam(), false); }
INSTANTIATE_TEST_SUITE_P(Texts, IsUnitRefused, testing::ValuesIn(kNotUnits), ByRule());
INSTANTIATE_TEST_SUITE_P(Words, IsUnitRefused, testing::ValuesIn(kCommonWords), ByRule());

// --- patterns of dates and times ---------------------------------------------------------------

const SymbolsCase kTimePatterns[] = {
    {"Dates",
     {u"yyyy-mm-dd", u"YYYY-MM-DD", u"dd.mm.yyyy", u"MM/DD/YY", u"d-MMM-yy", u"m/d/yy", u"mm/dd"}},
    {"Times", {u"hh:mm", u"HH:MM:SS", u"h:mm", u"hh:mm:ss.sss", u"mm:ss", u"hh:mm a"}},
    {"Both",
     {u"yyyy-mm-dd hh:mm", u"yyyy-mm-ddThh:mm:ss", u"yyyy-MM-dd'T'HH:mm:ss'Z'",
      u"yyyy-mm-ddThh:mm:ssZ"}},
    {"WithoutSeparators", {u"yyyymmdd", u"HHMMSS", u"hhmm", u"yyyymmddThhmmss"}},
    {"InBrackets", {u"[hh:mm:ss]", u"(yyyy-mm-dd)"}},
    {"JustNotTooLong",
     {u"yyyy-mm-dd hh:mm:ss yyyy-mm-dd h", u"[yyyy-mm-dd hh:mm:ss yyyy-mm-dd h]"}},
    {"TheYearAlone", {u"yyyy", u"YYYY"}},
    {"Zones", {u"UTC", u"utc", u"GMT", u"local time", u"ISO 8601"}},
};

const SymbolsCase kNotTimePatterns[] = {
    {"Nothing", {u"", u"-", u"[]", u":"}},
    {"OneRun", {u"s", u"mm", u"dd", u"ssss", u"aaaa"}},
    {"SingleLettersAlone", {u"h:m:s", u"d/m/y", u"a-z"}},
    {"OtherLetters", {u"time", u"date", u"hh:mm:xx", u"hours"}},
    {"WordsOfTheSameLetters",
     {u"mass", u"add", u"Matt", u"daddy", u"hmm", u"mammy", u"data", u"days", u"stay", u"att",
      u"mast", u"ddt"}},
    {"Values", {u"2024-01-01", u"12:30", u"10 mm"}},
    {"RunsTooLong", {u"yyyyy-mm-dd", u"hh:mmmmm"}},
    {"TooLong", {u"yyyy-mm-dd hh:mm:ss yyyy-mm-dd hh", u"[yyyy-mm-dd hh:mm:ss yyyy-mm-dd hh]"}},
};

class IsTimePatternAccepted : public testing::TestWithParam<SymbolsCase> {};
TEST_P(IsTimePatternAccepted, TakesPatterns) { expect_all(is_time_pattern, GetParam(), true); }
INSTANTIATE_TEST_SUITE_P(Table, IsTimePatternAccepted, testing::ValuesIn(kTimePatterns), ByRule());

class IsTimePatternRefused : public testing::TestWithParam<SymbolsCase> {};
TEST_P(IsTimePatternRefused, LeavesOtherTexts) { expect_all(is_time_pattern, GetParam(), false); }
INSTANTIATE_TEST_SUITE_P(Table, IsTimePatternRefused, testing::ValuesIn(kNotTimePatterns),
                         ByRule());

// --- no unit -----------------------------------------------------------------------------------

const SymbolsCase kNoUnit[] = {
    {"Nothing", {u""}},
    {"Dashes", {u"-", u"--", u"\u2013", u"\u2014"}},
    {"Words", {u"n/a", u"N/A", u"none", u"None", u"unitless", u"dimensionless"}},
    {"InBrackets", {u"[-]", u"(-)", u"[]", u"()", u"[ ]", u"[ - ]", u"[none]"}},
};

const SymbolsCase kSomeUnit[] = {
    {"Units", {u"m", u"%", u"[hPa]", u"1/s"}},
    {"Values", {u"0", u"1", u"-1", u"2024-01-01"}},
    {"OtherTexts", {u"x", u"nothing", u"---x", u"[", u"]["}},
};

class IsNoUnitAccepted : public testing::TestWithParam<SymbolsCase> {};
TEST_P(IsNoUnitAccepted, TakesSignsOfNone) { expect_all(is_no_unit, GetParam(), true); }
INSTANTIATE_TEST_SUITE_P(Table, IsNoUnitAccepted, testing::ValuesIn(kNoUnit), ByRule());

class IsNoUnitRefused : public testing::TestWithParam<SymbolsCase> {};
TEST_P(IsNoUnitRefused, LeavesOtherTexts) { expect_all(is_no_unit, GetParam(), false); }
INSTANTIATE_TEST_SUITE_P(Table, IsNoUnitRefused, testing::ValuesIn(kSomeUnit), ByRule());

// --- units in names ----------------------------------------------------------------------------

struct NameCase {
  const char* rule;
  std::u16string name;
  std::u16string unit;
};
std::ostream& operator<<(std::ostream& out, const NameCase& row) { return out << row.rule; }

const NameCase kNames[] = {
    {"SquareBrackets", u"level [cm]", u"cm"},
    {"SquareBracketsWithoutABlank", u"level[cm]", u"cm"},
    {"BlanksInSquareBrackets", u"level [ cm ]", u"cm"},
    {"BlanksAround", u" level [cm] ", u"cm"},
    {"SquareBracketsHoldAnyUnit", u"signal [AU]", u"AU"},
    {"SquareBracketsHoldWords", u"signal [count rate]", u"count rate"},
    {"SquareBracketsHoldPercent", u"humidity [%]", u"%"},
    {"SquareBracketsHoldADegree", u"T [\u00B0C]", u"\u00B0C"},
    {"Product", u"density [kg m^-3]", u"kg m^-3"},
    {"SquareAfterRoundBrackets", u"p (raw) [hPa]", u"hPa"},
    {"RoundBrackets", u"speed (km/h)", u"km/h"},
    {"RoundBracketsAndPercent", u"share (%)", u"%"},
    {"RoundBracketsAndADegree", u"Temperatur (\u00B0C)", u"\u00B0C"},
    {"RoundBracketsAndMoney", u"price (EUR)", u"EUR"},
    {"Slash", u"Zeit / s", u"s"},
    {"SlashAndAFraction", u"v / km/h", u"km/h"},
    {"SlashAndAPower", u"A / m^2", u"m^2"},
    {"SlashAfterATime", u"Time/s", u"s"},
    {"SlashAfterAWordForTime", u"total_time/min", u"min"},
    {"SlashAfterAQuantity", u"Spannung/mV", u"mV"},
    {"SlashBeforeAFraction", u"speed/km/h", u"km/h"},
    {"SlashBeforeBrackets", u"U / V [mV]", u"mV"},
    {"In", u"current in mA", u"mA"},
    {"InAndAWord", u"time in seconds", u"seconds"},
    {"TheLastIn", u"change in current in mA", u"mA"},
    {"Percent", u"humidity %", u"%"},
    {"Degree", u"Temp \u00B0C", u"\u00B0C"},

    {"NothingInTheName", u"level", u""},
    {"Nothing", u"", u""},
    {"Blanks", u"  ", u""},
    {"NoLetterInSquareBrackets", u"x [1]", u""},
    {"NothingInSquareBrackets", u"x []", u""},
    {"SignOfNone", u"ratio [-]", u""},
    {"WordForNone", u"ratio [none]", u""},
    {"OnlyBrackets", u"[cm]", u""},
    {"OnlyRoundBrackets", u"(cm)", u""},
    {"BracketsThatDoNotEndTheName", u"level [cm] raw", u""},
    {"BracketsThatAreNotClosed", u"level [cm", u""},
    {"RemarkInRoundBrackets", u"station (old)", u""},
    {"NumberInRoundBrackets", u"station (2)", u""},
    {"UnitAlone", u"km/h", u""},
    {"PercentAlone", u"%", u""},
    {"SlashWithoutBlanks", u"input/output", u""},
    {"SlashOfARate", u"events/s", u""},
    {"SlashOfAPrice", u"unit price/kg", u""},
    {"SlashBetweenUnits", u"mol/m^3", u""},
    {"SlashBetweenBounds", u"max/min", u""},
    {"SlashAfterOneLetter", u"I/A", u""},
    {"SlashAfterANumber", u"2024/25 m/s", u""},
    {"SlashBeforeAWord", u"yes / no", u""},
    {"InBeforeAWord", u"born in Ulm", u""},
    {"UnitAsASecondWord", u"level cm", u""},
    {"LetterAsASecondWord", u"vitamin C", u""},
};

class UnitInName : public testing::TestWithParam<NameCase> {};
TEST_P(UnitInName, IsThatOfTheRow) {
  const ExactText name(GetParam().name);
  EXPECT_EQ(readable(unit_in_name(name.view())), readable(GetParam().unit));
}
INSTANTIATE_TEST_SUITE_P(Table, UnitInName, testing::ValuesIn(kNames), ByRule());

TEST(UnitInNameLength, IsBoundedInSquareBrackets) {
  const std::u16string longest(32, u'x');
  const std::u16string name = u"y [" + longest + u"]";
  const std::u16string longer_name = u"y [x" + longest + u"]";
  EXPECT_EQ(unit_in_name(name), longest);
  EXPECT_EQ(unit_in_name(longer_name), u"");
}

// No text is both a unit and a sign of none, whatever its characters.
TEST(UnitSymbols, AUnitIsNeverASignOfNone) {
  const std::u16string alphabet = u"amsk1-/[] ^%";
  for (const char16_t a : alphabet) {
    for (const char16_t b : alphabet) {
      for (const char16_t c : alphabet) {
        const ExactText text(std::u16string{a, b, c});
        EXPECT_FALSE(is_unit(text.view()) && is_no_unit(text.view())) << readable(text.view());
      }
    }
  }
}

TEST(IsUnit, NeedsAWordInBrackets) {
  EXPECT_FALSE(is_unit(u"()"));
  EXPECT_TRUE(is_unit(u"[Count]"));
}

TEST(IsTimePattern, HasAZoneAtItsEndAlone) {
  EXPECT_TRUE(is_time_pattern(u"hh:mmz"));
  EXPECT_FALSE(is_time_pattern(u"hh:mmzss"));
}

}  // namespace
}  // namespace textio::assessment
