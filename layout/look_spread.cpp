// Each place is a part of the text from the first line that begins in it to the last that ends in it, and is cut as
// the table is. Of a file that is not loaded, a place is found by its byte, and a line in it by decoding the part up
// to the line once more.
#include <vltextstream/layout/look_spread.hpp>

#include <algorithm>
#include <cmath>
#include <functional>
#include <limits>
#include <utility>
#include <vector>

#include <vltextstream/assessment/cuts.hpp>
#include <vltextstream/assessment/sampled_lines.hpp>
#include <vltextstream/layout/column_check.hpp>
#include <vltextstream/layout/given_settings.hpp>
#include <vltextstream/layout/tally.hpp>

namespace textio::standalone {
namespace {

using assessment::Records;
using assessment::SampledLines;
using assessment::TableProfile;
using View = std::u16string_view;

constexpr std::size_t kLongestExample = 60;
constexpr std::size_t kLongestLine = 200;

// Lines of a quoted cell that a place may begin in.
constexpr std::size_t kMostCutRecords = 50;

// A read from here on is one of whole blocks of a C stream, and of whole characters of every width.
constexpr std::uint64_t kBlockBytes = 8192;
constexpr std::uint64_t kMostBytesOfCharacter = 4;

// --- where lines are ---------------------------------------------------------------------------

// Where a line is in the text, given the number of characters before it in its part.
using FindPlace = std::function<TextPlace(std::size_t units)>;

std::size_t lines_looked_at(const Layout& layout) {
  return layout.lines.empty() ? 0 : layout.lines.back().last_line;
}

std::size_t count_lines(View text) {
  std::size_t count = 0;
  for (std::size_t i = 0; i < text.size(); ++i) {
    const bool is_first_of_two = text[i] == u'\r' && text.substr(i + 1, 1) == u"\n";
    count += (text[i] == u'\n' || text[i] == u'\r') && !is_first_of_two;
  }
  return count;
}

// --- what is in a part -------------------------------------------------------------------------

// Up to the last line ending.
View whole_lines(View text) {
  const std::size_t last = text.find_last_of(u"\r\n");
  return text.substr(0, last == View::npos ? 0 : last + 1);
}

struct Part {
  bool follows_sample = false;
  bool ends = false;  // with the whole text
};

class SpreadSearch {
 public:
  SpreadSearch(const TableProfile& profile, const DetectSettings& settings, Layout& layout)
      : profile_(profile),
        settings_(settings),
        layout_(layout),
        look_(layout.spread.emplace()),
        found_(layout.columns.size()) {
    checks_.reserve(layout.columns.size());
    for (const ColumnFacts& facts : layout.columns)
      checks_.emplace_back(facts, layout.dialect, settings);
    for (const MissingWord& each : layout.dialect.missing) known_missing_.push_back(each.word);
    std::sort(known_missing_.begin(), known_missing_.end());
  }

  void refuse(const char* reason) { look_.reason = reason; }

  // `text` begins at a line; one that does not end here is left out unless the part has the end of the text.
  void look_at(View text, Part part, const FindPlace& find_place) {
    const bool ends = part.ends;
    if (!ends) text = whole_lines(text);
    ++look_.places;
    look_.characters += text.size();
    const assessment::Given given = given_of(settings_);
    const assessment::LineRules rules{given.line_endings, 0, given.comment_prefix};
    SampledLines lines = sample_lines(text, std::numeric_limits<std::size_t>::max(), rules);
    if (!ends) lines = with_more(lines);
    const Records records = records_of(lines);
    const std::size_t footer = ends ? footer_begin(text, part.follows_sample) : text.size();
    const std::size_t first = part.follows_sample ? 0 : first_whole(lines, records);
    for (std::size_t i = first; i < records.size(); ++i) {
      const std::size_t begin = lines[records[i].line].begin;
      if (begin < footer) add_record(lines, records, i, [&] { return find_place(begin); });
    }
  }

  void count_bytes(std::size_t bytes) { look_.bytes += bytes; }

  // Of the places whose byte alone is known.
  void estimate_lines(double bytes_of_line) {
    const auto estimate = [bytes_of_line](TextPlace& place) {
      const double before = static_cast<double>(place.byte.value_or(0)) / bytes_of_line;
      place.line = static_cast<std::uint64_t>(std::llround(before)) + 1;
    };
    estimate(look_.ragged_place);
    for (std::optional<Contradiction>& each : found_) {
      if (each) estimate(each->place);
    }
  }

  void finish() {
    for (std::optional<Contradiction>& each : found_) {
      if (each) look_.contradictions.push_back(std::move(*each));
    }
    for (auto& [word, count] : missing_.take()) look_.missing.push_back({std::move(word), count});
  }

 private:
  static SampledLines with_more(const SampledLines& lines) {
    std::vector<assessment::TextLine> kept;
    kept.reserve(lines.size());
    for (std::size_t k = 0; k < lines.size(); ++k) kept.push_back(lines[k]);
    return {lines.text(), std::move(kept), true};
  }

  Records records_of(const SampledLines& lines) const {
    return profile_.reading.widths.empty() ? cut_part(lines, profile_)
                                           : cut(lines, profile_.reading);
  }

  // The record after the end of a quoted cell in which the part begins. What is before it has a quote that is not
  // opened, perhaps after lines without any; records have a quote for each other one.
  std::size_t first_whole(const SampledLines& lines, const Records& records) const {
    if (profile_.reading.quote == 0) return 0;
    for (std::size_t i = 0; i < std::min(records.size(), kMostCutRecords); ++i) {
      std::size_t quotes = 0;
      for (std::size_t k = 0; k < records[i].num_lines; ++k) {
        const View line = lines.view(records[i].line + k);
        quotes +=
            static_cast<std::size_t>(std::count(line.begin(), line.end(), profile_.reading.quote));
      }
      if (quotes % 2 != 0) return i + 1;
    }
    return 0;
  }

  // Only the assessment knows what is a footer.
  std::size_t footer_begin(View text, bool follows_sample) const {
    if (!layout_.confidence) return text.size();
    const assessment::EndFooter footer = footer_at_end(text, profile_, follows_sample);
    if (footer.lines.empty()) return text.size();
    return static_cast<std::size_t>(footer.lines.front().data() - text.data());
  }

  template <typename Find>
  void add_record(const SampledLines& lines, const Records& records, std::size_t index,
                  Find find_place) {
    const View line = lines.view(records[index].line);
    if (assessment::is_rule(line) || is_comment(line)) return;
    const auto cells = records.cells(index);
    if (cells.size() != profile_.columns.size()) {
      if (look_.ragged_records++ > 0) return;
      look_.ragged_cells = cells.size();
      look_.ragged_example = line.substr(0, kLongestLine);
      look_.ragged_place = find_place();
      return;
    }
    ++look_.records;
    for (std::size_t c = 0; c < checks_.size(); ++c) {
      const View text = assessment::trimmed(records.view(cells[c]));
      const CellJudgement judgement = checks_[c].judge(text);
      if (judgement == CellJudgement::missing) add_missing(text);
      if (judgement != CellJudgement::contradicts) continue;
      if (!found_[c]) {
        found_[c] = Contradiction{c, layout_.columns[c].kind, 0,
                                  std::u16string(text.substr(0, kLongestExample)), find_place()};
      }
      ++found_[c]->count;
    }
  }

  bool is_comment(View line) const {
    return assessment::has_prefix(line, layout_.dialect.comment_prefix);
  }

  void add_missing(View word) {
    if (!std::binary_search(known_missing_.begin(), known_missing_.end(), word)) missing_.add(word);
  }

  const TableProfile& profile_;
  const DetectSettings& settings_;
  const Layout& layout_;
  SpreadLook& look_;
  std::vector<ColumnCheck> checks_;
  std::vector<std::optional<Contradiction>> found_;  // by column
  std::vector<std::u16string> known_missing_;        // sorted
  Tally missing_;
};

// --- a text that is loaded ---------------------------------------------------------------------

// The number of bytes that a number of characters take; asked for in ascending order.
using FindByte = std::function<std::optional<std::uint64_t>(std::size_t units)>;

void look_at_loaded(View text, const FindByte& byte_of, SpreadSearch& search,
                    const Layout& layout) {
  const std::size_t sampled = layout.characters_sampled;
  std::size_t counted = sampled;  // its line is `line`
  std::size_t line = lines_looked_at(layout) + 1;
  const auto look_from = [&](std::size_t begin, std::size_t units) {
    View part = text.substr(begin, units);
    const bool ends = begin + part.size() == text.size();
    if (begin > sampled) part = assessment::from_next_line(part);
    const auto first = static_cast<std::size_t>(part.data() - text.data());
    search.look_at(part, {begin == sampled, ends}, [&](std::size_t at) {
      line += count_lines(text.substr(counted, first + at - counted));
      counted = first + at;
      return TextPlace{byte_of(counted), line, true};
    });
  };
  const std::size_t rest = text.size() - sampled;
  if (rest <= (kSpreadPlaces + 1) * kSpreadUnits) return look_from(sampled, rest);
  for (std::size_t i = 1; i <= kSpreadPlaces; ++i) {
    look_from(sampled + rest / (kSpreadPlaces + 1) * i, kSpreadUnits);
  }
  look_from(text.size() - kSpreadUnits, kSpreadUnits);
}

// --- a file ------------------------------------------------------------------------------------

// Counts on from the last byte that it found, so that all together cost one pass over the text.
class ByteCounter {
 public:
  ByteCounter(InputText& input, std::uint64_t begin) : input_(input), byte_(begin) {}

  // The position after `units` characters, which must not be fewer than in the last call.
  std::optional<std::uint64_t> after(std::size_t units) {
    if (units > units_ && byte_) byte_ = input_.byte_after(*byte_, units - units_);
    units_ = units;
    return byte_;
  }

 private:
  InputText& input_;
  std::optional<std::uint64_t> byte_;
  std::size_t units_ = 0;
};

class FilePlaces {
 public:
  FilePlaces(InputText& input, std::uint64_t size, std::uint64_t sampled, const Layout& layout,
             SpreadSearch& search)
      : input_(input),
        size_(size),
        next_(sampled),
        lines_(lines_looked_at(layout)),
        bytes_(sampled),
        search_(search) {}

  // Whether all places could be read.
  bool look() {
    const std::uint64_t sampled = next_;
    bool is_complete = true;
    for (std::size_t i = 1; i <= kSpreadPlaces && is_complete; ++i) {
      const std::uint64_t about = sampled + (size_ - sampled) / (kSpreadPlaces + 1) * i;
      is_complete = look_at(about / kBlockBytes * kBlockBytes);
    }
    is_complete = is_complete && look_at_end();
    search_.estimate_lines(static_cast<double>(bytes_) / static_cast<double>(lines_));
    return is_complete;
  }

 private:
  // One that has been looked at, or is looked at as part of the end, counts as read.
  bool look_at(std::uint64_t begin) {
    if (begin < next_ || begin + kMostBytesOfCharacter * kSpreadUnits > size_) return true;
    const auto part = input_.part_from(begin, kSpreadUnits);
    if (part) look_at_part(begin, *part, false);
    return part.has_value();
  }

  bool look_at_end() {
    const std::uint64_t about = size_ - std::min<std::uint64_t>(size_, kSpreadUnits);
    std::uint64_t begin = (about + kBlockBytes - 1) / kBlockBytes * kBlockBytes;
    if (begin < next_)
      begin = (next_ + kMostBytesOfCharacter - 1) / kMostBytesOfCharacter * kMostBytesOfCharacter;
    if (begin >= size_) return true;
    const auto count = static_cast<std::size_t>(size_ - begin);
    const auto text = input_.end_from(begin, count);
    if (text) look_at_part(begin, {*text, count}, true);
    return text.has_value();
  }

  void look_at_part(std::uint64_t begin, const InputText::Part& part, bool ends) {
    next_ = begin + part.bytes;
    bytes_ += part.bytes;
    lines_ += count_lines(part.text);
    search_.count_bytes(part.bytes);
    const View text = assessment::from_next_line(part.text);
    const std::size_t cut_off = part.text.size() - text.size();
    ByteCounter counter(input_, begin);
    search_.look_at(text, {false, ends}, [&](std::size_t at) {
      const std::optional<std::uint64_t> byte = counter.after(cut_off + at);
      return TextPlace{byte ? byte : begin, 0, false};
    });
  }

  InputText& input_;
  std::uint64_t size_;
  std::uint64_t next_;   // the end of what has been looked at
  std::size_t lines_;    // of the sample and the places
  std::uint64_t bytes_;  // that these take
  SpreadSearch& search_;
};

constexpr const char* kNothingMore = "the sample has the whole text";
constexpr const char* kNoTable = "the text is no table";
constexpr const char* kNoPlaces =
    "what is after the sample cannot be reached without reading or unpacking all before it";
constexpr const char* kTooManyBytes = "it would take more bytes than may be read";
constexpr const char* kUnreadable = "a place could not be read";
constexpr const char* kNoColumns = "the columns were not described";

// What keeps a detection from looking; null: nothing.
const char* problem_with(const Layout& layout) {
  if (!layout.has_more_text || layout.characters_sampled == 0) return kNothingMore;
  if (!layout.no_table.empty()) return kNoTable;
  return layout.columns.empty() ? kNoColumns : nullptr;
}

}  // namespace

TableProfile profile_of(const Layout& layout) {
  TableProfile profile;
  profile.columns.resize(layout.num_variables);
  assessment::Reading& reading = profile.reading;
  switch (layout.mode) {
    case LayoutMode::delimited:
      reading.form = assessment::Form::delimited;
      reading.quote = u'"';
      reading.delimiter = layout.delimiters.front();
      reading.other_delimiters.assign(layout.delimiters.begin() + 1, layout.delimiters.end());
      break;
    case LayoutMode::fixed_width:
      reading.form = assessment::Form::gaps;
      reading.widths = layout.widths;
      break;
    case LayoutMode::space_aligned:
      reading.form = assessment::Form::runs;
      break;
    default:
      reading.form = assessment::Form::one;
      break;
  }
  return profile;
}

void look_spread(View text, const TableProfile& profile, const DetectSettings& settings,
                 Layout& layout) {
  SpreadSearch search(profile, settings, layout);
  if (const char* const problem = problem_with(layout)) return search.refuse(problem);
  look_at_loaded(
      text, [](std::size_t) { return std::nullopt; }, search, layout);
  search.finish();
}

void look_spread(InputText& input, const TableProfile& profile, const DetectSettings& settings,
                 Layout& layout) {
  SpreadSearch search(profile, settings, layout);
  if (const char* const problem = problem_with(layout)) return search.refuse(problem);
  const View loaded = input.loaded();
  const std::optional<std::uint64_t> size = input.num_bytes();
  if (input.is_all_loaded()) {
    ByteCounter counter(input, 0);
    const auto byte_of = [&](std::size_t units) {
      return size ? counter.after(units) : std::nullopt;
    };
    look_at_loaded(loaded, byte_of, search, layout);
    return search.finish();
  }
  if (!size || loaded.empty() || *size <= input.bytes_loaded()) return search.refuse(kNoPlaces);
  constexpr std::uint64_t kMost = (kSpreadPlaces + 1) * kMostBytesOfCharacter * kSpreadUnits;
  const std::uint64_t read = input.bytes_loaded() + (layout.tail ? layout.tail->bytes : 0);
  if (kMost > settings.max_bytes - std::min(read, settings.max_bytes))
    return search.refuse(kTooManyBytes);
  const auto sampled = input.byte_after(0, layout.characters_sampled);
  const bool is_readable =
      sampled && *sampled < *size && FilePlaces(input, *size, *sampled, layout, search).look();
  search.finish();
  if (!is_readable) search.refuse(kUnreadable);
}

}  // namespace textio::standalone
