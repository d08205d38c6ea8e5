#include <vltextstream/standalone/services/array.hpp>

#include <algorithm>
#include <cmath>
#include <functional>
#include <numeric>
#include <variant>

#include <fmt/format.h>

#include <vltextstream/options/set_parser_options.hpp>
#include <vltextstream/standalone/decoding/utf_text.hpp>

using textio::standalone::Array;

class hxArray {
 public:
  using Doubles = std::vector<double>;
  using Integers = std::vector<std::uint64_t>;
  using Logicals = std::vector<unsigned char>;
  using Cells = std::vector<Array>;
  using Elements = std::variant<Doubles, Integers, Logicals, std::u16string, Cells>;

  hxArray(Elements array_elements, std::vector<std::size_t> array_dimensions)
      : elements(std::move(array_elements)), dimensions(std::move(array_dimensions)) {}

  template <typename Kind>
  bool is() const {
    return std::holds_alternative<Kind>(elements);
  }

  // The elements if they are of this class, otherwise no elements.
  template <typename Kind>
  const Kind& as() const {
    static const Kind none;
    const Kind* const found = std::get_if<Kind>(&elements);
    return found ? *found : none;
  }

  std::size_t count() const {
    return std::visit([](const auto& list) { return list.size(); }, elements);
  }

  Elements elements;
  std::vector<std::size_t> dimensions;
};

// ---------------------------------------------------------------------------------------------
// The services

bool hxIsDouble(const hxArray* array) { return array->is<hxArray::Doubles>(); }
bool hxIsChar(const hxArray* array) { return array->is<std::u16string>(); }
bool hxIsCell(const hxArray* array) { return array->is<hxArray::Cells>(); }

bool hxIsScalar(const hxArray* array) {
  return array->dimensions == std::vector<std::size_t>{1, 1};
}

std::size_t hxGetNumberOfDimensions(const hxArray* array) { return array->dimensions.size(); }

std::size_t hxGetM(const hxArray* array) { return array->dimensions[0]; }

std::size_t hxGetN(const hxArray* array) {
  return std::accumulate(array->dimensions.begin() + 1, array->dimensions.end(), std::size_t{1},
                         std::multiplies<>());
}

double hxGetScalar(const hxArray* array) {
  const auto& values = array->as<hxArray::Doubles>();
  return values.empty() ? std::nan("") : values.front();
}

bool hxIsLogicalScalar(const hxArray* array) {
  return array->is<hxArray::Logicals>() && hxIsScalar(array);
}

const unsigned char* hxGetLogicals(const hxArray* array) {
  return array->as<hxArray::Logicals>().data();
}

const char16_t* hxGetChars(const hxArray* array) { return array->as<std::u16string>().data(); }

const hxArray* hxGetCell(const hxArray* array, std::size_t index) {
  return array->as<hxArray::Cells>().at(index).get();
}

const void* hxGetData(const hxArray* array) {
  if (hxIsCell(array)) return nullptr;
  return std::visit([](const auto& list) -> const void* { return list.data(); }, array->elements);
}

std::size_t hxGetElementSize(const hxArray* array) {
  return std::visit([](const auto& list) { return sizeof list[0]; }, array->elements);
}

namespace textio {

std::size_t get_number_of_elements(const hxArray* array) { return array->count(); }

std::string get_string(const hxArray* array) {
  return standalone::to_utf8(array->as<std::u16string>());
}

std::u16string get_ustring(const hxArray* array) { return array->as<std::u16string>(); }

std::vector<std::u16string> get_ustring_array(const hxArray* array) {
  if (hxIsChar(array)) return {get_ustring(array)};
  std::vector<std::u16string> texts;
  for (const Array& cell : array->as<hxArray::Cells>()) texts.push_back(get_ustring(cell.get()));
  return texts;
}

bool is_integer(double value) { return std::isfinite(value) && std::trunc(value) == value; }

}  // namespace textio

// ---------------------------------------------------------------------------------------------
// Making arrays

namespace textio::standalone {
namespace {

// A row of elements; 0-by-0 if there are none.
Array make_row(hxArray::Elements elements, std::size_t count) {
  const std::size_t rows = count == 0 ? 0 : 1;
  return std::make_shared<hxArray>(std::move(elements), std::vector<std::size_t>{rows, count});
}

// Whether the product of the dimensions is `count`. Does not overflow.
bool multiply_to(const std::vector<std::size_t>& dimensions, std::size_t count) {
  if (std::find(dimensions.begin(), dimensions.end(), 0U) != dimensions.end()) return count == 0;
  std::size_t rest = count;
  for (const std::size_t dimension : dimensions) {
    if (rest % dimension != 0) return false;
    rest /= dimension;
  }
  return rest == 1;
}

std::string shown(const MessageArgument& argument) {
  struct Show : boost::static_visitor<std::string> {
    std::string operator()(std::int64_t number) const { return std::to_string(number); }
    std::string operator()(const std::string& text) const { return text; }
    std::string operator()(const std::u16string& text) const { return to_utf8(text); }
  };
  return boost::apply_visitor(Show(), argument);
}

struct Message {
  std::string_view name;
  std::string_view sentence;  // "{}" is replaced by the argument

  // The sentence after the name of the option, if that makes another one.
  std::string_view after_option = sentence;
};
constexpr Message kMessages[] = {
    {"OddNumberNVPairs", "Expected names and values in pairs, but the last name has no value."},
    {"UnknownParameter", "Expected the name of an option, got '{}'.",
     "Expected the name of an option."},
    {"ExpectedNonNegativeScalarInt", "Expected one whole number, 0 or larger."},
    {"ExpectedPositiveScalarInt", "Expected one whole number, 1 or larger."},
    {"ExpectedScalarLogical", "Expected true or false."},
    {"CommentStyleSize", "Expected at most two comment markers."},
    {"DelimiterType", "Expected a text or a list of texts as delimiters."},
    {"BadTextFlag", "Expected one of {}."},
    {"InvalidStringProperty", "Expected a text as the value of {}.", "Expected a text."},
    {"InvalidStringOrCellStringProperty", "Expected a text or a list of texts as the value of {}.",
     "Expected a text or a list of texts."},
    {"InvalidEscapeSequence", "Expected only the escapes \\\\, \\b, \\n, \\r and \\t in {}.",
     "Expected only the escapes \\\\, \\b, \\n, \\r and \\t."},
};

// The sentence for an error: `form` is the member of Message that has it.
std::string sentence_of(const MessageIdentifiedError& error, std::string_view Message::*form) {
  const std::string_view identifier = error.identifier();
  const std::string_view name = identifier.substr(identifier.rfind(':') + 1);
  const std::string argument = error.arguments().empty() ? "" : shown(error.arguments().front());
  for (const Message& message : kMessages) {
    if (message.name == name) return fmt::format(fmt::runtime(message.*form), argument);
  }
  return fmt::format("{} {}", identifier, argument);
}

// A message is read as a C string, which a zero would end, so U+FFFD replaces it.
std::string problem_of(std::string_view option, std::string_view sentence) {
  std::string problem;
  for (const char c : fmt::format("{}: {}", option.empty() ? "''" : option, sentence)) {
    if (c != '\0') {
      problem += c;
    } else {
      problem += "\xEF\xBF\xBD";
    }
  }
  return problem;
}

}  // namespace

Array make_array(double value) { return make_row(hxArray::Doubles{value}, 1); }

Array make_array(bool value) {
  return make_row(hxArray::Logicals{static_cast<unsigned char>(value)}, 1);
}

Array make_array(std::u16string_view text) { return make_row(std::u16string(text), text.size()); }

Array make_array(const char16_t* text) { return make_array(std::u16string_view(text)); }

Array make_array(const std::vector<double>& values) { return make_row(values, values.size()); }

Array make_array(std::initializer_list<double> values) {
  return make_array(std::vector<double>(values));
}

Array make_array(const std::vector<std::uint64_t>& values) {
  return make_row(values, values.size());
}

Array make_char_array(std::u16string_view units, const std::vector<std::size_t>& dimensions) {
  if (dimensions.size() < 2 || !multiply_to(dimensions, units.size())) {
    throw std::invalid_argument(fmt::format("{} characters do not make an array of {}",
                                            units.size(), fmt::join(dimensions, "-by-")));
  }
  return std::make_shared<hxArray>(std::u16string(units), dimensions);
}

Array make_cell(const std::vector<Array>& elements) {
  if (std::find(elements.begin(), elements.end(), nullptr) != elements.end()) {
    throw std::invalid_argument("every cell holds an array");
  }
  return make_row(elements, elements.size());
}

Array make_cell(std::initializer_list<std::u16string_view> texts) {
  return make_text_cell({texts.begin(), texts.end()});
}

Array make_text_cell(const std::vector<std::u16string>& texts) {
  std::vector<Array> cells;
  cells.reserve(texts.size());
  for (const std::u16string& text : texts) cells.push_back(make_array(text));
  return make_cell(cells);
}

Array make_empty_array() { return make_row(hxArray::Doubles(), 0); }

std::string message_of(const MessageIdentifiedError& error) {
  return sentence_of(error, &Message::sentence);
}

OptionProblem::OptionProblem(std::string option, const MessageIdentifiedError& error)
    : std::invalid_argument(problem_of(option, sentence_of(error, &Message::after_option))),
      option_(std::move(option)),
      identifier_(error.identifier()),
      arguments_(error.arguments()) {}

OptionProblem::~OptionProblem() = default;

void apply_options(parser::options& record, const std::vector<NameValue>& options) {
  for (const auto& [name, value] : options) {
    if (!value) throw std::invalid_argument(problem_of(name, "Expected a value."));
    const Array name_array = make_array(from_utf8(name));
    const hxArray* pair[] = {name_array.get(), value.get()};
    try {
      textio::options::set_parser_options(pair, 2, record);
    } catch (const MessageIdentifiedError& error) {
      throw OptionProblem(name, error);
    }
  }
}

}  // namespace textio::standalone
