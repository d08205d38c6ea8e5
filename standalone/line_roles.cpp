#include "standalone/line_roles.hpp"

namespace textio::standalone {
namespace {

LineRole role_of(SampledTable::Kind kind, std::size_t index, const SampledTable& table,
                 const VariableNames& names) {
  if (kind == SampledTable::Kind::comment) return LineRole::comment;
  if (kind == SampledTable::Kind::blank) return LineRole::blank;
  if (names.names_line == index) return LineRole::names;
  if (names.units_line == index) return LineRole::units;
  return index < table.header_lines() ? LineRole::header : LineRole::data;
}

void add_line(std::vector<LineRun>& runs, LineRole role, const SampledTable::Line& line) {
  if (runs.empty() || runs.back().role != role) {
    runs.push_back({role, line.first_line, line.last_line, 0});
  }
  runs.back().last_line = line.last_line;
  ++runs.back().count;
}

}  // namespace

void describe_lines(const SampledTable& table, const VariableNames& names, Layout& layout) {
  std::size_t index = 0;
  for (const SampledTable::Line& line : table.lines()) {
    const LineRole role = role_of(line.kind, index, table, names);
    add_line(layout.lines, role, line);
    if (role == LineRole::comment) continue;
    if (role == LineRole::data && table.field_count(index) != table.num_variables()) {
      ++layout.ragged_lines;
      if (!layout.first_ragged_line) layout.first_ragged_line = line.first_line;
    }
    ++index;
  }
}

}  // namespace textio::standalone
