// A run of sampled lines is divided where the roles change: at the end of the header, and around
// the lines of the names and the units.
#include <vltextstream/layout/line_roles.hpp>

#include <algorithm>
#include <optional>

namespace textio::standalone {
namespace {

using Run = SampledTable::Run;

// The first place after `index`, at most `end`, at which another role may begin.
std::size_t end_of_role(std::size_t index, std::size_t end, const SampledTable& table,
                        const VariableNames& names) {
  const auto stop_at = [&](std::size_t place) {
    if (place > index) end = std::min(end, place);
  };
  stop_at(table.header_lines());
  for (const std::optional<std::size_t>& line : {names.names_line, names.units_line}) {
    if (!line) continue;
    stop_at(*line);
    stop_at(*line + 1);
  }
  return end;
}

LineRole role_of(SampledTable::Kind kind, std::size_t index, const SampledTable& table,
                 const VariableNames& names) {
  if (kind == SampledTable::Kind::comment) return LineRole::comment;
  if (kind == SampledTable::Kind::blank) return LineRole::blank;
  if (names.names_line == index) return LineRole::names;
  if (names.units_line == index) return LineRole::units;
  return index < table.header_lines() ? LineRole::header : LineRole::data;
}

// The lines of `run` from `begin` to, not including, `end`.
Run part_of(const Run& run, std::size_t begin, std::size_t end) {
  Run part = run;
  part.first_line += begin - run.first_index;
  part.last_line -= run.first_index + run.count - end;
  part.first_index = begin;
  part.count = end - begin;
  return part;
}

void add_lines(std::vector<LineRun>& runs, LineRole role, const Run& lines) {
  if (runs.empty() || runs.back().role != role) {
    runs.push_back({role, lines.first_line, lines.last_line, 0});
  }
  runs.back().last_line = lines.last_line;
  runs.back().count += lines.count;
}

void add_ragged(const SampledTable& table, const Run& lines, Layout& layout) {
  for (std::size_t i = 0; i < lines.count; ++i) {
    if (table.field_count(lines.first_index + i) == table.num_variables()) continue;
    ++layout.ragged_lines;
    if (!layout.first_ragged_line) layout.first_ragged_line = lines.first_line + i;
  }
}

}  // namespace

void describe_lines(const SampledTable& table, const VariableNames& names, Layout& layout) {
  layout.lines.reserve(table.runs().size());
  for (const Run& run : table.runs()) {
    const std::size_t end = run.first_index + run.count;
    for (std::size_t index = run.first_index; index < end;) {
      const bool is_table = run.kind == SampledTable::Kind::text;
      const std::size_t stop = is_table ? end_of_role(index, end, table, names) : end;
      const Run lines = part_of(run, index, stop);
      const LineRole role = role_of(run.kind, index, table, names);
      add_lines(layout.lines, role, lines);
      if (role == LineRole::data) add_ragged(table, lines, layout);
      index = stop;
    }
  }
}

}  // namespace textio::standalone
