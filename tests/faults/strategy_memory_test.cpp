// Strategies that run out of memory while they are made, sample, cut and value a text, and while
// their white space is set.
#include <cstddef>
#include <memory>
#include <ostream>
#include <sstream>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include <vltextstream/scoring/datatype_recognizers.hpp>
#include <vltextstream/strategy/delimited_strategy.hpp>
#include <vltextstream/strategy/fixed_width_strategy.hpp>
#include <vltextstream/strategy/line_reader_strategy.hpp>
#include <vltextstream/strategy/space_aligned_strategy.hpp>
#include "faults/failing_memory.hpp"
#include "support/datatype_names.hpp"
#include "support/exact_text.hpp"
#include "support/printing.hpp"
#include "support/rule_name.hpp"
#include "support/selection.hpp"

namespace textio {
namespace {

using testing_support::AllocationFault;
using testing_support::allocations_can_fail;
using testing_support::Attempt;
using testing_support::ByRule;
using testing_support::describe;
using testing_support::ExactText;
using testing_support::expect_to_survive_failing_memory;
using testing_support::FaultKind;
using testing_support::names_of;
using testing_support::readable;
using testing_support::runs_out_of_memory;
using testing_support::text_of;

// --- the strategies ------------------------------------------------------------------------------

using MakeStrategy = std::shared_ptr<Strategy> (*)(const parser::options&);

// Gives the tests access to the members.
template <typename Kind>
struct Open : Kind {
  using Kind::Kind;
  using Strategy::number_format_;
  using Strategy::quoted_format_;
  using Strategy::text_format_;
};

struct StrategyCase {
  const char* rule;
  MakeStrategy make;
  std::u16string text;
  std::u16string other_text;
};
std::ostream& operator<<(std::ostream& out, const StrategyCase& row) { return out << row.rule; }

const StrategyCase kStrategyCases[] = {
    {"Delimited",
     [](const parser::options& options) -> std::shared_ptr<Strategy> {
       return std::make_shared<DelimitedStrategy>(options, u';');
     },
     u"a;b;c\n\n1;2;3\n4;5;6\n7;8;9\n", u"when;what\n2024-03-01;x\n"},
    {"DelimitedByTexts",
     [](const parser::options& options) -> std::shared_ptr<Strategy> {
       return std::make_shared<DelimitedStrategy>(
           options, std::vector<std::u16string>{u"a separator of length", u"::"});
     },
     u"a::b\n1::2\n\n3a separator of length4\n", u"5::6::7\n8::9::0\n"},
    // Partial matches of the markers everywhere, so that an index of the text is made.
    {"DelimitedByManyTexts",
     [](const parser::options& options) -> std::shared_ptr<Strategy> {
       std::vector<std::u16string> delimiters;
       for (char16_t k = 0; k < 64; ++k) {
         delimiters.push_back({u'a', static_cast<char16_t>(u'\u0100' + k)});
       }
       return std::make_shared<DelimitedStrategy>(options, delimiters);
     },
     std::u16string(60, u'a') + u"\u0105b\n\n" + std::u16string(60, u'a') + u"\u0107b\n",
     std::u16string(60, u'a') + u"\u0101ba\u0102c\n" + std::u16string(60, u'a') + u"\n"},
    {"LongQuotedFields",
     [](const parser::options& options) -> std::shared_ptr<Strategy> {
       return std::make_shared<DelimitedStrategy>(options, u',');
     },
     u"x,y\n0,0\n\"a text with \"\"doubled\"\" quotes, as long as can be\",1\n"
     u"\"one with \"\"doubled\"\" quotes, and just as long as that\",2\n",
     u"x,y\n1,2\n"},
    {"SpaceAligned",
     [](const parser::options& options) -> std::shared_ptr<Strategy> {
       return std::make_shared<SpaceAlignedStrategy>(options);
     },
     u"a   b   c\n1   2   3\n44  55  66\n7   8   9\n", u"one two\n3   4\n"},
    // Lines of 5, 7 and 3 characters: the columns shift from line to line.
    {"FixedWidth",
     [](const parser::options& options) -> std::shared_ptr<Strategy> {
       return std::make_shared<FixedWidthStrategy>(options, std::vector<unsigned long>{1, 4, 2});
     },
     u"12345\n1234567\n123\n12345\n1234567\n", u"1\n12\n1234567\n123\n"},
    {"LineReader",
     [](const parser::options& options) -> std::shared_ptr<Strategy> {
       return std::make_shared<LineReaderStrategy>(options);
     },
     u"one\n\ntwo\n", u"2024-03-01\n"},
};

std::string describe_findings(const Strategy& strategy) {
  return describe(strategy) + " counts " + describe(strategy.field_counts()) + "classes " +
         names_of(strategy.column_classes());
}

// A strategy that has sampled the first of its two texts.
class Sampled : public Attempt {
 public:
  explicit Sampled(const StrategyCase& row)
      : text_(row.text), other_text_(row.other_text), strategy_(row.make(options_)) {
    strategy_->populate_fields(text_.field(), 100);
  }

  std::string state() const override { return describe_findings(*strategy_); }

 protected:
  const ExactText& other_text() const { return other_text_; }
  Strategy& strategy() { return *strategy_; }

 private:
  ExactText text_;
  ExactText other_text_;
  parser::options options_;
  std::shared_ptr<Strategy> strategy_;
};

class StrategyMemory : public testing::TestWithParam<StrategyCase> {
 protected:
  template <typename Call>
  static void expect_to_survive() {
    expect_to_survive_failing_memory([] { return std::make_unique<Call>(GetParam()); });
  }
};

// --- making one ----------------------------------------------------------------------------------

class Construction : public Attempt {
 public:
  explicit Construction(const StrategyCase& row) : make_(row.make) {
    options_.whitespace = u"a set of characters that is longer than most";
  }
  void call() override { strategy_ = make_(options_); }
  std::string answer() override { return describe_findings(*strategy_); }

 private:
  MakeStrategy make_;
  parser::options options_;
  std::shared_ptr<Strategy> strategy_;
};

TEST_P(StrategyMemory, RunsOutInTheConstructor) { expect_to_survive<Construction>(); }

// --- sampling ------------------------------------------------------------------------------------

class Sampling : public Sampled {
 public:
  using Sampled::Sampled;
  void call() override { lines_ = strategy().populate_fields(other_text().field(), 100); }
  std::string answer() override {
    std::string lines;
    for (const Field& line : lines_) lines += '[' + readable(text_of(line)) + ']';
    return lines + state() + describe(strategy().valuation()) + state();
  }

 private:
  std::vector<Field> lines_;
};

TEST_P(StrategyMemory, RunsOutWhileSampling) { expect_to_survive<Sampling>(); }

// If a sample could not be replaced, the old one is valued.
class FailedSampling : public Sampled {
 public:
  explicit FailedSampling(const StrategyCase& row) : Sampled(row) {}
  void call() override { strategy().populate_fields(other_text().field(), 100); }
  std::string answer() override { return describe(strategy().valuation()) + state(); }
};

TEST_P(StrategyMemory, ThatRanOutWhileSamplingLeavesTheSampleToBeValued) {
  FailedSampling undisturbed(GetParam());
  const std::string expected = undisturbed.answer();
  // The cursor, the room for the lines, the runs, and the copy. Giving back room is no failure.
  std::size_t failures = 0;
  for (std::size_t nth = 1; nth <= 8; ++nth) {
    FailedSampling sampling(GetParam());
    bool failed = false;
    {
      const AllocationFault fault(nth, FaultKind::single);
      failed = runs_out_of_memory(sampling);
    }
    if (failed) {
      ++failures;
      EXPECT_EQ(sampling.answer(), expected);
    }
  }
  EXPECT_GE(failures, allocations_can_fail() ? 4U : 0U);
}

// --- cutting -------------------------------------------------------------------------------------

class Cutting : public Sampled {
 public:
  using Sampled::Sampled;
  void call() override { fields_ = strategy().get_fields_from_lines(); }

  // The second cut continues with the column at which the first one ended.
  std::string answer() override {
    const Field* const first = strategy().lines().data();
    const std::string cut = relative(fields_, first->data);
    return cut + relative(strategy().get_fields_from_lines(), first->data);
  }

 private:
  static std::string relative(const FieldArray& fields, const char16_t* begin) {
    std::ostringstream out;
    for (const Field& field : fields.fields)
      out << field.data - begin << '+' << field.length << ' ';
    out << "| " << describe(fields.counts) << '\n';
    return out.str();
  }

  FieldArray fields_;
};

TEST_P(StrategyMemory, RunsOutWhileCuttingTheSample) { expect_to_survive<Cutting>(); }

// One line, after fields that existed before.
class CuttingALine : public Sampled {
 public:
  explicit CuttingALine(const StrategyCase& row) : Sampled(row) {
    fields_.emplace_back(u"", 0);
    fields_.shrink_to_fit();
  }
  void call() override { strategy().cut_line(strategy().lines().back(), fields_); }
  std::string answer() override {
    call();
    std::ostringstream out;
    for (const Field& field : fields_) out << field.length << ' ';
    return out.str();
  }
  std::string state() const override { return std::to_string(fields_.size()); }

 private:
  std::vector<Field> fields_;
};

TEST_P(StrategyMemory, RunsOutWhileCuttingALine) { expect_to_survive<CuttingALine>(); }

// --- valuing -------------------------------------------------------------------------------------

class Valuing : public Sampled {
 public:
  using Sampled::Sampled;
  void call() override { strategy().valuation(); }
  std::string answer() override { return describe(strategy().valuation()) + state(); }
};

TEST_P(StrategyMemory, RunsOutWhileValuing) { expect_to_survive<Valuing>(); }

class Classifying : public Sampled {
 public:
  explicit Classifying(const StrategyCase& row) : Sampled(row) {
    strategy().valuation();
    fields_ = strategy().get_fields_from_lines();
  }
  void call() override { codes_ = strategy().classify_columns(fields_); }
  std::string answer() override { return names_of(codes_) + state(); }

 private:
  FieldArray fields_;
  std::vector<DatatypeCode> codes_;
};

TEST_P(StrategyMemory, RunsOutWhileClassifying) { expect_to_survive<Classifying>(); }

class Inspecting : public Sampled {
 public:
  explicit Inspecting(const StrategyCase& row) : Sampled(row) {
    strategy().valuation();
    fields_ = strategy().get_fields_from_lines();
  }
  void call() override { strategy().inspect_datatypes(fields_); }
  std::string answer() override { return describe(strategy().valuation()) + state(); }

 private:
  FieldArray fields_;
};

TEST_P(StrategyMemory, RunsOutWhileInspecting) { expect_to_survive<Inspecting>(); }

INSTANTIATE_TEST_SUITE_P(Table, StrategyMemory, testing::ValuesIn(kStrategyCases), ByRule());

// --- white space ---------------------------------------------------------------------------------

class WhitespaceReset : public Attempt {
 public:
  void call() override { strategy_.reset_whitespace(kLongSet); }
  std::string answer() override { return state(); }
  std::string state() const override {
    return readable(*strategy_.text_format_.whitespace) + '|' +
           readable(*strategy_.quoted_format_.whitespace) + '|' +
           readable(*strategy_.number_format_.whitespace);
  }

 private:
  static inline const std::u16string kLongSet = u" \t_-=+*and so on, beyond what fits inside";
  parser::options options_;
  Open<LineReaderStrategy> strategy_{options_};
};

TEST(WhitespaceMemory, RunsOutWhileItIsSet) {
  expect_to_survive_failing_memory([] { return std::make_unique<WhitespaceReset>(); });
}

// --- single fields -------------------------------------------------------------------------------

const std::u16string kQuotedBeyondInline =
    u"  \"a text with \"\"doubled\"\" quotes, longer than a field keeps\" ";

class OwnStorage : public Attempt {
 public:
  void call() override { field_.own_storage(); }
  std::string answer() override { return readable(text_of(field_)) + (same() ? "same" : "own"); }
  std::string state() const override {
    return readable(text_of(field_)) + (same() ? "same" : "own") +
           (field_.owns_storage ? "owned" : "view");
  }

 private:
  bool same() const { return field_.data == text_.data(); }
  ExactText text_{kQuotedBeyondInline};
  MutableField field_{text_.field()};
};

TEST(FieldMemory, RunsOutWhileItsTextIsCopied) {
  expect_to_survive_failing_memory([] { return std::make_unique<OwnStorage>(); });
}

struct UnquoteCase {
  const char* rule;
  std::u16string text;
  std::u16string unquoted;
};
std::ostream& operator<<(std::ostream& out, const UnquoteCase& row) { return out << row.rule; }

const UnquoteCase kUnquoteCases[] = {
    {"AfterBlanks", u"  \"a text that is longer than a field keeps inside itself\"",
     u"  a text that is longer than a field keeps inside itself"},
    {"DoubledQuotes", u"\"a text with \"\"doubled\"\" quotes, longer than a field keeps\"",
     u"a text with \"doubled\" quotes, longer than a field keeps"},
    {"TextAfterTheClosingQuote", u"\"a text with more of it\" after the closing quote",
     u"a text with more of it after the closing quote"},
};

class Unquoting : public Attempt {
 public:
  explicit Unquoting(const UnquoteCase& row) : text_(row.text) {}
  void call() override { unquote(field_, u" "); }
  std::string answer() override { return readable(text_of(field_)); }
  std::string state() const override { return readable(text_of(field_)); }

 private:
  ExactText text_;
  MutableField field_{text_.field()};
};

class UnquoteMemory : public testing::TestWithParam<UnquoteCase> {};

TEST_P(UnquoteMemory, RunsOut) {
  expect_to_survive_failing_memory([] { return std::make_unique<Unquoting>(GetParam()); });
}

TEST_P(UnquoteMemory, IsThatOfTheTextInTheTable) {
  Unquoting unquoting(GetParam());
  unquoting.call();
  EXPECT_EQ(unquoting.answer(), readable(GetParam().unquoted));
}

INSTANTIATE_TEST_SUITE_P(Table, UnquoteMemory, testing::ValuesIn(kUnquoteCases), ByRule());

class Classification : public Attempt {
 public:
  void call() override { code_ = classify_field(text_.field(), u" "); }
  std::string answer() override { return testing_support::name_of(code_); }

 private:
  ExactText text_{kQuotedBeyondInline};
  DatatypeCode code_ = DatatypeCode::number;
};

TEST(FieldMemory, RunsOutWhileItIsClassified) {
  expect_to_survive_failing_memory([] { return std::make_unique<Classification>(); });
}

class ValueText : public Attempt {
 public:
  void call() override { value_ = value_text(text_.field(), u" "); }
  std::string answer() override { return readable(value_); }

 private:
  ExactText text_{kQuotedBeyondInline};
  std::u16string value_;
};

TEST(FieldMemory, RunsOutWhileItsValueIsCopied) {
  expect_to_survive_failing_memory([] { return std::make_unique<ValueText>(); });
}

}  // namespace
}  // namespace textio
