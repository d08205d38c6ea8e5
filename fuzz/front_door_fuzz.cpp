// detect_layout of a text and of a file, with any settings: what the layout promises about itself
// holds, tracing changes nothing, and a file gives the same answer as its text. detect_bytes gives
// the same answer as detect_layout of a file with these bytes.
#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

#include <sys/mman.h>
#include <unistd.h>

#include <vltextstream/detect.hpp>
#include <vltextstream/layout/detect_layout.hpp>
#include <vltextstream/standalone/decoding/utf_text.hpp>
#include "differential/comparison.hpp"
#include "fuzz/check.hpp"
#include "fuzz/choices.hpp"
#include "fuzz/layout_text.hpp"

namespace textio::fuzz {
namespace {

using standalone::DetectSettings;
using standalone::EncodingFound;
using standalone::Layout;
using standalone::LayoutMode;
using standalone::LineRole;
using standalone::LineRun;
using standalone::NamesSource;

const char* const kEncodings[] = {"UTF-8",     "windows-1252", "UTF-16",      "UTF-16LE",
                                  "Shift_JIS", "GB18030",      "ISO-2022-JP", "no such encoding"};

struct Settings {
  explicit Settings(const TextInput& input) {
    Input more = input.more();
    settings.options = differential::library_options(input.choices());
    settings.num_lines = input.choices().num_lines;
    const std::size_t given = more.below(8);
    const std::size_t encoding = more.below(24);
    if (encoding >= 16) settings.encoding = kEncodings[encoding - 16];
    settings.trace = more.flag();
    is_read_as_file = more.flag();
    if (given == 6) {
      settings.options.parser_type = parser::parser_kind::fixedwidth;
      for (std::size_t i = more.below(4); i > 0; --i) {
        settings.options.variable_widths.push_back(more.count());
      }
    } else if (given == 7) {
      settings.options.detect_delimiters = false;
      settings.options.delimiters = more.short_texts();
    }
    settings.look_at_end = !more.flag();
  }

  DetectSettings settings;
  bool is_read_as_file;
};

// ---------------------------------------------------------------------------------------------
// What a layout promises

void check_separators(const Layout& layout) {
  const bool has_widths = !layout.widths.empty();
  const bool has_delimiters = !layout.delimiters.empty();
  require(has_widths == (layout.mode == LayoutMode::fixed_width), "widths are for fixed width");
  if (layout.mode == LayoutMode::space_aligned) {
    require(layout.delimiters == Texts{u" ", u"\t"}, "space-aligned: space and tab");
  } else if (layout.mode == LayoutMode::delimited) {
    const bool is_given = layout.selection_end == detection::SelectionEnd::given;
    require(has_delimiters || is_given, "delimited: the delimiters");
  } else {
    require(!has_delimiters, "no delimiters otherwise");
  }
}

void check_names(const Layout& layout) {
  const bool has_names = layout.names_source == NamesSource::last_header_line ||
                         layout.names_source == NamesSource::line_after_header;
  require(layout.names_line.has_value() == has_names, "names that are found are on a line");
  require_equal<std::size_t>("names", layout.names.size(), has_names ? layout.num_variables : 0);
  // The assessment also takes units from the names.
  const bool has_units = layout.units_line || (layout.confidence && !layout.units.empty());
  require_equal<std::size_t>("units", layout.units.size(), has_units ? layout.num_variables : 0);
  require(
      layout.units_line || std::any_of(layout.units.begin(), layout.units.end(),
                                       [](const auto& unit) { return !unit.empty(); }) == has_units,
      "units in names are of some name");
  require(!layout.units_line || has_names, "units are next to names");
  require(layout.units_line != layout.names_line || !has_names, "units have a line of their own");
  require(!layout.names_reason.empty(), "a reason is given");
  require_equal("classes", layout.classes.size(), layout.num_variables);
}

bool is_of_line(const LineRun& run, const std::optional<std::size_t>& line) {
  return run.count == 1 && line == run.first_line;
}

// Groups of columns have names in a row of their own, above the others.
bool holds_names(const LineRun& run, const Layout& layout) {
  const bool is_in_run = layout.names_line && run.first_line <= *layout.names_line &&
                         *layout.names_line <= run.last_line;
  return is_of_line(run, layout.names_line) || (is_in_run && layout.confidence && run.count == 2);
}

void check_runs(const Layout& layout) {
  std::size_t sampled = 0;
  std::size_t data = 0;
  std::size_t next_line = 1;
  for (std::size_t i = 0; i < layout.lines.size(); ++i) {
    const LineRun& run = layout.lines[i];
    require_equal("first line of a run", run.first_line, next_line);
    require(run.first_line <= run.last_line && run.count > 0, "a run has lines");
    require(i == 0 || layout.lines[i - 1].role != run.role, "runs side by side have other roles");
    require(run.role != LineRole::names || holds_names(run, layout), "line of the names");
    require(run.role != LineRole::units || is_of_line(run, layout.units_line), "line of the units");
    next_line = run.last_line + 1;
    if (run.role != LineRole::comment) sampled += run.count;
    if (run.role == LineRole::data) data += run.count;
  }
  require_equal("lines in runs that are no comments", sampled, layout.lines_sampled);
  require(layout.ragged_lines <= data, "ragged lines are lines of data");
  require(layout.first_ragged_line.has_value() == (layout.ragged_lines > 0), "first ragged line");
  const auto holds_first_ragged = [&](const LineRun& run) {
    return run.role == LineRole::data && run.first_line <= *layout.first_ragged_line &&
           *layout.first_ragged_line <= run.last_line;
  };
  require(!layout.first_ragged_line ||
              std::any_of(layout.lines.begin(), layout.lines.end(), holds_first_ragged),
          "the first ragged line is among the data");
}

void check_end(const Layout& layout, const DetectSettings& settings) {
  const bool by_a_filter = layout.selection_end == detection::SelectionEnd::single_survivor;
  require(layout.decided_by.empty() != by_a_filter, "a filter decided");
  require(layout.trace.has_value() == settings.trace, "a trace on request");
  const bool finds_header = settings.options.detect_header_lines;
  require(!finds_header || layout.header_lines <= layout.lines_sampled,
          "header lines that are found are sampled lines");
  const bool has_ending = layout.line_ending && !layout.line_ending->empty();
  require(!layout.line_ending || has_ending, "a line ending has characters");
}

// A footer is below the data, and what is said about the rest of the text fits its length.
void check_rest(const Layout& layout, const DetectSettings& settings) {
  bool is_below = false;
  for (const LineRun& run : layout.lines) {
    is_below = is_below || run.role == LineRole::footer;
    require(!is_below || run.role != LineRole::data, "no data below a footer");
  }
  require(!is_below || (layout.confidence && !layout.has_more_text), "a footer at the end");
  const std::size_t looked_at = layout.lines.empty() ? 0 : layout.lines.back().last_line;
  if (layout.lines_estimated) {
    require(layout.has_more_text ? *layout.lines_estimated > looked_at
                                 : *layout.lines_estimated == looked_at,
            "as many lines as there are, or more than were looked at");
  }
  if (!layout.tail) return;
  const standalone::TailLook& tail = *layout.tail;
  require(settings.look_at_end && layout.has_more_text && layout.no_table.empty(),
          "a look at an end beyond the sample");
  require_equal("texts of the footer", tail.footer.size(),
                std::min(tail.footer_lines, standalone::TailLook::kMostTexts));
  for (const std::u16string& text : tail.footer) {
    require(text.size() <= standalone::TailLook::kLongestText, "texts are cut");
  }
}

void check_layout(const Layout& layout, const DetectSettings& settings) {
  check_separators(layout);
  check_names(layout);
  check_runs(layout);
  check_end(layout, settings);
  check_rest(layout, settings);
}

// ---------------------------------------------------------------------------------------------
// Texts and files

// Empty if the settings were refused, which can happen for widths of 0 and for encodings.
template <typename Source>
std::optional<Layout> layout_of(const Source& source, const DetectSettings& settings) {
  try {
    Layout layout = standalone::detect_layout(source, settings);
    check_layout(layout, settings);
    return layout;
  } catch (const std::invalid_argument&) {
    const auto& widths = settings.options.variable_widths;
    const bool has_zero = std::find(widths.begin(), widths.end(), 0U) != widths.end();
    require(has_zero || settings.encoding == kEncodings[7], "good settings are refused");
    return std::nullopt;
  }
}

// A file in memory, with a path.
class FileInMemory {
 public:
  FileInMemory()
      : file_(::memfd_create("text", 0)), path_("/proc/self/fd/" + std::to_string(file_)) {
    require(file_ >= 0, "there is memory for a file");
  }
  const std::string& holding(std::string_view bytes) const {
    const auto size = static_cast<ssize_t>(bytes.size());
    require(::ftruncate(file_, 0) == 0 && ::pwrite(file_, bytes.data(), bytes.size(), 0) == size,
            "a file in memory can be written");
    return path_;
  }

 private:
  int file_;
  std::string path_;
};

void check_tracing(std::u16string_view text, DetectSettings settings) {
  settings.trace = true;
  std::optional<Layout> traced = layout_of(text, settings);
  settings.trace = false;
  const std::optional<Layout> untraced = layout_of(text, settings);
  require(traced.has_value() == untraced.has_value(), "tracing refuses nothing");
  if (!traced) return;
  traced->trace.reset();
  traced->considered.clear();
  require_same_lines("layout without a trace", describe(*untraced), describe(*traced));
}

void check_encoding(const Layout& layout, const DetectSettings& settings) {
  const bool is_given = settings.encoding.has_value();
  require(!layout.encoding.empty(), "a file has an encoding");
  require((layout.encoding_found == EncodingFound::given) == is_given, "a given encoding is used");
  require(layout.encoding_confidence >= 0.0 && layout.encoding_confidence <= 1.0,
          "confidence lies between 0 and 1");
  require(!is_given || layout.encoding_confidence == 1.0, "a given encoding is sure");
}

// The layout of a file as far as a detection shows it; the error if the file cannot be read.
std::string front_of(const std::string& path) {
  try {
    const Layout layout = standalone::detect_layout(path);
    return to_string(dialect_of(layout)) + ' ' + std::to_string(layout.num_variables) + ' ' +
           std::to_string(layout.header_lines) + ' ' + layout.names_reason + ' ' + layout.encoding +
           ' ' + std::to_string(layout.lines_sampled);
  } catch (const standalone::FileError&) {
    return "not read";
  }
}

std::string front_of(std::string_view bytes) {
  try {
    const Detection found = detect_bytes(bytes);
    return to_string(found.dialect) + ' ' + std::to_string(found.columns.size()) + ' ' +
           std::to_string(found.header_lines) + ' ' + found.names_reason + ' ' + found.encoding +
           ' ' + std::to_string(found.lines_sampled);
  } catch (const standalone::FileError&) {
    return "not read";
  }
}

// The same bytes as well-formed UTF-8, read from a file and as a text.
void check_file(std::string_view bytes, const DetectSettings& settings) {
  static const FileInMemory file;
  const std::optional<Layout> found = layout_of(file.holding(bytes), settings);
  if (found) check_encoding(*found, settings);
  require_same_lines("detection of the bytes", front_of(bytes), front_of(file.holding(bytes)));
  DetectSettings utf8 = settings;
  utf8.encoding = "UTF-8";
  const std::optional<Layout> of_file = layout_of(file.holding(bytes), utf8);
  const bool has_mark = bytes.substr(0, 3) == "\xEF\xBB\xBF";
  if (!of_file || of_file->ill_formed_parts > 0 || has_mark) return;
  const std::u16string text = standalone::from_utf8(bytes);
  const std::optional<Layout> of_text = layout_of(std::u16string_view(text), utf8);
  require(of_text.has_value(), "a text is taken like its file");
  require_same_lines("layout of the text", describe(*of_text), describe(*of_file));
}

}  // namespace
}  // namespace textio::fuzz

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using namespace textio::fuzz;
  const TextInput input(data, size);
  const Settings drawn(input);
  if (drawn.is_read_as_file) {
    check_file(input.bytes(), drawn.settings);
  } else {
    check_tracing(input.text(), drawn.settings);
  }
  return 0;
}
