// A detection that looks at a prefix first gives the answer of the whole sample: every member of the
// layout is compared, whatever the length of the first prefix.
#include <vltextstream/layout/detect_input.hpp>

#include <cstddef>
#include <cstdint>
#include <fstream>
#include <iterator>
#include <limits>
#include <numeric>
#include <ostream>
#include <random>
#include <string>
#include <string_view>
#include <vector>

#include <gtest/gtest.h>

#include <vltextstream/detection/fixed_stream.hpp>
#include <vltextstream/standalone/decoding/utf_text.hpp>

#include "bench/shapes.hpp"
#include "support/example_cases.hpp"
#include "support/layout_text.hpp"
#include "support/rule_name.hpp"

namespace textio::standalone {
namespace {

using testing_support::ByRule;
using testing_support::every_member_of;

constexpr auto kAllLines = std::numeric_limits<unsigned long>::max();

std::string answer(std::string_view bytes, const DetectSettings& settings, std::size_t units) {
  return every_member_of(detect_input(InputText(FileContent{bytes}, settings), settings, units));
}

const std::vector<std::size_t> kLengths = {1, 2, 3, 7, 64, 1'000};

// For first prefixes of these lengths.
void expect_same_answer(std::string_view bytes, const DetectSettings& settings,
                        const std::vector<std::size_t>& lengths = kLengths) {
  const std::string expected = answer(bytes, settings, kSampleUnits);
  for (const std::size_t units : lengths) {
    EXPECT_EQ(answer(bytes, settings, units), expected)
        << units << " code units of " << bytes.substr(0, 2'000);
  }
}

// --- files and shapes ------------------------------------------------------------------------------

std::string content_of(const std::string& path) {
  std::ifstream file(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(file), {}};
}

TEST(DetectInputProperty, HoldsForTheExamples) {
  for (const testing_support::ExampleCase& example : testing_support::example_cases()) {
    SCOPED_TRACE(example.file);
    const std::string bytes = content_of(example.path());
    ASSERT_TRUE(!bytes.empty() || example.file == "empty.txt");
    DetectSettings settings = example.settings;
    for (const unsigned long num_lines : {0UL, 1UL, 3UL, 5UL, 100UL, kAllLines}) {
      settings.num_lines = num_lines;
      settings.trace = num_lines == 5;
      expect_same_answer(bytes, settings);
    }
  }
}

void expect_same_answers(const std::vector<bench::Shape>& shapes, std::size_t size) {
  for (const bench::Shape& shape : shapes) {
    SCOPED_TRACE(shape.name);
    const std::string bytes = to_utf8(shape.make(size));
    DetectSettings settings;
    if (shape.set != nullptr) shape.set(settings, size);
    for (const unsigned long num_lines : {1UL, 100UL, kAllLines}) {
      settings.num_lines = num_lines;
      expect_same_answer(bytes, settings);
    }
  }
}

TEST(DetectInputProperty, HoldsForEveryShape) {
  expect_same_answers(bench::data_shapes(), 40'000);
  expect_same_answers(bench::adversarial_shapes(), 3'000);
  expect_same_answers(bench::option_shapes(), 3'000);
}

// --- cuts ------------------------------------------------------------------------------------------

struct CutCase {
  const char* rule;
  std::string bytes;
  void (*set)(DetectSettings& settings);
};
std::ostream& operator<<(std::ostream& out, const CutCase& row) { return out << row.rule; }

const std::string kPadding(200, 'x');

const CutCase kCuts[] = {
    {"BetweenTwoCharactersOfALineEnding", "a,b\r\n1,2\r\n3,4\r\n" + kPadding,
     [](DetectSettings& settings) { settings.num_lines = 3; }},
    {"InALineEndingThatIsLookedAtAlone", "a,b\r\n1,2\r\n" + kPadding,
     [](DetectSettings& settings) { settings.num_lines = 0; }},
    {"BeforeTheLongestOfSeveralLineEndings", "1,2<end>3,4<end><end>\n" + kPadding,
     [](DetectSettings& settings) {
       settings.num_lines = 2;
       settings.options.line_endings = {u"<end><end>\n", u"<end>", u"\n"};
     }},
    {"InALongDelimiter", "1<|>2\n3<|>4<|>5\n" + kPadding,
     [](DetectSettings& settings) {
       settings.num_lines = 2;
       settings.options.detect_delimiters = false;
       settings.options.delimiters = {u"<|>", u"\n3<|>4<"};
     }},
    // The last field reaches into the lines that follow, and is no number there.
    {"InAFieldThatIsWiderThanItsLine", "12\n34\n\n\n\n\n\nabc\n" + kPadding,
     [](DetectSettings& settings) {
       settings.num_lines = 2;
       settings.options.detect_header_lines = false;
       settings.options.header_lines = 0;
       settings.options.parser_type = parser::parser_kind::fixedwidth;
       settings.options.variable_widths = {12};
       settings.options.whitespace = u" \n";
     }},
    {"InAQuoteThatNothingCloses", "1,2\n3,\"4\n5,6\n7,8\n9,10\n" + kPadding,
     [](DetectSettings& settings) { settings.num_lines = 3; }},
    {"InsideACharacterOfSeveralBytes", "\xC3\xA9,\xF0\x9F\x98\x80\n1,2\n3,4\n" + kPadding,
     [](DetectSettings& settings) { settings.num_lines = 2; }},
    {"InAnIllFormedPart", "1,\xE2\x82\n\xEF\xBF\xBD,\xE2\x82\xE2\n3,4\n" + kPadding,
     [](DetectSettings& settings) { settings.num_lines = 2; }},
    {"BeforeAnEndMark", "1,2\n3,4\n\xEF\xBF\xBF" + kPadding,
     [](DetectSettings& settings) { settings.num_lines = 2; }},
    {"InManyBlankLines", "1,2\n3,4\n" + std::string(150, '\n') + "5,6\n" + kPadding + kPadding,
     [](DetectSettings& settings) { settings.num_lines = 3; }},
};

class DetectInput : public testing::TestWithParam<CutCase> {};
TEST_P(DetectInput, GivesOneAnswerWhereverThePrefixIsCut) {
  const CutCase& row = GetParam();
  DetectSettings settings;
  settings.trace = true;
  row.set(settings);
  std::vector<std::size_t> lengths(row.bytes.size());
  std::iota(lengths.begin(), lengths.end(), std::size_t{1});
  expect_same_answer(row.bytes, settings, lengths);
}
INSTANTIATE_TEST_SUITE_P(Table, DetectInput, testing::ValuesIn(kCuts), ByRule());

// --- random texts ----------------------------------------------------------------------------------

class RandomInput {
 public:
  explicit RandomInput(std::uint32_t seed) : random_(seed) {}

  // Lines of fields with one separator, some of them disturbed.
  std::string bytes() {
    const std::string separator = one_of<std::string>(
        {",", ";", "\t", " ", "  ", "|", ", ", "<|>", ":", "\xC3\xA4", "\xF0\x9F\x98\x80"});
    const std::string ending =
        one_of<std::string>({"\n", "\n", "\n", "\r\n", "\r\n", "\r", "\n\n", "<end>", "<>\n"});
    const std::size_t columns = 1 + below(5);
    const bool has_one_width = one_in(4);
    std::string bytes;
    for (std::size_t i = below(3); i > 0; --i) bytes += prose() + ending;
    for (std::size_t line = below(60); line > 0; --line) {
      std::size_t count = one_in(12) ? below(6) : columns;
      if (one_in(15)) bytes += "%";
      for (; count > 0; --count) {
        std::string text = field();
        if (has_one_width) text.resize(10, ' ');
        bytes += text + (count > 1 ? separator : "");
      }
      if (one_in(30)) bytes += noise();
      if (one_in(80)) bytes.append(below(300), one_of<char>({'\n', ' ', 'x', '\r'}));
      bytes += one_in(40) ? "\n" : ending;
    }
    if (one_in(3) && !bytes.empty()) bytes.pop_back();
    return bytes;
  }

  // At least 1.
  std::size_t length_below(std::size_t size) { return 1 + below(size + 1); }

  DetectSettings settings() {
    using Texts = std::vector<std::u16string>;
    DetectSettings settings;
    parser::options& options = settings.options;
    settings.num_lines = one_of<unsigned long>({0, 1, 2, 3, 5, 8, 13, 30, 100, kAllLines});
    settings.trace = one_in(4);
    if (one_in(4)) settings.encoding = one_of<std::string>({"UTF-8", "ISO-8859-1", "Shift_JIS"});
    if (one_in(4)) options.comment_style = one_of<Texts>({{u"%"}, {u"#"}, {u"a", u"b"}});
    if (one_in(4)) {
      options.line_endings = one_of<Texts>(
          {{u"<end>", u"\n"}, {u"<>\n", u"\n"}, {u"\r\n\r\n", u"\r\n"}, {u"\n"}, {u""}, {}});
    }
    if (one_in(5)) {
      options.detect_header_lines = false;
      options.header_lines = one_of<std::size_t>({0, 1, 2, 7, 40});
    }
    if (one_in(6)) {
      options.detect_num_variables = false;
      options.num_variables = below(6);
    }
    if (one_in(6)) options.whitespace = one_of<std::u16string>({u"", u" \t", u"\t", u"a "});
    if (one_in(8)) {
      options.detect_delimiters = false;
      options.delimiters = one_of<Texts>({{u","}, {u"<|>"}, {u" ", u"\t"}, {u";", u"1,"}});
    } else if (one_in(8)) {
      options.parser_type = parser::parser_kind::fixedwidth;
      options.variable_widths = one_of<std::vector<unsigned long>>(
          {{10, 10, 10}, {1}, {3, 40}, {2, 2, 300}, {10, 11, 12, 13}});
    }
    return settings;
  }

 private:
  std::size_t below(std::size_t bound) { return random_() % bound; }
  bool one_in(std::size_t n) { return below(n) == 0; }

  template <typename T>
  T one_of(const std::vector<T>& list) {
    return list[below(list.size())];
  }

  std::string prose() {
    return one_of<std::string>({"Measured in winter", "# a, b; c", "", "station 12: north",
                                "2024-03-01", "\"quoted\" words", "name,unit,level"});
  }

  std::string field() {
    return one_of<std::string>({"1", "-2.5", "abc", "", " ", "2024-03-01", "12:30", "x y", "\"q\"",
                                "\"a, b\"", "1e5", "\xC3\xA9t\xC3\xA9"});
  }

  // Quotes that swallow what follows, halves of line endings, an end mark, ill-formed bytes and a
  // character that stands for them.
  std::string noise() {
    return one_of<std::string>({"\"", ",\"", "\r", "<", "<en", "\xEF\xBF\xBF", "\xC3", "\xFF",
                                "\xEF\xBF\xBD", "\"\"", "\n\n\n", "%", std::string(1, '\0')});
  }

  std::mt19937 random_;
};

TEST(DetectInputProperty, HoldsForRandomTextsAndOptions) {
  constexpr std::uint32_t kTexts = 1'500;
  for (std::uint32_t seed = 0; seed < kTexts && !testing::Test::HasFailure(); ++seed) {
    SCOPED_TRACE(seed);
    RandomInput input(seed);
    const DetectSettings settings = input.settings();
    const std::string bytes = input.bytes();
    expect_same_answer(bytes, settings, {1, 7, 64, input.length_below(bytes.size())});
  }
}

}  // namespace
}  // namespace textio::standalone
