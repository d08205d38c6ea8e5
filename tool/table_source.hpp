// TableSource: a table that is read batch after batch. The tool reads by this, and its tests take its place.
#pragma once

#include <memory>
#include <optional>
#include <string>
#include <vector>

#include <vltextstream/layout/layout.hpp>
#include <vltextstream/reading/table_reader.hpp>

namespace textio::tool {

// As in TableReader.
class TableSource {
 public:
  TableSource() = default;
  TableSource(const TableSource&) = delete;
  TableSource& operator=(const TableSource&) = delete;
  virtual ~TableSource() = default;

  virtual const standalone::Layout& layout() const = 0;
  virtual const std::vector<std::string>& names() const = 0;
  virtual std::optional<reading::Batch> next() = 0;
  virtual const reading::Account& account() const = 0;
};

// The table in the file at `path`; with a layout, by this one. Errors as those of TableReader.
std::unique_ptr<TableSource> open_table(const std::string& path,
                                        const std::optional<standalone::Layout>& layout,
                                        const reading::ReadSettings& settings);

}  // namespace textio::tool
