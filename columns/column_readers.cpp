#include <vltextstream/columns/column_readers.hpp>

#include <algorithm>
#include <optional>
#include <vector>

#include <vltextstream/columns/characters.hpp>
#include <vltextstream/columns/epoch.hpp>
#include <vltextstream/columns/identifiers.hpp>
#include <vltextstream/columns/sentinels.hpp>

namespace textio::columns {
namespace {

using View = std::u16string_view;

// --- kinds without a format --------------------------------------------------------------------

class PlainReader : public ColumnReader {
 public:
  explicit PlainReader(ColumnKind kind) : kind_(kind) {}
  void describe(ColumnDescription& column) const override { column.kind = kind_; }

 private:
  ColumnKind kind_;
};

// --- booleans ----------------------------------------------------------------------------------

class BooleanReader : public ColumnReader {
 public:
  void look(View text, CellClass) override { votes_.add(text); }
  void settle() override {
    if (const auto words = votes_.words()) words_ = *words;
  }
  bool fits(View text, CellClass) override {
    return is_word(text, folded(words_.yes)) || is_word(text, folded(words_.no));
  }
  void describe(ColumnDescription& column) const override {
    column.kind = ColumnKind::boolean;
    column.boolean = words_;
  }

 private:
  BooleanVotes votes_;
  BooleanWords words_;
};

// --- numbers -----------------------------------------------------------------------------------

// Digits that are the hours, minutes and seconds of a time of day: "0930", "235959".
bool is_compact_clock(View text) {
  if (text.size() != 4 && text.size() != 6) return false;
  const auto pair_at = [text](std::size_t at) {
    return 10 * digit_value(text[at]) + digit_value(text[at + 1]);
  };
  const bool is_on_clock = pair_at(0) <= 23 && pair_at(2) <= 59;
  return is_on_clock && (text.size() == 4 || pair_at(4) <= 59);
}

// Plain numbers, and what is written as one.
class NumberReader : public ColumnReader {
 public:
  explicit NumberReader(const ColumnHints& hints) : hints_(hints) {}

  void expect(std::size_t cells) override { shapes_.reserve(cells); }
  void look(View text, CellClass) override {
    shapes_.push_back(shape_of_number(text));
    votes_.add(shapes_.back());
  }
  void settle() override {
    format_ = votes_.format(hints_.marks);
    next_ = 0;
  }

  void weigh(View text, CellClass) override {
    const NumberShape& shape = shapes_[next_++];
    if (!columns::fits(shape, format_)) return;
    has_exponent_ = has_exponent_ || shape.exponent != 0;
    has_fraction_ = has_fraction_ || has_fraction(shape, format_);
    const auto value = value_of(text, shape, format_);
    if (value) sentinels_.add(text, *value);
    if (has_fraction_ || has_exponent_) return;  // neither digits to keep nor seconds
    identifiers_.add(text);
    are_clocks_ = are_clocks_ && is_compact_clock(text);
    if (value) epoch_.add(*value);
  }

  void conclude() override {
    kind_ = kind_of_values();
    next_ = 0;
  }

  bool fits(View, CellClass) override { return columns::fits(shapes_[next_++], format_); }
  bool is_missing(View text) const override {
    return is_plain_number(kind_) && sentinels_.is_sentinel(text);
  }
  void describe(ColumnDescription& column) const override {
    column.kind = kind_;
    if (kind_ == ColumnKind::time) {
      const bool has_seconds = identifiers_.have_width(6);
      column.date.strptime = has_seconds ? "%H%M%S" : "%H%M";
      column.date.icu = has_seconds ? "HHmmss" : "HHmm";
    } else {
      column.number = format_;
    }
  }

 private:
  ColumnKind kind_of_values() const {
    if (has_exponent_) return ColumnKind::scientific;
    if (has_fraction_) return ColumnKind::decimal;
    if (format_.grouping != 0) return ColumnKind::integer;
    if (identifiers_.are_identifiers()) return kind_of_padded();
    return epoch_.kind(hints_.name);
  }

  // Parts of dates and times are padded with zeros too. Only the name of the column tells them from
  // codes; to keep codes as text loses nothing.
  ColumnKind kind_of_padded() const {
    if (!speaks_of_time(hints_.name)) return ColumnKind::identifier;
    const bool is_clock = identifiers_.have_width(4) || identifiers_.have_width(6);
    if (is_clock && are_clocks_) return ColumnKind::time;
    return identifiers_.have_width(2) ? ColumnKind::integer : ColumnKind::identifier;
  }

  const ColumnHints& hints_;
  std::vector<NumberShape> shapes_;  // of the cells in the order in which they are shown
  std::size_t next_ = 0;
  NumberVotes votes_;
  NumberFormat format_;
  IdentifierVotes identifiers_;
  EpochVotes epoch_;
  SentinelSearch sentinels_;
  bool has_exponent_ = false;
  bool has_fraction_ = false;
  bool are_clocks_ = true;
  ColumnKind kind_ = ColumnKind::integer;
};

// Percentages and money, with plain numbers among them.
class AmountReader : public ColumnReader {
 public:
  AmountReader(ColumnKind kind, const ColumnHints& hints) : kind_(kind), marks_(hints.marks) {
    marks_.is_money = kind == ColumnKind::money;
  }

  void look(View text, CellClass cell_class) override {
    votes_.add(shape_of_number(amount_of(text, cell_class)));
    if (cell_class == CellClass::money) money_.add(parts_of_money(text));
  }
  void settle() override { format_ = votes_.format(marks_); }
  bool fits(View text, CellClass cell_class) override {
    return columns::fits(shape_of_number(amount_of(text, cell_class)), format_);
  }
  void describe(ColumnDescription& column) const override {
    column.kind = kind_;
    column.number = format_;
    column.money = money_.format();
  }

 private:
  static View amount_of(View text, CellClass cell_class) {
    return cell_class == CellClass::money ? parts_of_money(text).amount : text;
  }

  ColumnKind kind_;
  MarkHints marks_;
  NumberVotes votes_;
  MoneyVotes money_;
  NumberFormat format_;
};

// --- dates and times ---------------------------------------------------------------------------

class DateReader : public ColumnReader {
 public:
  DateReader(ColumnKind kind, const ColumnHints& hints) : kind_(kind), hints_(hints) {}

  void expect(std::size_t cells) override { first_cells_.reserve(std::min(cells, kMostKept)); }
  void look(View text, CellClass) override {
    const auto cell = read_date(text);
    if (cell) {
      votes_.add(*cell);
    } else {
      votes_.add_without_parts();
    }
    if (first_cells_.size() < kMostKept) first_cells_.push_back(cell);
  }
  void settle() override { votes_.settle(hints_.order); }
  bool fits(View text, CellClass) override {
    const std::size_t i = next_++;
    const auto cell = i < first_cells_.size() ? first_cells_[i] : read_date(text);
    return cell ? votes_.fits(*cell) : votes_.fits_without_parts();
  }
  void describe(ColumnDescription& column) const override {
    column.kind = kind_;
    column.date = votes_.format();
  }

 protected:
  DateVotes votes_;

 private:
  static constexpr std::size_t kMostKept = 256;

  ColumnKind kind_;
  const ColumnHints& hints_;
  std::vector<std::optional<DateCell>> first_cells_;
  std::size_t next_ = 0;
};

// Digits alone, which may include a time.
class CompactDateReader : public DateReader {
 public:
  explicit CompactDateReader(const ColumnHints& hints) : DateReader(ColumnKind::date, hints) {}

  void describe(ColumnDescription& column) const override {
    DateReader::describe(column);
    column.kind = votes_.kind();
  }
};

}  // namespace

std::unique_ptr<ColumnReader> reader_of(ColumnKind kind, const ColumnHints& hints) {
  switch (kind) {
    case ColumnKind::boolean:
      return std::make_unique<BooleanReader>();
    case ColumnKind::integer:
      return std::make_unique<NumberReader>(hints);
    case ColumnKind::percentage:
    case ColumnKind::money:
      return std::make_unique<AmountReader>(kind, hints);
    case ColumnKind::date:
    case ColumnKind::time:
    case ColumnKind::date_time:
      return std::make_unique<DateReader>(kind, hints);
    default:
      return std::make_unique<PlainReader>(kind);
  }
}

std::unique_ptr<ColumnReader> compact_date_reader(const ColumnHints& hints) {
  return std::make_unique<CompactDateReader>(hints);
}

}  // namespace textio::columns
