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

char16_t random_mark() { return *rc::gen::arbitrary<char16_t>(); }

std::vector<standalone::MissingWord> random_words() { return {{random_text(), 2}, {u"NA", 1}}; }

standalone::TableDialect random_dialect() {
  standalone::TableDialect dialect;
  dialect.delimiters = random_texts();
  dialect.quote = random_mark();
  dialect.escape = standalone::Escape::backslash;
  dialect.comment_prefix = random_text();
  dialect.decimal = random_mark();
  dialect.grouping = random_mark();
  dialect.missing = random_words();
  dialect.line_endings = {{random_text(), 2}, {u"\n", 1}};
  return dialect;
}

standalone::ColumnFacts random_column() {
  standalone::ColumnFacts column;
  column.kind = *rc::gen::element(standalone::ColumnKind::money, standalone::ColumnKind::boolean,
                                  standalone::ColumnKind::date);
  column.num_cells = 2;
  column.first_misfit_line = 3;
  column.missing = random_words();
  column.decimal = random_mark();
  column.grouping = random_mark();
  column.currency = random_text();
  column.true_word = random_text();
  column.false_word = random_text();
  column.date.strptime = random_bytes();
  column.date.icu = random_bytes();
  column.date.zone = random_bytes();
  column.examples = random_texts();
  return column;
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
  layout.confidence = 0.5;
  layout.names_unique = {random_text(), random_text(), random_text()};
  layout.dialect = random_dialect();
  layout.columns = {random_column(), random_column(), random_column()};
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

Layout layout_of_columns(const std::vector<standalone::ColumnKind>& kinds) {
  Layout layout;
  layout.names.assign(kinds.size(), u"x");
  layout.classes.assign(kinds.size(), DatatypeCode::text);
  for (const standalone::ColumnKind kind : kinds) {
    layout.columns.emplace_back();
    layout.columns.back().kind = kind;
  }
  return layout;
}

TEST(Report, AlignsTheNamesOfColumns) {
  using Kind = standalone::ColumnKind;
  EXPECT_NE(report("f", layout_of_columns({Kind::date, Kind::category}))
                .find("               1  date      x\n"
                      "               2  category  x\n"),
            std::string::npos);
  EXPECT_NE(report("f", layout_of_columns({Kind::percentage, Kind::date}))
                .find("               1  percentage  x\n"
                      "               2  date        x\n"),
            std::string::npos);
  EXPECT_NE(report("f", layout_of_columns({Kind::date, Kind::epoch_milliseconds}))
                .find("               1  date                x\n"
                      "               2  epoch-milliseconds  x\n"),
            std::string::npos);
}

TEST(Report, NamesBlanksThatLookAlike) {
  const auto grouped_by = [](char16_t mark) {
    Layout layout;
    layout.dialect.grouping = mark;
    return report("f", layout);
  };
  EXPECT_NE(grouped_by(u' ').find("numbers grouped by \" \"\n"), std::string::npos);
  EXPECT_NE(grouped_by(u'\u00A0').find("numbers grouped by U+00A0\n"), std::string::npos);
  EXPECT_NE(grouped_by(u'\u2009').find("numbers grouped by U+2009\n"), std::string::npos);
  EXPECT_NE(grouped_by(u'\u202F').find("numbers grouped by U+202F\n"), std::string::npos);
}

TEST(Report, SaysNothingOfColumnsWhereThereIsNoTable) {
  Layout layout;
  layout.no_table = "running text";
  layout.confidence = 0.9;
  layout.classes = {DatatypeCode::text};
  layout.lines = {{standalone::LineRole::data, 1, 3, 3}};
  EXPECT_EQ(report("f", layout),
            "f\n"
            "  no table        this is probably running text\n"
            "  confidence      90 % sure\n"
            "  encoding        none, the text was in memory\n"
            "  line ending     none\n"
            "  looked at       all 3 lines\n");
}

// The answer of the cascade is worth a line unless it is the next best one.
TEST(Report, NamesAnAnswerOnce) {
  Layout layout;
  layout.confidence = 0.6;
  layout.mode = LayoutMode::delimited;
  layout.delimiters = {u";"};
  layout.cascade = standalone::CascadeAnswer{LayoutMode::delimited, {u","}, {}, 0, 2, false};
  const std::string line = "\n  or perhaps      delimited by comma, 2 columns, as --judge cascade";
  EXPECT_NE(report("f", layout).find(line), std::string::npos);
  layout.rivals = {{LayoutMode::delimited, {u","}, {}, std::nullopt, 2, 0.3, "it is odd", ""}};
  EXPECT_EQ(report("f", layout).find(line), std::string::npos);
  EXPECT_NE(report("f", layout).find("\n  next best       delimited by comma, 2 columns, 30 %: it"),
            std::string::npos);
}

// A line for each kind; a delimiter that was weighed with several quotes is there once.
TEST(Report, TellsWhatWasConsidered) {
  Layout layout;
  layout.confidence = 0.6;
  layout.trace.emplace();
  const auto add = [&](LayoutMode mode, std::u16string delimiter) {
    layout.considered.push_back({mode, std::move(delimiter), 0.0});
  };
  add(LayoutMode::fixed_width, u"");
  for (const char16_t* delimiter : {u";", u",", u";", u"\t", u" ", u"|", u":", u"/", u"~"})
    add(LayoutMode::delimited, delimiter);
  add(LayoutMode::delimited, u"::");
  for (int i = 0; i < 3; ++i) add(LayoutMode::space_aligned, u"");
  add(LayoutMode::line_reader, u"");
  add(LayoutMode::line_reader, u"");
  EXPECT_NE(
      report("f", layout)
          .find("\n\n  considered      columns of fixed width\n"
                "                  8 delimiters: semicolon, comma, tab, space, bar, colon and "
                "2 more\n"
                "                  1 mark of several characters: \"::\"\n"
                "                  columns aligned with blanks, in 3 ways\n"
                "                  one column, in 2 ways\n"
                "  for the answer"),
      std::string::npos)
      << report("f", layout);
}

TEST(Report, TellsWhyTheNextBestLost) {
  Layout layout;
  layout.confidence = 0.6;
  layout.trace.emplace();
  layout.evidence = {{"a", 3.0, "it is so"}, {"b", -2.9, "it is odd"}, {"c", 0.9, "it is nice"}};
  layout.considered = {{LayoutMode::line_reader, u"", 0.6},
                       {LayoutMode::delimited, u",", 0.3},
                       {LayoutMode::delimited, u";", 0.05},
                       {LayoutMode::line_reader, u"", 0.03, false}};
  layout.rivals = {
      {LayoutMode::delimited, {u","}, {}, std::nullopt, 2, 0.3, "of the answer, it is so", ""},
      {LayoutMode::delimited, {u";"}, {}, std::nullopt, 3, 0.05, "there is more", ""}};
  EXPECT_NE(
      report("f", layout)
          .find("\n\n  considered      one column\n"
                "                  2 delimiters: comma, semicolon\n"
                "                  no table\n"
                "  for the answer  strongly: it is so\n"
                "                  slightly: it is nice\n"
                "  against it      clearly: it is odd\n"
                "  next best       delimited by comma, 2 columns, 30 %, lost to the answer: it is "
                "so\n"
                "  after it        delimited by semicolon, 3 columns, 5 %, lost: there is more\n"),
      std::string::npos)
      << report("f", layout);
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
