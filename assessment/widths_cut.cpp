#include <algorithm>

#include <vltextstream/assessment/cuts.hpp>

namespace textio::assessment {

Records cut_widths(const SampledLines& lines, const std::vector<std::size_t>& widths) {
  Records records(lines.text());
  std::size_t start = 0;
  for (const std::size_t width : widths) {
    records.column_starts.push_back(start);
    start += std::min(width, lines.text().size());
    records.column_ends.push_back(start);
  }
  for (std::size_t k = 0; k < lines.size(); ++k) {
    const std::u16string_view line = lines.view(k);
    if (is_blank(line)) continue;
    records.add_record(k);
    for (std::size_t c = 0; c < widths.size(); ++c) {
      const std::size_t begin = std::min(records.column_starts[c], line.size());
      const std::size_t end = std::min(records.column_ends[c], line.size());
      records.add_cell(lines[k].begin + begin, lines[k].begin + end);
    }
  }
  return records;
}

}  // namespace textio::assessment
