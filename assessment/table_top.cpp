#include <vltextstream/assessment/table_top.hpp>

#include <algorithm>
#include <array>

#include <vltextstream/assessment/cell_kind.hpp>
#include <vltextstream/assessment/sampled_lines.hpp>
#include <vltextstream/assessment/unit_symbols.hpp>

namespace textio::assessment {
namespace {

constexpr std::size_t kRecordsCompared = 100;
constexpr std::size_t kFewestRecords = 5;    // fewer do not show the types of columns
constexpr std::size_t kMostRowsOfNames = 4;  // with units, formats and descriptions
constexpr std::size_t kMostRowsOfGroups = 2;
constexpr std::size_t kNotFound = static_cast<std::size_t>(-1);

// What a column holds, as far as it tells data from names.
enum class ColumnType { other, number, moment, address };

ColumnType type_of(CellKind kind) {
  if (is_number(kind)) return ColumnType::number;
  switch (kind) {
    case CellKind::time:
    case CellKind::date:
    case CellKind::date_time:
    case CellKind::duration:
      return ColumnType::moment;
    case CellKind::url:
    case CellKind::path:
    case CellKind::ip:
    case CellKind::email:
    case CellKind::uuid:
    case CellKind::boolean:
      return ColumnType::address;
    default:
      return ColumnType::other;
  }
}

bool says_nothing(CellKind kind) { return kind == CellKind::empty || kind == CellKind::missing; }

class TopFinder {
 public:
  TopFinder(const Records& records, const std::vector<std::size_t>& data, const CellKinds& kinds)
      : records_(records),
        data_(data),
        kinds_(kinds),
        columns_(kinds.columns()),
        types_(columns_, ColumnType::other) {}

  TableTop take() {
    if (kinds_.size() < kFewestRecords) return {};
    find_types();
    const std::size_t first = first_of_data();
    if (first == kNotFound) return {first_filled()};
    const std::size_t names = names_above(first);
    if (const std::size_t groups = group_rows_above(names); groups > 0)
      return {names - groups, groups + 1};
    if (names + 1 < first && are_adjacent(names) && completes(names, names + 1)) return {names, 2};
    return {is_preamble(names, first) ? names : 0};
  }

 private:
  CellKind kind_at(std::size_t index, std::size_t column) const { return kinds_.at(index, column); }

  // Whether no other record is between this record of the table and the next.
  bool are_adjacent(std::size_t index) const { return data_[index + 1] == data_[index] + 1; }

  // From the lower half of the records.
  void find_types() {
    const std::size_t begin = kinds_.size() - std::min(kinds_.size() / 2, kRecordsCompared);
    for (std::size_t c = 0; c < columns_; ++c) {
      std::array<std::size_t, 4> counts = {};
      std::size_t filled = 0;
      for (std::size_t i = begin; i < kinds_.size(); ++i) {
        const CellKind kind = kind_at(i, c);
        if (says_nothing(kind)) continue;
        ++filled;
        ++counts[static_cast<std::size_t>(type_of(kind))];
      }
      const auto most = std::max_element(counts.begin(), counts.end());
      if (filled > 0 && 5 * *most >= 4 * filled) {
        types_[c] = static_cast<ColumnType>(most - counts.begin());
      }
    }
  }

  // Whether at least two thirds of the typed columns have a cell of their type, or none, and one has.
  bool is_data(std::size_t index) const {
    std::size_t typed = 0;
    std::size_t agree = 0;
    std::size_t silent = 0;
    for (std::size_t c = 0; c < columns_; ++c) {
      if (types_[c] == ColumnType::other) continue;
      ++typed;
      const CellKind kind = kind_at(index, c);
      if (says_nothing(kind)) {
        ++silent;
      } else if (type_of(kind) == types_[c]) {
        ++agree;
      }
    }
    return agree > 0 && 3 * (agree + silent) >= 2 * typed;
  }

  // Whether no typed column has anything, as in a record that continues a text of the one before.
  bool is_silent(std::size_t index) const {
    for (std::size_t c = 0; c < columns_; ++c) {
      if (types_[c] != ColumnType::other && !says_nothing(kind_at(index, c))) return false;
    }
    return true;
  }

  // From this record on most are data; silent ones count for neither side. None if no column is typed.
  std::size_t first_of_data() const {
    if (std::all_of(types_.begin(), types_.end(),
                    [](ColumnType type) { return type == ColumnType::other; })) {
      return kNotFound;
    }
    const std::size_t end = std::min(kinds_.size(), kRecordsCompared);
    std::size_t first = kNotFound;
    double sum = 0;
    double most = 0;
    for (std::size_t i = end; i-- > 0;) {
      const bool fits = is_data(i);
      if (fits) {
        sum += 1;
      } else if (!is_silent(i)) {
        sum += reads_like_names(i) ? kNamesWithin : kOddWithin;
      }
      if (fits && sum >= most) {
        most = sum;
        first = i;
      }
    }
    return first;
  }

  // The weight of a record among the data that does not fit: one that reads like names is probably above
  // the data, with a few records above it that only look like data, as years over groups of columns do.
  static constexpr double kOddWithin = -0.5;
  static constexpr double kNamesWithin = -3;

  // A text in every typed column, and a text or nothing in the others.
  bool reads_like_names(std::size_t index) const {
    for (std::size_t c = 0; c < columns_; ++c) {
      const CellKind kind = kind_at(index, c);
      const bool is_gap = kind == CellKind::empty && types_[c] == ColumnType::other;
      const bool is_name =
          kind == CellKind::word || kind == CellKind::code || kind == CellKind::sentence;
      if (!is_name && !is_gap) return false;
    }
    return true;
  }

  std::size_t filled(std::size_t index) const {
    std::size_t count = 0;
    for (std::size_t c = 0; c < columns_; ++c) count += kind_at(index, c) != CellKind::empty;
    return count;
  }

  // A year above a column of other numbers.
  bool is_odd_year(std::size_t index, std::size_t column) const {
    return is_year(text_at(index, column)) && !is_year(text_at(kinds_.size() - 1, column)) &&
           !is_year(text_at(kinds_.size() / 2, column));
  }

  std::u16string_view text_at(std::size_t index, std::size_t column) const {
    return trimmed(records_.view(records_.cells(data_[index])[column]));
  }

  // Some cells are filled, and none in a typed column has a value of its type.
  bool may_be_above_data(std::size_t index) const {
    for (std::size_t c = 0; c < columns_; ++c) {
      if (types_[c] != ColumnType::other && type_of(kind_at(index, c)) == types_[c] &&
          !is_odd_year(index, c)) {
        return false;
      }
    }
    return filled(index) > 0;
  }

  bool may_be_names(std::size_t index) const {
    return 2 * filled(index) >= columns_ && may_be_above_data(index);
  }

  bool has_repeats(std::size_t index) const {
    std::vector<std::u16string_view> texts;
    for (const Cell& cell : records_.cells(data_[index])) {
      const std::u16string_view text = trimmed(records_.view(cell));
      if (!text.empty()) texts.push_back(text);
    }
    std::sort(texts.begin(), texts.end());
    return std::adjacent_find(texts.begin(), texts.end()) != texts.end();
  }

  // How much a record looks like names: more than like units, more in words than in sentences.
  std::size_t likeness(std::size_t index) const {
    if (may_be_units(index)) return 0;
    std::size_t words = 0;
    for (std::size_t c = 0; c < columns_; ++c) {
      words += kind_at(index, c) == CellKind::word || kind_at(index, c) == CellKind::code;
    }
    return filled(index) + words;
  }

  // Every filled cell is a unit or says that there is none, and one is a unit.
  bool may_be_units(std::size_t index) const {
    bool has_unit = false;
    for (const Cell& cell : records_.cells(data_[index])) {
      const std::u16string_view text = trimmed(records_.view(cell));
      const bool is_one = is_unit(text) || is_time_pattern(text);
      if (!is_one && !is_no_unit(text)) return false;
      has_unit = has_unit || is_one;
    }
    return has_unit;
  }

  // One of two cells is a unit, and the other a single short word that may be one that nobody has heard of. The
  // cells above are longer words, in the first record of the text: a key and its value seldom begin it.
  bool are_unusual_units(std::size_t index) const {
    if (columns_ != 2 || index != 1 || !are_adjacent(0)) return false;
    constexpr std::size_t kLongestUnit = 12;
    std::size_t units = 0;
    for (std::size_t c = 0; c < 2; ++c) {
      const std::u16string_view text = trimmed(records_.view(records_.cells(data_[1])[c]));
      const std::u16string_view above = trimmed(records_.view(records_.cells(data_[0])[c]));
      if (is_unit(above) || kind_at(0, c) != CellKind::word || above.size() <= text.size())
        return false;
      if (is_unit(text)) {
        ++units;
      } else if (!is_text(kind_at(1, c)) || text.size() > kLongestUnit ||
                 text.find(u' ') != text.npos) {
        return false;
      }
    }
    return units == 1;
  }

  // Units, formats or descriptions may be between the names and the data. In a table of two columns
  // keys and values look like names, too, so only units may.
  std::size_t names_above(std::size_t first) const {
    if (first == 0) return 0;
    if (columns_ < 3) {
      const bool has_units = first > 1 && may_be_names(first - 2) &&
                             (may_be_units(first - 1) || are_unusual_units(first - 1));
      if (has_units) return first - 2;
      return may_be_names(first - 1) ? first - 1 : first;
    }
    std::size_t names = first;
    std::size_t most = 0;
    const std::size_t end = first - std::min(first, kMostRowsOfNames);
    for (std::size_t i = first; i-- > end && may_be_above_data(i);) {
      if (!may_be_names(i) || (most > 0 && has_repeats(i))) continue;
      const std::size_t found = likeness(i);
      if (found < most) continue;
      most = found;
      names = i;
    }
    return names;
  }

  // Texts above the names, each for itself and the columns after it: at least two, but not all filled, or
  // repeated for each of these columns. There are fewer groups than `names`, the names of the columns.
  bool is_group_row(std::size_t index, std::size_t names) const {
    if (columns_ < 3 || !may_be_above_data(index) ||
        kind_at(index, columns_ - 1) == CellKind::unknown)
      return false;
    const std::size_t count = filled(index);
    if (count == columns_) return has_repeats(index) && reads_like_names(index + 1);
    return count > 1 && 4 * count >= columns_ && filled(names) > count;
  }

  // Groups, and perhaps groups of these.
  std::size_t group_rows_above(std::size_t names) const {
    std::size_t groups = 0;
    while (groups < kMostRowsOfGroups && groups < names && are_adjacent(names - groups - 1) &&
           is_group_row(names - groups - 1, names)) {
      ++groups;
    }
    return groups;
  }

  // Whether a record has at least two gaps, and the one below it a text for each of them: names of columns
  // without a group are then in the upper one.
  bool completes(std::size_t upper, std::size_t lower) const {
    std::size_t gaps = 0;
    for (std::size_t c = 0; c < columns_; ++c) {
      if (kind_at(upper, c) != CellKind::empty) continue;
      if (!is_text(kind_at(lower, c))) return false;
      ++gaps;
    }
    return gaps > 1 && may_be_above_data(lower) && !may_be_units(lower);
  }

  // Whether the records before `names`, the first of data being `first`, are less like names than it or, if
  // there are no names, hardly filled, or pairs of a key and a value above two columns of values.
  bool is_preamble(std::size_t names, std::size_t first) const {
    for (std::size_t i = 0; i < names; ++i) {
      const bool is_padded = 2 * filled(i) <= filled(names);
      const bool is_less = names < first && (columns_ == 2 || likeness(i) < likeness(names));
      const bool is_pair =
          columns_ == 2 && types_[0] != ColumnType::other && type_of(kind_at(i, 0)) != types_[0];
      if (!is_padded && !is_less && !is_pair) return false;
    }
    return true;
  }

  // The first record with at least half as many filled cells as the usual record.
  std::size_t first_filled() const {
    std::vector<std::size_t> counts;
    for (std::size_t i = kinds_.size() / 2; i < kinds_.size(); ++i) counts.push_back(filled(i));
    std::nth_element(counts.begin(),
                     counts.begin() + static_cast<std::ptrdiff_t>(counts.size() / 2), counts.end());
    const std::size_t usual = counts[counts.size() / 2];
    const std::size_t end = std::min(kinds_.size() / 2, kRecordsCompared);
    for (std::size_t i = 0; i < end; ++i) {
      if (2 * filled(i) >= usual) return i;
    }
    return 0;
  }

  const Records& records_;
  const std::vector<std::size_t>& data_;
  const CellKinds& kinds_;
  const std::size_t columns_;
  std::vector<ColumnType> types_;
};

}  // namespace

TableTop find_top(const Records& records, const std::vector<std::size_t>& data,
                  const CellKinds& kinds) {
  return TopFinder(records, data, kinds).take();
}

}  // namespace textio::assessment
