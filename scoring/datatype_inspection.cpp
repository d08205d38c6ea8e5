#include <vltextstream/scoring/datatype_inspection.hpp>

#include <algorithm>
#include <functional>
#include <utility>

#include <vltextstream/scoring/datatype_recognizers.hpp>
#include <vltextstream/scoring/line_fields.hpp>

namespace textio {
namespace {

// The part of `field` that may be read: a field that starts in `text` must not extend past its end.
Field readable_part(const Field& field, const Field& text) {
  const std::less_equal<const char16_t*> not_after;
  const char16_t* const text_end = text.data + text.length;
  if (!not_after(text.data, field.data) || !not_after(field.data, text_end)) return field;
  return {field.data, std::min(field.length, static_cast<std::size_t>(text_end - field.data))};
}

class ArrayLines final : public LineFields {
 public:
  explicit ArrayLines(const FieldArray& array) : array_(array) {}

  std::span<const Field> fields(std::size_t line) override {
    const std::size_t begin = line > 0 ? array_.counts[line - 1] : 0;
    return std::span<const Field>(array_.fields).subspan(begin, array_.counts[line] - begin);
  }

 private:
  const FieldArray& array_;
};

LineCounts counts_of(const FieldArray& array) {
  LineCounts counts;
  std::size_t before = 0;
  for (const std::size_t total : array.counts) {
    counts.add(total - before);
    before = total;
  }
  return counts;
}

// The classes of the columns for the lines inspected so far.
class OpenColumns {
 public:
  explicit OpenColumns(const InspectionScope& scope)
      : scope_(scope), codes_(scope.num_variables, DatatypeCode::empty), open_(codes_.size()) {}

  bool are_left() const { return open_ > 0; }

  void inspect(std::span<const Field> fields) {
    for (std::size_t column = 0; column < std::min(fields.size(), codes_.size()); ++column) {
      if (codes_[column] != DatatypeCode::empty) continue;
      codes_[column] =
          classify_field(readable_part(fields[column], scope_.text), scope_.whitespace);
      if (codes_[column] != DatatypeCode::empty) --open_;
    }
  }

  std::vector<DatatypeCode> take() { return std::move(codes_); }

 private:
  const InspectionScope& scope_;
  std::vector<DatatypeCode> codes_;
  std::size_t open_;
};

}  // namespace

// Starts at the last line, so that the header and the lines after it matter least.
std::vector<DatatypeCode> classify_columns(const LineCounts& counts, LineFields& lines,
                                           const InspectionScope& scope) {
  OpenColumns columns(scope);
  for (std::size_t k = counts.runs().size(); k > 0 && columns.are_left(); --k) {
    const LineCounts::Run& run = counts.runs()[k - 1];
    if (static_cast<std::int32_t>(run.fields) < scope.modal_field_count) continue;
    const auto is_inspected = [&](std::size_t line) {
      return line >= run.first && line > scope.header_lines;
    };
    for (std::size_t line = counts.end_of(k - 1) - 1; is_inspected(line); --line) {
      columns.inspect(lines.fields(line));
      if (!columns.are_left()) break;
    }
  }
  return columns.take();
}

std::vector<DatatypeCode> classify_columns(const FieldArray& fields, const InspectionScope& scope) {
  ArrayLines lines(fields);
  return classify_columns(counts_of(fields), lines, scope);
}

void add_classes(const std::vector<DatatypeCode>& codes, StrategyValuation& valuation) {
  const auto count = [&codes](DatatypeCode code) {
    return static_cast<std::uint32_t>(std::count(codes.begin(), codes.end(), code));
  };
  valuation.typed_columns += static_cast<std::uint32_t>(codes.size()) - count(DatatypeCode::empty);
  valuation.date_columns += count(DatatypeCode::date) + count(DatatypeCode::duration);
  valuation.numeric_columns += count(DatatypeCode::number);
  valuation.datetime_columns += count(DatatypeCode::datetime);
}

}  // namespace textio
