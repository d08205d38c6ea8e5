// Both forms of a report, whatever texts a layout and the options hold.
#include "tool/report.hpp"

#include <string>
#include <vector>

#include <gtest/gtest.h>
#include <rapidcheck.h>
#include <nlohmann/json.hpp>

#include <vltextstream/text/utf8.hpp>
#include "tool/json_report.hpp"

namespace textio::tool {
namespace {

using standalone::Layout;

// Letters, markers, controls, and all kinds of surrogates, paired and alone.
std::u16string random_text() {
  return *rc::gen::container<std::u16string>(rc::gen::oneOf(
      rc::gen::inRange<char16_t>(u' ', u'~'), rc::gen::inRange<char16_t>(0, 0xFFFF),
      rc::gen::inRange<char16_t>(0xD800, 0xE000),
      rc::gen::element<char16_t>(0xD83D, 0xDC80, 0xDB40, 0xDC01, u'\n', u'"', u'\\')));
}

std::vector<std::u16string> random_texts() {
  std::vector<std::u16string> texts;
  for (int i = *rc::gen::inRange(0, 4); i > 0; --i) texts.push_back(random_text());
  return texts;
}

std::string random_bytes() { return *rc::gen::container<std::string>(rc::gen::arbitrary<char>()); }

detection::SelectionTrace random_trace() {
  detection::SelectionTrace trace;
  trace.candidate_chars = random_text();
  trace.candidates.resize(2);
  trace.candidates[0].dialect = {LayoutMode::delimited, {random_bytes()}, {}};
  trace.candidates[1].dialect = {LayoutMode::fixed_width, {}, {3, 4}};
  trace.filters = {{"reduce", {0, 1}}};
  return trace;
}

Layout random_layout() {
  Layout layout;
  layout.mode =
      *rc::gen::element(standalone::LayoutMode::delimited, standalone::LayoutMode::space_aligned);
  layout.delimiters = random_texts();
  layout.names = random_texts();
  layout.units = random_texts();
  layout.classes.assign(3, DatatypeCode::text);
  layout.encoding = random_bytes();
  layout.encoding_found = standalone::EncodingFound::given;
  layout.line_ending = random_text();
  layout.trace = random_trace();
  layout.looks_binary = *rc::gen::arbitrary<bool>();
  return layout;
}

std::vector<GivenOption> random_options() {
  std::vector<GivenOption> given(2);
  given[0] = {random_bytes(), "--option", {random_bytes(), random_bytes()}};
  given[1] = {random_bytes(), "--option", {random_bytes()}, true};
  return given;
}

// Line breaks aside, which separate the lines of a report.
bool is_safe(std::string_view text) {
  while (!text.empty()) {
    const Utf8Character c = first_character(text);
    if (!c.is_well_formed || (is_unprintable(c.code) && c.code != U'\n')) return false;
    text.remove_prefix(c.length);
  }
  return true;
}

TEST(Report, IsSafeUtf8WhateverItRepeats) {
  EXPECT_TRUE(rc::check(
      [] { RC_ASSERT(is_safe(report(random_bytes(), random_layout(), random_options()))); }));
}

TEST(JsonReport, IsSafeUtf8WhateverItRepeats) {
  EXPECT_TRUE(rc::check([] {
    standalone::DetectSettings settings;
    settings.options.delimiters = random_texts();
    settings.options.whitespace = random_text();
    settings.encoding = random_bytes();
    std::string document = json_opening(settings, random_options());
    document += json_member(random_bytes(), random_layout());
    document += kJsonSeparator;
    document += json_member(random_bytes(), random_layout());
    document += kJsonClosing;
    RC_ASSERT(is_safe(document));
    RC_ASSERT(nlohmann::json::accept(document));
  }));
}

std::string in_parts(const std::string& file, const Layout& layout) {
  std::string all;
  write_json_member(file, layout, [&](std::string& part) {
    EXPECT_LE(part.size(), JsonWriter::kFullAt);
    all += part;
    part.clear();
  });
  return all;
}

TEST(JsonReport, IsTheSameInParts) {
  EXPECT_TRUE(rc::check([] {
    const std::string file = random_bytes();
    const Layout layout = random_layout();
    RC_ASSERT(in_parts(file, layout) == json_member(file, layout));
  }));
  Layout large;
  large.names.assign(20'000, u"level \x1B \xD83D\xDC80");
  large.names.push_back(std::u16string(200'000, u'x'));
  large.classes.assign(20'000, DatatypeCode::number);
  large.lines.assign(20'000, {standalone::LineRole::data, 1, 2, 2});
  EXPECT_EQ(in_parts("f", large), json_member("f", large));
}

TEST(Report, ShowsADelimiterOutsideTheBasicPlane) {
  Layout layout;
  layout.mode = standalone::LayoutMode::delimited;
  layout.delimiters = {u"\xD83D\xDC80", u"a\xD83D"};
  EXPECT_NE(report("f", layout).find("delimited by \"\xF0\x9F\x92\x80\" or \"a\xEF\xBF\xBD\"\n"),
            std::string::npos);
}

TEST(Report, SaysThatAFileLooksBinary) {
  Layout layout;
  EXPECT_EQ(report("f", layout).find("looks binary"), std::string::npos);
  EXPECT_EQ(json_member("f", layout).find("looks_binary"), std::string::npos);
  layout.looks_binary = true;
  EXPECT_NE(report("f", layout).find("\n  looks binary    "), std::string::npos);
  EXPECT_EQ(nlohmann::json::parse(json_member("f", layout)).at("looks_binary"), true);
}

}  // namespace
}  // namespace textio::tool
