// Options that run out of memory: each setter, each kind of error, and the calls of the host that
// apply several options.
//
// A pair is applied as a whole or not at all, and the pairs after a failed one are not applied.
#include <algorithm>
#include <cstddef>
#include <memory>
#include <ostream>
#include <string>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

#include <vltextstream/layout/detect_layout.hpp>
#include <vltextstream/standalone/decoding/utf_text.hpp>
#include <vltextstream/standalone/services/array.hpp>
#include "faults/failing_memory.hpp"
#include "support/option_calls.hpp"
#include "support/rule_name.hpp"

namespace textio {
namespace {

using standalone::Array;
using standalone::make_array;
using standalone::make_cell;
using testing_support::apply_pairs;
using testing_support::Attempt;
using testing_support::ByRule;
using testing_support::contents_of;
using testing_support::error_of;
using testing_support::expect_to_survive_failing_memory;
using testing_support::OptionPair;
using testing_support::unusual_record;

// --- accepted values -----------------------------------------------------------------------------

struct OptionCase {
  const char* rule;  // the name of the option
  Array (*value)();
};
std::ostream& operator<<(std::ostream& out, const OptionCase& row) { return out << row.rule; }

// Texts that do not fit into a small string.
Array a_text() { return make_array(u"one text that fits into no small string"); }
Array texts() {
  return make_cell({u"the first text\\t of several", u"", u"the second text of several"});
}
Array two_texts() { return make_cell({u"the first marker\\t", u"the second, longer marker"}); }
Array a_number() { return make_array(7); }
Array a_flag() { return make_array(true); }
Array widths() { return make_array({3.0, 4.0, 5.0}); }

const OptionCase kOptionCases[] = {
    {"Delimiter", texts},
    {"LineEnding", [] { return make_array(u"\\r\\n"); }},
    {"EndOfLine", texts},
    {"CommentStyle", two_texts},
    {"Whitespace", a_text},
    {"Encoding", a_text},
    {"DateLocale", a_text},
    {"ExpChars", a_text},
    {"VariableWidths", widths},
    {"NumHeaderLines", a_number},
    {"DataLine", a_number},
    {"NumVariables", a_number},
    {"VariableNamesLine", a_number},
    {"VariableUnitsLine", a_number},
    {"VariableDescriptionsLine", a_number},
    {"RowNamesField", a_number},
    {"CollectOutput", a_flag},
    {"IsFile", a_flag},
    {"MultipleDelimsAsOne", a_flag},
    {"ParserType", [] { return make_array(u"fixedwidth"); }},
    {"MissingRule", [] { return make_array(u"error"); }},
    {"ImportErrorRule", [] { return make_array(u"omitrow"); }},
    {"ConsecutiveDelimitersRule", [] { return make_array(u"error"); }},
    {"EmptyLineRule", [] { return make_array(u"read"); }},
    {"ExtraColumnsRule", [] { return make_array(u"ignore"); }},
    {"LeadingDelimitersRule", [] { return make_array(u"error"); }},
    {"TextType", [] { return make_array(u"char"); }},
    {"DatetimeType", [] { return make_array(u"char"); }},
    {"PartialFieldRule", [] { return make_array(u"omitvar"); }},
    {"TreatAsMissing", texts},
    {"TreatAsEmpty", texts},
    {"ReturnOnError", a_flag},
    {"EmptyValue", a_number},
};

// The option between two others, so that each of the three shows whether it has been applied. The
// other two write to members that no third option shares.
std::vector<OptionPair> pairs_around(const OptionCase& row) {
  const std::u16string name = standalone::from_utf8(row.rule);
  const bool is_reserved = name == u"Encoding";
  return {{is_reserved ? u"DateLocale" : u"Encoding",
           make_array(u"a first text that fits into no small string")},
          {name, row.value()},
          {u"Whitespace", make_array(u"a third text that fits into no small string")}};
}

// The record after the first 0, 1, ... pairs.
std::vector<std::string> stages_of(const std::vector<OptionPair>& pairs) {
  parser::options record = unusual_record();
  std::vector<std::string> stages = {contents_of(record)};
  for (const OptionPair& pair : pairs) {
    apply_pairs(record, {pair});
    stages.push_back(contents_of(record));
  }
  return stages;
}

class Setting : public Attempt {
 public:
  explicit Setting(const OptionCase& row)
      : pairs_(pairs_around(row)), stages_(stages_of(pairs_)), record_(unusual_record()) {
    for (const OptionPair& pair : pairs_) {
      names_.push_back(make_array(std::u16string_view(pair.name)));
      args_.push_back(names_.back().get());
      args_.push_back(pair.value.get());
    }
  }

  void call() override {
    options::set_parser_options(args_.data(), static_cast<int>(args_.size()), record_);
  }
  std::string answer() override { return state(); }
  std::string state() const override { return contents_of(record_); }

  // Some pairs have been applied, none in part, and the last one has not.
  void expect_state_after_failure(const std::string& /*before*/) const override {
    const bool is_stage =
        std::find(stages_.begin(), stages_.end() - 1, state()) != stages_.end() - 1;
    EXPECT_TRUE(is_stage) << state();
  }

  std::size_t applied() const {
    const auto stage = std::find(stages_.begin(), stages_.end(), state());
    return static_cast<std::size_t>(stage - stages_.begin());
  }

 private:
  std::vector<OptionPair> pairs_;
  std::vector<std::string> stages_;
  std::vector<Array> names_;
  std::vector<const hxArray*> args_;
  parser::options record_;
};

class OptionMemory : public testing::TestWithParam<OptionCase> {};

TEST_P(OptionMemory, RunsOutInASetter) {
  expect_to_survive_failing_memory([] { return std::make_unique<Setting>(GetParam()); });
}

// The later the failure, the more pairs have been applied; the first failure comes before all of
// them.
TEST_P(OptionMemory, ThatLastsLongerAppliesMorePairs) {
  std::size_t applied_before = 0;
  for (std::size_t nth = 1;; ++nth) {
    Setting setting(GetParam());
    bool failed = false;
    {
      const testing_support::AllocationFault fault(nth, testing_support::FaultKind::from_then_on);
      failed = runs_out_of_memory(setting);
    }
    if (nth == 1 && failed) {
      EXPECT_EQ(setting.applied(), 0U);
    }
    EXPECT_GE(setting.applied(), applied_before) << "allocation " << nth;
    applied_before = setting.applied();
    if (!failed) break;
  }
}

INSTANTIATE_TEST_SUITE_P(Table, OptionMemory, testing::ValuesIn(kOptionCases), ByRule());

// --- refused values ------------------------------------------------------------------------------

struct ErrorCase {
  const char* rule;
  const char16_t* name;
  Array (*value)();

  // An error without arguments, for an option with a short name, does not.
  bool asks_for_memory = true;
};
std::ostream& operator<<(std::ostream& out, const ErrorCase& row) { return out << row.rule; }

const ErrorCase kErrorCases[] = {
    {"UnknownParameter", u"an option that has never been heard of", a_number},
    {"ExpectedNonNegativeScalarInt", u"NumHeaderLines", [] { return make_array(-1); }},
    {"ExpectedPositiveScalarInt", u"DataLine", [] { return make_array(0); }},
    {"ExpectedScalarLogical", u"IsFile", a_number, false},
    {"CommentStyleSize", u"CommentStyle", texts},
    {"DelimiterType", u"Delimiter", a_number, false},
    {"BadTextFlag", u"PartialFieldRule", a_text},
    {"InvalidStringProperty", u"Whitespace", a_number},
    {"InvalidStringOrCellStringProperty", u"TreatAsMissing", a_number},
    {"InvalidEscapeSequence", u"EndOfLine", [] { return make_array(u"a longer text with \\q"); }},
};

// The result is the whole error or std::bad_alloc. The record is unchanged in both cases.
class Refusal : public Attempt {
 public:
  explicit Refusal(const ErrorCase& row)
      : name_(make_array(row.name)), value_(row.value()), record_(unusual_record()) {}

  void call() override {
    const hxArray* pair[] = {name_.get(), value_.get()};
    try {
      options::set_parser_options(pair, 2, record_);
    } catch (const MessageIdentifiedError& error) {
      identifier_ = error.identifier().c_str();
      num_arguments_ = error.arguments().size();
    }
  }
  std::string answer() override {
    return std::string(identifier_) + std::to_string(num_arguments_) + contents_of(record_);
  }
  std::string state() const override { return contents_of(record_); }

 private:
  Array name_;
  Array value_;
  parser::options record_;
  const char* identifier_ = "none";
  std::size_t num_arguments_ = 0;
};

class OptionErrorMemory : public testing::TestWithParam<ErrorCase> {};

TEST_P(OptionErrorMemory, RunsOutWhileTheErrorIsMade) {
  expect_to_survive_failing_memory([] { return std::make_unique<Refusal>(GetParam()); },
                                   GetParam().asks_for_memory);
}

TEST_P(OptionErrorMemory, IsThatOfTheErrorInTheTable) {
  Refusal refusal(GetParam());
  refusal.call();
  EXPECT_EQ(refusal.answer().find(std::string("VELLUM:textio:textio:") + GetParam().rule), 0U);
}

// The host makes a sentence from the error.
class HostRefusal : public Attempt {
 public:
  explicit HostRefusal(const ErrorCase& row) : record_(unusual_record()) {
    options_.emplace_back("Encoding", make_array(u"a text that fits into no small string"));
    options_.emplace_back(standalone::to_utf8(row.name), row.value());
  }

  void call() override {
    try {
      standalone::apply_options(record_, options_);
    } catch (const standalone::OptionProblem& problem) {
      sentence_ = problem.what();
    }
  }
  std::string answer() override { return sentence_ + contents_of(record_); }
  std::string state() const override {
    parser::options rest = record_;
    rest.encoding.clear();
    return contents_of(rest);
  }

 private:
  std::vector<standalone::NameValue> options_;
  parser::options record_;
  std::string sentence_;
};

TEST_P(OptionErrorMemory, RunsOutWhileTheHostMakesASentenceOfIt) {
  expect_to_survive_failing_memory([] { return std::make_unique<HostRefusal>(GetParam()); });
}

INSTANTIATE_TEST_SUITE_P(Table, OptionErrorMemory, testing::ValuesIn(kErrorCases), ByRule());

// --- settings ------------------------------------------------------------------------------------

class SettingsWithOptions : public Attempt {
 public:
  void call() override {
    settings_ = standalone::settings_with({{"Encoding", a_text()}, {"Delimiter", texts()}});
  }
  std::string answer() override {
    return settings_.encoding.value_or("") + contents_of(settings_.options);
  }

 private:
  standalone::DetectSettings settings_;
};

TEST(SettingsMemory, RunsOut) {
  expect_to_survive_failing_memory([] { return std::make_unique<SettingsWithOptions>(); });
}

// A copy of a record fails as a whole.
class RecordCopy : public Attempt {
 public:
  void call() override { copy_ = std::make_unique<parser::options>(record_); }
  std::string answer() override { return contents_of(*copy_); }

 private:
  parser::options record_ = unusual_record();
  std::unique_ptr<parser::options> copy_;
};

TEST(RecordMemory, RunsOutInACopy) {
  expect_to_survive_failing_memory([] { return std::make_unique<RecordCopy>(); });
}

class RecordConstruction : public Attempt {
 public:
  void call() override { record_ = std::make_unique<parser::options>(); }
  std::string answer() override { return contents_of(*record_); }

 private:
  std::unique_ptr<parser::options> record_;
};

TEST(RecordMemory, RunsOutInTheConstructor) {
  expect_to_survive_failing_memory([] { return std::make_unique<RecordConstruction>(); });
}

}  // namespace
}  // namespace textio
