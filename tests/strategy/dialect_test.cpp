#include <vltextstream/strategy/dialect.hpp>

#include <ostream>
#include <sstream>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "support/rule_name.hpp"

namespace textio {
namespace {

using testing_support::ByRule;

// --- markers -----------------------------------------------------------------------------------

struct MarkerCase {
  const char* rule;
  std::string marker;
  std::string name;
};
std::ostream& operator<<(std::ostream& out, const MarkerCase& row) { return out << row.rule; }

const MarkerCase kMarkers[] = {
    {"Comma", ",", "comma"},
    {"Tab", "\t", "tab"},
    {"Semicolon", ";", "semicolon"},
    {"Space", " ", "space"},
    {"Bar", "|", "bar"},
    {"Colon", ":", "colon"},
    {"Empty", "", "\"\""},
    {"CommonNamesAreForOneCharacter", ",,", "\",,\""},
    {"Letters", "abc", "\"abc\""},
    {"LineEndings", "\r\n", "\"\\r\\n\""},
    {"QuoteAndBackslash", "\"\\", "\"\\\"\\\\\""},
    {"ControlsAreEscaped", std::string("\0\x01\x1A\x1F\x7F", 5), "\"\\x00\\x01\\x1A\\x1F\\x7F\""},
    {"TabAmongOthersIsEscaped", "a\t", "\"a\\x09\""},
    {"TwoBytes", "\xC2\xA7", "\"\xC2\xA7\""},
    {"ThreeBytes", "\xE2\x80\xA2", "\"\xE2\x80\xA2\""},
    {"FourBytes", "\xF0\x9F\x92\x80", "\"\xF0\x9F\x92\x80\""},
    {"C1Control", "\xC2\x9B", "\"\xEF\xBF\xBD\""},
    {"DirectionOverride", "\xE2\x80\xAE", "\"\xEF\xBF\xBD\""},
    {"ZeroWidthSpace", "a\xE2\x80\x8B", "\"a\xEF\xBF\xBD\""},
    {"Tag", "\xF3\xA0\x81\x81", "\"\xEF\xBF\xBD\""},
    {"IllFormed", "a\xFF;", "\"a\xEF\xBF\xBD;\""},
    {"CutSequence", "\xE2\x80", "\"\xEF\xBF\xBD\xEF\xBF\xBD\""},
};

class MarkerName : public testing::TestWithParam<MarkerCase> {};
TEST_P(MarkerName, IsWhatPeopleWrite) {
  EXPECT_EQ(marker_name(GetParam().marker), GetParam().name);
}
INSTANTIATE_TEST_SUITE_P(Table, MarkerName, testing::ValuesIn(kMarkers), ByRule());

// --- dialects ----------------------------------------------------------------------------------

struct DialectCase {
  const char* rule;
  Dialect dialect;
  std::string words;
};
std::ostream& operator<<(std::ostream& out, const DialectCase& row) { return out << row.rule; }

const DialectCase kDialects[] = {
    {"Default", {}, "line-reader"},
    {"OneDelimiter", {LayoutMode::delimited, {","}, {}}, "delimited by comma"},
    {"TwoDelimiters", {LayoutMode::delimited, {"::", "\t"}, {}}, "delimited by \"::\" or tab"},
    {"ThreeDelimiters",
     {LayoutMode::delimited, {" ", "|", ";"}, {}},
     "delimited by space, bar or semicolon"},
    {"NoDelimiter", {LayoutMode::delimited, {}, {}}, "delimited"},
    {"SpaceAlignedNeedsNoDelimiters",
     {LayoutMode::space_aligned, {" ", "\t"}, {}},
     "space-aligned"},
    {"OneWidth", {LayoutMode::fixed_width, {}, {80}}, "fixed-width, widths 80"},
    {"ThreeWidths", {LayoutMode::fixed_width, {}, {3, 15, 2}}, "fixed-width, widths 3, 15, 2"},
    {"NoWidth", {LayoutMode::fixed_width, {}, {}}, "fixed-width"},
    {"UnknownMode", {static_cast<LayoutMode>(4), {","}, {1}}, ""},
};

class DialectInWords : public testing::TestWithParam<DialectCase> {};
TEST_P(DialectInWords, NamesModeAndSeparators) {
  EXPECT_EQ(to_string(GetParam().dialect), GetParam().words);
  std::ostringstream out;
  out << GetParam().dialect;
  EXPECT_EQ(out.str(), GetParam().words);
}
INSTANTIATE_TEST_SUITE_P(Table, DialectInWords, testing::ValuesIn(kDialects), ByRule());

TEST(DialectEquality, ComparesEveryMember) {
  const Dialect dialect{LayoutMode::delimited, {";"}, {2}};
  EXPECT_EQ(dialect, Dialect(dialect));
  EXPECT_NE(dialect, (Dialect{LayoutMode::space_aligned, {";"}, {2}}));
  EXPECT_NE(dialect, (Dialect{LayoutMode::delimited, {","}, {2}}));
  EXPECT_NE(dialect, (Dialect{LayoutMode::delimited, {";"}, {3}}));
}

}  // namespace
}  // namespace textio
