#include "tool/table_source.hpp"

#include <utility>

namespace textio::tool {
namespace {

using reading::Account;
using reading::Batch;
using reading::ReadSettings;
using reading::TableReader;
using standalone::Layout;

class FileTable : public TableSource {
 public:
  explicit FileTable(TableReader reader) : reader_(std::move(reader)) {}

  const Layout& layout() const override { return reader_.layout(); }
  const std::vector<std::string>& names() const override { return reader_.names(); }
  std::optional<Batch> next() override { return reader_.next(); }
  const Account& account() const override { return reader_.account(); }

 private:
  TableReader reader_;
};

}  // namespace

std::unique_ptr<TableSource> open_table(const std::string& path,
                                        const std::optional<Layout>& layout,
                                        const ReadSettings& settings) {
  return std::make_unique<FileTable>(layout ? TableReader(path, *layout, settings)
                                            : TableReader(path, settings));
}

}  // namespace textio::tool
