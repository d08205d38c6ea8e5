#include <vltextstream/scoring/datatype_inspection.hpp>

#include <algorithm>
#include <functional>
#include <utility>

#include <vltextstream/scoring/datatype_recognizers.hpp>
#include <vltextstream/scoring/line_fields.hpp>
#include <vltextstream/strategy/strategy.hpp>

namespace textio {
namespace {

// The part of `field` that may be read: a field that starts in `text` ends with it at the latest.
Field readable_part(const Field& field, const Field& text) {
  const std::less_equal<const char16_t*> not_after;
  const char16_t* const text_end = text.data + text.length;
  if (!not_after(text.data, field.data) || !not_after(field.data, text_end)) return field;
  return {field.data, std::min(field.length, static_cast<std::size_t>(text_end - field.data))};
}

class ArrayLines final : public LineFields {
 public:
  explicit ArrayLines(const FieldArray& array) : array_(array) {}

  std::size_t num_lines() const override { return array_.counts.size(); }
  std::size_t count(std::size_t line) const override { return array_.counts[line] - begin(line); }
  std::span<const Field> fields(std::size_t line) override {
    return std::span<const Field>(array_.fields).subspan(begin(line), count(line));
  }

 private:
  // The first line of all is never inspected.
  std::size_t begin(std::size_t line) const { return array_.counts[line - 1]; }

  const FieldArray& array_;
};

std::uint32_t count_of(const std::vector<DatatypeCode>& codes, DatatypeCode code) {
  return static_cast<std::uint32_t>(std::count(codes.begin(), codes.end(), code));
}

}  // namespace

std::vector<DatatypeCode> classify_columns(LineFields& lines, const InspectionScope& scope) {
  std::vector<DatatypeCode> codes(scope.num_variables, DatatypeCode::empty);
  std::size_t open_columns = codes.size();

  // Upwards from the last line, so that the header and what follows it matter least.
  std::size_t line = lines.num_lines();
  while (open_columns > 0 && line > 0 && line - 1 > scope.header_lines) {
    --line;
    const std::size_t count = lines.count(line);
    if (static_cast<std::int32_t>(count) < scope.modal_field_count) continue;
    const std::span<const Field> fields = lines.fields(line);
    for (std::size_t column = 0; column < std::min(count, codes.size()); ++column) {
      if (codes[column] != DatatypeCode::empty) continue;
      const Field field = readable_part(fields[column], scope.text);
      codes[column] = classify_field(field, scope.whitespace);
      if (codes[column] != DatatypeCode::empty) --open_columns;
    }
  }
  return codes;
}

std::vector<DatatypeCode> classify_columns(const FieldArray& fields, const InspectionScope& scope) {
  ArrayLines lines(fields);
  return classify_columns(lines, scope);
}

std::vector<DatatypeCode> Strategy::classes_of(LineFields& lines) const {
  return textio::classify_columns(
      lines, {header_lines_, valuation_.modal_field_count,
              static_cast<std::size_t>(valuation_.num_variables), options_->whitespace, text_});
}

std::vector<DatatypeCode> Strategy::classify_columns(const FieldArray& fields) const {
  ArrayLines lines(fields);
  return classes_of(lines);
}

void Strategy::inspect_datatypes(const FieldArray& fields) {
  take_classes(classify_columns(fields));
}

void Strategy::take_classes(std::vector<DatatypeCode> codes) {
  const std::uint32_t empty = count_of(codes, DatatypeCode::empty);
  valuation_.typed_columns += static_cast<std::uint32_t>(codes.size()) - empty;
  valuation_.date_columns +=
      count_of(codes, DatatypeCode::date) + count_of(codes, DatatypeCode::duration);
  valuation_.numeric_columns += count_of(codes, DatatypeCode::number);
  valuation_.datetime_columns += count_of(codes, DatatypeCode::datetime);
  column_classes_ = std::move(codes);
}

}  // namespace textio
