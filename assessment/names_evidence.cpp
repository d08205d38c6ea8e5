#include <vltextstream/assessment/names_evidence.hpp>

#include <algorithm>
#include <array>
#include <cmath>
#include <vector>

#include <unicode/uchar.h>

#include <vltextstream/assessment/cell_kind.hpp>
#include <vltextstream/assessment/find_unit.hpp>

namespace textio::assessment {
namespace {

constexpr std::size_t kLongestName = 40;

bool is_name_like(std::u16string_view text) {
  if (text.empty() || text.size() > kLongestName || !u_isalpha(text[0])) return false;
  return std::all_of(text.begin(), text.end(), [](char16_t unit) {
    constexpr std::u16string_view kInNames = u" _.()/%#-";
    return u_isalnum(unit) || kInNames.find(unit) != kInNames.npos;
  });
}

bool is_value_of_data(CellKind kind) {
  return is_number(kind) || kind == CellKind::time || kind == CellKind::date ||
         kind == CellKind::date_time || kind == CellKind::ip;
}

bool is_digit(char16_t unit) { return unit >= u'0' && unit <= u'9'; }

std::u16string_view first_word(std::u16string_view text) {
  return text.substr(0, find_unit(text, u' ', 0, text.size()));
}

// Six or more hexadecimal digits, as in checksums.
bool is_hexadecimal(std::u16string_view word) {
  return word.size() >= 6 && std::all_of(word.begin(), word.end(), [](char16_t unit) {
           return is_digit(unit) || ((unit | 0x20) >= u'a' && (unit | 0x20) <= u'f');
         });
}

// A word as a sequence of runs of letters, runs of digits, and other characters.
class Runs {
 public:
  explicit Runs(std::u16string_view word) : word_(word) {}

  // The class of the next run: a letter, a digit, or the character; U+0000 at the end.
  char16_t next() {
    if (word_.empty()) return 0;
    const char16_t found = class_of(word_.front());
    do {
      word_.remove_prefix(1);
    } while (!word_.empty() && (found == u'a' || found == u'0') &&
             class_of(word_.front()) == found);
    return found;
  }

 private:
  static char16_t class_of(char16_t unit) {
    if (is_digit(unit)) return u'0';
    return u_isalpha(unit) ? u'a' : unit;
  }

  std::u16string_view word_;
};

bool have_one_shape(std::u16string_view a, std::u16string_view b) {
  if (is_hexadecimal(a) && is_hexadecimal(b)) return a.size() == b.size();
  Runs runs_of_a(a);
  Runs runs_of_b(b);
  for (;;) {
    const char16_t run = runs_of_a.next();
    if (run != runs_of_b.next()) return false;
    if (run == 0) return true;
  }
}

bool begins_in_other_case(std::u16string_view a, std::u16string_view b) {
  return !a.empty() && !b.empty() &&
         ((u_isupper(a[0]) && u_islower(b[0])) || (u_islower(a[0]) && u_isupper(b[0])));
}

class NamesWeigher {
 public:
  NamesWeigher(const Records& records, const TableFrame& table, const CellKinds& kinds,
               std::vector<std::u16string_view> names, std::size_t first, std::size_t row_names)
      : records_(records),
        table_(table),
        kinds_(kinds),
        names_(std::move(names)),
        first_(first),
        row_names_(row_names) {}

  NamesAmounts take() {
    const bool lacks_row_names =
        row_names_ > 0 && row_names_ <= names_.size() && names_[row_names_ - 1].empty();
    const auto like =
        std::count_if(names_.begin(), names_.end(), is_name_like) + (lacks_row_names ? 1 : 0);
    amount(NamesEvidence::like_names) =
        static_cast<double>(like) / static_cast<double>(names_.size());
    amount(NamesEvidence::no_data) = first_ >= table_.data.size() ? 1 : 0;
    for (std::size_t c = 0; c < names_.size(); ++c) compare(c);
    if (names_.size() == 1 && amount(NamesEvidence::text_over_values) == 0) {
      amount(NamesEvidence::column_of_texts) = 1;
    }
    amount(NamesEvidence::only_texts) = names_.size() > 1 && filled_columns_ > 0 && !has_values_;
    amount(NamesEvidence::other_case) =
        static_cast<double>(other_case_) / static_cast<double>(names_.size());
    amount(NamesEvidence::mixed_case) = begins_in_both_cases() && other_case_ + mixed_case_ == 0;
    if (filled_columns_ > 0) {
      amount(NamesEvidence::odd_length) = spreads_ / static_cast<double>(filled_columns_);
    }
    return amounts_;
  }

 private:
  double& amount(NamesEvidence evidence) { return amounts_[static_cast<std::size_t>(evidence)]; }

  bool begins_in_both_cases() const {
    const auto begins = [this](auto has_case) {
      return std::any_of(names_.begin(), names_.end(), [&](std::u16string_view name) {
        return !name.empty() && has_case(name[0]);
      });
    };
    return begins([](char16_t unit) { return u_isupper(unit) != 0; }) &&
           begins([](char16_t unit) { return u_islower(unit) != 0; });
  }

  void compare(std::size_t column) {
    const std::size_t end = std::min(kinds_.size(), first_ + kRecordsForNames);
    std::size_t filled = 0;
    std::size_t years = 0;
    std::array<std::size_t, kCellKinds> counts = {};
    const CellKind name_kind = kind_of(names_[column]);
    const bool is_name_year = is_year(names_[column]);
    const std::u16string_view word = first_word(names_[column]);
    const bool may_be_shaped =
        !is_number(name_kind) && std::any_of(word.begin(), word.end(), is_digit);
    std::size_t shaped = 0;
    std::size_t in_other_case = 0;
    double sum = 0;
    double squares = 0;
    for (std::size_t i = first_; i < end; ++i) {
      const std::u16string_view text =
          trimmed(records_.view(records_.cells(table_.data[i])[column]));
      if (text.empty()) continue;
      ++filled;
      ++counts[static_cast<std::size_t>(kinds_.at(i, column))];
      years += is_name_year && is_year(text);
      shaped += may_be_shaped && have_one_shape(word, first_word(text));
      in_other_case += begins_in_other_case(names_[column], text);
      sum += static_cast<double>(text.size());
      squares += static_cast<double>(text.size()) * static_cast<double>(text.size());
      if (text == names_[column]) amount(NamesEvidence::name_below) = 1;
    }
    std::size_t values = 0;
    std::size_t others = 0;  // values that are neither numbers nor dates
    for (std::size_t i = 0; i < counts.size(); ++i) {
      const auto kind = static_cast<CellKind>(i);
      if (!is_value(kind)) continue;
      values += counts[i];
      if (!is_value_of_data(kind)) others += counts[i];
    }
    const std::size_t alike = counts[static_cast<std::size_t>(name_kind)];
    // Years may be names, if they are not data.
    const bool names_year = is_name_year && filled > 0 && 2 * years < filled;
    const bool is_data = is_value_of_data(name_kind) && !names_year && 5 * others < 4 * filled + 1;
    const bool is_alike =
        is_value(name_kind) && !names_year && filled > 0 && 5 * alike >= 4 * filled;
    if (is_data || is_alike) amount(NamesEvidence::value_among_names) = 1;
    if (filled == 0) return;
    ++filled_columns_;
    has_values_ = has_values_ || 2 * values >= filled;
    other_case_ += 5 * in_other_case >= 4 * filled;
    mixed_case_ += 5 * in_other_case > filled;
    if (may_be_shaped && filled > 1 && 5 * shaped >= 4 * filled)
      amount(NamesEvidence::shaped_alike) = 1;
    const auto count = static_cast<double>(filled);
    if ((names_year || is_text(name_kind)) && 5 * values >= 4 * filled) {
      amount(NamesEvidence::text_over_values) = 1;
    }
    if (names_[column].empty()) return;
    const double mean = sum / count;
    const double spread = std::sqrt(std::max(0.0, squares / count - mean * mean));
    spreads_ +=
        std::min(3.0, std::abs(static_cast<double>(names_[column].size()) - mean) / (spread + 1));
  }

  const Records& records_;
  const TableFrame& table_;
  const CellKinds& kinds_;
  const std::vector<std::u16string_view> names_;
  const std::size_t first_;      // of the data below
  const std::size_t row_names_;  // counted from 1
  std::size_t filled_columns_ = 0;
  std::size_t other_case_ = 0;  // columns whose cells begin in another case than the name
  std::size_t mixed_case_ = 0;  // columns of which one cell in five does
  bool has_values_ = false;
  double spreads_ = 0;
  NamesAmounts amounts_ = {};
};

}  // namespace

std::string_view to_string(NamesEvidence evidence) {
  static constexpr std::array<std::string_view, kNumNamesEvidence> kNames = {
      "value-among-names", "text-over-values", "name-below", "like-names", "odd-length", "no-data",
      "column-of-texts",   "shaped-alike",     "only-texts", "other-case", "mixed-case"};
  return kNames[static_cast<std::size_t>(evidence)];
}

NamesAmounts weigh_names(const Records& records, const TableFrame& table, const CellKinds& kinds,
                         const std::vector<std::u16string_view>* names, std::size_t row_names) {
  if (names) return NamesWeigher(records, table, kinds, *names, 0, row_names).take();
  std::vector<std::u16string_view> first;
  const std::size_t row = table.names_rows - 1;
  for (const Cell& cell : records.cells(table.data[row]))
    first.push_back(trimmed(records.view(cell)));
  return NamesWeigher(records, table, kinds, std::move(first), table.names_rows, row_names).take();
}

}  // namespace textio::assessment
