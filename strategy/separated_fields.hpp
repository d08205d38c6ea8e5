// The splitter of separated fields. What is skipped after a field tells delimited fields from
// space-aligned ones:
//
//   struct Separation {
//     static constexpr std::u16string_view kSkipped;    // before a line, and after a field
//     static constexpr std::u16string_view kOpeners;    // of lines that may contain line endings
//     static Dialect dialect(const DelimiterSet& delimiters);
//   };
#pragma once

#include <algorithm>
#include <cstddef>
#include <memory>
#include <stdexcept>
#include <string>
#include <vector>

#include <vltextstream/strategy/append_fields.hpp>
#include <vltextstream/strategy/field_cursor.hpp>
#include <vltextstream/strategy/field_rules.hpp>
#include <vltextstream/strategy/splitter.hpp>

namespace textio {

// The field that starts at `start`.
template <typename Separation>
FieldExtent separated_field_at(FieldCursor& fields, std::size_t start) {
  const auto [end, next] = fields.end_of_field(start);
  const Field& line = fields.text();
  return {slice(line, start, end), find_first_not_of(line, next, Separation::kSkipped)};
}

template <typename Separation>
class SeparatedLines final : public LineCursor {
 public:
  SeparatedLines(const FieldRules& rules, const Field& text) : fields_(rules, text) {}

  // A line consists of whole fields, so a line ending inside quotes does not end it. A field that
  // consumed nothing stopped at a line ending or at the end of the text, so every pass advances. A
  // separator at the end of the text has one more field after it, which is empty.
  SplitLine line_at(std::size_t start) override {
    const Field& text = fields_.text();
    const std::size_t line_start = find_first_not_of(text, start, Separation::kSkipped);
    std::size_t num_fields = 0;
    bool ends_with_separator = false;
    std::size_t pos = line_start;
    while (!ends_at(text, pos)) {
      const auto [end, next] = fields_.end_of_field(pos);
      pos = find_first_not_of(text, next, Separation::kSkipped);
      ++num_fields;
      ends_with_separator = pos != end;
      if (ends_with_separator) continue;
      if (const std::size_t ending = fields_.line_ending_at(end)) {
        return {{slice(text, line_start, end), end + ending}, num_fields};
      }
    }
    return {{slice(text, line_start, pos), pos}, num_fields + (ends_with_separator ? 1 : 0)};
  }

  EmptyLines empty_lines_at(std::size_t start, std::size_t most) override {
    return empty_lines_from(start, most, fields_.text(), fields_.line_endings(),
                            Separation::kOpeners);
  }

 private:
  FieldCursor fields_;
};

template <typename Separation>
class SeparatedCutter final : public FieldCutter {
 public:
  explicit SeparatedCutter(const FieldRules& rules) : fields_(rules, Field()) {}

  std::size_t append_fields(const Field& line, std::size_t column,
                            std::vector<Field>& fields) override {
    fields_.move_to(line);
    append_fields_of(line, fields, [&](std::size_t pos) {
      FieldExtent extent = separated_field_at<Separation>(fields_, pos);
      const bool is_stuck = extent.next == pos && !ends_at(line, pos);
      if (is_stuck) throw std::invalid_argument("a line to be cut holds a line ending");
      return extent;
    });
    return column;
  }

 private:
  FieldCursor fields_;
};

template <typename Separation>
class SeparatedSplitter final : public Splitter, public FieldRules {
 public:
  using FieldRules::FieldRules;

  Dialect dialect() const override { return Separation::dialect(delimiters.set()); }
  bool counts_fields() const override { return true; }
  std::size_t longest_marker() const override {
    return std::max(delimiters.longest(), line_endings.longest());
  }
  std::unique_ptr<LineCursor> lines_of(const Field& text) const override {
    return std::make_unique<SeparatedLines<Separation>>(*this, text);
  }
  std::unique_ptr<FieldCutter> field_cutter() const override {
    return std::make_unique<SeparatedCutter<Separation>>(*this);
  }
};

}  // namespace textio
