#include <vltextstream/host/delimiter_set.hpp>

#include <bitset>

namespace textio {

std::shared_ptr<const DelimiterSet> get_or_create_delim(
    const std::vector<std::u16string>& markers) {
  auto set = std::make_shared<DelimiterSet>();
  set->strings = markers;
  std::bitset<65536> listed;
  for (const std::u16string& marker : markers) {
    const char16_t first = marker.empty() ? u'\0' : marker[0];
    if (!listed[first]) set->first_chars.push_back(first);
    listed.set(first);
  }
  if (!set->first_chars.empty()) {
    set->first_chars_begin = set->first_chars.data();
    set->first_chars_end = set->first_chars.data() + set->first_chars.size();
  }
  set->is_single_char = markers.size() == 1 && markers[0].size() == 1;
  if (set->is_single_char) set->single_char = set->strings[0].data();
  return set;
}

}  // namespace textio
