// The layout that linked programs rely on: data members in the order of their declaration, one
// right after the other, and virtual operations at their places in the table. The order is written
// out a second time here, so that a change has to be made twice.
//
// The places of virtual operations are those of the Itanium C++ ABI on x86-64: an object begins
// with a pointer to its table, a pointer to a virtual member function holds 1 + the byte offset of
// its slot, and a virtual destructor has two slots, the second of which also frees the object.
#include <cstddef>
#include <cstring>
#include <new>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include <vltextstream/detect.hpp>
#include <vltextstream/detection/selection_trace.hpp>
#include <vltextstream/host/delimiter_set.hpp>
#include <vltextstream/host/error_channel.hpp>
#include <vltextstream/options/option_errors.hpp>
#include <vltextstream/options/parser_options.hpp>
#include <vltextstream/scoring/datatype_inspection.hpp>
#include <vltextstream/scoring/strategy_valuation.hpp>
#include <vltextstream/source/text_source.hpp>
#include <vltextstream/strategy/delimited_strategy.hpp>
#include <vltextstream/strategy/dialect.hpp>
#include <vltextstream/strategy/field_array.hpp>
#include <vltextstream/strategy/field_tokenizer.hpp>
#include <vltextstream/strategy/fixed_width_strategy.hpp>
#include <vltextstream/strategy/line_reader_strategy.hpp>
#include <vltextstream/strategy/sampling/sample.hpp>
#include <vltextstream/strategy/space_aligned_strategy.hpp>
#include <vltextstream/strategy/strategy.hpp>

// offsetof for classes with virtual operations or bases depends on the compiler. g++ and clang both
// support it, unless a base is virtual.
#pragma GCC diagnostic ignored "-Winvalid-offsetof"

namespace textio {
namespace {

// --- data members ------------------------------------------------------------------------------

struct Member {
  const char* name;
  std::size_t offset;
  std::size_t size;
  std::size_t alignment;
};

#define MEMBER(type, name) \
  Member { #name, offsetof(type, name), sizeof(type::name), alignof(decltype(type::name)) }

// The first of `members` is at `begin`, each other one at the first place after the one before that
// its alignment allows.
void expect_in_order(std::size_t begin, const std::vector<Member>& members) {
  std::size_t end = begin;
  for (const Member& member : members) {
    const std::size_t place = (end + member.alignment - 1) / member.alignment * member.alignment;
    EXPECT_EQ(member.offset, place) << member.name;
    end = place + member.size;
  }
}

// Where the members of a class with virtual operations begin.
constexpr std::size_t kAfterTable = sizeof(void*);

TEST(MemberOrder, OfTheOptionsRecord) {
  using parser::options;
  expect_in_order(0, {MEMBER(options, delimiters),
                      MEMBER(options, line_endings),
                      MEMBER(options, reserved_strings),
                      MEMBER(options, comment_style),
                      MEMBER(options, whitespace),
                      MEMBER(options, encoding),
                      MEMBER(options, date_locale),
                      MEMBER(options, exp_chars),
                      MEMBER(options, variable_widths),
                      MEMBER(options, header_lines),
                      MEMBER(options, num_variables),
                      MEMBER(options, variable_names_line),
                      MEMBER(options, variable_units_line),
                      MEMBER(options, variable_descriptions_line),
                      MEMBER(options, row_names_field),
                      MEMBER(options, parser_type),
                      MEMBER(options, missing_rule),
                      MEMBER(options, import_error_rule),
                      MEMBER(options, consecutive_delimiters_rule),
                      MEMBER(options, empty_line_rule),
                      MEMBER(options, extra_columns_rule),
                      MEMBER(options, leading_delimiters_rule),
                      MEMBER(options, text_type),
                      MEMBER(options, datetime_type),
                      MEMBER(options, partial_field_rule),
                      MEMBER(options, detect_delimiters),
                      MEMBER(options, detect_header_lines),
                      MEMBER(options, detect_num_variables),
                      MEMBER(options, is_file),
                      MEMBER(options, collect_output)});
}

TEST(MemberOrder, OfTheValuation) {
  using V = StrategyValuation;
  expect_in_order(0, {MEMBER(V, total_variation), MEMBER(V, data_variation), MEMBER(V, num_lines),
                      MEMBER(V, modal_field_count), MEMBER(V, num_variables),
                      MEMBER(V, typed_columns), MEMBER(V, date_columns), MEMBER(V, numeric_columns),
                      MEMBER(V, datetime_columns), MEMBER(V, priors_rank)});
}

TEST(MemberOrder, OfTheDelimiterSet) {
  using Set = DelimiterSet;
  expect_in_order(
      0, {MEMBER(Set, strings), MEMBER(Set, single_char), MEMBER(Set, is_single_char),
          MEMBER(Set, first_chars_begin), MEMBER(Set, first_chars_end), MEMBER(Set, first_chars)});
}

TEST(MemberOrder, OfFields) {
  expect_in_order(kAfterTable, {MEMBER(Field, data), MEMBER(Field, length)});
  expect_in_order(sizeof(Field),
                  {MEMBER(MutableField, owns_storage), MEMBER(MutableField, inline_storage),
                   MEMBER(MutableField, storage)});
  expect_in_order(0, {MEMBER(FieldExtent, field), MEMBER(FieldExtent, next)});
  expect_in_order(0, {MEMBER(FieldArray, fields), MEMBER(FieldArray, counts)});
}

TEST(MemberOrder, OfTheTokenizer) {
  expect_in_order(0, {MEMBER(FieldTokenizer, quote_), MEMBER(FieldTokenizer, delimiters_),
                      MEMBER(FieldTokenizer, line_endings_), MEMBER(FieldTokenizer, stop_chars_),
                      MEMBER(FieldTokenizer, rules_)});
}

TEST(MemberOrder, OfTheFormats) {
  expect_in_order(0, {MEMBER(ValueFormat, whitespace), MEMBER(ValueFormat, quote),
                      MEMBER(ValueFormat, affixes)});
  expect_in_order(sizeof(ValueFormat),
                  {MEMBER(FieldFormat, case_sensitive), MEMBER(FieldFormat, unquoted),
                   MEMBER(FieldFormat, empty_text), MEMBER(FieldFormat, trim)});
  using N = NumberFormat;
  expect_in_order(sizeof(ValueFormat),
                  {MEMBER(N, exp_chars), MEMBER(N, exp_chars_default), MEMBER(N, decimal_separator),
                   MEMBER(N, thousands_separator), MEMBER(N, narrow_text)});
}

TEST(MemberOrder, OfTheInspection) {
  using Scope = InspectionScope;
  expect_in_order(0,
                  {MEMBER(Scope, header_lines), MEMBER(Scope, modal_field_count),
                   MEMBER(Scope, num_variables), MEMBER(Scope, whitespace), MEMBER(Scope, text)});
}

TEST(MemberOrder, OfTheTraces) {
  using detection::CandidateTrace;
  using detection::FilterTrace;
  using detection::SelectionTrace;
  expect_in_order(0, {MEMBER(CandidateTrace, dialect), MEMBER(CandidateTrace, header_lines),
                      MEMBER(CandidateTrace, valuation), MEMBER(CandidateTrace, fate)});
  expect_in_order(0, {MEMBER(FilterTrace, name), MEMBER(FilterTrace, survivors)});
  expect_in_order(0, {MEMBER(SelectionTrace, candidate_chars), MEMBER(SelectionTrace, candidates),
                      MEMBER(SelectionTrace, filters), MEMBER(SelectionTrace, end),
                      MEMBER(SelectionTrace, reached_end)});
  using detection::SelectionOutcome;
  expect_in_order(0, {MEMBER(SelectionOutcome, end), MEMBER(SelectionOutcome, decided_by),
                      MEMBER(SelectionOutcome, reached_end)});
}

TEST(MemberOrder, OfTheSample) {
  using Run = SampleRun;
  expect_in_order(0, {MEMBER(Run, kind), MEMBER(Run, num_lines), MEMBER(Run, first_line),
                      MEMBER(Run, first_text), MEMBER(Run, begin)});
  expect_in_order(0, {MEMBER(Sample, text), MEMBER(Sample, runs), MEMBER(Sample, end),
                      MEMBER(Sample, reached_end)});
}

TEST(MemberOrder, OfTheDialect) {
  expect_in_order(0, {MEMBER(Dialect, mode), MEMBER(Dialect, delimiters), MEMBER(Dialect, widths)});
}

TEST(MemberOrder, OfTheFrontHeader) {
  expect_in_order(
      0, {MEMBER(Known, delimiters), MEMBER(Known, widths), MEMBER(Known, header_lines),
          MEMBER(Known, num_variables), MEMBER(Known, comment_marker), MEMBER(Known, line_endings),
          MEMBER(Known, whitespace), MEMBER(Known, encoding), MEMBER(Known, date_locale),
          MEMBER(Known, lines_to_sample), MEMBER(Known, max_bytes), MEMBER(Known, judge),
          MEMBER(Known, names_line), MEMBER(Known, units_line), MEMBER(Known, quote),
          MEMBER(Known, escape), MEMBER(Known, decimal), MEMBER(Known, grouping),
          MEMBER(Known, missing)});
  expect_in_order(0, {MEMBER(Column, name), MEMBER(Column, unit), MEMBER(Column, type)});
  using D = Detection;
  expect_in_order(0, {MEMBER(D, dialect),
                      MEMBER(D, columns),
                      MEMBER(D, header_lines),
                      MEMBER(D, names_line),
                      MEMBER(D, units_line),
                      MEMBER(D, names_source),
                      MEMBER(D, names_reason),
                      MEMBER(D, encoding),
                      MEMBER(D, encoding_found),
                      MEMBER(D, encoding_confidence),
                      MEMBER(D, ill_formed_parts),
                      MEMBER(D, line_ending),
                      MEMBER(D, lines),
                      MEMBER(D, ragged_lines),
                      MEMBER(D, first_ragged_line),
                      MEMBER(D, lines_sampled),
                      MEMBER(D, characters_sampled),
                      MEMBER(D, has_more_text),
                      MEMBER(D, decided_by),
                      MEMBER(D, confidence),
                      MEMBER(D, no_table),
                      MEMBER(D, quote),
                      MEMBER(D, escape),
                      MEMBER(D, rivals),
                      MEMBER(D, evidence)});
  expect_in_order(0, {MEMBER(Rival, dialect), MEMBER(Rival, quote), MEMBER(Rival, num_columns),
                      MEMBER(Rival, probability), MEMBER(Rival, reason), MEMBER(Rival, no_table)});
}

// What a strategy from outside the library, derived from one of its own, can access.
class OwnStrategy : public LineReaderStrategy {
 public:
  using LineReaderStrategy::LineReaderStrategy;

  static std::vector<Member> members() {
    using S = OwnStrategy;
    return {MEMBER(S, options_),
            MEMBER(S, valuation_),
            MEMBER(S, text_format_),
            MEMBER(S, quoted_format_),
            MEMBER(S, number_format_),
            MEMBER(S, lines_),
            MEMBER(S, header_lines_),
            MEMBER(S, valuation_done_),
            MEMBER(S, space_separated_),
            MEMBER(S, header_lines_auto_),
            MEMBER(S, text_)};
  }
};

TEST(MemberOrder, OfTheStrategy) { expect_in_order(kAfterTable, OwnStrategy::members()); }

// --- virtual operations ------------------------------------------------------------------------

// The slot that a call through `operation` uses; fails when the operation is not virtual.
template <typename Operation>
std::size_t slot_of(Operation operation) {
  std::size_t words[2] = {};
  static_assert(sizeof operation == sizeof words);
  std::memcpy(words, &operation, sizeof words);
  EXPECT_EQ(words[0] % 2, 1U) << "not virtual";
  EXPECT_EQ(words[1], 0U) << "of a base that does not come first";
  return (words[0] - 1) / sizeof(void*);
}

// Counts how often it is destroyed.
template <typename Base>
class Destroyed : public Base {
 public:
  template <typename... Arguments>
  explicit Destroyed(int& count, const Arguments&... arguments)
      : Base(arguments...), count_(count) {}
  Destroyed(const Destroyed&) = delete;
  Destroyed& operator=(const Destroyed&) = delete;
  ~Destroyed() override { ++count_; }

 private:
  int& count_;
};

// Calls an operation without parameters by hand, as compiled code does, without its declaration.
#ifdef __clang__
__attribute__((no_sanitize("undefined")))
#endif
void call_slot(void* object, std::size_t slot) {
  using Operation = void (*)(void*);
  Operation* table = nullptr;
  std::memcpy(&table, object, sizeof table);
  table[slot](object);
}

// The destructor of `Base` uses `slot` and the next one, which also frees the object.
template <typename Base, typename... Arguments>
void expect_destructor_at(std::size_t slot, const Arguments&... arguments) {
  int count = 0;
  alignas(Destroyed<Base>) unsigned char place[sizeof(Destroyed<Base>)];
  call_slot(new (place) Destroyed<Base>(count, arguments...), slot);
  EXPECT_EQ(count, 1);
  call_slot(new Destroyed<Base>(count, arguments...), slot + 1);
  EXPECT_EQ(count, 2);
}

class OwnBufferManager : public BufferManager {
 public:
  std::size_t resize(std::size_t /*n*/, char16_t*& begin, char16_t*& end) override {
    begin = end = nullptr;
    return 0;
  }
  char16_t* begin() override { return nullptr; }
  char16_t* end() override { return nullptr; }
};

TEST(SlotOrder, OfTheBufferManager) {
  EXPECT_EQ(slot_of(&BufferManager::resize), 0U);
  EXPECT_EQ(slot_of(&BufferManager::begin), 1U);
  EXPECT_EQ(slot_of(&BufferManager::end), 2U);
  expect_destructor_at<OwnBufferManager>(3);
}

class OwnTextSource : public TextSource {
 public:
  std::size_t fillBuffer(char16_t* /*begin*/, char16_t* /*end*/) override { return 0; }
  bool isEoS() const override { return true; }
  BufferManager* getBufferManager() override { return nullptr; }
  source_pos getPos() const override { return 0; }
  unsigned long skipFromPos(source_pos /*pos*/, unsigned long /*count*/) override { return 0; }
};

TEST(SlotOrder, OfTheTextSource) {
  EXPECT_EQ(slot_of(&TextSource::fillBuffer), 0U);
  EXPECT_EQ(slot_of(&TextSource::isEoS), 1U);
  EXPECT_EQ(slot_of(&TextSource::getBufferManager), 2U);
  EXPECT_EQ(slot_of(&TextSource::getPos), 3U);
  EXPECT_EQ(slot_of(&TextSource::skipFromPos), 4U);
  expect_destructor_at<OwnTextSource>(5);
}

template <typename Class>
void expect_slots_of_a_strategy() {
  EXPECT_EQ(slot_of(&Class::mode), 2U);
  EXPECT_EQ(slot_of(&Class::get_line_extent), 3U);
  EXPECT_EQ(slot_of(&Class::get_next_field), 4U);
  EXPECT_EQ(slot_of(&Class::reset_fields), 5U);
}

TEST(SlotOrder, OfTheStrategies) {
  expect_slots_of_a_strategy<Strategy>();
  expect_slots_of_a_strategy<DelimitedStrategy>();
  expect_slots_of_a_strategy<SpaceAlignedStrategy>();
  expect_slots_of_a_strategy<FixedWidthStrategy>();
  expect_slots_of_a_strategy<LineReaderStrategy>();
  const parser::options options;
  expect_destructor_at<LineReaderStrategy>(0, options);
}

TEST(SlotOrder, OfFields) {
  const Field field(u"a", 1);
  expect_destructor_at<Field>(0, field);
  expect_destructor_at<MutableField>(0, field);
}

class OwnError : public MessageIdentifiedError {
 public:
  const std::string& identifier() const override { return identifier_; }
  const std::vector<MessageArgument>& arguments() const override { return arguments_; }

 private:
  std::string identifier_;
  std::vector<MessageArgument> arguments_;
};

TEST(SlotOrder, OfTheErrors) {
  EXPECT_EQ(slot_of(&MessageIdentifiedError::identifier), 2U);
  EXPECT_EQ(slot_of(&MessageIdentifiedError::arguments), 3U);
  expect_destructor_at<OwnError>(0);
  // After what() of std::exception.
  EXPECT_EQ(slot_of(&options::UnknownParameter::identifier), 3U);
  EXPECT_EQ(slot_of(&options::UnknownParameter::arguments), 4U);
  EXPECT_EQ(slot_of(&options::UnknownParameter::what), 2U);
}

}  // namespace
}  // namespace textio
