// One function for each struct lists its members, for writing as well as for reading. It takes them by a structured
// binding: a struct with another number of members does not compile.
#include "python/cpp/layout_state.hpp"

#include <bit>
#include <concepts>
#include <cstdint>
#include <optional>
#include <stdexcept>
#include <type_traits>
#include <vector>

#include <vltextstream/version.hpp>

namespace textio::python {
namespace {

using standalone::Layout;

template <typename T, typename Struct>
concept Is = std::same_as<std::remove_const_t<T>, Struct>;

// --- the members of each struct ------------------------------------------------------------------

template <typename Archive, Is<standalone::EvidenceItem> T>
void visit(Archive& archive, T& item) {
  auto& [name, worth, sentence] = item;
  archive(name, worth, sentence);
}

template <typename Archive, Is<standalone::MissingWord> T>
void visit(Archive& archive, T& missing) {
  auto& [word, count] = missing;
  archive(word, count);
}

template <typename Archive, Is<standalone::DateFacts> T>
void visit(Archive& archive, T& date) {
  auto& [strptime, icu, language, zone, order] = date;
  archive(strptime, icu, language, zone, order);
}

template <typename Archive, Is<standalone::ColumnFacts> T>
void visit(Archive& archive, T& column) {
  auto& [kind, num_cells, num_empty, num_missing, num_fitting, first_misfit_line, missing,
         least_width, most_width, decimal, grouping, are_marks_certain, currency,
         is_currency_before, true_word, false_word, date, examples] = column;
  archive(kind, num_cells, num_empty, num_missing, num_fitting, first_misfit_line, missing,
          least_width, most_width, decimal, grouping, are_marks_certain, currency,
          is_currency_before, true_word, false_word, date, examples);
}

template <typename Archive, Is<standalone::LineEndingCount> T>
void visit(Archive& archive, T& each) {
  auto& [ending, count] = each;
  archive(ending, count);
}

template <typename Archive, Is<standalone::TableDialect> T>
void visit(Archive& archive, T& dialect) {
  auto& [delimiters, widths, quote, escape, is_escape_seen, blanks_after_delimiters, comment_prefix,
         decimal, grouping, missing, has_byte_order_mark, line_endings] = dialect;
  archive(delimiters, widths, quote, escape, is_escape_seen, blanks_after_delimiters,
          comment_prefix, decimal, grouping, missing, has_byte_order_mark, line_endings);
}

template <typename Archive, Is<standalone::LineRun> T>
void visit(Archive& archive, T& run) {
  auto& [role, first_line, last_line, count] = run;
  archive(role, first_line, last_line, count);
}

template <typename Archive, Is<standalone::ConsideredReading> T>
void visit(Archive& archive, T& reading) {
  auto& [mode, delimiter, probability, is_table] = reading;
  archive(mode, delimiter, probability, is_table);
}

template <typename Archive, Is<standalone::Rival> T>
void visit(Archive& archive, T& rival) {
  auto& [mode, delimiters, widths, quote, num_variables, probability, reason, no_table] = rival;
  archive(mode, delimiters, widths, quote, num_variables, probability, reason, no_table);
}

template <typename Archive, Is<standalone::CascadeAnswer> T>
void visit(Archive& archive, T& cascade) {
  auto& [mode, delimiters, widths, header_lines, num_variables, agrees] = cascade;
  archive(mode, delimiters, widths, header_lines, num_variables, agrees);
}

template <typename Archive, Is<standalone::TailLook> T>
void visit(Archive& archive, T& tail) {
  auto& [footer_lines, footer, characters, bytes] = tail;
  archive(footer_lines, footer, characters, bytes);
}

template <typename Archive, Is<standalone::TextPlace> T>
void visit(Archive& archive, T& place) {
  auto& [byte, line, is_line_exact] = place;
  archive(byte, line, is_line_exact);
}

template <typename Archive, Is<standalone::Contradiction> T>
void visit(Archive& archive, T& each) {
  auto& [column, expected, count, example, place] = each;
  archive(column, expected, count, example, place);
}

template <typename Archive, Is<standalone::SpreadLook> T>
void visit(Archive& archive, T& look) {
  auto& [reason, places, records, characters, bytes, contradictions, ragged_records, ragged_cells,
         ragged_example, ragged_place, missing] = look;
  archive(reason, places, records, characters, bytes, contradictions, ragged_records, ragged_cells,
          ragged_example, ragged_place, missing);
}

template <typename Archive, Is<Dialect> T>
void visit(Archive& archive, T& dialect) {
  auto& [mode, delimiters, widths] = dialect;
  archive(mode, delimiters, widths);
}

template <typename Archive, Is<StrategyValuation> T>
void visit(Archive& archive, T& valuation) {
  auto& [total_variation, data_variation, num_lines, modal_field_count, num_variables,
         typed_columns, date_columns, numeric_columns, datetime_columns, priors_rank] = valuation;
  archive(total_variation, data_variation, num_lines, modal_field_count, num_variables,
          typed_columns, date_columns, numeric_columns, datetime_columns, priors_rank);
}

template <typename Archive, Is<detection::CandidateTrace> T>
void visit(Archive& archive, T& candidate) {
  auto& [dialect, header_lines, valuation, fate] = candidate;
  archive(dialect, header_lines, valuation, fate);
}

template <typename Archive, Is<detection::FilterTrace> T>
void visit(Archive& archive, T& filter) {
  auto& [name, survivors] = filter;
  archive(name, survivors);
}

template <typename Archive, Is<detection::SelectionTrace> T>
void visit(Archive& archive, T& trace) {
  auto& [candidate_chars, candidates, filters, end, reached_end] = trace;
  archive(candidate_chars, candidates, filters, end, reached_end);
}

template <typename Archive, Is<Layout> T>
void visit(Archive& archive, T& layout) {
  auto& [mode, delimiters, widths, header_lines, names_source, names_reason, names_line, names,
         units_line, units, num_variables, classes, encoding, encoding_found, encoding_confidence,
         ill_formed_parts, line_ending, lines, ragged_lines, first_ragged_line, lines_sampled,
         characters_sampled, has_more_text, selection_end, decided_by, trace, looks_binary,
         confidence, quote, escape, least_blanks, joins_times, rest_in_last, is_framed, rivals,
         evidence, names_probability, names_candidate, no_table, cascade, dialect, columns,
         names_unique, lines_estimated, tail, spread, descriptions_line, descriptions, first_bytes,
         considered] = layout;
  archive(mode, delimiters, widths, header_lines, names_source, names_reason, names_line, names,
          units_line, units, num_variables, classes, encoding, encoding_found, encoding_confidence,
          ill_formed_parts, line_ending, lines, ragged_lines, first_ragged_line, lines_sampled,
          characters_sampled, has_more_text, selection_end, decided_by, trace, looks_binary,
          confidence, quote, escape, least_blanks, joins_times, rest_in_last, is_framed, rivals,
          evidence, names_probability, names_candidate, no_table, cascade, dialect, columns,
          names_unique, lines_estimated, tail, spread, descriptions_line, descriptions, first_bytes,
          considered);
}

// A span without a column has a number that would take ten bytes.
template <typename Archive, Is<tool::Span> T>
void visit(Archive& archive, T& span) {
  auto& [role, column, text] = span;
  std::size_t number = column + 1;
  archive(role, number, text);
  if constexpr (!std::is_const_v<T>) column = number - 1;
}

template <typename Archive, Is<tool::Row> T>
void visit(Archive& archive, T& row) {
  auto& [role, line, is_continued, spans, num_lines, is_estimate] = row;
  archive(role, line, is_continued, spans, num_lines, is_estimate);
}

template <typename Archive, Is<tool::Picture> T>
void visit(Archive& archive, T& picture) {
  auto& [rows, num_columns, is_by_place] = picture;
  archive(rows, num_columns, is_by_place);
}

// --- numbers, texts and lists -----------------------------------------------------------------------

// Seven bits in each byte; the last has the eighth bit clear.
class Writer {
 public:
  template <typename... Values>
  void operator()(const Values&... values) {
    (write(values), ...);
  }

  std::string take() { return std::move(bytes_); }

 private:
  void number(std::uint64_t value) {
    for (; value > 0x7F; value >>= 7) bytes_.push_back(static_cast<char>(value | 0x80));
    bytes_.push_back(static_cast<char>(value));
  }

  template <typename T>
  void write(const T& value) {
    if constexpr (std::is_enum_v<T> || std::integral<T>) {
      number(static_cast<std::uint64_t>(value));
    } else {
      visit(*this, value);
    }
  }

  void write(double value) {
    const auto bits = std::bit_cast<std::uint64_t>(value);
    for (unsigned shift = 0; shift < 64; shift += 8) {
      bytes_.push_back(static_cast<char>(bits >> shift));
    }
  }

  void write(const std::string& text) {
    number(text.size());
    bytes_ += text;
  }

  void write(const std::u16string& text) {
    number(text.size());
    for (const char16_t unit : text) number(unit);
  }

  template <typename T>
  void write(const std::optional<T>& value) {
    number(value ? 1 : 0);
    if (value) write(*value);
  }

  template <typename T>
  void write(const std::vector<T>& values) {
    number(values.size());
    for (const T& value : values) write(value);
  }

  std::string bytes_;
};

class Reader {
 public:
  explicit Reader(std::string_view bytes) : bytes_(bytes) {}

  template <typename... Values>
  void operator()(Values&... values) {
    (read(values), ...);
  }

  bool is_at_end() const { return bytes_.empty(); }

 private:
  [[noreturn]] static void refuse() {
    throw std::invalid_argument(
        "Expected the state of a layout or picture, as this version of vltext gives it.");
  }

  std::uint8_t byte() {
    if (bytes_.empty()) refuse();
    const auto value = static_cast<std::uint8_t>(bytes_.front());
    bytes_.remove_prefix(1);
    return value;
  }

  std::uint64_t number() {
    std::uint64_t value = 0;
    for (unsigned shift = 0; shift < 64; shift += 7) {
      const std::uint64_t next = byte();
      value |= (next & 0x7F) << shift;
      if (next < 0x80) return value;
    }
    refuse();
  }

  // Each element takes a byte at least.
  std::size_t count() {
    const std::uint64_t size = number();
    if (size > bytes_.size()) refuse();
    return static_cast<std::size_t>(size);
  }

  template <typename T>
  void read(T& value) {
    if constexpr (std::same_as<T, bool>) {
      value = number() != 0;
    } else if constexpr (std::is_enum_v<T> || std::integral<T>) {
      value = static_cast<T>(number());
    } else {
      visit(*this, value);
    }
  }

  void read(double& value) {
    std::uint64_t bits = 0;
    for (unsigned shift = 0; shift < 64; shift += 8) bits |= std::uint64_t{byte()} << shift;
    value = std::bit_cast<double>(bits);
  }

  void read(std::string& text) {
    const std::size_t size = count();
    text.assign(bytes_.substr(0, size));
    bytes_.remove_prefix(size);
  }

  void read(std::u16string& text) {
    text.resize(count());
    for (char16_t& unit : text) unit = static_cast<char16_t>(number());
  }

  template <typename T>
  void read(std::optional<T>& value) {
    value.reset();
    if (number() != 0) read(value.emplace());
  }

  template <typename T>
  void read(std::vector<T>& values) {
    values.resize(count());
    for (T& value : values) read(value);
  }

  std::string_view bytes_;
};

std::string opening() { return std::string(libvltextstream_version) + '\n'; }

template <typename Value>
std::string bytes_of(const Value& value) {
  Writer writer;
  writer(value);
  return opening() + writer.take();
}

// `kind` is "a layout".
template <typename Value>
Value value_of(std::string_view state, const std::string& kind) {
  const std::string expected = opening();
  Value value;
  if (!state.starts_with(expected)) {
    throw std::invalid_argument("Expected " + kind + " of this version of vltext, " +
                                std::string(libvltextstream_version) + ".");
  }
  Reader reader(state.substr(expected.size()));
  reader(value);
  if (!reader.is_at_end()) throw std::invalid_argument("Expected nothing after " + kind + ".");
  return value;
}

}  // namespace

std::string state_of(const Layout& layout) { return bytes_of(layout); }

Layout layout_of(std::string_view state) { return value_of<Layout>(state, "a layout"); }

std::string state_of(const tool::Picture& picture) { return bytes_of(picture); }

tool::Picture picture_of_state(std::string_view state) {
  return value_of<tool::Picture>(state, "a picture");
}

}  // namespace textio::python
