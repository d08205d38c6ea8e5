#include <vltextstream/assessment/pieces.hpp>

#include <vltextstream/assessment/cell_kind.hpp>
#include <vltextstream/assessment/find_unit.hpp>

namespace textio::assessment {
namespace {

constexpr std::size_t kLongestTime = 40;

}  // namespace

void find_pieces(const SampledLines& lines, std::size_t k, std::size_t least_blanks,
                 Spans& pieces) {
  const std::u16string_view line = lines.view(k);
  const bool has_tabs = (lines.characters(k) & set_of(u'\t')) != 0;
  pieces.clear();
  for (std::size_t i = 0;;) {
    std::size_t blanks = 0;
    for (; i < line.size() && is_blank(line[i]); ++i) {
      blanks = line[i] == u'\t' ? least_blanks : blanks + 1;
    }
    if (i == line.size()) return;
    const std::size_t begin = i;
    const std::size_t blank = find_unit(line, u' ', i, line.size());
    i = has_tabs ? find_unit(line, u'\t', i, blank) : blank;
    if (blanks >= least_blanks || pieces.empty()) {
      pieces.push_back({begin, i});
    } else {
      pieces.back().end = i;
    }
  }
}

bool join_times(std::u16string_view line, Spans& pieces) {
  std::size_t size = 0;
  for (std::size_t i = 0; i < pieces.size(); ++i) {
    Span piece = pieces[i];
    if (i + 1 < pieces.size() &&
        is_date_with_time(part_of(line, piece), part_of(line, pieces[i + 1]))) {
      piece.end = pieces[++i].end;
    }
    pieces[size++] = piece;
  }
  const bool has_joined = size < pieces.size();
  pieces.resize(size);
  return has_joined;
}

bool is_date_with_time(std::u16string_view date, std::u16string_view time) {
  return time.size() <= kLongestTime && time.find(u':') != time.npos &&
         kind_of(time) == CellKind::time && kind_of(date) == CellKind::date;
}

}  // namespace textio::assessment
