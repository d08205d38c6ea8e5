// The lines come from a RecordStream, as those of a table that is read: so what is shown is what is read. A line of
// names or units is no record there; it is cut for itself.
#include <vltextstream/reading/first_lines.hpp>

#include <algorithm>
#include <memory>
#include <optional>
#include <stdexcept>
#include <utility>

#include <vltextstream/assessment/sampled_lines.hpp>
#include <vltextstream/layout/given_settings.hpp>
#include <vltextstream/reading/opened_source.hpp>
#include <vltextstream/reading/record_cutter.hpp>
#include <vltextstream/reading/record_stream.hpp>
#include <vltextstream/standalone/files/read_limit.hpp>

namespace textio::reading {
namespace {

using assessment::Cell;
using standalone::DetectSettings;
using standalone::Layout;
using standalone::LineRole;
using standalone::LineRun;

// The stream reads at least as much as was sampled, and no more than that is shown.
constexpr std::size_t kLeastWindow = 256;

bool has_footer(const Layout& layout) {
  return std::any_of(layout.lines.begin(), layout.lines.end(),
                     [](const LineRun& run) { return run.role == LineRole::footer; });
}

bool is_head(LineFate fate) {
  return fate == LineFate::names || fate == LineFate::units || fate == LineFate::descriptions;
}

class TopReader {
 public:
  TopReader(const Layout& layout, const DetectSettings& settings, std::size_t num_rows)
      : layout_(layout),
        settings_(settings),
        endings_(standalone::line_endings_of(settings)),
        rows_left_(num_rows) {}

  std::vector<CutLine> read(Opened& opened) {
    ReadSettings settings;
    settings.detect = settings_;
    settings.window = kLeastWindow;
    const standalone::ReadLimitScope limit(settings_.max_bytes);
    File file = opened.file ? std::move(opened.file) : opened.source.open();
    RecordStream stream(
        TextInput(std::move(file), opened.source.name(), layout_.encoding, endings_), layout_,
        settings);
    const bool wants_footer = has_footer(layout_);
    const std::size_t last_line = layout_.lines.empty() ? 0 : layout_.lines.back().last_line;
    while (const std::optional<Block> block = stream.next()) {
      for (const LineGroup& group : block->groups) {
        if (group.first_line > last_line) return std::move(lines_);
        take(*block, group);
        if (rows_left_ == 0 && !wants_footer) return std::move(lines_);
      }
    }
    return std::move(lines_);
  }

 private:
  void take(const Block& block, const LineGroup& group) {
    if (rows_left_ == 0 && group.fate != LineFate::footer) return;
    const bool is_row = group.fate == LineFate::data;
    if (is_row) --rows_left_;
    const std::u16string_view text = block.view(group);
    std::vector<Cell> cells;
    std::size_t base = group.begin;
    if (is_row && group.record != LineGroup::kNoRecord) {
      const auto all = block.records.cells(group.record);
      cells.assign(all.begin(), all.end());
    } else if (is_head(group.fate)) {
      cells = cells_of_head(text);
      base = 0;
    }
    add_lines(group, text, base, cells);
  }

  // None if there is no cell for each column.
  std::vector<Cell> cells_of_head(std::u16string_view text) const {
    const std::unique_ptr<RecordCutter> cutter = cutter_of(layout_, settings_, text);
    const assessment::SampledLines lines =
        lines_of(text, false, endings_, cutter->needs_characters());
    const assessment::Records records = cutter->cut(lines);
    if (records.size() != 1 || records.cells(0).size() != layout_.num_variables) return {};
    const auto cells = records.cells(0);
    return {cells.begin(), cells.end()};
  }

  // A line for each line of the group; cells are relative to `base`, the start of `text`.
  void add_lines(const LineGroup& group, std::u16string_view text, std::size_t base,
                 const std::vector<Cell>& cells) {
    std::size_t pos = 0;
    for (std::uint64_t number = group.first_line;; ++number) {
      assessment::TextLine line{pos, pos, pos};
      if (pos < text.size()) line = assessment::line_at(text, pos, endings_);
      CutLine& added = lines_.emplace_back();
      added.number = number;
      added.fate = group.fate;
      added.text = text.substr(line.begin, line.end - line.begin);
      added.is_continued = number > group.first_line;
      add_cells(added, base + line.begin, cells);
      pos = line.next;
      if (pos >= text.size()) break;
    }
  }

  // What the line has of the cells. An empty cell may be anywhere, so it is not shown as one outside of the line.
  static void add_cells(CutLine& line, std::size_t begin, const std::vector<Cell>& cells) {
    const std::size_t end = begin + line.text.size();
    std::size_t least = begin;
    for (std::size_t column = 0; column < cells.size(); ++column) {
      const Cell& cell = cells[column];
      const bool is_outside = cell.end < least || cell.begin > end || cell.end < cell.begin;
      if (is_outside) continue;
      const std::size_t from = std::max<std::size_t>(cell.begin, least);
      const std::size_t to = std::min<std::size_t>(cell.end, end);
      line.cells.push_back({column, from - begin, to - begin, cell.is_quoted});
      least = to;
    }
  }

  const Layout& layout_;
  const DetectSettings& settings_;
  const assessment::LineEndings endings_;
  std::size_t rows_left_;
  std::vector<CutLine> lines_;
};

void check(const DetectSettings& settings) {
  if (standalone::has_usual_line_endings(settings)) return;
  throw ReadError(
      "LineEnding: a table is read with the line endings \"\\r\\n\", \"\\n\" and \"\\r\" alone", 0,
      0);
}

std::vector<CutLine> lines_in(Opened& opened, const DetectSettings& settings,
                              std::size_t num_rows) {
  check(settings);
  return TopReader(opened.layout, settings, num_rows).read(opened);
}

}  // namespace

// The layout is the answer; lines that cannot be had are left out.
FileTop look_at_top(const std::string& path, const DetectSettings& settings, std::size_t num_rows) {
  const standalone::ReadLimitScope limit(settings.max_bytes);
  Opened opened = detected({path, std::nullopt}, settings);
  FileTop top;
  try {
    top.lines = lines_in(opened, settings, num_rows);
  } catch (const std::runtime_error&) {
    top.lines.clear();
  }
  top.layout = std::move(opened.layout);
  return top;
}

std::vector<CutLine> first_lines(const std::string& path, const Layout& layout,
                                 const DetectSettings& settings, std::size_t num_rows) {
  Opened opened({path, std::nullopt}, layout);
  return lines_in(opened, settings, num_rows);
}

std::vector<CutLine> first_lines_of_bytes(std::string_view bytes, const Layout& layout,
                                          const DetectSettings& settings, std::size_t num_rows) {
  Opened opened({"", bytes}, layout);
  return lines_in(opened, settings, num_rows);
}

}  // namespace textio::reading
