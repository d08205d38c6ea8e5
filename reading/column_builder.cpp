// One class for each type of values, each with a loop over the cells that knows its parser: a virtual call for each
// batch, and none for each cell. Values that are missing are 0 in the arrays, which are enlarged once for each batch;
// the bits of validity are made when the first of them is seen.
#include <vltextstream/reading/column_builder.hpp>

#include <algorithm>
#include <limits>
#include <utility>

#include <vltextstream/assessment/sampled_lines.hpp>
#include <vltextstream/columns/characters.hpp>
#include <vltextstream/reading/date_parser.hpp>
#include <vltextstream/reading/duration_parser.hpp>
#include <vltextstream/reading/missing_cells.hpp>
#include <vltextstream/reading/number_parser.hpp>
#include <vltextstream/reading/utf8_writer.hpp>

namespace textio::reading {
namespace {

using View = std::u16string_view;
using columns::ColumnKind;

// Of a cell that is not empty.
bool has_blank_at_end(View text) {
  const auto may_be_blank = [](char16_t unit) { return unit <= u' ' || unit == 0x00A0; };
  return may_be_blank(text.front()) || may_be_blank(text.back());
}

View without_blanks(View text) {
  if (text.empty() || !has_blank_at_end(text)) return text;
  return assessment::trimmed(text);
}

NumberRules number_rules(const ColumnPlan& plan) {
  return {plan.decimal, plan.grouping, plan.exponents, plan.kind};
}

// --- readers: whether a cell, which is not empty, is such a value -----------------------------------

class IntegerReader {
 public:
  using Value = std::int64_t;
  explicit IntegerReader(const ColumnPlan& plan) : parser_(number_rules(plan)) {}
  bool read(View cell, Value& value) { return parser_.integer(cell, value); }

 private:
  NumberParser parser_;
};

class RealReader {
 public:
  using Value = double;
  explicit RealReader(const ColumnPlan& plan) : parser_(number_rules(plan)) {}
  bool read(View cell, Value& value) { return parser_.real(cell, value); }

 private:
  NumberParser parser_;
};

DateRules date_rules(const ColumnPlan& plan) { return {plan.strptime, plan.order, plan.has_zone}; }

class DateReader {
 public:
  using Value = std::int32_t;
  explicit DateReader(const ColumnPlan& plan) : parser_(date_rules(plan)) {}
  bool read(View cell, Value& value) { return parser_.date(cell, value); }

 private:
  DateParser parser_;
};

class TimeReader {
 public:
  using Value = std::int64_t;
  explicit TimeReader(const ColumnPlan& plan) : parser_(date_rules(plan)) {}
  bool read(View cell, Value& value) { return parser_.time(cell, value); }

 private:
  DateParser parser_;
};

class DateTimeReader {
 public:
  using Value = std::int64_t;
  explicit DateTimeReader(const ColumnPlan& plan) : parser_(date_rules(plan)) {}
  bool read(View cell, Value& value) { return parser_.date_time(cell, value); }
  bool is_utc() const { return parser_.is_utc(); }

 private:
  DateParser parser_;
};

// Seconds or milliseconds since 1970.
class EpochReader {
 public:
  using Value = std::int64_t;
  explicit EpochReader(const ColumnPlan& plan)
      : parser_(number_rules(plan)),
        scale_(plan.kind == ColumnKind::epoch_seconds ? kMicroseconds : kMicroseconds / 1000) {}
  bool read(View cell, Value& value) {
    std::int64_t count = 0;
    return parser_.integer(cell, count) && !__builtin_mul_overflow(count, scale_, &value);
  }
  static bool is_utc() { return true; }

 private:
  NumberParser parser_;
  std::int64_t scale_;
};

// A clock with half a day, "5 pm", is no duration by itself, but fits a column of durations.
class DurationReader {
 public:
  using Value = std::int64_t;
  explicit DurationReader(const ColumnPlan&) : times_({}) {}
  bool read(View cell, Value& value) {
    return read_duration(cell, value) || times_.time(cell, value);
  }

 private:
  DateParser times_;
};

class BooleanReader {
 public:
  explicit BooleanReader(const ColumnPlan& plan)
      : yes_(columns::folded(plan.words.yes)), no_(columns::folded(plan.words.no)) {
    if (yes_.empty()) yes_ = columns::other_boolean_word(no_);
    if (no_.empty()) no_ = columns::other_boolean_word(yes_);
  }

  bool read(View cell, bool& value) const {
    value = columns::is_word(cell, yes_);
    return value || columns::is_word(cell, no_);
  }

 private:
  std::u16string yes_;
  std::u16string no_;
};

}  // namespace

// --- the values of one type ------------------------------------------------------------------------

class ColumnBuilder::Values {
 public:
  explicit Values(ColumnPlan plan) : plan_(std::move(plan)), missing_(plan_.missing) {}
  virtual ~Values() = default;
  Values(const Values&) = delete;
  Values& operator=(const Values&) = delete;

  const ColumnPlan& plan() const { return plan_; }

  void append(std::span<const CellText> cells, std::vector<std::uint32_t>& misfits) {
    end_ = size_ + cells.size();
    if (!validity_.empty()) validity_.resize(bytes_of_bits(end_), kAllSet);
    append_values(cells, misfits);
    size_ = end_;
  }

  void reserve(std::size_t count) { reserve_values(size_ + count); }

  Column take() {
    Column column;
    column.type = plan_.type;
    column.size = size_;
    column.num_missing = num_missing_;
    if (!validity_.empty() && size_ % kBits != 0) {
      validity_.back() &= static_cast<std::uint8_t>((1U << (size_ % kBits)) - 1);
    }
    column.validity = std::exchange(validity_, {});
    take_values(column);
    size_ = 0;
    num_missing_ = 0;
    return column;
  }

 protected:
  static constexpr std::size_t kBits = 8;
  static std::size_t bytes_of_bits(std::size_t bits) { return (bits + kBits - 1) / kBits; }

  virtual void append_values(std::span<const CellText> cells,
                             std::vector<std::uint32_t>& misfits) = 0;
  virtual void take_values(Column& column) = 0;
  virtual void reserve_values(std::size_t count) = 0;  // in all

  std::size_t size() const { return size_; }
  std::size_t end() const { return end_; }  // after the cells that are being appended
  const MissingCells& missing() const { return missing_; }

  // The cell of row size() + `index` has no value.
  void add_missing(std::size_t index) {
    if (validity_.empty()) validity_.assign(bytes_of_bits(end_), kAllSet);
    const std::size_t row = size_ + index;
    validity_[row / kBits] &= static_cast<std::uint8_t>(~(1U << (row % kBits)));
    ++num_missing_;
  }

  // Calls use(text, index) for each cell with a value, without blanks at its ends, and add_missing() for the others.
  // It returns whether the text is of the type.
  template <typename Use>
  void for_each_value(std::span<const CellText> cells, std::vector<std::uint32_t>& misfits,
                      Use use) {
    for (std::size_t i = 0; i < cells.size(); ++i) {
      const View text = cells[i].is_absent ? View() : without_blanks(cells[i].view());
      if (text.empty() || missing_.has(text)) {
        add_missing(i);
      } else if (!use(text, i)) {
        add_missing(i);
        misfits.push_back(static_cast<std::uint32_t>(i));
      }
    }
  }

  // Whether a cell of a column of texts has a value.
  bool is_text(const CellText& cell) const {
    if (cell.is_absent) return false;
    const View text = without_blanks(cell.view());
    if (!text.empty()) return !missing_.has(text);
    return cell.is_quoted || !plan_.is_empty_text_missing;
  }

 private:
  static constexpr std::uint8_t kAllSet = 0xFF;

  ColumnPlan plan_;
  MissingCells missing_;
  std::size_t size_ = 0;
  std::size_t end_ = 0;
  std::size_t num_missing_ = 0;
  std::vector<std::uint8_t> validity_;  // bits beyond the last row are set
};

namespace {

// The array of a column for values of a type.
std::vector<std::int64_t>& array_of(Column& column, std::int64_t) { return column.integers; }
std::vector<double>& array_of(Column& column, double) { return column.reals; }
std::vector<std::int32_t>& array_of(Column& column, std::int32_t) { return column.days; }

}  // namespace

// Numbers, dates and times.
template <typename Reader>
class ColumnBuilder::Scalars : public Values {
 public:
  using Value = typename Reader::Value;
  explicit Scalars(ColumnPlan plan) : Values(std::move(plan)), reader_(this->plan()) {}

 private:
  void append_values(std::span<const CellText> cells,
                     std::vector<std::uint32_t>& misfits) override {
    values_.resize(end());
    Value* const values = values_.data() + size();
    for_each_value(cells, misfits, [this, values](View text, std::size_t i) {
      Value value{};
      if (!reader_.read(text, value)) return false;
      values[i] = value;
      return true;
    });
  }

  void take_values(Column& column) override {
    array_of(column, Value{}) = std::exchange(values_, {});
    if constexpr (requires { reader_.is_utc(); }) column.is_utc = reader_.is_utc();
  }

  void reserve_values(std::size_t count) override { values_.reserve(count); }

  Reader reader_;
  std::vector<Value> values_;
};

class ColumnBuilder::Booleans : public Values {
 public:
  explicit Booleans(ColumnPlan plan) : Values(std::move(plan)), reader_(this->plan()) {}

 private:
  void append_values(std::span<const CellText> cells,
                     std::vector<std::uint32_t>& misfits) override {
    bits_.resize(bytes_of_bits(end()));
    for_each_value(cells, misfits, [this](View text, std::size_t i) {
      bool value = false;
      if (!reader_.read(text, value)) return false;
      const std::size_t row = size() + i;
      bits_[row / kBits] |= static_cast<std::uint8_t>((value ? 1U : 0U) << (row % kBits));
      return true;
    });
  }

  void take_values(Column& column) override { column.booleans = std::exchange(bits_, {}); }
  void reserve_values(std::size_t count) override { bits_.reserve(bytes_of_bits(count)); }

  BooleanReader reader_;
  std::vector<std::uint8_t> bits_;
};

class ColumnBuilder::Decimals : public Values {
 public:
  explicit Decimals(ColumnPlan plan)
      : Values(std::move(plan)), parser_(number_rules(this->plan())) {}

 private:
  void append_values(std::span<const CellText> cells,
                     std::vector<std::uint32_t>& misfits) override {
    // A cell without a value ends where the one before it does.
    offsets_.reserve(end() + 1);
    const auto fill_until = [this](std::size_t row) {
      offsets_.resize(row + 1, static_cast<std::int64_t>(bytes_.size()));
    };
    for_each_value(cells, misfits, [&](View text, std::size_t i) {
      fill_until(size() + i);
      return parser_.decimal(text, bytes_);
    });
    fill_until(end());
  }

  void take_values(Column& column) override {
    column.offsets = std::exchange(offsets_, {0});
    column.bytes = std::exchange(bytes_, {});
  }

  void reserve_values(std::size_t count) override { offsets_.reserve(count + 1); }

  NumberParser parser_;
  std::vector<std::int64_t> offsets_{0};
  std::string bytes_;
};

class ColumnBuilder::Texts : public Values {
 public:
  using Values::Values;

 private:
  void append_values(std::span<const CellText> cells, std::vector<std::uint32_t>&) override {
    std::size_t units = 0;
    for (const CellText& cell : cells) units += cell.length;
    offsets_.resize(end() + 1);
    std::int64_t* const ends = offsets_.data() + size() + 1;
    Utf8Writer writer(bytes_);
    writer.expect(units);
    for (std::size_t i = 0; i < cells.size(); ++i) {
      if (is_text(cells[i])) {
        writer.append(cells[i].view());
      } else {
        add_missing(i);
      }
      ends[i] = static_cast<std::int64_t>(writer.size());
    }
    writer.finish();
  }

  void take_values(Column& column) override {
    column.offsets = std::exchange(offsets_, {0});
    column.bytes = std::exchange(bytes_, {});
  }

  void reserve_values(std::size_t count) override { offsets_.reserve(count + 1); }

  std::vector<std::int64_t> offsets_{0};
  std::string bytes_;
};

// Words are found by a hash of their text in a table that is never more than half full.
class ColumnBuilder::Categories : public Values {
 public:
  explicit Categories(ColumnPlan plan) : Values(std::move(plan)), places_(kLeastPlaces, kFree) {}

 private:
  static constexpr std::int32_t kFree = -1;
  static constexpr std::size_t kLeastPlaces = 64;  // all sizes are powers of two

  void append_values(std::span<const CellText> cells, std::vector<std::uint32_t>&) override {
    codes_.resize(end());
    std::int32_t* const codes = codes_.data() + size();
    for (std::size_t i = 0; i < cells.size(); ++i) {
      if (is_text(cells[i])) {
        codes[i] = code_of(cells[i].view());
      } else {
        add_missing(i);
      }
    }
  }

  void take_values(Column& column) override {
    column.codes = std::exchange(codes_, {});
    column.words.reserve(words_.size());
    for (const std::u16string& word : words_) column.words.push_back(to_utf8_lossy(word));
  }

  void reserve_values(std::size_t count) override { codes_.reserve(count); }

  static std::uint64_t hash_of(View text) {
    constexpr std::uint64_t kFactor = 0x9E3779B97F4A7C15;
    std::uint64_t hash = text.size();
    std::size_t at = 0;
    for (; at + 4 <= text.size(); at += 4) {
      hash = (hash ^ digits::load_four(text.data() + at)) * kFactor;
      hash ^= hash >> 32U;
    }
    for (; at < text.size(); ++at) hash = (hash ^ text[at]) * kFactor;
    return hash ^ hash >> 29U;
  }

  // The place of a text, or the free one for it.
  std::size_t place_of(View text) const {
    std::size_t place = hash_of(text) & (places_.size() - 1);
    while (places_[place] != kFree && words_[static_cast<std::size_t>(places_[place])] != text) {
      place = (place + 1) & (places_.size() - 1);
    }
    return place;
  }

  std::int32_t code_of(View text) {
    const std::size_t place = place_of(text);
    if (places_[place] != kFree) return places_[place];
    const auto code = static_cast<std::int32_t>(words_.size());
    words_.emplace_back(text);
    places_[place] = code;
    if (2 * words_.size() > places_.size()) enlarge();
    return code;
  }

  void enlarge() {
    places_.assign(2 * places_.size(), kFree);
    for (std::size_t i = 0; i < words_.size(); ++i) {
      places_[place_of(words_[i])] = static_cast<std::int32_t>(i);
    }
  }

  std::vector<std::int32_t> codes_;
  std::vector<std::u16string> words_;
  std::vector<std::int32_t> places_;
};

// --- the builder -----------------------------------------------------------------------------------

std::unique_ptr<ColumnBuilder::Values> ColumnBuilder::values_for(ColumnPlan plan) {
  switch (plan.type) {
    case ColumnType::integer:
      return std::make_unique<Scalars<IntegerReader>>(std::move(plan));
    case ColumnType::real:
      return std::make_unique<Scalars<RealReader>>(std::move(plan));
    case ColumnType::decimal:
      return std::make_unique<Decimals>(std::move(plan));
    case ColumnType::boolean:
      return std::make_unique<Booleans>(std::move(plan));
    case ColumnType::date:
      return std::make_unique<Scalars<DateReader>>(std::move(plan));
    case ColumnType::time:
      return std::make_unique<Scalars<TimeReader>>(std::move(plan));
    case ColumnType::date_time: {
      const bool is_epoch =
          plan.kind == ColumnKind::epoch_seconds || plan.kind == ColumnKind::epoch_milliseconds;
      if (is_epoch) return std::make_unique<Scalars<EpochReader>>(std::move(plan));
      return std::make_unique<Scalars<DateTimeReader>>(std::move(plan));
    }
    case ColumnType::duration:
      return std::make_unique<Scalars<DurationReader>>(std::move(plan));
    case ColumnType::category:
      return std::make_unique<Categories>(std::move(plan));
    default:
      return std::make_unique<Texts>(std::move(plan));
  }
}

ColumnBuilder::ColumnBuilder(ColumnPlan plan) : values_(values_for(std::move(plan))) {}
ColumnBuilder::ColumnBuilder(ColumnBuilder&&) noexcept = default;
ColumnBuilder& ColumnBuilder::operator=(ColumnBuilder&&) noexcept = default;
ColumnBuilder::~ColumnBuilder() = default;

const ColumnPlan& ColumnBuilder::plan() const { return values_->plan(); }

void ColumnBuilder::reserve(std::size_t count) { values_->reserve(count); }

void ColumnBuilder::append(std::span<const CellText> cells, std::vector<std::uint32_t>& misfits) {
  values_->append(cells, misfits);
}

Column ColumnBuilder::take() { return values_->take(); }

ColumnType widened(const ColumnPlan& plan, View cell) {
  const View text = without_blanks(cell);
  if (plan.type != ColumnType::integer || text.empty()) return ColumnType::text;
  NumberParser parser(number_rules(plan));
  double value = 0;
  if (!parser.real(text, value)) return ColumnType::text;
  // A double does not keep all digits of an integer that 64 bits do not hold.
  const auto is_of_integer = [&plan](char16_t unit) {
    return columns::is_digit(unit) || columns::is_sign(unit) || columns::is_any_blank(unit) ||
           (plan.grouping != 0 && unit == plan.grouping);
  };
  return std::all_of(text.begin(), text.end(), is_of_integer) ? ColumnType::text : ColumnType::real;
}

}  // namespace textio::reading
