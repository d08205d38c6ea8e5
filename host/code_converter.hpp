// StreamCodeConverter: converts bytes of a named encoding to UTF-16 in chunks; a service of the
// host.
//
//   StreamCodeConverter converter("Shift_JIS", true);
//   const char* in = bytes;
//   if (converter.convert(out, out_end, in, in + count, count < asked)) converter.reset(false);
//
// Units      input counts bytes, output counts UTF-16 code units.
// Ownership  owns its state; the buffers belong to the caller.
// Errors     the constructor throws std::invalid_argument for an encoding that the host does not
//            know; the message repeats the name and suggests the nearest known one. Ill-formed
//            bytes are not an error: each maximal ill-formed part becomes one U+FFFD.
// Threads    one thread at a time; separate converters are independent.
#pragma once

#include <cstddef>
#include <memory>
#include <string>

#include <vltextstream/host/export.hpp>

namespace textio {

class VLTEXTSTREAM_IMPORT StreamCodeConverter {
 public:
  // With `one_unit_per_character`, a character outside the Basic Multilingual Plane is delivered as
  // its high surrogate alone. Well-formed text then never gives more code units than bytes,
  // wherever it is cut, so a reader that passes one byte per free code unit always has room for all
  // of them. Otherwise such a character gives its surrogate pair.
  StreamCodeConverter(const std::string& encoding, bool one_unit_per_character);
  ~StreamCodeConverter();
  StreamCodeConverter(const StreamCodeConverter&) = delete;
  StreamCodeConverter& operator=(const StreamCodeConverter&) = delete;

  // Converts [in, in_end) into [out, out_end) and moves both cursors. All input is consumed: the
  // bytes of an unfinished character, and code units that found no room, are kept and come first in
  // the next call. `final` says that no input follows: an unfinished character is then ill-formed,
  // and a later call without bytes delivers only kept code units. Returns true if the converter
  // must be reset before its next use.
  bool convert(char16_t*& out, char16_t* out_end, const char*& in, const char* in_end, bool final);

  // Whether it keeps code units that found no room, or bytes of an unfinished character.
  bool has_more() const;

  // The number of ill-formed parts since construction; a reset does not clear it. A U+FFFD in the
  // text itself does not count. The library does not call this.
  std::size_t ill_formed_parts() const;

  // Discards unfinished characters and kept code units. `at_start` says that the next byte is the
  // first of the text: only there is a byte-order mark recognised and dropped. A byte order that an
  // earlier mark has set stays in force.
  void reset(bool at_start);

 private:
  struct VLTEXTSTREAM_LOCAL State;
  std::unique_ptr<State> state_;
};

}  // namespace textio
