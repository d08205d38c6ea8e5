// StreamCodeConverter: bytes of a named encoding to UTF-16, chunk by chunk; a service of the host.
//
//   StreamCodeConverter converter("Shift_JIS", true);
//   const char* in = bytes;
//   if (converter.convert(out, out_end, in, in + count, count < asked)) converter.reset(false);
//
// Units      input counts bytes, output counts UTF-16 code units.
// Ownership  owns its state; the buffers stay the caller's.
// Errors     an encoding that the host does not know makes the constructor throw
//            std::invalid_argument; the message repeats the name and suggests the nearest one that
//            is known. Ill-formed bytes are no error: each maximal ill-formed part becomes one
//            U+FFFD.
// Threads    one thread at a time; separate converters are independent.
#pragma once

#include <cstddef>
#include <memory>
#include <string>

#include <vltextstream/host/export.hpp>

namespace textio {

class VLTEXTSTREAM_IMPORT StreamCodeConverter {
 public:
  // With `one_unit_per_character` set, a character outside the Basic Multilingual Plane is
  // delivered as its high surrogate alone. Well-formed text then never gives more units than bytes,
  // wherever it is cut, so a reader that asks for one byte per free unit never finds the converter
  // holding a unit back. Otherwise such a character gives its surrogate pair.
  StreamCodeConverter(const std::string& encoding, bool one_unit_per_character);
  ~StreamCodeConverter();
  StreamCodeConverter(const StreamCodeConverter&) = delete;
  StreamCodeConverter& operator=(const StreamCodeConverter&) = delete;

  // Converts [in, in_end) into [out, out_end) and moves both cursors. All input is consumed: the
  // bytes of an unfinished character, and units that found no room, are kept and come first in the
  // next call. `final` says that no input follows; an unfinished character is ill-formed then.
  // True when the converter must be reset before it is used again.
  bool convert(char16_t*& out, char16_t* out_end, const char*& in, const char* in_end, bool final);

  // Whether it keeps units that found no room, or bytes of an unfinished character.
  bool has_more() const;

  // The ill-formed parts met since the converter was made, through all resets; a U+FFFD that the
  // text itself holds is none. The library does not ask.
  std::size_t ill_formed_parts() const;

  // Forgets unfinished characters and units held back. `at_start` says that the next byte is the
  // first of the text: only there is a byte-order mark looked for and dropped. A byte order that
  // an earlier mark fixed stays in force.
  void reset(bool at_start);

 private:
  struct VLTEXTSTREAM_LOCAL State;
  std::unique_ptr<State> state_;
};

}  // namespace textio
