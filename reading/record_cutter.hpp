// RecordCutter: cuts the lines of a piece of text into records and cells, as a layout says.
//
//   const std::unique_ptr<RecordCutter> cutter = cutter_of(layout, settings);
//   const Records records = cutter->cut(lines);
//
// A layout that was judged is cut by the code of its reading, one of the cascade, or made up, by the engine's
// strategies. Lines that are blank, or rules of a frame, are in no record.
//
// Fixed widths count characters: a surrogate pair is one. The last column takes the rest of its line, so that
// nothing of the line is lost.
//
// Units      positions and lengths count code units.
// Ownership  records refer to the text of the lines.
// Errors     std::bad_alloc.
// Cost       linear in the text.
// Threads    one thread at a time.
#pragma once

#include <cstddef>
#include <memory>
#include <string_view>

#include <vltextstream/assessment/records.hpp>
#include <vltextstream/assessment/sampled_lines.hpp>
#include <vltextstream/layout/detect_layout.hpp>
#include <vltextstream/layout/layout.hpp>

namespace textio::reading {

class RecordCutter {
 public:
  virtual ~RecordCutter() = default;

  // `lines.has_more()` says that the text goes on after the last line, which is complete. Then the last record may
  // go on, too: see Records::is_open. The memory of `used`, records that nobody needs any more, may be used again.
  virtual assessment::Records cut(const assessment::SampledLines& lines,
                                  assessment::Records used = assessment::Records({})) = 0;

  // Whether `cut` looks at the characters of each line that SampledLines keeps, or asks which are comments.
  virtual bool needs_characters() const { return false; }

  // Whether a quote within a quoted cell is escaped by this besides being doubled; 0: it is not.
  virtual char16_t escape() const { return 0; }
  virtual char16_t quote() const { return u'"'; }
};

// `head` is the text of the first lines, as far as they were sampled.
std::unique_ptr<RecordCutter> cutter_of(const standalone::Layout& layout,
                                        const standalone::DetectSettings& settings,
                                        std::u16string_view head);

// The complete lines of `text`, and the last one without an ending if the text ends there. `with_characters`: also what
// SampledLines knows of their characters and comments.
assessment::SampledLines lines_of(std::u16string_view text, bool has_more,
                                  const assessment::LineEndings& endings, bool with_characters);

}  // namespace textio::reading
