#include <vltextstream/layout/unique_names.hpp>

#include <array>
#include <charconv>
#include <string_view>
#include <unordered_map>
#include <unordered_set>

#include <unicode/uchar.h>

namespace textio::standalone {
namespace {

std::u16string in_one_line(std::u16string_view name) {
  std::u16string out;
  bool is_blank = false;
  for (const char16_t unit : name) {
    if (u_isUWhiteSpace(unit) || u_iscntrl(unit)) {
      is_blank = !out.empty();
      continue;
    }
    if (is_blank) out.push_back(u' ');
    is_blank = false;
    out.push_back(unit);
  }
  return out;
}

std::u16string numbered(std::u16string_view stem, std::size_t number) {
  std::array<char, 24> digits{};
  const char* const end = std::to_chars(digits.begin(), digits.end(), number).ptr;
  std::u16string name(stem);
  name += u'_';
  return name.append<const char*>(digits.data(), end);
}

}  // namespace

std::vector<std::u16string> unique_names(const std::vector<std::u16string>& names,
                                         std::size_t num_columns) {
  std::vector<std::u16string> unique(num_columns);
  std::unordered_set<std::u16string> taken;
  for (std::size_t i = 0; i < num_columns; ++i) {
    if (i < names.size()) unique[i] = in_one_line(names[i]);
    if (!unique[i].empty() && !taken.insert(unique[i]).second) unique[i] += u'\n';  // a repetition
  }
  const bool has_names = !taken.empty();
  std::unordered_map<std::u16string, std::size_t> last_number;
  for (std::size_t i = 0; i < num_columns; ++i) {
    std::u16string& name = unique[i];
    const bool is_repeated = !name.empty() && name.back() == u'\n';
    if (!name.empty() && !is_repeated) continue;
    const std::u16string stem = is_repeated ? name.substr(0, name.size() - 1) : u"column";
    std::size_t number = i + 1;
    if (is_repeated) number = last_number.emplace(stem, 1).first->second + 1;
    while (has_names && !taken.insert(numbered(stem, number)).second) ++number;
    if (is_repeated) last_number[stem] = number;
    name = numbered(stem, number);
  }
  return unique;
}

}  // namespace textio::standalone
