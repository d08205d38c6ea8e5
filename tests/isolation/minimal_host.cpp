// The least that the library needs from a host: files by their ASCII names, text in ISO 8859-1, no
// dates and no arrays. It needs only the C and C++ run-time libraries, so everything else that a
// program with it does is done by the library.
#include <cstdio>
#include <memory>
#include <stdexcept>
#include <string>
#include <vector>

#include <vltextstream/vltextstream.hpp>

namespace textio {

std::FILE* open_file(const std::u16string& path, const char* mode) {
  return std::fopen(std::string(path.begin(), path.end()).c_str(), mode);
}

struct StreamCodeConverter::State {};

StreamCodeConverter::StreamCodeConverter(const std::string& /*encoding*/, bool /*one_unit*/) {}
StreamCodeConverter::~StreamCodeConverter() = default;

// A byte gives one code unit, so the room of one code unit per byte that the library leaves is
// enough.
bool StreamCodeConverter::convert(char16_t*& out, char16_t* out_end, const char*& in,
                                  const char* in_end, bool /*final*/) {
  while (in != in_end && out != out_end) *out++ = static_cast<unsigned char>(*in++);
  return false;
}

bool StreamCodeConverter::has_more() const { return false; }
std::size_t StreamCodeConverter::ill_formed_parts() const { return 0; }
void StreamCodeConverter::reset(bool /*at_start*/) {}

std::shared_ptr<const DelimiterSet> get_or_create_delim(
    const std::vector<std::u16string>& markers) {
  auto set = std::make_shared<DelimiterSet>();
  set->strings = markers;
  for (const std::u16string& marker : markers) set->first_chars += marker.substr(0, 1);
  if (!markers.empty()) {
    set->first_chars_begin = set->first_chars.data();
    set->first_chars_end = set->first_chars.data() + set->first_chars.size();
  }
  set->is_single_char = markers.size() == 1 && markers[0].size() == 1;
  if (set->is_single_char) set->single_char = set->strings[0].data();
  return set;
}

bool datetime::is_datetime(const Field& /*field*/) { return false; }

MessageIdentifiedError::~MessageIdentifiedError() = default;
void report_error(const MessageIdentifiedError& /*error*/) {}

bool is_integer(double value) { return value == static_cast<double>(static_cast<long>(value)); }
std::size_t get_number_of_elements(const hxArray* /*array*/) { return 1; }
std::string get_string(const hxArray* /*array*/) { return "NoSuchOption"; }
std::u16string get_ustring(const hxArray* /*array*/) { return u"NoSuchOption"; }
std::vector<std::u16string> get_ustring_array(const hxArray* /*array*/) { return {}; }

}  // namespace textio

class hxArray {};

bool hxIsDouble(const hxArray* /*array*/) { return false; }
bool hxIsChar(const hxArray* /*array*/) { return true; }
bool hxIsCell(const hxArray* /*array*/) { return false; }
bool hxIsScalar(const hxArray* /*array*/) { return true; }
bool hxIsLogicalScalar(const hxArray* /*array*/) { return false; }
std::size_t hxGetNumberOfDimensions(const hxArray* /*array*/) { return 2; }
std::size_t hxGetM(const hxArray* /*array*/) { return 1; }
std::size_t hxGetN(const hxArray* /*array*/) { return 1; }
double hxGetScalar(const hxArray* /*array*/) { return 0; }
const unsigned char* hxGetLogicals(const hxArray* /*array*/) { return nullptr; }
const char16_t* hxGetChars(const hxArray* /*array*/) { return u"x"; }
const hxArray* hxGetCell(const hxArray* /*array*/, std::size_t /*index*/) { return nullptr; }
const void* hxGetData(const hxArray* /*array*/) { return nullptr; }
std::size_t hxGetElementSize(const hxArray* /*array*/) { return 1; }
