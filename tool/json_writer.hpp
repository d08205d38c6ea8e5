// JsonWriter: JSON as it is printed, written from its first character to its last.
//
//   std::string out;
//   JsonWriter json(out);
//   json.begin_object();
//   json.member("name", "level");
//   json.member("widths", std::vector<std::size_t>{8, 4});
//   json.end_object();
//
// Every value has a line of its own, indented by two blanks for each object or array around it; or all
// is in one line, with a blank after each comma and colon.
//
// Text    in UTF-8. What is_unprintable() says of a character, it is escaped. What is ill-formed
//         becomes U+FFFD, one for all bytes that could have begun a character.
// Memory  nothing but `out`. With a function to empty it, `out` keeps the size kFullAt that it is
//         given, and no allocation is made.
// Errors  std::bad_alloc. The caller balances begin and end, and writes a key before each value of
//         an object.
#pragma once

#include <array>
#include <charconv>
#include <concepts>
#include <cstddef>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace textio::tool {

class JsonWriter {
 public:
  static constexpr std::size_t kFullAt = 65'536;

  // Takes what was written so far away from the text, and leaves it empty.
  using Empty = std::function<void(std::string&)>;

  enum class Shape { indented, one_line };

  // Appends to `out`. With a depth the text is a part of a document, from this indentation on.
  explicit JsonWriter(std::string& out, std::size_t depth = 0, Empty empty = {},
                      Shape shape = Shape::indented);

  void begin_object() { begin('{'); }
  void end_object() { end('}'); }
  void begin_array() { begin('['); }
  void end_array() { end(']'); }

  // Of the value that is written next.
  void key(std::string_view name);

  void value(std::nullptr_t);
  void value(bool truth);
  void value(std::string_view utf8);
  void value(std::u16string_view text);
  void value(const char* utf8) { value(std::string_view(utf8)); }

  template <std::integral Number>
  requires(!std::same_as<Number, bool>) void value(Number number) {
    std::array<char, 24> digits{};
    const char* const end = std::to_chars(digits.begin(), digits.end(), number).ptr;
    begin_value();
    append({digits.begin(), end});
  }

  // With the fewest digits that are read as the same number; null for what is not finite.
  void value(double number);

  // null when there is none.
  template <typename Value>
  void value(const std::optional<Value>& value_or_none) {
    value_or_none ? value(*value_or_none) : value(nullptr);
  }

  // An array of them.
  template <typename Element>
  void value(const std::vector<Element>& elements) {
    array(elements, [this](const Element& element) { value(element); });
  }

  template <typename Value>
  void member(std::string_view name, const Value& member_value) {
    key(name);
    value(member_value);
  }

  // Calls `write_element` for each element of `range`.
  template <typename Range, typename WriteElement>
  void array(const Range& range, const WriteElement& write_element) {
    begin_array();
    for (const auto& element : range) write_element(element);
    end_array();
  }

 private:
  void begin(char bracket);
  void end(char bracket);
  void begin_value();
  void begin_line();
  void indent();
  void append(std::string_view piece);
  void append_utf8(std::string_view utf8);
  void append_character(char32_t code, std::string_view utf8);

  std::string& out_;
  std::size_t depth_;
  Empty empty_;
  bool is_one_line_;
  bool is_first_ = true;  // no value yet in the innermost object or array
  bool is_open_ = false;  // within any object or array of this writer
  bool follows_key_ = false;
};

}  // namespace textio::tool
