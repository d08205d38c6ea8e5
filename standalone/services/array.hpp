// Array values of the stand-alone host, for passing options to the library from C++.
//
//   using namespace textio::standalone;
//   apply_options(record, {{"Delimiter", make_array(u";")}, {"NumHeaderLines", make_array(2)}});
//
// Ownership  an Array is a shared, immutable value. The library takes `array.get()`, which is valid
//            as long as the Array.
// Units      texts are UTF-16; elements are in column order.
#pragma once

#include <concepts>
#include <cstddef>
#include <cstdint>
#include <initializer_list>
#include <memory>
#include <stdexcept>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include <vltextstream/host/array.hpp>
#include <vltextstream/host/error_channel.hpp>
#include <vltextstream/host/export.hpp>
#include <vltextstream/options/parser_options.hpp>

namespace textio::standalone {

using Array = std::shared_ptr<const hxArray>;

// 1-by-1: a number (of class double), a logical.
VLTEXTSTREAM_EXPORT Array make_array(double value);
VLTEXTSTREAM_EXPORT Array make_array(bool value);
template <std::integral Integer>
requires(!std::same_as<Integer, char> && !std::same_as<Integer, char8_t> &&
         !std::same_as<Integer, char16_t> && !std::same_as<Integer, char32_t> &&
         !std::same_as<Integer, wchar_t>) Array make_array(Integer value) {
  return make_array(static_cast<double>(value));
}

// One row of characters; the empty text is 0-by-0.
VLTEXTSTREAM_EXPORT Array make_array(std::u16string_view text);
VLTEXTSTREAM_EXPORT Array make_array(const char16_t* text);
Array make_array(const char* text) = delete;  // texts are UTF-16; use from_utf8
Array make_array(char16_t character) = delete;

// One row of numbers: of class double, of class unsigned 64-bit integer.
VLTEXTSTREAM_EXPORT Array make_array(const std::vector<double>& values);
VLTEXTSTREAM_EXPORT Array make_array(std::initializer_list<double> values);
VLTEXTSTREAM_EXPORT Array make_array(const std::vector<std::uint64_t>& values);

// Characters of any shape. Throws std::invalid_argument unless there are at least two dimensions
// and their product is the number of code units.
VLTEXTSTREAM_EXPORT Array make_char_array(std::u16string_view units,
                                          const std::vector<std::size_t>& dimensions);

// One row of cells, 0-by-0 for an empty list: of arrays, which must not be null, or of texts.
VLTEXTSTREAM_EXPORT Array make_cell(const std::vector<Array>& elements);
VLTEXTSTREAM_EXPORT Array make_cell(std::initializer_list<std::u16string_view> texts);
VLTEXTSTREAM_EXPORT Array make_text_cell(const std::vector<std::u16string>& texts);

// 0-by-0, of class double.
VLTEXTSTREAM_EXPORT Array make_empty_array();

// One English sentence on what was expected. It repeats the arguments of the error, and does not
// name the option unless the error does.
VLTEXTSTREAM_EXPORT std::string message_of(const MessageIdentifiedError& error);

// A refused option. what() starts with its name: "NumVariables: Expected one whole number, 0 or
// larger."
class VLTEXTSTREAM_EXPORT OptionProblem : public std::invalid_argument,
                                          public MessageIdentifiedError {
 public:
  OptionProblem(std::string option, const MessageIdentifiedError& error);
  ~OptionProblem() override;

  // The name as the caller gave it.
  const std::string& option() const { return option_; }

  const std::string& identifier() const override { return identifier_; }
  const std::vector<MessageArgument>& arguments() const override { return arguments_; }

 private:
  std::string option_;
  std::string identifier_;
  std::vector<MessageArgument> arguments_;
};

using NameValue = std::pair<std::string, Array>;

// Applies the options to `record` in order. Throws OptionProblem for the first one that is refused,
// std::invalid_argument for one without a value; the options before it remain applied. Names are
// UTF-8.
VLTEXTSTREAM_EXPORT void apply_options(parser::options& record,
                                       const std::vector<NameValue>& options);

}  // namespace textio::standalone
