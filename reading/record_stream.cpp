#include <vltextstream/reading/record_stream.hpp>

#include <algorithm>
#include <utility>

#include <fmt/format.h>

#include <vltextstream/assessment/cuts.hpp>
#include <vltextstream/layout/given_settings.hpp>

namespace textio::reading {

using assessment::Records;
using assessment::SampledLines;
using standalone::Layout;
using standalone::LineRole;
using standalone::LineRun;

namespace {

bool counts_for_footer(LineFate fate) {
  return fate == LineFate::data || fate == LineFate::comment;
}

}  // namespace

// The lines of the buffer, and the records from the first line of the table on.
struct RecordStream::Cut {
  SampledLines lines;
  std::size_t num_above;
  Records records;
};

RecordStream::RecordStream(TextInput input, const Layout& layout, const ReadSettings& settings)
    : input_(std::move(input)),
      layout_(layout),
      settings_(settings),
      endings_(standalone::line_endings_of(settings.detect)),
      wraps_lines_(layout.mode == standalone::LayoutMode::fixed_width &&
                   settings.detect.options.partial_field_rule ==
                       parser::partial_field_action::wrap),
      reads_blank_lines_(settings.detect.options.empty_line_rule ==
                         parser::empty_line_action::read) {
  find_top();
  find_footer();
  read(std::max(settings_.window, layout_.characters_sampled));
  // Of the text that was judged, the part that was read; without a last line that is not complete.
  const std::u16string_view head = text_.view().substr(0, layout_.characters_sampled);
  const SampledLines lines = lines_of(head, head.size() < text_.size(), endings_, false);
  std::size_t begin = 0;
  if (lines.size() > last_line_above_)
    begin = lines[static_cast<std::size_t>(last_line_above_)].begin;
  cutter_ = cutter_of(layout_, settings_.detect, head.substr(begin));
}

// Data begin with the first line of that role. A layout without lines says how many are above.
void RecordStream::find_top() {
  last_line_above_ = 0;
  for (const LineRun& run : layout_.lines) {
    if (run.role == LineRole::data) {
      last_line_above_ = run.first_line - 1;
      return;
    }
    const bool is_above =
        run.role == LineRole::header || run.role == LineRole::names || run.role == LineRole::units;
    if (is_above) last_line_above_ = run.last_line;
  }
  if (!layout_.lines.empty()) return;
  last_line_above_ = std::max<std::uint64_t>({layout_.header_lines, layout_.names_line.value_or(0),
                                              layout_.units_line.value_or(0),
                                              layout_.descriptions_line.value_or(0)});
}

void RecordStream::find_footer() {
  if (layout_.has_more_text) {
    if (layout_.tail) footer_lines_ = layout_.tail->footer_lines;
    return;
  }
  for (const LineRun& run : layout_.lines) {
    if (run.role != LineRole::footer) continue;
    first_footer_line_ = run.first_line;
    return;
  }
}

void RecordStream::read(std::size_t units) { input_.read(text_, units); }

LineFate RecordStream::fate_above(std::uint64_t line, std::u16string_view text) const {
  if (assessment::is_blank(text)) return LineFate::blank;
  if (line == layout_.names_line) return LineFate::names;
  if (line == layout_.units_line) return LineFate::units;
  if (line == layout_.descriptions_line) return LineFate::descriptions;
  const auto run = std::find_if(
      layout_.lines.begin(), layout_.lines.end(),
      [&](const LineRun& each) { return each.first_line <= line && line <= each.last_line; });
  if (run == layout_.lines.end()) return LineFate::preamble;
  if (run->role == LineRole::names) return LineFate::names;
  if (run->role == LineRole::units) return LineFate::units;
  if (run->role != LineRole::comment) return LineFate::preamble;
  return assessment::is_rule(text) ? LineFate::rule : LineFate::comment;
}

LineFate RecordStream::fate_of(std::uint64_t line, std::u16string_view text, bool is_record) const {
  if (assessment::is_blank(text)) return LineFate::blank;
  if (line >= first_footer_line_) return LineFate::footer;
  if (assessment::has_prefix(text, layout_.dialect.comment_prefix)) return LineFate::comment;
  return is_record ? LineFate::data : LineFate::rule;
}

void RecordStream::refuse_long_record() const {
  throw ReadError(
      fmt::format("line {}: a record has more than {} characters; the limit is longest_record",
                  next_line_, settings_.longest_record),
      next_line_, 0);
}

// A row that goes on over lines is not cut at the end of a block.
std::size_t RecordStream::lines_in_whole_rows(const SampledLines& lines, std::size_t first,
                                              std::size_t end) const {
  std::size_t width = 0;
  for (const std::size_t each : layout_.widths) width += each;
  std::size_t whole = first;
  std::size_t length = 0;
  for (std::size_t k = first; k < end; ++k) {
    const std::u16string_view line = lines.view(k);
    const bool is_record = fate_of(next_line_ + k, line, true) == LineFate::data;
    if (is_record) {
      length += line.size();
      if (length < width) continue;
    } else if (length > 0 && !(assessment::is_blank(line) && reads_blank_lines_)) {
      continue;
    }
    length = 0;
    whole = k + 1;
  }
  return whole;
}

// How many lines from the first on have a fate that no later text can change.
std::size_t RecordStream::lines_settled(const Cut& cut) const {
  const auto& [lines, num_above, records] = cut;
  std::size_t settled = lines.size();
  if (records.is_open) {
    settled = num_above;
    if (records.size() > 1) {
      const assessment::Record& last = records[records.size() - 1];
      settled = last.line + last.num_lines;
    }
  }
  if (input_.is_at_end()) return settled;
  // Lines that may turn out to be a footer stay.
  std::size_t kept = 0;
  while (settled > num_above && kept < footer_lines_) {
    --settled;
    if (!assessment::is_blank(lines.view(settled)) && !assessment::is_rule(lines.view(settled)))
      ++kept;
  }
  // Not within a record.
  for (std::size_t i = records.size(); i-- > 0;) {
    const assessment::Record& record = records[i];
    if (record.line + record.num_lines <= settled) break;
    settled = std::min<std::size_t>(settled, record.line);
  }
  if (wraps_lines_) settled = lines_in_whole_rows(lines, num_above, settled);
  return settled;
}

std::optional<Block> RecordStream::next(Block used) {
  while (!has_ended_) {
    if (std::optional<Block> block = cut_block(used)) return block;
    if (input_.is_at_end()) {
      has_ended_ = true;
      break;
    }
    if (text_.size() > settings_.longest_record) refuse_long_record();
    read(std::max(2 * text_.size(), settings_.window));
  }
  return std::nullopt;
}

// None if the buffer has no settled line.
std::optional<Block> RecordStream::cut_block(Block& used) {
  if (text_.size() < settings_.window) read(settings_.window);
  const bool has_more = !input_.is_at_end();
  SampledLines lines = lines_of(text_.view(), has_more, endings_, cutter_->needs_characters());
  std::size_t num_above = 0;
  if (next_line_ <= last_line_above_) {
    num_above = static_cast<std::size_t>(
        std::min<std::uint64_t>(lines.size(), last_line_above_ - next_line_ + 1));
    std::vector<std::size_t> above(num_above);
    for (std::size_t k = 0; k < num_above; ++k) above[k] = k;
    lines.hide(above);
  }
  Records records = cutter_->cut(lines, std::move(used.records));
  Cut cut{std::move(lines), num_above, std::move(records)};
  std::size_t settled = lines_settled(cut);
  if (settled == 0) return std::nullopt;

  Block block;
  block.groups = std::move(used.groups);
  block.groups.clear();
  std::size_t record = 0;
  for (std::size_t k = 0; k < settled;) {
    const bool is_above = k < num_above;
    const bool is_record =
        !is_above && record < cut.records.size() && cut.records[record].line == k;
    const std::u16string_view line = cut.lines.whole(k);
    LineGroup group;
    group.first_line = next_line_ + k;
    group.fate =
        is_above ? fate_above(group.first_line, line) : fate_of(group.first_line, line, is_record);
    group.num_lines = is_record ? cut.records[record].num_lines : 1;
    const std::size_t last = k + group.num_lines - 1;
    if (cut.lines[last].end - cut.lines[k].begin > settings_.longest_record) {
      // What precedes it is given first.
      if (k == 0) refuse_long_record();
      settled = k;
      break;
    }
    group.begin = static_cast<std::uint32_t>(cut.lines[k].begin);
    group.end = group.begin + static_cast<std::uint32_t>(line.size());
    if (last > k) group.end = static_cast<std::uint32_t>(cut.lines[last].end);
    const std::uint64_t bytes = input_.end_of_line(next_line_ + last);
    group.num_bytes = bytes - bytes_before_;
    bytes_before_ = bytes;
    if (is_record) {
      if (group.fate == LineFate::data) group.record = static_cast<std::uint32_t>(record);
      ++record;
    }
    block.groups.push_back(group);
    k = last + 1;
  }
  if (!has_more && settled == cut.lines.size()) mark_footer(block.groups);

  const std::size_t end = cut.lines[settled - 1].next;
  TextBuffer rest = std::move(used.text);
  rest.clear();
  rest.room_for(std::max(settings_.window + 65'552, text_.size() - end));
  rest.append(text_.view().substr(end));
  block.text = std::move(text_);
  block.records = std::move(cut.records);
  text_ = std::move(rest);
  next_line_ += settled;
  block.ill_formed_parts = input_.ill_formed_parts() - ill_formed_before_;
  ill_formed_before_ += block.ill_formed_parts;
  block.may_be_ill_formed = ill_formed_before_ > 0;
  has_ended_ = !has_more && text_.size() == 0;
  return block;
}

void RecordStream::mark_footer(std::vector<LineGroup>& groups) const {
  std::size_t found = 0;
  for (std::size_t i = groups.size(); i-- > 0 && found < footer_lines_;) {
    if (!counts_for_footer(groups[i].fate)) continue;
    groups[i].fate = LineFate::footer;
    groups[i].record = LineGroup::kNoRecord;
    found += groups[i].num_lines;
  }
}

}  // namespace textio::reading
