#include "bench/table_texts.hpp"

#include <array>
#include <charconv>

namespace textio::bench {
namespace {

constexpr std::string_view kMixedNames =
    "id,day,moment,station,code,level,flow,temperature,pressure,rain,count,counter,is_valid,"
    "quality,price,share,latitude,longitude,checked,remark\n";
constexpr std::string_view kQuotedNames = "id,title,text,author,note,place\n";

constexpr std::array<std::string_view, 12> kStations = {
    "Bern Sch\xC3\xB6nau", "Thun",   "Basel Rheinhalle", "Z\xC3\xBCrich", "Chur",  "Sion",
    "Gen\xC3\xA8ve",       "Luzern", "Andermatt",        "Rheinfelden",   "Brugg", "Porte du Scex"};
constexpr std::array<std::string_view, 4> kQualities = {"good", "fair", "poor", "unknown"};
constexpr std::array<std::string_view, 16> kWords = {
    "gauge", "cleaned", "ice", "at",     "the",   "bank",    "battery", "changed",
    "new",   "sensor",  "no",  "signal", "flood", "checked", "by",      "hand"};

void append_number(std::string& out, std::uint64_t value, std::size_t least_digits = 1) {
  char digits[20];
  const auto end = std::to_chars(digits, digits + sizeof digits, value).ptr;
  const auto size = static_cast<std::size_t>(end - digits);
  if (size < least_digits) out.append(least_digits - size, '0');
  out.append(digits, size);
}

void append_fixed(std::string& out, std::uint64_t value, std::uint64_t power, std::size_t digits) {
  append_number(out, value / power);
  out += '.';
  append_number(out, value % power, digits);
}

// A day of the years 2000 to 2023.
void append_day(std::string& out, std::uint64_t day) {
  append_number(out, 2000 + day / 336 % 24, 4);
  out += '-';
  append_number(out, 1 + day / 28 % 12, 2);
  out += '-';
  append_number(out, 1 + day % 28, 2);
}

void append_clock(std::string& out, std::uint64_t second) {
  append_number(out, second / 3600 % 24, 2);
  out += ':';
  append_number(out, second / 60 % 60, 2);
  out += ':';
  append_number(out, second % 60, 2);
}

}  // namespace

std::optional<TableKind> find_table(std::string_view name) {
  if (name == "mixed") return TableKind::mixed;
  if (name == "quoted") return TableKind::quoted;
  return std::nullopt;
}

void TableText::append_row(std::string& out) {
  const bool is_mixed = kind_ == TableKind::mixed;
  if (row_++ == 0) {
    out += is_mixed ? kMixedNames : kQuotedNames;
  } else if (is_mixed) {
    append_mixed(out);
  } else {
    append_quoted(out);
  }
}

// SplitMix64.
std::uint64_t TableText::random() {
  std::uint64_t z = state_ += 0x9E3779B97F4A7C15;
  z = (z ^ (z >> 30U)) * 0xBF58476D1CE4E5B9;
  z = (z ^ (z >> 27U)) * 0x94D049BB133111EB;
  return z ^ (z >> 31U);
}

void TableText::append_words(std::string& out, std::size_t count) {
  for (std::size_t i = 0; i < count; ++i) {
    if (i > 0) out += ' ';
    out += kWords[below(kWords.size())];
  }
}

void TableText::append_mixed(std::string& out) {
  const auto is_missing = [this] { return below(50) == 0; };
  const auto end_cell = [&out] { out += ','; };
  append_number(out, row_ - 1);
  end_cell();
  append_day(out, row_ / 288);
  end_cell();
  append_day(out, row_ / 288);
  out += ' ';
  append_clock(out, row_ * 300);
  end_cell();
  out += kStations[below(kStations.size())];
  end_cell();
  out += "QX-";
  append_number(out, below(10'000), 4);
  end_cell();
  if (!is_missing()) append_fixed(out, below(1'000'000), 100, 2);
  end_cell();
  append_fixed(out, below(10'000'000), 1000, 3);
  end_cell();
  if (below(4) == 0) out += '-';
  append_fixed(out, below(400), 10, 1);
  end_cell();
  append_fixed(out, 9'000 + below(2'000), 10, 1);
  end_cell();
  append_fixed(out, below(5) == 0 ? below(500) : 0, 10, 1);
  end_cell();
  if (!is_missing()) append_number(out, below(1000));
  end_cell();
  append_number(out, below(10'000'000'000));
  end_cell();
  out += below(8) == 0 ? "false" : "true";
  end_cell();
  out += kQualities[below(kQualities.size())];
  end_cell();
  append_fixed(out, below(100'000'000), 100, 2);
  end_cell();
  append_fixed(out, below(1'000'000), 1'000'000, 6);
  end_cell();
  append_fixed(out, 4'580'000 + below(200'000), 100'000, 5);
  end_cell();
  append_fixed(out, 595'000 + below(450'000), 100'000, 5);
  end_cell();
  append_day(out, row_ / 288 + below(100));
  end_cell();
  if (below(3) == 0) append_words(out, 1 + below(4));
  out += '\n';
}

void TableText::append_quoted(std::string& out) {
  append_number(out, row_ - 1);
  out += ",\"";
  append_words(out, 3 + below(4));
  out += "\",\"";
  const std::uint64_t parts = 1 + below(6);
  for (std::uint64_t i = 0; i < parts; ++i) {
    append_words(out, 4 + below(8));
    switch (below(4)) {
      case 0:
        out += " \"\"";
        append_words(out, 1 + below(2));
        out += "\"\", ";
        break;
      case 1:
        out += ".\n";
        break;
      default:
        out += ", ";
    }
  }
  append_words(out, 2);
  out += "\",\"";
  append_words(out, 2);
  out += "\",\"";
  if (below(2) == 0) append_words(out, 1 + below(12));
  out += "\",\"";
  out += kStations[below(kStations.size())];
  out += "\"\n";
}

std::string table_text(TableKind kind, std::size_t bytes) {
  TableText table(kind);
  std::string text;
  text.reserve(bytes + 4096);
  while (text.size() < bytes) table.append_row(text);
  return text;
}

}  // namespace textio::bench
