// Whole detections that the assessment decides, when memory runs out: each kind of layout, given settings, refusals,
// and the look at the end of a text that goes on after the sample.
#include <cstddef>
#include <memory>
#include <ostream>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include <vltextstream/layout/beyond_sample.hpp>
#include <vltextstream/layout/detect_layout.hpp>
#include <vltextstream/layout/input_text.hpp>
#include "faults/failing_memory.hpp"
#include "support/exact_text.hpp"
#include "support/layout_text.hpp"
#include "support/rule_name.hpp"

namespace textio::standalone {
namespace {

using testing_support::Attempt;
using testing_support::ByRule;
using testing_support::every_member_of;
using testing_support::ExactText;
using testing_support::expect_to_survive;
using testing_support::expect_to_survive_failing_memory;
using testing_support::FaultKind;
using testing_support::quoted_texts;

// What the assessment says besides, and the end of the text.
std::string judgement_of(const Layout& layout) {
  std::string out = every_member_of(layout);
  for (const Rival& each : layout.rivals) out += "\nrival " + each.reason + each.no_table;
  for (const EvidenceItem& each : layout.evidence) out += "\nevidence " + each.sentence;
  out += "\nno table '" + layout.no_table + "' descriptions" + quoted_texts(layout.descriptions);
  if (layout.cascade) out += "\ncascade" + quoted_texts(layout.cascade->delimiters);
  if (layout.tail) out += "\ntail" + quoted_texts(layout.tail->footer);
  return out;
}

// --- detections ----------------------------------------------------------------------------------

struct LayoutCase {
  const char* rule;
  std::u16string text;
  LayoutMode mode;
  std::size_t variables;
  std::vector<NameValue> options = {};
  void (*choose)(DetectSettings&) = [](DetectSettings&) {};
};
std::ostream& operator<<(std::ostream& out, const LayoutCase& row) { return out << row.rule; }

// The last column takes the rest of each line.
std::u16string processes() {
  std::u16string text = u"PID TTY TIME COMMAND\n";
  for (int i = 0; i < 4; ++i) {
    text += u"1 ? 0:01 init\n22 pts/0 1:10 vim my notes\n4711 ? 9:59 cron -f\n";
  }
  return text;
}

NameValue line_option(const char* name, int line) { return {name, make_array(line)}; }

const std::vector<LayoutCase>& layout_cases() {
  static const std::vector<LayoutCase> cases = {
      {"QuotedCells",
       u"\"id\";\"name of the station\";\"when\"\n\"1\";\"a \"\"b\"\"; c\";2024-03-01\n"
       u"\"2\";\"d\ne\";2024-03-02\n\"3\";\"f\";2024-03-03\n",
       LayoutMode::delimited, 3},
      {"AlignedWithTextAtTheEnd", processes(), LayoutMode::space_aligned, 4},
      {"Framed", u"+---+---+\n| a | b |\n+===+===+\n| 1 | 2 |\n| 3 | 4 |\n+---+---+\n",
       LayoutMode::delimited, 2},
      {"FixedWidth",
       u"0123MILLER0099X\n0124LEE   0100Y\n0125OTT   0101Z\n0126KAY   0102X\n0127MILLER0103Y\n"
       u"0128LEE   0104Z\n0129OTT   0105X\n0130KAY   0106Y\n0131MILLER0107Z\n0132LEE   0108X\n",
       LayoutMode::fixed_width, 4},
      {"FooterAndUnits",
       u"day,rain,cost\n1,20 mm,EUR 1.50\n2,30 mm,EUR 2.50\n3,40 mm,EUR 3.50\n4,50 mm,EUR 4.50\n"
       u"Total,,EUR 12.00\n\nAll figures without guarantee.\n",
       LayoutMode::delimited, 3},
      {"TwoRowsOfNames",
       u"Station,Temperature,,Wind,\n,min,max,speed,gust\nAsh,1,5,3,7\nBath,2,6,4,9\n"
       u"Cove,0,4,8,12\nDale,3,9,2,5\nElm,1,7,3,6\n",
       LayoutMode::delimited, 5},
      {"RunningText",
       u"It was late, and the rain went on.\nNobody came to the door that night.\n"
       u"The house, as they said, had been empty for years.\n",
       LayoutMode::line_reader, 1},
      {"NothingButBlanks", u"\n  \n\n", LayoutMode::line_reader, 1},
      {"GivenLines",
       u"a note of today\nx,y,z\nm,s,kg\nthe way,the time,the mass\n1,2,3\n4,5,6\n7,8,9\n",
       LayoutMode::delimited,
       3,
       {line_option("VariableNamesLine", 2), line_option("VariableUnitsLine", 3),
        line_option("VariableDescriptionsLine", 4), line_option("RowNamesField", 1)}},
      {"GivenDelimiterAndMarks",
       u"x;y\n'1.234,5';none\n'2.345,6';7\n3,25;8\n",
       LayoutMode::delimited,
       2,
       {{"Delimiter", make_array(u";")}, {"TreatAsMissing", make_array(u"none")}},
       [](DetectSettings& settings) {
         settings.quote = u'\'';
         settings.decimal = u',';
         settings.grouping = u'.';
       }},
  };
  return cases;
}

DetectSettings settings_of(const LayoutCase& row) {
  DetectSettings settings = settings_with(row.options);
  row.choose(settings);
  return settings;
}

class Detecting : public Attempt {
 public:
  explicit Detecting(const LayoutCase& row) : text_(row.text), settings_(settings_of(row)) {}

  void call() override { layout_ = detect_layout(text_.view(), settings_); }
  std::string answer() override { return judgement_of(layout_); }
  const Layout& layout() const { return layout_; }

 private:
  ExactText text_;
  DetectSettings settings_;
  Layout layout_;
};

class AssessedLayoutMemory : public testing::TestWithParam<LayoutCase> {};

TEST_P(AssessedLayoutMemory, RunsOut) {
  expect_to_survive([] { return std::make_unique<Detecting>(GetParam()); }, FaultKind::single);
}

TEST_P(AssessedLayoutMemory, IsThatOfTheLayoutInTheTable) {
  Detecting detecting(GetParam());
  detecting.call();
  EXPECT_EQ(detecting.layout().mode, GetParam().mode);
  EXPECT_EQ(detecting.layout().num_variables, GetParam().variables);
}

INSTANTIATE_TEST_SUITE_P(Table, AssessedLayoutMemory, testing::ValuesIn(layout_cases()), ByRule());

// --- refusals ------------------------------------------------------------------------------------

// The message of a refusal is allocated, too.
class Refusing : public Attempt {
 public:
  void call() override {
    try {
      detect_layout(u"x,y\n1,2\n", settings_);
    } catch (const GivenMismatch& mismatch) {
      message_ = mismatch.what();
    }
  }
  std::string answer() override { return message_; }

 private:
  DetectSettings settings_ = settings_with({line_option("VariableNamesLine", 9)});
  std::string message_;
};

TEST(AssessedLayoutMemory, RunsOutInARefusal) {
  Refusing undisturbed;
  undisturbed.call();
  EXPECT_EQ(undisturbed.answer(), "VariableNamesLine: Expected a line from 1 to 2, got 9.");
  expect_to_survive_failing_memory([] { return std::make_unique<Refusing>(); });
}

// --- the end of the text -------------------------------------------------------------------------

constexpr std::size_t kRecords = 40'000;  // of eight bytes: more than is loaded for the sample

std::string long_table() {
  std::string bytes = "num,abc\n";
  for (std::size_t i = 0; i < kRecords; ++i) bytes += "1.5,abc\n";
  return bytes + "Total,\n\nAll figures without guarantee.\n";
}

// An input whose first lines have been looked at. The look at its end is the call.
class LookingAtEnd : public Attempt {
 public:
  explicit LookingAtEnd(const std::string& bytes) : input_(FileContent{bytes}, settings_) {
    profile_.reading.form = assessment::Form::delimited;
    profile_.reading.delimiter = u",";
    profile_.columns.resize(2);
    profile_.columns[0].group = assessment::CellGroup::number;
    profile_.columns[1].group = assessment::CellGroup::text;
    for (auto& column : profile_.columns) column.is_typed = column.is_full = true;
    input_.prefix(65'536);
    input_.confirm_encoding(800);
    layout_.has_more_text = true;
    layout_.characters_sampled = 800;
    layout_.lines.push_back({LineRole::data, 1, 100, 100});
  }

  void call() override {
    layout_.tail.reset();
    look_beyond_sample(input_, profile_, settings_, layout_);
  }
  std::string answer() override {
    const std::string footer = layout_.tail ? quoted_texts(layout_.tail->footer) : " none";
    return std::to_string(layout_.lines_estimated.value_or(0)) + footer;
  }

 private:
  DetectSettings settings_;
  InputText input_;
  assessment::TableProfile profile_;
  Layout layout_;
};

TEST(EndOfTextMemory, RunsOut) {
  const std::string bytes = long_table();
  LookingAtEnd undisturbed(bytes);
  undisturbed.call();
  // 320,008 bytes of names and records and 39 of the footer, at eight bytes a line: 40,005.9 lines.
  EXPECT_EQ(undisturbed.answer(), "40006 'Total,' 'All figures without guarantee.'");
  expect_to_survive_failing_memory([&] { return std::make_unique<LookingAtEnd>(bytes); });
}

}  // namespace
}  // namespace textio::standalone
