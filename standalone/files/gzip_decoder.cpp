// zlib checks the header, checksum and length of a member. This adds sequences of members and the
// padding after them.
#include <vltextstream/standalone/files/gzip_decoder.hpp>

#include <algorithm>
#include <cerrno>
#include <limits>
#include <new>

#include <vltextstream/standalone/files/read_problem.hpp>

namespace textio::standalone {
namespace {

constexpr int kLargestWindow = 15;
constexpr int kGzipOnly = 16;

uInt count_of(const char* begin, const char* end) {
  constexpr std::ptrdiff_t kMost = std::numeric_limits<int>::max();
  return static_cast<uInt>(std::min(end - begin, kMost));
}

}  // namespace

GzipDecoder::GzipDecoder() {
  if (inflateInit2(&inflater_, kLargestWindow + kGzipOnly) != Z_OK) throw std::bad_alloc();
}

GzipDecoder::~GzipDecoder() { inflateEnd(&inflater_); }

void GzipDecoder::restart() {
  inflateReset(&inflater_);
  place_ = Place::at_start;
}

int GzipDecoder::decode(Input& input, Output& output) {
  int error = 0;
  bool goes_on = true;
  while (goes_on && error == 0) {
    const bool has_input = input.begin != input.end;
    if (place_ == Place::between_members && has_input && *input.begin == '\0') {
      place_ = Place::in_padding;
    } else if (place_ != Place::in_member && place_ != Place::in_padding && has_input) {
      inflateReset(&inflater_);
      place_ = Place::in_member;
    }
    if (place_ == Place::in_padding) {
      error = pass_padding(input);
    } else if (place_ == Place::in_member) {
      error = decode_member(input, output);
    }
    // After the end of a member, the input may continue with the next one.
    goes_on = place_ == Place::between_members && input.begin != input.end;
  }
  return error;
}

int GzipDecoder::decode_member(Input& input, Output& output) {
  inflater_.next_in = reinterpret_cast<Bytef*>(const_cast<char*>(input.begin));
  inflater_.avail_in = count_of(input.begin, input.end);
  inflater_.next_out = reinterpret_cast<Bytef*>(output.begin);
  inflater_.avail_out = count_of(output.begin, output.end);
  const int result = inflate(&inflater_, Z_NO_FLUSH);
  input.begin = reinterpret_cast<const char*>(inflater_.next_in);
  output.begin = reinterpret_cast<char*>(inflater_.next_out);
  switch (result) {
    case Z_STREAM_END:
      place_ = Place::between_members;
      return 0;
    case Z_OK:
    case Z_BUF_ERROR:
      return 0;  // Z_BUF_ERROR: no input, or no room
    case Z_MEM_ERROR:
      return ENOMEM;
    default:
      return kDataDamaged;
  }
}

int GzipDecoder::pass_padding(Input& input) {
  input.begin = std::find_if(input.begin, input.end, [](char byte) { return byte != '\0'; });
  return input.begin == input.end ? 0 : kDataDamaged;
}

}  // namespace textio::standalone
