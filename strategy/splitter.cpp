#include <vltextstream/strategy/splitter.hpp>

#include <limits>
#include <stdexcept>

#include <vltextstream/strategy/append_fields.hpp>
#include <vltextstream/strategy/quoting.hpp>
#include <vltextstream/strategy/strategy.hpp>

namespace textio {
namespace {

class OperationLines final : public LineCursor {
 public:
  OperationLines(const Strategy& strategy, const Field& text) : strategy_(strategy), text_(text) {}

  SplitLine line_at(std::size_t start) override {
    return {strategy_.get_line_extent(text_, start)};
  }

 private:
  const Strategy& strategy_;
  const Field text_;
};

// No table has this many consecutive fields without width.
constexpr std::size_t kMostIdleFields = 65'536;

// The strategy keeps track of columns itself.
class OperationCutter final : public FieldCutter {
 public:
  explicit OperationCutter(Strategy& strategy) : strategy_(strategy) {}

  std::size_t append_fields(const Field& line, std::size_t /*column*/,
                            std::vector<Field>& fields) override {
    std::size_t idle = 0;  // consecutive fields that did not advance
    append_fields_of(line, fields, [&](std::size_t pos) {
      FieldExtent extent = strategy_.get_next_field(line, pos);
      idle = extent.next > pos ? 0 : idle + 1;
      if (idle > kMostIdleFields) throw std::invalid_argument("a line is cut without end");
      return extent;
    });
    return strategy_.next_column();
  }

 private:
  Strategy& strategy_;
};

class OperationSplitter final : public Splitter {
 public:
  explicit OperationSplitter(Strategy& strategy) : strategy_(strategy) {}

  Dialect dialect() const override { return strategy_.dialect(); }
  bool counts_fields() const override { return false; }
  bool is_repeatable() const override { return false; }
  std::size_t longest_marker() const override { return std::numeric_limits<std::size_t>::max(); }
  std::unique_ptr<LineCursor> lines_of(const Field& text) const override {
    return lines_by_operations(strategy_, text);
  }
  std::unique_ptr<FieldCutter> field_cutter() const override {
    return std::make_unique<OperationCutter>(strategy_);
  }

 private:
  Strategy& strategy_;
};

}  // namespace

LineCursor::~LineCursor() = default;

EmptyLines LineCursor::empty_lines_at(std::size_t start, std::size_t /*most*/) {
  return {0, start};
}

std::shared_ptr<const Splitter> splitter_by_operations(Strategy& strategy) {
  return std::make_shared<OperationSplitter>(strategy);
}

std::unique_ptr<LineCursor> lines_by_operations(const Strategy& strategy, const Field& text) {
  return std::make_unique<OperationLines>(strategy, text);
}

EmptyLines empty_lines_from(std::size_t start, std::size_t most, const Field& text,
                            MarkerSearch& line_endings, std::u16string_view openers) {
  EmptyLines lines{0, start};
  while (lines.count < most && !ends_at(text, lines.next)) {
    if (contains(openers, text.data[lines.next])) break;
    const std::size_t ending = line_endings.length_at(lines.next);
    if (ending == 0) break;
    lines.next += ending;
    ++lines.count;
  }
  return lines;
}

}  // namespace textio
