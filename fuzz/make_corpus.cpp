// Writes the seeds of all fuzz targets: make_corpus FOLDER EXAMPLES_FOLDER. A seed is the choices
// of its target, byte by byte, followed by a text; a choice of 0 is the ordinary one. The seeds are
// the same on every machine.
#include <algorithm>
#include <cstddef>
#include <cstdio>
#include <exception>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <set>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

#include "fuzz/choices.hpp"
#include "fuzz/encodings.hpp"
#include "fuzz/option_names.hpp"
#include "fuzz/table_maker.hpp"

namespace textio::fuzz {
namespace {

namespace fs = std::filesystem;
using namespace std::string_literals;

std::string byte(std::size_t value) { return std::string(1, static_cast<char>(value)); }
std::string zeros(std::size_t count) { return std::string(count, '\0'); }

// The seeds of one target, numbered.
class Seeds {
 public:
  Seeds(const fs::path& folder, const char* target) : folder_(folder / target) {
    fs::remove_all(folder_);
    fs::create_directories(folder_);
  }
  void add(std::string_view bytes) {
    char name[16];
    std::snprintf(name, sizeof name, "seed-%03zu", ++count_);
    std::ofstream out(folder_ / name, std::ios::binary);
    out.write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
    if (!out.flush()) throw std::runtime_error("cannot write " + (folder_ / name).string());
  }

 private:
  fs::path folder_;
  std::size_t count_ = 0;
};

void make_decoding(Seeds seeds) {
  // Characters of each length and byte-order marks, in the form of each encoding.
  const std::string samples[] = {
      "\xEF\xBB\xBF"
      "a\xC3\xA9\xE2\x82\xAC\xF0\x9F\x98\x80,\n\xC3\x28\xF0\x9F"s,
      "\xFE\xFF\0a\xD8\x3D\xDE\x00\0\n\xDC\x00"s,
      "\xFF\xFE"
      "a\0\x3D\xD8\x00\xDE\n\0\xE9"s,
      "\0\0\xFE\xFF\0\0\0a\0\x01\xF6\0\0\x11\0\0"s,
      "\xFF\xFE\0\0a\0\0\0\x00\xF6\x01\0"s,
      "a\x83\x65\xB1\x93\xFA\x83\x5C\x95\x5C,\x96\x7B\n\x81"s,
      "a\xD6\xD0\x81\x30\x81\x30\xCE\xC4\x94\x39\xFC\x36z\x84\x31\x95\x33"s,
      "a\x1B$B\x46\x7C\x4B\x5C\x1B(B,\x1B$B\x24\x22\x1B(B\n\x1B$"s,
      "Hi +2D3eAA-, +AGE-+"s,
      "\x80\x9F\x93\xFF\x1A\x1C\x7F\x00z"s};
  const std::string feeding = "\x01\x02\x03\x01\x02\x03\x00\x01\x03\x01\x05\x02\x01\x00\x02\x07"s;
  const std::string plain_feeding = zeros(feeding.size());
  for (std::size_t encoding = 0; encoding < std::size(kEncodings); ++encoding) {
    for (const std::string& sample : samples) {
      seeds.add(byte(encoding).append(feeding).append(sample));
      seeds.add(byte(encoding).append(plain_feeding).append(sample));
    }
  }
}

void make_text_stream(Seeds seeds) {
  const std::string own = "ab 12,\n\"x\xC0y\"\n\naB;9"s;
  // All calls at one distance: kind, distance (its kind and its size), code unit, set.
  const auto calls = [](std::size_t distance_kind, std::size_t distance, std::size_t failures) {
    std::string bytes;
    for (std::size_t kind = 0; kind < 13; ++kind) {
      bytes += byte(kind) + byte(distance_kind) + byte(distance) + ",\2,\n";
      if (kind == 7 || kind == 8) bytes += byte(3) + byte(0);
      bytes += byte(failures);
    }
    return bytes;
  };
  // Texts of several blocks take long, so they are combined with only a few of the distances.
  const auto add = [&](std::size_t length_kind, std::size_t distance_kind) {
    const std::string text = byte(length_kind) + byte(own.size()) + own;
    const std::string more = length_kind == 0 ? "" : "\1\1\1";
    seeds.add(text + more + byte(15) + byte(0) + byte(0) + calls(distance_kind, 3, 0));
    seeds.add(text + more + byte(0) + byte(0) + byte(0) + calls(distance_kind, 1, 15));
  };
  for (const std::size_t distance_kind : {0U, 8U, 10U, 11U, 12U, 14U, 15U}) add(0, distance_kind);
  for (const std::size_t length_kind : {224U, 244U, 250U, 254U}) {
    for (const std::size_t distance_kind : {10U, 11U, 12U}) add(length_kind, distance_kind);
  }
}

void make_options(Seeds seeds) {
  const std::string no_round_trip = zeros(11);
  const auto pair = [](std::size_t name, const std::string& value) {
    return byte(0) + byte(name) + value;
  };
  const auto text = [](std::string_view units) {
    return byte(0) + byte(1) + byte(units.size()) + std::string(units);
  };
  const std::string number = byte(2) + byte(2);
  const std::string flag = byte(4) + byte(1);
  const std::string cell = byte(9) + byte(2) + byte(0) + byte(1) + byte(0) + byte(2);
  for (std::size_t name = 0; name < std::size(kOptionNames); ++name) {
    seeds.add(no_round_trip + pair(name, text("skip")) + pair(name, text("error")));
    seeds.add(no_round_trip + pair(name, number) + pair(name, flag) + pair(name, cell));
  }
  for (std::size_t kind = 0; kind < 12; ++kind) {
    for (const std::size_t name : {0U, 3U, 8U, 9U, 19U}) {
      seeds.add(no_round_trip + pair(name, byte(kind) + byte(2) + byte(4) + byte(3) + byte(1)));
    }
  }
}

const std::string kTables[] = {"a,b\n1,2\n3,4\n",
                               "x;y\r\n\"1;2\";3\r\n\r\n4;\r\n",
                               "name  value\none     1\ntwo     22\nthree   333\n",
                               "a\tb\tc\n1\t\t3\n",
                               "% remark\n1 2 3\n4 5 6\n",
                               "\"a\nb\",\"c\"\"d\"\n\"open,1\n",
                               "  1  2\n 10 20\n",
                               "a||b|c\n1||2|3\n",
                               "1\r2\r\n3\n\n",
                               "\x80,1\n\x81\x83,2\n",
                               "2024-03-01 10:00:00\n2024-03-02 11:00:00\n",
                               ""};

void make_strategies(Seeds seeds) {
  for (const std::string& table : kTables) {
    for (std::size_t kind = 0; kind < 5; ++kind) {
      std::string choices = zeros(kChoiceBytes);
      choices[kFreeBytes] = static_cast<char>(kind == 4 ? 3 : 0);
      choices[kFreeBytes + 1] = static_cast<char>(kind == 4 ? 2 : kind);
      choices[kFreeBytes + 2] = 2;
      choices[kFreeBytes + 3] = 3;
      seeds.add(choices + table);
    }
  }
  TableMaker maker(1);
  for (int i = 0; i < 40; ++i) {
    std::string choices = maker.choices();
    for (std::size_t place = kFreeBytes; place < kChoiceBytes; ++place) {
      choices[place] = static_cast<char>(maker.below(256));
    }
    seeds.add(choices + maker.table().substr(0, 200));
  }
}

void make_classification(Seeds seeds) {
  const std::string fields[] = {"",
                                "12",
                                "-2.5e+3",
                                ".5",
                                "1.5D-3",
                                "nan",
                                "-Inf",
                                "1-2.5j",
                                "3i",
                                "i",
                                "1:02:03.5",
                                "12:30",
                                "::",
                                "\"12\"",
                                "\"a\"\"b\"",
                                "\"",
                                "\"open",
                                " \"x\" y",
                                "2024-03-01",
                                "2024-03-01T10:00Z",
                                "March 1, 2024 9:30 PM",
                                "3/1/24",
                                "01.02.03",
                                "24:00 2024-02-29",
                                "1st Mar 2024",
                                "north 7",
                                " 1 ",
                                "1e",
                                "+",
                                "12:30:00 1 Mar 2024"};
  for (const std::string& field : fields) {
    seeds.add(byte(0) + field);
    seeds.add(byte(0) + byte('"') + field + "\" ");
    seeds.add(byte(9) + byte(2) + "_ " + "_" + field);
  }
}

void make_counts(Seeds seeds) {
  const std::string lists[] = {"",
                               "\1",
                               "\3\3\3\3\3",
                               "\1\1\1\3\3\3\3\3",
                               "\1\0\2\3\3\3\0\3"s,
                               "\5\4\3\3\3\3\3\2",
                               "\1\1\1\1\1\1\1\1\1\1\1\2",
                               "\0\0\3\3\3"s,
                               "\2\3",
                               "\3\2\3\2\3\2\3\2",
                               "\3\3\3\3\3\3\3\3\3\1\1\1\1\1",
                               "\xE9\xFF\3\3\3"};
  for (const std::string& list : lists) {
    seeds.add("\0\0\3\0\0\0"s + list);
    seeds.add("\2\1\2\1\1\0"s + list);
    seeds.add("\xFF\3\4\0\1\0"s + list);
    seeds.add("\1\2\3\1\0\1"s + list);
  }
}

// Short tables, and the starts of the examples.
void make_assessment(Seeds seeds, const std::vector<std::string>& examples) {
  const std::string texts[] = {
      "a,b\n1,2\n3,4\n",
      "'a';'b'\n'x;y';2\n'it''s';3\n",
      "a\\,b,c\n\"x\\\"y\",z\n",
      "+---+---+\n| a | b |\n+===+===+\n| 1 | 2 |\n+---+---+\n",
      "  x    y\n 1.5  2024-01-05 10:15\n 2.5  2024-01-06 10:30\n",
      "# a b\n1 2\n3 4\n",
      "k1;v1;;\n;;;\nn;m;o;p\n1;2;3;4\n5;6;7;8\n9;8;7;6\n",
      "a::b::c\n1::2::3\n",
      "1 0:01 init\n22 1:10 vim my notes\n7 9:59 cron\n8 0:00 a b c\n"
      "9 0:01 d\n10 0:02 e f\n11 0:03 g\n12 0:04 h i j k\n13 0:05 l\n",
      "01MILLER  7A\n02LEE     8B\n03OTT     9C\n04KAY     0D\n05LEE     1E\n"
      "06OTT     2F\n07KAY     3G\n08LEE     4H\n09OTT     5I\n10KAY     6J\n",
      "int main() {\n  return 0;\n}\n",
      "The quick brown fox jumps, and then it rests.\n"};
  for (const std::string& text : texts) seeds.add(byte(40) + text);
  for (const std::string& text : examples) seeds.add(byte(20) + text.substr(0, 380));
}

// Each setting alone, over a table with a title, names, units and descriptions; and a few of them together.
void make_given(Seeds seeds, const std::vector<std::string>& examples) {
  const std::string table = "Log, of today\nx,y,z\nm,s,kg\nway,time,mass\n1,2,'3'\n4,x,6\n7,8,9\n";
  const std::string lines = byte(30);
  const std::string no_separators = byte(0);
  constexpr std::size_t kSettings = 13;
  for (std::size_t given = 0; given < kSettings; ++given) {
    for (const std::size_t value : {0U, 1U, 2U, 3U}) {
      // A setting that is given has a byte more.
      seeds.add(lines + no_separators + zeros(given) + byte(1) + byte(value) +
                zeros(kSettings - 1 - given) + table);
    }
  }
  for (const std::string& separators : {"\1\0"s, "\1\3"s, "\2\0\1"s, "\3\2\4\4\4"s}) {
    seeds.add(lines + separators + zeros(kSettings) + table);
    // With names in the second line and units in the third.
    seeds.add(lines + separators + zeros(6) + "\1\2\1\3"s + zeros(5) + table);
  }
  for (const std::string& text : examples) {
    seeds.add(lines + no_separators + zeros(kSettings) + text.substr(0, 360));
  }
}

// Texts that end a literal, or would go on in another language.
void make_quoting(Seeds seeds) {
  for (const std::string& text :
       {"level"s, "\"); import os"s, "'; DROP TABLE t; --"s, "$(rm -rf .)"s, "`id`"s, "a\\"s,
        "a\\'"s, "a\nb\r\tc"s, "$$"s, "a\0b"s, "\xED\xA0\x80"s, "\xFF\xFE"s, "\xF0\x9F\x98\x80"s,
        "\xE2\x80\xAE"s, "\\x41\\u0041\\101"s}) {
    seeds.add(text);
  }
}

// Columns of each kind, a line each, with and without hints.
void make_columns(Seeds seeds) {
  const std::string texts[] = {"1|22|NA|-333",
                               "1.234,50|7,25|1.234\n1,5|2,5",
                               "1,234|12,345|999\n0.5|0.25",
                               "1 234|12 345,5|1'234|12'345'678.5",
                               "1e5|2.5D-3|inf|nan",
                               "12.5|14|9.5|-999|-999",
                               "$5|-$7.50|(EUR 1.234,50)|5 kr|CHF 1'200.-|5.-",
                               "50%|3,5 %|0",
                               "yes|no|YES|maybe\nja|nein\nT|F|T",
                               "2024-01-31|2024-02-01|soon\n01/02/2024|31/01/2024",
                               "01-02-03|04-05-06|99-12-31\n20240131|20240201",
                               "31. Januar 2024|1. Mai 2024|12 mars 2024|1st May 2024",
                               "Mi. 31.01.2024|mar. 12 sept. 2023|Wed, 31 Jan 2024 15:04:05 GMT",
                               "2024-01-31T15:04:05.250+01:00|20240131T150405Z|15:04 CET",
                               "3:04 PM|5 p.m.|24:00|59:12.5|36:15:00|PT5M|1d 2h",
                               "007|012|115\n1234567890123456789\n+49 30 123456|030/1234567",
                               "1704067200|1704067260|1704067320\n0930|1545",
                               "red|blue|red|red|blue|blue|red|blue||-",
                               "https://a.org|a@b.org|10.0.0.1|1+2i|two words"};
  for (const std::string& text : texts) {
    seeds.add(zeros(8) + text);
    seeds.add("\1\1\2\0\1\3\0\1"s + text);
  }
}

// Tables with a detected layout, with layouts of choices, and tables made of choices.
void make_reading(Seeds seeds, const std::vector<std::string>& examples) {
  constexpr std::size_t kChoices = 24;
  const std::string texts[] = {"a,b\n1,2\n3,4\n",
                               "a,b,c\r\n1,\"x,\r\n\"\"y\",2.5\r\n3,,\r\n",
                               "# a \"note\nn;m\n# \"\n1;2\n\n3;4;5\n",
                               "x  y\n--- ---\n1  2\n 3 4\n",
                               "ab 12\ncd 3\nef\n",
                               "1,2\n1.5,x\nsum,3\n",
                               "\xEF\xBB\xBFname,day\r\"Z\xC3\xBCrich\",2024-01-31\r\xFF,soon\r"};
  for (const std::string& text : texts) {
    seeds.add(zeros(kChoices) + text);
    for (std::size_t layout = 0; layout < 8; ++layout) {
      seeds.add(byte(1) + byte(layout == 7 ? 31U : 0U) + zeros(6) + byte(2) + byte(0) +
                byte(layout) + zeros(kChoices - 11) + text);
    }
  }
  for (const std::string& text : examples) seeds.add(zeros(kChoices) + text.substr(0, 480));
  std::uint32_t state = 1;
  for (int i = 0; i < 24; ++i) {
    std::string choices = byte(3) + zeros(kChoices - 1);
    for (int k = 0; k < 400; ++k) {
      state = state * 1664525U + 1013904223U;
      choices += byte(state >> 24U);
    }
    seeds.add(choices);
  }
}

std::vector<std::string> texts_of_files(const fs::path& folder) {
  std::set<fs::path> files;
  for (const auto& entry : fs::directory_iterator(folder)) files.insert(entry.path());
  std::vector<std::string> texts;
  for (const fs::path& file : files) {
    const std::string extension = file.extension();
    if (extension != ".csv" && extension != ".txt" && extension != ".tsv") continue;
    std::ifstream in(file, std::ios::binary);
    texts.emplace_back(std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>());
  }
  return texts;
}

// Tables with the defaults, the examples, and tables with choices. `more` are choices that only
// this target makes, in turn.
void make_tables(Seeds seeds, std::uint32_t seed, const std::vector<std::string>& examples,
                 const std::vector<std::string>& more) {
  TableMaker maker(seed);
  std::size_t turn = 0;
  const auto with_more = [&](std::string choices) {
    const std::string& target_choices = more[turn++ % more.size()];
    choices.replace(kFreeBytes, target_choices.size(), target_choices);
    return choices;
  };
  for (const std::string& table : kTables) seeds.add(with_more(zeros(kChoiceBytes)) + table);
  for (const std::string& text : examples) seeds.add(with_more(zeros(kChoiceBytes)) + text);
  for (int i = 0; i < 60; ++i) {
    const std::string choices = maker.choices();
    seeds.add((i % 2 == 0 ? with_more(choices) : choices) + maker.table());
  }
}

void make_all(const fs::path& folder, const fs::path& examples_folder) {
  const std::vector<std::string> examples = texts_of_files(examples_folder);
  make_decoding(Seeds(folder, "decoding"));
  make_text_stream(Seeds(folder, "text_stream"));
  make_options(Seeds(folder, "options"));
  make_strategies(Seeds(folder, "strategies"));
  make_classification(Seeds(folder, "classification"));
  make_counts(Seeds(folder, "counts"));
  make_assessment(Seeds(folder, "assessment"), examples);
  make_columns(Seeds(folder, "columns"));
  make_quoting(Seeds(folder, "quoting"));
  make_given(Seeds(folder, "given"), examples);
  make_reading(Seeds(folder, "reading"), examples);
  make_tables(Seeds(folder, "detection"), 1, examples, {""});
  // Size of a read, read fault (3) or allocation, once or from then on, which one, trace, encoding.
  make_tables(Seeds(folder, "faults"), 2, examples,
              {"\0\0\0\0\1"s, "\0\0\0\0\x20"s, "\0\0\1\0\x30"s, "\7\3\0\0\2"s, "\7\3\1\0\1"s,
               "\0\0\0\0\x60\1"s, "\0\0\0\1\0\0\1\1"s, "\0\0\1\0\x10\0\1\2"s});
  // Layout given in part (6, 7), encoding (from 16 on), trace, read as a file.
  make_tables(Seeds(folder, "front_door"), 3, examples,
              {"\0\0\0\1"s, "\0\0\0\0"s, "\0\x10\0\1"s, "\0\x12\1\1"s, "\6\0\0\0\2\3\4"s,
               "\7\0\0\1\1\1,"s, "\0\0\0\1"s});
}

}  // namespace
}  // namespace textio::fuzz

int main(int count, char** arguments) {
  if (count != 3) {
    std::fprintf(stderr, "usage: make_corpus FOLDER EXAMPLES_FOLDER\n");
    return 2;
  }
  try {
    textio::fuzz::make_all(arguments[1], arguments[2]);
  } catch (const std::exception& error) {
    std::fprintf(stderr, "%s\n", error.what());
    return 1;
  }
}
