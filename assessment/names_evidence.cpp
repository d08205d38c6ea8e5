#include <vltextstream/assessment/names_evidence.hpp>

#include <algorithm>
#include <cmath>
#include <vector>

#include <unicode/uchar.h>

#include <vltextstream/assessment/cell_kind.hpp>

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

class NamesWeigher {
 public:
  NamesWeigher(const Records& records, const TableFrame& table, const CellKinds& kinds,
               std::vector<std::u16string_view> names, std::size_t first)
      : records_(records), table_(table), kinds_(kinds), names_(std::move(names)), first_(first) {}

  NamesAmounts take() {
    const auto like = std::count_if(names_.begin(), names_.end(), is_name_like);
    amount(NamesEvidence::like_names) =
        static_cast<double>(like) / static_cast<double>(names_.size());
    amount(NamesEvidence::no_data) = first_ >= table_.data.size() ? 1 : 0;
    for (std::size_t c = 0; c < names_.size(); ++c) compare(c);
    if (names_.size() == 1 && amount(NamesEvidence::text_over_values) == 0) {
      amount(NamesEvidence::column_of_texts) = 1;
    }
    if (filled_columns_ > 0) {
      amount(NamesEvidence::odd_length) = spreads_ / static_cast<double>(filled_columns_);
    }
    return amounts_;
  }

 private:
  double& amount(NamesEvidence evidence) { return amounts_[static_cast<std::size_t>(evidence)]; }

  void compare(std::size_t column) {
    const std::size_t end = std::min(kinds_.size(), first_ + kRecordsForNames);
    std::size_t filled = 0;
    std::size_t years = 0;
    std::array<std::size_t, kCellKinds> counts = {};
    const CellKind name_kind = kind_of(names_[column]);
    const bool is_name_year = is_year(names_[column]);
    double sum = 0;
    double squares = 0;
    for (std::size_t i = first_; i < end; ++i) {
      const std::u16string_view text =
          trimmed(records_.view(records_.cells(table_.data[i])[column]));
      if (text.empty()) continue;
      ++filled;
      ++counts[static_cast<std::size_t>(kinds_.at(i, column))];
      years += is_name_year && is_year(text);
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
  const std::size_t first_;  // of the data below
  std::size_t filled_columns_ = 0;
  double spreads_ = 0;
  NamesAmounts amounts_ = {};
};

}  // namespace

std::string_view to_string(NamesEvidence evidence) {
  static constexpr std::array<std::string_view, kNumNamesEvidence> kNames = {
      "value-among-names", "text-over-values", "name-below",     "like-names",
      "odd-length",        "no-data",          "column-of-texts"};
  return kNames[static_cast<std::size_t>(evidence)];
}

NamesAmounts weigh_names(const Records& records, const TableFrame& table, const CellKinds& kinds,
                         const std::vector<std::u16string_view>* names) {
  if (names) return NamesWeigher(records, table, kinds, *names, 0).take();
  std::vector<std::u16string_view> first;
  const std::size_t row = table.names_rows - 1;
  for (const Cell& cell : records.cells(table.data[row]))
    first.push_back(trimmed(records.view(cell)));
  return NamesWeigher(records, table, kinds, std::move(first), table.names_rows).take();
}

}  // namespace textio::assessment
