// A line is tested for a few properties: does it exist, does it name every variable, does it look
// like units, do its fields differ from the columns below. The rule itself is find_variable_names:
// first the last header line, then the line after the header. The test that fails gives the reason.
#include <vltextstream/layout/variable_names.hpp>

#include <algorithm>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include <fmt/format.h>

#include <vltextstream/assessment/unit_symbols.hpp>

namespace textio::standalone {
namespace {

constexpr std::size_t kNoLine = static_cast<std::size_t>(-1);
constexpr std::size_t kLongestRemark = 32;

bool is_typed(DatatypeCode code) {
  return code != DatatypeCode::text && code != DatatypeCode::empty;
}

bool has_typed_column(const std::vector<DatatypeCode>& columns) {
  return std::any_of(columns.begin(), columns.end(), is_typed);
}

// One sampled line, compared with the columns of its table. Most lines need only a few of these
// tests, so the fields are cut, and their texts are made, on first use.
class NamesCandidate {
 public:
  // `index` may be outside the sampled lines; such a line does not exist.
  NamesCandidate(const SampledTable& table, std::size_t index)
      : table_(table), columns_(table.classes()), index_(index) {}

  bool exists() const { return index_ < table_.size() && num_fields() > 0; }
  std::size_t num_fields() const { return fields().size(); }
  bool fits() const { return exists() && num_fields() == columns_.size(); }

  bool has_empty_field() const {
    return std::any_of(texts().begin(), texts().end(),
                       [](const auto& text) { return text.empty(); });
  }
  bool repeats_a_field() const {
    std::vector<std::u16string_view> sorted(texts().begin(), texts().end());
    std::sort(sorted.begin(), sorted.end());
    return std::adjacent_find(sorted.begin(), sorted.end()) != sorted.end();
  }
  bool has_values() const {
    return std::any_of(fields().begin(), fields().end(),
                       [this](const Field& field) { return is_typed(table_.class_of(field)); });
  }

  bool names_every_variable() const { return fits() && !has_empty_field(); }

  // Whether some text is above a column of another class.
  bool differs_somewhere() const {
    for (std::size_t i = 0; i < columns_.size(); ++i) {
      if (is_typed(columns_[i]) && class_of(i) == DatatypeCode::text) return true;
    }
    return false;
  }

  // Cheap tests first.
  bool reads_as_names() const {
    return fits() && has_typed_column(columns_) && !has_values() && differs_somewhere() &&
           !has_empty_field() && !repeats_a_field();
  }

  // Above numbers, dates and durations: units, or signs that there are none. Above texts: any short
  // remark.
  bool reads_as_units() const {
    if (!fits()) return false;
    bool has_unit = false;
    for (std::size_t i = 0; i < columns_.size(); ++i) {
      const std::u16string& text = texts()[i];
      const bool is_unit_here = assessment::is_unit(text) || assessment::is_time_pattern(text);
      const bool is_allowed_here = is_typed(columns_[i])
                                       ? is_unit_here || assessment::is_no_unit(text)
                                       : text.size() <= kLongestRemark && !is_typed(class_of(i));
      if (!is_allowed_here) return false;
      has_unit = has_unit || (is_typed(columns_[i]) && is_unit_here);
    }
    return has_unit;
  }

 private:
  DatatypeCode class_of(std::size_t column) const { return table_.class_of(fields()[column]); }

  const std::vector<Field>& fields() const {
    if (!fields_) fields_ = table_.fields(index_);
    return *fields_;
  }

  const std::vector<std::u16string>& texts() const {
    if (!texts_) texts_ = table_.texts(fields());
    return *texts_;
  }

  const SampledTable& table_;
  const std::vector<DatatypeCode>& columns_;
  std::size_t index_;
  mutable std::optional<std::vector<Field>> fields_;
  mutable std::optional<std::vector<std::u16string>> texts_;
};

struct Verdict {
  NamesSource source;
  std::string reason;
};

std::string counted(std::size_t count, const char* thing) {
  return fmt::format("{} {}{}", count, thing, count == 1 ? "" : "s");
}

// Why line `number` of the text, the first after the header, does not hold the names.
Verdict why_not(const NamesCandidate& line, const std::vector<DatatypeCode>& columns,
                std::size_t number, bool is_last) {
  const bool has_type = has_typed_column(columns);
  if (!line.fits()) {
    return {NamesSource::none,
            fmt::format("line {} has {} for {}", number, counted(line.num_fields(), "cell"),
                        counted(columns.size(), "column"))};
  }
  if (line.has_empty_field()) {
    return {NamesSource::none, fmt::format("a cell of line {} is empty", number)};
  }
  if (line.repeats_a_field()) {
    return {NamesSource::none, fmt::format("line {} has the same text in two columns", number)};
  }
  if (!has_type && line.has_values()) {
    return {NamesSource::none, fmt::format("line {} holds values", number)};
  }
  if (is_last) {
    return {NamesSource::undecided,
            fmt::format("there is no line below line {} to compare it with", number)};
  }
  if (!has_type) {
    return {NamesSource::undecided,
            fmt::format("every column is text, so line {} may hold names or values", number)};
  }
  if (line.differs_somewhere()) {
    return {NamesSource::undecided,
            fmt::format("line {} holds texts where values follow, but values as well", number)};
  }
  return {NamesSource::none, fmt::format("line {} reads like the lines below it", number)};
}

// Blank lines between the header and the names are skipped.
std::size_t first_after_header(const SampledTable& table) {
  std::size_t index = table.header_lines();
  while (index < table.size() && table.field_count(index) == 0) ++index;
  return index;
}

}  // namespace

VariableNames find_variable_names(const SampledTable& table) {
  const std::size_t header = table.header_lines();
  const std::size_t last = header > 0 ? header - 1 : kNoLine;
  const std::size_t above = header > 1 ? header - 2 : kNoLine;
  const std::size_t after = first_after_header(table);
  const std::size_t below = after < table.size() ? after + 1 : kNoLine;
  const NamesCandidate last_line(table, last);
  const NamesCandidate line_above(table, above);
  const NamesCandidate line_after(table, after);
  const NamesCandidate line_below(table, below);

  const auto units_of = [](const NamesCandidate& line, std::size_t index) {
    return line.reads_as_units() ? std::optional<std::size_t>(index) : std::nullopt;
  };
  const auto either = [](std::optional<std::size_t> first, std::optional<std::size_t> second) {
    return first ? first : second;
  };

  // Names may be spelled like units ("t,A"). If two neighbouring lines are, the upper one holds the
  // names.
  const bool has_names_below_header =
      last_line.reads_as_units() && line_after.reads_as_names() && !line_after.reads_as_units();
  const bool has_names_below_units =
      line_after.reads_as_units() && line_below.reads_as_names() && !line_below.reads_as_units();

  if (last_line.reads_as_units() && line_above.names_every_variable()) {
    return {NamesSource::last_header_line, "it has a name for every column, above the units", above,
            last};
  }
  if (last_line.names_every_variable() && !has_names_below_header) {
    return {NamesSource::last_header_line, "it has a name for every column", last,
            either(units_of(line_above, above), units_of(line_after, after))};
  }
  if (has_names_below_units) {
    return {NamesSource::line_after_header, "texts above values, below the units", below, after};
  }
  if (line_after.reads_as_names()) {
    return {NamesSource::line_after_header, "texts above values", after,
            either(units_of(line_below, below), units_of(last_line, last))};
  }
  if (!line_after.exists()) {
    return {NamesSource::none, "there is no line where they could be", {}, {}};
  }
  const Verdict verdict =
      why_not(line_after, table.classes(), table.line_number(after), below >= table.size());
  return {verdict.source, verdict.reason, {}, {}};
}

}  // namespace textio::standalone
