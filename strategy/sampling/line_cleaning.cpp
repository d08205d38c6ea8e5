#include <vltextstream/strategy/sampling/line_cleaning.hpp>

#include <algorithm>
#include <string_view>

#include <vltextstream/strategy/field_text.hpp>
#include <vltextstream/strategy/quoting.hpp>

namespace textio {
namespace {

using View = std::u16string_view;

View trim(View text, const FieldFormat& format) {
  using Trim = FieldFormat::Trim;
  if (!format.whitespace || format.trim == Trim::none) return text;
  if (format.trim != Trim::trailing) {
    text.remove_prefix(std::min(text.find_first_not_of(*format.whitespace), text.size()));
  }
  if (format.trim != Trim::leading) {
    text.remove_suffix(text.size() - (text.find_last_not_of(*format.whitespace) + 1));
  }
  return text;
}

bool equal(View a, View b, bool case_sensitive) {
  if (case_sensitive) return a == b;
  return std::equal(a.begin(), a.end(), b.begin(), b.end(),
                    [](char16_t x, char16_t y) { return fold_ascii(x) == fold_ascii(y); });
}

// Removes the first matching prefix and the first matching suffix. Both are searched for in the
// whole text; if they overlap, nothing is left.
View strip_affixes(View text, const FieldFormat& format) {
  if (!format.affixes || format.trim == FieldFormat::Trim::none) return text;
  std::size_t begin = 0;
  for (const std::u16string& prefix : format.affixes->first) {
    if (equal(text.substr(0, prefix.size()), prefix, format.case_sensitive)) {
      begin = prefix.size();
      break;
    }
  }
  std::size_t end = text.size();
  for (const std::u16string& suffix : format.affixes->second) {
    if (suffix.size() <= text.size() &&
        equal(text.substr(text.size() - suffix.size()), suffix, format.case_sensitive)) {
      end = text.size() - suffix.size();
      break;
    }
  }
  return begin < end ? text.substr(begin, end - begin) : View();
}

}  // namespace

Field clean_line(const Field& line, FieldFormat& format) {
  View text = trim(strip_affixes(trim(view_of(line), format), format), format);
  const bool quoted =
      format.quote && *format.quote != u'\0' && !text.empty() && text.front() == *format.quote;
  if (quoted) {
    unquote_into(format.unquoted, text, *format.quote);
    text = format.unquoted;
  }
  return {text.data(), text.size()};
}

}  // namespace textio
