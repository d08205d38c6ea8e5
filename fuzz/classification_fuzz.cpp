// The class of a field, its recognisers and the removal of quotes, against the reference.
#include <cstddef>
#include <cstdint>
#include <string>

#include <vltextstream/host/datetime.hpp>
#include <vltextstream/scoring/datatype_recognizers.hpp>
#include "fuzz/check.hpp"
#include "fuzz/choices.hpp"
#include "fuzz/input.hpp"
#include "reference/reference.hpp"
#include "support/exact_text.hpp"

namespace textio::fuzz {
namespace {

using testing_support::ExactText;

bool is_datetime(const std::u16string& text) {
  return datetime::is_datetime(ExactText(text).field());
}

std::u16string trimmed(std::u16string_view text, const std::u16string& whitespace) {
  const std::size_t begin = text.find_first_not_of(whitespace);
  if (begin == text.npos) return {};
  return std::u16string(text.substr(begin, text.find_last_not_of(whitespace) + 1 - begin));
}

std::u16string unquoted(const ExactText& text, const std::u16string& whitespace) {
  MutableField field(text.field());
  unquote(field, whitespace);
  return {field.data, field.length};
}

// In a separate block, and as a part of a longer text.
void check_field(const std::u16string& text, const std::u16string& whitespace) {
  const ExactText exact(text);
  const std::uint16_t expected = reference::classify(text, whitespace, is_datetime);
  require_equal("class", static_cast<std::uint16_t>(classify_field(exact.field(), whitespace)),
                expected);
  const std::u16string longer = text + u"1:\"";
  require_equal(
      "class of a field in a text",
      static_cast<std::uint16_t>(classify_field(Field(longer.data(), text.size()), whitespace)),
      expected);
  require_same_text("value", value_text(exact.field(), whitespace),
                    trimmed(reference::unquote(trimmed(text, whitespace), whitespace), whitespace));
  require_same_text("field that was asked", exact.view(), text);
}

void check_recognisers(const std::u16string& text, const std::u16string& whitespace) {
  const ExactText exact(text);
  require_equal("is_number", is_number(exact.field()), reference::is_number(text));
  require_equal("is_duration", is_duration(exact.field()), reference::is_duration(text));
  require(split_complex(exact.field()) <= text.size(), "the imaginary part begins in the text");
  require_same_text("unquoted", unquoted(exact, whitespace), reference::unquote(text, whitespace));
}

std::u16string quoted(const std::u16string& text) {
  std::u16string out = u"\"";
  for (const char16_t unit : text) out.append(unit == u'"' ? 2 : 1, unit);
  return out + u'"';
}

// Quotes around a text with doubled quotes inside are removed again.
void check_quoting(const std::u16string& text, const std::u16string& whitespace) {
  if (whitespace.find(u'"') != whitespace.npos) return;
  require_same_text("quoted and unquoted", unquoted(ExactText(quoted(text)), whitespace), text);
  const auto code =
      static_cast<std::uint16_t>(classify_field(ExactText(quoted(text)).field(), whitespace));
  require_equal("class in quotes", code,
                reference::classify(quoted(text), whitespace, is_datetime));
}

}  // namespace
}  // namespace textio::fuzz

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using namespace textio::fuzz;
  Input input(data, size);
  const std::size_t choice = input.below(whitespace_sets().size() + 1);
  const std::u16string whitespace =
      choice < whitespace_sets().size() ? whitespace_sets()[choice] : input.text(4);
  const std::u16string text = input.rest_as_text();
  check_field(text, whitespace);
  check_recognisers(text, whitespace);
  check_quoting(text, whitespace);
  return 0;
}
