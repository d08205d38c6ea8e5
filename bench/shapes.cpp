// A table is made line by line from the line number. Its measured values come from a mixing
// function, so that all lines differ.
#include "bench/shapes.hpp"

#include <algorithm>
#include <cstdint>
#include <initializer_list>
#include <iterator>
#include <limits>
#include <utility>

namespace textio::bench {
namespace {

using Line = std::u16string (*)(std::size_t row);

// As many whole lines as fit into `units` code units.
std::u16string lines_of(std::size_t units, Line line) {
  std::u16string text;
  text.reserve(units);
  for (std::size_t row = 0;; ++row) {
    const std::u16string next = line(row);
    if (text.size() + next.size() > units) return text;
    text += next;
  }
}

// `pattern` repeated, with the last repetition cut off.
std::u16string repeat(std::size_t units, std::u16string_view pattern) {
  std::u16string text;
  text.reserve(units + pattern.size());
  while (text.size() < units) text += pattern;
  text.resize(units);
  return text;
}

std::u16string join(std::initializer_list<std::u16string_view> parts) {
  std::u16string text;
  for (const std::u16string_view part : parts) text += part;
  return text;
}

// A number below `limit` that depends on the row and the column.
std::size_t value(std::size_t row, std::size_t column, std::size_t limit) {
  std::uint64_t mixed = (row + 1) * 0x9E3779B97F4A7C15U + (column + 1) * 0xBF58476D1CE4E5B9U;
  mixed ^= mixed >> 29;
  mixed *= 0x94D049BB133111EBU;
  mixed ^= mixed >> 32;
  return static_cast<std::size_t>(mixed % limit);
}

// At least `width` digits.
std::u16string digits(std::size_t number, std::size_t width) {
  std::u16string text;
  while (text.size() < width || number > 0) {
    text.insert(text.begin(), static_cast<char16_t>(u'0' + number % 10));
    number /= 10;
  }
  return text;
}

// 0.000 to 999.999
std::u16string measured(std::size_t row, std::size_t column) {
  return join(
      {digits(value(row, column, 1000), 1), u".", digits(value(row, column + 1000, 1000), 3)});
}

constexpr std::u16string_view kWords[] = {u"north", u"alpha", u"river", u"seven",
                                          u"cloud", u"stone", u"amber", u"field"};

std::u16string_view word(std::size_t row, std::size_t column) {
  return kWords[value(row, column, std::size(kWords))];
}

std::u16string sentence(std::size_t row, std::size_t column, std::size_t words) {
  std::u16string text(word(row, column));
  for (std::size_t i = 1; i < words; ++i) {
    text += u' ';
    text += word(row, column + 100 * i);
  }
  return text;
}

std::u16string day(std::size_t row, std::size_t column) {
  return join({digits(1990 + value(row, column, 40), 4), u"-",
               digits(1 + value(row, column + 1, 12), 2), u"-",
               digits(1 + value(row, column + 2, 28), 2)});
}

std::u16string clock(std::size_t row) {
  return join(
      {digits(row / 3600 % 24, 2), u":", digits(row / 60 % 60, 2), u":", digits(row % 60, 2)});
}

std::u16string padded(std::u16string text, std::size_t width) {
  text.resize(std::max(width, text.size()), u' ');
  return text;
}

// Every ASCII character that a detection tries as a delimiter, in ascending order.
std::u16string candidate_chars() {
  constexpr std::u16string_view kNever = u"@-.\"$'+\r\n\x1A";
  std::u16string chars;
  for (char16_t c = 0; c < 128; ++c) {
    const bool is_word_char =
        (c >= u'0' && c <= u'9') || (c >= u'A' && c <= u'Z') || (c >= u'a' && c <= u'z');
    if (!is_word_char && kNever.find(c) == kNever.npos) chars.push_back(c);
  }
  return chars;
}

// `count` measured values, separated by commas.
std::u16string values(std::size_t row, std::size_t count) {
  std::u16string line = measured(row, 0);
  for (std::size_t column = 1; column < count; ++column) {
    line += u',';
    line += measured(row, column);
  }
  return line;
}

// --- lines of tables ---------------------------------------------------------------------------

std::u16string narrow_line(std::size_t row) {
  return join({values(row, 2), u",", word(row, 2), u"\n"});
}

std::u16string regular_line(std::size_t row) {
  return join({day(row, 0), u" ", clock(row), u",", word(row, 7), u"/", word(row, 8), u",",
               values(row, 18), u"\n"});
}

std::u16string wide_line(std::size_t row) { return join({values(row, 200), u"\n"}); }

// Fields that contain delimiters, doubled quotes and, in every eighth line, a line ending.
std::u16string quoted_line(std::size_t row) {
  return join({u"\"", sentence(row, 0, 2), u", ", word(row, 2), u"\",\"", word(row, 3), u" \"\"",
               word(row, 4), u"\"\"\",", measured(row, 5), u",\"", sentence(row, 6, 3),
               row % 8 == 0 ? u"\n" : u" ", word(row, 7), u"\"\n"});
}

// Aligned columns of numbers of one to seven digits, so the runs of blanks between them and the
// lengths of the lines vary.
std::u16string aligned_line(std::size_t row) {
  constexpr std::size_t kLimits[] = {10, 100, 1000, 10000, 100000, 1000000, 10000000};
  std::u16string line;
  for (std::size_t column = 0; column < 8; ++column) {
    const std::size_t limit = kLimits[value(row, column + 100, std::size(kLimits))];
    line += padded(digits(value(row, column, limit), 1), 10);
  }
  return join({line, word(row, 8), digits(value(row, 9, 100000), 1), u"\n"});
}

// A column of one to three words makes the number of blanks useless; all lines have the same
// length.
std::u16string fixed_line(std::size_t row) {
  return join({digits(row % 100000, 5), u" ", padded(sentence(row, 1, 1 + value(row, 2, 3)), 20),
               digits(value(row, 3, 1000), 3), u" ", digits(value(row, 4, 1000000), 6), u"\n"});
}

std::u16string dates_line(std::size_t row) {
  return join({day(row, 0), u" ", clock(row), u";", day(row, 3), u";", clock(row + 17), u";",
               word(row, 6), u"\n"});
}

std::u16string text_line(std::size_t row) {
  return join({sentence(row, 0, 5 + value(row, 1, 12)), u"\n"});
}

// Four names and four numbers, in turn.
std::u16string names_line(std::size_t row) {
  std::u16string line = digits(row, 1);
  for (std::size_t column = 0; column < 4; ++column) {
    line += join({u",", sentence(row, 10 * column, 2), u",", measured(row, column)});
  }
  line += u'\n';
  return line;
}

std::u16string all_candidates_line(std::size_t row) {
  return join({values(row, 19), u",", candidate_chars(), u"\n"});
}

// A digit before every candidate character: each of them gives a line the same number of fields.
std::u16string crowded_line(std::size_t row) {
  const std::u16string chars = candidate_chars();
  std::u16string line;
  for (std::size_t i = 0; i < chars.size(); ++i) {
    line += digits(value(row, i, 10), 1);
    line += chars[(row + i) % chars.size()];
  }
  line += u"0\n";
  return line;
}

// --- texts -------------------------------------------------------------------------------------

// One line of values, without a line ending.
std::u16string long_line(std::size_t units) {
  std::u16string text;
  text.reserve(units + 16);
  for (std::size_t i = 0; text.size() < units; ++i) text += join({measured(i, 0), u","});
  text.resize(units);
  return text;
}

// The first code unit starts a field that is never closed.
std::u16string open_quote(std::size_t units) {
  std::u16string text = lines_of(units - 1, narrow_line);
  text.insert(text.begin(), u'"');
  return text;
}

// A small table whose last line, which is classified first, has one huge field.
std::u16string field_of_doubled_quotes(std::size_t units) {
  const std::u16string table = u"x,1\nx,2\nx,3\n";
  const std::u16string rest = u",4\n";
  const std::size_t used = table.size() + rest.size() + 2;
  return join({table, doubled_quotes(units > used ? (units - used) / 2 : 0), rest});
}

// `blank` repeated, then as many busy lines as a detection classifies.
std::u16string busy_after(std::u16string_view blank, std::size_t units) {
  std::u16string busy;
  for (std::size_t row = 0; row < 5; ++row) busy += crowded_line(row);
  const std::size_t rest = units > busy.size() ? units - busy.size() : 0;
  return repeat(rest - rest % blank.size(), blank) + busy;
}

// Eight fields of 64 code units on each line, nearly all of them doubled quotes.
std::u16string quoted_fields_line(std::size_t row) {
  std::u16string line;
  for (std::size_t column = 0; column < 8; ++column) {
    line += join(
        {u"\"", digits(row % 10, 1), std::u16string(60, u'"'), u"\"", column == 7 ? u"\n" : u","});
  }
  return line;
}

// Four lines of one length with as many fixed-width columns as fit. A column holds one word or two,
// so the blanks between words do not separate columns. The number of columns is a multiple of
// three, so that the last column is the same at any size.
std::u16string fixed_columns(std::size_t units) {
  constexpr std::u16string_view kOneWord = u"abcde  ";
  constexpr std::u16string_view kTwoWords = u"ab cd  ";
  constexpr std::size_t kRows = 4;
  const std::size_t columns = units / kRows / kOneWord.size() / 3 * 3;
  std::u16string text;
  text.reserve(units);
  for (std::size_t row = 0; row < kRows; ++row) {
    for (std::size_t column = 0; column < columns; ++column) {
      text += (row * row + column) % 3 == 0 ? kTwoWords : kOneWord;
    }
    text += u'\n';
  }
  return text;
}

// --- options, and texts made for them ----------------------------------------------------------

using standalone::DetectSettings;

// `pattern` repeated to half the length of a text, then a code unit that does not occur in it.
std::u16string long_marker(std::size_t units, std::u16string_view pattern = u"a") {
  return repeat(units / 2, pattern) + u'b';
}

// A marker for every 64 code units. All start alike and end differently.
std::vector<std::u16string> many_markers(std::size_t units) {
  std::vector<std::u16string> markers;
  for (std::size_t i = 0; i < units / 64; ++i) markers.push_back(join({u"a", digits(i, 6)}));
  return markers;
}

// The first code unit of marker `number`, one of more than 60,000, all of them characters.
char16_t first_unit(std::size_t number) {
  constexpr std::size_t kFirst = 0x0100;
  constexpr std::size_t kSurrogates = 0xD800;
  constexpr std::size_t kAfterSurrogates = 0xE000;
  const std::size_t unit = kFirst + number;
  return static_cast<char16_t>(unit < kSurrogates ? unit : unit - kSurrogates + kAfterSurrogates);
}

std::size_t number_of_first_units(std::size_t units) {
  return std::clamp<std::size_t>(units / 64, 1, 60000);
}

// A marker for every 64 code units, each of which starts with another code unit.
std::vector<std::u16string> markers_of_first_units(std::size_t units) {
  std::vector<std::u16string> markers;
  for (std::size_t i = 0; i < number_of_first_units(units); ++i) {
    markers.push_back({first_unit(i), u'b'});
  }
  return markers;
}

// These code units, repeated.
std::u16string first_units(std::size_t units) {
  std::u16string text(units, u' ');
  for (std::size_t i = 0; i < units; ++i) text[i] = first_unit(i % number_of_first_units(units));
  return text;
}

// Lines of 63 code units; at each of these a marker of `many_markers` could start.
std::u16string lines_of_same_units(std::size_t units) {
  return repeat(units, std::u16string(63, u'a') + u'\n');
}

void give_delimiters(DetectSettings& settings, std::vector<std::u16string> delimiters) {
  settings.options.delimiters = std::move(delimiters);
  settings.options.detect_delimiters = false;
}

// Two lines that start like the comment marker and are no comments.
std::u16string nearly_comments(std::size_t units) {
  const std::u16string line = std::u16string(units / 2, u'a') + u"c\n";
  return line + line;
}

std::u16string same_units(std::size_t units) { return repeat(units, u"a"); }

std::u16string two_lines(std::size_t units) {
  std::u16string text = repeat(units, u"1");
  if (units > 0) text[units / 2] = u'\n';
  return text;
}

void give_widths(DetectSettings& settings, std::size_t columns) {
  settings.options.parser_type = parser::parser_kind::fixedwidth;
  settings.options.variable_widths.assign(columns, 1);
}

}  // namespace

const std::vector<Shape>& data_shapes() {
  static const std::vector<Shape> shapes = {
      {"narrow", [](std::size_t units) { return lines_of(units, narrow_line); }},
      {"regular", [](std::size_t units) { return lines_of(units, regular_line); }},
      {"wide", [](std::size_t units) { return lines_of(units, wide_line); }},
      {"quoted", [](std::size_t units) { return lines_of(units, quoted_line); }},
      {"aligned", [](std::size_t units) { return lines_of(units, aligned_line); }},
      {"fixed", [](std::size_t units) { return lines_of(units, fixed_line); }},
      {"dates", [](std::size_t units) { return lines_of(units, dates_line); }},
      {"text", [](std::size_t units) { return lines_of(units, text_line); }},
      {"one_long_line", long_line},
      {"all_candidates", [](std::size_t units) { return lines_of(units, all_candidates_line); }},
  };
  return shapes;
}

const std::vector<Shape>& adversarial_shapes() {
  static const std::vector<Shape> shapes = {
      {"one_line", [](std::size_t units) { return repeat(units, u"abc 12.5 "); }},
      {"only_quotes", [](std::size_t units) { return repeat(units, u"\""); }},
      {"open_quote", open_quote},
      {"crowded", [](std::size_t units) { return lines_of(units, crowded_line); }},
      {"only_line_ends", [](std::size_t units) { return repeat(units, u"\n"); }},
      {"only_blanks", [](std::size_t units) { return repeat(units, u" "); }},
      {"only_commas", [](std::size_t units) { return repeat(units, u","); }},
      {"doubled_quotes", field_of_doubled_quotes},
      {"blank_then_busy", [](std::size_t units) { return busy_after(u"\n", units); }},
      {"blank_lines", [](std::size_t units) { return busy_after(u"\t\n", units); }},
      {"half_fields", [](std::size_t units) { return repeat(units, u"1,"); }},
      {"short_lines", [](std::size_t units) { return repeat(units, u"1,2\n"); }},
      {"quoted_fields", [](std::size_t units) { return lines_of(units, quoted_fields_line); }},
      {"fixed_columns", fixed_columns},
  };
  return shapes;
}

const std::vector<Shape>& option_shapes() {
  static const std::vector<Shape> shapes = {
      {"long_comment_marker", nearly_comments,
       [](DetectSettings& settings, std::size_t units) {
         settings.options.comment_style = {long_marker(units)};
       }},
      {"long_delimiter", same_units,
       [](DetectSettings& settings, std::size_t units) {
         give_delimiters(settings, {long_marker(units)});
       }},
      {"long_line_ending", same_units,
       [](DetectSettings& settings, std::size_t units) {
         settings.options.line_endings = {long_marker(units)};
       }},
      {"many_delimiters", same_units,
       [](DetectSettings& settings, std::size_t units) {
         give_delimiters(settings, many_markers(units));
       }},
      {"many_line_endings", same_units,
       [](DetectSettings& settings, std::size_t units) {
         settings.options.line_endings = many_markers(units);
       }},
      {"long_beside_short", [](std::size_t units) { return repeat(units, u"a,"); },
       [](DetectSettings& settings, std::size_t units) {
         give_delimiters(settings, {long_marker(units, u"a,"), u","});
       }},
      {"overlapping_endings", [](std::size_t units) { return repeat(units, u" a"); },
       [](DetectSettings& settings, std::size_t units) {
         settings.options.line_endings = {repeat(units / 2, u" a")};
       }},
      {"delimiters_in_lines", lines_of_same_units,
       [](DetectSettings& settings, std::size_t units) {
         give_delimiters(settings, many_markers(units));
       }},
      {"many_first_units", first_units,
       [](DetectSettings& settings, std::size_t units) {
         give_delimiters(settings, markers_of_first_units(units));
       }},
      {"many_first_line_units", first_units,
       [](DetectSettings& settings, std::size_t units) {
         settings.options.line_endings = markers_of_first_units(units);
       }},
      {"long_ending_of_widths", same_units,
       [](DetectSettings& settings, std::size_t units) {
         give_widths(settings, 16);
         settings.options.line_endings = {long_marker(units)};
       }},
      {"widths_and_ending", same_units,
       [](DetectSettings& settings, std::size_t units) {
         give_widths(settings, units);
         settings.options.line_endings = {long_marker(units)};
       }},
      {"huge_header_lines", [](std::size_t units) { return lines_of(units, narrow_line); },
       [](DetectSettings& settings, std::size_t) {
         settings.options.header_lines = std::numeric_limits<std::size_t>::max() - 1;
         settings.options.detect_header_lines = false;
       }},
      {"huge_num_variables", [](std::size_t units) { return lines_of(units, narrow_line); },
       [](DetectSettings& settings, std::size_t) {
         settings.options.num_variables = std::numeric_limits<std::uint64_t>::max();
         settings.options.detect_num_variables = false;
       }},
      {"given_widths", two_lines, give_widths},
  };
  return shapes;
}

const Shape* find_shape(std::string_view name) {
  for (const std::vector<Shape>* shapes :
       {&data_shapes(), &adversarial_shapes(), &option_shapes()}) {
    const auto found = std::find_if(shapes->begin(), shapes->end(),
                                    [name](const Shape& shape) { return shape.name == name; });
    if (found != shapes->end()) return &*found;
  }
  return nullptr;
}

std::u16string names_table(std::size_t units) { return lines_of(units, names_line); }

std::u16string doubled_quotes(std::size_t pairs) { return std::u16string(2 * pairs + 2, u'"'); }

std::string ascii_bytes(std::u16string_view text) {
  std::string bytes(text.size(), '\0');
  std::transform(text.begin(), text.end(), bytes.begin(),
                 [](char16_t unit) { return static_cast<char>(unit); });
  return bytes;
}

std::string utf16_bytes(std::u16string_view text) {
  std::string bytes = "\xFF\xFE";
  for (const char16_t unit : text) {
    bytes.push_back(static_cast<char>(unit & 0xFF));
    bytes.push_back(static_cast<char>(unit >> 8));
  }
  return bytes;
}

}  // namespace textio::bench
