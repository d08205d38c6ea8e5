// Options by name: pairs of every kind of name and value are applied or refused, never in part.
#include <algorithm>
#include <bit>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <span>
#include <string>
#include <vector>

#include <vltextstream/options/option_values.hpp>
#include <vltextstream/options/set_parser_options.hpp>
#include <vltextstream/standalone/decoding/utf_text.hpp>
#include <vltextstream/standalone/services/array.hpp>
#include "fuzz/check.hpp"
#include "fuzz/input.hpp"
#include "fuzz/option_names.hpp"
#include "support/option_calls.hpp"

namespace textio::fuzz {
namespace {

using standalone::Array;
using testing_support::contents_of;
using testing_support::OptionPair;

const std::u16string kTexts[] = {u"",          u",",      u"\\t",     u"\\",      u"\\n\\r\\b\\\\",
                                 u"\\x",       u"delim",  u"FIXED",   u"tabular", u"fill",
                                 u"omit",      u"omitv",  u"error",   u"split",   u"join",
                                 u"skip",      u"read",   u"addvars", u"wrap",    u"ignore",
                                 u"keep",      u"char",   u"string",  u"date",    u"exceldate",
                                 u"\r\n",      u"\\r\\n", u"\\r\n",   u"errors",  u"UTF-16",
                                 u"partially", u"e",      u"o",       u"tab"};

constexpr double kInfinity = std::numeric_limits<double>::infinity();
constexpr double kNumbers[] = {0.0,
                               1.0,
                               2.0,
                               -0.0,
                               -1.0,
                               0.5,
                               1e18,
                               1e19,
                               1e300,
                               4294967296.0,
                               18446744073709551616.0,
                               18446744073709549568.0,
                               kInfinity,
                               -kInfinity,
                               std::numeric_limits<double>::quiet_NaN(),
                               5e-324};

double number_from(Input& input) {
  const std::size_t kind = input.below(20);
  if (kind < std::size(kNumbers)) return kNumbers[kind];
  return kind < 18 ? input.byte() : std::bit_cast<double>(input.word());
}

std::u16string text_from(Input& input) {
  return input.flag() ? input.text(8) : input.one_of(kTexts);
}

std::u16string name_from(Input& input) {
  const std::size_t kind = input.below(8);
  std::u16string name = kind == 7 ? input.text(12) : std::u16string(input.one_of(kOptionNames));
  if (kind < 5) return name;
  for (char16_t& unit : name) {
    if (unit < 0x80 && input.flag()) unit ^= 0x20;  // changes the case of a letter
  }
  return name;
}

constexpr int kDeepest = 3;

Array value_from(Input& input, int depth = 0) {
  const std::size_t kind = input.below(depth < kDeepest ? 12 : 9);
  switch (kind) {
    case 0:
    case 1:
      return standalone::make_array(text_from(input));
    case 2:
    case 3:
      return standalone::make_array(number_from(input));
    case 4:
      return standalone::make_array(input.flag());
    case 5: {
      std::vector<double> numbers(input.below(4));
      for (double& number : numbers) number = number_from(input);
      return standalone::make_array(numbers);
    }
    case 6: {
      std::vector<std::uint64_t> numbers(input.below(4));
      for (std::uint64_t& number : numbers) number = input.count();
      return standalone::make_array(numbers);
    }
    case 7: {
      const std::u16string text = text_from(input);
      const std::size_t n = text.size();
      const std::vector<std::size_t> shapes[] = {{n, 1}, {1, n, 1}, {1, 1, n}, {0, 1}, {1, n}};
      const auto& shape = input.one_of(shapes);
      return standalone::make_char_array(shape[0] == 0 ? std::u16string() : text, shape);
    }
    case 8:
      return standalone::make_empty_array();
    case 9: {
      std::vector<std::u16string> texts(input.below(4));
      for (std::u16string& text : texts) text = text_from(input);
      return standalone::make_text_cell(texts);
    }
    default: {
      std::vector<Array> cells(input.below(4));
      for (Array& cell : cells) cell = value_from(input, depth + 1);
      return standalone::make_cell(cells);
    }
  }
}

// ---------------------------------------------------------------------------------------------
// Pairs

using Pairs = std::span<const OptionPair>;

std::string apply_together(parser::options& record, Pairs pairs) {
  return testing_support::error_of_pairs(record, {pairs.begin(), pairs.end()});
}

void check_error(const std::string& error) {
  constexpr std::string_view kDocumented[] = {"OddNumberNVPairs",
                                              "UnknownParameter",
                                              "ExpectedNonNegativeScalarInt",
                                              "ExpectedPositiveScalarInt",
                                              "ExpectedScalarLogical",
                                              "CommentStyleSize",
                                              "DelimiterType",
                                              "BadTextFlag",
                                              "InvalidStringProperty",
                                              "InvalidStringOrCellStringProperty",
                                              "InvalidEscapeSequence"};
  const std::string_view name = std::string_view(error).substr(0, error.find('('));
  for (const std::string_view documented : kDocumented) {
    if (name == "VELLUM:textio:textio:" + std::string(documented)) return;
  }
  fail("an error of no documented kind: " + error);
}

// One after the other, up to the one that is refused. Returns how many were applied.
std::size_t apply_singly(parser::options& record, Pairs pairs, std::string& error) {
  for (std::size_t i = 0; i < pairs.size(); ++i) {
    const std::string before = contents_of(record);
    error = apply_together(record, pairs.subspan(i, 1));
    if (error.empty()) continue;
    require_same_lines("record after a refused pair", contents_of(record), before);
    return i;
  }
  return pairs.size();
}

void check_pairs(Pairs pairs) {
  parser::options together = testing_support::unusual_record();
  parser::options singly = together;
  const std::string error = apply_together(together, pairs);
  if (!error.empty()) check_error(error);
  std::string error_of_one;
  const std::size_t applied = apply_singly(singly, pairs, error_of_one);
  const std::string contents = contents_of(together);
  require_same_lines("error of the pairs one by one", error_of_one, error);
  require_same_lines("record of the pairs one by one", contents_of(singly), contents);
  require_same_lines("error of the second time", apply_together(together, pairs.first(applied)),
                     "");
  require_same_lines("record of the second time", contents_of(together), contents);
}

void check_odd_count(Pairs pairs) {
  parser::options record;
  std::vector<const hxArray*> args;
  for (const OptionPair& pair : pairs) args.insert(args.end(), {pair.value.get(), nullptr});
  const std::string before = contents_of(record);
  const int count = static_cast<int>(args.size()) - 1;
  const std::string error =
      testing_support::error_of([&] { options::set_parser_options(args.data(), count, record); });
  require_same_lines("error of an odd number", error,
                     testing_support::error_text("OddNumberNVPairs"));
  require_same_lines("record after an odd number", contents_of(record), before);
}

// The stand-alone front end gives the same record, and an error with the name and a sentence. Its
// names are UTF-8, which has no lone surrogates.
void check_front_end(Pairs pairs) {
  std::vector<standalone::NameValue> options;
  std::vector<OptionPair> same_pairs;
  for (const OptionPair& pair : pairs) {
    options.emplace_back(standalone::to_utf8(pair.name), pair.value);
    same_pairs.push_back({standalone::from_utf8(options.back().first), pair.value});
  }
  parser::options record;
  parser::options plain;
  const std::string error = apply_together(plain, same_pairs);
  std::string problem;
  try {
    standalone::apply_options(record, options);
  } catch (const standalone::OptionProblem& caught) {
    require(caught.what()[0] != '\0', "a problem is reported in a sentence");
    const bool is_given = std::any_of(options.begin(), options.end(), [&](const auto& option) {
      return option.first == caught.option();
    });
    require(is_given, "a problem names an option that was given");
    problem = testing_support::readable(caught);
  }
  require_same_lines("problem", problem, error);
  require_same_lines("record of the front end", contents_of(record), contents_of(plain));
}

// ---------------------------------------------------------------------------------------------
// Values that are read back unchanged

std::u16string escaped(const std::u16string& text) {
  std::u16string out;
  for (const char16_t unit : text) {
    constexpr std::u16string_view kUnits = u"\\\b\n\r\t";
    const std::size_t place = kUnits.find(unit);
    if (place == kUnits.npos) {
      out += unit;
    } else {
      out += u'\\';
      out += u"\\bnrt"[place];
    }
  }
  return out;
}

void check_round_trips(Input input) {
  const std::u16string text = input.text(12);
  require_same_text("escaped text", options::unescape_option_string(escaped(text), "Whitespace"),
                    text);
  require_same_text("text", options::to_text(standalone::make_array(text).get(), "Encoding"), text);

  const std::uint64_t number = input.word() >> input.below(64);
  const Array value = standalone::make_array(static_cast<double>(number));
  if (number >> 53 == 0) {
    require_equal("number", options::to_non_negative_integer(value.get()), number);
  }
  const std::vector<std::uint64_t> widths = {number, 0, ~number};
  require(options::to_widths(standalone::make_array(widths).get()) == widths,
          "widths are taken bit for bit");

  const options::Choices choices = parser::keywords<parser::partial_field_action>;
  const parser::Keyword choice = choices[input.below(choices.size())];
  const std::u16string keyword = standalone::from_utf8(choice.word);
  require_equal("keyword", options::match_choice(standalone::make_array(keyword).get(), choices),
                choice.value);
}

constexpr std::size_t kMostPairs = 6;

}  // namespace
}  // namespace textio::fuzz

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using namespace textio::fuzz;
  Input input(data, size);
  check_round_trips(input);
  std::vector<textio::testing_support::OptionPair> pairs;
  while (!input.is_empty() && pairs.size() < kMostPairs) {
    std::u16string name = name_from(input);
    pairs.push_back({std::move(name), value_from(input)});
  }
  check_pairs(pairs);
  check_front_end(pairs);
  if (!pairs.empty()) check_odd_count(pairs);
  return 0;
}
