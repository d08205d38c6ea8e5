// TextDecoder: the implementation of StreamCodeConverter; host/code_converter.hpp describes the
// calls.
//
//   TextDecoder decoder("Shift_JIS", true, DecodeRoute::fastest);
//   decoder.convert(out, out_end, in, in_end, is_last);
//
// Errors   std::invalid_argument for an unknown encoding.
// Cost     one pass over the bytes, directly into the caller's room; code units that find no room
//          there are kept on the heap.
// Threads  one thread at a time; separate decoders are independent.
#pragma once

#include <cstddef>
#include <memory>
#include <string>
#include <string_view>

#include <vltextstream/standalone/decoding/stream_decoder.hpp>

namespace textio::standalone {

// Both routes give the same answers; `icu` exists to test the other one.
enum class DecodeRoute { fastest, icu };

class TextDecoder {
 public:
  TextDecoder(const std::string& encoding, bool one_unit_per_character, DecodeRoute route);

  bool convert(char16_t*& out, char16_t* out_end, const char*& in, const char* in_end, bool final);
  bool has_more() const;
  std::size_t ill_formed_parts() const;
  void reset(bool at_start);

  // Whether the decoder in use works without ICU.
  bool is_fast() const { return is_fast_; }

 private:
  bool find_order(std::string_view& bytes, bool final);
  void set_decoder(const std::string& encoding);
  void decode(DecodeWindow& window, bool final);
  void hold_rest(DecodeWindow& window, bool final);
  void drop_mark(char16_t* begin, char16_t*& end);
  void put_held(char16_t*& out, char16_t* out_end);
  std::size_t held_units() const { return held_.size() - held_begin_; }

  bool one_unit_;
  DecodeRoute route_;
  std::unique_ptr<StreamDecoder> decoder_;  // null while the byte order has never been known
  bool is_fast_ = false;
  std::size_t earlier_ill_formed_ = 0;  // of decoders that were replaced
  bool at_start_ = true;

  // "UTF-16" or "UTF-32" if that is the encoding: its first bytes decide the byte order. `head_`
  // has those read so far.
  std::string family_;
  std::string head_;
  bool order_known_ = true;
  bool order_marked_ = false;

  // Code units that found no room, from held_begin_ on.
  std::u16string held_;
  std::size_t held_begin_ = 0;
};

}  // namespace textio::standalone
