// Any sequence of calls of a TextStream, against a plain string, over a source that ends anywhere,
// delivers a short first block and fails at chosen calls.
#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <random>
#include <string>
#include <utility>
#include <vector>

#include <vltextstream/detection/fixed_stream.hpp>
#include <vltextstream/source/text_stream.hpp>
#include "fuzz/arena_source.hpp"
#include "fuzz/check.hpp"
#include "fuzz/choices.hpp"
#include "fuzz/input.hpp"
#include "reference/reference.hpp"

namespace textio::fuzz {
namespace {

using testing_support::ScriptedFailure;

constexpr char16_t kEnd = TextStream::kEnd;
constexpr std::size_t kBlock = TextStream::kBufferUnits;

// The text from a position on, as a plain string gives it.
class Model {
 public:
  explicit Model(std::u16string_view text) : text_(text) {}

  std::size_t left() const { return text_.size() - start_; }
  std::u16string_view rest() const { return text_.substr(start_); }
  char16_t at(std::size_t pos) const { return pos < left() ? text_[start_ + pos] : kEnd; }

  template <typename Stop>
  std::size_t first(std::size_t pos, Stop stop) const {
    if (pos >= left()) return pos;
    const auto begin = rest().begin();
    const auto ends = [&](char16_t unit) { return unit == kEnd || stop(unit); };
    return static_cast<std::size_t>(
        std::find_if(begin + static_cast<std::ptrdiff_t>(pos), rest().end(), ends) - begin);
  }
  bool matches(const std::u16string& wanted, std::size_t pos) const {
    return wanted.empty() || (pos <= left() && rest().substr(pos, wanted.size()) == wanted);
  }
  void advance(std::size_t count) { start_ += std::min(count, left()); }

 private:
  std::u16string_view text_;
  std::size_t start_ = 0;
};

// ---------------------------------------------------------------------------------------------
// Texts

// Runs of blanks, digits and letters of very different lengths, with an occasional end mark.
std::u16string long_runs() {
  std::mt19937 random(1);
  std::u16string text;
  while (text.size() < 6 * kBlock) {
    const char16_t unit = u" 0123456789aAbB,;\n\uFFFF"[random() % 19];
    text.append(unit == kEnd ? 1 : 1 + random() % (1U << random() % 19), unit);
  }
  return text;
}

// A text of the input's own code units, which may be at the start of a longer one or at the end of
// a block.
std::u16string text_from(Input& input) {
  static const std::u16string runs = long_runs();
  const std::size_t kind = input.byte();
  std::u16string own = input.text(120);
  if (kind < 224) return own;
  const std::size_t nearly = kBlock - std::min<std::size_t>(own.size(), input.below(4));
  const std::size_t length = kind < 244   ? nearly
                             : kind < 250 ? 2 * kBlock - own.size()
                             : kind < 254 ? 4 * kBlock + input.below(3) - 1
                                          : 5 * kBlock + input.byte() * 256U;
  const std::u16string_view long_part =
      std::u16string_view(runs).substr(input.byte() * 64U, length);
  std::u16string text;
  text.reserve(own.size() + long_part.size());
  return input.flag() ? text.append(own).append(long_part) : text.append(long_part).append(own);
}

// ---------------------------------------------------------------------------------------------
// Calls

// Mostly near the window, a block or the end of the text.
std::size_t distance_from(Input& input, const Model& model) {
  const std::size_t kind = input.below(16);
  const std::size_t near = input.byte();
  if (kind < 8) return near;
  if (kind < 10) return near * 257;
  if (kind == 10) return kBlock - std::min<std::size_t>(near, 4);
  if (kind == 11) return kBlock * (1 + near % 4) + near / 64;
  if (kind < 14) return model.left() - std::min(model.left(), near);
  if (kind == 14) return model.left() + near;
  return ~std::size_t{0} - near % 3;
}

struct Call {
  Call(Input& input, const Model& model)
      : kind(input.below(13)),
        distance(distance_from(input, model)),
        unit(unit_of(input.byte())),
        set(input.text(3)) {
    // What is searched for: the text at that position, or something else.
    if (kind == 7 || kind == 8) {
      const std::size_t from = std::min(distance, model.left());
      wanted = model.rest().substr(from, input.byte() * (kind == 7 ? 1U : 300U));
      if (!wanted.empty() && input.flag()) wanted[input.byte() % wanted.size()] ^= 1;
    }
  }

  void make(TextStream& stream, Model& model) const;

  std::size_t kind;
  std::size_t distance;
  char16_t unit;
  std::u16string set;
  std::u16string wanted;
};

char16_t to_upper(char16_t unit) {
  return unit >= u'a' && unit <= u'z' ? static_cast<char16_t>(unit - 32) : unit;
}
std::u16string to_upper(std::u16string text) {
  std::transform(text.begin(), text.end(), text.begin(), [](char16_t c) { return to_upper(c); });
  return text;
}

// A search that starts past the end returns its start.
void Call::make(TextStream& stream, Model& model) const {
  const auto expect = [](const char* what, std::size_t got, std::size_t expected) {
    require_equal(what, got, expected);
  };
  const auto in_set = [this](char16_t c) { return set.find(c) != set.npos; };
  const auto is_unit = [this](char16_t c) { return c == unit; };
  const auto is_digit = [](char16_t c) { return c >= u'0' && c <= u'9'; };
  switch (kind) {
    case 0:
      return expect("at", stream.at(distance), model.at(distance));
    case 1:
      return expect("first of a unit", stream.find_first_pos_of(unit, distance),
                    model.first(distance, is_unit));
    case 2:
      return expect("first of a set", stream.find_first_pos_of(set, distance),
                    model.first(distance, in_set));
    case 3:
      return expect("first that is not in a set", stream.find_first_pos_not_of(set, distance),
                    model.first(distance, std::not_fn(in_set)));
    case 4:
      return expect("first that is not a unit", stream.find_first_pos_not_of(unit, distance),
                    model.first(distance, std::not_fn(is_unit)));
    case 5:
      return expect("first that is no digit", stream.find_first_non_digit(distance),
                    model.first(distance, std::not_fn(is_digit)));
    case 6: {
      const std::size_t line = stream.find_first_pos_of(u'\n', 0);
      stream.advance(line + 1);
      return model.advance(line + 1);
    }
    case 7:
    case 8: {
      expect("match", stream.matches_case_sensitive(wanted, distance),
             model.matches(wanted, distance));
      const bool is_there = model.left() >= distance && model.left() - distance >= wanted.size();
      const bool is_alike =
          wanted.empty() ||
          (is_there && to_upper(wanted) ==
                           to_upper(std::u16string(model.rest().substr(distance, wanted.size()))));
      return expect("match in any case", stream.matches_case_insensitive(wanted, distance),
                    is_alike);
    }
    case 9:
      // The step within the loaded text, which a look-ahead has loaded.
      if (distance >= model.left()) return;
      expect("at", stream.at(distance), model.at(distance));
      stream.adjust_buffer(distance, 0);
      return model.advance(distance);
    default:
      stream.advance(distance);
      return model.advance(distance);
  }
}

void expect_same_window(const TextStream& stream, const Model& model) {
  require_equal<std::size_t>("first unit", stream.at(0), model.at(0));
  if (model.left() > 0) {
    require_equal<std::size_t>("window", *stream.window_begin(), model.at(0));
  }
}

// Whether memory can hold the text up to the position of a call: a look-ahead that far would end in
// the exception of the allocation. An advance skips text without keeping it.
bool is_within_memory(const Call& call, const Model& model) {
  return call.kind > 9 || call.distance <= model.left() + 8 * kBlock;
}

// A call that fails leaves the stream unchanged, and succeeds when it is repeated.
void make_with_failures(const Call& call, ArenaSource& source, Input& input, TextStream& stream,
                        Model& model) {
  const std::uint8_t failures = input.byte();
  if ((failures & 1U) != 0) source.fail_fill(1);
  if ((failures & 2U) != 0) source.fail_skip(1);
  if ((failures & 12U) == 12U) source.fail_resize(1);
  try {
    call.make(stream, model);
    source.fail_no_more();
  } catch (const ScriptedFailure&) {
    source.fail_no_more();
    expect_same_window(stream, model);
    const std::size_t further = distance_from(input, model) % (2 * kBlock);
    require_equal<std::size_t>("unit after a failure", stream.at(further), model.at(further));
    call.make(stream, model);
  }
}

void check_sample(const TextStream& stream, const Model& model, const Texts& line_endings) {
  const Field sample = get_fixed_stream(stream, line_endings);
  const std::u16string rest(model.rest());
  require_same_text("sample", {sample.data, sample.length},
                    rest.substr(0, reference::sample_length(rest, line_endings)));
}

// Searches in a long text take long.
int most_calls(const std::u16string& text) { return text.size() < 1000 ? 40 : 10; }

}  // namespace
}  // namespace textio::fuzz

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using namespace textio;
  using namespace textio::fuzz;
  Input input(data, size);
  ArenaSource source(text_from(input));
  const bool cuts_sample = input.below(16) == 15;
  const Texts line_endings = input.flag() ? input.short_texts() : line_ending_lists()[0];
  if (input.below(4) == 3) source.shorten_fill(1, input.byte());
  TextStream stream(&source);
  Model model(source.text());
  for (int i = most_calls(source.text()); i > 0 && !input.is_empty(); --i) {
    const Call call(input, model);
    if (!is_within_memory(call, model)) continue;
    make_with_failures(call, source, input, stream, model);
    expect_same_window(stream, model);
  }
  if (cuts_sample) check_sample(stream, model, line_endings);
  return 0;
}
