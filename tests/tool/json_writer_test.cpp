#include "tool/json_writer.hpp"

#include <cmath>
#include <cstdint>
#include <limits>
#include <ostream>
#include <string>
#include <vector>

#include <gtest/gtest.h>
#include <rapidcheck.h>
#include <nlohmann/json.hpp>

#include "support/rule_name.hpp"

namespace textio::tool {
namespace {

using testing_support::ByRule;
using Tree = nlohmann::ordered_json;

template <typename Value>
std::string written(const Value& value) {
  std::string out;
  JsonWriter(out).value(value);
  return out;
}

// --- shape ---------------------------------------------------------------------------------------

TEST(JsonWriter, IndentsEachValueInALineOfItsOwn) {
  std::string out;
  JsonWriter json(out);
  json.begin_object();
  json.member("a", 1);
  json.key("list");
  json.begin_array();
  json.value("x");
  json.begin_object();
  json.end_object();
  json.begin_array();
  json.end_array();
  json.end_array();
  json.key("object");
  json.begin_object();
  json.member("b", nullptr);
  json.end_object();
  json.member("c", true);
  json.end_object();
  EXPECT_EQ(out,
            "{\n"
            "  \"a\": 1,\n"
            "  \"list\": [\n"
            "    \"x\",\n"
            "    {},\n"
            "    []\n"
            "  ],\n"
            "  \"object\": {\n"
            "    \"b\": null\n"
            "  },\n"
            "  \"c\": true\n"
            "}");
}

TEST(JsonWriter, BeginsAPartAtItsDepth) {
  std::string out = "[\n";
  JsonWriter json(out, 1);
  json.begin_object();
  json.member("a", std::vector<int>{1, 2});
  json.end_object();
  EXPECT_EQ(out, "[\n  {\n    \"a\": [\n      1,\n      2\n    ]\n  }");
}

TEST(JsonWriter, WritesOneLineOnRequest) {
  std::string out;
  JsonWriter json(out, 0, {}, JsonWriter::Shape::one_line);
  json.begin_object();
  json.member("a", std::vector<int>{1, 2});
  json.key("list");
  json.begin_array();
  json.begin_object();
  json.end_object();
  json.value("x\ny");
  json.end_array();
  json.member("b", nullptr);
  json.end_object();
  EXPECT_EQ(out, R"({"a": [1, 2], "list": [{}, "x\ny"], "b": null})");
}

// A second route: the tree of a library, written with the same indentation.
void write_tree(JsonWriter& json, const Tree& tree) {
  if (tree.is_object()) {
    json.begin_object();
    for (const auto& [name, value] : tree.items()) {
      json.key(name);
      write_tree(json, value);
    }
    json.end_object();
  } else if (tree.is_array()) {
    json.array(tree, [&](const Tree& element) { write_tree(json, element); });
  } else if (tree.is_string()) {
    json.value(tree.get<std::string>());
  } else if (tree.is_number_float()) {
    json.value(tree.get<double>());
  } else if (tree.is_number_unsigned()) {
    json.value(tree.get<std::uint64_t>());
  } else if (tree.is_number_integer()) {
    json.value(tree.get<std::int64_t>());
  } else if (tree.is_boolean()) {
    json.value(tree.get<bool>());
  } else {
    json.value(nullptr);
  }
}

Tree random_tree(int depth) {
  const int kind = *rc::gen::inRange(0, depth == 0 ? 5 : 7);
  const int size = *rc::gen::inRange(0, 4);
  Tree tree;
  switch (kind) {
    case 0:
      return nullptr;
    case 1:
      return *rc::gen::arbitrary<bool>();
    case 2:
      return *rc::gen::arbitrary<std::int64_t>();
    case 3:
      return *rc::gen::arbitrary<std::uint64_t>();
    case 4:
      return *rc::gen::container<std::string>(rc::gen::inRange('\t', '~'));
    case 5:
      tree = Tree::array();
      for (int i = 0; i < size; ++i) tree.push_back(random_tree(depth - 1));
      return tree;
    default:
      tree = Tree::object();
      for (int i = 0; i < size; ++i) tree[std::to_string(i)] = random_tree(depth - 1);
      return tree;
  }
}

TEST(JsonWriter, WritesWhatATreeIsWrittenAs) {
  EXPECT_TRUE(rc::check([] {
    const Tree tree = random_tree(4);
    std::string out;
    JsonWriter json(out);
    write_tree(json, tree);
    RC_ASSERT(Tree::parse(out) == tree);
    RC_ASSERT(out == tree.dump(2));
  }));
}

// --- texts ---------------------------------------------------------------------------------------

struct TextCase {
  const char* rule;
  std::string text;
  std::string json;
};
std::ostream& operator<<(std::ostream& out, const TextCase& row) { return out << row.rule; }

const TextCase kTexts[] = {
    {"Nothing", "", R"("")"},
    {"Letters", "caf\xC3\xA9", "\"caf\xC3\xA9\""},
    {"QuoteAndBackslash", "a\"b\\c/", R"("a\"b\\c/")"},
    {"ShortEscapes", "\b\t\n\f\r", R"("\b\t\n\f\r")"},
    {"OtherControls", std::string("\0\x0B\x1B\x7F", 4), R"("\u0000\u000b\u001b\u007f")"},
    {"ControlsAboveAscii", "\xC2\x85\xC2\x9B", R"("\u0085\u009b")"},
    {"Directions", "\xE2\x80\xAE", R"("\u202e")"},
    {"Invisible", "\xC2\xAD\xE2\x80\x8B\xEF\xBB\xBF", R"("\u00ad\u200b\ufeff")"},
    {"Tags", "\xF3\xA0\x80\x81\xF3\xA0\x81\xBF", R"("\udb40\udc01\udb40\udc7f")"},
    {"OutsideTheBasicPlane", "\xF0\x9F\x92\x80", "\"\xF0\x9F\x92\x80\""},
    {"OneForACutCharacter", "a\xE2\x82z", "\"a\xEF\xBF\xBDz\""},
    {"OneForEachLoneByte", "\xFF\xFE", "\"\xEF\xBF\xBD\xEF\xBF\xBD\""},
};

class JsonText : public testing::TestWithParam<TextCase> {};
TEST_P(JsonText, IsEscaped) { EXPECT_EQ(written(GetParam().text), GetParam().json); }
INSTANTIATE_TEST_SUITE_P(Table, JsonText, testing::ValuesIn(kTexts), ByRule());

TEST(JsonText, IsTheSameToWhoeverParsesIt) {
  EXPECT_TRUE(rc::check([](const std::vector<std::uint8_t>& bytes) {
    const std::string text(bytes.begin(), bytes.end());
    const std::string valid = Tree::parse(written(text)).get<std::string>();
    RC_ASSERT(valid == Tree::parse(Tree(text).dump(-1, ' ', true, Tree::error_handler_t::replace))
                           .get<std::string>());
  }));
}

TEST(JsonText, OfUtf16IsUtf8) {
  EXPECT_EQ(written(std::u16string(u"a\xE9\xD83D\xDC80")), "\"a\xC3\xA9\xF0\x9F\x92\x80\"");
}

// --- numbers -------------------------------------------------------------------------------------

struct NumberCase {
  const char* rule;
  double number;
  std::string json;
};
std::ostream& operator<<(std::ostream& out, const NumberCase& row) { return out << row.rule; }

const NumberCase kNumbers[] = {
    {"Zero", 0.0, "0.0"},
    {"NegativeZero", -0.0, "-0.0"},
    {"One", 1.0, "1.0"},
    {"Half", 0.5, "0.5"},
    {"Negative", -12.25, "-12.25"},
    {"Third", 1.0 / 3, "0.3333333333333333"},
    {"SmallestWithoutExponent", 0.0001, "0.0001"},
    {"LargestSmallWithExponent", 0.00001, "1e-05"},
    {"DigitsWithExponent", 0.0000125, "1.25e-05"},
    {"FifteenDigits", 999'999'999'999'999.0, "999999999999999.0"},
    {"FifteenDigitsAndAFraction", 123'456'789'012'345.5, "123456789012345.5"},
    {"SixteenDigits", 1e15, "1e+15"},
    {"LongExponent", 1e100, "1e+100"},
    {"Largest", std::numeric_limits<double>::max(), "1.7976931348623157e+308"},
    {"Smallest", std::numeric_limits<double>::denorm_min(), "5e-324"},
    {"Infinite", std::numeric_limits<double>::infinity(), "null"},
    {"NotANumber", std::nan(""), "null"},
};

class JsonNumber : public testing::TestWithParam<NumberCase> {};
TEST_P(JsonNumber, HasTheFewestDigits) { EXPECT_EQ(written(GetParam().number), GetParam().json); }
INSTANTIATE_TEST_SUITE_P(Table, JsonNumber, testing::ValuesIn(kNumbers), ByRule());

TEST(JsonNumber, IsReadAsItWas) {
  EXPECT_TRUE(rc::check(
      [](double number) { RC_ASSERT(Tree::parse(written(number)).get<double>() == number); }));
}

TEST(JsonNumber, MayBeWholeOrAbsent) {
  EXPECT_EQ(written(std::numeric_limits<std::uint64_t>::max()), "18446744073709551615");
  EXPECT_EQ(written(std::numeric_limits<std::int64_t>::min()), "-9223372036854775808");
  EXPECT_EQ(written(std::optional<int>(3)), "3");
  EXPECT_EQ(written(std::optional<int>()), "null");
}

}  // namespace
}  // namespace textio::tool
