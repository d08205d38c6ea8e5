// Services of the host that throw at a chosen call: the sets of delimiters, the date check, the
// error channel. This program defines all three.
#include <cstddef>
#include <limits>
#include <memory>
#include <new>
#include <ostream>
#include <stdexcept>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include <vltextstream/vltextstream.hpp>

#include "support/option_calls.hpp"
#include "support/rule_name.hpp"
#include "support/selection.hpp"

namespace {

enum class Thrown { nothing, bad_alloc, runtime_error, integer, text };

void throw_it(Thrown thrown) {
  if (thrown == Thrown::bad_alloc) throw std::bad_alloc();
  if (thrown == Thrown::runtime_error) throw std::runtime_error("not now");
  if (thrown == Thrown::integer) throw 7;
  if (thrown == Thrown::text) throw "not now";
}

// A service that throws at one call, counted from 1.
struct Service {
  std::size_t calls = 0;
  std::size_t throwing_call = 0;
  Thrown thrown = Thrown::nothing;

  bool is_turn() { return ++calls == throwing_call; }
  void answer() {
    if (is_turn()) throw_it(thrown);
  }
};
Service delimiter_sets;
Service date_checks;
Service error_channel;

}  // namespace

namespace textio {

std::shared_ptr<const DelimiterSet> get_or_create_delim(
    const std::vector<std::u16string>& markers) {
  delimiter_sets.answer();
  auto set = std::make_shared<DelimiterSet>();
  set->strings = markers;
  for (const std::u16string& marker : markers) set->first_chars.push_back(marker.at(0));
  if (!markers.empty()) {
    set->first_chars_begin = set->first_chars.data();
    set->first_chars_end = set->first_chars.data() + set->first_chars.size();
  }
  set->is_single_char = markers.size() == 1 && markers[0].size() == 1;
  if (set->is_single_char) set->single_char = set->strings[0].data();
  return set;
}

// A date is a 'd' and a digit. If there is nothing to throw, the chosen call returns false.
bool datetime::is_datetime(const Field& field) {
  if (date_checks.is_turn()) {
    throw_it(date_checks.thrown);
    return false;
  }
  return field.length == 2 && field.data[0] == u'd';
}

void report_error(const MessageIdentifiedError& /*error*/) { error_channel.answer(); }

namespace {

using detection::SelectionTrace;
using detection::StrategySelector;
using standalone::make_array;
using testing_support::ByRule;
using testing_support::contents_of;
using testing_support::describe;
using testing_support::unusual_record;

struct ThrownCase {
  const char* rule;
  Thrown thrown;
};
std::ostream& operator<<(std::ostream& out, const ThrownCase& row) { return out << row.rule; }

const ThrownCase kThrownCases[] = {
    {"BadAlloc", Thrown::bad_alloc},
    {"RuntimeError", Thrown::runtime_error},
    {"Integer", Thrown::integer},
    {"Text", Thrown::text},
};

template <typename Call>
Thrown thrown_by(Call call) {
  try {
    call();
  } catch (const std::bad_alloc&) {
    return Thrown::bad_alloc;
  } catch (const std::runtime_error&) {
    return Thrown::runtime_error;
  } catch (int) {
    return Thrown::integer;
  } catch (const char*) {
    return Thrown::text;
  }
  return Thrown::nothing;
}

class ThrowingService : public testing::TestWithParam<ThrownCase> {
 protected:
  void SetUp() override { delimiter_sets = date_checks = error_channel = Service(); }
};

// Several candidates, of each kind, and dates in the second column.
const std::u16string kText = u"n  d1;2|1\nn2 d2;3|1\nn  d3;4|1\nn2 d4;5|1\n";

std::string selection() {
  const parser::options options;
  const StrategySelector selector(options);
  SelectionTrace trace;
  const auto winner = selector.pick_strategy(Field(kText.data(), kText.size()), 100, trace);
  return describe(*winner) + describe(winner->valuation()) + describe(trace);
}

// --- sets of delimiters --------------------------------------------------------------------------

TEST_P(ThrowingService, OfDelimiterSetsPassesThroughASelection) {
  const std::string expected = selection();
  const std::size_t calls = delimiter_sets.calls;
  constexpr std::size_t kStrategies = 5;  // lines, blanks, and one for each of three characters
  ASSERT_GE(calls, kStrategies);
  for (std::size_t nth = 1; nth <= calls; ++nth) {
    delimiter_sets = {0, nth, GetParam().thrown};
    EXPECT_EQ(thrown_by([] { selection(); }), GetParam().thrown) << nth;
    EXPECT_EQ(selection(), expected) << nth;
  }
}

TEST_P(ThrowingService, OfDelimiterSetsPassesThroughADetection) {
  standalone::detect_layout(kText);
  const std::size_t calls = delimiter_sets.calls;
  for (std::size_t nth = 1; nth <= calls; ++nth) {
    delimiter_sets = {0, nth, GetParam().thrown};
    EXPECT_EQ(thrown_by([] { standalone::detect_layout(kText); }), GetParam().thrown) << nth;
  }
}

TEST_P(ThrowingService, OfDelimiterSetsLeavesTheStreamOfASample) {
  std::u16string text(kSampleUnits + 1, u'x');
  text[100] = u'\n';
  MemoryTextSource source(text.data(), text.size());
  const TextStream stream(&source);
  delimiter_sets = {0, 1, GetParam().thrown};
  EXPECT_EQ(thrown_by([&] { get_fixed_stream(stream, {u"\n"}); }), GetParam().thrown);
  EXPECT_EQ(get_fixed_stream(stream, {u"\n"}).length, 101U);
}

// --- the date check ------------------------------------------------------------------------------

// Whatever it throws, at whichever call, counts as "no".
TEST_P(ThrowingService, OfDatesSaysNo) {
  selection();
  const std::size_t calls = date_checks.calls;
  ASSERT_GT(calls, 2U);
  for (std::size_t nth = 1; nth <= calls; ++nth) {
    date_checks = {0, nth, Thrown::nothing};
    const std::string with_a_no = selection();
    date_checks = {0, nth, GetParam().thrown};
    EXPECT_EQ(selection(), with_a_no) << nth;
  }
}

// --- the error channel ---------------------------------------------------------------------------

struct RefusedOption {
  const char16_t* name;
  standalone::Array value;
};

std::vector<RefusedOption> refused_options() {
  return {{u"No such option", make_array(1)},
          {u"NumHeaderLines", make_array(-1)},
          {u"DataLine", make_array(0)},
          {u"IsFile", make_array(1)},
          {u"CommentStyle", standalone::make_cell({u"a", u"b", u"c"})},
          {u"Delimiter", make_array(1)},
          {u"MissingRule", make_array(u"none")},
          {u"Whitespace", make_array(1)},
          {u"EndOfLine", make_array(1)},
          {u"EndOfLine", make_array(u"\\q")}};
}

TEST_P(ThrowingService, OfErrorsPassesAndLeavesTheRecord) {
  for (const RefusedOption& option : refused_options()) {
    error_channel = {0, 1, GetParam().thrown};
    const standalone::Array name = make_array(option.name);
    const hxArray* pair[] = {name.get(), option.value.get()};
    parser::options record = unusual_record();
    EXPECT_EQ(thrown_by([&] { options::set_parser_options(pair, 2, record); }), GetParam().thrown);
    EXPECT_EQ(contents_of(record), contents_of(unusual_record()));
  }
}

TEST_P(ThrowingService, OfErrorsReceivesAnOddNumber) {
  error_channel = {0, 1, GetParam().thrown};
  const standalone::Array name = make_array(u"IsFile");
  const hxArray* args[] = {name.get()};
  parser::options record = unusual_record();
  EXPECT_EQ(thrown_by([&] { options::set_parser_options(args, 1, record); }), GetParam().thrown);
  EXPECT_EQ(contents_of(record), contents_of(unusual_record()));
}

INSTANTIATE_TEST_SUITE_P(Table, ThrowingService, testing::ValuesIn(kThrownCases), ByRule());

}  // namespace
}  // namespace textio
