#include <vltextstream/assessment/cuts.hpp>

namespace textio::assessment {

Records cut_fields(const SampledLines& lines, const std::vector<std::size_t>& borders) {
  Records records(lines.text());
  records.column_starts.assign(borders.begin(), borders.end() - 1);
  records.column_ends.assign(borders.begin() + 1, borders.end());
  const auto add = [&](std::size_t begin, std::size_t end) {
    const std::u16string_view cell = trimmed(lines.text().substr(begin, end - begin));
    if (!cell.empty()) begin = static_cast<std::size_t>(cell.data() - lines.text().data());
    records.add_cell(begin, begin + cell.size());
  };
  for (std::size_t k = 0; k < lines.size(); ++k) {
    const std::u16string_view line = lines.view(k);
    if (is_blank(line)) continue;
    records.add_record(k);
    if (line.size() != borders.back()) {
      add(lines[k].begin, lines[k].end);
      continue;
    }
    for (std::size_t i = 0; i + 1 < borders.size(); ++i) {
      add(lines[k].begin + borders[i], lines[k].begin + borders[i + 1]);
    }
  }
  return records;
}

}  // namespace textio::assessment
