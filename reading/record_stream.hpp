// RecordStream: the lines of a whole text, block after block, each with its fate and its cells.
//
//   RecordStream stream(std::move(input), layout, settings);
//   while (std::optional<Block> block = stream.next()) use(block->rows);
//
// What is above the table is where the layout says. Below it, a line is blank, a comment, a rule of a frame, or
// the start of a record. A footer is found by its lines if the layout has seen the whole text, and otherwise by
// the number of the lines at the end that do not hold data.
//
// Units      lines of the file are numbered from 1; positions count code units of the block.
// Ownership  a block owns its text, which its records refer to: moving a block moves neither.
// Errors     those of TextInput; ReadError for a record that is too long.
// Cost       linear in the text. Memory for one window of text; more if a record, or the lines of a footer, need it.
// Threads    one thread at a time; blocks may go to other threads.
#pragma once

#include <cstddef>
#include <cstdint>
#include <limits>
#include <memory>
#include <optional>
#include <string_view>
#include <vector>

#include <vltextstream/assessment/records.hpp>
#include <vltextstream/layout/layout.hpp>
#include <vltextstream/reading/account.hpp>
#include <vltextstream/reading/record_cutter.hpp>
#include <vltextstream/reading/table_reader.hpp>
#include <vltextstream/reading/text_input.hpp>

namespace textio::reading {

// One record, or consecutive lines without one.
struct LineGroup {
  static constexpr std::uint32_t kNoRecord = std::numeric_limits<std::uint32_t>::max();

  LineFate fate = LineFate::data;
  std::uint32_t record = kNoRecord;  // its number in the records of the block
  std::uint32_t num_lines = 1;
  std::uint32_t begin = 0;  // in the text of the block, without the last line ending
  std::uint32_t end = 0;
  std::uint64_t first_line = 0;
  std::uint64_t num_bytes = 0;
};

struct Block {
  TextBuffer text;
  assessment::Records records{std::u16string_view()};
  std::vector<LineGroup> groups;

  // Ill-formed parts of the file that were read with this block. Those of its last lines may be in the next.
  std::size_t ill_formed_parts = 0;

  // Whether there were any up to the end of the block.
  bool may_be_ill_formed = false;

  std::u16string_view view(const LineGroup& group) const {
    return text.view().substr(group.begin, group.end - group.begin);
  }
};

class RecordStream {
 public:
  // `layout` and `settings` must outlive the stream.
  RecordStream(TextInput input, const standalone::Layout& layout, const ReadSettings& settings);

  // The next lines, at least one; none at the end of the text. The memory of `used`, a block that nobody needs any
  // more, is used again.
  std::optional<Block> next(Block used = {});

  const RecordCutter& cutter() const { return *cutter_; }

 private:
  struct Cut;

  void find_top();
  void find_footer();
  void read(std::size_t units);
  std::optional<Block> cut_block(Block& used);
  LineFate fate_above(std::uint64_t line, std::u16string_view text) const;
  LineFate fate_of(std::uint64_t line, std::u16string_view text, bool is_record) const;
  std::size_t lines_settled(const Cut& cut) const;
  std::size_t lines_in_whole_rows(const assessment::SampledLines& lines, std::size_t first,
                                  std::size_t end) const;
  void mark_footer(std::vector<LineGroup>& groups) const;
  void refuse_long_record() const;

  TextInput input_;
  const standalone::Layout& layout_;
  const ReadSettings& settings_;
  const assessment::LineEndings endings_;
  const bool wraps_lines_;
  const bool reads_blank_lines_;  // as rows
  std::unique_ptr<RecordCutter> cutter_;

  TextBuffer text_;              // what follows the last block
  std::uint64_t next_line_ = 1;  // the number of its first line
  std::uint64_t bytes_before_ = 0;
  std::size_t ill_formed_before_ = 0;
  bool has_ended_ = false;

  std::uint64_t last_line_above_ = 0;
  std::uint64_t first_footer_line_ = std::numeric_limits<std::uint64_t>::max();
  std::size_t footer_lines_ =
      0;  // at the end of the text; 0: none, or first_footer_line_ says where
};

}  // namespace textio::reading
