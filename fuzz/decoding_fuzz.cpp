// Decoding gives the same code units for any chunks and room, from the converter and from a file.
#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <memory>
#include <string>
#include <string_view>

#include <vltextstream/host/code_converter.hpp>
#include <vltextstream/source/file_text_source.hpp>
#include "fuzz/check.hpp"
#include "fuzz/encodings.hpp"
#include "fuzz/input.hpp"
#include "fuzz/memory_file.hpp"

namespace textio::fuzz {
namespace {

struct Step {
  std::size_t chunk;
  std::size_t room;
};

// How the bytes are passed on: step sizes that are used in turn.
struct Feeding {
  explicit Feeding(Input& input) {
    for (Step& step : steps) step = {1 + input.below(9), input.below(5)};
    end_with_bytes = input.flag();
    ask_for_held_back = input.flag();
  }
  const Step& at(std::size_t call) const { return steps[call % std::size(steps)]; }

  Step steps[3];
  bool end_with_bytes;
  bool ask_for_held_back;
};

struct Answer {
  std::u16string text;
  bool must_reset;
};

// One call, from and into blocks of exactly the given sizes.
Answer convert(StreamCodeConverter& converter, std::string_view bytes, std::size_t room,
               bool final) {
  const auto input = std::make_unique<char[]>(bytes.size());
  std::copy(bytes.begin(), bytes.end(), input.get());
  const auto output = std::make_unique<char16_t[]>(room);
  const char* in = input.get();
  char16_t* out = output.get();
  char16_t* const out_end = out + room;
  const bool must_reset = converter.convert(out, out_end, in, in + bytes.size(), final);
  require(in == input.get() + bytes.size(), "convert consumes all input");
  require(out >= output.get() && out <= out_end, "convert stays within its room");
  require(final || !must_reset, "only the end of the input asks for a reset");
  require(!must_reset || !converter.has_more(), "a converter to be reset keeps nothing");
  return {{output.get(), static_cast<std::size_t>(out - output.get())}, must_reset};
}

// The rest after the last bytes: with enough room, a converter delivers all of its text.
std::u16string ending(StreamCodeConverter& converter, std::size_t most) {
  std::u16string text;
  for (std::size_t call = 0; call <= most + 1; ++call) {
    const Answer answer = convert(converter, {}, 1 + call % 3, true);
    text += answer.text;
    if (answer.must_reset) return text;
  }
  fail("the converter never comes to its end");
}

std::size_t most_units(std::string_view bytes) { return 8 * bytes.size() + 64; }

std::u16string at_once(StreamCodeConverter& converter, std::string_view bytes) {
  Answer answer = convert(converter, bytes, most_units(bytes), true);
  require(answer.must_reset, "a call with room for all asks for a reset");
  return answer.text;
}

std::u16string in_steps(StreamCodeConverter& converter, std::string_view bytes,
                        const Feeding& feeding) {
  std::u16string text;
  std::size_t call = 0;
  for (std::size_t pos = 0; pos < bytes.size(); ++call) {
    const Step& step = feeding.at(call);
    const std::string_view chunk = bytes.substr(pos, step.chunk);
    pos += chunk.size();
    const bool final = pos == bytes.size() && feeding.end_with_bytes;
    Answer answer = convert(converter, chunk, step.room, final);
    text += answer.text;
    if (final && answer.must_reset) return text;
    while (!final && feeding.ask_for_held_back && step.room > 0 &&
           answer.text.size() == step.room) {
      answer = convert(converter, {}, step.room, false);
      text += answer.text;
    }
  }
  return text + ending(converter, most_units(bytes));
}

// The code units without the second halves of surrogate pairs.
std::u16string first_halves(std::u16string text) {
  std::erase_if(text, [](char16_t unit) { return unit >= 0xDC00 && unit <= 0xDFFF; });
  return text;
}

std::u16string folded(std::u16string text) {
  text.resize(static_cast<std::size_t>(
      fold_surrogate_pairs(text.data(), text.data() + text.size()) - text.data()));
  return text;
}

void check_steps(const Encoding& encoding, std::string_view bytes, const Feeding& feeding,
                 bool one_unit, const std::u16string& whole) {
  StreamCodeConverter converter(encoding.name, one_unit);
  require_same_text("text in steps", in_steps(converter, bytes, feeding), whole);
  const std::size_t ill_formed = converter.ill_formed_parts();
  converter.reset(true);
  require(!converter.has_more(), "a reset forgets what is held back");
  require_same_text("text after a reset", in_steps(converter, bytes, feeding), whole);
  require_equal("ill-formed parts in the second reading", converter.ill_formed_parts() - ill_formed,
                ill_formed);
}

// If the converter keeps nothing after the first `cut` bytes, their text is complete.
void check_has_more(const Encoding& encoding, std::string_view bytes, std::size_t cut) {
  StreamCodeConverter converter(encoding.name, true);
  const std::string_view head = bytes.substr(0, cut);
  convert(converter, head, most_units(head), false);
  const bool has_more = converter.has_more();
  const std::u16string rest = ending(converter, most_units(head));
  require(has_more || rest.empty(), "a converter that keeps nothing has nothing to say");
}

void check_reset_in_the_middle(const Encoding& encoding, std::string_view bytes,
                               const Feeding& feeding, std::size_t cut, bool at_start) {
  StreamCodeConverter converter(encoding.name, true);
  convert(converter, bytes.substr(0, cut), cut / 2, false);
  converter.reset(at_start);
  require(!converter.has_more(), "a reset forgets what is held back");
  in_steps(converter, bytes.substr(cut), feeding);
}

// ---------------------------------------------------------------------------------------------
// Files

// Reads until a fill delivers less than was requested.
std::u16string in_fills(FileTextSource& source, Input sizes) {
  std::u16string text;
  for (;;) {
    const std::size_t size = 1 + sizes.below(24);
    const auto room = std::make_unique<char16_t[]>(size);
    const bool ended = source.isEoS();
    const std::size_t filled = source.fillBuffer(room.get(), room.get() + size);
    require(filled <= size, "a fill stays within its range");
    require(!ended || filled == 0, "a source that has ended delivers nothing");
    text.append(room.get(), filled);
    if (filled < size) break;
  }
  require(source.isEoS(), "a fill that delivers less has come to the end");
  return text;
}

void check_file(const Encoding& encoding, std::string_view bytes, Input sizes,
                const std::u16string& whole) {
  MemoryFile file(bytes, sizes.byte());
  FileTextSource source;
  source.init_stream(file.open(), encoding.name);
  require_same_text("text of a file", in_fills(source, sizes), whole);
  require_equal("read error", source.read_error(), 0);
}

// A position belongs to the text delivered so far.
void check_going_back(const Encoding& encoding, std::string_view bytes, Input sizes,
                      const std::u16string& whole) {
  MemoryFile file(bytes, sizes.byte());
  FileTextSource source;
  source.init_stream(file.open(), encoding.name);
  std::u16string before(std::min<std::size_t>(1 + sizes.below(16), whole.size()), u' ');
  source.fillBuffer(before.data(), before.data() + before.size());
  const source_pos there = source.getPos();
  const std::size_t skip = sizes.below(8);
  in_fills(source, sizes);
  const std::size_t skipped = source.skipFromPos(there, skip);
  const std::size_t left = whole.size() - before.size();
  require_equal("units passed over", skipped, std::min(skip, left));
  require_same_text("text from a place further back", in_fills(source, sizes),
                    whole.substr(before.size() + skipped));
}

}  // namespace
}  // namespace textio::fuzz

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using namespace textio;
  using namespace textio::fuzz;
  Input input(data, size);
  const Encoding& encoding = input.one_of(kEncodings);
  const Feeding feeding(input);
  const std::size_t cut_choice = input.byte();
  const bool at_start = input.flag();
  const Input sizes(input.take(6));
  const std::string_view bytes = input.rest();
  const std::size_t cut = std::min(cut_choice, bytes.size());

  StreamCodeConverter pairs(encoding.name, false);
  const std::u16string whole = at_once(pairs, bytes);
  StreamCodeConverter halves(encoding.name, true);
  const std::u16string one_unit_each = at_once(halves, bytes);
  const bool is_well_formed = halves.ill_formed_parts() == 0;
  require_same_text("one unit for each character", one_unit_each, first_halves(whole));
  require_equal("ill-formed parts", halves.ill_formed_parts(), pairs.ill_formed_parts());
  require(!is_well_formed || one_unit_each.size() <= bytes.size(),
          "well-formed text never gives more units than bytes");

  check_steps(encoding, bytes, feeding, false, whole);
  check_steps(encoding, bytes, feeding, true, one_unit_each);
  check_has_more(encoding, bytes, cut);
  check_reset_in_the_middle(encoding, bytes, feeding, cut, at_start);
  check_file(encoding, bytes, sizes, folded(whole));
  if (encoding.is_stateless && is_well_formed) {
    check_going_back(encoding, bytes, sizes, folded(whole));
  }
  return 0;
}
