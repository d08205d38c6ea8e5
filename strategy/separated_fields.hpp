// The common part of the splitters of separated fields. Delimited and space-aligned splitters
// differ in where a line ends and where the next field starts.
#pragma once

#include <algorithm>
#include <cstddef>
#include <memory>
#include <stdexcept>
#include <utility>
#include <vector>

#include <vltextstream/strategy/append_fields.hpp>
#include <vltextstream/strategy/field_cursor.hpp>
#include <vltextstream/strategy/field_rules.hpp>
#include <vltextstream/strategy/splitter.hpp>

namespace textio {

// The extent of the field at a position.
using FieldAt = FieldExtent (*)(FieldCursor& fields, std::size_t start);

template <FieldAt kFieldAt>
class SeparatedCutter final : public FieldCutter {
 public:
  explicit SeparatedCutter(const FieldRules& rules) : fields_(rules, Field()) {}

  std::size_t append_fields(const Field& line, std::size_t column,
                            std::vector<Field>& fields) override {
    fields_.move_to(line);
    append_fields_of(line, fields, [&](std::size_t pos) {
      FieldExtent extent = kFieldAt(fields_, pos);
      const bool is_stuck = extent.next == pos && !ends_at(line, pos);
      if (is_stuck) throw std::invalid_argument("a line to be cut holds a line ending");
      return extent;
    });
    return column;
  }

 private:
  FieldCursor fields_;
};

template <typename Lines, FieldAt kFieldAt>
class SeparatedSplitter : public Splitter {
 public:
  explicit SeparatedSplitter(std::shared_ptr<const FieldRules> rules) : rules_(std::move(rules)) {}

  const FieldRules& rules() const { return *rules_; }

  bool counts_fields() const override { return true; }
  std::size_t longest_marker() const override {
    return std::max(rules_->delimiters.longest(), rules_->line_endings.longest());
  }
  std::unique_ptr<LineCursor> lines_of(const Field& text) const override {
    return std::make_unique<Lines>(*rules_, text);
  }
  std::unique_ptr<FieldCutter> field_cutter() const override {
    return std::make_unique<SeparatedCutter<kFieldAt>>(*rules_);
  }

 private:
  std::shared_ptr<const FieldRules> rules_;
};

}  // namespace textio
