// Measures how often find_encoding is right, over texts in many languages and the encodings these
// are written in, and prints the result as tables.
//
//   encoding_measure tests/corpus held-out            the tables
//   encoding_measure tests/corpus held-out --check    no tables; fails when a goal is missed
//   encoding_measure tests/corpus tuning --misses     lists what was wrong
//
// An answer is right when it decodes the sample to the same text as the true encoding does.
#include <cstdio>
#include <exception>
#include <map>
#include <set>
#include <string>
#include <string_view>
#include <vector>

#include <fmt/format.h>

#include <vltextstream/standalone/encoding_detection/find_encoding.hpp>
#include "encodings/corpus.hpp"

namespace {

using textio::encodings::decode;
using textio::encodings::encodable_in;
using textio::encodings::is_known;
using textio::encodings::Language;
using textio::encodings::read_corpus;
using textio::encodings::samples_of;
using textio::standalone::find_encoding;
using textio::standalone::FoundEncoding;

constexpr std::size_t kSizes[] = {50, 200, 2000};  // bytes
constexpr std::size_t kNumSizes = 3;
constexpr double kLeast[kNumSizes] = {0.0, 0.90, 0.97};
constexpr double kLeastOfTheSure = 0.97;

struct Unicode {
  const char* title;
  const char* encoding;
  std::string_view mark;
};
using namespace std::string_view_literals;
constexpr Unicode kUnicode[] = {
    {"UTF-8", "UTF-8", ""},
    {"UTF-16LE", "UTF-16LE", ""},
    {"UTF-16BE", "UTF-16BE", ""},
    {"UTF-32LE", "UTF-32LE", ""},
    {"UTF-32BE", "UTF-32BE", ""},
    {"UTF-8, marked", "UTF-8", "\xEF\xBB\xBF"sv},
    {"UTF-16LE, marked", "UTF-16LE", "\xFF\xFE"sv},
    {"UTF-16BE, marked", "UTF-16BE", "\xFE\xFF"sv},
    {"UTF-32LE, marked", "UTF-32LE", "\xFF\xFE\0\0"sv},
    {"UTF-32BE, marked", "UTF-32BE", "\0\0\xFE\xFF"sv},
};

struct Share {
  std::size_t right = 0;
  std::size_t all = 0;

  void count(bool is_right) {
    right += is_right ? 1U : 0U;
    ++all;
  }
  double value() const {
    return all == 0 ? 1.0 : static_cast<double>(right) / static_cast<double>(all);
  }
};

struct Row {
  Share of_size[kNumSizes];
};

struct Measurement {
  std::map<std::string, Row> languages;
  std::map<std::string, Row> encodings;
  std::map<std::string, Row> unicode;
  Row total;
  Share of_confidence[10];  // by tenths
  std::size_t samples_in_ascii = 0;
  std::map<std::string, std::size_t> dropped;  // characters, by language and encoding
  std::set<std::string> unknown;               // languages with encodings that ICU lacks
  bool lists_misses = false;
};

bool is_right(const FoundEncoding& found, std::string_view sample, const std::string& encoding) {
  return found.name == encoding || decode(sample, found.name) == decode(sample, encoding);
}

bool is_plain(std::string_view sample) {
  for (const char byte : sample) {
    if (static_cast<unsigned char>(byte) >= 0x80 || byte == '\x1B' || byte == '\x0E') return false;
  }
  return true;
}

void list_miss(const std::string& language, const std::string& encoding, std::size_t size,
               const FoundEncoding& found, std::string_view sample) {
  fmt::print("{} {} {}: {} {:.2f}: ", language, encoding, size, found.name, found.confidence);
  for (const char16_t c : decode(sample.substr(0, 300), encoding)) {
    if (c < 0x80) {
      fmt::print("{}", c < ' ' ? '_' : static_cast<char>(c));
    } else {
      fmt::print("{}", fmt::format("<{:04X}>", static_cast<unsigned>(c)));
    }
  }
  fmt::print("\n");
}

void measure_encoding(const Language& language, const std::string& encoding,
                      Measurement& measured) {
  const auto encodable = encodable_in(encoding, language.text);
  if (encodable.dropped != 0) {
    measured.dropped[language.name + ", " + encoding] = encodable.dropped;
  }
  for (std::size_t size = 0; size < kNumSizes; ++size) {
    for (const std::string& sample : samples_of(encodable.text, encoding, kSizes[size])) {
      if (is_plain(sample)) {
        ++measured.samples_in_ascii;
        continue;
      }
      const FoundEncoding found = find_encoding(sample, true);
      const bool right = is_right(found, sample, encoding);
      measured.languages[language.name].of_size[size].count(right);
      measured.encodings[encoding].of_size[size].count(right);
      measured.total.of_size[size].count(right);
      const auto tenth = static_cast<std::size_t>(found.confidence * 10);
      measured.of_confidence[tenth < 10 ? tenth : 9].count(right);
      if (!right && measured.lists_misses) {
        list_miss(language.name, encoding, kSizes[size], found, sample);
      }
    }
  }
}

void measure_unicode(const Language& language, const Unicode& form, Measurement& measured) {
  const auto encodable = encodable_in(form.encoding, language.text);
  for (std::size_t size = 0; size < kNumSizes; ++size) {
    for (const std::string& part : samples_of(encodable.text, form.encoding, kSizes[size])) {
      const std::string sample = std::string(form.mark) + part;
      const FoundEncoding found = find_encoding(sample, true);
      const bool right = is_right(found, sample, form.encoding);
      measured.unicode[form.title].of_size[size].count(right);
      if (!right && measured.lists_misses) {
        list_miss(language.name, form.title, kSizes[size], found, sample);
      }
    }
  }
}

Measurement measure(const std::vector<Language>& corpus, bool lists_misses) {
  Measurement measured;
  measured.lists_misses = lists_misses;
  for (const Language& language : corpus) {
    for (const std::string& encoding : language.encodings) {
      if (is_known(encoding)) {
        measure_encoding(language, encoding, measured);
      } else {
        measured.unknown.insert(language.name + ", " + encoding);
      }
    }
    for (const Unicode& form : kUnicode) measure_unicode(language, form, measured);
  }
  return measured;
}

std::string cell(const Share& share) {
  return share.all == 0 ? "-" : fmt::format("{:.1f} %", 100 * share.value());
}

void print_row(const std::string& title, const Row& row) {
  std::size_t samples = 0;
  for (const Share& share : row.of_size) samples += share.all;
  fmt::print("| {} | {} | {} | {} | {} |\n", title, cell(row.of_size[0]), cell(row.of_size[1]),
             cell(row.of_size[2]), samples);
}

void print_table(const char* head, const std::map<std::string, Row>& rows) {
  fmt::print("\n| {} | 50 bytes | 200 bytes | 2,000 bytes | samples |\n|---|--:|--:|--:|--:|\n",
             head);
  for (const auto& [title, row] : rows) print_row(title, row);
}

void print(const Measurement& measured) {
  print_table("total", {{"all but Unicode", measured.total}});
  print_table("Unicode", measured.unicode);
  print_table("language", measured.languages);
  print_table("encoding", measured.encodings);
  fmt::print("\n| confidence | right | samples |\n|---|--:|--:|\n");
  for (std::size_t i = 0; i < 10; ++i) {
    const Share& share = measured.of_confidence[i];
    fmt::print("| 0.{} to {} | {} | {} |\n", i, i == 9 ? "1.0" : fmt::format("0.{}", i + 1),
               cell(share), share.all);
  }
  fmt::print("\nSamples left out because they are plain ASCII: {}.\n", measured.samples_in_ascii);
  for (const std::string& title : measured.unknown) {
    fmt::print("Not measured, for ICU does not have it: {}.\n", title);
  }
  if (measured.dropped.empty()) return;
  fmt::print("\n| characters dropped, for the encoding lacks them | number |\n|---|--:|\n");
  for (const auto& [title, count] : measured.dropped) fmt::print("| {} | {} |\n", title, count);
}

// Prints a goal that was missed.
bool reaches(const std::string& what, const Share& share, double least) {
  if (share.all != 0 && share.value() >= least) return true;
  fmt::print("{}: {} of {} right, {:.0f} % wanted\n", what, share.right, share.all, 100 * least);
  return false;
}

bool reaches_goals(const Measurement& measured) {
  bool good = reaches("confidence of 0.9 and more", measured.of_confidence[9], kLeastOfTheSure);
  for (std::size_t size = 0; size < kNumSizes; ++size) {
    const std::string bytes = fmt::format(", {} bytes", kSizes[size]);
    good = reaches("total" + bytes, measured.total.of_size[size], kLeast[size]) && good;
    for (const auto& [title, row] : measured.unicode) {
      good = reaches(title + bytes, row.of_size[size], 1.0) && good;
    }
  }
  return good;
}

int run(const std::vector<std::string>& arguments) {
  if (arguments.size() < 2) {
    fmt::print(stderr, "usage: encoding_measure CORPUS tuning|held-out [--check|--misses]\n");
    return 2;
  }
  const std::string mode = arguments.size() > 2 ? arguments[2] : "";
  const Measurement measured = measure(read_corpus(arguments[0], arguments[1]), mode == "--misses");
  if (mode == "--check") return reaches_goals(measured) ? 0 : 1;
  print(measured);
  return 0;
}

}  // namespace

int main(int argc, char** argv) {
  try {
    return run({argv + 1, argv + argc});
  } catch (const std::exception& error) {
    std::fprintf(stderr, "%s\n", error.what());
    return 2;
  }
}
