// The stages of a detection, each by itself, over a full sample of 4,194,304 code units unless
// stated otherwise: from the file to the sample, scans of a stream, a window that moves over a
// file, sampling and cutting for each strategy, valuing, the classes of fields, header lines,
// candidates and filters.
//
// Some stages are internal, so this program is linked from the library's objects.
#include <algorithm>
#include <limits>
#include <memory>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include <vltextstream/detection/candidates.hpp>
#include <vltextstream/detection/fixed_stream.hpp>
#include <vltextstream/detection/strategy_selector.hpp>
#include <vltextstream/scoring/datatype_inspection.hpp>
#include <vltextstream/scoring/datatype_recognizers.hpp>
#include <vltextstream/scoring/header_lines.hpp>
#include <vltextstream/scoring/line_statistics.hpp>
#include <vltextstream/source/file_text_source.hpp>
#include <vltextstream/source/memory_text_source.hpp>
#include <vltextstream/source/text_stream.hpp>
#include <vltextstream/strategy/delimited_strategy.hpp>
#include <vltextstream/strategy/fixed_width_strategy.hpp>
#include <vltextstream/strategy/line_reader_strategy.hpp>
#include <vltextstream/strategy/space_aligned_strategy.hpp>
#include "bench/encoded_texts.hpp"
#include "bench/measure.hpp"
#include "bench/shapes.hpp"
#include "support/temp_file.hpp"

namespace textio::bench {
namespace {

using testing_support::TempFile;

constexpr unsigned long kAllLines = std::numeric_limits<unsigned long>::max();

// Options and a text. The caller of a strategy must keep both alive.
struct Subject {
  parser::options options;
  std::u16string text;

  Field field() const { return {text.data(), text.size()}; }
};

std::shared_ptr<Subject> subject_of(std::string_view shape) {
  auto subject = std::make_shared<Subject>();
  subject->text = find_shape(shape)->make(kSampleUnits);
  return subject;
}

// --- from a file to the sample -----------------------------------------------------------------

// Slightly more than a sample, so that there is something to cut off.
constexpr std::size_t kFileUnits = kSampleUnits + 65'536;

Step open_decode_cut(const EncodedText& text) {
  const std::string bytes = text.make(kFileUnits);
  const auto file = std::make_shared<TempFile>(bytes);
  const std::string encoding = text.encoding;
  return {[file, encoding] {
            FileTextSource source;
            source.init_stream(file->path(), encoding);
            const TextStream stream(&source);
            keep(get_fixed_stream(stream, parser::default_line_endings()));
          },
          bytes.size()};
}

// --- scans of a stream -------------------------------------------------------------------------

// `scan` runs over a text that repeats one code unit, to its end.
template <typename Scan>
void add_scan(const char* name, char16_t unit, Scan scan) {
  add_step(name, [unit, scan] {
    const auto text = std::make_shared<std::u16string>(kSampleUnits, unit);
    const auto source = std::make_shared<MemoryTextSource>(text->data(), text->size());
    const auto stream = std::make_shared<TextStream>(source.get());
    return Step{[text, source, stream, scan] { keep(scan(*stream)); }, bytes_of(*text)};
  });
}

void add_scans() {
  add_scan("scan/find_one", u'a',
           [](const TextStream& stream) { return stream.find_first_pos_of(u'\n', 0); });
  add_scan("scan/find_one_of_three", u'a', [set = std::u16string(u"\n\r,")](const auto& stream) {
    return stream.find_first_pos_of(set, 0);
  });
  add_scan("scan/skip_one", u' ',
           [](const TextStream& stream) { return stream.find_first_pos_not_of(u' ', 0); });
  add_scan("scan/skip_three", u' ', [set = std::u16string(u"\b\t ")](const auto& stream) {
    return stream.find_first_pos_not_of(set, 0);
  });
  add_scan("scan/skip_digits", u'7',
           [](const TextStream& stream) { return stream.find_first_non_digit(0); });
  add_scan("scan/match", u'a', [marker = std::u16string(kSampleUnits, u'a')](const auto& stream) {
    return stream.matches_case_sensitive(marker, 0);
  });
  add_scan("scan/cut_to_budget", u'a', [](const TextStream& stream) {
    return get_fixed_stream(stream, parser::default_line_endings()).length;
  });
}

// --- a window that moves over a file -----------------------------------------------------------

// Moves the window to the end of a file in equal steps, after a look-ahead to `look_ahead`.
Step advance_to_end(std::size_t look_ahead, unsigned long step) {
  const auto file = std::make_shared<TempFile>(std::string(kFileUnits, 'x'));
  return {[file, look_ahead, step] {
            FileTextSource source;
            source.init_stream(file->path(), "ISO-8859-1");
            TextStream stream(&source);
            keep(stream.at(look_ahead));
            while (stream.at(0) != TextStream::kEnd) stream.advance(step);
          },
          kFileUnits};
}

void add_advances() {
  add_step("advance/lines", [] { return advance_to_end(0, 100); });
  add_step("advance/blocks", [] { return advance_to_end(0, TextStream::kBufferUnits); });
  add_step("advance/blocks_after_look_ahead",
           [] { return advance_to_end(2'000'000, TextStream::kBufferUnits); });
}

// --- strategies --------------------------------------------------------------------------------

struct StrategyCase {
  const char* name;
  const char* shape;
  std::shared_ptr<Strategy> (*make)(const parser::options& options);
};

std::shared_ptr<Strategy> commas(const parser::options& options) {
  return std::make_shared<DelimitedStrategy>(options, u',');
}

constexpr StrategyCase kStrategies[] = {
    {"line_reader", "regular",
     [](const parser::options& options) -> std::shared_ptr<Strategy> {
       return std::make_shared<LineReaderStrategy>(options);
     }},
    {"delimited", "regular", commas},
    {"delimited_quoted", "quoted", commas},
    {"space_aligned", "aligned",
     [](const parser::options& options) -> std::shared_ptr<Strategy> {
       return std::make_shared<SpaceAlignedStrategy>(options);
     }},
    {"fixed_width", "fixed",
     [](const parser::options& options) -> std::shared_ptr<Strategy> {
       return std::make_shared<FixedWidthStrategy>(options,
                                                   std::vector<unsigned long>{6, 20, 4, 6});
     }},
};

Step sample_lines(const StrategyCase& row) {
  const auto subject = subject_of(row.shape);
  const std::shared_ptr<Strategy> strategy = row.make(subject->options);
  return {[subject, strategy] { keep(strategy->populate_fields(subject->field(), kAllLines)); },
          bytes_of(subject->text)};
}

Step cut_into_fields(const StrategyCase& row) {
  const auto subject = subject_of(row.shape);
  const std::shared_ptr<Strategy> strategy = row.make(subject->options);
  strategy->populate_fields(subject->field(), kAllLines);
  return {[subject, strategy] { keep(strategy->get_fields_from_lines()); },
          bytes_of(subject->text)};
}

// A strategy is valued once for each sample.
Step sample_and_value(const StrategyCase& row) {
  const auto subject = subject_of(row.shape);
  const auto make = row.make;
  return {[subject, make] {
            const std::shared_ptr<Strategy> strategy = make(subject->options);
            strategy->populate_fields(subject->field(), kAllLines);
            keep(strategy->valuation());
          },
          bytes_of(subject->text)};
}

// --- classes of fields -------------------------------------------------------------------------

const std::u16string kWhitespace = u" \b\t";

struct ClassCase {
  const char* name;
  std::u16string_view field;
};
constexpr ClassCase kClasses[] = {
    {"empty", u"      "},
    {"number", u"  -1234.5678e-12 "},
    {"complex_number", u"1.25-17.5i"},
    {"duration", u"12:34:56.789"},
    {"date", u"2024-03-01"},
    {"date_time", u"2024-03-01 10:00:00"},
    {"text", u"north of the river"},
    {"text_with_digits", u"room 12, 3rd floor"},
    {"quoted_number", u"\"12.5\""},
    {"quoted_text", u"\"north, \"\"the\"\" river\""},
};

// One field, a thousand times.
Step classify(const ClassCase& row) {
  const std::u16string_view text = row.field;
  return {[text] {
            const Field field(text.data(), text.size());
            for (int i = 0; i < 1000; ++i) keep(classify_field(field, kWhitespace));
          },
          1000 * bytes_of(text)};
}

// The columns of a table as `row` cuts it. With `with_empty` the last of them has only empty
// fields, so the search for its class goes through all lines.
Step classify_all_columns(const StrategyCase& row, bool with_empty) {
  const auto subject = subject_of(row.shape);
  const std::shared_ptr<Strategy> strategy = row.make(subject->options);
  strategy->populate_fields(subject->field(), kAllLines);
  const auto cut = std::make_shared<FieldArray>(strategy->get_fields_from_lines());
  InspectionScope scope;
  scope.modal_field_count = static_cast<std::int32_t>(cut->counts.front());
  scope.num_variables = cut->counts.front();
  scope.whitespace = kWhitespace;
  scope.text = subject->field();
  if (with_empty) {
    for (const std::size_t end : cut->counts) cut->fields[end - 1] = empty_field();
  }
  return {[subject, cut, scope] { keep(classify_columns(*cut, scope)); }, bytes_of(subject->text)};
}

Step unquote_field() {
  const auto text = std::make_shared<std::u16string>(doubled_quotes(kSampleUnits / 2 - 1));
  return {[text] {
            MutableField field(Field(text->data(), text->size()));
            unquote(field, kWhitespace);
            keep(field.length);
          },
          bytes_of(*text)};
}

// --- header lines, statistics ------------------------------------------------------------------

constexpr std::size_t kLines = 100'000;

// A header of twenty lines, then an occasional irregular line.
std::vector<std::size_t> field_counts() {
  std::vector<std::size_t> counts(kLines, 20);
  for (std::size_t i = 0; i < 20; ++i) counts[i] = 1 + i % 3;
  for (std::size_t i = 20; i < kLines; i += 1000) counts[i] = 18;
  return counts;
}

Step find_header_lines() {
  const auto diffs = std::make_shared<std::vector<std::size_t>>(get_abs_diffs(field_counts(), 20));
  return {[diffs] { keep(detection::get_header_lines(*diffs, 0, true)); },
          diffs->size() * sizeof(std::size_t)};
}

Step find_modal_count() {
  const auto counts = std::make_shared<std::vector<std::size_t>>(field_counts());
  return {[counts] { keep(get_modified_median(*counts, 0)); },
          counts->size() * sizeof(std::size_t)};
}

Step find_deviations() {
  const auto counts = std::make_shared<std::vector<std::size_t>>(field_counts());
  return {[counts] { keep(get_abs_diffs(*counts, 20)); }, counts->size() * sizeof(std::size_t)};
}

// --- candidates and filters --------------------------------------------------------------------

Step find_candidates(const char* shape) {
  const auto subject = subject_of(shape);
  LineReaderStrategy reader(subject->options);
  const auto lines =
      std::make_shared<std::vector<Field>>(reader.populate_fields(subject->field(), kAllLines));
  return {[subject, lines] { keep(detection::find_candidate_chars(*lines)); },
          bytes_of(subject->text)};
}

Step find_widths() {
  const auto subject = subject_of("fixed");
  LineReaderStrategy reader(subject->options);
  const auto lines =
      std::make_shared<std::vector<Field>>(reader.populate_fields(subject->field(), kAllLines));
  const std::size_t width = lines->front().length;
  return {
      [subject, lines, width] { keep(detection::find_column_widths(*lines, width, 1.0, width)); },
      bytes_of(subject->text)};
}

using Selector = detection::StrategySelector;

struct FilterCase {
  const char* name;
  Selector::Survivors (Selector::*filter)(const Selector::Survivors&,
                                          const Selector::Valuations&) const;
};
constexpr FilterCase kFilters[] = {
    {"numvariables", &Selector::reduce_by_numvariables},
    {"dates", &Selector::reduce_by_dates},
    {"variation", &Selector::reduce_by_variation},
    {"class_value", &Selector::reduce_by_class_value},
    {"non_empty", &Selector::reduce_by_non_empty},
    {"priors_rank", &Selector::reduce_by_priors_rank},
};

constexpr unsigned long kCandidates = 56;

// As many valuations as there are candidate characters, all equally good.
Selector::Valuations equal_valuations() {
  StrategyValuation score;
  score.total_variation = 0.0;
  score.data_variation = 0.0;
  score.num_lines = 1000;
  score.modal_field_count = 20;
  score.num_variables = 20;
  score.typed_columns = 20;
  score.numeric_columns = 18;
  return Selector::Valuations(kCandidates, score);
}

Selector::Survivors all_survive() {
  Selector::Survivors survivors;
  for (unsigned long i = 0; i < kCandidates; ++i) survivors.push_back(i);
  return survivors;
}

Step filter_by(const FilterCase& row) {
  const auto options = std::make_shared<parser::options>();
  const auto selector = std::make_shared<Selector>(*options);
  const Selector::Valuations valuations = equal_valuations();
  const Selector::Survivors survivors = all_survive();
  const auto filter = row.filter;
  return {[options, selector, filter, valuations, survivors] {
    keep(((*selector).*filter)(survivors, valuations));
  }};
}

Step filter_by_header_lines() {
  const auto options = std::make_shared<parser::options>();
  const auto selector = std::make_shared<Selector>(*options);
  const Selector::Valuations valuations = equal_valuations();
  const Selector::Survivors survivors = all_survive();
  std::vector<std::shared_ptr<Strategy>> candidates;
  for (const unsigned long i : survivors) {
    candidates.push_back(commas(*options));
    candidates.back()->header_lines(i % 7);
  }
  return {[options, selector, valuations, survivors, candidates] {
    keep(selector->reduce_by_header_lines(survivors, valuations, candidates));
  }};
}

// -----------------------------------------------------------------------------------------------

void add_strategies() {
  for (const StrategyCase& row : kStrategies) {
    const std::string name = row.name;
    add_step("sample/" + name, [&row] { return sample_lines(row); });
    add_step("tokenise/" + name, [&row] { return cut_into_fields(row); });
    add_step("sample_tokenise_value/" + name, [&row] { return sample_and_value(row); });
  }
}

void add_classification() {
  for (const ClassCase& row : kClasses) {
    add_step(std::string("classify_1000_fields/") + row.name, [&row] { return classify(row); });
  }
  const StrategyCase& delimited = kStrategies[1];
  add_step("classify_columns/filled", [&] { return classify_all_columns(delimited, false); });
  add_step("classify_columns/last_one_empty",
           [&] { return classify_all_columns(delimited, true); });
  add_step("unquote", unquote_field);
}

void add_all() {
  for (const EncodedText& text : encoded_texts()) {
    add_step(std::string("open_decode_cut/") + text.name, [&] { return open_decode_cut(text); });
  }
  add_scans();
  add_advances();
  add_strategies();
  add_classification();
  add_step("header_lines/find_header_lines", find_header_lines);
  add_step("header_lines/find_modal_count", find_modal_count);
  add_step("header_lines/find_deviations", find_deviations);
  add_step("candidates/find_chars_4", [] { return find_candidates("regular"); });
  add_step("candidates/find_chars_56", [] { return find_candidates("all_candidates"); });
  add_step("candidates/find_widths", find_widths);
  for (const FilterCase& row : kFilters) {
    add_step(std::string("filter/") + row.name, [&row] { return filter_by(row); });
  }
  add_step("filter/header_lines", filter_by_header_lines);
}

}  // namespace
}  // namespace textio::bench

int main(int argc, char** argv) { return textio::bench::run(argc, argv, textio::bench::add_all); }
