// The class of a cell decides first, then how it is written. A class that the examples of the column have is allowed,
// whatever its kind.
#include <vltextstream/layout/column_check.hpp>

#include <initializer_list>

#include <vltextstream/assessment/sampled_lines.hpp>
#include <vltextstream/columns/characters.hpp>
#include <vltextstream/columns/date_cell.hpp>
#include <vltextstream/columns/money_format.hpp>

namespace textio::standalone {
namespace {

using columns::CellClass;

using Classes = std::initializer_list<CellClass>;

Classes classes_of(ColumnKind kind) {
  constexpr static Classes kNumbers = {CellClass::number, CellClass::compact_date};
  constexpr static Classes kPercentages = {CellClass::percentage, CellClass::number,
                                           CellClass::compact_date};
  constexpr static Classes kMoney = {CellClass::money, CellClass::number, CellClass::compact_date};
  constexpr static Classes kComplex = {CellClass::complex, CellClass::number,
                                       CellClass::compact_date};
  constexpr static Classes kBooleans = {CellClass::boolean};
  constexpr static Classes kDates = {CellClass::date};
  constexpr static Classes kTimes = {CellClass::time};
  constexpr static Classes kDateTimes = {CellClass::date_time};
  constexpr static Classes kDurations = {CellClass::duration, CellClass::elapsed_clock,
                                         CellClass::long_clock, CellClass::one_duration,
                                         CellClass::time};
  constexpr static Classes kIdentifiers = {CellClass::number, CellClass::compact_date,
                                           CellClass::phone};
  constexpr static Classes kUuids = {CellClass::uuid};
  constexpr static Classes kUrls = {CellClass::url};
  constexpr static Classes kEmails = {CellClass::email};
  constexpr static Classes kIps = {CellClass::ip};
  switch (kind) {
    case ColumnKind::integer:
    case ColumnKind::decimal:
    case ColumnKind::scientific:
    case ColumnKind::epoch_seconds:
    case ColumnKind::epoch_milliseconds:
      return kNumbers;
    case ColumnKind::percentage:
      return kPercentages;
    case ColumnKind::money:
      return kMoney;
    case ColumnKind::complex:
      return kComplex;
    case ColumnKind::boolean:
      return kBooleans;
    case ColumnKind::date:
      return kDates;
    case ColumnKind::time:
      return kTimes;
    case ColumnKind::date_time:
      return kDateTimes;
    case ColumnKind::duration:
      return kDurations;
    case ColumnKind::identifier:
      return kIdentifiers;
    case ColumnKind::uuid:
      return kUuids;
    case ColumnKind::url:
      return kUrls;
    case ColumnKind::email:
      return kEmails;
    case ColumnKind::ip:
      return kIps;
    default:
      return {};
  }
}

bool holds_texts(ColumnKind kind) {
  return kind == ColumnKind::text || kind == ColumnKind::category;
}

bool is_of_dates(ColumnKind kind) {
  return kind == ColumnKind::date || kind == ColumnKind::time || kind == ColumnKind::date_time;
}

// Whole numbers; a fraction would be lost.
bool is_whole(ColumnKind kind) {
  return kind == ColumnKind::integer || kind == ColumnKind::identifier ||
         kind == ColumnKind::epoch_seconds || kind == ColumnKind::epoch_milliseconds;
}

std::uint32_t bit_of(CellClass one) { return std::uint32_t{1} << static_cast<unsigned>(one); }

// The patterns of ambiguous dates have the day first.
columns::OrderHints order_of(const DateFacts& date) {
  const bool is_ambiguous = date.order == DateOrder::ambiguous;
  return {is_ambiguous ? DateOrder::day_first : date.order, true};
}

}  // namespace

ColumnCheck::ColumnCheck(const ColumnFacts& facts, const TableDialect& dialect,
                         const DetectSettings& settings)
    : facts_(facts),
      rules_{settings.missing, settings.options.exp_chars},
      true_word_(columns::folded(facts.true_word)),
      false_word_(columns::folded(facts.false_word)) {
  const std::optional<char16_t> decimal = facts.decimal ? facts.decimal : dialect.decimal;
  const std::optional<char16_t> grouping = facts.grouping ? facts.grouping : dialect.grouping;
  format_.decimal = decimal.value_or(0);
  format_.grouping = grouping != decimal ? grouping.value_or(0) : u'\0';
  for (const CellClass one : classes_of(facts.kind)) classes_ |= bit_of(one);
  for (const std::u16string& example : facts.examples) {
    classes_ |= bit_of(columns::class_of_cell(assessment::trimmed(example), rules_));
  }
  if (!is_of_dates(facts.kind) || facts.date.strptime.empty()) return;
  dates_ = std::make_unique<columns::DateVotes>();
  for (const std::u16string& example : facts.examples) {
    if (const auto cell = columns::read_date(example)) {
      dates_->add(*cell);
    } else {
      dates_->add_without_parts();
    }
  }
  dates_->settle(order_of(facts.date));
}

CellJudgement ColumnCheck::judge(std::u16string_view cell) const {
  if (holds_texts(facts_.kind)) return CellJudgement::fits;
  const std::u16string_view text = assessment::trimmed(cell);
  const CellClass one = columns::class_of_cell(text, rules_);
  if (one == CellClass::empty) return CellJudgement::fits;
  if (one == CellClass::given_missing || one == CellClass::missing) return CellJudgement::missing;
  return fits(text, one) ? CellJudgement::fits : CellJudgement::contradicts;
}

bool ColumnCheck::fits(std::u16string_view text, CellClass one) const {
  if ((classes_ & bit_of(one)) == 0) return false;
  if (facts_.kind == ColumnKind::boolean)
    return columns::is_word(text, true_word_) || columns::is_word(text, false_word_);
  if (one == CellClass::money) return is_number_fitting(columns::parts_of_money(text).amount);
  if (one == CellClass::number || one == CellClass::percentage) return is_number_fitting(text);
  return is_date_fitting(text);
}

bool ColumnCheck::is_number_fitting(std::u16string_view amount) const {
  const columns::NumberShape shape = columns::shape_of_number(amount);
  if (is_of_dates(facts_.kind)) return true;  // "0930"
  const bool has_more = columns::has_fraction(shape, format_) || shape.exponent != 0;
  return columns::fits(shape, format_) && !(is_whole(facts_.kind) && has_more);
}

bool ColumnCheck::is_date_fitting(std::u16string_view text) const {
  if (!dates_) return true;
  const auto cell = columns::read_date(text);
  return cell ? dates_->fits(*cell) : dates_->fits_without_parts();
}

}  // namespace textio::standalone
