// Each cell gets a class. The table kRules is the cascade: the first rule that enough classes agree
// with names a reader, which looks at the cells of these classes once more, in whole, and may still
// refuse some. Then the next rule has its turn; the last is text.
#include <vltextstream/columns/column_description.hpp>

#include <algorithm>
#include <array>
#include <initializer_list>
#include <memory>

#include <vltextstream/assessment/sampled_lines.hpp>
#include <vltextstream/columns/category.hpp>
#include <vltextstream/columns/cell_class.hpp>
#include <vltextstream/columns/column_readers.hpp>
#include <vltextstream/columns/share.hpp>

namespace textio::columns {
namespace {

using View = std::u16string_view;
using assessment::trimmed;

constexpr std::size_t kMostExamples = 5;
constexpr std::size_t kLongestExample = 60;

// --- rules -------------------------------------------------------------------------------------

class Classes {
 public:
  constexpr Classes() = default;
  constexpr Classes(std::initializer_list<CellClass> classes) {
    for (const CellClass each : classes) bits_ |= bit_of(each);
  }

  constexpr bool has(CellClass one) const { return (bits_ & bit_of(one)) != 0; }
  constexpr Classes with(Classes others) const {
    Classes all = *this;
    all.bits_ |= others.bits_;
    return all;
  }

 private:
  static constexpr std::uint32_t bit_of(CellClass one) {
    return std::uint32_t{1} << static_cast<unsigned>(one);
  }

  std::uint32_t bits_ = 0;
};

// How many of the fitting cells must be of the own classes of a rule: one; half of them; or half of
// them, and at least one of the others.
enum class Own { any, half, half_beside_others };

// A kind, the classes that are of it, and classes that fit beside them.
struct Rule {
  ColumnKind kind;
  Classes own;
  Classes others;
  Own least = Own::half;
};

constexpr Classes kNumbers{CellClass::number, CellClass::compact_date};
constexpr Classes kClocks{CellClass::time, CellClass::duration, CellClass::long_clock};
constexpr Classes kDates{CellClass::date, CellClass::compact_date};

// A narrow rule comes before a wide one of the same kind: a few dates among times are odd cells.
// But one clock of 36 hours makes times durations, for no time of day is written so by mistake.
constexpr Rule kRules[] = {
    {ColumnKind::boolean, {CellClass::boolean}, {}},
    {ColumnKind::date, {CellClass::compact_date}, {}},
    {ColumnKind::integer, kNumbers, {}},
    {ColumnKind::percentage, {CellClass::percentage}, {}},
    {ColumnKind::percentage, {CellClass::percentage}, kNumbers},
    {ColumnKind::money, {CellClass::money}, {}},
    {ColumnKind::money, {CellClass::money}, kNumbers},
    {ColumnKind::complex, {CellClass::complex}, {}},
    {ColumnKind::complex, {CellClass::complex}, kNumbers},
    {ColumnKind::duration, {CellClass::elapsed_clock}, kClocks, Own::any},
    {ColumnKind::duration, {CellClass::time}, {CellClass::long_clock}, Own::half_beside_others},
    {ColumnKind::duration, {CellClass::duration}, {}},
    {ColumnKind::duration, {CellClass::duration}, {CellClass::one_duration}, Own::any},
    {ColumnKind::time, {CellClass::time}, {}},
    {ColumnKind::date, {CellClass::date}, {CellClass::compact_date}},
    {ColumnKind::date_time, {CellClass::date_time}, {}},
    {ColumnKind::date_time, {CellClass::date_time}, kDates, Own::any},
    {ColumnKind::uuid, {CellClass::uuid}, {}},
    {ColumnKind::url, {CellClass::url}, {}},
    {ColumnKind::email, {CellClass::email}, {}},
    {ColumnKind::ip, {CellClass::ip}, {}},
    {ColumnKind::identifier, {CellClass::phone}, {}},
    {ColumnKind::identifier, {CellClass::phone}, kNumbers},
};

// --- one column --------------------------------------------------------------------------------

class Examples {
 public:
  explicit Examples(std::vector<std::u16string>& texts) : texts_(texts) {}

  void add(View text) {
    if (texts_.size() == kMostExamples) return;
    text = text.substr(0, kLongestExample);
    if (std::find(texts_.begin(), texts_.end(), text) == texts_.end()) texts_.emplace_back(text);
  }

 private:
  std::vector<std::u16string>& texts_;
};

class ColumnExaminer {
 public:
  ColumnExaminer(std::span<const View> cells, const ColumnHints& hints)
      : cells_(cells), hints_(hints) {}

  ColumnDescription describe() {
    classify();
    if (filled() == 0) {
      describe_nothing();
    } else if (!std::any_of(std::begin(kRules), std::end(kRules),
                            [this](const Rule& rule) { return describe_by(rule); })) {
      describe_text();
    }
    return std::move(column_);
  }

 private:
  void classify() {
    const CellRules rules{hints_.missing, hints_.exponents};
    classes_.reserve(cells_.size());
    for (const View cell : cells_) {
      const View text = trimmed(cell);
      const std::size_t i = classes_.size();
      const CellClass one = i < hints_.kinds.size() ? class_of_cell(text, hints_.kinds[i], rules)
                                                    : class_of_cell(text, rules);
      classes_.push_back(one);
      ++counts_[static_cast<std::size_t>(one)];
      if (one == CellClass::empty) continue;
      column_.least_width =
          column_.most_width == 0 ? text.size() : std::min(column_.least_width, text.size());
      column_.most_width = std::max(column_.most_width, text.size());
    }
    column_.num_cells = cells_.size();
    column_.num_empty = count_of({CellClass::empty});
  }

  std::size_t count_of(Classes classes) const {
    std::size_t count = 0;
    for (std::size_t i = 0; i < kCellClasses; ++i) {
      if (classes.has(static_cast<CellClass>(i))) count += counts_[i];
    }
    return count;
  }

  // Cells of a column of values that have one.
  std::size_t filled() const {
    constexpr Classes kUnfilled{CellClass::empty, CellClass::given_missing, CellClass::missing};
    return cells_.size() - count_of(kUnfilled);
  }

  template <typename Act>
  void for_each_of(Classes classes, Act act) const {
    for (std::size_t i = 0; i < cells_.size(); ++i) {
      if (classes.has(classes_[i])) act(trimmed(cells_[i]), classes_[i], i);
    }
  }

  void describe_nothing() {
    MissingTally tally;
    add_missing_words(tally);
    column_.missing = tally.take();
    column_.num_missing = cells_.size() - column_.num_empty;
  }

  void add_missing_words(MissingTally& tally) const {
    for_each_of({CellClass::given_missing, CellClass::missing},
                [&tally](View text, CellClass, std::size_t) { tally.add(text); });
  }

  // --- values ----------------------------------------------------------------------------------

  bool may_hold(const Rule& rule) const {
    const std::size_t own = count_of(rule.own);
    const std::size_t others = count_of(rule.others);
    const bool has_enough_own = rule.least == Own::any || own >= others;
    const bool has_others = rule.least != Own::half_beside_others || others > 0;
    return own > 0 && has_enough_own && has_others && is_share_enough(own + others, filled());
  }

  // Whether the column is of the kind of the rule; nothing is described if it is not.
  bool describe_by(const Rule& rule) {
    if (!may_hold(rule)) return false;
    const Classes classes = rule.own.with(rule.others);
    const bool is_compact = rule.kind == ColumnKind::date && !rule.own.has(CellClass::date);
    const auto reader = is_compact ? compact_date_reader(hints_) : reader_of(rule.kind, hints_);
    reader->expect(count_of(classes));
    for_each_of(classes, [&](View text, CellClass one, std::size_t) { reader->look(text, one); });
    reader->settle();
    for_each_of(classes, [&](View text, CellClass one, std::size_t) { reader->weigh(text, one); });
    reader->conclude();
    if (!is_accepted(*reader, classes)) return false;
    describe_values(*reader);
    return true;
  }

  bool is_accepted(ColumnReader& reader, Classes classes) {
    std::size_t fitting = 0;
    fits_.assign(cells_.size(), false);
    for_each_of(classes, [&](View text, CellClass one, std::size_t i) {
      fits_[i] = reader.fits(text, one);
      if (fits_[i]) ++fitting;
    });
    return is_share_enough(fitting, filled());
  }

  void describe_values(const ColumnReader& reader) {
    MissingTally tally;
    Examples examples(column_.examples);
    for (std::size_t i = 0; i < cells_.size(); ++i) {
      const CellClass one = classes_[i];
      if (one == CellClass::empty) continue;
      const View text = trimmed(cells_[i]);
      const bool is_word = one == CellClass::given_missing || one == CellClass::missing;
      const bool fits = fits_[i];
      if (is_word || (fits && reader.is_missing(text))) {
        tally.add(text);
        ++column_.num_missing;
      } else if (fits) {
        examples.add(text);
        ++column_.num_fitting;
      } else if (!column_.first_misfit) {
        column_.first_misfit = i;
      }
    }
    column_.missing = tally.take();
    reader.describe(column_);
  }

  // --- text ------------------------------------------------------------------------------------

  // The usual words for missing values may be values here.
  void describe_text() {
    MissingTally tally;
    Examples examples(column_.examples);
    CategoryTally categories;
    for (std::size_t i = 0; i < cells_.size(); ++i) {
      if (classes_[i] == CellClass::empty) continue;
      const View text = trimmed(cells_[i]);
      if (classes_[i] == CellClass::given_missing) {
        tally.add(text);
        ++column_.num_missing;
        continue;
      }
      examples.add(text);
      categories.add(text);
      ++column_.num_fitting;
    }
    column_.missing = tally.take();
    column_.kind = categories.is_category() ? ColumnKind::category : ColumnKind::text;
  }

  std::span<const View> cells_;
  const ColumnHints& hints_;
  std::vector<CellClass> classes_;
  std::vector<bool> fits_;  // whether the cells are as the reader expects
  std::array<std::size_t, kCellClasses> counts_{};
  ColumnDescription column_;
};

}  // namespace

ColumnDescription describe_column(std::span<const View> cells, const ColumnHints& hints) {
  return ColumnExaminer(cells, hints).describe();
}

}  // namespace textio::columns
