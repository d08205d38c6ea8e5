// A FieldArray made by hand: every field is in a separate block of exactly its size.
#pragma once

#include <memory>
#include <string>
#include <vector>

#include <vltextstream/strategy/field_array.hpp>
#include "support/exact_text.hpp"

namespace textio::testing_support {

using Rows = std::vector<std::vector<std::u16string>>;

class FieldTable {
 public:
  explicit FieldTable(const Rows& rows) {
    for (const auto& row : rows) {
      for (const std::u16string& cell : row) {
        cells_.push_back(std::make_unique<ExactText>(cell));
        array_.fields.push_back(cells_.back()->field());
      }
      array_.counts.push_back(array_.fields.size());
    }
  }

  const FieldArray& array() const { return array_; }

 private:
  std::vector<std::unique_ptr<ExactText>> cells_;
  FieldArray array_;
};

}  // namespace textio::testing_support
