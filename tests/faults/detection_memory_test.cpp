// Whole detections that run out of memory: every way in which a selection can end, through the
// selector, and through detect_layout from a text and from a file.
#include <algorithm>
#include <cstddef>
#include <memory>
#include <ostream>
#include <string>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

#include <vltextstream/detection/fixed_stream.hpp>
#include <vltextstream/detection/strategy_selector.hpp>
#include <vltextstream/layout/detect_layout.hpp>
#include <vltextstream/source/memory_text_source.hpp>
#include <vltextstream/source/text_stream.hpp>
#include <vltextstream/standalone/decoding/utf_text.hpp>
#include "faults/failing_memory.hpp"
#include "support/exact_text.hpp"
#include "support/layout_text.hpp"
#include "support/rule_name.hpp"
#include "support/selection.hpp"
#include "support/temp_folder.hpp"

namespace textio {
namespace {

using detection::SelectionEnd;
using detection::SelectionTrace;
using detection::StrategySelector;
using standalone::DetectSettings;
using standalone::Layout;
using testing_support::Attempt;
using testing_support::ByRule;
using testing_support::delimiter_of;
using testing_support::describe;
using testing_support::every_member_of;
using testing_support::ExactText;
using testing_support::expect_to_survive;
using testing_support::expect_to_survive_failing_memory;
using testing_support::FaultKind;
using testing_support::quoted_texts;
using testing_support::TempFolder;

constexpr unsigned long kBudget = 100;

std::u16string times(std::size_t count, const std::u16string& piece) {
  std::u16string text;
  for (std::size_t i = 0; i < count; ++i) text += piece;
  return text;
}

// A quoted field with doubled quotes inside, too long to be stored inside the field object.
const std::u16string kLongQuoted =
    u"\"" + times(MutableField::kInlineUnits / 8 + 1, u"said \"\"x\"\" ") + u"\"";

// --- the table -----------------------------------------------------------------------------------

using Choose = void (*)(parser::options&);

struct DetectionCase {
  const char* rule;
  std::u16string text;
  int mode;
  SelectionEnd end;
  Choose choose = [](parser::options&) {};
};
std::ostream& operator<<(std::ostream& out, const DetectionCase& row) { return out << row.rule; }

const DetectionCase kPickCases[] = {
    {"DelimitedWins",
     u"station,when,value\nnorth,2024-03-01 10:00,1.5\nsouth,2024-03-02 11:00,2.5\n",
     Strategy::kDelimited, SelectionEnd::single_survivor},
    {"OnlyCandidateWins", u"a;b;c\n1;2;3\n4;5;6\n", Strategy::kDelimited,
     SelectionEnd::only_candidate},
    {"SpaceAlignedWins", u"a    b\n1   22\n333  4\n5    66\n", Strategy::kSpaceAligned,
     SelectionEnd::single_survivor},
    {"FixedWidthWins",
     u"Mary Smith  17\nJim Lee     18\nAnn B. Cole 19\nJo Day      20\nTom A. Fox  21\n",
     Strategy::kFixedWidth, SelectionEnd::only_candidate},
    {"LineReaderWithoutCandidate", u"one\ntwo\nthree\n", Strategy::kLineReader,
     SelectionEnd::no_candidate},
    {"LinesThatAreDates", u"2024-03-01\n2024-03-02\n2024-03-03\n", Strategy::kDelimited,
     SelectionEnd::whole_line_dates},
    {"UnresolvedTie", u"a|b#c\n1|2#3\n4|5#6\n", Strategy::kDelimited, SelectionEnd::unresolved_tie},
    {"NoText", u"", Strategy::kLineReader, SelectionEnd::empty_sample},
    {"OnlyComments", u"% one\n% two\n", Strategy::kLineReader, SelectionEnd::empty_sample,
     [](parser::options& record) { record.comment_style = {u"%"}; }},
    {"EmptyLines", u"a,b\n\n1,2\n\n3,4\n\n", Strategy::kDelimited, SelectionEnd::only_candidate},
    {"WideTable", times(30, u"1.5,") + u"x\n" + times(30, u"2.5,") + u"y\n", Strategy::kDelimited,
     SelectionEnd::only_candidate},
    {"LongQuotedFields", kLongQuoted + u";1\n" + kLongQuoted + u";2\n" + kLongQuoted + u";3\n",
     Strategy::kDelimited, SelectionEnd::single_survivor},
    {"Comments", u"% first\na,b\n% second\n1,2\n3,4\n", Strategy::kDelimited,
     SelectionEnd::only_candidate, [](parser::options& record) { record.comment_style = {u"%"}; }},
    {"DetectedHeaderLines", u"Gauge 7\nnorth side\n\na,b,c\n1,2,3\n4,5,6\n7,8,9\n",
     Strategy::kDelimited, SelectionEnd::only_candidate},
    {"GivenHeaderLines", u"Gauge 7\na,b,c\n1,2,3\n4,5,6\n", Strategy::kDelimited,
     SelectionEnd::only_candidate,
     [](parser::options& record) {
       record.header_lines = 2;
       record.detect_header_lines = false;
     }},
    {"GivenNumberOfVariables", u"a;b,c\n1;2,3\n4;5,6\n7;8,9\n", Strategy::kDelimited,
     SelectionEnd::single_survivor,
     [](parser::options& record) {
       record.num_variables = 2;
       record.detect_num_variables = false;
     }},
    {"OwnLineEndings", u"a,b<end>1,2<end>3,4<end>", Strategy::kDelimited,
     SelectionEnd::only_candidate,
     [](parser::options& record) { record.line_endings = {u"<end>"}; }},
};

const DetectionCase kGivenCases[] = {
    {"GivenDelimiters", u"a::b;c\n1::2;3\n", Strategy::kDelimited, SelectionEnd::given,
     [](parser::options& record) {
       record.delimiters = {u"::", u";"};
       record.detect_delimiters = false;
     }},
    {"GivenWidths", u"abc 12\ndef 345\nghi 6789\n", Strategy::kFixedWidth, SelectionEnd::given,
     [](parser::options& record) {
       record.variable_widths = {4, 2};
       record.parser_type = parser::parser_kind::fixedwidth;
     }},
};

std::vector<DetectionCase> all_cases() {
  std::vector<DetectionCase> cases(std::begin(kPickCases), std::end(kPickCases));
  cases.insert(cases.end(), std::begin(kGivenCases), std::end(kGivenCases));
  return cases;
}

// --- a selection ---------------------------------------------------------------------------------

parser::options options_of(const DetectionCase& row) {
  parser::options options;
  row.choose(options);
  return options;
}

std::string describe_winner(Strategy& winner) {
  return describe(static_cast<const Strategy&>(winner)) + '\n' + describe(winner.field_counts()) +
         testing_support::names_of(winner.column_classes()) + '\n' + describe(winner.valuation());
}

class Selection : public Attempt {
 public:
  Selection(const DetectionCase& row, bool traced)
      : text_(row.text), options_(options_of(row)), selector_(options_), traced_(traced) {}

  void call() override {
    winner_ = traced_ ? selector_.pick_strategy(text_.field(), kBudget, trace_)
                      : selector_.pick_strategy(text_.field(), kBudget);
  }

  std::string answer() override {
    return describe_winner(*winner_) + (traced_ ? describe(trace_) : std::string());
  }

  std::string state() const override {
    return quoted_texts(selector_.delimiters()) + std::to_string(selector_.header_lines()) +
           (winner_ ? " with winner" : "");
  }

  const SelectionTrace& trace() const { return trace_; }
  const Strategy& winner() const { return *winner_; }

 private:
  ExactText text_;
  parser::options options_;
  StrategySelector selector_;
  bool traced_;
  std::shared_ptr<Strategy> winner_;
  SelectionTrace trace_;
};

class SelectionMemory : public testing::TestWithParam<DetectionCase> {};

TEST_P(SelectionMemory, RunsOutWithoutATrace) {
  const auto make = [] { return std::make_unique<Selection>(GetParam(), false); };
  expect_to_survive(make, FaultKind::single);
}

TEST_P(SelectionMemory, RunsOutWithATrace) {
  expect_to_survive_failing_memory([] { return std::make_unique<Selection>(GetParam(), true); });
}

TEST_P(SelectionMemory, IsThatOfTheEndInTheTable) {
  Selection selection(GetParam(), true);
  selection.call();
  EXPECT_EQ(selection.winner().mode(), GetParam().mode);
  EXPECT_EQ(selection.trace().end, GetParam().end) << describe(selection.trace());
}

INSTANTIATE_TEST_SUITE_P(Table, SelectionMemory, testing::ValuesIn(kPickCases), ByRule());

// A selector whose assignment fails is unchanged.
class SelectorAssignment : public Attempt {
 public:
  SelectorAssignment() : assigned_(few_), other_(many_) {}

  void call() override { assigned_ = other_; }

  std::string answer() override { return state(); }

  // The options that a selector reads show which of the two it is.
  std::string state() const override {
    const ExactText text(u"a;b,c\n1;2,3\n4;5,6\n");
    SelectionTrace trace;
    assigned_.pick_strategy(text.field(), kBudget, trace);
    return quoted_texts(assigned_.delimiters()) + std::to_string(assigned_.header_lines()) +
           describe(trace);
  }

 private:
  static parser::options with(std::vector<std::u16string> delimiters, std::size_t header_lines) {
    parser::options options;
    options.delimiters = std::move(delimiters);
    options.header_lines = header_lines;
    options.detect_header_lines = false;
    return options;
  }

  parser::options few_ = with({u";"}, 0);
  parser::options many_ = with({u"a long delimiter", u"another long one", u"|"}, 1);
  StrategySelector assigned_;
  StrategySelector other_;
};

TEST(SelectorMemory, RunsOutInAnAssignment) {
  expect_to_survive_failing_memory([] { return std::make_unique<SelectorAssignment>(); });
}

// --- detect_layout -------------------------------------------------------------------------------

DetectSettings settings_of(const DetectionCase& row) {
  DetectSettings settings;
  settings.num_lines = kBudget;
  row.choose(settings.options);
  return settings;
}

class TextDetection : public Attempt {
 public:
  explicit TextDetection(const DetectionCase& row) : text_(row.text), settings_(settings_of(row)) {}

  void call() override { layout_ = standalone::detect_layout(text_.view(), settings_); }
  std::string answer() override { return every_member_of(layout_); }

 private:
  ExactText text_;
  DetectSettings settings_;
  Layout layout_;
};

class FileDetection : public Attempt {
 public:
  FileDetection(std::string path, DetectSettings settings)
      : path_(std::move(path)), settings_(std::move(settings)) {}

  void call() override { layout_ = standalone::detect_layout(path_, settings_); }
  std::string answer() override { return every_member_of(layout_); }

 private:
  std::string path_;
  DetectSettings settings_;
  Layout layout_;
};

class LayoutMemory : public testing::TestWithParam<DetectionCase> {};

// The steps before the layout are covered by the tests above.
TEST_P(LayoutMemory, RunsOutInATextDetection) {
  const auto make = [] { return std::make_unique<TextDetection>(GetParam()); };
  expect_to_survive(make, FaultKind::single);
}

TEST_P(LayoutMemory, IsThatOfTheEndInTheTable) {
  DetectSettings settings = settings_of(GetParam());
  settings.judge = standalone::Judge::cascade;
  const Layout layout = standalone::detect_layout(ExactText(GetParam().text).view(), settings);
  EXPECT_EQ(static_cast<int>(layout.mode), GetParam().mode);
  EXPECT_EQ(layout.selection_end, GetParam().end);
}

INSTANTIATE_TEST_SUITE_P(Table, LayoutMemory, testing::ValuesIn(all_cases()), ByRule());

// The steps after the sample are the same for a text and a file, so a few tables are enough.
const DetectionCase& case_of(const std::string& rule) {
  static const std::vector<DetectionCase> cases = all_cases();
  return *std::find_if(cases.begin(), cases.end(),
                       [&](const DetectionCase& row) { return row.rule == rule; });
}

class FileMemory : public testing::TestWithParam<const char*> {};

TEST_P(FileMemory, RunsOutInADetection) {
  const DetectionCase& row = case_of(GetParam());
  const TempFolder folder;
  const std::string path = folder.file("table", standalone::to_utf8(row.text));
  DetectSettings settings = settings_of(row);
  settings.trace = true;
  expect_to_survive_failing_memory([&] { return std::make_unique<FileDetection>(path, settings); });
}

INSTANTIATE_TEST_SUITE_P(Table, FileMemory,
                         testing::Values("NoText", "OnlyCandidateWins", "GivenWidths"),
                         [](const auto& row) { return std::string(row.param); });

// The message of the error is allocated, too.
class MissingFile : public Attempt {
 public:
  void call() override {
    try {
      standalone::detect_layout(folder_.path_of("no such file"));
    } catch (const standalone::FileError& error) {
      message_ = error.what();
    }
  }
  std::string answer() override {
    return message_ == "cannot open '" + folder_.path_of("no such file") +
                           "': No such file or directory"
               ? "the whole message"
               : message_;
  }

 private:
  TempFolder folder_;
  std::string message_;
};

TEST(MissingFileMemory, RunsOutWhileTheErrorIsMade) {
  expect_to_survive_failing_memory([] { return std::make_unique<MissingFile>(); });
}

// --- the sample ----------------------------------------------------------------------------------

// A text longer than a sample, whose last whole line ends at code unit kSampleUnits - 8.
class LongSample : public Attempt {
 public:
  explicit LongSample(const ExactText& text)
      : source_(text.data(), text.size()), stream_(&source_), begin_(text.data()) {}

  void call() override { sample_ = get_fixed_stream(stream_, {u"<the end of a line>", u"\n"}); }
  std::string answer() override {
    return std::to_string(sample_.data - begin_) + ' ' + std::to_string(sample_.length);
  }
  std::string state() const override { return std::to_string(stream_.window_begin() - begin_); }

 private:
  MemoryTextSource source_;
  TextStream stream_;
  const char16_t* begin_;
  Field sample_;
};

TEST(FixedStreamMemory, RunsOutBeyondTheSample) {
  std::u16string units(kSampleUnits + 10, u'a');
  units[kSampleUnits - 9] = u'\n';
  const ExactText text(units);
  LongSample undisturbed(text);
  undisturbed.call();
  EXPECT_EQ(undisturbed.answer(), "0 " + std::to_string(kSampleUnits - 8));
  expect_to_survive_failing_memory([&] { return std::make_unique<LongSample>(text); });
}

}  // namespace
}  // namespace textio
